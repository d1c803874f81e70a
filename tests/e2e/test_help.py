# SPDX-License-Identifier: Apache-2.0
"""What fructl tells of itself: helps, guesses, pages of the manual, and how all of it fits the terminal."""
import re
import shutil
import subprocess
import unittest

from support import COMMAND, FructlTest, Image, Run, Texts
from terminal_support import Terminal


def Commands(dictHelp):
    """A command and all below it, as 'help --json' tells them."""
    return [dictHelp] + [dictInner for dictCommand in dictHelp["commands"] for dictInner in Commands(dictCommand)]


class Help(unittest.TestCase):
    dictHelp = Run("help", "--json").Json()
    listCommands = Commands(dictHelp)

    def test_help_prints_what_the_option_prints_at_every_level(self):
        self.assertGreater(len(self.listCommands), 40)
        for dictCommand in self.listCommands:
            asWords = dictCommand["command"].split()[1:]
            with self.subTest(asWords):
                stHelp = Run("help", *asWords)
                self.assertEqual((stHelp.iCode, stHelp.strErr), (0, ""))
                self.assertEqual(stHelp.strOut, Run(*asWords, "--help").strOut)
                self.assertIn("Usage: " + dictCommand["usage"].split(" [")[0], stHelp.strOut)

    def test_every_command_has_examples_of_its_own(self):
        for dictCommand in self.listCommands:
            self.assertTrue(dictCommand["examples"], dictCommand["command"])
            for strExample in dictCommand["examples"]:
                self.assertRegex(strExample, r"\bfructl ", dictCommand["command"])

    def test_commands_stand_in_groups(self):
        strOut = Run("--help").strOut
        for strGroup in {dictCommand["group"] for dictCommand in self.dictHelp["commands"]}:
            self.assertIn(f"\n{strGroup}:\n", strOut)
        self.assertLess(strOut.index("\nLook:"), strOut.index("\nEdit fields:"))
        self.assertNotIn("\n  complete ", strOut)

    def test_the_version_has_a_letter(self):
        self.assertEqual(Run("-V").strOut, Run("--version").strOut)

    def test_every_option_says_what_it_does(self):
        for dictCommand in self.listCommands:
            for dictOption in dictCommand["options"] + dictCommand["words"]:
                self.assertTrue(dictOption["text"], (dictCommand["command"], dictOption))


