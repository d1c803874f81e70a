#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""What other programs make of the images: clients.py FRUCTL prints a table for docs/vectors.md.

ipmitool reads them through the IPMI service, FreeIPMI's ipmi-fru and python3-pyipmi from a file. A program "tells" a fault when it
complains or fails for whatever reason; it is "silent" when it shows the image as if all were well.
"""
import os
import pathlib
import re
import subprocess
import sys

PATH_HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(PATH_HERE), str(PATH_HERE.parent / "ipmi")]

import bench  # noqa: E402
import make_vectors  # noqa: E402

BATCH = 60
SECONDS = 60
COMPLAINT = re.compile(r"error|invalid|bad |checksum|fail|unknown|not present|no data|truncat|unable|incorrect|unsupported|too (short|small|long)|not given", re.I)
OUTCOMES = ("told", "silent", "crashed", "hung")


class Cleanups:
    """What bench asks of a test case."""

    def __init__(self):
        self.listCleanups = []

    def addCleanup(self, fnCall, *tupArgs):
        self.listCleanups.append((fnCall, tupArgs))

    def Run(self):
        for fnCall, tupArgs in reversed(self.listCleanups):
            fnCall(*tupArgs)
        self.listCleanups = []


def Outcome(asCommand):
    try:
        stDone = subprocess.run(asCommand, capture_output=True, text=True, errors="replace", timeout=SECONDS)
    except subprocess.TimeoutExpired:
        return "hung"
    if stDone.returncode < 0:
        return "crashed"
    return "told" if stDone.returncode != 0 or COMPLAINT.search(stDone.stdout + stDone.stderr) else "silent"


def PyIpmi(pathImage):
    strCode = "import sys, array, pyipmi.fru as f; f.get_fru_inventory_from_file(sys.argv[1])"
    return Outcome(["/usr/bin/python3", "-c", strCode, str(pathImage)])


def IpmiTool(stService, iDevice):
    return Outcome(["ipmitool", "-I", "lanplus", "-C", "3", "-H", "127.0.0.1", "-p", str(stService.iPort), "-U", "admin", "-P", stService.strPassword,
                    "fru", "print", str(iDevice)])


def Main():
    bench.STR_FRUCTL = os.path.abspath(sys.argv[1])
    bench.STR_BUILD = os.path.dirname(bench.STR_FRUCTL)
    dictImages = make_vectors.All()
    listNames = list(dictImages)
    dictOutcomes = {}
    for iFrom in range(0, len(listNames), BATCH):
        stCase = Cleanups()
        asBatch = listNames[iFrom:iFrom + BATCH]
        # An EEPROM is larger than what it holds.
        listDevices = [bench.DEVICE(i, f"image{i}", 0x20, i, dictImages[strName][0], len(dictImages[strName][0]) + 8) for i, strName in enumerate(asBatch)]
        stController = bench.CONTROLLER(stCase, listDevices)
        stService = bench.SERVICE(stCase, stController)
        for i, strName in enumerate(asBatch):
            pathImage = pathlib.Path(stController.strBase) / f"image{i}.bin"
            dictOutcomes[strName] = (IpmiTool(stService, i), Outcome(["ipmi-fru", f"--fru-file={pathImage}"]), PyIpmi(pathImage))
            print(strName, *dictOutcomes[strName], file=sys.stderr, flush=True)
        stCase.Run()
    dictGroups = {}
    for strName, (_, dictInfo) in dictImages.items():
        asKinds = sorted({dictFault["kind"] for dictFault in dictInfo["faults"]}) or sorted({f"remark: {dictOne['kind']}" for dictOne in dictInfo["remarks"]})
        for strKind in asKinds or ["nothing wrong"]:
            dictGroups.setdefault(strKind, []).append(strName)
    print("| Fault | Images | ipmitool | FreeIPMI | pyipmi |\n|---|---|---|---|---|")
    for strKind, asNames in sorted(dictGroups.items()):
        asCells = []
        for iClient in range(3):
            asSeen = [dictOutcomes[strName][iClient] for strName in asNames]
            asCells.append(", ".join(f"{asSeen.count(strOne)} {strOne}" for strOne in OUTCOMES if strOne in asSeen))
        print(f"| {strKind} | {len(asNames)} | {' | '.join(asCells)} |")


if __name__ == "__main__":
    Main()
