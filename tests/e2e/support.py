# SPDX-License-Identifier: Apache-2.0
"""What the tests of fructl share: running it, and controllers to run it on."""
import copy
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ.get("BMCFRU_SOURCE", pathlib.Path(__file__).resolve().parents[2]))
FRUCTL = os.environ.get("FRUCTL", str(SOURCE / "build/native/fructl"))
# Empty, or the program that runs another machine's executables.
EMULATOR = os.environ.get("FRUCTL_EMULATOR", "").split()
EXAMPLES = SOURCE / "examples"
# Images that real boards hold; none where no folder of them is named.
CORPUS = os.environ.get("BMCFRU_CORPUS_DIR", "")
CORPUS_IMAGES = sorted(pathlib.Path(CORPUS).glob("*.bin")) if CORPUS else []
NO_CORPUS = f"no images in BMCFRU_CORPUS_DIR, which is '{CORPUS}'"
# No machine is that slow: a command that takes it hangs.
HANG_SECONDS = 1800
SKIPPED = 77  # CTest's SKIP_RETURN_CODE for these tests
COMMAND = [*EMULATOR, FRUCTL]
# Memory where there is some: what the controllers sync to it costs nothing.
TEMP = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


class Result:
    def __init__(self, process):
        self.iCode = process.returncode
        self.strOut = process.stdout
        self.strErr = process.stderr

    def Json(self):
        return json.loads(self.strOut)


def Environment(**dictMore):
    dictEnvironment = {strKey: strValue for strKey, strValue in os.environ.items() if strKey not in ("FRUCTL_ROOT", "NO_COLOR")}
    dictEnvironment.update(dictMore)
    return dictEnvironment


def Run(*asArguments, strCwd=None, **dictEnvironment):
    """Runs fructl without a root of its own."""
    return Result(subprocess.run([*COMMAND, *map(str, asArguments)], capture_output=True, text=True, errors="backslashreplace",
                                 cwd=strCwd, env=Environment(**dictEnvironment), timeout=HANG_SECONDS))


class FructlTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.pathTemp = pathlib.Path(tempfile.mkdtemp(prefix="fructl-e2e-", dir=TEMP))
        self.addCleanup(shutil.rmtree, self.pathTemp)
        self.pathRoot = self.pathTemp / "root"

    def Fructl(self, *asArguments):
        return Run("--root", self.pathRoot, *asArguments)

    def Good(self, *asArguments):
        """The result of a command that has to succeed, with nothing on stderr."""
        stResult = self.Fructl(*asArguments)
        self.assertEqual((stResult.iCode, stResult.strErr), (0, ""), f"fructl {asArguments}\n{stResult.strOut}")
        return stResult

    def Json(self, *asArguments):
        return self.Good("--json", *asArguments).Json()

    def Bad(self, iCode, *asArguments):
        """The one line on stderr of a command that has to fail, without its 'fructl: '."""
        stResult = self.Fructl(*asArguments)
        self.assertEqual(stResult.iCode, iCode, f"fructl {asArguments}\n{stResult.strOut}{stResult.strErr}")
        self.AssertOneLine(stResult.strErr)
        return stResult.strErr[len("fructl: "):-1]

    def AssertOneLine(self, strErr):
        self.assertTrue(strErr.startswith("fructl: "), strErr)
        self.assertTrue(strErr.endswith("\n") and strErr.count("\n") == 1, strErr)

    pathExample = None

    def Provision(self):
        """The example's controller, made once and copied."""
        if FructlTest.pathExample is None:
            pathExample = pathlib.Path(tempfile.mkdtemp(prefix="fructl-e2e-", dir=TEMP))
            unittest.addModuleCleanup(shutil.rmtree, pathExample)
            stResult = Run("--root", pathExample / "root", "provision", EXAMPLES / "controller.json")
            self.assertEqual((stResult.iCode, stResult.strErr), (0, ""))
            FructlTest.pathExample = pathExample
        shutil.copytree(FructlTest.pathExample / "root", self.pathRoot)

    def Eeprom(self, strName):
        return self.pathRoot / "eeprom" / strName

    def ChipLock(self, strName):
        """The file whose lock a transfer with this chip takes."""
        pathLock = self.pathRoot / "var/lock" / f"eeprom-{strName.removesuffix('.bin')}.lock"
        pathLock.parent.mkdir(parents=True, exist_ok=True)
        return pathLock

    def Damage(self, pathFile, iOffset, abBytes):
        with open(pathFile, "r+b") as stFile:
            stFile.seek(iOffset)
            stFile.write(abBytes)

    def ProvisionImage(self, abImage, **dictMore):
        """A controller with one device, dev (0x20:0), and this image in its EEPROM; dictMore changes its description."""
        self.Write("image.bin", abImage)
        dictDevice = {"id": 7, "name": "dev", "componentType": 0x20, "instance": 0, "location": {"bus": 5, "address": 0xA6}, "size": 512,
                      "image": "image.bin", **dictMore}
        pathFile = self.Write("one.json", json.dumps({"devices": [dictDevice]}).encode())
        self.Good("provision", pathFile)

    def Lines(self, strPath):
        """A journal of the controller."""
        pathFile = self.pathRoot / strPath
        return [json.loads(strLine) for strLine in pathFile.read_text().splitlines()] if pathFile.exists() else []

    def Tree(self):
        """Every directory and file of the controller: mode, time of change, and contents."""
        dictTree = {}
        for pathFile in sorted(self.pathRoot.rglob("*")):
            stStat = pathFile.stat()
            # Readers too have their files beside the database for as long as they run: its directory has another time then.
            iTime = 0 if pathFile == self.pathRoot / "var/lib/fru" else stStat.st_mtime_ns
            dictTree[str(pathFile)] = (stStat.st_mode, iTime, pathFile.read_bytes() if pathFile.is_file() else None)
        return dictTree

    def Write(self, strName, abBytes):
        pathFile = self.pathTemp / strName
        pathFile.write_bytes(abBytes)
        return pathFile


