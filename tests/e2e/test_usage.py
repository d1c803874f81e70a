# SPDX-License-Identifier: Apache-2.0
"""Help, exit codes, the one line of an error, where the controller lies, and who may write."""
import fcntl
import json
import os
import pty
import re
import subprocess
import time
import unittest

from support import BASEBOARD_EEPROM, COMMAND, EXAMPLES, Environment, FructlTest, HANG_SECONDS, Run, SOURCE

COMMANDS = ["provision", "list", "show", "verify", "map", "diff", "label", "encode", "recover", "raw", "mr", "hw", "sn", "psn", "oem", "host-name", "assemble", "fields", "metrics", "report", "lint"]


class Help(unittest.TestCase):
    def test_every_level_has_help_with_an_example(self):
        for asLevel in [[], *[[strName] for strName in COMMANDS], ["raw", "info"], ["raw", "read"],
                        ["label", "list"], ["label", "get"], ["label", "set"], ["mr", "list"], ["mr", "add"], ["mr", "check"], ["mr", "guid"],
                        ["hw", "show"], ["hw", "set"], ["oem", "show"], ["oem", "sync"], ["oem", "check"], ["oem", "copyright"], ["oem", "legal"]]:
            with self.subTest(asLevel):
                stResult = Run(*asLevel, "--help")
                self.assertEqual((stResult.iCode, stResult.strErr), (0, ""))
                self.assertIn("Usage: fructl " + " ".join(asLevel), stResult.strOut)
                self.assertRegex(stResult.strOut, r"Examples:\n  fructl ")
                self.assertTrue(stResult.strOut.endswith("\n"))
                for strFile in re.findall(r"examples/\S+", stResult.strOut):
                    self.assertTrue(list(SOURCE.glob(strFile)), strFile)

    def test_files_that_examples_name_are_there(self):
        for asLevel in [[], *[[strName] for strName in COMMANDS]]:
            for strFile in re.findall(r"examples/[^\s,()]+", Run(*asLevel, "--help").strOut):
                self.assertTrue(list(EXAMPLES.parent.glob(strFile)), f"fructl {asLevel} --help names {strFile}")

    def test_the_version_is_told(self):
        self.assertRegex(Run("--version").strOut, r"^fructl \d+\.\d+\.\d+\n$")


