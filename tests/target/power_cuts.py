# SPDX-License-Identifier: Apache-2.0
"""Power cuts: the machine is killed in the middle of writes, and started again with the chips and the disk that it had."""
import random
import time

import controller
from controller import Fructl

# Lengths differ, so that everything behind the field moves.
VALUES = {"A": "SN-4711", "B": "SERIAL-0815-LONGER-THAN-THE-OTHER"}
LABELS = ("Product Serial Number", "Board Serial Number")


def Setting(stDevice, strValue):
    return Fructl("label", "set", stDevice.strName, *(f"{strLabel}={VALUES[strValue]}" for strLabel in LABELS))


class PowerCuts:
    def __init__(self, stWorld, stReport, listBackends, iCuts, uiSeed):
        self.stWorld = stWorld
        self.stReport = stReport
        self.listDevices = stWorld.Devices(listBackends)
        self.iCuts = iCuts
        self.uiSeed = uiSeed
        self.stRandom = random.Random(uiSeed)
        self.dictKnown = {}  # by device and value: the whole chip
        self.iOld = self.iNew = self.iMended = self.iTwice = 0
        self.fBoots = 0.0

    def Learn(self, stMachine):
        """What each chip holds with either value, by writes that nobody cuts short, and how long they take."""
        self.fTook = 0.0
        for strValue in "ABAB":  # the second time with what the other value leaves behind the image
            for stDevice in self.listDevices:
                fBegin = time.monotonic()
                stMachine.Good(Setting(stDevice, strValue))
                self.fTook = max(self.fTook, time.monotonic() - fBegin)
                self.dictKnown[stDevice.strName, strValue] = stDevice.Contents(stMachine)
        self.dictValues = {stDevice.strName: strValue for stDevice in self.listDevices}
        for stDevice in self.listDevices:
            if self.dictKnown[stDevice.strName, "A"] == self.dictKnown[stDevice.strName, "B"]:
                raise AssertionError(f"{stDevice.strName}: both values give the same chip")

    def Script(self):
        """Writes one device after the other, for ever; says what begins and what is done."""
        dictValues = dict(self.dictValues)
        asLines = []
        for _ in range(2):
            for stDevice in self.stRandom.sample(self.listDevices, len(self.listDevices)):
                strValue = dictValues[stDevice.strName] = "B" if dictValues[stDevice.strName] == "A" else "A"
                asLines += [f"echo '#BEGIN {stDevice.strName} {strValue}'", f"{Setting(stDevice, strValue)} >/dev/null",
                            f"echo '#DONE {stDevice.strName} '$?"]
        return "\n".join(asLines)

    def WaitForWrite(self, stMachine, stDevice):
        """Until the chip's file changes, or the write is over."""
        abBefore = stDevice.stChip.Bytes()
        fUntil = time.monotonic() + 60.0
        while stDevice.stChip.Bytes() == abBefore and time.monotonic() < fUntil and b"#DONE" not in stMachine.abIn:
            stMachine.More(time.monotonic() + 0.0005)
        time.sleep(self.stRandom.uniform(0.0, 0.03))

    def Cut(self, stMachine):
        """Has the machine write, and kills it; the device whose write was not done yet, and the value it was to have."""
        stMachine.Begin(self.Script())
        stNow = None
        for _ in range(self.stRandom.randint(1, 4)):
            if stNow:
                stMachine.Until(b"#DONE ")
                self.Done(stMachine.Line())
            stMachine.Until(b"#BEGIN ")
            stNow = stMachine.Line().split()
        stDevice = next(stDevice for stDevice in self.listDevices if stDevice.strName == stNow[0])
        if stDevice.stChip and self.stRandom.random() < 0.6:
            self.WaitForWrite(stMachine, stDevice)
        else:
            time.sleep(self.stRandom.uniform(0.0, self.fTook))
        stMachine.Kill()
        # What it managed to say is held against it.
        self.dictValues[stNow[0]] = "?" + stNow[1]
        for strLine in stMachine.Rest().splitlines():
            asWords = strLine.split()
            if strLine.startswith("#BEGIN ") and len(asWords) == 3 and asWords[2] in VALUES:
                self.dictValues[asWords[1]] = "?" + asWords[2]
            elif strLine.startswith("#DONE ") and len(asWords) == 3:
                self.Done(strLine.removeprefix("#DONE "))

    def Done(self, strLine):
        strName, strCode = strLine.split()
        if strCode != "0":
            raise AssertionError(f"{strName}: a write ended with {strCode}")
        strValue = self.dictValues[strName].removeprefix("?")
        self.dictValues[strName] = strValue if "?" in self.dictValues[strName] else ("B" if strValue == "A" else "A")

    def Look(self, stMachine, strWhere):
        """Every device is what the write before made of it, or old or new where one was cut short."""
        stAnswer = stMachine.Run(Fructl("list"))
        self.iMended += "is finished now" in stAnswer.strErr
        if stAnswer.iCode != 0:
            raise AssertionError(f"{strWhere}: list: {stAnswer.iCode}\n{stAnswer.strOut}{stAnswer.strErr}")
        for stDevice in self.listDevices:
            strKnown = self.dictValues[stDevice.strName]
            abChip = stDevice.Contents(stMachine)
            listFits = [strValue for strValue in VALUES if abChip == self.dictKnown[stDevice.strName, strValue]]
            if not listFits or ("?" not in strKnown and listFits != [strKnown]):
                (self.stWorld.pathWork / "wrong-chip.bin").write_bytes(abChip)
                raise AssertionError(f"{strWhere}: {stDevice.strName} is {listFits or 'neither old nor new'}, expected {strKnown}\n"
                                     f"{stAnswer.strOut}{stAnswer.strErr}")
            if "?" in strKnown:
                self.iNew += listFits == [strKnown[1:]]
                self.iOld += listFits != [strKnown[1:]]
            self.dictValues[stDevice.strName] = listFits[0]
        stMachine.Good(Fructl("verify"))
        dictList = controller.Json(stMachine, "list")
        for dictDevice in dictList["devices"]:
            if dictDevice.get("cache") not in ("same", None):
                raise AssertionError(f"{strWhere}: {dictDevice}")

    def MendingCut(self):
        """Once more in the middle of the first command after the cut."""
        with self.stWorld.Boot(bSmall=True) as stMachine:
            stMachine.Begin(Fructl("list"))
            time.sleep(self.stRandom.uniform(0.0, self.fTook / 2))
            stMachine.Kill()
        self.iTwice += 1

    def Run(self):
        with self.stWorld.Boot(bSmall=True) as stMachine:
            controller.Provision(stMachine, self.listDevices)
            self.Learn(stMachine)
            for iCut in range(self.iCuts):
                self.Cut(stMachine)
                if self.stRandom.random() < 0.15:
                    self.MendingCut()
                stMachine = self.stWorld.Boot(bSmall=True)
                self.fBoots += stMachine.fBoot
                self.Look(stMachine, f"cut {iCut + 1} (seed {self.uiSeed})")
                if (iCut + 1) % 10 == 0:
                    self.stReport.Note(f"{iCut + 1} cuts")
            stMachine.Off()
        if self.iMended == 0 or self.iNew == 0:
            raise AssertionError("no cut hit a write that had begun")
        return (f"{self.iCuts} power cuts, {self.iTwice} of them with a second one in the mending: every device old or new; old {self.iOld}, "
                f"new {self.iNew}, {self.iMended} finished by the first command after; {self.fBoots / self.iCuts:.1f} s a boot")
