# SPDX-License-Identifier: Apache-2.0
"""fructl on chips: the same commands over every back end, each chip byte for byte what an image file becomes."""
import json

import controller
from controller import OFFSET, Fructl, Provision

BACKENDS = ("kernel", "i2c")
SERIAL = "TARGET-0815"


class Commands:
    def __init__(self, stWorld, stMachine, stReport):
        self.stWorld = stWorld
        self.stMachine = stMachine
        self.stReport = stReport
        self.dictDevices = {strBackend: stWorld.Devices([strBackend], bMany=False) for strBackend in ("file", *BACKENDS)}
        self.dictBefore = {iAddress: stChip.Bytes() for iAddress, stChip in stWorld.dictChips.items()}

    def Images(self, strBackend):
        """The FRU images in the chips; what lies beside them has to be what it was."""
        dictImages = {}
        for stDevice in self.dictDevices[strBackend]:
            abChip = stDevice.Contents(self.stMachine, self.Root(strBackend))
            iEnd = OFFSET + stDevice.iSize
            dictImages[stDevice.strName] = abChip[OFFSET:iEnd]
            if stDevice.stChip:
                abBefore = self.dictBefore[stDevice.iAddress]
                if abChip[:OFFSET] + abChip[iEnd:] != abBefore[:OFFSET] + abBefore[iEnd:]:
                    raise AssertionError(f"{stDevice.strName}: bytes beside the image changed")
        return dictImages

    @staticmethod
    def Root(strBackend):
        return f"/data/{strBackend}"

    def Fructl(self, strBackend, *asArguments):
        return Fructl(*asArguments, strRoot=self.Root(strBackend))

    def Good(self, strBackend, *asArguments):
        return self.stMachine.Good(self.Fructl(strBackend, *asArguments))

    # ---- steps: what one says is compared with what it says over files ----

    def Provisioned(self, strBackend):
        Provision(self.stMachine, self.dictDevices[strBackend], self.Root(strBackend))
        for stDevice in self.dictDevices[strBackend]:
            if not self.Images(strBackend)[stDevice.strName].startswith(stDevice.abImage):
                raise AssertionError(f"{stDevice.strName}: the chip does not hold the image")

    def Shown(self, strBackend):
        return [json.loads(self.Good(strBackend, "--json", "show", strName)) for strName in ("baseboard", "psu1")]

    def ReadOff(self, strBackend):
        for strName, abImage in self.Images(strBackend).items():
            self.stMachine.Good(f"rm -f /tmp/read.bin; {self.Fructl(strBackend, 'read', strName, '-o', '/tmp/read.bin')}")
            if self.stMachine.Bytes("/tmp/read.bin") != abImage:
                raise AssertionError(f"{strName}: what was read is not what the chip holds")

    def LabelSet(self, strBackend):
        self.Good(strBackend, "label", "set", "baseboard", f"Product Serial Number={SERIAL}", f"Board Serial Number=B-{SERIAL}")
        self.Good(strBackend, "label", "set", "psu1", f"Product Serial Number={SERIAL}")
        for strName, abImage in self.Images(strBackend).items():
            if SERIAL.encode() not in abImage:
                raise AssertionError(f"{strName}: the serial number is not in the chip")

    def RecordsAdded(self, strBackend):
        self.Good(strBackend, "mr", "add", "system-name=target-test", "--force")
        if b"target-test" not in self.Images(strBackend)["baseboard"]:
            raise AssertionError("the record is not in the chip")
        return json.loads(self.Good(strBackend, "--json", "mr", "list"))

    def Written(self, strBackend):
        self.Good(strBackend, "write", "psu1", "/examples/psu2.hex")
        if not self.Images(strBackend)["psu1"].startswith(controller.Image("psu2.hex")):
            raise AssertionError("the chip does not hold the image")

    def Recovered(self, strBackend):
        self.Good(strBackend, "raw", "write", "psu1", "--offset", "0", "--bytes", "00 00 00 00")
        stVerify = self.stMachine.Run(self.Fructl(strBackend, "verify", "psu1"))
        if stVerify.iCode != 1:
            raise AssertionError(f"verify of a damaged chip ended with {stVerify.iCode}")
        self.Good(strBackend, "recover", "psu1")

    def Undone(self, strBackend):
        self.Good(strBackend, "undo", "baseboard")
        self.Good(strBackend, "verify")
        return self.Good(strBackend, "journal", "list")

    def Run(self):
        listSteps = [("provision", self.Provisioned), ("show", self.Shown), ("read", self.ReadOff), ("label set", self.LabelSet),
                     ("mr add", self.RecordsAdded), ("write", self.Written), ("recover", self.Recovered), ("undo", self.Undone)]
        for strStep, fnStep in listSteps:
            dictSaid = {}
            for strBackend in ("file", *BACKENDS):
                def Step(strWhich=strBackend):
                    dictSaid[strWhich] = (fnStep(strWhich), self.Images(strWhich))
                    if strWhich != "file" and dictSaid[strWhich] != dictSaid.get("file"):
                        raise AssertionError(f"not as over an image file: {dictSaid[strWhich]}\n{dictSaid.get('file')}"[:4000])
                self.stReport.Check(f"{strStep} over {strBackend}", Step)
