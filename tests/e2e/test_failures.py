# SPDX-License-Identifier: Apache-2.0
"""Every kind of failure: its exit code, its word, and the object that programs get."""
import fcntl
import json
import os
import shutil
import sqlite3
import subprocess
import unittest

from cut_support import MAY_TRACE, STRACE
from support import BASEBOARD_EEPROM, COMMAND, EMULATOR, Environment, FructlTest, Run, SOURCE

CODES = {"failed": 1, "usage": 2, "refused": 3, "not-found": 4, "no-answer": 5, "damaged": 6, "busy": 7, "not-permitted": 8, "disk-full": 9,
         "half-written": 10}
PSU1 = {"id": 1, "name": "psu1", "componentType": 3, "instance": 0}
PSU1_EEPROM = "bus2-addr0xa4-switch1.bin"
DEEP = 100000
TABLE_KEY = 0x108105ff  # the device table in the database


class Codes(FructlTest):
    def Failure(self, *asArguments):
        """The object of a command that fails, which agrees with the exit code and the line on stderr."""
        stResult = self.Fructl("--json", *asArguments)
        self.AssertOneLine(stResult.strErr)
        dictError = stResult.Json()["error"]
        self.assertEqual((dictError["exitCode"], dictError["code"]), (stResult.iCode, [strWord for strWord in CODES if CODES[strWord] == stResult.iCode][0]))
        self.assertEqual(f"fructl: {dictError['message']}\n", stResult.strErr)
        self.assertEqual(self.Fructl(*asArguments).iCode, stResult.iCode)  # the same without --json
        return dictError

    def setUp(self):
        super().setUp()
        self.Provision()

    def test_a_file_that_does_not_fit_is_told_with_its_device(self):
        self.assertEqual(self.Failure("write", "psu1", "nothing.bin")["device"], PSU1)
        self.assertEqual(self.Failure("read", "psu1", "-o", self.pathRoot)["device"], PSU1)

    def test_a_value_that_is_refused_tells_what_is_accepted(self):
        dictError = self.Failure("label", "set", "baseboard", "Chassis Type", "Boat")
        self.assertEqual((dictError["code"], dictError["device"]["name"]), ("refused", "baseboard"))
        self.assertIn("Rack Mount Chassis", dictError["accepted"])

    def test_a_label_that_is_not_there_tells_those_that_are(self):
        dictError = self.Failure("label", "get", "psu1", "Product Tag")
        self.assertEqual((dictError["code"], dictError["device"]), ("refused", PSU1))
        self.assertIn("Product Asset Tag", dictError["accepted"])
        self.assertGreater(len(dictError["accepted"]), 20)

    def test_a_device_that_is_not_there_tells_those_that_are(self):
        dictError = self.Failure("show", "psu9")
        self.assertEqual((dictError["code"], dictError["accepted"]), ("not-found", ["baseboard", "psu1", "psu2", "riser", "bmc-card", "bmc-card-hw"]))
        self.assertNotIn("device", dictError)

    def test_no_controller_and_no_file(self):
        stResult = Run("--root", self.pathTemp / "none", "--json", "list")
        self.assertEqual((stResult.iCode, stResult.Json()["error"]["code"]), (4, "not-found"))
        self.assertEqual(self.Failure("show", "./none.bin")["code"], "not-found")

    def test_a_chip_that_does_not_answer(self):
        (self.pathRoot / "eeprom" / PSU1_EEPROM.replace(".bin", ".fault")).write_text("absent")
        for asArguments in (["show", "psu1"], ["map", "psu1"], ["label", "get", "psu1", "Product Version"]):
            dictError = self.Failure(*asArguments)
            self.assertEqual((dictError["code"], dictError["device"]), ("no-answer", PSU1), asArguments)

    def test_damage(self):
        self.Damage(self.Eeprom(PSU1_EEPROM), 0, b"\x09")
        self.assertEqual(self.Failure("show", "psu1")["code"], "damaged")
        self.assertEqual(self.Failure("show", self.Write("wrong.bin", bytes(64)))["code"], "damaged")
        (self.pathRoot / "var/lib/fru/fru.db").write_bytes(b"x" * 20000)
        dictError = self.Failure("list")
        self.assertEqual(dictError["code"], "damaged")
        self.assertIn("is damaged", dictError["message"])

    def test_a_lock_that_others_keep(self):
        with open(self.pathRoot / "var/lock/fructl.lock", "r+") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            self.assertEqual(self.Failure("--wait", "0", "label", "set", "psu1", "Product Version", "C3")["code"], "busy")

    @unittest.skipIf(os.geteuid() != 0, "only root can act as two users")
    def test_what_the_user_may_not(self):
        os.chown(self.pathRoot, 65534, 65534)
        dictError = self.Failure("label", "set", "psu1", "Product Version", "C3")
        self.assertEqual((dictError["code"], dictError["device"]), ("not-permitted", PSU1))

    @unittest.skipIf(os.geteuid() != 0, "only root can act as two users")
    def test_what_the_user_may_not_read(self):
        for strFile in ("eeprom/" + PSU1_EEPROM, "var/lib/fru/fru.db"):
            pathFile = self.pathRoot / strFile
            self.pathTemp.chmod(0o755)
            pathFile.chmod(0o600)
            stResult = subprocess.run([*COMMAND, "--root", self.pathRoot, "--json", "show", "psu1"], capture_output=True, text=True, check=False,
                                      user=65534, group=65534, extra_groups=[], env=Environment())
            pathFile.chmod(0o644)
            dictError = json.loads(stResult.stdout)["error"]
            self.assertEqual((stResult.returncode, dictError["code"]), (8, "not-permitted"), stResult.stderr)
            self.assertIn("Permission denied", dictError["message"])

    def test_an_empty_device_table_is_told(self):
        stDb = sqlite3.connect(self.pathRoot / "var/lib/fru/fru.db")
        (strTable,) = stDb.execute("SELECT name FROM sqlite_master WHERE type = 'table'").fetchone()
        strKey, strValue = [tupleRow[1] for tupleRow in stDb.execute(f"PRAGMA table_info({strTable})")][:2]
        stDb.execute(f"UPDATE {strTable} SET {strValue} = zeroblob(length({strValue})) WHERE {strKey} = {TABLE_KEY}")
        stDb.commit()
        stDb.close()
        self.assertEqual(self.Good("list").strOut, f"the controller in {self.pathRoot} has no devices\n")
        self.assertEqual(self.Json("list"), {"devices": []})
        dictError = self.Failure("verify")
        self.assertEqual((dictError["code"], dictError["message"]), ("not-found", f"the controller in {self.pathRoot} has no devices; nothing was checked"))

    def test_a_full_disk(self):
        with open("/dev/full", "wb") as stFull:
            stResult = subprocess.run([*COMMAND, "encode", self.Write("empty.json", b"{}"), "-o", "-"], stdout=stFull, stderr=subprocess.PIPE, check=False)
        self.assertEqual(stResult.returncode, CODES["disk-full"])

    def test_wrong_usage_is_told_to_programs_too(self):
        for asArguments, listAccepted in [(["--json", "bogus"], "provision"), (["bogus", "--json"], "provision"), (["--json", "label", "set", "--bogus"], None),
                                          (["--json"], "list"), (["raw", "read", "--id", "0", "--count", "-1", "--json"], "0 to 255, decimal or 0x")]:
            stResult = self.Fructl(*asArguments)
            dictError = stResult.Json()["error"]
            self.assertEqual((stResult.iCode, dictError["code"], dictError["exitCode"]), (2, "usage", 2))
            self.assertEqual(listAccepted is not None, "accepted" in dictError, asArguments)
            if listAccepted:
                self.assertIn(listAccepted, dictError["accepted"])
        self.assertEqual(self.Fructl("bogus").strOut, "")

    @unittest.skipIf(EMULATOR or not MAY_TRACE, "there is no strace that may trace, or an emulator's own calls would be counted")
    def test_a_write_that_was_cut_short_and_cannot_be_mended(self):
        self.Good("label", "set", "psu1", "Product Version", "A2")
        shutil.copytree(self.pathRoot, self.pathTemp / "before")
        iWhen = 0
        while not any((self.pathRoot / "var/lib/fru/journal").glob("*.json")):
            iWhen += 1
            shutil.rmtree(self.pathRoot)
            shutil.copytree(self.pathTemp / "before", self.pathRoot)
            stProcess = subprocess.run([STRACE, "-f", "-o", "/dev/null", "-e", "trace=pwrite64", "-e", f"inject=pwrite64:signal=KILL:when={iWhen}",
                                        *COMMAND, "--root", str(self.pathRoot), "label", "set", "baseboard", "Product Asset Tag", "RACK7"],
                                       capture_output=True, check=False, env=Environment(ASAN_OPTIONS="detect_leaks=0"))
            self.assertNotEqual(stProcess.returncode, 0, "never with an entry in the journal")
        for iAt in (0x0020, 0x0700):  # somebody else writes, further apart than a page
            self.Damage(self.Eeprom(BASEBOARD_EEPROM), iAt, b"\x5a\x5a")
        stResult = self.Fructl("--json", "label", "set", "baseboard", "Product Version", "B9", "--force")
        dictError = stResult.Json()["error"]
        self.assertEqual((stResult.iCode, dictError["code"], dictError["device"]["name"]), (10, "half-written", "baseboard"))
        self.assertIn("is left alone, for somebody else has written", dictError["message"])

    def test_what_was_printed_before_and_the_failure_are_one_object(self):
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\x09")
        stResult = self.Fructl("--json", "verify")
        self.assertEqual((stResult.iCode, stResult.Json()["error"]["exitCode"], len(stResult.Json()["images"])), (1, 1, 7))

    def test_help_and_readme_tell_every_code(self):
        strHelp = Run("--help").strOut
        strReadme = (SOURCE / "README.md").read_text()
        for strWord, iCode in CODES.items():
            self.assertRegex(strHelp, rf"\n +{iCode}  {strWord} ")
            self.assertRegex(strReadme, rf"\n\| {iCode} \| `{strWord}` \|")

    def test_no_advice_replaces_a_controller(self):
        for pathFile in sorted((SOURCE / "toolkit").rglob("*.cpp")):
            self.assertNotIn("provision --force", pathFile.read_text(), pathFile)


