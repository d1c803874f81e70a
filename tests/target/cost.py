# SPDX-License-Identifier: Apache-2.0
"""What a label write costs on the controller: time, memory, and what goes over the bus, counted by the kernel's trace points."""
import re

from controller import Fructl, Provision

TRACING = "/sys/kernel/tracing"
# A chip on a board: nine bits a byte at 100 kHz, and its write cycle after each write.
BIT_SECONDS = 1e-5
CYCLE_SECONDS = 0.005
ROUNDS = 5
MESSAGE = re.compile(r"\s(\d+\.\d+): i2c_(write|read|result): i2c-\d+ (?:#\d+ a=([0-9a-f]+) f=\w+ l=(\d+)|n=\d+ ret=(-?\d+))")


class Bus:
    """What the trace points tell of the transfers."""

    def __init__(self, strTrace):
        self.iTransfers = self.iRefused = self.iBytes = self.iCycles = 0
        self.fSeconds = self.fWireSeconds = 0.0
        fBegin = None
        for stFound in MESSAGE.finditer(strTrace):
            fNow = float(stFound.group(1))
            if stFound.group(2) == "result":
                self.iTransfers += 1
                self.iRefused += int(stFound.group(5)) < 0
                self.fSeconds += fNow - (fBegin if fBegin is not None else fNow)
                fBegin = None
                continue
            fBegin = fNow if fBegin is None else fBegin
            iLength = int(stFound.group(4))
            bCycle = stFound.group(2) == "write" and iLength > 2
            self.iCycles += bCycle
            self.iBytes += iLength
            # With the address, and the condition that begins or ends it.
            self.fWireSeconds += (9 * (iLength + 1) + 2) * BIT_SECONDS + (CYCLE_SECONDS if bCycle else 0.0)


class Cost:
    def __init__(self, stWorld, stMachine, stReport):
        self.stMachine = stMachine
        self.stReport = stReport
        self.stWorld = stWorld

    def One(self, strBackend):
        strRoot = f"/data/cost-{strBackend}"
        (stDevice, _) = listDevices = self.stWorld.Devices([strBackend], bMany=False)
        Provision(self.stMachine, listDevices, strRoot)
        listSeconds = []
        for iRound in range(ROUNDS):
            self.stMachine.Good(f"echo 0 > {TRACING}/tracing_on; echo > {TRACING}/trace; echo 1 > {TRACING}/events/i2c/enable; "
                                f"echo 1 > {TRACING}/tracing_on")
            strSet = Fructl("label", "set", stDevice.strName, f"Product Serial Number=COST-{iRound:04}", strRoot=strRoot)
            strTime = self.stMachine.Good(f"time -v {strSet} 2>&1 >/dev/null")
            stFound = re.search(r"Elapsed.*: (?:(\d+)h )?(\d+)m ([\d.]+)s", strTime)
            listSeconds.append(int(stFound.group(1) or 0) * 3600 + int(stFound.group(2)) * 60 + float(stFound.group(3)))
        # Without the bytes themselves, which the console would take long for.
        strTrace = self.stMachine.Good(f"echo 0 > {TRACING}/tracing_on; grep i2c_ {TRACING}/trace | sed 's/ \\[[0-9a-f-]*\\]$//'")
        iMemory = int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", strTime).group(1))
        fSeconds = sorted(listSeconds)[ROUNDS // 2]
        stBus = Bus(strTrace)
        strSaid = f"{fSeconds:.2f} s (middle of {ROUNDS}), {iMemory} KiB of memory"
        if strBackend != "file":
            if stBus.iTransfers == 0:
                raise AssertionError("the kernel saw no transfer")
            strSaid += (f"; bus: {stBus.iTransfers} transfers ({stBus.iRefused} not answered) with {stBus.iBytes} bytes, {stBus.iCycles} "
                        f"write cycles, {stBus.fSeconds * 1000:.0f} ms ({100 * stBus.fSeconds / fSeconds:.0f} %); on a wire of 100 kHz with "
                        f"cycles of 5 ms that is {stBus.fWireSeconds * 1000:.0f} ms")
        return strSaid

    def Run(self):
        for strBackend in ("file", "kernel", "i2c"):
            self.stReport.Check(f"cost of a label write over {strBackend}", lambda strWhich=strBackend: self.One(strWhich))