class Guesses(FructlTest):
    def test_what_may_have_been_meant_is_named(self):
        for asArguments, strExpected in [
            (["lst"], "there is no command 'lst'; did you mean 'list' or 'lint'?; accepted: provision, list, "),
            (["label", "gett"], "there is no command 'gett'; did you mean 'get'?; accepted: list, get, set"),
            (["help", "labl"], "there is no command 'labl'; did you mean 'label'?; accepted: "),
            (["help", "list", "x"], "there is no command 'x' of 'fructl list'; accepted: nothing behind list"),
            (["list", "--jsn"], "there is no option --jsn; did you mean '--json'?; 'fructl list --help' tells more"),
            (["label", "set", "--dryrun"], "there is no option --dryrun; did you mean '--dry-run'?; 'fructl label set --help' tells more"),
            (["map", "--sorce=cache"], "there is no option --sorce; did you mean '--source'?; "),
            (["map", "--source", "cash"], "--source: 'cash' is refused; did you mean 'cache'?; accepted: eeprom, cache"),
            (["list", "--color", "alwys"], "--color: 'alwys' is refused; did you mean 'always'?; accepted: auto, always, never"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(2, *asArguments))

    def test_programs_get_the_names_too(self):
        dictError = self.Fructl("lst", "--json").Json()["error"]
        self.assertEqual(dictError["code"], "usage")
        self.assertIn("list", dictError["accepted"])


class Width(FructlTest):
    def Shown(self, iColumns, *asArguments, **dictEnvironment):
        """Lines on a terminal of that width, without colours."""
        with Terminal([*COMMAND, "--root", str(self.pathRoot), *asArguments], iColumns, **dictEnvironment) as stTerminal:
            strOut, iCode = stTerminal.All()
        self.assertEqual(iCode, 0, strOut)
        return re.sub(r"\x1b\[\d*m", "", strOut).splitlines()

    def test_helps_fit_the_terminal(self):
        for iColumns in (60, 80, 200):
            for asArguments in (["--help"], ["label", "set", "--help"], ["help", "provision"]):
                asLines = self.Shown(iColumns, *asArguments)
                # Examples are never broken: one copies them.
                asText = [strLine for strLine in asLines if not strLine.startswith("  fructl ")]
                self.assertLessEqual(max(map(len, asText)), min(iColumns, 110), asArguments)
                self.assertGreater(max(map(len, asText)), 40)

    def test_tables_fit_the_terminal_and_lose_nothing(self):
        self.Provision()
        for asArguments in (["list"], ["label", "list", "psu1"], ["sn"]):
            asWide = [strWord for strLine in self.Good(*asArguments).strOut.splitlines() for strWord in strLine.split()]
            for iColumns in (40, 60, 80, 200):
                with self.subTest((asArguments, iColumns)):
                    asLines = self.Shown(iColumns, *asArguments)
                    if not asArguments == ["label", "list", "psu1"]:
                        self.assertLessEqual(max(map(len, asLines)), iColumns)
                    self.assertLessEqual(set(asWide), {strWord for strLine in asLines for strWord in strLine.split()})

    def test_columns_of_the_environment_come_first(self):
        self.Provision()
        self.assertLessEqual(max(map(len, self.Shown(200, "list", COLUMNS="60"))), 60)
        self.assertEqual(Run("--root", self.pathRoot, "list", COLUMNS="nonsense").strOut, self.Good("list").strOut)

    def test_too_narrow_a_table_becomes_blocks(self):
        self.Provision()
        asLines = self.Shown(24, "list")
        self.assertIn("NAME   baseboard", asLines)
        self.assertEqual(asLines.count(""), 5)


class Colour(FructlTest):
    def test_the_option_decides_before_the_environment(self):
        self.Provision()
        self.assertIn("\x1b[", Run("--root", self.pathRoot, "--color", "always", "list", NO_COLOR="1").strOut)
        self.assertIn("\x1b[1;31m", Run("--color=always", "lst").strErr)
        self.assertNotIn("\x1b[", Run("--root", self.pathRoot, "--color", "auto", "list").strOut)
        with Terminal([*COMMAND, "--root", str(self.pathRoot), "list", "--color", "never"]) as stTerminal:
            self.assertNotIn("\x1b[", stTerminal.All()[0])
        with Terminal([*COMMAND, "--root", str(self.pathRoot), "list"]) as stTerminal:
            self.assertIn("\x1b[", stTerminal.All()[0])


class Letters(FructlTest):
    """A field with letters of Latin-1, a control of Latin-1's, and a backslash."""

    def setUp(self):
        super().setUp()
        self.ProvisionImage(Image({3: b"\x00\x00\x00\x00" + Texts("M\xfcller", "a\\b\x85", "", "", "")}))

    def Shown(self, *asArguments, **dictEnvironment):
        with Terminal([*COMMAND, "--root", str(self.pathRoot), "--color", "never", *asArguments], 120, **dictEnvironment) as stTerminal:
            return stTerminal.All()[0]

    def test_a_terminal_of_utf_8_shows_them(self):
        for asArguments in (["show", "dev"], ["map", "dev"], ["label", "list", "dev"]):
            strOut = self.Shown(*asArguments)
            self.assertIn("M\xfcller", strOut, asArguments)
            self.assertIn("a\\\\b\\x85", strOut, asArguments)

    def test_two_bytes_a_character_are_readable(self):
        # German: the format has two bytes a character there. Readers of one byte end such a text at its first zero byte.
        shutil.rmtree(self.pathRoot)
        self.ProvisionImage(Image({3: b"\x1e\x00\x00\x00" + Texts("M\x00\xfc\x00l\x00", "", "", "", "")}))
        for strCommand in ("map", "show"):
            self.assertIn("(two bytes a character: M\xfcl)", self.Shown(strCommand, "dev"))
            self.assertIn("(two bytes a character: M\\xc3\\xbcl)", self.Good(strCommand, "dev").strOut)
        self.assertIn("two bytes a character: M\xfcl", [dictSpan.get("note") for dictSpan in self.Json("map", "dev")["spans"]])

    def test_elsewhere_they_are_escaped(self):
        self.assertIn("M\\xfcller", self.Shown("show", "dev", LC_ALL="C"))
        self.assertIn("M\\xfcller", self.Good("show", "dev").strOut)
        self.assertIn("M\\xfcller", Run("--root", self.pathRoot, "show", "dev", LC_ALL="C.UTF-8").strOut)


class Manual(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathPages = self.pathTemp / "man"
        self.pathPages.mkdir()
        self.Good("manual", self.pathPages, "--date", "2026-11-21")
        self.dictHelp = Run("help", "--json").Json()

    def test_there_is_a_page_for_each_command_and_it_tells_every_option(self):
        asExpected = ["fructl.1"] + [f"fructl-{dictCommand['command'].split()[1]}.1" for dictCommand in self.dictHelp["commands"]]
        self.assertEqual(sorted(pathPage.name for pathPage in self.pathPages.iterdir()), sorted(asExpected))
        for dictCommand in self.dictHelp["commands"]:
            strPage = (self.pathPages / f"{dictCommand['command'].replace(' ', '-')}.1").read_text().replace("\\-", "-")
            for dictInner in Commands(dictCommand):
                for dictOption in dictInner["options"]:
                    self.assertIn(dictOption["names"][-1], strPage)

    def test_the_pages_have_no_fault(self):
        asPages = sorted(map(str, self.pathPages.iterdir()))
        if shutil.which("mandoc") is None:
            self.skipTest("there is no mandoc")
        stLint = subprocess.run(["mandoc", "-Tlint", "-W", "warning", *asPages], capture_output=True, text=True)
        self.assertEqual((stLint.returncode, stLint.stdout + stLint.stderr), (0, ""))

    def test_a_reader_sees_what_the_help_says(self):
        if shutil.which("mandoc") is None:
            self.skipTest("there is no mandoc")
        stShown = subprocess.run(["mandoc", "-Tascii", "-O", "width=100", str(self.pathPages / "fructl-label.1")], capture_output=True, text=True)
        strShown = re.sub(r".\x08", "", stShown.stdout)
        self.assertIn("fructl label set [OPTIONS] [DEVICE] [NAME] [VALUE] [MORE...]", strShown)
        self.assertIn("--dry-run", strShown)
        self.assertIn('fructl label get baseboard "Board Serial Number"', strShown)


if __name__ == "__main__":
    unittest.main()