class DeepJson(FructlTest):
    def test_a_document_that_nests_too_deep_is_refused(self):
        for strName, abText in [("arrays", b"[" * DEEP + b"]" * DEEP), ("objects", b'{"a":' * DEEP + b"1" + b"}" * DEEP), ("open", b"[" * DEEP),
                                ("member", b'{"board":' + b"[" * DEEP + b"]" * DEEP + b"}")]:
            pathFile = self.Write(f"{strName}.json", abText)
            for asCommand in (["encode", pathFile, "-o", self.pathTemp / "x.bin"], ["provision", pathFile]):
                self.assertEqual(self.Bad(3, *asCommand), f"{pathFile}: objects and arrays stand in each other more than 64 deep; accepted: up to 64")
        self.assertFalse(self.pathRoot.exists())

    def test_names_that_are_accepted_are_a_list(self):
        pathFile = self.Write("unknown.json", b'{"boards": {}}')
        self.assertIn("board", Run("--json", "encode", pathFile, "-o", self.pathTemp / "x.bin").Json()["error"]["accepted"])
        self.assertIn("system-name", Run("--json", "mr", "add", "system=x").Json()["error"]["accepted"])

    def test_depth_that_is_accepted_reaches_the_members_check(self):
        pathFile = self.Write("fine.json", b"[" * 60 + b"]" * 60)
        self.assertIn("is not an object", self.Bad(3, "encode", pathFile, "-o", self.pathTemp / "x.bin"))

    def test_files_of_the_controller_that_nest_too_deep_are_no_crash(self):
        self.Provision()
        (self.pathRoot / "var/log").mkdir(exist_ok=True)
        (self.pathRoot / "var/log/fru-events.jsonl").write_bytes(b"[" * DEEP + b"\n")
        self.assertEqual(self.Fructl("monitor", "--all", "--count", "1").iCode in (0, 2), True)


if __name__ == "__main__":
    unittest.main()
