# SPDX-License-Identifier: Apache-2.0
"""fructl label set: what a new image would lose is not thrown away unasked."""
import unittest

from label_support import DEV_EEPROM, LabelTest, PSU_EEPROM
from support import EXAMPLES, HexImage, Image, Texts


class Losses(LabelTest):
    """The library writes the whole image anew; what it cannot write again is not thrown away unasked."""

    def AssertRefusedUnlessForced(self, strLoss):
        abBefore = self.Eeprom(DEV_EEPROM).read_bytes()
        strLine = self.Bad(3, "label", "set", "dev", "Board Serial Number", "NEW-1")
        self.assertIn(f"refused, for the library writes the whole image of dev (0x20:0) anew and would lose: {strLoss}", strLine)
        self.assertEqual(self.Eeprom(DEV_EEPROM).read_bytes(), abBefore)
        self.assertIn(f"  lost: {strLoss}", self.Good("label", "set", "dev", "Board Serial Number", "NEW-1", "--dry-run").strOut)
        self.assertEqual(self.Eeprom(DEV_EEPROM).read_bytes(), abBefore)
        self.Good("label", "set", "dev", "Board Serial Number", "NEW-1", "--force")
        self.assertEqual(self.Json("show", "dev")["board"]["serialNumber"], "NEW-1")

    def test_a_bcd_field(self):
        self.ProvisionImage(Image({3: bytes(4) + b"\x42\x12\x34" + Texts("", "", "", "")}))
        self.AssertRefusedUnlessForced("board info area, manufacturer (BCD plus 1234, decoded as an empty text)")

    def test_opaque_internal_use_data(self):
        self.ProvisionImage(Image({1: b"\x01\xc4" + bytes(range(0x31, 0x50)), 3: bytes(4) + Texts("", "", "", "", "")}))
        self.AssertRefusedUnlessForced("internal use area, more, not decoded")

    def test_binary_data_that_is_too_long_as_text(self):
        self.ProvisionImage(Image({3: bytes(4) + b"\x20" + bytes(32) + Texts("", "", "", "")}))
        self.assertEqual(self.Bad(3, "label", "set", "dev", "Board Serial Number", "AB", "--force"),
                         "dev (0x20:0): no image can be made with the new 'Board Serial Number': the manufacturer of its board info area would be stored as "
                         "64 characters, and a length byte counts only to 63; 'fructl edit' leaves it as it is")

    def test_a_text_with_a_nul_inside(self):
        self.ProvisionImage(Image({3: bytes(4) + b"\xc4ab\x00c" + Texts("", "", "", "")}))
        self.AssertRefusedUnlessForced("board info area, manufacturer")

    def test_the_image_of_a_board_put_in_since(self):
        self.Provision()
        abOther = HexImage(EXAMPLES / "psu2.hex").ljust(256, b"\xff")
        self.Eeprom(PSU_EEPROM).write_bytes(abOther)
        strLine = self.Bad(3, "label", "set", "psu1", "Product Asset Tag", "RACK7")
        self.assertIn("would lose: the EEPROM's own image from byte 0x0034 on, where the cached one, from which the new one is made, differs", strLine)
        self.assertIn("'fructl recover' puts both in order", strLine)
        self.assertEqual(self.Eeprom(PSU_EEPROM).read_bytes(), abOther)
        self.Good("recover", "psu1")
        self.Good("label", "set", "psu1", "Product Asset Tag", "RACK7")
        self.assertEqual(self.Json("show", "psu1")["board"]["serialNumber"], "PS8024100312")

    def test_texts_stored_in_another_way_are_kept_and_told(self):
        self.ProvisionImage(Image({3: bytes(4) + b"\x02\x12\xab" + b"\x83\x29\xdc\xa6" + Texts("", "", "")}))
        strOut = self.Good("label", "set", "dev", "Board Serial Number", "NEW-1").strOut
        self.assertIn("  note: board info area, manufacturer is stored as 8-bit text from now on, not as binary\n", strOut)
        self.assertIn("  note: board info area, product name is stored as 8-bit text from now on, not as 6-bit ASCII\n", strOut)
        stBoard = self.Json("show", "dev")["board"]
        self.assertEqual((stBoard["manufacturer"], stBoard["productName"]), ("12AB", "IPMI"))

    def test_a_baseboard_is_filled_up_to_its_custom_fields(self):
        self.ProvisionImage(Image({2: b"\x17" + Texts("", "", "mine"), 4: b"\x00" + Texts("", "", "", "", "", "", "")}), fieldFlag=7,
                            recoveryImage={"path": "/usr/upgrade/fru/BaseBoard.bin", "file": "image.bin"})
        strOut = self.Good("label", "set", "dev", "Product Node Power", "800W").strOut
        self.assertIn("  note: chassis info area: an empty custom field 5 is added\n", strOut)
        self.assertEqual([self.Json("show", "dev")[strArea]["customFields"] for strArea in ("chassis", "product")],
                         [["mine", "", "", "", ""], ["", "", "", "800W"]])


if __name__ == "__main__":
    unittest.main()
