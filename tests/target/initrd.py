# SPDX-License-Identifier: Apache-2.0
"""The controller's file system in memory: busybox, kernel modules, the build under test and the libraries that it needs."""
import pathlib
import re
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
TOOLS = "arm-linux-gnueabihf-"
LIBRARY_DIRS = [pathlib.Path("/usr/lib/arm-linux-gnueabihf"), pathlib.Path("/lib/arm-linux-gnueabihf"),
                pathlib.Path("/usr/arm-linux-gnueabihf/lib")]
# I2C and its EEPROMs; the eMMC with its file system.
MODULES = ["i2c-aspeed", "at24", "i2c-dev", "sdhci-of-aspeed", "ext4", "crc32c_generic"]
PRODUCT = "opt/bmcfru"
USERS = "root:x:0:0:root:/root:/bin/sh\nnobody:x:65534:65534:nobody:/:/bin/sh\n"
GROUPS = "root:x:0:\nnogroup:x:65534:\n"


def ModuleOrder(pathModules):
    """The files of the modules wanted, each behind those that it needs."""
    dictFiles = {pathFile.stem.replace("-", "_"): pathFile for pathFile in pathModules.rglob("*.ko")}
    listOrder = []

    def Need(strModule):
        pathFile = dictFiles.get(strModule.replace("-", "_"))
        if pathFile is None or pathFile in listOrder:  # or built into the kernel
            return
        stFound = re.search(rb"\0depends=([^\0]*)\0", pathFile.read_bytes())
        for strNeeded in filter(None, stFound.group(1).decode().split(",") if stFound else []):
            Need(strNeeded)
        listOrder.append(pathFile)

    for strModule in MODULES:
        Need(strModule)
    return listOrder


def Needed(pathProgram):
    strDynamic = subprocess.run([TOOLS + "readelf", "-d", pathProgram], capture_output=True, text=True, check=True).stdout
    return re.findall(r"\(NEEDED\).*\[(.*)\]", strDynamic)


class Archive:
    """A cpio archive as the kernel takes it."""

    def __init__(self):
        self.abOut = bytearray()
        self.iNumber = 0
        self.setDirectories = set()

    def Entry(self, strName, uiMode, abData=b"", iMajor=0, iMinor=0):
        self.iNumber += 1
        abName = strName.encode() + b"\0"
        listFields = [self.iNumber, uiMode, 0, 0, 1, 0, len(abData), 0, 0, iMajor, iMinor, len(abName), 0]
        for abPart in (b"070701" + b"".join(b"%08x" % ui for ui in listFields) + abName, abData):
            self.abOut += abPart
            self.abOut += bytes(-len(self.abOut) % 4)

    def Directory(self, strName):
        if strName in (".", "") or strName in self.setDirectories:
            return
        self.Directory(str(pathlib.PurePath(strName).parent))
        self.setDirectories.add(strName)
        self.Entry(strName, 0o40755)

    def File(self, strName, abData, uiMode=0o644):
        self.Directory(str(pathlib.PurePath(strName).parent))
        self.Entry(strName, 0o100000 | uiMode, abData)

    def Bytes(self):
        self.Entry("TRAILER!!!", 0)
        return bytes(self.abOut)


def Stripped(pathProgram, pathScratch):
    subprocess.run([TOOLS + "strip", "--strip-unneeded", "-o", pathScratch, pathProgram], check=True)
    return pathScratch.read_bytes()


def AddPrograms(stArchive, pathBuild, listPrograms, pathScratch):
    """The programs and the build's libraries in one folder, the system's libraries in /lib."""
    listOpen = [pathBuild / strProgram for strProgram in listPrograms]
    # Loaded when they are wanted, so nobody names them as needed.
    listOpen += sorted(pathBuild.glob("libbmcfruhost.so.[0-9]"))
    setDone = set()
    while listOpen:
        pathFile = listOpen.pop()
        if pathFile.name in setDone:
            continue
        setDone.add(pathFile.name)
        bOwn = pathFile.parent == pathBuild
        stArchive.File(f"{PRODUCT if bOwn else 'lib'}/{pathFile.name}", Stripped(pathFile, pathScratch), 0o755)
        for strLibrary in Needed(pathFile):
            listFound = [path / strLibrary for path in (pathBuild, *LIBRARY_DIRS) if (path / strLibrary).exists()]
            if not listFound:
                raise RuntimeError(f"{pathFile} needs {strLibrary}, which is not on this machine")
            listOpen.append(listFound[0])


def Make(stPackages, pathBuild, listPrograms, dictFiles, pathOut):
    """Writes the archive; dictFiles are more files, by their names in it, with a slash in front to lie at the same place in the end."""
    stArchive = Archive()
    for strName in ("bin", "dev", "etc", "lib", "proc", "root", "run", "sys", "tmp", "data"):
        stArchive.Directory(strName)
    stArchive.Entry("dev/console", 0o20600, b"", 5, 1)
    stArchive.File("bin/busybox", stPackages.pathBusybox.read_bytes(), 0o755)
    # Test programs that start themselves anew do it through their emulator, where there is one.
    stArchive.File("bin/qemu-arm", b'#!/bin/sh\nexec "$@"\n', 0o755)
    stArchive.File("init", (HERE / "init.sh").read_bytes(), 0o755)
    stArchive.File("etc/passwd", USERS.encode())
    stArchive.File("etc/group", GROUPS.encode())
    asModules = []
    for pathModule in ModuleOrder(stPackages.pathModules):
        stArchive.File(f"modules/{pathModule.name}", pathModule.read_bytes())
        asModules.append(pathModule.name)
    stArchive.File("modules/order", ("\n".join(asModules) + "\n").encode())
    AddPrograms(stArchive, pathBuild, listPrograms, pathOut.with_suffix(".stripped"))
    for strName, abData in dictFiles.items():
        stArchive.File("laid" + strName, abData)
    pathOut.write_bytes(stArchive.Bytes())  # unpacking takes an emulated machine longer than copying
