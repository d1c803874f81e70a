# SPDX-License-Identifier: Apache-2.0
"""fructl on chips: the same commands over every back end, each chip byte for byte what an image file becomes."""
import json

import controller
from controller import BUS, KERNEL_ADDRESSES, OFFSET, RAW_ADDRESSES, Fructl, Provision

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

    # ---- what this machine's kernel knows: nothing of it writes ----

    def Scanned(self):
        dictChips = {(dictChip["bus"], dictChip["address"]): dictChip for dictChip in json.loads(self.stMachine.Good("fructl --json scan"))["chips"]}
        for iAddress in KERNEL_ADDRESSES:
            dictChip = dictChips[BUS, iAddress]
            listImages = [(dictImage["offset"], dictImage["sound"]) for dictImage in dictChip["images"]]
            if dictChip["size"] != 8192 or listImages != [(OFFSET, True)]:
                raise AssertionError(f"a sound image was expected at {OFFSET}: {dictChip}")
        listRaw = [iAddress for iAddress in RAW_ADDRESSES if (BUS, iAddress) in dictChips]
        if listRaw:
            raise AssertionError(f"no driver has the chips at {listRaw}")
        return f"{len(dictChips)} chips"

    def Described(self):
        """Provisioned from what scan describes: the chips stay as they are, and their images are in the cache."""
        self.stMachine.Good("fructl scan --describe > /tmp/described.json")
        self.stMachine.Good(Fructl("provision", "/tmp/described.json", strRoot="/data/scanned"))
        dictList = json.loads(self.stMachine.Good(Fructl("--json", "list", strRoot="/data/scanned")))
        listOurs = [dictDevice for dictDevice in dictList["devices"] if dictDevice["bus"] == BUS]
        if len(listOurs) < len(KERNEL_ADDRESSES) or any(dictDevice["cache"] != "same" for dictDevice in listOurs):
            raise AssertionError(str(dictList))
        return f"{len(dictList['devices'])} devices"

    def Probed(self):
        stAnswer = self.stMachine.Run(f"fructl --json scan --probe {BUS}")
        dictFound = {dictChip["address"]: dictChip["found"] for dictChip in json.loads(stAnswer.strOut)["found"]}
        dictWanted = {**dict.fromkeys(KERNEL_ADDRESSES, "driver"), **dict.fromkeys(RAW_ADDRESSES, "answers")}
        if dictFound != {**dictFound, **dictWanted} or not stAnswer.strErr:
            raise AssertionError(f"{dictFound} {stAnswer.strErr}")

    def Looks(self):
        for strName, fnLook in (("scan", self.Scanned), ("scan --describe, provision", self.Described), ("scan --probe", self.Probed)):
            def Look(fnWhich=fnLook):
                dictBefore = {iAddress: stChip.Bytes() for iAddress, stChip in self.stWorld.dictChips.items()}
                strSaid = fnWhich()
                if dictBefore != {iAddress: stChip.Bytes() for iAddress, stChip in self.stWorld.dictChips.items()}:
                    raise AssertionError("a chip was written to")
                return strSaid
            self.stReport.Check(strName, Look)

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
        self.Looks()
