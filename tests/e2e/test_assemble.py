# SPDX-License-Identifier: Apache-2.0
"""fructl assemble and fields."""
import json
import unittest

from oem_support import OemTest
from support import Described, EXAMPLES


class Assemble(Described):
    def setUp(self):
        super().setUp()

        def FanBoard(dictDescription, _):
            dictDescription["devices"].append({"id": 6, "name": "fan-board", "componentType": 9, "instance": 0, "size": 256, "databaseOnly": True, "cached": True})

        self.Good("provision", self.Describe(FanBoard))

    TEXTS = {"mfg-date": "2024-05-17 08:30:00", "board-manufacturer": "Lindenhain", "board-product-name": "FB2", "board-serial-number": "FB2240001",
             "board-part-number": "LHFB2", "product-manufacturer": "Lindenhain", "product-name": "Fan Board", "product-part-number": "LH-FB2",
             "product-version": "A", "product-serial-number": "FB22\xfc", "asset-tag": "TAG"}

    def test_a_whole_image_into_the_cache(self):
        asTexts = [f"{strName}={strText}" for strName, strText in self.TEXTS.items()]
        stJson = self.Json("assemble", "fan-board", *asTexts, "--dry-run")
        self.assertEqual((stJson["texts"], stJson["dryRun"], stJson["readsComeFromCache"]), (self.TEXTS, True, True))
        self.assertEqual(self.Json("list")["devices"][6]["image"], "erased")
        self.assertTrue(self.Good("assemble", "--id", "6", *asTexts).strOut.endswith("Done: assembled into the cache of fan-board (0x09:0)\n"))
        stShown = self.Json("show", "fan-board")
        stBoard, stProduct = stShown["board"], stShown["product"]
        self.assertEqual([stBoard["mfgDate"], *[stBoard[s] for s in ("manufacturer", "productName", "serialNumber", "partNumber")],
                          *[stProduct[s] for s in ("manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag")]],
                         list(self.TEXTS.values()))
        self.Good("verify", "fan-board")

    def test_areas_without_texts_are_left_out(self):
        self.Good("assemble", "fan-board", "ASSET_tag=xy")
        self.assertEqual({strKey for strKey in self.Json("show", "fan-board") if strKey in ("chassis", "board", "product")}, {"product"})
        self.Good("assemble", "9:0", "board-serial-number=new")
        self.assertEqual({strKey for strKey in self.Json("show", "fan-board") if strKey in ("chassis", "board", "product")}, {"board"})

    def test_a_device_with_an_eeprom_only_by_force(self):
        self.assertIn("psu1 (0x03:0) has an EEPROM; an image assembled into its cache would hide what is in there",
                      self.Bad(3, "assemble", "psu1", "product-name=xy"))
        abBefore = self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes()
        self.Good("assemble", "psu1", "product-name=xy", "--force")
        stShown = self.Fructl("--json", "show", "psu1", "--source", "cache")  # which the EEPROM differs from
        self.assertEqual((stShown.iCode, stShown.Json()["product"]["productName"]), (6, "xy"))
        self.assertEqual(self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes(), abBefore)

    def test_what_is_refused(self):
        for iCode, asArguments, strExpected in [
            (2, [], "no device is named"),
            (2, ["fan-board"], "no NAME=VALUE is given; accepted names: mfg-date, board-manufacturer"),
            (2, ["fan-board", "serial=1"], "there is no 'serial' to set; accepted: mfg-date"),
            (3, ["fan-board", "asset-tag=" + "x" * 64], "the value of asset-tag has 64 characters; accepted: 1 to 63"),
            (3, ["fan-board", "asset-tag="], "the value of asset-tag has 0 characters; accepted: 1 to 63"),
            (3, ["fan-board", "mfg-date=17.5.2024"], "mfg-date=17.5.2024 is refused: it is no date; accepted: YYYY-MM-DD"),
            (3, ["fan-board", "mfg-date=1995-01-01"], "mfg-date=1995-01-01 is refused: it lies before 1996-01-01"),
            (3, ["fan-board", "mfg-date=2026-01-01"], "mfg-date=2026-01-01 is refused: it lies beyond 2025-12-31, with which the library's rule for labels ends"),
            (3, ["baseboard", "asset-tag=xy"], "baseboard (0x00:0) has 2048 bytes; an image can be assembled for 8 to 256"),
            (4, ["fan", "asset-tag=xy"], "no device named 'fan'"),
            (1, ["fan-board", *[f"{strName}={'x' * 60}" for strName in self.TEXTS if strName != "mfg-date"]],
             "no image for fan-board (0x09:0) could be assembled: 0x81000001"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(iCode, "assemble", *asArguments))
        self.assertEqual(self.Json("list")["devices"][6]["image"], "erased")


class Fields(OemTest):
    def test_slots_and_joined_texts(self):
        self.assertEqual(self.Good("fields", "baseboard").strOut, """\
baseboard (0x00:0), custom fields
  chassis 2nd    02005E1000A0
  chassis 3rd    04
  board 1st      TOP24170099
  chassis, all   CUST-000815\\n02005E1000A0\\n04\\nLHSRV2UAAA\\nR07-U12\\n
  board, all     TOP24170099\\n
  product, all   Compute\\n2+0\\n2x25G\\n800W\\n
""")
        self.assertEqual(self.Json("fields", "psu1"), {"device": {"id": 1, "name": "psu1", "componentType": 3, "instance": 0},
                                                       "source": "EEPROM", "sourcesDiffer": False,
                                                       "slots": {"chassisField2": "", "chassisField3": "", "boardField1": ""},
                                                       "joined": {"chassis": None, "board": None, "product": None}})
        self.assertEqual(self.Json("fields", EXAMPLES / "baseboard.hex")["joined"]["product"], "Compute\\n2+0\\n2x25G\\n800W\\n")

    def test_quotes_are_escaped_and_terminals_left_in_peace(self):
        stRecord = self.Json("show", EXAMPLES / "baseboard.hex")
        stRecord.pop("file")
        stRecord["board"]["customFields"] = ["it's\\a\x1b[31m"]
        pathImage = self.pathTemp / "quoted.bin"
        pathRecord = self.Write("record.json", json.dumps(stRecord).encode())
        self.Good("encode", pathRecord, "--output", pathImage, "--size", "2048")
        self.assertEqual(self.Json("fields", pathImage)["joined"]["board"], "it\\'s\\\\a\x1b[31m\\n")
        self.assertIn("  board, all     it\\'s\\\\a\\x1b[31m\\n\n", self.Good("fields", pathImage).strOut)

    def test_what_cannot_be_decoded(self):
        self.assertIn("cannot decode", self.Bad(6, "fields", self.Write("bad.bin", bytes(64))))


if __name__ == "__main__":
    unittest.main()
