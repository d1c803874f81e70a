# SPDX-License-Identifier: Apache-2.0
"""A terminal of a given size, and what a program shows on it."""
import fcntl
import os
import pty
import select
import struct
import subprocess
import termios
import time

from support import Environment, HANG_SECONDS


class Terminal:
    """A program on a terminal of its own; close() or 'with' ends it."""

    def __init__(self, asCommand, iColumns=80, iLines=50, **dictEnvironment):
        self.iOurs, iTheirs = pty.openpty()
        fcntl.ioctl(iTheirs, termios.TIOCSWINSZ, struct.pack("HHHH", iLines, iColumns, 0, 0))
        self.stProcess = subprocess.Popen(asCommand, stdin=iTheirs, stdout=iTheirs, stderr=iTheirs, start_new_session=True,
                                          env=Environment(**{"TERM": "xterm", "LC_ALL": "C.UTF-8", **dictEnvironment}))
        os.close(iTheirs)
        self.abSeen = b""

    def Read(self):
        """False when the program is gone."""
        try:
            abPiece = os.read(self.iOurs, 65536)
        except OSError:
            return False
        self.abSeen += abPiece
        return bool(abPiece)

    def Type(self, strText):
        os.write(self.iOurs, strText.encode())

    def Await(self, strText):
        """Until it has been seen since the last time; only a hang is cut off."""
        fEnd = time.monotonic() + HANG_SECONDS
        while strText.encode() not in self.abSeen and time.monotonic() < fEnd:
            if select.select([self.iOurs], [], [], 1.0)[0] and not self.Read():
                break
        strSeen, self.abSeen = self.abSeen.decode(errors="replace"), b""
        assert strText in strSeen, f"never seen: {strText!r} in {strSeen!r}"
        return strSeen

    def All(self):
        """What it shows until it ends, with plain line ends; its exit code."""
        while self.Read():
            pass
        return self.abSeen.decode(errors="replace").replace("\r\n", "\n"), self.stProcess.wait()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stProcess.kill()
        self.stProcess.wait()
        os.close(self.iOurs)