class Usage(FructlTest):
    def test_wrong_usage_exits_with_2_and_says_what_is_accepted(self):
        for asArguments, strExpected in [
            ([], "no command is named; accepted: provision, list, show"),
            (["bogus"], "there is no command 'bogus'; accepted: provision, list, show"),
            (["raw"], "no command is named; accepted: info, read"),
            (["raw", "bogus"], "there is no command 'bogus'; accepted: info, read"),
            (["list", "--bogus"], "--bogus; 'fructl list --help' tells more"),
            (["list", "one"], "one; 'fructl list --help' tells more"),
            (["provision"], "FILE is required; 'fructl provision --help' tells more"),
            (["show"], "no device is named; accepted: TYPE:INSTANCE such as 0x30:0, a device's name, or an image file's path with a slash, or --id N"),
            (["show", "a", "b"], "b; 'fructl show --help' tells more"),
            (["show", "a", "--id", "1"], "a device is named twice, by --id and without; give one of them"),
            (["show", "--id", "256"], "--id 256 is not a FRU device ID; accepted: 0 to 255, decimal or 0x"),
            (["show", "--id", "0x1g"], "--id 0x1g is not a FRU device ID; accepted: 0 to 255, decimal or 0x"),
            (["show", "0x100:0"], "'0x100:0' is not a TYPE:INSTANCE; accepted: two numbers of 0 to 255, decimal or 0x, such as 0x30:0"),
            (["show", "1:"], "'1:' is not a TYPE:INSTANCE; accepted: two numbers of 0 to 255, decimal or 0x, such as 0x30:0"),
            (["raw", "read", "--id", "0", "--offset", "65536"], "--offset 65536 is refused; accepted: 0 to 65535, decimal or 0x"),
            (["raw", "read", "--id", "0", "--count", "-1"], "--count -1 is refused; accepted: 0 to 255, decimal or 0x"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(2, *asArguments))

    def test_names_that_do_not_exist_are_told_with_those_that_do(self):
        self.Provision()
        strAll = "; it has baseboard, psu1, psu2, riser, bmc-card, bmc-card-hw"
        for asArguments, strWhat in [
            (["show", "nonsense"], "no device named 'nonsense'"),
            (["show", "7:0"], "no device 7:0"),
            (["show", "--id", "77"], "no FRU device ID 77"),
            (["recover", "\x1b[31mred"], "no device named '\\x1b[31mred'"),
        ]:
            with self.subTest(asArguments):
                self.assertEqual(self.Bad(4, *asArguments), f"the controller in {self.pathRoot} has {strWhat}{strAll}")
        self.assertEqual(self.Bad(4, "show", "no/such.bin"),
                         "there is no image file no/such.bin; accepted: TYPE:INSTANCE such as 0x30:0, a device's name, or an image file's path with a slash")

    def test_a_device_that_may_have_been_meant_is_named(self):
        self.Provision()
        self.assertIn("has no device named 'psu'; did you mean 'psu1' or 'psu2'?; it has ", self.Bad(4, "show", "psu"))
        self.assertIn("has no device named 'Baseboard'; did you mean 'baseboard'?; it has ", self.Bad(4, "show", "Baseboard"))

    def test_a_member_that_may_have_been_meant_is_named(self):
        pathFile = self.Write("record.json", json.dumps({"board": {"serialnumber": "X"}}).encode())
        self.assertIn("board.serialnumber: unknown member; did you mean 'serialNumber'?; accepted: ",
                      self.Bad(3, "encode", pathFile, "-o", self.pathTemp / "out.bin"))
        pathFile = self.Write("controller.json", json.dumps({"devices": [{"componenttype": 1}]}).encode())
        self.assertIn("devices[0].componenttype: unknown member; did you mean 'componentType'?; accepted: ", self.Bad(3, "provision", pathFile))

    def test_a_device_is_found_by_component_name_and_id(self):
        self.Provision()
        for asArguments in [["0x30:0"], ["48:0x0"], ["bmc-card"], ["--id", "4"], ["--id", "0x04"]]:
            self.assertEqual(self.Json("show", *asArguments)["device"]["name"], "bmc-card", asArguments)

    def test_without_a_controller_the_way_to_one_is_told_and_nothing_is_made(self):
        for asArguments in [["list"], ["verify"], ["show", "baseboard"], ["recover", "0:0"], ["raw", "info", "--id", "0"]]:
            self.assertEqual(self.Bad(4, *asArguments),
                             f"there is no controller in {self.pathRoot}; 'fructl provision FILE' makes one, --root or $FRUCTL_ROOT names another")
        self.assertFalse(self.pathRoot.exists())

    def test_the_root_comes_from_the_option_then_the_environment_then_the_home(self):
        strEnvironment = str(self.pathTemp / "environment")
        strHome = str(self.pathTemp / "home")
        asProvision = ["provision", str(EXAMPLES / "controller.json"), "--dry-run", "--json"]
        for asArguments, dictEnvironment, strExpected in [
            (["--root", str(self.pathRoot)], {"FRUCTL_ROOT": strEnvironment, "HOME": strHome}, str(self.pathRoot)),
            ([], {"FRUCTL_ROOT": strEnvironment, "HOME": strHome}, strEnvironment),
            ([], {"HOME": strHome}, strHome + "/.local/state/fructl"),
        ]:
            stResult = Run(*asArguments, *asProvision, **dictEnvironment)
            self.assertEqual((stResult.iCode, stResult.Json()["root"]), (0, strExpected))

    def test_verbose_prints_the_diagnostics_and_changes_nothing_else(self):
        self.Provision()
        stQuiet = self.Fructl("raw", "read", "--id", "200")
        stVerbose = self.Fructl("-v", "raw", "read", "--id", "200")
        self.assertEqual((stVerbose.iCode, stVerbose.strOut), (1, stQuiet.strOut))
        self.assertRegex(stVerbose.strErr, r"^\[4\] lib_fru\.c:\d+: Fail to find FRU Device ID\[0xc8\]!\n")
        self.assertTrue(stVerbose.strErr.endswith(stQuiet.strErr))

    def test_output_that_cannot_be_written_is_a_failure(self):
        with open("/dev/full", "wb") as stFull:
            stResult = subprocess.run([*COMMAND, "show", str(EXAMPLES / "riser.hex")], stdout=stFull, stderr=subprocess.PIPE, text=True)
        self.assertEqual((stResult.returncode, stResult.stderr), (9, "fructl: standard output could not be written: No space left on device\n"))


class Colour(FructlTest):
    def OnTerminal(self, **dictEnvironment):
        """Standard output of fructl list on a terminal."""
        iOurs, iTheirs = pty.openpty()
        stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "list"], stdout=iTheirs, stderr=subprocess.DEVNULL,
                                     env=Environment(**dictEnvironment))
        os.close(iTheirs)
        abOut = b""
        try:
            while abPiece := os.read(iOurs, 4096):
                abOut += abPiece
        except OSError:
            pass  # the other side is gone
        os.close(iOurs)
        self.assertEqual(stProcess.wait(), 0)
        return abOut

    def test_colour_only_on_a_terminal_that_wants_it(self):
        self.Provision()
        self.assertIn(b"\x1b[", self.OnTerminal())
        self.assertIn(b"\x1b[", self.OnTerminal(NO_COLOR=""))
        self.assertNotIn(b"\x1b[", self.OnTerminal(NO_COLOR="1"))
        self.assertNotIn("\x1b[", self.Good("list").strOut)


