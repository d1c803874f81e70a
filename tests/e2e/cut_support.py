# SPDX-License-Identifier: Apache-2.0
"""Commands that are cut short: what they change, and how they are killed or made to fail at a call."""
import os
import shutil
import sqlite3
import subprocess
import unittest

from support import COMMAND, EMULATOR, Environment, FructlTest

CALLS = os.environ.get("FRUCTL_CUT_CALLS", "write pwrite64 ftruncate fallocate rename renameat renameat2 unlink unlinkat mkdir mkdirat "
                                           "fsync fdatasync").split()
KILLED = (-9, 137)
IMAGE_KEY = 0x10810200  # in the database, with the device's ID in its low byte
SERIAL_FILES = ("mnt/sdmmc0p4/board/ProductSerialNumber", "var/network/ProductSerialNumber")
STRACE = shutil.which("strace")
# In some containers nobody may trace.
MAY_TRACE = STRACE is not None and subprocess.run([STRACE, "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0
STEP = int(os.environ.get("FRUCTL_CUT_STEP", "1"))  # kills at every so many calls


def State(pathRoot):
    """Every chip, every cached image and the serial-number files."""
    dictState = {path.name: path.read_bytes() for path in sorted((pathRoot / "eeprom").glob("*.bin"))}
    stDb = sqlite3.connect(pathRoot / "var/lib/fru/fru.db")
    (strTable,) = stDb.execute("SELECT name FROM sqlite_master WHERE type = 'table'").fetchone()
    for iKey, abValue in stDb.execute(f"SELECT * FROM {strTable}"):
        if iKey & ~0xFF == IMAGE_KEY:
            dictState[f"cache {iKey & 0xFF}"] = abValue
    stDb.close()
    for strFile in SERIAL_FILES:
        pathFile = pathRoot / strFile
        dictState[strFile] = pathFile.read_bytes() if pathFile.exists() else None
    return dictState


@unittest.skipIf(EMULATOR, "an emulator's own calls would be counted")
@unittest.skipUnless(MAY_TRACE, "there is no strace, or it may not trace")
class CutTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def State(self):
        return State(self.pathRoot)

    def Inject(self, strCall, strWhat, *asArguments, asFilter=()):
        """Runs fructl under strace, which does something at its calls."""
        return subprocess.run([STRACE, "-f", "-o", "/dev/null", *asFilter, "-e", f"trace={strCall}", "-e", f"inject={strCall}:{strWhat}",
                               *COMMAND, "--root", str(self.pathRoot), *asArguments],
                              capture_output=True, text=True, check=False, env=Environment(ASAN_OPTIONS="detect_leaks=0"))

    def Trace(self, pathTrace, asFilter, strCalls, *asArguments):
        """Runs fructl and writes its calls into a file."""
        return subprocess.run([STRACE, "-f", "-o", str(pathTrace), *asFilter, "-e", f"trace={strCalls}", *COMMAND, "--root", str(self.pathRoot),
                               *asArguments], capture_output=True, check=True, env=Environment(ASAN_OPTIONS="detect_leaks=0"))

    def Cut(self, strCall, iWhen, *asArguments):
        """Whether the command was killed at the call."""
        return self.Inject(strCall, f"signal=KILL:when={iWhen}", *asArguments).returncode in KILLED

    def Reset(self, pathFrom):
        shutil.rmtree(self.pathRoot)
        shutil.copytree(pathFrom, self.pathRoot)

    def Points(self, pathFrom, *asArguments):
        """Every point, one after the other, with the command killed there."""
        for strCall in CALLS:
            iWhen = 1
            self.Reset(pathFrom)
            while self.Cut(strCall, iWhen, *asArguments):
                yield f"{strCall} {iWhen}"
                iWhen += STEP
                self.Reset(pathFrom)

    def Save(self, strName):
        pathSaved = self.pathTemp / strName
        shutil.copytree(self.pathRoot, pathSaved)
        return pathSaved
