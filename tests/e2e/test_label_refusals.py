# SPDX-License-Identifier: Apache-2.0
"""fructl label set: every refusal, and that nothing is touched then."""
import unittest

from label_support import DEV_EEPROM, LabelTest, PSU_EEPROM
from support import CHASSIS_TYPES, EVENTS, Image, Texts

# Name, value, and what the refusal says behind "'VALUE' is refused for 'NAME': ".
VALUE_REFUSALS = [
    ("Product Serial Number", "x", "it has 1 character; accepted: 2 to 63 printable ASCII characters"),
    ("Product Serial Number", "", "it has 0 characters; accepted: 2 to 63 printable ASCII characters"),
    ("Product Serial Number", "x" * 64, "it has 64 characters; accepted: 2 to 63 printable ASCII characters"),
    ("Product Asset Tag", "x" * 79, "it has 79 characters; accepted: up to 63 printable ASCII characters"),
    ("Product Asset Tag", "x" * 80, "it has 80 bytes, and a request holds 79; accepted: up to 63 printable ASCII characters"),
    ("Board Part Number", "x" * 16, "it has 16 characters; accepted: 2 to 15 printable ASCII characters"),
    ("Chassis MAC Address", "00:a0:c9:14:1e:3f", "it has 17 characters; accepted: 12 hexadecimal digits without separators, such as 02005E1000A0, or NONE"),
    ("Chassis MAC Address", "00a0c9141e3", "it is no MAC address; accepted: 12 hexadecimal digits without separators, such as 02005E1000A0, or NONE"),
    ("Chassis MAC Address", "00a0c9141e3g", "it is no MAC address"),
    ("Chassis MAC Address", "none", "it is no MAC address"),
    ("Board Serial Number", "   ", "it is blank; accepted: 2 to 63 printable ASCII characters"),
    ("Chassis Location Node ID", "", "it is blank; accepted: up to 20 printable ASCII characters, or NONE"),
    ("Product Node Type", "x", "a custom field of one character would begin with 0xc1, the mark that ends the fields; accepted: up to 63"),
    ("Board Top Serial Number", "x", "a custom field of one character"),
    ("Product Version", "NONE", "it begins with NONE, which stands for an absent value, and this label always has one; accepted: 2 to 63"),
    ("Chassis Customer Serial Number", "NONE", "it begins with NONE"),
    ("Chassis Type", "rack mount chassis", "it is no chassis type; did you mean 'Rack Mount Chassis'?; accepted: " + ", ".join(CHASSIS_TYPES)),
    ("Chassis Type", "Zeppelin", "it is no chassis type; accepted: Unspecified, "),
    ("Mfg.Date", "2026-01-01", "it lies beyond 2025-12-31, with which the library's rule for labels ends; 'edit' and 'encode' take it; accepted: 2024-03-18 or "
                               "2024-03-18 09:30:00, wholly with leading zeros or wholly without (2024-3-18 9:30:0), 1996-01-01 to 2025-12-31, now, or unspecified"),
    ("Mfg.Date", "1995-12-31", "it lies before 1996-01-01, from which on the three bytes count minutes; accepted: 2024-03-18 or "),
    ("Mfg.Date", "1995-1-1 0:0:0", "it lies before 1996-01-01, from which on the three bytes count minutes; accepted: 2024-03-18 or "),
    ("Mfg.Date", "2027-11-24 20:16:00", "it lies beyond 2027-11-24 20:15:00, where the three bytes end and start again at 0 (--wrap of 'edit' and 'encode' "),
    ("Mfg.Date", "2024-02-30", "it is no date"),
    ("Mfg.Date", "2024-4-05", "it is no date"),
    ("Mfg.Date", "today", "it has 5 characters; accepted: 2024-03-18 or "),
    ("Language Code", "137", "it is too large; accepted: 0 to 136, in decimal digits"),
    ("Product Language Code", "1a", "it is no number; accepted: 0 to 136, in decimal digits"),
    ("Board Product Name", "Gr\u00fcn", "its byte 3 is 0xc3; accepted: 2 to 63 printable ASCII characters"),
    ("Product Asset Tag", "\t\t", "its byte 1 is 0x09; accepted: up to 63 printable ASCII characters"),
]


