# SPDX-License-Identifier: Apache-2.0
"""Decoding beside python3-pyipmi's, in one process: processor time, the smallest of many rounds that take turns.

usage: speed.py [--check N]      --check: exit code 1 when decoding is not N times as fast
"""
import array
import pathlib
import subprocess
import sys
import tempfile
import time

from support import FRUCTL, TEMP, Provision
import bmcfru
from pyipmi.fru import FruInventory

ROUNDS, CALLS = 40, 50


def Ours(aucImage):
    return bmcfru.decode(aucImage)


def OursRead(aucImage):
    """Every field of every area looked at."""
    record = bmcfru.decode(aucImage)
    return record.internalUse, record.chassis, record.board, record.product


def Theirs(aucImage):
    return FruInventory(array.array("B", aucImage))


def Measure(aucImage):
    afn = (Ours, OursRead, Theirs)
    afBest = [float("inf")] * len(afn)
    for _ in range(ROUNDS):
        for i, fn in enumerate(afn):
            fBegin = time.process_time()
            for _ in range(CALLS):
                fn(aucImage)
            afBest[i] = min(afBest[i], (time.process_time() - fBegin) / CALLS * 1e6)
    return afBest


def main():
    afSum = [0.0, 0.0, 0.0]
    with tempfile.TemporaryDirectory(dir=TEMP) as strTemp:
        Provision(pathlib.Path(strTemp) / "root")
        for strDevice in ("baseboard", "psu1", "psu2", "bmc-card"):
            aucImage = subprocess.run([FRUCTL, "--root", f"{strTemp}/root", "read", strDevice, "-o", "-"], check=True,
                                      capture_output=True).stdout
            afBest = Measure(aucImage)
            afSum = [fSum + fBest for fSum, fBest in zip(afSum, afBest)]
            print(f"{strDevice:10} {len(aucImage):5} bytes   decode {afBest[0]:6.2f} us, and every field read "
                  f"{afBest[1]:6.2f} us   python3-pyipmi {afBest[2]:6.2f} us   ratio {afBest[2] / afBest[0]:5.1f}, "
                  f"{afBest[2] / afBest[1]:5.1f}")
    fRatio = afSum[2] / afSum[0]
    print(f"all: {fRatio:.1f} times as fast, {afSum[2] / afSum[1]:.1f} times with every field read")
    if "--check" in sys.argv and fRatio < float(sys.argv[sys.argv.index("--check") + 1]):
        sys.exit(1)


if __name__ == "__main__":
    main()
