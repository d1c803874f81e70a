# SPDX-License-Identifier: Apache-2.0
"""MultiRecords in words: shown, listed, mapped, as JSON and back."""
import json
import re
import unittest

from multirecord_support import Records
from support import CORPUS_IMAGES, FructlTest, Image, NO_CORPUS

PICMG = bytes.fromhex("5a3100")
LOAD = bytes.fromhex("014a013a015a0132006400b80b")
SUPPLY = bytes.fromhex("2602ffff2d142823983300000000323c141b58c2022c010a")
MODULE = PICMG + b"\x16\x00\x41"
CARRIER = PICMG + bytes.fromhex("17009600050272" "32ff740aff")
LONG = LOAD + b"\xaa\xbb"


class Words(FructlTest):
    def Many(self):
        return self.Write("many.bin", Image({5: Records([(2, LOAD), (0, SUPPLY), (0xC0, MODULE), (0xC0, CARRIER), (2, b"\x01"), (0xD0, b"\x01\x02\x03"),
                                                         (2, LONG), (3, b"\x02rack7")])}))

    def test_show_tells_values_with_units_and_reasons(self):
        strOut = self.Good("show", self.Many()).strOut
        self.assertIn("""\
  DC Load (type 0x02, 13 bytes)
    output number     1
    nominal voltage   3.30 V
    minimum voltage   3.14 V
    maximum voltage   3.46 V
    ripple and noise  50 mV
    minimum current   100 mA
    maximum current   3000 mA
  Power Supply Information (type 0x00, 24 bytes)
    overall capacity                 550 W
    peak apparent power              unspecified
    inrush current                   45 A
""", strOut)
        self.assertIn("""\
  PICMG Module Current Requirements (type 0xc0, 6 bytes)
    current  6.5 A
  PICMG Carrier Activation and Current Management (type 0xc0, 15 bytes)
    maximum internal current     15.0 A
    module activation readiness  5 s
    modules                      2
    module 1                     IPMB address 0x72, maximum current 5.0 A
    module 2                     IPMB address 0x74, maximum current 1.0 A
  DC Load (type 0x02, 1 bytes)
    01
    not decoded: it ends after 1 byte, before nominal voltage
  OEM (type 0xd0, 3 bytes)
    01 02 03
    not decoded: an OEM record of manufacturer 0x030201, whose layout is not known
""", strOut)
        self.assertIn("    aa bb\n    not decoded: 2 of its 15 bytes are more than its type has\n", strOut)
        self.assertTrue(strOut.endswith("  Management Access, System Name (type 0x03, 6 bytes)\n    rack7\n"))

    def test_a_list_has_what_says_most(self):
        listLines = self.Good("mr", "list", self.Many()).strOut.splitlines()
        self.assertIn("output number 1, nominal voltage 3.30 V, maximum current 3000 mA", listLines[1])
        self.assertRegex(listLines[3], r"^3 +PICMG Module Current Requirements +0xc0 +6  current 6\.5 A$")
        self.assertTrue(listLines[6].endswith("  01 02 03"))
        self.assertTrue(listLines[8].endswith("  rack7"))

    def test_map_names_the_bytes_inside_a_record(self):
        pathFile = self.Many()
        strOut = self.Good("map", pathFile).strOut
        self.assertRegex(strOut, r"\n  000e  4a 01 +record 1 nominal voltage: 3\.30 V\n")
        self.assertRegex(strOut, r"\n  0030  1b +record 2 predictive failure pin yes, power factor correction yes, autoswitch no, ")
        self.assertRegex(strOut, r"  ff +record 4 module 2, reserved: ff\n")
        listSpans = [stSpan for stSpan in self.Json("map", pathFile)["spans"] if stSpan["field"].endswith(" data")]
        for stSpan in listSpans:
            # The parts are the span's bytes, each once and in order.
            iAt = stSpan["offset"]
            for stPart in stSpan.get("parts", []):
                self.assertEqual(stPart["offset"], iAt)
                iAt += stPart["length"]
            self.assertIn(iAt, (stSpan["offset"] + stSpan["length"], stSpan["offset"]))
        self.assertEqual([len(stSpan.get("parts", [])) for stSpan in listSpans], [7, 16, 4, 12, 0, 0, 8, 2])
        self.assertEqual(listSpans[0]["parts"][1], {"offset": 14, "length": 2, "field": "nominal voltage", "text": "3.30 V"})

    def test_a_wrong_checksum_stands_beside_the_first_value(self):
        abImage = bytearray(self.Many().read_bytes())
        abImage[14] ^= 1
        stResult = self.Fructl("map", self.Write("wrong.bin", abImage))
        self.assertEqual(len(re.findall("record 1 output number: 1  <- the data's checksum is 0x", stResult.strOut)), 1)

    def test_json_has_the_fields_beside_the_bytes_and_goes_back(self):
        pathFile = self.Many()
        stJson = self.Json("show", pathFile)
        listRecords = stJson["multiRecords"]
        self.assertEqual(listRecords[0]["fields"], {
            "outputNumber": 1, "nominalVoltageMillivolts": 3300, "minimumVoltageMillivolts": 3140, "maximumVoltageMillivolts": 3460,
            "rippleAndNoiseMillivolts": 50, "minimumCurrentMilliamperes": 100, "maximumCurrentMilliamperes": 3000})
        self.assertEqual(listRecords[0]["data"], LOAD.hex(" "))
        self.assertIsNone(listRecords[1]["fields"]["peakApparentPowerVoltAmperes"])
        self.assertEqual(listRecords[3]["fields"]["modules"][1], {"ipmbAddress": 0x74, "maximumCurrentMilliamperes": 1000})
        self.assertEqual([("fields" in stRecord, "notDecoded" in stRecord) for stRecord in listRecords],
                         [(True, False)] * 4 + [(False, True)] * 2 + [(True, True), (True, False)])
        self.Good("encode", self.Write("many.json", json.dumps(stJson).encode()), "-o", self.pathTemp / "back.bin")
        self.assertEqual(self.Json("show", self.pathTemp / "back.bin")["multiRecords"], listRecords)

    def Encoded(self, fnChange):
        stJson = self.Json("show", self.Many())
        fnChange(stJson["multiRecords"])
        return self.Write("changed.json", json.dumps(stJson).encode()), "-o", self.pathTemp / "changed.bin"

    def test_fields_that_contradict_the_data_are_refused(self):
        def Change(listRecords):
            listRecords[0]["fields"]["nominalVoltageMillivolts"] = 5000
        self.assertIn("multiRecords[0].fields: contradicts data, which is what is encoded", self.Bad(3, "encode", *self.Encoded(Change)))

    def test_documents_that_name_a_record_by_its_type_are_taken(self):
        def Change(listRecords):
            listRecords[2].update(name="OEM")
            listRecords[2].pop("fields")
        self.Good("encode", *self.Encoded(Change))

    @unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
    def test_records_of_real_boards(self):
        dictSeen = {}
        for pathImage in CORPUS_IMAGES:
            stResult = self.Fructl("show", pathImage, "--json")
            if stResult.iCode == 0:
                dictSeen[pathImage.stem] = stResult.Json()["multiRecords"]
        stModule, stP2p = dictSeen["frugy-damc-fmc25"]
        self.assertEqual(stModule["fields"]["currentMilliamperes"], 6500)
        self.assertEqual(stP2p["fields"]["kind"], "AMC")
        self.assertEqual([stLink["type"] for stLink in stP2p["fields"]["links"][:4]], ["AMC.1 PCI Express"] * 3 + ["AMC.2 Ethernet"])
        self.assertEqual([stRecord["name"].split(",")[0] for stRecord in dictSeen["frubuilder-fru_full"]], ["Management Access"] * 7)


if __name__ == "__main__":
    unittest.main()
