# SPDX-License-Identifier: Apache-2.0
"""The tests on an emulated controller; scripts/target-test runs this, and says how."""
import argparse
import pathlib
import sys
import time

from commands import Commands
from controller import World
from cost import Cost
from machine import MachineError
from packages import CannotRun
from power_cuts import PowerCuts
from programs import Programs

SOURCE = pathlib.Path(__file__).resolve().parents[2]
CANNOT_RUN = 3
BACKENDS = ("kernel", "i2c", "file")


class Report:
    def __init__(self):
        self.fBegin = time.monotonic()
        self.iPassed = self.iFailed = 0

    def Note(self, strText):
        print(f"target: [{time.monotonic() - self.fBegin:4.0f}s] {strText}", flush=True)

    def Check(self, strName, fnCheck):
        """One result: what the check says, or why it failed."""
        try:
            strSaid = fnCheck()
        except (AssertionError, MachineError, KeyError, ValueError) as stError:
            self.iFailed += 1
            self.Note(f"FAILED {strName}: {stError}")
            return False
        self.iPassed += 1
        self.Note(f"ok {strName}" + (f": {strSaid}" if strSaid else ""))
        return True


def Arguments():
    stParser = argparse.ArgumentParser(prog="scripts/target-test", description=__doc__)
    stParser.add_argument("--quick", action="store_true", help="one boot: a part of the tests, and the commands on chips")
    stParser.add_argument("--part", type=int, action="append", choices=(1, 2, 3, 4),
                          help="only this: 1 test programs, 2 commands on chips, 3 power cuts, 4 time and memory")
    stParser.add_argument("--cuts", type=int, default=40, metavar="N", help="power cuts (40)")
    stParser.add_argument("--seed", type=int, default=20261122, metavar="N", help="of the moments of the power cuts")
    stParser.add_argument("--build", type=pathlib.Path, default=SOURCE / "build/armhf", metavar="DIR", help="the build for armhf")
    stParser.add_argument("--backends", default=",".join(BACKENDS), metavar="LIST", help="of part 3, of " + ", ".join(BACKENDS))
    return stParser.parse_args()


def main():
    stArguments = Arguments()
    setParts = set(stArguments.part or ((1, 2) if stArguments.quick else (1, 2, 3, 4)))
    stReport = Report()
    try:
        stWorld = World(stArguments.build.resolve(), stReport.Note)
        if setParts & {1, 2, 4}:
            with stWorld.Boot() as stMachine:
                stReport.Note(f"booted in {stMachine.fBoot:.1f} s, kernel {stWorld.stPackages.strKernel}")
                if 1 in setParts:
                    Programs(stWorld, stMachine, stReport, stArguments.quick).Run()
                if 2 in setParts:
                    Commands(stWorld, stMachine, stReport).Run()
                if 4 in setParts:
                    Cost(stWorld, stMachine, stReport).Run()
        if 3 in setParts:
            stWorld.Fresh()
            stCuts = PowerCuts(stWorld, stReport, stArguments.backends.split(","), stArguments.cuts, stArguments.seed)
            stReport.Check("power cuts", stCuts.Run)
    except CannotRun as stError:
        stReport.Note(f"CANNOT RUN: {stError}")
        return CANNOT_RUN
    except MachineError as stError:
        stReport.iFailed += 1
        stReport.Note(f"FAILED: {stError}")
    print(f"target: {stReport.iPassed} passed, {stReport.iFailed} failed")
    return 1 if stReport.iFailed else 0


if __name__ == "__main__":
    sys.exit(main())
