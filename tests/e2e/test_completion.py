# SPDX-License-Identifier: Apache-2.0
"""What shells complete: the query that their scripts ask, and bash, zsh and fish themselves."""
import os
import pathlib
import shutil
import subprocess
import unittest

from support import COMMAND, FRUCTL, FructlTest, Run
from terminal_support import Terminal

DEVICES = ["baseboard", "psu1", "psu2", "riser", "bmc-card", "bmc-card-hw"]


class Query(FructlTest):
    def Offered(self, *asWords):
        """Words and what they are."""
        return dict(strLine.partition("\t")[::2] for strLine in self.Good("complete", "--", *asWords).strOut.splitlines())

    def test_commands_with_what_they_do(self):
        dictOffered = self.Offered("")
        self.assertEqual(dictOffered["list"], "List the devices and the state of their images")
        self.assertNotIn("complete", dictOffered)
        self.assertNotIn("manual", dictOffered)
        self.assertEqual(list(self.Offered("label", "")), ["list", "get", "set"])
        self.assertEqual(list(self.Offered("help", "label", "s")), ["set"])

    def test_options_of_the_command_and_of_all(self):
        asOffered = list(self.Offered("map", "--"))
        for strOption in ("--id", "--file", "--source", "--json", "--root", "--color"):
            self.assertIn(strOption, asOffered)
        self.assertEqual(asOffered.count("--help"), 1)
        self.assertEqual(list(self.Offered("map", "--so")), ["--source"])

    def test_values_of_an_option(self):
        self.assertEqual(list(self.Offered("map", "--source", "")), ["eeprom", "cache"])
        self.assertEqual(list(self.Offered("map", "--source=c")), ["--source=cache"])
        self.assertEqual(list(self.Offered("--color", "a")), ["auto", "always"])
        self.assertEqual(list(self.Offered("--root", "")), [":folders"])
        self.assertEqual(list(self.Offered("encode", "")), [":files"])

    def test_devices_and_files(self):
        self.Provision()
        self.assertEqual(list(self.Offered("show", "")), [*DEVICES, ":files"])
        self.assertEqual(self.Offered("clear", "psu"), {"psu1": "0x03:0", "psu2": "0x03:1"})
        self.assertEqual(list(self.Offered("diff", "psu1", "psu2")), ["psu2", ":files"])

    def test_the_labels_that_the_named_device_takes(self):
        self.Provision()
        asNames = [dictLabel["name"] for dictLabel in self.Json("label", "list", "psu1")["labels"]]
        self.assertEqual(list(self.Offered("label", "get", "psu1", "")), asNames)
        self.assertEqual(list(self.Offered("label", "get", "--id", "1", "")), asNames)
        self.assertLess(len(asNames), len(list(self.Offered("label", "get", "nonsense", ""))))
        self.assertEqual(list(self.Offered("label", "set", "psu1", "Product S")), ["Product Serial Number"])

    def test_the_root_on_the_line_counts(self):
        self.Provision()
        stResult = Run("--root", self.pathTemp / "nowhere", "complete", "--", "--root", self.pathRoot, "show", "ris")
        self.assertEqual((stResult.iCode, stResult.strOut), (0, "riser\t0x08:0\n:files\n"))

    def test_without_a_controller_nothing_is_offered_told_or_made(self):
        self.assertEqual(self.Good("complete", "--", "clear", "").strOut, "")
        self.assertFalse(self.pathRoot.exists())


