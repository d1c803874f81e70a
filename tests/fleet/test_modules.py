# SPDX-License-Identifier: Apache-2.0
"""The modules, each as the managed host runs it: what they change, what they tell, and how they fail."""
import unittest

from fleet_support import FRUCTL, FleetTest

LABELS = {"psu1": {"Product Serial Number": "PS80241009001", "Product Asset Tag": "A1"}, "riser": {"Board Part Number": "LHRS2-A3"}}


def Fields(dictAnswer):
    return [(dictDevice["device"]["name"], dictLabel["name"], dictLabel["old"], dictLabel["new"])
            for dictDevice in dictAnswer["devices"] for dictLabel in dictDevice["labels"]]


class ModuleTest(FleetTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Value(self, strDevice, strLabel):
        return self.Fructl(self.pathRoot, "label", "get", strDevice, strLabel)["value"]

    def History(self, strDevice):
        return self.Fructl(self.pathRoot, "history", strDevice)["images"]


class Label(ModuleTest):
    def test_labels_are_written_and_all_of_a_device_at_once(self):
        dictAnswer = self.Does("fru_label", {"labels": LABELS})
        self.assertTrue(dictAnswer["changed"])
        self.assertEqual(Fields(dictAnswer), [("psu1", "Product Serial Number", "PS8024100311", "PS80241009001"),
                                              ("psu1", "Product Asset Tag", "", "A1"), ("riser", "Board Part Number", "LHRS2-A2", "LHRS2-A3")])
        self.assertEqual(self.Value("psu1", "Product Asset Tag"), "A1")
        self.assertEqual(self.Value("riser", "Board Part Number"), "LHRS2-A3")
        self.assertEqual([dictImage["command"] for dictImage in self.History("psu1")], ['ansible bmcfru.fru.fru_label: labelSet "psu1"'])

    def test_what_is_there_already_is_not_written_again(self):
        self.Does("fru_label", {"labels": LABELS})
        dictTree, listHistory = self.Tree(self.pathRoot), self.History("psu1")
        dictAnswer = self.Does("fru_label", {"labels": LABELS})
        self.assertFalse(dictAnswer["changed"])
        self.assertEqual(dictAnswer["diff"], [])
        self.assertEqual([dictDevice["changed"] for dictDevice in dictAnswer["devices"]], [False, False])
        self.assertEqual(self.Tree(self.pathRoot), dictTree)
        self.assertEqual(self.History("psu1"), listHistory)

    def test_only_the_device_that_differs_is_written(self):
        self.Does("fru_label", {"labels": LABELS})
        dictAnswer = self.Does("fru_label", {"labels": {**LABELS, "riser": {"Board Part Number": "LHRS2-A4"}}})
        self.assertEqual([dictDevice["changed"] for dictDevice in dictAnswer["devices"]], [False, True])
        self.assertEqual((len(self.History("psu1")), len(self.History("riser"))), (1, 2))

    def test_check_mode_tells_the_same_and_writes_nothing(self):
        dictTree = self.Tree(self.pathRoot)
        dictPlanned = self.Does("fru_label", {"labels": LABELS}, bCheck=True)
        self.assertEqual(self.Tree(self.pathRoot), dictTree)
        dictDone = self.Does("fru_label", {"labels": LABELS})
        self.assertEqual(dictPlanned["diff"], dictDone["diff"])
        self.assertTrue(dictPlanned["changed"] and dictDone["changed"])

    def test_the_diff_has_fields_and_bytes(self):
        dictAnswer = self.Does("fru_label", {"labels": {"riser": {"Board Part Number": "LHRS2-A3"}}}, bCheck=True)
        self.assertEqual(dictAnswer["diff"][0]["before_header"], f"{self.pathRoot}: riser")
        asBefore, asAfter = (dictAnswer["diff"][0][strSide].splitlines() for strSide in ("before", "after"))
        self.assertEqual((asBefore[0], asAfter[0]), ("Board Part Number: LHRS2-A2", "Board Part Number: LHRS2-A3"))
        dictRun = dictAnswer["devices"][0]["bytes"][0]
        self.assertEqual(asBefore[1], f"bytes at {dictRun['offset']:#06x}: {dictRun['old']}")
        self.assertEqual(asAfter[1], f"bytes at {dictRun['offset']:#06x}: {dictRun['new']}")

    def test_one_refused_device_keeps_all_from_being_written_and_all_are_told(self):
        dictTree = self.Tree(self.pathRoot)
        dictAnswer = self.Fails("fru_label", {"labels": {**LABELS, "psu2": {"Product Serial Number": "0000000000"}, "psu7": {"Product Version": "1"}}})
        self.assertEqual([(dictError["device"], dictError["code"], dictError["exitCode"]) for dictError in dictAnswer["errors"]],
                         [("psu2", "refused", 3), ("psu7", "not-found", 4)])
        self.assertEqual(dictAnswer["error"], dictAnswer["errors"][0])
        self.assertTrue(dictAnswer["msg"].startswith("psu2: '0000000000' is refused for 'Product Serial Number': it looks like a placeholder"), dictAnswer["msg"])
        self.assertIn("(and 1 more)", dictAnswer["msg"])
        self.assertEqual(dictAnswer["errors"][1]["accepted"], ["baseboard", "psu1", "psu2", "riser", "bmc-card", "bmc-card-hw"])
        self.assertFalse(dictAnswer["changed"])
        self.assertEqual(self.Tree(self.pathRoot), dictTree)

    def test_force_takes_a_placeholder(self):
        self.Does("fru_label", {"labels": {"psu2": {"Product Serial Number": "0000000000"}}, "force": True})
        self.assertEqual(self.Value("psu2", "Product Serial Number"), "0000000000")

    def test_a_device_that_fails_keeps_none_of_the_others_from_being_written(self):
        (self.pathRoot / "eeprom/bus3-addr0xa2.fault").write_text("protected\n")
        dictAnswer = self.Fails("fru_label", {"labels": {"riser": {"Board Part Number": "LHRS2-A3"}, "psu1": LABELS["psu1"]}})
        self.assertEqual([(dictError["device"], dictError["code"]) for dictError in dictAnswer["errors"]], [("riser", "no-answer")])
        self.assertTrue(dictAnswer["changed"])
        self.assertEqual([dictDevice["device"]["name"] for dictDevice in dictAnswer["devices"]], ["psu1"])
        self.assertEqual(self.Value("psu1", "Product Asset Tag"), "A1")

    def test_what_was_written_counts_as_changed_though_something_beside_it_failed(self):
        (self.pathRoot / "mnt/sdmmc0p4/board/ProductSerialNumber/x").mkdir(parents=True)
        dictAnswer = self.Fails("fru_label", {"labels": {"baseboard": {"Product Serial Number": "LH22024170044"}}})
        self.assertIn("the device holds the new 'Product Serial Number', but", dictAnswer["msg"])
        self.assertTrue(dictAnswer["changed"])
        self.assertEqual(Fields(dictAnswer), [("baseboard", "Product Serial Number", "LH22024170042", "LH22024170044")])

    def test_what_the_library_complains_of_is_there(self):
        (self.pathRoot / "eeprom/bus3-addr0xa2.fault").write_text("absent\n")
        dictError = self.Fails("fru_label", {"labels": {"riser": {"Board Part Number": "LHRS2-A3"}}})["error"]
        self.assertEqual((dictError["code"], dictError["device"], dictError["root"]), ("no-answer", "riser", str(self.pathRoot)))
        self.assertTrue(dictError["diagnostics"])
        self.assertTrue(all(dictSaid["severity"] <= 4 and dictSaid["text"] for dictSaid in dictError["diagnostics"]), dictError)

    def test_all_messages_of_the_library_are_there_with_v(self):
        dictArguments = {"labels": {"psu2": {"Product Serial Number": "0000000000"}}}
        iFew, iAll = (len(self.Fails("fru_label", dictArguments, iVerbosity=i)["error"]["diagnostics"]) for i in (0, 1))
        self.assertLess(iFew, iAll)

    def test_numbers_are_refused_for_yaml_has_changed_them(self):
        dictAnswer = self.Fails("fru_label", {"labels": {"riser": {"Product Version": 2.0}}})
        self.assertEqual(dictAnswer["error"]["accepted"], ["a text in quotes"])
        self.assertIn("is 2.0, which is no text", dictAnswer["msg"])

    def test_null_leaves_a_label_alone(self):
        dictAnswer = self.Does("fru_label", {"labels": {"riser": {"Board Part Number": "LHRS2-A3", "Product Asset Tag": None}, "psu1": {"Product Version": None}}})
        self.assertEqual(Fields(dictAnswer), [("riser", "Board Part Number", "LHRS2-A2", "LHRS2-A3")])

    def test_rows_of_one_device_are_one_write_and_may_be_of_several_controllers(self):
        pathOther = self.pathTemp / "other"
        self.Good("cp", "-a", self.pathRoot, pathOther)
        dictAnswer = self.Does("fru_label", {"rows": [{"device": "riser", "labels": {"Board Part Number": "LHRS2-A3"}},
                                                      {"device": "riser", "labels": {"Product Asset Tag": "A1"}},
                                                      {"device": "riser", "labels": {"Board Part Number": "LHRS2-A3"}, "root": str(pathOther)}]})
        self.assertEqual([(dictDevice["root"], len(dictDevice["labels"])) for dictDevice in dictAnswer["devices"]],
                         [(str(self.pathRoot), 2), (str(pathOther), 1)])
        self.assertEqual(len(self.History("riser")), 1)

    def test_a_label_that_two_rows_set_is_refused_with_the_row(self):
        for listDevices in (("riser", "riser"), ("riser", "8:0")):
            listRows = [{"device": strDevice, "labels": {"Product Version": strDevice}, "where": f"labels.csv:{i}"}
                        for i, strDevice in enumerate(listDevices, 2)]
            dictAnswer = self.Fails("fru_label", {"rows": listRows})
            self.assertEqual(dictAnswer["error"]["code"], "refused")
        self.assertIn("are one device", dictAnswer["msg"])

    def test_the_controller_may_be_named_by_the_environment(self):
        dictAnswer = self.Does("fru_label", {"root": None, "labels": {"riser": {"Board Part Number": "LHRS2-A3"}}}, FRUCTL_ROOT=str(self.pathRoot))
        self.assertEqual(dictAnswer["devices"][0]["root"], str(self.pathRoot))

    def test_without_the_package_the_message_names_it(self):
        dictAnswer = self.Module("fru_label", {"labels": {}}, PYTHONPATH=f"{self.pathTemp}/collections")
        self.assertTrue(dictAnswer["failed"])
        self.assertIn("Failed to import the required Python library (bmcfru)", dictAnswer["msg"])
        self.assertIn("python3-bmcfru", dictAnswer["msg"])


class Image(ModuleTest):
    def test_read_writes_a_file_only_where_it_differs(self):
        pathFile = self.pathTemp / "psu1.bin"
        dictArguments = {"state": "read", "device": "psu1", "path": str(pathFile)}
        self.assertTrue(self.Does("fru_image", dictArguments, bCheck=True)["changed"])
        self.assertFalse(pathFile.exists())
        dictAnswer = self.Does("fru_image", dictArguments)
        self.assertEqual((dictAnswer["changed"], dictAnswer["size"], dictAnswer["file"]), (True, 256, str(pathFile)))
        self.Good(FRUCTL, "--root", self.pathRoot, "read", "psu1", "-o", self.pathTemp / "same.bin")
        self.assertEqual(pathFile.read_bytes(), (self.pathTemp / "same.bin").read_bytes())
        iTime = pathFile.stat().st_mtime_ns
        self.assertFalse(self.Does("fru_image", dictArguments)["changed"])
        self.assertEqual(pathFile.stat().st_mtime_ns, iTime)
        pathFile.write_bytes(b"something else")
        dictDiff = self.Does("fru_image", dictArguments)["diff"][0]
        self.assertEqual(dictDiff["before"], "0x0000: 73 6f 6d 65 74 68 69 6e 67 20 65 6c 73 65\n")
        self.assertEqual(len(dictDiff["after"].splitlines()), 16)

    def test_a_written_image_is_there_and_a_second_time_nothing_is_written(self):
        pathFile = self.pathTemp / "psu1.bin"
        self.Does("fru_image", {"state": "read", "device": "psu1", "path": str(pathFile)})
        dictArguments = {"state": "written", "device": "psu2", "path": str(pathFile)}
        dictTree = self.Tree(self.pathRoot)
        dictPlanned = self.Does("fru_image", dictArguments, bCheck=True)
        self.assertEqual(self.Tree(self.pathRoot), dictTree)
        dictDone = self.Does("fru_image", dictArguments)
        self.assertTrue(dictPlanned["changed"] and dictDone["changed"])
        self.assertEqual(dictPlanned["diff"], dictDone["diff"])
        self.assertIn({"area": "board", "field": "serial number", "old": "PS8024100312", "new": "PS8024100311"}, dictDone["fields"])
        self.assertIn("board serial number: PS8024100311", dictDone["diff"][0]["after"])
        self.assertFalse(self.Fructl(self.pathRoot, "diff", "psu1", "psu2")["differences"])
        dictTree = self.Tree(self.pathRoot)
        self.assertFalse(self.Does("fru_image", dictArguments)["changed"])
        self.assertEqual(self.Tree(self.pathRoot), dictTree)

    def test_an_image_that_is_not_in_order_needs_force(self):
        pathFile = self.pathTemp / "bad.bin"
        self.Does("fru_image", {"state": "read", "device": "psu1", "path": str(pathFile)})
        pathFile.write_bytes(b"\x07" + pathFile.read_bytes()[1:])
        dictArguments = {"state": "written", "device": "psu2", "path": str(pathFile)}
        self.assertEqual(self.Fails("fru_image", dictArguments)["error"]["device"], "psu2")
        self.assertTrue(self.Does("fru_image", {**dictArguments, "force": True})["changed"])

    def test_a_damaged_device_is_recovered_and_one_in_order_is_left_alone(self):
        dictArguments = {"state": "recovered", "device": "baseboard"}
        dictAnswer = self.Does("fru_image", dictArguments)
        self.assertEqual((dictAnswer["changed"], dictAnswer["outcome"]), (False, "fine"))
        pathChip = self.pathRoot / "eeprom/bus1-addr0xa0.bin"
        abGood = pathChip.read_bytes()
        pathChip.write_bytes(b"\x00" * 64 + abGood[64:])
        self.assertTrue(self.Does("fru_image", dictArguments, bCheck=True)["changed"])
        self.assertEqual(pathChip.read_bytes()[:64], b"\x00" * 64)
        dictAnswer = self.Does("fru_image", {**dictArguments, "source": "stored"})
        self.assertEqual((dictAnswer["changed"], dictAnswer["from"]), (True, "stored"))
        self.assertIn("0x0000: 00", dictAnswer["diff"][0]["before"])
        self.assertEqual(pathChip.read_bytes(), abGood)

    def test_files_that_cannot_be_read_or_made_are_told_without_a_traceback(self):
        for strState, strPath, strWhy in (("written", "/nowhere/psu1.bin", "No such file"), ("read", "/nowhere/psu1.bin", "no folder")):
            dictAnswer = self.Fails("fru_image", {"state": strState, "device": "psu1", "path": strPath})
            self.assertIn(strWhy, dictAnswer["msg"])
            self.assertEqual(dictAnswer["error"]["code"], "not-found")

    def test_a_file_is_asked_for_where_one_is_needed(self):
        self.assertIn("path", self.Fails("fru_image", {"state": "read", "device": "psu1"})["msg"])


class Info(ModuleTest):
    def test_several_controllers_are_facts_with_the_names_of_the_command_line(self):
        pathOther = self.pathTemp / "other"
        self.Good("cp", "-a", self.pathRoot, pathOther)
        dictAnswer = self.Does("fru_info", {"root": None, "roots": [str(self.pathRoot), str(pathOther)]})
        self.assertEqual(dictAnswer["ansible_facts"]["bmcfru_controllers"], dictAnswer["controllers"])
        self.assertEqual([dictController["root"] for dictController in dictAnswer["controllers"]], [str(self.pathRoot), str(pathOther)])
        self.assertTrue(dictAnswer["healthy"])
        self.assertFalse(dictAnswer["changed"])
        listListed = self.Fructl(self.pathRoot, "list")["devices"]
        listVerified = self.Fructl(self.pathRoot, "verify")["images"]
        dictShown = self.Fructl(self.pathRoot, "show", "baseboard")
        listDevices = dictAnswer["controllers"][0]["devices"]
        self.assertEqual([{strKey: value for strKey, value in dictDevice.items() if strKey not in ("health", "record", "why")}
                          for dictDevice in listDevices], listListed)
        self.assertEqual(listDevices[0]["record"], {strKey: dictShown[strKey] for strKey in ("chassis", "board", "product", "multiRecords")})
        self.assertEqual(listDevices[0]["health"][0], {strKey: value for strKey, value in listVerified[0].items() if strKey != "device"})
        self.assertIsNone(listDevices[5]["record"])  # it holds a hardware block
        self.assertIn("hardware", listDevices[5]["why"])

    def test_a_damaged_image_is_told_and_no_failure(self):
        pathChip = self.pathRoot / "eeprom/bus1-addr0xa0.bin"
        pathChip.write_bytes(b"\x00" * 64 + pathChip.read_bytes()[64:])
        dictAnswer = self.Does("fru_info", {"devices": ["baseboard", "0x08:0"]})
        self.assertFalse(dictAnswer["healthy"])
        dictBaseboard, dictRiser = dictAnswer["controllers"][0]["devices"]
        self.assertFalse(dictBaseboard["health"][0]["sound"])
        self.assertTrue(dictBaseboard["health"][0]["problems"])
        self.assertEqual(dictBaseboard["image"], "damaged")
        self.assertIsNone(dictBaseboard["record"])
        self.assertEqual((dictRiser["name"], dictRiser["health"][0]["sound"]), ("riser", True))
        self.assertTrue(self.Does("fru_info", {"devices": ["riser"], "records": False})["healthy"])

    def test_a_controller_that_is_not_there_is_told_beside_those_that_are(self):
        dictAnswer = self.Fails("fru_info", {"root": None, "roots": [str(self.pathTemp / "none"), str(self.pathRoot)]})
        self.assertEqual(dictAnswer["error"]["code"], "not-found")
        self.assertEqual([dictController["healthy"] for dictController in dictAnswer["controllers"]], [False, True])
        self.assertEqual(dictAnswer["controllers"][0]["error"], dictAnswer["error"])

    def test_a_device_that_is_not_there_is_answered_with_those_that_are(self):
        dictAnswer = self.Fails("fru_info", {"devices": ["psu7"]})
        self.assertIn("did you mean 'psu1'", dictAnswer["msg"])

if __name__ == "__main__":
    unittest.main()
