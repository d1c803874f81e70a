# SPDX-License-Identifier: Apache-2.0
"""Several clients at once: an untouched device is always read whole, and so is each area of a device under a write, or its
checksum shows that it is not. An image is read and written in many messages, and each area has a checksum of its own: a read
that is overtaken exactly between two areas has whole areas of both images, which no checksum can show."""
import os
import threading
import time

import bench
from bench import unittest

SECONDS = 6.0  # or longer, until each client has been served a few times
FEW = 3


def Sources(abImage, lstImages):
    """Which image the bytes are of, as "number from offset on", where the images differ."""
    lstRuns = []
    for i, iByte in enumerate(abImage):
        lstOf = [n for n, abOne in enumerate(lstImages) if abOne[i] == iByte]
        if len(lstOf) == 1 and (not lstRuns or lstRuns[-1][0] != lstOf[0]):
            lstRuns.append((lstOf[0], i))
    return ', '.join('%d from 0x%04x on' % pairRun for pairRun in lstRuns)


class Concurrency(unittest.TestCase):
    def setUp(self):
        self.lstDevices = [bench.DEVICE(iId, 'device%d' % iId, 0x20, iId, bench.BigImage(strLetter), cached=iId != 1)
                           for iId, strLetter in enumerate('abcde')]
        self.stController = bench.CONTROLLER(self, self.lstDevices)
        self.stService = bench.SERVICE(self, self.stController)
        self.lstFaults = []
        self.mapReads = {}
        self.stEnd = threading.Event()

    def File(self, strName):
        return os.path.join(self.stController.strBase, strName)

    def Fault(self, strText):
        self.lstFaults.append(strText)
        self.stEnd.set()

    def Watch(self, iId, fnCheck):
        """Reads a device until the end; one client process for each read."""
        try:
            while not self.stEnd.is_set():
                fnCheck(self.stService.ReadFru(iId, self.File('read%d' % iId)))
                self.mapReads[iId] = self.mapReads.get(iId, 0) + 1
        except Exception as stError:  # pylint: disable=broad-except
            self.Fault('reading device %d: %r' % (iId, stError))

    def CheckUntouched(self, iId):
        def Check(abImage):
            if abImage != self.lstDevices[iId].abImage:
                self.Fault('device %d, which nobody writes, was read wrong' % iId)
        return Check

    def CheckWritten(self, lstImages):
        def Check(abImage):
            if abImage in lstImages:
                return
            self.mapReads['torn'] = self.mapReads.get('torn', 0) + 1
            if any(iByte not in (abOne[i] for abOne in lstImages) for i, iByte in enumerate(abImage)):
                self.Fault('an answer has bytes that are in no image of its device')
                return
            for strName, iStart, iEnd, bRight in bench.Areas(abImage):
                if bRight and all(abImage[iStart:iEnd] != abOne[iStart:iEnd] for abOne in lstImages):
                    self.Fault('a torn %s area was read whose checksum is right: %s' % (strName, Sources(abImage, lstImages)))
            if not bench.BadAreas(abImage):
                self.mapReads['torn between areas'] = self.mapReads.get('torn between areas', 0) + 1
        return Check

    def IsEnough(self, iWrites):
        return iWrites >= FEW and all(self.mapReads.get(iId, 0) >= FEW for iId in range(4))

    def Run(self, fnWrite, lstWritten):
        lstThreads = [threading.Thread(target=self.Watch, args=(iId, self.CheckUntouched(iId)), daemon=True) for iId in range(3)]
        lstThreads.append(threading.Thread(target=self.Watch, args=(3, self.CheckWritten(lstWritten)), daemon=True))
        for stThread in lstThreads:
            stThread.start()
        iWrites = 0
        fStart = time.monotonic()
        try:
            while not self.stEnd.is_set() and (time.monotonic() < fStart + SECONDS or not self.IsEnough(iWrites)):
                if time.monotonic() > fStart + bench.HANG_SECONDS:
                    self.Fault('so few were served in all that time')
                    break
                iWrites += 1
                abImage = fnWrite(iWrites)
                if self.stService.ReadFru(3, self.File('after')) != abImage:
                    self.Fault('the read after write %d is not what was written' % iWrites)
        except Exception as stError:  # pylint: disable=broad-except
            self.Fault('writing: %r' % stError)
        self.stEnd.set()
        for stThread in lstThreads:
            stThread.join(bench.HANG_SECONDS)
            self.assertFalse(stThread.is_alive())
        print('  %d writes, reads by device: %s' % (iWrites, self.mapReads))
        self.assertEqual(self.lstFaults, [])
        self.assertTrue(self.IsEnough(iWrites), self.mapReads)
        for stDevice in self.lstDevices:
            if stDevice.iId != 3:
                self.assertEqual(self.stController.Chip(stDevice), stDevice.abImage)

    def test_fifth_client_writes_whole_images(self):
        lstImages = [bench.BigImage('y'), bench.BigImage('z')]

        def Write(iWrite):
            abImage = lstImages[iWrite % 2]
            stDone = self.stService.WriteFru(3, self.File('write'), abImage)
            assert stDone.returncode == 0, stDone
            return abImage
        self.Run(Write, lstImages + [self.lstDevices[3].abImage])

    def test_fructl_writes_labels(self):
        stDevice = self.lstDevices[3]

        def Serial(strLetter):
            return strLetter * 31 + '1'  # one character alone would look like a placeholder

        def Expected(strLetter):
            """What clients read from the cache after a label write: the image, and zeros behind it (in the chip those bytes
            stay as they were)."""
            abImage = bench.BigImage('d', strBoardSerial=Serial(strLetter))
            iEnd = -(-bench.Areas(abImage)[-1][2] // 8) * 8
            return abImage[:iEnd] + bytes(len(abImage) - iEnd)

        def Write(iWrite):
            strLetter = 'yz'[iWrite % 2]
            self.stController.Fructl('label', 'set', stDevice.strName, 'Board Serial Number', Serial(strLetter))
            return Expected(strLetter)
        Write(0)  # from here on the cache has its zeros
        self.Run(Write, [Expected('y'), Expected('z')])


if __name__ == '__main__':
    bench.Main()
