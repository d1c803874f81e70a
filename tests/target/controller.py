# SPDX-License-Identifier: Apache-2.0
"""What the parts share: the controller's files on this machine, its devices, and fructl on it."""
import json
import pathlib
import re

import initrd
from machine import Chip, Machine, MakeDisk
from packages import Packages

SOURCE = pathlib.Path(__file__).resolve().parents[2]
ROOT = "/data/root"
BUS = 8  # with two chips of the board's own, at 0x50 and 0x51
OFFSET = 256  # of the FRU images in the chips, as on many a board
KERNEL_ADDRESSES = (0x54, 0x55)
RAW_ADDRESSES = (0x56, 0x57)
FILLER = bytes(range(251))  # in the chips, so that it is seen when something writes beside an image
RAW = {"addressBytes": 2, "pageSize": 32, "writeTimeMs": 5}


def Image(strName):
    """The bytes of an example's image, which is readable hex."""
    abImage = bytearray()
    for strLine in (SOURCE / "examples" / strName).read_text().splitlines():
        stFound = re.match(r"[0-9a-f]{4}: ((?:[0-9a-f]{2} *)+)", strLine)
        stMore = re.match(r"([0-9a-f]{4}): ", strLine)
        if stFound and stMore:
            iAt = int(stMore.group(1), 16)
            abPart = bytes.fromhex(stFound.group(1))
            abImage[len(abImage):iAt] = b"\xff" * (iAt - len(abImage))
            abImage[iAt:iAt + len(abPart)] = abPart
    return bytes(abImage)


class Device:
    """A FRU device; pChip is null where its chip is a file below the controller's root."""

    def __init__(self, iId, strName, strBackend, iComponentType, iAddress, stChip, strImage):
        self.iId = iId
        self.strName = strName
        self.strBackend = strBackend
        self.iComponentType = iComponentType
        self.iAddress = iAddress
        self.stChip = stChip
        self.abImage = Image(strImage)
        self.iSize = 2048 if strImage == "baseboard.hex" else 256

    def Described(self):
        dictLocation = {"bus": BUS, "address": f"{self.iAddress << 1:#x}"}
        if self.strBackend != "file":
            dictLocation["backend"] = self.strBackend
        if self.strBackend == "i2c":
            dictLocation.update(RAW)
        return {"id": self.iId, "name": self.strName, "componentType": self.iComponentType, "instance": 0, "location": dictLocation,
                "eepromSize": 8192, "startOffset": OFFSET, "size": self.iSize, "fieldFlag": 7, "sdrRecordId": self.iId + 1,
                "image": f"{self.strName}.bin",
                "recoveryImage": {"path": f"/usr/upgrade/fru/{self.strName}.bin", "file": f"{self.strName}.bin"}}

    def Contents(self, stMachine, strRoot=ROOT):
        """The whole chip, from this machine's file where there is one."""
        if self.stChip:
            return self.stChip.Bytes()
        return stMachine.Bytes(f"{strRoot}/eeprom/bus{BUS}-addr{self.iAddress << 1:#04x}.bin")


class World:
    """The emulated controller's files, made anew, and what is booted from them."""

    def __init__(self, pathBuild, fnSay):
        self.pathBuild = pathBuild
        self.pathWork = SOURCE / "build/target"
        self.pathWork.mkdir(parents=True, exist_ok=True)
        self.fnSay = fnSay
        self.stPackages = Packages(self.pathWork / "packages", fnSay)
        self.pathInitrd = self.pathWork / "initrd.cpio"
        self.pathSmallInitrd = self.pathWork / "initrd-fructl.cpio"
        self.listTests = sorted(pathFile.name for pathFile in pathBuild.iterdir()
                                if pathFile.name.startswith(("unit_", "contract", "thread_", "examples_test")) and pathFile.is_file()
                                and pathFile.read_bytes()[:4] == b"\x7fELF")
        dictFiles = {f"/examples/{pathFile.relative_to(SOURCE / 'examples')}": pathFile.read_bytes()
                     for pathFile in (SOURCE / "examples").rglob("*") if pathFile.is_file()}
        dictFiles.update({str(pathFile): pathFile.read_bytes() for pathFile in (pathBuild / "locales").rglob("*") if pathFile.is_file()})
        initrd.Make(self.stPackages, pathBuild, ["fructl", "target_chips", *self.listTests], dictFiles, self.pathInitrd)
        initrd.Make(self.stPackages, pathBuild, ["fructl"], {}, self.pathSmallInitrd)
        self.pathLog = self.pathWork / "console.log"
        self.pathLog.unlink(missing_ok=True)
        self.Fresh()

    def Fresh(self):
        """Empty chips and an empty disk."""
        self.pathDisk = self.pathWork / "disk.img"
        MakeDisk(self.pathDisk)
        self.dictChips = {iAddress: Chip(self.pathWork / f"chip-{iAddress:02x}.bin", BUS, iAddress)
                          for iAddress in (*KERNEL_ADDRESSES, *RAW_ADDRESSES)}
        for stChip in self.dictChips.values():
            stChip.Fill(FILLER)

    def Boot(self, bSmall=False):
        """The machine, running; bSmall: without the test programs, which is faster."""
        pathInitrd = self.pathSmallInitrd if bSmall else self.pathInitrd
        stMachine = Machine(self.stPackages, pathInitrd, self.pathDisk, self.dictChips.values(), self.pathLog)
        for iAddress in KERNEL_ADDRESSES:
            stMachine.Good(f"echo 24c64 {iAddress:#x} > /sys/bus/i2c/devices/i2c-{BUS}/new_device")
        return stMachine

    def Devices(self, listBackends, bMany=True):
        """A baseboard and a power supply for each back end; only one of them can be the baseboard of component type 0."""
        dictAddresses = {"kernel": KERNEL_ADDRESSES, "i2c": RAW_ADDRESSES, "file": (0x52, 0x53)}
        listDevices = []
        for strBackend in listBackends:
            for iAddress, strImage in zip(dictAddresses[strBackend], ("baseboard.hex", "psu1.hex")):
                iId = len(listDevices)
                strName = strImage.removesuffix(".hex") + (f"-{strBackend}" if bMany else "")
                strName = strName.replace("baseboard-", "board-")  # names have an end
                listDevices.append(Device(iId, strName, strBackend, 0 if iId == 0 else 0x20 + iId, iAddress, self.dictChips.get(iAddress),
                                          strImage))
        return listDevices


def Provision(stMachine, listDevices, strRoot=ROOT):
    """A controller with these devices, their images in their chips."""
    for stDevice in listDevices:
        stMachine.Put(f"/tmp/described/{stDevice.strName}.bin", stDevice.abImage)
    stMachine.Put("/tmp/described/controller.json", json.dumps({"devices": [stDevice.Described() for stDevice in listDevices]}).encode())
    asOptions = ["--write-images"] if any(stDevice.stChip for stDevice in listDevices) else []
    stMachine.Good(Fructl("provision", "/tmp/described/controller.json", *asOptions, strRoot=strRoot))


def Quoted(strWord):
    return "'" + str(strWord).replace("'", "'\\''") + "'"


def Fructl(*asArguments, strRoot=ROOT):
    """The command line, for the controller's shell."""
    return " ".join(["fructl", "--root", strRoot, *map(Quoted, asArguments)])


def Json(stMachine, *asArguments, strRoot=ROOT):
    return json.loads(stMachine.Good(Fructl("--json", *asArguments, strRoot=strRoot)))
