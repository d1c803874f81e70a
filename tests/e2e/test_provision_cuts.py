# SPDX-License-Identifier: Apache-2.0
"""fructl provision killed before every call that changes a file, and again while it is finished: the old controller or the new one,
whole; and nothing of the old one stays with the new one."""
import os
import unittest

from cut_support import STEP, CutTest
from support import EXAMPLES, Described, FructlTest

OLD_FILES = ["mnt/sdmmc0p4/board/ProductSerialNumber", "var/network/ProductSerialNumber", "conf/capability.ini", "conf/features.json",
             "conf/oempack/bmc/CID_OEM.conf", "usr/upgrade/fru/BaseBoard.bin", "eeprom/bus3-addr0xa2.bin", "eeprom/bus3-addr0xa2.fault"]


def Smaller(dictDescription, _):
    """One device less, another image, no stored image, no OEM texts."""
    dictDescription["devices"] = [stDevice for stDevice in dictDescription["devices"] if stDevice["name"] != "riser"]
    for stDevice in dictDescription["devices"]:
        stDevice.pop("recoveryImage", None)
        if stDevice["name"] == "psu1":
            stDevice["image"] = "psu2.hex"
    dictDescription.pop("conf", None)


class ProvisionCuts(Described, CutTest):
    def setUp(self):
        FructlTest.setUp(self)  # without a controller

    def State(self):
        """Every file of the controller with its contents, and what the controller says of its devices."""
        stResult = self.Fructl("--json", "list")
        self.assertIn(stResult.iCode, (0, 4), stResult.strErr)
        dictState = {"list": stResult.strOut if stResult.iCode == 0 else None}
        for pathFile in sorted(self.pathRoot.rglob("*")):
            strFile = str(pathFile.relative_to(self.pathRoot))
            if pathFile.is_file() and not strFile.startswith(("var/lib/fru/fru.db", "var/log", "var/lock")) and ".bmcfru-" not in strFile:
                dictState[strFile] = pathFile.read_bytes()
        return dictState, stResult.strErr if stResult.iCode == 0 else ""

    def AssertWhole(self, asCommand, iAtLeast):
        pathBase = self.Save("base")
        dictOld, _ = self.State()
        self.Good(*asCommand)
        dictNew, _ = self.State()
        self.assertTrue(dictOld != dictNew)
        iPoints = iNew = 0
        listHalf = []
        for strPoint in self.Points(pathBase, *asCommand):
            if (self.pathRoot / "var/lib/fru/journal/000000.json").exists() and len(listHalf) < 60:
                listHalf.append(self.Save(f"half{iPoints}"))
            dictNow, strErr = self.State()
            self.assertTrue(dictNow in (dictOld, dictNew), f"killed at {strPoint}: {Difference(dictNow, dictOld)} and {Difference(dictNow, dictNew)}; {strErr}")
            if strErr:
                self.assertRegex(strErr, r"^fructl: warning: the change to another controller that was cut short \(.*\) is finished now\n$")
            iPoints += 1
            iNew += dictNow == dictNew
        self.assertGreaterEqual(iPoints, iAtLeast // STEP)
        self.assertTrue(0 < iNew < iPoints, f"{iNew} of {iPoints}")
        print(f"{iPoints} kills: {iNew} times the new controller")
        # Again while the next command finishes it, at two places.
        for pathHalf in listHalf[::-(-len(listHalf) // 2)]:
            for strPoint in self.Points(pathHalf, "list"):
                dictNow, strErr = self.State()
                self.assertTrue(dictNow == dictNew, f"{pathHalf.name}, finishing killed at {strPoint}: {Difference(dictNow, dictNew)}; {strErr}")

    def test_a_first_one_is_whole_or_not_there(self):
        self.pathRoot.mkdir()
        self.AssertWhole(["provision", str(EXAMPLES / "controller.json")], 60)

    def test_one_in_the_place_of_another_is_the_one_or_the_other(self):
        self.Provision()
        self.Good("label", "set", "baseboard", "Product Serial Number", "OLD-1")
        self.AssertWhole(["provision", str(self.Describe(Smaller)), "--force"], 60)


def Difference(dictOne, dictOther):
    return [strKey for strKey in {**dictOne, **dictOther} if dictOne.get(strKey) != dictOther.get(strKey)]


class Lingering(Described):
    def setUp(self):
        super().setUp()
        self.Provision()

    def test_nothing_of_the_old_controller_stays(self):
        self.Good("label", "set", "baseboard", "Product Serial Number", "OLD-1")
        (self.pathRoot / "eeprom/bus3-addr0xa2.fault").write_text("busy 3\n")
        self.assertEqual([strFile for strFile in OLD_FILES if not (self.pathRoot / strFile).exists()], [])
        self.Good("provision", self.Describe(Smaller), "--force")
        self.assertEqual([strFile for strFile in OLD_FILES if (self.pathRoot / strFile).exists()], [])
        self.assertEqual(self.Json("history", "baseboard")["images"], [])
        self.assertEqual(self.Json("host-name")["prefix"], "QBX")
        self.Good("verify")

    def test_it_is_the_controller_that_the_same_description_makes_in_an_empty_directory(self):
        self.Good("label", "set", "baseboard", "Product Serial Number", "OLD-1")
        self.Good("provision", self.Describe(Smaller), "--force")
        pathOnto, self.pathRoot = self.pathRoot, self.pathTemp / "fresh"
        self.Good("provision", self.Describe(Smaller))
        for pathFile in sorted([*pathOnto.rglob("*"), *self.pathRoot.rglob("*")]):
            strFile = os.path.relpath(pathFile, pathOnto if pathFile.is_relative_to(pathOnto) else self.pathRoot)
            if pathFile.is_file() and not strFile.startswith(("var/log", "var/lock", "var/lib/fru/fru.db")):
                self.assertEqual((pathOnto / strFile).read_bytes(), (self.pathRoot / strFile).read_bytes(), strFile)

    def test_what_is_no_controllers_is_left_alone(self):
        listMine = [self.pathRoot / strFile for strFile in ("notes.txt", "eeprom/copy.bin", "conf/mine.ini", "usr/upgrade/fru/other.bin")]
        for pathMine in listMine:
            pathMine.write_bytes(b"mine")
        self.Good("provision", self.Describe(Smaller), "--force")
        self.assertEqual([pathMine.read_bytes() for pathMine in listMine], [b"mine"] * 4)

    def test_a_place_that_cannot_be_written_is_told_while_all_is_as_it_was(self):
        # A directory where a file has to go: nobody can put one there.
        (self.pathRoot / "conf/oempack/bmc/CID_OEM.conf").unlink()
        (self.pathRoot / "conf/oempack/bmc/CID_OEM.conf").mkdir()
        dictBefore = {path: path.read_bytes() for path in self.pathRoot.rglob("*") if path.is_file() and "fru.db" not in path.name}
        strLine = self.Fructl("provision", EXAMPLES / "controller.json", "--force").strErr
        self.assertIn("CID_OEM.conf", strLine)
        dictAfter = {path: path.read_bytes() for path in self.pathRoot.rglob("*") if path.is_file() and "fru.db" not in path.name}
        self.assertEqual({path: ab for path, ab in dictAfter.items() if "var/lo" not in str(path)},
                         {path: ab for path, ab in dictBefore.items() if "var/lo" not in str(path)})
        self.Good("verify")

    def test_a_change_that_cannot_be_finished_is_told_until_it_can(self):
        pathBase = self.pathTemp / "base"
        asCommand = ["provision", str(self.Describe(Smaller)), "--force"]
        stCuts = ProvisionCuts("State")
        stCuts.pathRoot, stCuts.pathTemp = self.pathRoot, self.pathTemp
        stCuts.Save("base")
        for iWhen in range(1, 500):
            stCuts.Reset(pathBase)
            self.assertTrue(stCuts.Cut("rename,renameat,renameat2", iWhen, *asCommand), "never with an entry in the journal")
            if (self.pathRoot / "var/lib/fru/journal/000000.json").exists():
                break
        pathChip = self.Eeprom("bus2-addr0xa4-switch1.bin")
        pathChip.unlink(missing_ok=True)
        pathChip.mkdir()
        stResult = self.Fructl("list")
        self.assertIn("the change to another controller that was cut short", stResult.strErr)
        self.assertIn("cannot be finished: cannot write", stResult.strErr)
        pathChip.rmdir()
        self.assertIn("is finished now", self.Fructl("list").strErr)
        self.Good("verify")


if __name__ == "__main__":
    unittest.main()