class Refusals(LabelTest):
    def test_a_value_is_refused_with_the_rule_and_nothing_is_touched(self):
        self.Provision()
        dictTree = self.Tree()
        for strName, strValue, strWhy in VALUE_REFUSALS:
            with self.subTest(strName, value=strValue):
                strShown = strValue.replace("\t", "\\x09").replace("\u00fc", "\\xc3\\xbc")
                self.assertTrue(self.Bad(3, "label", "set", "psu1" if "Product A" in strName else "baseboard", strName, strValue)
                                .startswith(f"'{strShown}' is refused for '{strName}': {strWhy}"))
        self.AssertUntouched(dictTree)

    def test_a_name_is_refused_with_those_that_the_device_takes(self):
        self.Provision()
        for asArguments, iCode, strLine in [
            (["psu1", "Chassis Type", "Blade"], 3, "psu1 (0x03:0) does not take the label 'Chassis Type' (its field flag is 6); accepted: Language Code, Mfg.Date, "),
            (["baseboard", "Hardware FRU Label", "abc"], 3, "baseboard (0x00:0) does not take the label 'Hardware FRU Label' (its field flag is 7); accepted: Chassis Type"),
            (["psu1", "Hardware FRU Label", "abc"], 3, "the label 'Hardware FRU Label' is kept in the hardware FRU block and not in the FRU image, where 'label' would store nothing"),
            (["psu1", "Product Serial Numbr=AB"], 3, "there is no label 'Product Serial Numbr'; did you mean 'Product Serial Number'"),
            (["psu1", "Product Version=A1", "Board Serial Number=AB", "Product Version=A1"], 2, "'Product Version' is given twice; accepted: each label once"),
            (["psu1", "Product Node Type", "AB"], 3, "psu1 (0x03:0) has no place for 'Product Node Type', which is custom field 1 of the product info area: "
                                                     "its image has no custom fields there; nothing was written"),
            (["nothing", "Product Version", "AB"], 4, f"the controller in {self.pathRoot} has no device named 'nothing'"),
        ]:
            with self.subTest(asArguments):
                self.assertTrue(self.Bad(iCode, "label", "set", *asArguments).startswith(strLine))
        self.assertEqual((self.OperationLog(), self.Lines(EVENTS)), ([], []))

    def test_one_bad_pair_keeps_all_from_being_written(self):
        self.Provision()
        dictTree = self.Tree()
        self.assertIn("'x' is refused for 'Product Version'", self.Bad(3, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=x", "--dry-run"))
        self.AssertUntouched(dictTree)
        abBefore = self.Eeprom(PSU_EEPROM).read_bytes()
        self.Bad(3, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=x")
        self.Bad(3, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Node PSU=AB")
        self.assertEqual((self.Eeprom(PSU_EEPROM).read_bytes(), self.OperationLog()), (abBefore, []))

    def test_a_chassis_label_needs_a_chassis_area(self):
        self.ProvisionImage(Image({3: bytes(4) + Texts("", "", "", "", "")}), fieldFlag=7)
        self.assertIn("dev (0x20:0) has no place for 'Chassis Serial Number', which is the serial number of the chassis info area: its image has no chassis info area",
                      self.Bad(3, "label", "set", "dev", "Chassis Serial Number", "AB"))

    def test_an_image_that_would_not_fit_or_not_be_readable_is_refused(self):
        abImage = Image({3: bytes(4) + Texts("maker", "name", "serial", "part", "file"), 4: b"\x00" + Texts("", "", "", "", "", "", "")})
        self.ProvisionImage(abImage, size=len(abImage) + 8)
        self.assertEqual(self.Bad(3, "label", "set", "dev", "Board Serial Number", "xy" * 20),
                         "dev (0x20:0): no image can be made with the new 'Board Serial Number': it would take 96 bytes, and the FRU has 72")
        # An area that would end with the FRU's last byte is written by the library, but no more read.
        self.assertEqual(self.Bad(3, "label", "set", "dev", "Product Version", "12345"),
                         "dev (0x20:0): with the new 'Product Version' the image would not be readable any more: 0x29000001 (the image could not be read or an area "
                         "not decoded) (the library says: Error ProductInfoAreaSize(0x3*8 + 0x6*8) >= FRU_Size(0x48)); an area must end before the FRU does")
        self.assertEqual((self.Eeprom(DEV_EEPROM).read_bytes()[:len(abImage)], self.OperationLog()), (abImage, []))

    def test_a_damaged_image_is_not_written_over(self):
        self.ProvisionImage(Image({3: bytes(4) + Texts("", "", "", "", ""), 5: b"\x03\x82\x02\x00\x00ab"}), fieldFlag=7)
        self.assertIn("its MultiRecords are damaged and could not be kept", self.Bad(6, "label", "set", "dev", "Board Serial Number", "AB"))
        self.pathRoot.rename(self.pathTemp / "first")
        self.ProvisionImage(b"\x02" + bytes(63))
        self.assertIn("cannot decode dev (0x20:0): 0x29000001", self.Bad(6, "label", "set", "dev", "Board Serial Number", "AB"))


if __name__ == "__main__":
    unittest.main()
