# SPDX-License-Identifier: Apache-2.0
"""The tour of the README: every command as it is printed, one after the other, ends with exit code 0."""
import os
import re
import subprocess
import unittest

from support import EMULATOR, Environment, FRUCTL, FructlTest, HANG_SECONDS, SOURCE

# They go on until somebody ends them, or need what is not installed everywhere; tests/ipmi has them.
ENDLESS = ("fructl serve", "fructl monitor", "ipmitool")


def TourCommands():
    strReadme = (SOURCE / "README.md").read_text()
    strTour = strReadme[strReadme.index("## A tour"):]
    strTour = strTour[:strTour.index("\n## ", 3)]
    for strBlock in re.findall(r"^```\n(.*?)^```", strTour, re.M | re.S):
        for strLine in strBlock.splitlines():
            strCommand = re.sub(r"\s+#.*", "", strLine)
            # What asks another machine needs that machine.
            if strCommand.startswith("fructl ") and not strCommand.startswith(ENDLESS) and "--bmc" not in strCommand:
                yield strCommand


class Tour(FructlTest):
    def test_every_command_of_the_tour_ends_with_0(self):
        listCommands = list(TourCommands())
        self.assertGreater(len(listCommands), 20)
        (self.pathTemp / "examples").symlink_to(SOURCE / "examples")
        pathProgram = self.pathTemp / "fructl"
        pathProgram.write_text("#!/bin/sh\nexec " + " ".join(f"'{strWord}'" for strWord in [*EMULATOR, FRUCTL]) + ' "$@"\n')
        pathProgram.chmod(0o755)
        dictEnvironment = Environment(FRUCTL_ROOT=str(self.pathRoot), PATH=f"{self.pathTemp}:{os.environ['PATH']}")
        for strCommand in listCommands:
            with self.subTest(strCommand):
                stProcess = subprocess.run(["bash", "-o", "pipefail", "-c", strCommand], cwd=self.pathTemp, capture_output=True, text=True,
                                           stdin=subprocess.DEVNULL, env=dictEnvironment, timeout=HANG_SECONDS)
                # A table's count and rate stand there, and nothing else does.
                self.assertEqual((stProcess.returncode, re.sub(r"^\d+ rows: .*\n$", "", stProcess.stderr)), (0, ""))


if __name__ == "__main__":
    unittest.main()