DESCRIPTION = json.loads((EXAMPLES / "controller.json").read_text())


class Described(FructlTest):
    """A controller made from a changed description."""

    def Describe(self, fnChange):
        pathDescription = self.pathTemp / "described"
        if not pathDescription.exists():
            shutil.copytree(EXAMPLES, pathDescription)
        dictDescription = copy.deepcopy(DESCRIPTION)
        fnChange(dictDescription, pathDescription)
        pathFile = pathDescription / "described.json"
        pathFile.write_text(json.dumps(dictDescription))
        return pathFile


DEBIAN_PYTHON = "/usr/bin/python3"


def ReadIndependently(testCase, listFiles):
    """What an independent decoder sees in image files; skips the test where it is not installed."""
    pathReader = pathlib.Path(__file__).resolve().parent / "independent_reader.py"
    stProcess = subprocess.run([DEBIAN_PYTHON, "-B", str(pathReader), *map(str, listFiles)], capture_output=True, text=True)
    if "No module named" in stProcess.stderr:
        testCase.skipTest(f"python3-pyipmi is not installed for {DEBIAN_PYTHON}")
    testCase.assertEqual((stProcess.returncode, stProcess.stderr), (0, ""))
    return json.loads(stProcess.stdout)


def Independent(dictShown):
    """What an independent decoder has to see, of what 'show --json' printed: no derived texts, the chassis type as its code, a count of 0 as a date."""
    dictSeen = {strKey: dict(dictShown[strKey]) for strKey in ("chassis", "board", "product") if strKey in dictShown}
    for dictArea in dictSeen.values():
        dictArea.pop("language", None)
        if dictArea.pop("mfgDateMinutes", None) == 0:
            dictArea["mfgDate"] = "1996-01-01 00:00:00"
    if "chassis" in dictSeen:
        dictSeen["chassis"]["typeCode"] = CHASSIS_TYPES.index(dictSeen["chassis"].pop("type"))
    dictSeen["multiRecords"] = [{strKey: dictRecord[strKey] for strKey in ("type", "formatVersion", "data")}
                                for dictRecord in dictShown["multiRecords"]]
    return dictSeen


# By code.
CHASSIS_TYPES = [
    "Unspecified", "Other", "Unknown", "Desktop", "Low Profile Desktop", "Pizza Box", "Mini Tower", "Tower", "Portable", "LapTop", "Notebook",
    "Hand Held", "Docking Station", "All in One", "Sub Notebook", "Space-saving", "Lunch Box", "Main Server Chassis", "Expansion Chassis",
    "SubChassis", "Bus Expansion Chassis", "Peripheral Chassis", "RAID Chassis", "Rack Mount Chassis", "Sealed-case PC", "Multi-system Chassis",
    "CompactPCI", "AdvancedTCA", "Blade", "Blade Enclosure"]


def ZeroSum(abBytes):
    """The byte that makes the sum of all bytes 0 modulo 256."""
    return bytes([-sum(abBytes) & 0xFF])


def Image(dictAreas):
    """An image of areas by header byte: 1 internal use (its bytes), 2 to 4 info areas (what follows their length byte, without the
    end mark), 5 MultiRecords (their bytes)."""
    abBody = b""
    abHeader = bytearray(b"\x01" + bytes(6))
    for iArea, abArea in sorted(dictAreas.items()):
        abHeader[iArea] = 1 + len(abBody) // 8
        if iArea in (2, 3, 4):
            iUnits = -(-(len(abArea) + 4) // 8)
            abArea = (bytes([1, iUnits]) + abArea + b"\xc1").ljust(iUnits * 8 - 1, b"\x00")
            abArea += ZeroSum(abArea)
        abBody += abArea.ljust(-(-len(abArea) // 8) * 8, b"\x00")
    return bytes(abHeader) + ZeroSum(abHeader) + abBody


def Texts(*asTexts):
    """Type/length-coded 8-bit texts."""
    return b"".join(bytes([0xC0 | len(strText)]) + strText.encode("latin-1") for strText in asTexts)


def HexImage(pathFile):
    """A readable hex file's bytes (offsets without gaps)."""
    abImage = b""
    for strLine in pathFile.read_text().splitlines():
        strBytes = strLine.split("#")[0].rpartition(":")[2]
        abImage += bytes.fromhex(strBytes)
    return abImage


OPERATE_LOG = "var/log/operate.jsonl"
EVENTS = "var/log/fru-events.jsonl"
SERIAL_NUMBER_FILES = ("mnt/sdmmc0p4/board/ProductSerialNumber", "var/network/ProductSerialNumber")
BASEBOARD_EEPROM = "bus1-addr0xa0.bin"
