# SPDX-License-Identifier: Apache-2.0
"""fructl label set: device, cache, files, log and event follow."""
import os
import pty
import re
import subprocess
import unittest

from label_support import LabelTest
from support import BASEBOARD_EEPROM, COMMAND, Environment, Independent, ReadIndependently, SERIAL_NUMBER_FILES


class Set(LabelTest):
    def test_device_cache_files_log_and_event_have_the_new_serial_number(self):
        self.Provision()
        dictExpected = self.Device("baseboard")
        strSentence = "Set baseboard FRU successfully, baseboard Product Serial Number: LH-2202-0001."
        self.assertEqual(self.Good("label", "set", "baseboard", "Product Serial Number", "LH-2202-0001").strOut,
                         strSentence + "\n  Product Serial Number  LH22024170042 -> LH-2202-0001\n")
        dictExpected["product"]["serialNumber"] = "LH-2202-0001"
        self.assertEqual(self.Device("baseboard"), dictExpected)
        abEeprom = self.Eeprom(BASEBOARD_EEPROM).read_bytes()
        abCached = self.Cached("baseboard", 2048)
        # The image is one byte shorter now, which its area's fill takes up; behind it the cached image is zero and the chip as it was.
        self.assertEqual((abEeprom[:328], len(abEeprom)), (abCached[:328], 4096))
        self.assertEqual((set(abCached[328:]), set(abEeprom[328:])), ({0}, {0xFF}))
        for strFile in SERIAL_NUMBER_FILES:
            self.assertEqual((self.pathRoot / strFile).read_bytes(), b"LH-2202-0001")
        self.assertEqual(self.OperationLog(), [(17, 99, strSentence, 12)])
        self.assertEqual(self.LabelEvents(), [(3, 0, 0, 20)])
        self.assertEqual({stDevice["cache"] for stDevice in self.Json("list")["devices"][:5]}, {"same"})
        self.Good("verify")
        self.assertEqual(ReadIndependently(self, [self.Eeprom(BASEBOARD_EEPROM)]), [Independent(dictExpected)])

    def test_other_labels_and_other_devices_have_no_serial_number_file(self):
        self.Provision()
        self.Good("label", "set", "baseboard", "Board Serial Number", "MB-1")
        self.Good("label", "set", "psu1", "Product Serial Number", "PS-1")
        for strFile in SERIAL_NUMBER_FILES:
            self.assertFalse((self.pathRoot / strFile).exists())
        self.assertEqual(self.LabelEvents(), [(3, 0, 0, 13), (3, 3, 0, 20)])

    def test_a_device_without_product_area_gets_one(self):
        self.Provision()
        strOut = self.Good("label", "set", "riser", "Product Asset Tag", "SLOT-2").strOut
        self.assertEqual(strOut, "Set riser FRU successfully, riser Product Asset Tag: SLOT-2.\n  Product Asset Tag  (none) -> SLOT-2\n"
                                 "  note: a product info area is added\n"
                                 "  note: 'fructl edit' changes a field and nothing of this\n")
        dictShown = self.Device("riser")
        self.assertEqual(dictShown["product"], {"language": "English", "languageCode": 0, "manufacturer": "", "productName": "", "partNumber": "", "version": "",
                                                "serialNumber": "", "assetTag": "SLOT-2", "fruFileId": "", "customFields": []})
        self.Good("verify", "riser")
        self.assertEqual(ReadIndependently(self, [self.Eeprom("bus3-addr0xa2.bin")]), [Independent(dictShown)])

    def test_every_label_of_a_baseboard(self):
        self.Provision()
        listLabels = [(stLabel["name"], stLabel["id"]) for stLabel in self.Json("label", "list", "baseboard")["labels"]]
        dictValues = {"Chassis Type": "Blade Enclosure", "Chassis MAC Address": "00A0C9141E3F", "Language Code": "136", "Product Language Code": "25",
                      "Mfg.Date": "2025-12-31 23:59:00"}
        dictValues = {strName: dictValues.get(strName, f"v{iID:02}") for strName, iID in listLabels}
        stJson = self.Json("label", "set", "baseboard", *[f"{strName}={strValue}" for strName, strValue in dictValues.items()])
        self.assertEqual([(s["name"], s["id"], s["new"]) for s in stJson["labels"]], [(strName, iID, dictValues[strName]) for strName, iID in listLabels])
        self.assertEqual({s["name"]: s["value"] for s in self.Json("label", "list", "baseboard")["labels"]}, dictValues)
        self.assertEqual([iID for _, _, _, iID in self.LabelEvents()], list(range(1, 29)))
        self.assertEqual([s[2] for s in self.OperationLog()], [s["operationLog"] for s in stJson["labels"]])
        self.assertEqual((self.pathRoot / SERIAL_NUMBER_FILES[0]).read_bytes(), b"v20")
        self.Good("verify")

    def test_values_at_the_edge_of_what_is_accepted(self):
        self.Provision()
        for strName, strValue, strRead in [
            ("Chassis MAC Address", "00a0c9141e3f", "00A0C9141E3F"), ("Chassis MAC Address", "NONE", "NONE"), ("CLEI Code", "NONE of these", "NONE of these"),
            ("Product Node Type", "", ""), ("Board Part Number", "x" * 15, "x" * 15), ("Product Part Number", "x" * 63, "x" * 63),
            ("Language Code", "007", "7"), ("Mfg.Date", "1999-2-29", "1999-03-01 00:00:00"), ("Mfg.Date", "2024-1-1 9:5:7", "2024-01-01 09:05:00"),
            ("Product Asset Tag", "   ", "   "), ("Product Asset Tag", "[a,b]", "[a,b]"), ("Product Asset Tag", "a=b", "a=b"), ("Product Asset Tag", "show", "show"),
            ("Product Version", "-1", "-1"), ("Product Version", " ~", " ~"),
        ]:
            with self.subTest(strName, value=strValue):
                stJson = self.Json("label", "set", "baseboard", strName, strValue, "--force")  # some look like placeholders
                self.assertEqual(stJson["labels"][0]["new"], strRead)
                self.assertEqual(stJson["notes"], [f"{strName} will read as '{strRead}'"] if strRead != strValue else [])
                self.assertEqual(self.Good("label", "get", "baseboard", strName).strOut, strRead + "\n")

    def test_a_value_that_other_readers_may_stumble_over_is_noted(self):
        self.Provision()
        self.assertIn("  note: Product Asset Tag has one character, and its length byte is 0xc1, which other readers may take for the end of the fields\n",
                      self.Good("label", "set", "psu1", "Product Asset Tag", "x").strOut)

    def test_several_pairs_are_written_one_after_the_other(self):
        self.Provision()
        strOut = self.Good("label", "set", "--id", "1", "Product Asset Tag=RACK7", "Board Part Number=LHPS800-A2", "Mfg.Date=2024-06-01").strOut
        self.assertEqual(strOut, """\
Set psu1 FRU successfully, psu1 Product Asset Tag: RACK7.
Set psu1 FRU successfully, psu1 Board Part Number: LHPS800-A2.
Set psu1 FRU successfully, psu1 Mfg.Date: 2024-06-01.
  Product Asset Tag  - -> RACK7
  Board Part Number  LHPS800-A1 -> LHPS800-A2
  Mfg.Date           2024-02-05 14:10:00 -> 2024-06-01 00:00:00
  note: Mfg.Date will read as '2024-06-01 00:00:00'
""")
        self.assertEqual(self.LabelEvents(), [(3, 3, 0, 23), (3, 3, 0, 14), (3, 3, 0, 10)])
        self.Good("verify", "psu1")


