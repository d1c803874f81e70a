# SPDX-License-Identifier: Apache-2.0
"""fructl label set beside other writers and under signals."""
import concurrent.futures
import contextlib
import fcntl
import os
import signal
import subprocess
import time
import unittest
from pathlib import Path

from label_support import LabelTest, PSU_EEPROM
from support import COMMAND, HANG_SECONDS


class Writers(LabelTest):
    def test_a_second_writer_waits_and_is_told_who_holds_the_lock(self):
        self.Provision()
        self.Good("label", "set", "psu1", "Product Version", "A2")
        pathLock = self.pathRoot / "var/lock/fructl.lock"
        with open(pathLock, "r+") as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            stLock.write("pid 4711, fructl label set baseboard\n")
            stLock.flush()
            fStart = time.monotonic()
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "--wait", "2", "label", "set", "psu1", "Product Version", "A3"], stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
            self.assertEqual(self.Bad(7, "--wait", "2", "label", "set", "psu1", "Product Version", "A5"),
                             f"another command is writing to {self.pathRoot}: pid 4711, fructl label set baseboard; try again when it is done")
            self.assertEqual(stProcess.wait(), 7)
            self.assertGreaterEqual(time.monotonic() - fStart, 2.0)
        self.assertEqual(self.Json("show", "psu1")["product"]["version"], "A2")

    def test_writers_at_the_same_time_lose_nothing(self):
        self.Provision()
        listNames = ["Product Version", "Product Asset Tag", "Board Part Number", "Board Manufacturer"]

        def SetWhenItMay(i):
            """On a busy machine the others may hold the lock for longer than a writer waits."""
            stResult = self.Fructl("label", "set", "psu1", listNames[i], f"w{i}")
            while "another command is " in stResult.strErr:
                stResult = self.Fructl("label", "set", "psu1", listNames[i], f"w{i}")
            return stResult.iCode

        with concurrent.futures.ThreadPoolExecutor(len(listNames)) as stPool:
            self.assertEqual(list(stPool.map(SetWhenItMay, range(4))), [0] * 4)
        self.assertEqual([self.Good("label", "get", "psu1", strName).strOut for strName in listNames], [f"w{i}\n" for i in range(4)])
        self.Good("verify", "psu1")

    def test_an_interrupted_write_is_finished_first(self):
        self.Provision()
        pathLock = self.ChipLock(PSU_EEPROM)
        with open(pathLock, "w") as stChip:
            fcntl.flock(stChip, fcntl.LOCK_SH)  # readers get in, the write waits
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "label", "set", "psu1", "Product Version=A7", "Product Asset Tag=RACK7"],
                                         stdout=subprocess.DEVNULL)
            fEnd = time.monotonic() + HANG_SECONDS
            while not self.WaitsForLock(stProcess.pid, pathLock) and time.monotonic() < fEnd:
                time.sleep(0.02)
            stProcess.send_signal(signal.SIGINT)
            time.sleep(0.2)
            self.assertIsNone(stProcess.poll())
        self.assertEqual(stProcess.wait(), -signal.SIGINT)
        # All labels of the command are in the device, the cache and the log: it is all or nothing.
        self.assertEqual([self.Json("show", "psu1")["product"][strKey] for strKey in ("version", "assetTag")], ["A7", "RACK7"])
        self.assertEqual([s[2] for s in self.OperationLog()],
                         ["Set psu1 FRU successfully, psu1 Product Version: A7.", "Set psu1 FRU successfully, psu1 Product Asset Tag: RACK7."])
        self.Good("verify", "psu1")

    def WaitsForLock(self, iPid, pathLock):
        """Whether the process stays at a lock: a reader has its file open for a moment only."""
        for _ in range(10):
            asOpen = []
            for pathFd in Path(f"/proc/{iPid}/fd").glob("*"):
                with contextlib.suppress(OSError):
                    asOpen.append(os.readlink(pathFd))
            if str(pathLock) not in asOpen:
                return False
            time.sleep(0.02)
        return True


if __name__ == "__main__":
    unittest.main()