class Shell(FructlTest):
    """A shell that has loaded its script; fructl is the one that is tested."""

    def setUp(self):
        super().setUp()
        self.Provision()
        self.pathBin = self.pathTemp / "bin"
        self.pathBin.mkdir()
        pathProgram = self.pathBin / "fructl"
        pathProgram.write_text(f'#!/bin/sh\nexec {" ".join(COMMAND)} "$@"\n')
        pathProgram.chmod(0o755)
        self.dictEnvironment = {"PATH": f"{self.pathBin}:{os.environ['PATH']}", "FRUCTL_ROOT": str(self.pathRoot), "HOME": str(self.pathTemp)}

    def Script(self, strShell):
        if shutil.which(strShell) is None:
            self.skipTest(f"there is no {strShell}")
        return self.Write(f"fructl.{strShell}", self.Good("completion", strShell).strOut.encode())

    def Bash(self, *asWords, strMore=""):
        """COMPREPLY for the words as readline hands them over."""
        strWords = " ".join(f"'{strWord}'" for strWord in asWords)
        strCode = (f"source {self.Script('bash')}; COMP_WORDS=(fructl {strWords}); COMP_CWORD={len(asWords)}; {strMore}\n"
                   "_fructl; printf '%s\\n' \"${COMPREPLY[@]}\"")
        stProcess = subprocess.run(["bash", "--norc", "-c", strCode], capture_output=True, text=True,
                                   env={**os.environ, **self.dictEnvironment})
        self.assertEqual(stProcess.stderr, "")
        return stProcess.stdout.split("\n")[:-1]

    def test_bash_is_offered_words_devices_labels_and_values(self):
        self.assertEqual(self.Bash("lis"), ["list"])
        self.assertEqual(self.Bash("clear", "p"), ["psu1", "psu2"])
        self.assertEqual(self.Bash("label", "get", "psu1", "Product\\ S"), ["Product Serial Number"])
        self.assertEqual(self.Bash("label", "get", "psu1", '"Product S'), ["Product Serial Number"])
        self.assertEqual(self.Bash("map", "--source", "=", "c"), ["cache"])
        # A device as TYPE:INSTANCE is one word, whatever readline thinks.
        self.assertEqual(self.Bash("label", "get", "0x03", ":", "0", "Product S"), ["Product Serial Number"])
        (self.pathTemp / "there.json").touch()
        self.assertEqual(self.Bash("encode", f"{self.pathTemp}/the"), [f"{self.pathTemp}/there.json"])

    def test_bash_completes_on_a_terminal(self):
        pathScript = self.Script("bash")
        with Terminal(["bash", "--norc", "--noprofile", "-i"], 120, **self.dictEnvironment, PS1="READY> ", INPUTRC="/dev/null") as stTerminal:
            stTerminal.Await("READY> ")
            stTerminal.Type(f"source {pathScript}\n")
            stTerminal.Await("READY> ")
            # Commands, devices and a label, each by a few letters; the command runs as completed.
            stTerminal.Type("fructl lab\tge\tbaseb\tBoard\\ Ser\t\nexit\n")
            strSeen, _ = stTerminal.All()
            self.assertIn("fructl label get baseboard Board\\ Serial\\ Number", strSeen)
            self.assertIn("MB2241700137\n", strSeen)

    def test_zsh_completes_on_a_terminal(self):
        pathScript = self.Script("zsh")
        with Terminal(["zsh", "-f", "-i"], 120, **self.dictEnvironment, PS1="READY> ") as stTerminal:
            stTerminal.Await("READY> ")
            stTerminal.Type(f"autoload -U compinit; compinit -u -d {self.pathTemp}/dump; source {pathScript}; echo LOADED-$((1 + 1))\n")
            stTerminal.Await("LOADED-2")
            stTerminal.Type("fructl lab\tge\tbaseb\tBoard\\ Ser\t\nexit\n")
            strSeen, _ = stTerminal.All()
            self.assertIn("Board\\ Serial\\ Number", strSeen)
            self.assertIn("MB2241700137", strSeen)

    def test_fish_completes(self):
        pathScript = self.Script("fish")
        def Offered(strLine):
            stProcess = subprocess.run(["fish", "--no-config", "-c", f"source {pathScript}; complete -C '{strLine}'"], capture_output=True, text=True,
                                       env={**os.environ, **self.dictEnvironment})
            self.assertEqual((stProcess.returncode, stProcess.stderr), (0, ""))
            return [strOffered.partition("\t")[0].replace("\\ ", " ") for strOffered in stProcess.stdout.splitlines()]
        self.assertEqual(Offered("fructl lis"), ["list"])
        self.assertEqual(Offered("fructl clear psu"), ["psu1", "psu2"])
        self.assertEqual(Offered('fructl label get psu1 "Product S'), ["Product Serial Number"])
        self.assertEqual(Offered("fructl map --source c"), ["cache"])


class Installed(unittest.TestCase):
    def test_what_the_build_installs_is_what_the_command_prints(self):
        pathTexts = pathlib.Path(FRUCTL).parent / "tools/fructl/texts"
        if not (pathTexts / "done").exists():
            self.skipTest(f"the target fructl_texts is not built in {pathTexts}")
        for strShell, strFile in (("bash", "fructl.bash"), ("zsh", "_fructl"), ("fish", "fructl.fish")):
            self.assertEqual((pathTexts / "completion" / strFile).read_text(), Run("completion", strShell).strOut)


if __name__ == "__main__":
    unittest.main()
