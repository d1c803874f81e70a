# SPDX-License-Identifier: Apache-2.0
"""What the tests of the installation share: an installed prefix that was moved elsewhere, and running tools and programs.

From CTest: BMCFRU_SOURCE, BMCFRU_BUILD, BMCFRU_CC, BMCFRU_TOOLCHAIN and BMCFRU_EMULATOR (both empty natively).
"""
import fcntl
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["BMCFRU_SOURCE"])
BUILD = pathlib.Path(os.environ["BMCFRU_BUILD"])
HERE = SOURCE / "tests" / "install"
CC = os.environ["BMCFRU_CC"]
TOOLCHAIN = os.environ["BMCFRU_TOOLCHAIN"]
EMULATOR = os.environ["BMCFRU_EMULATOR"].split()
HANG = 1800  # seconds; only a hang is cut off


def run(*asCommand, cwd=None, env=None, code=0):
    """What a command prints, after it ended with this code."""
    done = subprocess.run([str(s) for s in asCommand], cwd=cwd, env={**os.environ, **(env or {})}, capture_output=True,
                          text=True, timeout=HANG)
    if done.returncode != code:
        strAll = f"{' '.join(map(str, asCommand))} ended with {done.returncode}\n{done.stdout[-4000:]}{done.stderr[-4000:]}"
        raise AssertionError(strAll)
    return done.stdout if code == 0 else done.stdout + done.stderr


def configure(pathSource, pathBuild, *asOptions, code=0):
    """A consumer's own configuration: its compiler, and nothing of this project's presets."""
    asCross = [f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}"] if TOOLCHAIN else []
    return run("cmake", "-G", "Ninja", "-S", pathSource, "-B", pathBuild, *asCross, *asOptions, code=code)


def files_below(pathFolder):
    return sorted(str(p.relative_to(pathFolder)) for p in pathFolder.rglob("*") if not p.is_dir())


class InstallTest(unittest.TestCase):
    def setUp(self):
        self.pathScratch = pathlib.Path(tempfile.mkdtemp(prefix="bmcfru-install."))
        self.addCleanup(shutil.rmtree, self.pathScratch)

    def install(self, pathBuild=BUILD):
        """Installs, moves the prefix elsewhere, and returns where it is now."""
        pathFirst = self.pathScratch / "first" / "place"
        with open(pathBuild / "install.lock", "w") as lock:  # tests run side by side, and the list of files is one
            fcntl.flock(lock, fcntl.LOCK_EX)
            run("cmake", "--install", pathBuild, "--strip", "--prefix", pathFirst)
            shutil.copy(pathBuild / "install_manifest.txt", self.pathScratch)
        pathPrefix = self.pathScratch / "an other place"
        pathFirst.rename(pathPrefix)
        return pathPrefix

    def libraries(self, pathPrefix):
        return next(p for p in pathPrefix.rglob("libbmcfru.so")).parent

    def provisioned(self, pathPrefix):
        """A controller, made by the fructl of the prefix from the example there; its root and its serial number."""
        pathRoot = self.pathScratch / "controller"
        pathExample = pathPrefix / "share/doc/bmcfru/examples/controller.json"
        asFructl = [*EMULATOR, pathPrefix / "bin/fructl", "--root", pathRoot]
        run(*asFructl, "provision", pathExample)
        strLine = next(s for s in run(*asFructl, "sn").splitlines() if "LH2" in s)
        return pathRoot, next(s for s in strLine.split() if s.startswith("LH2"))
