# SPDX-License-Identifier: Apache-2.0
"""fructl diff: two images, field by field."""
import unittest

from encode_support import EncodeTest
from support import EXAMPLES, Image, Texts, ZeroSum


class Diff(EncodeTest):
    def test_the_same_is_0_and_different_is_1_with_every_field(self):
        self.Provision()
        self.assertEqual(self.Good("diff", "baseboard", EXAMPLES / "baseboard.hex").strOut, "same: every field, and every byte that both images have\n")
        stResult = self.Fructl("diff", "psu1", "psu2")
        self.assertEqual((stResult.iCode, stResult.strErr), (1, ""))
        self.assertEqual(stResult.strOut, """\
- psu1 (0x03:0)
+ psu2 (0x03:1)

board info area
  serial number
    - PS8024100311
    + PS8024100312

product info area
  serial number
    - PS8024100311
    + PS8024100312
""")
        stResult = self.Fructl("diff", "psu1", "0x03:1", "--json")
        stJson = stResult.Json()
        self.assertEqual((stResult.iCode, stResult.strErr, stJson["same"], stJson["sameBytes"]), (1, "", False, False))
        self.assertEqual((stJson["a"]["device"]["name"], stJson["b"]["device"]["name"]), ("psu1", "psu2"))
        self.assertEqual(stJson["differences"], [{"area": strArea, "field": "serial number", "a": "PS8024100311", "b": "PS8024100312"}
                                                 for strArea in ("board", "product")])

    def test_areas_fields_and_records_that_only_one_has(self):
        abRecord = bytes([0xC1, 0x82, 2]) + ZeroSum(b"\x07\x08")
        abRecord += ZeroSum(abRecord) + b"\x07\x08"
        pathLeft = self.Write("left.bin", Image({3: bytes(4) + Texts("a1", "", "", "", "", "custom")}))
        pathRight = self.Write("right.bin", Image({3: b"\x19" + bytes(3) + Texts("a1", "b2", "", "", ""), 5: abRecord}))
        stResult = self.Fructl("diff", pathLeft, pathRight, "--json")
        self.assertEqual(stResult.iCode, 1)
        self.assertEqual([(s["area"], s["field"], s["a"], s["b"]) for s in stResult.Json()["differences"]], [
            ("board", "language", "English (0)", "English (25)"),
            ("board", "product name", "", "b2"),
            ("board", "custom field 1", "custom", None),
            ("multiRecord", "record 1", None, "type 0xc1, version 2: 07 08"),
        ])
        self.assertIn("\n  custom field 1\n    - custom\n\nMultiRecord area\n  record 1\n    + type 0xc1, version 2: 07 08\n", self.Fructl("diff", pathLeft, pathRight).strOut)
        self.assertIn("\n  product name\n    - -\n    + b2\n", self.Fructl("diff", pathLeft, pathRight).strOut)

    def test_the_same_fields_in_other_bytes_are_the_same(self):
        pathBinary = self.Write("binary.bin", Image({3: bytes(4) + b"\x02\x12\xab" + Texts("", "", "", "")}))
        pathText = self.Write("text.bin", Image({3: bytes(4) + Texts("12AB", "", "", "", "")}))
        self.assertEqual(self.Good("diff", pathBinary, pathText).strOut, "same: every field; some bytes differ (unused ones, or a text stored in another way)\n")
        self.assertEqual({strKey: self.Json("diff", pathBinary, pathText)[strKey] for strKey in ("same", "sameBytes")}, {"same": True, "sameBytes": False})

    def test_trouble_is_2(self):
        self.Provision()
        self.assertIn("has no device named 'psu9'", self.Bad(2, "diff", "psu1", "psu9"))
        self.assertIn("cannot decode", self.Bad(2, "diff", self.Write("bad.bin", b"\x02" + bytes(8)), "psu1"))
        self.Eeprom("bus2-addr0xa4-switch1.bin").unlink()
        self.assertIn("the EEPROM of psu1 (0x03:0) does not answer", self.Bad(2, "diff", "psu1", "psu2"))
        self.assertIn("there must be two images, and 1 image is named; accepted: A and B, each may be --file FILE", self.Bad(2, "diff", "psu1"))


if __name__ == "__main__":
    unittest.main()
