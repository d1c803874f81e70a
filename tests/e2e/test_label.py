"""fructl label: what a device takes, reading and writing it, every refusal, and that nothing else changes."""
import fcntl
import os
import pty
import re
import signal
import subprocess
import time
import unittest

from support import (BASEBOARD_EEPROM, CHASSIS_TYPES, COMMAND, EVENTS, EXAMPLES, Environment, FructlTest, HexImage, Image, Independent, OPERATE_LOG,
                     ReadIndependently, SERIAL_NUMBER_FILES, Texts)

PSU_EEPROM = "bus2-addr0xa4-switch1.bin"
DEV_EEPROM = "bus5-addr0xa6.bin"
# Labels by the ID ranges that a field flag allows.
FLAG_IDS = {
    0: [], 1: [*range(1, 9), 29], 2: [*range(9, 17), 29], 3: [*range(1, 17), 29], 4: [*range(17, 30)], 5: [*range(1, 9), *range(17, 30)],
    6: [*range(9, 30)], 7: [*range(1, 29)], 8: [*range(1, 5), *range(7, 29)], 9: [*range(10, 17), *range(18, 25)],
}


class LabelTest(FructlTest):
    def Device(self, strName):
        """What a device shows, without its name."""
        dictShown = self.Json("show", strName)
        dictShown.pop("device")
        return dictShown

    def Cached(self, strName, iSize):
        """The cached image, through Read FRU Data, which serves it."""
        abImage = b""
        while len(abImage) < iSize:
            stJson = self.Json("raw", "read", strName, "--offset", len(abImage), "--count", min(128, iSize - len(abImage)))
            abImage += bytes.fromhex(stJson["response"])[2:]
        return abImage

    def OperationLog(self):
        return [(stLine["module"], stLine["result"], stLine["text"], stLine["source"]) for stLine in self.Lines(OPERATE_LOG)]

    def LabelEvents(self):
        return [(stLine["kind"], stLine["componentType"], stLine["instance"], stLine["labelId"])
                for stLine in self.Lines(EVENTS) if stLine["event"] == "labelWritten"]

    def AssertUntouched(self, dictTree):
        dictNow = self.Tree()
        self.assertEqual([strPath for strPath in {**dictTree, **dictNow} if dictTree.get(strPath) != dictNow.get(strPath)], [])


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
                self.assertEqual(self.Bad(1, "label", "set", "dev", "Board Serial Number", "AB"),
                                 "dev (0x20:0) does not take the label 'Board Serial Number' (its field flag is 0); accepted: none")
            self.pathRoot.rename(self.pathTemp / f"root-{iFlag}")

    def test_without_a_device_all_labels_and_without_a_controller(self):
        self.assertEqual([stLabel["id"] for stLabel in self.Json("label", "list")["labels"]], list(range(1, 30)))
        self.assertNotIn("VALUE", self.Good("label", "list").strOut)
        self.assertFalse(self.pathRoot.exists())

    def test_a_damaged_device_still_tells_the_names(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\x02")
        (self.pathRoot / "var/lib/fru/db").rename(self.pathTemp / "db")  # the cache would hide it
        self.pathRoot.rename(self.pathTemp / "old")
        self.ProvisionImage(b"\x02" * 64)
        stResult = self.Fructl("label", "list", "dev")
        self.assertEqual((stResult.iCode, stResult.strOut.count("\n")), (1, 31))
        self.assertIn("cannot decode dev (0x20:0): 0x29000001", stResult.strErr)


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
                self.assertTrue(self.Bad(1, "label", "get", *asArguments).startswith(strLine))

    def test_usage(self):
        self.Provision()
        for asArguments, strLine in [(["get"], "no device is named"), (["get", "psu1"], "no label is named; 'fructl label list' tells their names"),
                                     (["get", "--id", "1", "a", "b"], "'b' is one word too many; accepted: one label's name"),
                                     (["list", "--id", "1", "psu1"], "'psu1' is one word too many; accepted: one device"),
                                     (["set"], "no device is named"), (["set", "psu1"], "no label is named; accepted: NAME VALUE, or NAME=VALUE once or several"),
                                     (["set", "psu1", "Product Version"], "'Product Version' is not NAME=VALUE; accepted: NAME VALUE"),
                                     (["set", "psu1", "Product Version=2", "3"], "'3' is not NAME=VALUE"), ([], "no command is named; accepted: list, get, set")]:
            with self.subTest(asArguments):
                self.assertIn(strLine, self.Bad(2, "label", *asArguments))


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
                                 "  note: a product info area is added\n")
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
                stJson = self.Json("label", "set", "baseboard", strName, strValue)
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
    ("Mfg.Date", "2026-01-01", "it is no date up to the year 2025; accepted: 2024-03-18 or 2024-03-18 09:30:00, wholly with leading zeros or wholly without "
                               "(2024-3-18 9:30:0), up to the year 2025"),
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
                self.assertTrue(self.Bad(1, "label", "set", "psu1" if "Product A" in strName else "baseboard", strName, strValue)
                                .startswith(f"'{strShown}' is refused for '{strName}': {strWhy}"))
        self.AssertUntouched(dictTree)

    def test_a_name_is_refused_with_those_that_the_device_takes(self):
        self.Provision()
        for asArguments, iCode, strLine in [
            (["psu1", "Chassis Type", "Blade"], 1, "psu1 (0x03:0) does not take the label 'Chassis Type' (its field flag is 6); accepted: Language Code, Mfg.Date, "),
            (["baseboard", "Hardware FRU Label", "abc"], 1, "baseboard (0x00:0) does not take the label 'Hardware FRU Label' (its field flag is 7); accepted: Chassis Type"),
            (["psu1", "Hardware FRU Label", "abc"], 1, "the label 'Hardware FRU Label' is kept in the hardware FRU block and not in the FRU image, where 'label' would store nothing"),
            (["psu1", "Product Serial Numbr=AB"], 1, "there is no label 'Product Serial Numbr'; did you mean 'Product Serial Number'"),
            (["psu1", "Product Version=A1", "Board Serial Number=AB", "Product Version=A1"], 2, "'Product Version' is given twice; accepted: each label once"),
            (["psu1", "Product Node Type", "AB"], 1, "psu1 (0x03:0) has no place for 'Product Node Type', which is custom field 1 of the product info area: "
                                                     "its image has no custom fields there; nothing was written"),
            (["nothing", "Product Version", "AB"], 1, f"the controller in {self.pathRoot} has no device named 'nothing'"),
        ]:
            with self.subTest(asArguments):
                self.assertTrue(self.Bad(iCode, "label", "set", *asArguments).startswith(strLine))
        self.assertEqual((self.OperationLog(), self.Lines(EVENTS)), ([], []))

    def test_one_bad_pair_keeps_all_from_being_written(self):
        self.Provision()
        dictTree = self.Tree()
        self.assertIn("'x' is refused for 'Product Version'", self.Bad(1, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=x", "--dry-run"))
        self.AssertUntouched(dictTree)
        abBefore = self.Eeprom(PSU_EEPROM).read_bytes()
        self.Bad(1, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=x")
        self.Bad(1, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Node PSU=AB")
        self.assertEqual((self.Eeprom(PSU_EEPROM).read_bytes(), self.OperationLog()), (abBefore, []))

    def test_a_chassis_label_needs_a_chassis_area(self):
        self.ProvisionImage(Image({3: bytes(4) + Texts("", "", "", "", "")}), fieldFlag=7)
        self.assertIn("dev (0x20:0) has no place for 'Chassis Serial Number', which is the serial number of the chassis info area: its image has no chassis info area",
                      self.Bad(1, "label", "set", "dev", "Chassis Serial Number", "AB"))

    def test_an_image_that_would_not_fit_or_not_be_readable_is_refused(self):
        abImage = Image({3: bytes(4) + Texts("maker", "name", "serial", "part", "file"), 4: b"\x00" + Texts("", "", "", "", "", "", "")})
        self.ProvisionImage(abImage, size=len(abImage) + 8)
        self.assertEqual(self.Bad(1, "label", "set", "dev", "Board Serial Number", "x" * 40),
                         "dev (0x20:0): no image can be made with the new 'Board Serial Number': it would take 96 bytes, and the FRU has 72")
        # An area that would end with the FRU's last byte is written by the library, but no more read.
        self.assertEqual(self.Bad(1, "label", "set", "dev", "Product Version", "12345"),
                         "dev (0x20:0): with the new 'Product Version' the image would not be readable any more: 0x29000001 (the image could not be read or an area "
                         "not decoded) (the library says: Error ProductInfoAreaSize(0x3*8 + 0x6*8) >= FRU_Size(0x48)); an area must end before the FRU does")
        self.assertEqual((self.Eeprom(DEV_EEPROM).read_bytes()[:len(abImage)], self.OperationLog()), (abImage, []))

    def test_a_damaged_image_is_not_written_over(self):
        self.ProvisionImage(Image({3: bytes(4) + Texts("", "", "", "", ""), 5: b"\x03\x82\x02\x00\x00ab"}), fieldFlag=7)
        self.assertIn("its MultiRecords are damaged and could not be kept", self.Bad(1, "label", "set", "dev", "Board Serial Number", "AB"))
        self.pathRoot.rename(self.pathTemp / "first")
        self.ProvisionImage(b"\x02" + bytes(63))
        self.assertIn("cannot decode dev (0x20:0): 0x29000001", self.Bad(1, "label", "set", "dev", "Board Serial Number", "AB"))


class Losses(LabelTest):
    """The library writes the whole image anew; what it cannot write again is not thrown away unasked."""

    def AssertRefusedUnlessForced(self, strLoss):
        abBefore = self.Eeprom(DEV_EEPROM).read_bytes()
        strLine = self.Bad(1, "label", "set", "dev", "Board Serial Number", "NEW-1")
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
        self.assertEqual(self.Bad(1, "label", "set", "dev", "Board Serial Number", "AB", "--force"),
                         "dev (0x20:0): no image can be made with the new 'Board Serial Number': the manufacturer of its board info area would be stored as "
                         "64 characters, and a length byte counts only to 63")

    def test_a_text_with_a_nul_inside(self):
        self.ProvisionImage(Image({3: bytes(4) + b"\xc4ab\x00c" + Texts("", "", "", "")}))
        self.AssertRefusedUnlessForced("board info area, manufacturer")

    def test_the_image_of_a_board_put_in_since(self):
        self.Provision()
        abOther = HexImage(EXAMPLES / "psu2.hex").ljust(256, b"\xff")
        self.Eeprom(PSU_EEPROM).write_bytes(abOther)
        strLine = self.Bad(1, "label", "set", "psu1", "Product Asset Tag", "RACK7")
        self.assertIn("would lose: the EEPROM's own image from byte 0x0034 on, where the cached one, from which the new one is made, differs", strLine)
        self.assertEqual(self.Eeprom(PSU_EEPROM).read_bytes(), abOther)

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


class Trouble(LabelTest):
    def test_an_eeprom_that_refuses_the_write_is_told_though_the_library_reports_success(self):
        self.Provision()
        pathEeprom = self.Eeprom(PSU_EEPROM)
        abBefore = pathEeprom.read_bytes()
        pathEeprom.chmod(0o444)
        strLine = self.Bad(1, "label", "set", "psu1", "Product Asset Tag=RACK7", "Product Version=A2")
        self.assertRegex(strLine, r"^'Product Asset Tag' of psu1 \(0x03:0\) could not be written: the EEPROM holds other bytes than were to be written, from byte 0x[0-9a-f]{4} on "
                                  r"\(0x.., not 0x..\) \(the library says: .*\); not written: 'Product Version'$")
        self.assertEqual(pathEeprom.read_bytes(), abBefore)
        self.assertEqual(self.OperationLog(), [(17, 67, "Failed to set psu1 FRU.", 12)])
        pathEeprom.chmod(0o644)
        self.Good("label", "set", "psu1", "Product Asset Tag", "RACK7")

    def test_an_eeprom_that_is_gone(self):
        self.Provision()
        self.Eeprom(PSU_EEPROM).unlink()
        self.assertIn("the EEPROM of psu1 (0x03:0) does not answer", self.Bad(1, "label", "set", "psu1", "Product Asset Tag", "RACK7"))
        self.assertEqual(self.OperationLog(), [])

    def test_a_serial_number_file_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / "mnt/sdmmc0p4").mkdir(parents=True)
        (self.pathRoot / "mnt/sdmmc0p4/board").write_text("a file where the directory should be")
        stResult = self.Fructl("label", "set", "baseboard", "Product Serial Number=LH-1", "Product Version=2.2")
        self.assertEqual(stResult.iCode, 1)
        self.assertRegex(stResult.strErr, "^fructl: the device holds the new 'Product Serial Number', but its file /mnt/sdmmc0p4/board/ProductSerialNumber on the "
                                          "controller could not be written \\(the library says: making directory .*: Not a directory\\)\n$")
        # The device has both labels, and the log says so.
        self.assertIn("\n  Product Version        2.1 -> 2.2\n", stResult.strOut)
        self.assertEqual([self.Json("show", "baseboard")["product"][strKey] for strKey in ("serialNumber", "version")], ["LH-1", "2.2"])
        self.assertEqual([s[1] for s in self.OperationLog()], [99, 99])

    def test_a_copy_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / "var/network").rmdir()
        self.assertRegex(self.Fructl("label", "set", "baseboard", "Product Serial Number", "LH-1").strErr,
                         r"^fructl: the device holds the new .* its file /var/network/ProductSerialNumber on the controller could not be written")
        self.assertEqual((self.pathRoot / SERIAL_NUMBER_FILES[0]).read_bytes(), b"LH-1")

    def test_an_operation_log_that_cannot_be_written(self):
        self.Provision()
        (self.pathRoot / OPERATE_LOG).mkdir(parents=True)
        self.assertIn("the operation log could not be written; what it lacks: Set psu1 FRU successfully, psu1 Product Version: A2.",
                      self.Bad(1, "label", "set", "psu1", "Product Version", "A2"))
        self.assertEqual(self.Json("show", "psu1")["product"]["version"], "A2")

    def test_a_second_writer_waits_and_is_told_who_holds_the_lock(self):
        self.Provision()
        self.Good("label", "set", "psu1", "Product Version", "A2")
        pathLock = self.pathRoot / "var/lock/fructl.lock"
        with open(pathLock, "r+") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            stLock.write("pid 4711, fructl label set baseboard\n")
            stLock.flush()
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "psu1", "Product Version", "A3"], stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
            time.sleep(0.3)
            self.assertIsNone(stProcess.poll())
            self.Good("label", "set", "psu1", "Product Version", "A4", "--dry-run")  # reads do not wait
            self.assertEqual(self.Bad(1, "label", "set", "psu1", "Product Version", "A5"),
                             f"another command is writing to {self.pathRoot}: pid 4711, fructl label set baseboard; try again when it is done")
            stProcess.wait()
        self.assertEqual(self.Json("show", "psu1")["product"]["version"], "A2")

    def test_writers_at_the_same_time_lose_nothing(self):
        self.Provision()
        listNames = ["Product Version", "Product Asset Tag", "Board Part Number", "Board Manufacturer"]
        listProcesses = [subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "psu1", strName, f"w{i}"], stdout=subprocess.DEVNULL)
                         for i, strName in enumerate(listNames)]
        self.assertEqual([stProcess.wait() for stProcess in listProcesses], [0] * 4)
        self.assertEqual([self.Good("label", "get", "psu1", strName).strOut for strName in listNames], [f"w{i}\n" for i in range(4)])
        self.Good("verify", "psu1")


    def test_an_interrupted_write_is_finished_first(self):
        self.Provision()
        with open(self.Eeprom(PSU_EEPROM), "rb") as stChip:
            fcntl.flock(stChip, fcntl.LOCK_SH)  # readers get in, the write waits
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "psu1", "Product Version=A7", "Product Asset Tag=RACK7"],
                                         stdout=subprocess.DEVNULL)
            fEnd = time.monotonic() + 60
            while not self.WaitsInFlock(stProcess.pid) and time.monotonic() < fEnd:
                time.sleep(0.02)
            stProcess.send_signal(signal.SIGINT)
            time.sleep(0.2)
            self.assertIsNone(stProcess.poll())
        self.assertEqual(stProcess.wait(), -signal.SIGINT)
        # The label that was being written is in the device, the cache and the log; the next one was not begun.
        self.assertEqual([self.Json("show", "psu1")["product"][strKey] for strKey in ("version", "assetTag")], ["A7", ""])
        self.assertEqual([s[2] for s in self.OperationLog()], ["Set psu1 FRU successfully, psu1 Product Version: A7."])
        self.Good("verify", "psu1")

    def WaitsInFlock(self, iPid):
        """Whether the process waits for a lock that somebody else has."""
        with open("/proc/locks") as stLocks:
            return any("->" in strLine and f" {iPid} " in strLine for strLine in stLocks)

    def test_a_device_that_is_served_from_the_cache_needs_its_eeprom_all_the_same(self):
        abImage = Image({3: bytes(4) + Texts("", "", "old", "", "")})
        self.ProvisionImage(abImage, databaseOnly=True)
        self.Good("label", "set", "dev", "Board Serial Number", "NEW-1")
        self.assertEqual(self.Good("label", "get", "dev", "Board Serial Number").strOut, "NEW-1\n")
        self.Eeprom(DEV_EEPROM).unlink()
        self.assertRegex(self.Bad(1, "label", "set", "dev", "Board Serial Number", "NEW-2"),
                         r"^'Board Serial Number' of dev \(0x20:0\) could not be written: the cache holds other bytes than were to be written, from byte 0x.* "
                         r"\(the library says: EEPROM bus5-addr0xa6: No such file")
        self.assertEqual(self.Good("label", "get", "dev", "Board Serial Number").strOut, "NEW-1\n")


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
