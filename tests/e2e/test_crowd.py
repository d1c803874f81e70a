# SPDX-License-Identifier: Apache-2.0
"""Eight commands at a time on one controller: writers lose nothing, readers see whole images, and nobody is refused.

FRUCTL_CROWD_SECONDS says how long; a quick run is short.
"""
import json
import os
import threading
import time
import unittest

from support import FructlTest

SECONDS = float(os.environ.get("FRUCTL_CROWD_SECONDS", "4"))
WRITERS = {"baseboard": ("Product Serial Number", "Board Serial Number"), "psu1": ("Product Asset Tag", "Board Serial Number")}
READERS = (("verify",), ("show", "baseboard"), ("show", "psu1"), ("list",))


class Crowd(FructlTest):
    def Again(self, fnOnce):
        """A thread that does it until the time is over, and how often it did."""
        def Run():
            while time.monotonic() < self.fUntil and not self.asFaults:
                try:
                    fnOnce()
                    self.iRounds += 1
                except Exception as stFault:  # a thread's failure would be lost
                    self.asFaults.append(repr(stFault)[:600])
        return threading.Thread(target=Run)

    def Expect(self, stResult, asCommand):
        if (stResult.iCode, stResult.strErr) != (0, ""):
            self.asFaults.append(f"{asCommand}: exit code {stResult.iCode}, {stResult.strErr}{stResult.strOut[-400:]}")

    def Writer(self, strDevice, strLabel):
        strKey = f"{strDevice} {strLabel}"

        def Once():
            self.dictLast[strKey] = f"W{self.dictCount.setdefault(strKey, 0):05}"
            self.dictCount[strKey] += 1
            asCommand = ("--wait", "600", "label", "set", strDevice, strLabel, self.dictLast[strKey])
            self.Expect(self.Fructl(*asCommand), asCommand)
            stRead = self.Fructl("--wait", "600", "label", "get", strDevice, strLabel)
            if stRead.strOut != self.dictLast[strKey] + "\n":
                self.asFaults.append(f"{strKey}: {stRead.strOut!r} after {self.dictLast[strKey]}, {stRead.strErr}")
        return Once

    def Reader(self, asCommand):
        return lambda: self.Expect(self.Fructl("--wait", "600", *asCommand), asCommand)

    def test_eight_at_a_time(self):
        self.Provision()
        self.asFaults, self.dictLast, self.dictCount, self.iRounds = [], {}, {}, 0
        self.fUntil = time.monotonic() + SECONDS
        lstThreads = [self.Again(self.Writer(strDevice, strLabel)) for strDevice, asLabels in WRITERS.items() for strLabel in asLabels]
        lstThreads += [self.Again(self.Reader(asCommand)) for asCommand in READERS]
        self.assertEqual(len(lstThreads), 8)
        for stThread in lstThreads:
            stThread.start()
        for stThread in lstThreads:
            stThread.join()
        self.assertEqual(self.asFaults, [])
        for strKey, strValue in self.dictLast.items():
            strDevice, strLabel = strKey.split(" ", 1)
            self.assertEqual(self.Good("label", "get", strDevice, strLabel).strOut, strValue + "\n")
        self.assertEqual(len(self.dictLast), 4)
        print(f"{self.iRounds} rounds, writes: {json.dumps(self.dictCount)}")


if __name__ == "__main__":
    unittest.main()
