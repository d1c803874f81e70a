"""What the tests of fructl share: running it, and controllers to run it on."""
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
# A folder of real images, which need not be there.
CORPUS = pathlib.Path(os.environ.get("BMCFRU_CORPUS_DIR", SOURCE / "../shared/corpus"))
COMMAND = [*EMULATOR, FRUCTL]


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
                                 cwd=strCwd, env=Environment(**dictEnvironment), timeout=120))


class FructlTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.pathTemp = pathlib.Path(tempfile.mkdtemp(prefix="fructl-e2e-"))
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

    def Provision(self):
        """The example's controller."""
        self.Good("provision", EXAMPLES / "controller.json")

    def Eeprom(self, strName):
        return self.pathRoot / "eeprom" / strName

    def Damage(self, pathFile, iOffset, abBytes):
        with open(pathFile, "r+b") as stFile:
            stFile.seek(iOffset)
            stFile.write(abBytes)

    def Write(self, strName, abBytes):
        pathFile = self.pathTemp / strName
        pathFile.write_bytes(abBytes)
        return pathFile


def ZeroSum(abBytes):
    """The byte that makes the sum of all bytes 0 modulo 256."""
    return bytes([-sum(abBytes) & 0xFF])


def HexImage(pathFile):
    """A readable hex file's bytes (offsets without gaps)."""
    abImage = b""
    for strLine in pathFile.read_text().splitlines():
        strBytes = strLine.split("#")[0].rpartition(":")[2]
        abImage += bytes.fromhex(strBytes)
    return abImage


BASEBOARD_EEPROM = "bus1-addr0xa0.bin"
