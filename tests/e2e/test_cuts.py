# SPDX-License-Identifier: Apache-2.0
"""Commands killed before every call that changes a file: what is there after the next command is the old or the new, whole."""
import json
import os
import shutil
import subprocess
import unittest

from cut_support import STEP, CutTest
from support import COMMAND


class Cuts(CutTest):
    def AssertWhole(self, *asArguments, iAtLeast=20):
        pathBase = self.Save("base")
        dictOld = self.State()
        self.Good(*asArguments)
        dictNew = self.State()
        self.assertTrue(dictOld != dictNew)
        iPoints = iNew = 0
        for strPoint in self.Points(pathBase, *asArguments):
            stResult = self.Fructl("list")  # any command mends, readers too
            self.assertEqual(stResult.iCode, 0, f"{strPoint}: {stResult.strErr}")
            dictNow = self.State()
            self.assertTrue(dictNow in (dictOld, dictNew), f"{asArguments} killed at {strPoint}: neither old nor new; {stResult.strErr}")
            self.Good("list")  # and says so once
            iPoints += 1
            iNew += dictNow == dictNew
        self.assertGreaterEqual(iPoints, iAtLeast // STEP)
        self.assertTrue(0 < iNew < iPoints, f"{iNew} of {iPoints}")
        print(f"{iPoints} kills: {iNew} times the new state")
        self.Reset(pathBase)
        shutil.rmtree(pathBase)

    def test_one_label(self):
        self.AssertWhole("label", "set", "psu1", "Product Asset Tag", "RACK7-PSU1")

    def test_every_device(self):
        asNames = [stDevice["name"] for stDevice in self.Json("list")["devices"]]
        self.assertGreaterEqual(len(asNames), 6)
        for strName in asNames:
            self.AssertWhole("clear", strName, "--yes", iAtLeast=10)

    def test_several_labels_are_all_or_none(self):
        self.AssertWhole("label", "set", "baseboard", "Product Serial Number=LHCUT0001", "Board Serial Number=MBCUT0002", "Product Asset Tag=A-CUT")

    def test_clear(self):
        self.AssertWhole("clear", "baseboard", "--yes")

    def test_records(self):
        self.AssertWhole("mr", "add", "system-name=cut-off", "system-url=https://cut.example", "--force")

    def test_hardware_block(self):
        self.AssertWhole("hw", "set", "bmc-card-hw", "--pcb", "9", "--cpld", "77")

    def test_recover(self):
        self.Damage(self.Eeprom("bus1-addr0xa0.bin"), 0, b"\x09\x00")
        self.AssertWhole("recover", "baseboard")

    def test_assemble(self):
        self.AssertWhole("assemble", "psu1", "board-product-name=CUT", "--force", iAtLeast=10)

    def test_raw_write(self):
        self.AssertWhole("raw", "write", "psu2", "--offset", "0x40", "--bytes", "ab" * 100)

    def test_undo(self):
        self.Good("label", "set", "baseboard", "Product Serial Number=LHCUT0001")
        self.AssertWhole("undo", "baseboard")

    def test_a_cut_while_mending_is_mended_too(self):
        asCommand = ["label", "set", "baseboard", "Product Serial Number=LHCUT0001", "Board Serial Number=MBCUT0002"]
        pathBase = self.Save("base")
        dictOld = self.State()
        self.Good(*asCommand)
        dictNew = self.State()
        iPoints = 0
        for iFirst in (12, 20, 28):
            self.Reset(pathBase)
            self.assertTrue(self.Cut("pwrite64", iFirst, *asCommand))
            pathHalf = self.Save(f"half{iFirst}")
            for strPoint in self.Points(pathHalf, "list"):
                stResult = self.Fructl("list")
                self.assertEqual(stResult.iCode, 0, f"{iFirst}, {strPoint}: {stResult.strErr}")
                self.assertTrue(self.State() in (dictOld, dictNew), f"{iFirst}, then mending killed at {strPoint}")
                iPoints += 1
        self.assertGreaterEqual(iPoints, 20 // STEP)
        print(f"{iPoints} kills of the mending")

    def test_the_old_images_are_kept_and_come_back(self):
        dictFirst = self.State()
        self.Good("label", "set", "psu1", "Product Asset Tag", "ONE")
        self.Good("label", "set", "psu1", "Product Asset Tag", "TWO")
        self.assertEqual([(st["number"], st["image"]) for st in self.Json("history", "psu1")["images"]], [(1, "good"), (2, "good")])
        strDryRun = self.Good("undo", "psu1", "--dry-run").strOut
        self.assertIn("would put back image 2 (good)", strDryRun)
        for strShown in ("TWO", "ONE", "54 57 4f", "4f 4e 45"):  # the field and its bytes, old and new
            self.assertIn(strShown, strDryRun)
        self.assertEqual(len(self.Json("undo", "psu1", "--dry-run")["fields"]), 1)
        self.Good("undo", "psu1", "--to", "1")
        self.assertTrue(self.State() == dictFirst)
        self.Good("undo", "psu1")
        self.assertEqual(self.Json("show", "psu1")["product"]["assetTag"], "TWO")
        self.assertEqual(self.Bad(4, "undo", "psu1", "--to", "9"), "psu1 (0x03:0) has no image 9 in its history; 'fructl history' lists what there is")

    def test_no_more_than_twenty_images_are_kept(self):
        for i in range(23):
            self.Good("label", "set", "psu1", "Product Asset Tag", f"T{i:02}")
        self.assertEqual([st["number"] for st in self.Json("history", "psu1")["images"]], list(range(4, 24)))

    def test_a_chip_that_stays_away_is_told_until_it_is_back(self):
        pathBase = self.Save("base")
        asCommand = ["label", "set", "psu1", "Product Asset Tag", "RACK7"]
        iWhen = 1
        while True:
            self.Reset(pathBase)
            self.assertTrue(self.Cut("pwrite64", iWhen, *asCommand), "never with an entry in the journal")
            if any((self.pathRoot / "var/lib/fru/journal").glob("*.json")):
                break
            iWhen += 1
        pathChip = self.Eeprom("bus2-addr0xa4-switch1.bin")
        pathAway = self.pathTemp / "away.bin"
        os.rename(pathChip, pathAway)
        stResult = self.Fructl("list")
        self.assertIn("can be neither finished (the EEPROM of psu1 (0x03:0) does not answer", stResult.strErr)
        self.assertIn("give the entry up with 'fructl journal discard 1'", stResult.strErr)
        self.assertIn("can be neither finished", self.Bad2("label", "set", "psu1", "Product Version", "A9"))
        os.rename(pathAway, pathChip)
        self.assertIn("is finished now", self.Fructl("list").strErr)
        self.assertEqual(self.Good("journal", "list").strOut, "no write is unfinished\n")
        self.assertEqual(self.Json("show", "psu1")["product"]["assetTag"], "RACK7")

    def test_an_entry_cannot_name_any_file(self):
        """Who may write into the journal must not get root to write elsewhere."""
        pathBase = self.Save("base")
        pathJournal = self.pathRoot / "var/lib/fru/journal"
        asEntries = []
        iWhen = 1
        while not asEntries:
            self.Reset(pathBase)
            self.assertTrue(self.Cut("pwrite64", iWhen, "label", "set", "baseboard", "Product Serial Number=LHCUT0001"))
            asEntries = list(pathJournal.glob("*.json"))
            iWhen += 1
        dictEntry = json.loads(asEntries[0].read_text())
        dictEntry["content"]["files"][0]["path"] = "/conf/planted"
        iSum = 0xCBF29CE484222325
        for iByte in json.dumps(dictEntry["content"], separators=(",", ":")).encode():
            iSum = (iSum ^ iByte) * 0x100000001B3 % 2**64
        dictEntry["sum"] = f"{iSum:016x}"
        asEntries[0].write_text(json.dumps(dictEntry))
        dictBefore = self.State()
        self.assertIn("names a file that no write renews: /conf/planted", self.Fructl("list").strErr)
        self.assertEqual(self.Fructl("label", "set", "psu1", "Product Version", "A9").iCode, 10)
        self.assertFalse((self.pathRoot / "conf/planted").exists())
        self.assertTrue(self.State() == dictBefore)
        self.assertEqual(self.Fructl("journal", "discard", str(int(asEntries[0].stem))).iCode, 0)
        self.Good("list")
        if os.geteuid() == 0:
            self.assertTrue(self.Cut("pwrite64", iWhen - 1, "label", "set", "baseboard", "Product Serial Number=LHCUT0001"))
            os.chown(pathJournal, 65534, 65534)
            self.assertIn("belongs to another user, so nothing of it is believed", self.Fructl("list").strErr)
            self.assertEqual(self.Fructl("label", "set", "psu1", "Product Version", "A9").iCode, 8)
            os.chown(pathJournal, 0, 0)
            self.assertIn("is finished now", self.Fructl("list").strErr)
        asEntries[0].write_text('{"kind": "journal"')
        self.assertIn("its journal entry cannot be read", self.Fructl("list").strErr)
        self.assertIn("unreadable", self.Fructl("journal", "list").strOut)
        self.assertEqual(self.Fructl("journal", "discard", str(int(asEntries[0].stem))).iCode, 0)
        self.Good("list")

    def test_a_full_disk_is_told_before_anything_is_written(self):
        dictBefore = self.State()
        stProcess = subprocess.run(["sh", "-c", 'ulimit -f 100; exec "$@"', "sh", *COMMAND, "--root", str(self.pathRoot), "label", "set", "psu1", "Product Asset Tag",
                                    "RACK7"], capture_output=True, text=True, check=False)
        self.assertEqual(stProcess.returncode, 9)
        self.assertIn("is too full for a write", stProcess.stderr)
        self.assertIn("nothing was written", stProcess.stderr)
        self.assertTrue(self.State() == dictBefore)
        self.assertEqual(self.Json("history", "psu1")["images"], [])

    def test_new_files_of_killed_writes_go_with_the_next_write(self):
        self.Good("label", "set", "psu1", "Product Asset Tag", "RACK6")
        listLeft = [self.pathRoot / "var/lib/fru" / strFolder / ".bmcfru-0123" for strFolder in ("journal", "history/1")]
        for pathLeft in listLeft:
            pathLeft.write_text("left")
            os.utime(pathLeft, (1000000, 1000000))
        self.Good("label", "set", "psu1", "Product Asset Tag", "RACK7")
        self.assertEqual([pathLeft for pathLeft in listLeft if pathLeft.exists()], [])

    def Bad2(self, *asArguments):
        stResult = self.Fructl(*asArguments)
        self.assertEqual(stResult.iCode, 5)
        return stResult.strErr


if __name__ == "__main__":
    unittest.main()
