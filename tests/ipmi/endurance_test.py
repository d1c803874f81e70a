# SPDX-License-Identifier: Apache-2.0
"""What the service has after much work: the memory and the descriptors that it had before, and devices whose EEPROM and cache
agree. BMCFRU_IPMI_SECONDS says how long each test goes on; a few seconds where it is not set."""
import os
import random
import threading
import time

import bench
from bench import unittest

SECONDS = float(os.environ.get('BMCFRU_IPMI_SECONDS', '4'))
STORAGE = 0x0A
FRAME = 34  # data bytes of an IPMI message of the size that every transport carries
SESSIONS = 24  # left open; the simulator has room for more
WARM = 500  # requests after which every buffer of the service has been made
GROWTH_KIB = 1024  # what an allocator may keep for itself; a leak of one byte a request shows in a minute


def Facts(iPid):
    """Resident memory in KiB, and descriptors."""
    with open('/proc/%d/status' % iPid, encoding='utf-8') as stFile:
        iResident = next(int(strLine.split()[1]) for strLine in stFile if strLine.startswith('VmRSS:'))
    return iResident, len(os.listdir('/proc/%d/fd' % iPid))


class Endurance(unittest.TestCase):
    def setUp(self):
        self.lstDevices = [bench.DEVICE(0, 'board', 0, 0, bench.BigImage('a')), bench.DEVICE(1, 'psu', 3, 0, bench.BigImage('b', 1024))]
        self.stController = bench.CONTROLLER(self, self.lstDevices)
        self.stService = bench.SERVICE(self, self.stController)

    def CheckFlat(self, pairBefore):
        iResident, iDescriptors = Facts(self.stService.iSimulator)
        print('  %d KiB and %d descriptors, then %d KiB and %d' % (*pairBefore, iResident, iDescriptors))
        self.assertEqual(iDescriptors, pairBefore[1])
        # Sanitizers keep back what was freed, and tell of leaks themselves.
        if not bench.STR_PRELOAD:
            self.assertLess(iResident, pairBefore[0] + GROWTH_KIB)

    def CheckDevices(self):
        for stDevice in self.lstDevices:
            strFile = os.path.join(self.stController.strBase, 'after.bin')
            self.assertEqual(self.stService.ReadFru(stDevice.iId, strFile), self.stController.Chip(stDevice))
            self.assertEqual(self.stController.CacheState(stDevice), 'same')

    def Request(self, stRandom):
        """Function, command and data; mostly of the storage function, mostly nearly right."""
        iFunction = STORAGE if stRandom.random() < 0.9 else stRandom.choice((0x04, 0x06, 0x2C, 0x2E))
        # Nothing that resets the simulator or ends the session.
        iCommand = stRandom.choice((0x10, 0x11, 0x12, 0x20, 0x22, 0x23)) if iFunction == STORAGE else stRandom.choice((0x01, 0x37, 0x2F))
        abData = bytearray(stRandom.randbytes(stRandom.randint(0, FRAME)))
        if abData:
            abData[0] = stRandom.randint(0, 2)
        if len(abData) > 2:
            abData[2] = stRandom.randint(0, 8)
        return iFunction, iCommand, abData

    def test_requests_without_end_in_one_session_cost_nothing(self):
        stRandom = random.Random(161)
        iRequests = 0
        with bench.PYIPMI(self.stService) as stClient:
            fUntil = time.monotonic() + SECONDS
            pairBefore = None
            while time.monotonic() < fUntil or pairBefore is None:
                self.assertGreater(len(stClient.Raw(*self.Request(stRandom))), 0)
                iRequests += 1
                if iRequests == WARM:
                    pairBefore = Facts(self.stService.iSimulator)
            self.CheckFlat(pairBefore)
        print('  %d requests' % iRequests)
        self.CheckDevices()

    def test_sessions_that_are_left_open_hinder_nobody(self):
        self.assertEqual(self.stService.Raw(STORAGE, 0x10, 0)[0], 0)
        pairBefore = Facts(self.stService.iSimulator)
        lstLeft = []
        for _ in range(SESSIONS):
            stClient = bench.PYIPMI(self.stService)
            self.assertEqual(stClient.Raw(STORAGE, 0x10, [0])[0], 0)
            lstLeft.append(stClient)
        self.CheckFlat(pairBefore)
        # Whoever comes then is served, and so are those who were there.
        self.assertEqual(self.stService.Raw(STORAGE, 0x10, 1)[0], 0)
        self.assertTrue(all(stClient.Raw(STORAGE, 0x10, [1])[0] == 0 for stClient in lstLeft))
        self.CheckDevices()

    def test_labels_set_while_a_client_writes_leave_one_image(self):
        stEnd = threading.Event()
        lstWrites = []
        lstFaults = []

        def Write():
            try:
                for strLetter in iter(lambda: 'ab'[len(lstWrites) % 2], None):
                    if stEnd.is_set():
                        return
                    strFile = os.path.join(self.stController.strBase, 'race.bin')
                    stDone = self.stService.WriteFru(0, strFile, bench.BigImage(strLetter))
                    lstWrites.append(stDone.returncode)
            except Exception as stError:  # pylint: disable=broad-except
                lstFaults.append(repr(stError))

        stThread = threading.Thread(target=Write, daemon=True)
        stThread.start()
        fUntil = time.monotonic() + SECONDS
        iSet = 0
        while time.monotonic() < fUntil or iSet < 3 or (len(lstWrites) < 2 and not lstFaults):
            self.stController.Fructl('label', 'set', 'board', 'Product Asset Tag=RACE-%d' % (iSet % 10), iExpected=None)
            iSet += 1
        stEnd.set()
        stThread.join(bench.HANG_SECONDS)
        self.assertEqual(lstFaults, [])
        self.assertTrue(bench.IsAlive(self.stService.iSimulator))
        # A write of the whole image mends whatever the race has left between two of its messages, and behind the image, where
        # a label write leaves the chip's bytes and puts zeros into the cache.
        strFile = os.path.join(self.stController.strBase, 'mend.bin')
        self.assertEqual(self.stService.WriteFru(0, strFile, bench.BigImage('a')).returncode, 0)
        self.assertEqual(self.stService.ReadFru(0, strFile), bench.BigImage('a'))
        self.stController.Fructl('verify')
        self.CheckDevices()
        print('  %d labels set, %d images written' % (iSet, len(lstWrites)))

    def test_neither_of_two_writers_loses_what_he_was_told_is_done(self):
        """A client writes a record, each time in one message; fructl sets a label of the same image. Both keep the image's length."""
        stDevice = bench.DEVICE(0, 'board', 0, 0, bench.BuildImage(512, None, ['Maker', 'Board', 'SN-01', 'PN-01', ''],
                                                                   ['Maker', 'Name', 'PN-01', 'V1', 'SN-01', 'TAG-0', ''], self.Record(0)))
        stController = bench.CONTROLLER(self, [stDevice])
        stService = bench.SERVICE(self, stController)
        stController.Fructl('label', 'set', 'board', 'Product Asset Tag=TAG-1')  # from here on the image lies as the library lays it
        strName, iStart, iEnd, _ = bench.Areas(stController.Chip(stDevice))[-1]
        self.assertEqual((strName, iEnd - iStart), ('multiRecord', len(bench.MultiRecords(self.Record(0)))))
        stEnd = threading.Event()
        lstFaults = []
        lstTags = []

        def Label():
            try:
                while not stEnd.is_set():
                    strTag = 'TAG-%d' % (len(lstTags) % 10)
                    stController.Fructl('label', 'set', 'board', 'Product Asset Tag=' + strTag)
                    strRead = stController.Json('show', 'board')['product']['assetTag']
                    assert strRead == strTag, 'set %s, found %s' % (strTag, strRead)
                    lstTags.append(strTag)
            except Exception as stError:  # pylint: disable=broad-except
                lstFaults.append(repr(stError))

        stThread = threading.Thread(target=Label, daemon=True)
        stThread.start()
        lstWritten = [0, 0]  # done, told to come again
        abThere = bench.MultiRecords(self.Record(0))
        fUntil = time.monotonic() + SECONDS
        with bench.PYIPMI(stService) as stClient:
            while not lstFaults and (time.monotonic() < fUntil or len(lstTags) < 3 or lstWritten[0] < 3):
                abRecord = bench.MultiRecords(self.Record(sum(lstWritten)))
                iCode = stClient.Raw(STORAGE, 0x12, [0, *iStart.to_bytes(2, 'little'), *abRecord])[0]
                self.assertIn(iCode, (0x00, 0xC0))
                lstWritten[iCode != 0] += 1
                abThere = abRecord if iCode == 0 else abThere
                abRead = stClient.Raw(STORAGE, 0x11, [0, *iStart.to_bytes(2, 'little'), len(abThere)])
                self.assertEqual(abRead, bytes([0, len(abThere)]) + abThere)
                self.assertEqual(stController.Chip(stDevice)[iStart:iEnd], abThere)
        stEnd.set()
        stThread.join(bench.HANG_SECONDS)
        self.assertEqual(lstFaults, [])
        print('  %d labels set, %d records written, %d times busy' % (len(lstTags), *lstWritten))
        abChip = stController.Chip(stDevice)
        self.assertEqual(bench.BadAreas(abChip), [])
        self.assertEqual(stService.ReadFru(0, os.path.join(stController.strBase, 'after.bin'))[:iEnd], abChip[:iEnd])
        stController.Fructl('verify')

    def Record(self, iWhich):
        """Of one length, which one message of every transport carries."""
        return [(0xC0, bytes([0x41 + iWhich % 26]) * 20)]


if __name__ == '__main__':
    bench.Main()
