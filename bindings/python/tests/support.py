# SPDX-License-Identifier: Apache-2.0
"""What the tests of the package bmcfru share: the example's controller, and fructl beside it."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
BUILD = pathlib.Path(os.environ.get("BMCFRU_BUILD", SOURCE / "build/native"))
os.environ["BMCFRU_LIBRARY_DIR"] = str(BUILD)
sys.path.insert(0, str(SOURCE / "bindings/python"))
FRUCTL = BUILD / "fructl"
EXAMPLES = SOURCE / "examples"
TEMP = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
HANG_SECONDS = 1800


def Fructl(pathRoot, *asArguments):
    """What it prints with --json, and its exit code."""
    done = subprocess.run([FRUCTL, "--root", pathRoot, "--json", *asArguments], capture_output=True, text=True,
                          timeout=HANG_SECONDS)
    return json.loads(done.stdout) if done.stdout else {}, done.returncode


def Provision(pathRoot):
    subprocess.run([FRUCTL, "--root", pathRoot, "provision", EXAMPLES / "controller.json"], check=True,
                   capture_output=True, timeout=HANG_SECONDS)


class ControllerTest(unittest.TestCase):
    """Each test has the example's controller, a fresh one."""
    maxDiff = 4000

    @classmethod
    def setUpClass(cls):
        cls.pathClass = pathlib.Path(tempfile.mkdtemp(prefix="bmcfru-python-", dir=TEMP))
        cls.addClassCleanup(shutil.rmtree, cls.pathClass)
        Provision(cls.pathClass / "example")

    def setUp(self):
        self.pathTemp = pathlib.Path(tempfile.mkdtemp(dir=self.pathClass))
        self.pathRoot = self.pathTemp / "root"
        shutil.copytree(self.pathClass / "example", self.pathRoot, symlinks=True)

    def Open(self, **dictMore):
        import bmcfru
        controller = bmcfru.Controller(self.pathRoot, **dictMore)
        self.addCleanup(controller.close)
        return controller

    def Json(self, *asArguments):
        return Fructl(self.pathRoot, *asArguments)[0]

    def Chip(self, strName):
        """A device's EEPROM: its file, and where in it the image begins."""
        dictDevice = next(d for d in self.Json("list")["devices"] if d["name"] == strName)
        strSwitch = f"-switch{dictDevice['switchLevel']}" if dictDevice["switchLevel"] else ""
        return (self.pathRoot / "eeprom" / f"bus{dictDevice['bus']}-addr0x{dictDevice['address']:02x}{strSwitch}.bin",
                dictDevice["startOffset"])

    def Damage(self, strName, uiAt=0):
        pathChip, uiStart = self.Chip(strName)
        with open(pathChip, "r+b") as chip:
            chip.seek(uiStart + uiAt)
            uiByte = chip.read(1)[0]
            chip.seek(uiStart + uiAt)
            chip.write(bytes([uiByte ^ 0xFF]))
