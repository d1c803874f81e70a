# SPDX-License-Identifier: Apache-2.0
"""fructl label list and get: what a device takes, and its values."""
import unittest

from label_support import LabelTest
from support import BASEBOARD_EEPROM, Image, Texts

# Labels by the ID ranges that a field flag allows.
FLAG_IDS = {
    0: [], 1: [*range(1, 9), 29], 2: [*range(9, 17), 29], 3: [*range(1, 17), 29], 4: [*range(17, 30)], 5: [*range(1, 9), *range(17, 30)],
    6: [*range(9, 30)], 7: [*range(1, 29)], 8: [*range(1, 5), *range(7, 29)], 9: [*range(10, 17), *range(18, 25)],
}


class List(LabelTest):
    def test_what_a_device_takes_with_limits_and_values(self):
        self.Provision()
        stJson = self.Json("label", "list", "baseboard")
        self.assertEqual((stJson["device"]["name"], stJson["fieldFlag"]), ("baseboard", 7))
        self.assertEqual([stLabel["id"] for stLabel in stJson["labels"]], FLAG_IDS[7])
        dictByName = {stLabel["name"]: stLabel for stLabel in stJson["labels"]}
        self.assertEqual(dictByName["Chassis MAC Address"], {
            "id": 5, "name": "Chassis MAC Address", "area": "chassis", "field": "custom field 2", "minLength": 4, "maxLength": 12, "noneAllowed": True,
            "accepts": "12 hexadecimal digits", "powerSupplyField": None, "value": "02005E1000A0"})
        self.assertEqual(dictByName["Board Part Number"]["powerSupplyField"], 4)
        dictExpected = {"Chassis Type": "Rack Mount Chassis", "Chassis Location Node ID": "R07-U12", "Language Code": "0", "Mfg.Date": "2024-03-18 09:30:00",
                        "Board Top Serial Number": "TOP24170099", "Product Asset Tag": "RACK7-UNIT12", "Product Node Power": "800W"}
        self.assertEqual({strName: dictByName[strName]["value"] for strName in dictExpected}, dictExpected)

    def test_people_get_a_table_and_are_told_of_names_with_two_meanings(self):
        self.Provision()
        strOut = self.Good("label", "list", "riser").strOut
        self.assertTrue(strOut.startswith("LABEL                    AREA      LENGTH  NONE  ACCEPTS                          VALUE\n"), strOut)
        self.assertIn("\nBoard Serial Number      board     2-63    no    text                             RS2240900058\n", strOut)
        self.assertIn("\nBoard Top Serial Number  board     0-20    yes   text, but not one character      (no custom fields there)\n", strOut)
        self.assertIn("\nProduct Asset Tag        product   0-63    no    text                             (no product info area)\n", strOut)
        self.assertIn("\nHardware FRU Label       hardware  1-31    no    bytes of the hardware FRU block  (not in the FRU image)\n", strOut)
        self.assertIn("\nMfg.Date, Board Manufacturer, Board Product Name, Board Serial Number, Board Part Number: power-supply fields have these names "
                      "too; here they are the board info area's fields, on power supplies as well.\n", strOut)

    def test_the_field_flag_decides(self):
        for iFlag, listIDs in FLAG_IDS.items():
            self.ProvisionImage(Image({3: bytes(4) + Texts("", "", "", "", "")}), fieldFlag=iFlag)
            with self.subTest(iFlag):
                self.assertEqual([stLabel["id"] for stLabel in self.Json("label", "list", "dev")["labels"]], listIDs)
            if iFlag == 0:
                self.assertEqual(self.Good("label", "list", "dev").strOut, "dev (0x20:0) takes no labels: its field flag is 0\n")
                self.assertEqual(self.Bad(3, "label", "set", "dev", "Board Serial Number", "AB"),
                                 "dev (0x20:0) does not take the label 'Board Serial Number' (its field flag is 0); accepted: none")
            self.pathRoot.rename(self.pathTemp / f"root-{iFlag}")

    def test_without_a_device_all_labels_and_without_a_controller(self):
        self.assertEqual([stLabel["id"] for stLabel in self.Json("label", "list")["labels"]], list(range(1, 30)))
        self.assertNotIn("VALUE", self.Good("label", "list").strOut)
        self.assertFalse(self.pathRoot.exists())

    def test_a_damaged_device_still_tells_the_names(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\x02")
        (self.pathRoot / "var/lib/fru/fru.db").rename(self.pathTemp / "db")  # the cache would hide it
        self.pathRoot.rename(self.pathTemp / "old")
        self.ProvisionImage(b"\x02" * 64)
        stResult = self.Fructl("label", "list", "dev")
        self.assertEqual((stResult.iCode, stResult.strOut.count("\n")), (6, 31))
        self.assertIn("cannot decode dev (0x20:0): 0x29000002 (the common header is invalid); byte 0x0000 ", stResult.strErr)


class Get(LabelTest):
    def test_a_value_for_people_and_for_programs(self):
        self.Provision()
        for strName, strValue in [("Product Serial Number", "LH22024170042"), ("Mfg.Date", "2024-03-18 09:30:00"), ("Product Language Code", "0"),
                                  ("Chassis Type", "Rack Mount Chassis"), ("Chassis MAC Address Count", "04")]:
            self.assertEqual(self.Good("label", "get", "baseboard", strName).strOut, strValue + "\n")
        stJson = self.Json("label", "get", "--id", "1", "Product Asset Tag")
        self.assertEqual((stJson["device"]["name"], stJson["id"], stJson["value"]), ("psu1", 23, ""))

    def test_what_is_not_there_is_told(self):
        self.Provision()
        for asArguments, strLine in [
            (["riser", "Product Version"], "riser (0x08:0) has no 'Product Version': its image has no product info area"),
            (["psu1", "Product Node PSU"], "psu1 (0x03:0) has no 'Product Node PSU': its image has no custom fields there"),
            (["baseboard", "Hardware FRU Label"], "the label 'Hardware FRU Label' is kept in the hardware FRU block, not in the FRU image"),
            (["baseboard", "product serial number"], "there is no label 'product serial number'; did you mean 'Product Serial Number'"),
            (["baseboard", "qqqq"], "there is no label 'qqqq'; 'fructl label list' tells all names"),
            (["baseboard", "\x1b[m"], "there is no label '\\x1b[m'"),
        ]:
            with self.subTest(asArguments):
                self.assertTrue(self.Bad(3, "label", "get", *asArguments).startswith(strLine))

    def test_usage(self):
        self.Provision()
        self.assertIn("there is no label 'a'", self.Bad(3, "label", "get", "--id", "1", "a", "b"))
        for asArguments, strLine in [(["get"], "no device is named"), (["get", "psu1"], "no label is named; 'fructl label list' tells their names"),
                                     (["get", "--id", "1", "Mfg.Date", "--all"], "labels are named, and --all asks for all; accepted: one of them"),
                                     (["list", "--id", "1", "psu1"], "'psu1' is one word too many; accepted: one device"),
                                     (["set"], "no device is named"), (["set", "psu1"], "no label is named; accepted: NAME VALUE, or NAME=VALUE once or several"),
                                     (["set", "psu1", "Product Version"], "'Product Version' is not NAME=VALUE; accepted: NAME VALUE"),
                                     (["set", "psu1", "Product Version=2", "3"], "'3' is not NAME=VALUE"), ([], "no command is named; accepted: list, get, set")]:
            with self.subTest(asArguments):
                self.assertIn(strLine, self.Bad(2, "label", *asArguments))


if __name__ == "__main__":
    unittest.main()
