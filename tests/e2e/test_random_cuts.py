# SPDX-License-Identifier: Apache-2.0
"""Commands killed at random moments, one after the other on the same controller: each leaves the old or the new, whole.

FRUCTL_RANDOM_CUTS says how many kills; a quick run does a few.
"""
import os
import random
import shutil
import signal
import subprocess
import time
import unittest

from cut_support import CutTest, State
from support import COMMAND, HANG_SECONDS, Environment

KILLS = int(os.environ.get("FRUCTL_RANDOM_CUTS", "100"))
SEED = int(os.environ.get("FRUCTL_SEED", "20261121"))


class RandomCuts(CutTest):
    def Command(self, stRandom):
        strText = "".join(stRandom.choices("ABCDEFGHJKLMNPQRSTUVWXYZ0123456789", k=12))
        return stRandom.choice([
            ["label", "set", "psu1", f"Product Asset Tag={strText}"],
            ["label", "set", "baseboard", f"Product Serial Number={strText}", f"Board Serial Number={strText[::-1]}"],
            ["label", "set", "psu2", f"Board Serial Number={strText}", f"Product Asset Tag={strText}"],
            ["mr", "add", f"system-name={strText}", "--force"],
            ["hw", "set", "bmc-card-hw", "--pcb", str(stRandom.randrange(256)), "--cpld", str(stRandom.randrange(256))],
            ["raw", "write", "bmc-card-hw", "--offset", "0x1f", "--bytes", f"{stRandom.randrange(256):02x}"],
            ["assemble", "psu1", f"board-product-name={strText}", "--force"],
            ["undo", "psu1"],
            ["undo", "baseboard"],
        ])

    def Killed(self, fAfter, asCommand):
        """Whether the command was killed so many seconds after its start."""
        with subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), *asCommand], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              env=Environment(ASAN_OPTIONS="detect_leaks=0")) as stProcess:
            time.sleep(fAfter)
            stProcess.send_signal(signal.SIGKILL)
            return stProcess.wait(HANG_SECONDS) == -signal.SIGKILL

    def Whole(self, pathRoot, *asCommand):
        return subprocess.run([*COMMAND, "--root", str(pathRoot), *asCommand], capture_output=True, text=True, check=False,
                              env=Environment(), timeout=HANG_SECONDS)

    def test_every_kill_leaves_the_old_or_the_new(self):
        stRandom = random.Random(SEED)
        pathOther = self.pathTemp / "other"
        iKills = iNew = iMended = 0
        while iKills < KILLS:
            asCommand = self.Command(stRandom)
            dictOld = self.State()
            shutil.rmtree(pathOther, ignore_errors=True)
            shutil.copytree(self.pathRoot, pathOther)
            fBegin = time.monotonic()
            if self.Whole(pathOther, *asCommand).returncode != 0:
                continue  # nothing to undo, or the value does not fit any more
            fTook = time.monotonic() - fBegin
            dictNew = State(pathOther)
            iKills += self.Killed(stRandom.uniform(0.0, fTook), asCommand)
            for _ in range(stRandom.choice((0, 0, 1, 2))):  # and in the middle of the mending
                self.Killed(stRandom.uniform(0.0, fTook / 2), ["list"])
            stAfter = self.Fructl("list")
            self.assertEqual(stAfter.iCode, 0, f"kill {iKills}, {asCommand}: {stAfter.strErr}")
            dictNow = self.State()
            self.assertTrue(dictNow in (dictOld, dictNew), f"kill {iKills}, {asCommand}: neither old nor new; {stAfter.strErr}")
            iNew += dictNow == dictNew
            iMended += "is finished now" in stAfter.strErr
        self.Good("journal", "list")
        print(f"{iKills} kills: {iNew} times the new image, {iMended} of them finished by the next command")
        self.assertTrue(0 < iNew)


if __name__ == "__main__":
    unittest.main()
