# SPDX-License-Identifier: Apache-2.0
"""fructl lint: what is in order as an image, and still says nothing or something wrong."""
import unittest

from encode_support import EncodeTest
from support import EXAMPLES

GOOD = {"board": {"mfgDate": "2024-03-18", "manufacturer": "Lindenhain", "productName": "Riser", "serialNumber": "RS1", "partNumber": "PN-1"}}


class Lint(EncodeTest):
    def Made(self, strName, dictArea, **dictMore):
        return self.Encode({"board": {**GOOD["board"], **dictArea}, **dictMore}, strName=strName)

    def Findings(self, *asTargets):
        stResult = self.Fructl("--json", "lint", *asTargets)
        stJson = stResult.Json()
        self.assertEqual(stResult.iCode, 1 if stJson["findings"] else 0, stResult.strErr)
        return [(stFinding["rule"], stFinding["area"], stFinding["field"], stFinding["value"]) for stFinding in stJson["findings"]]

    def test_the_example_has_nothing_to_find(self):
        self.Provision()
        self.assertEqual(self.Good("lint").strOut, "5 images looked at, nothing found\n")
        self.assertEqual(self.Json("lint"), {"checked": 5, "findings": []})

    def test_each_rule_finds_its_own(self):
        for dictArea, listExpected in (
            ({}, []),
            ({"serialNumber": "To be filled by O.E.M."}, [("placeholder", "board", "serial number", "To be filled by O.E.M.")]),
            ({"serialNumber": "0000000000"}, [("placeholder", "board", "serial number", "0000000000")]),
            ({"partNumber": "    "}, [("placeholder", "board", "part number", "    ")]),
            ({"manufacturer": "Default string"}, [("placeholder", "board", "manufacturer", "Default string")]),
            ({"serialNumber": " RS1"}, [("blanks", "board", "serial number", " RS1")]),
            ({"serialNumber": "RS 1"}, [("blanks", "board", "serial number", "RS 1")]),
            ({"productName": "Riser  Card"}, [("blanks", "board", "product name", "Riser  Card")]),
            ({"productName": "Riser Card"}, []),
            ({"mfgDate": None}, [("date-unset", "board", "manufacturing date", "unspecified")]),
            ({"mfgDate": "2027-11-24 20:15:00"}, [("date-future", "board", "manufacturing date", "2027-11-24 20:15:00")]),
            ({"serialNumber": ""}, [("no-serial", None, None, None)]),
        ):
            with self.subTest(dictArea):
                self.assertEqual(self.Findings(self.Made("one.bin", dictArea)), listExpected)
        self.assertEqual(self.Findings(self.Write("bad.bin", bytes(64))), [("unreadable", None, None, None)])

    def test_doubles_are_found_among_all_images_that_are_named(self):
        pathOne, pathTwo, pathThree = (self.Made(f"{i}.bin", {"serialNumber": strSerial}) for i, strSerial in enumerate(("RS1", "RS1", "RS2")))
        strDouble = ("double", "board", "serial number", "RS1")
        self.assertEqual(self.Findings(pathOne, pathThree, pathTwo), [strDouble, strDouble])
        strOut = self.Fructl("lint", pathOne, pathThree, pathTwo).strOut
        self.assertIn(f"{pathTwo} has it, too", strOut)
        self.Provision()
        self.Good("label", "set", "psu2", "Product Serial Number", "PS8024100311")
        self.assertEqual(self.Findings(), [("double", "product", "serial number", "PS8024100311")] * 2)
        self.assertEqual(self.Findings("psu1"), [])
        self.assertEqual(self.Findings("psu1", EXAMPLES / "riser.hex", "bmc-card"), [])

    def test_a_servers_unique_id_belongs_to_one(self):
        self.Provision()
        self.assertIn(("double", "multiRecord", "record 2", "1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"), self.Findings("baseboard", EXAMPLES / "baseboard.hex"))

    def test_people_see_a_table_and_one_line(self):
        stResult = self.Fructl("lint", self.Made("one.bin", {"serialNumber": "RS1 "}))
        self.assertEqual((stResult.iCode, stResult.strErr), (1, "fructl: lint: 1 finding in 1 image\n"))
        self.assertRegex(stResult.strOut, r"^IMAGE +FIELD +RULE +VALUE +WHAT\n.*one\.bin +board info area, serial number +blanks +'RS1 ' +it ends with a blank\n$")


if __name__ == "__main__":
    unittest.main()
