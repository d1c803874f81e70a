# SPDX-License-Identifier: Apache-2.0
"""Files that fail at one call, or from one call on: what is there after the next command is the old or the new, whole.

FRUCTL_FAULT_POINTS tries more calls of each kind than a quick run does (0: every one).
"""
import os
import unittest

from cut_support import CutTest

POINTS = int(os.environ.get("FRUCTL_FAULT_POINTS", "3"))
CHIP = "eeprom/bus1-addr0xa0.bin"
DATABASE = "var/lib/fru/fru.db"
FAULTS = {"pread64": ("error=EIO",), "pwrite64": ("error=EIO", "error=ENOSPC"), "fsync": ("error=EIO",), "fdatasync": ("error=EIO",),
          "ftruncate": ("error=EIO",)}
# A chip may also acknowledge bytes and not store them.
CHIP_FAULTS = {**FAULTS, "pwrite64": (*FAULTS["pwrite64"], "retval=1")}


def Spread(iCount):
    """The first, the last and some between, or all."""
    if POINTS == 0 or iCount <= POINTS:
        return range(1, iCount + 1)
    if POINTS == 1:
        return [1 + iCount // 2]
    return sorted({1 + i * (iCount - 1) // (POINTS - 1) for i in range(POINTS)})


def Mixed(dictNow, dictOld, dictNew):
    """What is as it was, as it should be, and neither."""
    return {strKey: "old" if dictNow.get(strKey) == dictOld.get(strKey) else "new" if dictNow.get(strKey) == dictNew.get(strKey) else "neither"
            for strKey in dictOld | dictNew if dictOld.get(strKey) != dictNew.get(strKey)}


class Faults(CutTest):
    def Calls(self, asFilter, *asArguments):
        """How often the command makes each of the calls on these files."""
        pathTrace = self.pathTemp / "trace"
        self.Trace(pathTrace, asFilter, ",".join(FAULTS), *asArguments)
        asLines = pathTrace.read_text(errors="replace").splitlines()
        return {strCall: sum(f" {strCall}(" in strLine for strLine in asLines) for strCall in FAULTS}

    def AssertWhole(self, *asArguments):
        pathBase = self.Save("base")
        dictOld = self.State()
        self.Good(*asArguments)
        dictNew = self.State()
        self.assertTrue(dictOld != dictNew)
        iTried = iFailed = 0
        for dictFaults, asFiles in ((CHIP_FAULTS, [CHIP]), (FAULTS, [DATABASE, DATABASE + "-wal"])):
            asFilter = [strWord for strFile in asFiles for strWord in ("-P", str(self.pathRoot / strFile))]
            self.Reset(pathBase)
            for strCall, iCalls in self.Calls(asFilter, *asArguments).items():
                for strFault in dictFaults[strCall]:
                    for strWhen in [f"{i}{strOn}" for i in Spread(iCalls) for strOn in ("", "+")]:
                        self.Reset(pathBase)
                        strPoint = f"{asArguments}, {asFiles[0]}, {strCall} {strFault} {strWhen}"
                        stDone = self.Inject(strCall, f"{strFault}:when={strWhen}", *asArguments, asFilter=asFilter)
                        self.assertGreaterEqual(stDone.returncode, 0, strPoint)
                        self.assertEqual(stDone.returncode == 0, stDone.stderr == "", f"{strPoint}: {stDone.stderr}")
                        stAfter = self.Fructl("list")
                        self.assertEqual(stAfter.iCode, 0, f"{strPoint}: {stAfter.strErr}")
                        dictNow = self.State()
                        self.assertTrue(dictNow in (dictOld, dictNew), f"{strPoint}: neither old nor new {Mixed(dictNow, dictOld, dictNew)}; "
                                        f"{stDone.stderr}{stAfter.strErr}")
                        self.assertTrue(stDone.returncode != 0 or dictNow == dictNew, f"{strPoint}: success, and nothing new")
                        self.Good("list")
                        iTried += 1
                        iFailed += stDone.returncode != 0
        self.assertGreaterEqual(iTried, 12)
        self.assertGreaterEqual(iFailed, 6)
        print(f"{iTried} faults: {iFailed} times the command failed")

    def test_labels(self):
        self.AssertWhole("label", "set", "baseboard", "Product Serial Number=LHFAULT001", "Board Serial Number=MBFAULT002")

    def test_clear(self):
        self.AssertWhole("clear", "baseboard", "--yes")

    def test_records(self):
        self.AssertWhole("mr", "add", "system-name=fault", "--force")

    def test_undo(self):
        self.Good("label", "set", "baseboard", "Product Serial Number=LHFAULT001")
        self.AssertWhole("undo", "baseboard")


if __name__ == "__main__":
    unittest.main()
