# SPDX-License-Identifier: Apache-2.0
"""An emulated controller: 32-bit ARM, its EEPROMs and its disk in files of this machine, driven over its serial console."""
import base64
import os
import pathlib
import select
import shutil
import subprocess
import time

from packages import CannotRun

QEMU = "qemu-system-arm"
# No machine is that slow: what takes it hangs.
HANG_SECONDS = 1800
BOARD = "rainier-bmc"
DISK_BYTES = 64 << 20
CHIP_BYTES = 8192


class MachineError(Exception):
    """The machine stopped, or said what it never says."""


class Answer:
    def __init__(self, iCode, strOut, strErr):
        self.iCode = iCode
        self.strOut = strOut
        self.strErr = strErr


def MakeDisk(pathDisk):
    """An empty disk with a journalling file system."""
    pathDisk.unlink(missing_ok=True)
    strMake = shutil.which("mkfs.ext4", path=f"{os.environ['PATH']}:/usr/sbin:/sbin")
    if strMake is None:
        raise CannotRun("mkfs.ext4 is missing (Debian's package e2fsprogs)")
    with open(pathDisk, "wb") as stFile:
        stFile.truncate(DISK_BYTES)
    subprocess.run([strMake, "-q", "-F", "-b", "4096", pathDisk], check=True)


class Chip:
    """An EEPROM of 8 KiB in a file of this machine; what the controller writes is there at once."""

    def __init__(self, pathFile, iBus, iAddress):
        self.pathFile = pathFile
        self.iBus = iBus
        self.iAddress = iAddress

    def Fill(self, abPattern):
        self.pathFile.write_bytes((abPattern * CHIP_BYTES)[:CHIP_BYTES])

    def Bytes(self):
        return self.pathFile.read_bytes()

    def Arguments(self):
        strId = f"chip{self.iBus}x{self.iAddress:x}"
        return ["-drive", f"if=none,id={strId},file={self.pathFile},format=raw,cache=writeback",
                "-device", f"at24c-eeprom,bus=aspeed.i2c.bus.{self.iBus},address={self.iAddress:#x},rom-size={CHIP_BYTES},drive={strId}"]


class Machine:
    """A controller that runs until it is switched off, or killed; the files of its chips and its disk stay."""

    def __init__(self, stPackages, pathInitrd, pathDisk, listChips, pathLog):
        self.pathLog = pathLog
        self.abIn = b""
        self.iTokens = 0
        asCommand = [QEMU, "-M", BOARD, "-display", "none", "-serial", "stdio", "-monitor", "none", "-no-reboot",
                     "-kernel", stPackages.pathKernel, "-dtb", stPackages.pathTree, "-initrd", pathInitrd,
                     "-append", f"console=ttyS4,115200n8 rdinit=/init quiet panic=-1 date={int(time.time())}",
                     "-drive", f"if=sd,index=2,file={pathDisk},format=raw,cache=writeback"]
        for stChip in listChips:
            asCommand += stChip.Arguments()
        with open(pathLog.with_suffix(".qemu"), "wb") as stErrors:
            try:
                self.stProcess = subprocess.Popen(list(map(str, asCommand)), stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=stErrors)
            except FileNotFoundError as stError:
                raise CannotRun(f"{QEMU} is missing (Debian's package qemu-system-arm)") from stError
        os.set_blocking(self.stProcess.stdout.fileno(), False)
        self.stLog = open(pathLog, "ab")
        self.stLog.write(b"\n---- switched on ----\n")
        self.fOn = time.monotonic()
        strBefore = self.Until(b"\nREADY ")
        self.strReady = self.Line()
        self.fBoot = time.monotonic() - self.fOn
        if "NO DISK" in strBefore:
            self.Fail("the disk could not be mounted")

    def Fail(self, strWhat):
        self.stLog.flush()
        strTail = "\n".join(self.pathLog.read_text(errors="backslashreplace").splitlines()[-15:])
        strQemu = self.pathLog.with_suffix(".qemu").read_text(errors="backslashreplace")[-1000:]
        raise MachineError(f"{strWhat}; the console's last lines:\n{strTail}\n{strQemu}")

    def More(self, fUntil):
        """Takes in what the console says; false at the time given."""
        fLeft = fUntil - time.monotonic()
        if fLeft <= 0.0 or not select.select([self.stProcess.stdout], [], [], fLeft)[0]:
            return False
        abMore = os.read(self.stProcess.stdout.fileno(), 65536)
        if not abMore:
            self.Fail(f"the machine stopped (exit code {self.stProcess.wait()})")
        self.stLog.write(abMore)
        self.abIn += abMore.replace(b"\r\n", b"\n")
        return True

    def Until(self, abMark, fSeconds=HANG_SECONDS):
        """What the console said up to the mark, which is taken away, too."""
        fUntil = time.monotonic() + fSeconds
        while abMark not in self.abIn:
            if not self.More(fUntil):
                self.Fail(f"no {abMark} within {fSeconds} s")
        abBefore, self.abIn = self.abIn.split(abMark, 1)
        return abBefore.decode(errors="backslashreplace")

    def Line(self):
        return self.Until(b"\n")

    def Begin(self, strCommand):
        """Has a shell command begun; what it says is read later, if at all."""
        self.iTokens += 1
        strToken = f"@{self.iTokens}"
        self.stProcess.stdin.write(f"{strToken} {base64.b64encode(strCommand.encode()).decode()}\n".encode())
        self.stProcess.stdin.flush()
        return strToken

    def End(self, strToken, fSeconds=HANG_SECONDS):
        strOut = self.Until(f"\n{strToken} ERR\n".encode(), fSeconds)
        strErr = self.Until(f"\n{strToken} END ".encode(), fSeconds)
        return Answer(int(self.Line()), strOut, strErr)

    def Run(self, strCommand, fSeconds=HANG_SECONDS):
        return self.End(self.Begin(strCommand), fSeconds)

    def Good(self, strCommand):
        """What a command says that has to succeed."""
        stAnswer = self.Run(strCommand)
        if stAnswer.iCode != 0:
            raise AssertionError(f"{strCommand}: exit code {stAnswer.iCode}\n{stAnswer.strOut}{stAnswer.strErr}")
        return stAnswer.strOut

    def Put(self, strPath, abBytes):
        """Lays a small file down."""
        strText = base64.b64encode(abBytes).decode()
        self.Good(f"mkdir -p {pathlib.PurePath(strPath).parent}; : > {strPath}")
        for iAt in range(0, len(strText), 2000):  # a line of the console has an end
            self.Good(f"printf %s {strText[iAt:iAt + 2000]} | base64 -d >> {strPath}")

    def Bytes(self, strPath):
        return base64.b64decode(self.Good(f"base64 {strPath}"))

    def Kill(self):
        """A power cut."""
        self.stProcess.kill()
        self.stProcess.wait()
        while True:  # what it had said by then
            abMore = self.stProcess.stdout.read()
            if not abMore:
                break
            self.stLog.write(abMore)
            self.abIn += abMore.replace(b"\r\n", b"\n")
        self.Close()

    def Rest(self):
        """What the console said and nobody has read."""
        return self.abIn.decode(errors="backslashreplace")

    def Off(self):
        """Switched off in order."""
        self.Good("sync; umount /data")
        self.Kill()

    def Close(self):
        self.stProcess.wait()
        self.stProcess.stdin.close()
        self.stProcess.stdout.close()
        self.stLog.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.stProcess.poll() is None:
            self.Kill()
