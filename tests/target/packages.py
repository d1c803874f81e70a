# SPDX-License-Identifier: Apache-2.0
"""Debian's packages for the controller: fetched once, kept with their sums, unpacked beside the build."""
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import time

KERNEL = "linux-image-armmp:armhf"  # has nothing but the name of the package with the kernel
BUSYBOX = "busybox-static:armhf"
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "bmcfru"
# A mirror that is down for a moment, or lists that are older than the mirror: about two minutes in all.
WAITS = (2, 5, 15, 30, 60)


class CannotRun(Exception):
    """This machine lacks what the controller needs; the text says what."""


def Sum(pathFile):
    return hashlib.sha256(pathFile.read_bytes()).hexdigest()


def Kept(strPackage):
    """The package of an earlier run, if it is still what it was."""
    pathSum = CACHE / f"{strPackage.replace(':', '_')}.sha256"
    if not pathSum.exists():
        return None
    strSum, strFile = pathSum.read_text().split()
    pathFile = CACHE / strFile
    return pathFile if pathFile.exists() and Sum(pathFile) == strSum else None


def RefreshLists():
    asCommand = ["apt-get", "-q", "-o", "DPkg::Lock::Timeout=600", "update"]
    if os.geteuid() != 0:
        asCommand.insert(0, "sudo")
    subprocess.run(asCommand, capture_output=True, check=False)


def Fetched(strPackage, fnSay):
    """The package from the cache, or else from Debian; apt-get compares it with the sum in Debian's signed lists."""
    pathFile = Kept(strPackage)
    if pathFile:
        return pathFile
    CACHE.mkdir(parents=True, exist_ok=True)
    pathScratch = CACHE / f"new-{os.getpid()}"
    for iWait in (*WAITS, None):
        shutil.rmtree(pathScratch, ignore_errors=True)
        pathScratch.mkdir()
        stDone = subprocess.run(["apt-get", "download", strPackage], cwd=pathScratch, capture_output=True, text=True, check=False)
        listFiles = list(pathScratch.glob("*.deb"))
        if stDone.returncode == 0 and len(listFiles) == 1:
            pathFile = CACHE / listFiles[0].name
            os.replace(listFiles[0], pathFile)
            (CACHE / f"{strPackage.replace(':', '_')}.sha256").write_text(f"{Sum(pathFile)} {pathFile.name}\n")
            shutil.rmtree(pathScratch)
            return pathFile
        strWhy = (stDone.stderr.strip().splitlines() or ["no word from apt-get"])[-1]
        if iWait is not None:
            fnSay(f"{strPackage} could not be fetched ({strWhy}); trying again in {iWait} s")
            time.sleep(iWait)
            RefreshLists()
    shutil.rmtree(pathScratch)
    raise CannotRun(f"{strPackage} could not be fetched from Debian, nor is it in {CACHE}: {strWhy}")


def KernelPackage():
    """The package with the kernel that the other one names."""
    for bAgain in (False, True):
        stDone = subprocess.run(["apt-cache", "show", "--no-all-versions", KERNEL], capture_output=True, text=True, check=False)
        stFound = re.search(r"^Depends:.*?\b(linux-image-[0-9][^ ,]*-armmp)\b", stDone.stdout, re.MULTILINE)
        if stFound:
            return stFound.group(1) + ":armhf"
        if not bAgain:
            RefreshLists()
    listKept = sorted(CACHE.glob("linux-image-*-armmp_armhf.sha256"))
    if listKept:
        return listKept[-1].name.removesuffix("_armhf.sha256") + ":armhf"
    raise CannotRun(f"the package lists of this machine do not have {KERNEL}: is the architecture armhf there, with its lists "
                    "(dpkg --add-architecture armhf; apt-get update)?")


class Packages:
    """The kernel, its device trees and modules, and the busybox, unpacked."""

    def __init__(self, pathInto, fnSay):
        listFiles = [Fetched(strPackage, fnSay) for strPackage in (KernelPackage(), BUSYBOX)]
        strWhich = "\n".join(Sum(pathFile) for pathFile in listFiles)
        pathMark = pathInto / "unpacked"
        if not pathMark.exists() or pathMark.read_text() != strWhich:
            shutil.rmtree(pathInto, ignore_errors=True)
            pathInto.mkdir(parents=True)
            for pathFile in listFiles:
                subprocess.run(["dpkg", "-x", pathFile, pathInto], check=True)
            pathMark.write_text(strWhich)
        (self.pathKernel,) = (pathInto / "boot").glob("vmlinuz-*")
        (self.pathTree,) = (pathInto / "usr/lib").glob("linux-image-*/aspeed-bmc-ibm-rainier.dtb")
        (self.pathModules,) = (pathInto / "lib/modules").iterdir()
        self.pathBusybox = pathInto / "bin/busybox"
        self.strKernel = self.pathModules.name