class DryRun(LabelTest):
    def test_nothing_is_touched_and_the_bytes_are_those_of_the_write(self):
        self.Provision()
        dictTree = self.Tree()
        for asArguments in [["baseboard", "Product Serial Number", "LH22024170099"], ["riser", "Product Version=2.0", "Board Serial Number=R1"],
                            ["bmc-card", "Product Product Name=Card"]]:
            with self.subTest(asArguments):
                stDry = self.Json("label", "set", *asArguments, "--dry-run")
                self.AssertUntouched(dictTree)
                self.assertTrue(stDry["dryRun"])
                strTarget = asArguments[0]
                strEeprom, iStart = {"baseboard": (BASEBOARD_EEPROM, 0), "riser": ("bus3-addr0xa2.bin", 0), "bmc-card": ("bus4-addr0xae.bin", 256)}[strTarget]
                abExpected = bytearray(self.Eeprom(strEeprom).read_bytes())
                for stRun in stDry["bytes"]:
                    iOffset, abOld, abNew = iStart + stRun["offset"], bytes.fromhex(stRun["old"]), bytes.fromhex(stRun["new"])
                    self.assertEqual(abExpected[iOffset:iOffset + len(abOld)], abOld)
                    abExpected[iOffset:iOffset + len(abNew)] = abNew
                stWet = self.Json("label", "set", *asArguments)
                self.assertEqual(self.Eeprom(strEeprom).read_bytes(), abExpected)
                for stLabel in stWet["labels"]:
                    stLabel.pop("operationLog")
                self.assertEqual({**stWet, "dryRun": True}, stDry)
                dictTree = self.Tree()

    def test_people_see_old_and_new_and_the_bytes(self):
        self.Provision()
        self.assertEqual(self.Good("label", "set", "baseboard", "Product Serial Number", "LH22024170099", "--dry-run").strOut, """\
baseboard (0x00:0): nothing was written; this would be
  Product Serial Number  LH22024170042 -> LH22024170099
  3 bytes would change
    0x00e9  34 32 -> 39 39
    0x011f  03 -> f7
""")
        self.assertIn("\n  no byte would change\n", self.Good("label", "set", "baseboard", "Product Serial Number", "LH22024170042", "--dry-run").strOut)


class Progress(LabelTest):
    def test_only_on_a_terminal(self):
        self.Provision()
        iOurs, iTheirs = pty.openpty()
        stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "baseboard", "Product Version", "2.2"],
                                     stdout=subprocess.DEVNULL, stderr=iTheirs, env=Environment())
        os.close(iTheirs)
        abErr = b""
        try:
            while abPiece := os.read(iOurs, 4096):
                abErr += abPiece
        except OSError:
            pass  # the other side is gone
        os.close(iOurs)
        self.assertEqual(stProcess.wait(), 0)
        listDone = [int(abDone) for abDone in re.findall(rb"\rwriting baseboard \(0x00:0\): (\d+) of 328 bytes ", abErr)]
        self.assertEqual((listDone, listDone[-1]), (sorted(listDone), 328))
        self.assertTrue(abErr.endswith(b"\r\x1b[K"))
        self.Good("label", "set", "baseboard", "Product Version", "2.3")  # not a word on a pipe


if __name__ == "__main__":
    unittest.main()