class Lock(FructlTest):
    def test_a_second_writer_waits_and_then_says_who_holds_the_lock(self):
        self.Provision()
        pathLock = self.pathRoot / "var/lock/fructl.lock"
        self.assertEqual(pathLock.read_text(), "")
        with open(pathLock, "r+") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            stLock.write("pid 4711, fructl label set\n")
            stLock.flush()
            fStart = time.monotonic()
            strLine = self.Bad(7, "--wait", "2", "recover", "baseboard")
            self.assertGreaterEqual(time.monotonic() - fStart, 2.0)
            self.assertEqual(strLine, f"another command is writing to {self.pathRoot}: pid 4711, fructl label set; try again when it is done")
            # Readers wait too: they see no image half written.
            self.assertEqual(self.Bad(7, "--wait", "0", "list"), strLine)
        self.Good("recover", "baseboard")

    def test_the_lock_file_names_its_holder(self):
        self.Provision()
        pathLock = self.pathRoot / "var/lock/fructl.lock"
        # Somebody keeps the chip to himself, so the command stays where it is for a while.
        with open(self.ChipLock(BASEBOARD_EEPROM), "w") as stChip:
            fcntl.flock(stChip, fcntl.LOCK_EX)
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "recover", "baseboard"], stdout=subprocess.DEVNULL)
            fEnd = time.monotonic() + HANG_SECONDS
            while not pathLock.read_text() and time.monotonic() < fEnd:
                time.sleep(0.02)
            strHolder = pathLock.read_text()
            fcntl.flock(stChip, fcntl.LOCK_UN)
        self.assertEqual(stProcess.wait(), 0)
        self.assertRegex(strHolder, r"^pid \d+, fructl --root .* recover baseboard\n$")
        self.assertEqual(pathLock.read_text(), "")


if __name__ == "__main__":
    unittest.main()
