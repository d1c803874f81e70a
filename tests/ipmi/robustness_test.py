# SPDX-License-Identifier: Apache-2.0
"""What a client or the kernel may do to the service: malformed requests, sessions without a signature, SIGKILL."""
import os
import random
import signal
import subprocess
import time

import bench
from bench import unittest

STORAGE = 0x0A
AREA_INFO, READ, WRITE = 0x10, 0x11, 0x12
REPOSITORY_INFO, GET_SDR, CLEAR = 0x20, 0x23, 0x27
REQUESTS = int(os.environ.get('BMCFRU_IPMI_REQUESTS', '10000'))
FRAME = 34  # data bytes of an IPMI message of the size that every transport carries


class Malformed(unittest.TestCase):
    def test_malformed_requests_are_answered(self):
        lstDevices = [bench.DEVICE(0, 'board', 0, 0, bench.BigImage('a')), bench.DEVICE(1, 'psu', 3, 0, bench.BigImage('b', 1024))]
        stController = bench.CONTROLLER(self, lstDevices)
        stService = bench.SERVICE(self, stController)
        stRandom = random.Random(20240318)
        lstCommands = [AREA_INFO, READ, WRITE] * 4 + list(range(REPOSITORY_INFO, CLEAR + 1))
        mapCodes = {}
        with bench.PYIPMI(stService) as stClient:
            for i in range(REQUESTS):
                iCommand = stRandom.choice(lstCommands)
                abData = bytearray(stRandom.randbytes(stRandom.choice((0, 1, 2, 3, 4, 5, stRandom.randint(0, FRAME)))))
                if abData and stRandom.random() < 0.7:
                    abData[0] = stRandom.randint(0, 2)  # a device that is there, or nearly
                if len(abData) > 2 and stRandom.random() < 0.7:
                    abData[2] = stRandom.randint(0, 8)
                abAnswer = stClient.Raw(STORAGE, iCommand, abData)
                self.assertGreater(len(abAnswer), 0)
                self.CheckAnswer(iCommand, abData, abAnswer)
                mapCodes[abAnswer[0]] = mapCodes.get(abAnswer[0], 0) + 1
        print('  completion codes: ' + ', '.join('%02x: %d' % pairCode for pairCode in sorted(mapCodes.items())))
        self.assertTrue(bench.IsAlive(stService.iSimulator))
        # What the random writes left is well-defined: chip, cache and client agree on it.
        for stDevice in lstDevices:
            strFile = os.path.join(stController.strBase, 'after.bin')
            self.assertEqual(stService.ReadFru(stDevice.iId, strFile), stController.Chip(stDevice))
            self.assertEqual(stController.CacheState(stDevice), 'same')

    def CheckAnswer(self, iCommand, abData, abAnswer):
        iNeeded = {AREA_INFO: 1, READ: 4, WRITE: 4, GET_SDR: 6}.get(iCommand, 0)
        if len(abData) < iNeeded:
            self.assertEqual(abAnswer, b'\xc7')
        elif iCommand == READ and abAnswer[0] == 0:
            self.assertEqual(len(abAnswer), 2 + abData[3])
            self.assertEqual(abAnswer[1], abData[3])
        elif iCommand == WRITE and abAnswer[0] == 0:
            self.assertEqual(abAnswer, bytes([0, len(abData) - 3]))
        elif iCommand > GET_SDR:
            self.assertEqual(abAnswer, b'\xc1')


class Sessions(unittest.TestCase):
    def test_only_signed_sessions_are_served(self):
        stDevice = bench.DEVICE(0, 'board', 0, 0, bench.BigImage('a', 1024))
        stController = bench.CONTROLLER(self, [stDevice])
        stService = bench.SERVICE(self, stController)
        lstRead = ['raw', '0x0a', '0x11', '0', '0', '0', '8']
        for iSuite in (2, 3):
            self.assertEqual(stService.Tool(*lstRead, iSuite=iSuite).returncode, 0)
        # Suites 0, 1 and 6 carry no signature; 0 asks for no password either.
        for iSuite in (0, 1, 6):
            stDone = stService.Tool(*lstRead, iSuite=iSuite)
            self.assertNotEqual(stDone.returncode, 0)
            self.assertIn('nsufficient privilege', stDone.stderr, iSuite)
        for strPassword in ('wrong', ''):
            self.assertNotEqual(stService.Tool(*lstRead, strPassword=strPassword).returncode, 0)
        self.assertNotEqual(stService.Tool(*lstRead, strUser='other').returncode, 0)
        self.assertEqual(stController.Chip(stDevice), stDevice.abImage)
        self.assertEqual(stService.Tool(*lstRead).returncode, 0)


class Killed(unittest.TestCase):
    def Torn(self, stController, stDevice, abOld, abNew):
        """Kills the simulator as soon as a client's write has reached the chip; the chip's contents then."""
        stService = bench.SERVICE(self, stController)
        strFile = os.path.join(stController.strBase, 'write.bin')
        with open(strFile, 'wb') as stFile:
            stFile.write(abNew)
        with subprocess.Popen(['ipmitool', '-I', 'lanplus', '-C', '3', '-H', '127.0.0.1', '-p', str(stService.iPort), '-U',
                               'admin', '-P', stService.strPassword, 'fru', 'write', str(stDevice.iId), strFile],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as stClient:
            fUntil = time.monotonic() + bench.HANG_SECONDS
            while stController.Chip(stDevice)[:1024] == abOld[:1024] and time.monotonic() < fUntil:
                pass
            os.kill(stService.iSimulator, signal.SIGKILL)
            stClient.kill()
        _, strErrors = stService.stProcess.communicate(timeout=bench.HANG_SECONDS)
        self.assertEqual(stService.stProcess.returncode, 1)
        self.assertIn('the service has ended: ipmi_sim was ended by signal 9', strErrors)
        self.assertFalse(os.path.exists(os.path.join(stController.strRoot, 'var/run/ipmi_sim')))
        return stController.Chip(stDevice)

    def test_write_cut_off_is_named_and_mended(self):
        abOld, abNew = bench.BigImage('a'), bench.BigImage('b')
        stDevice = bench.DEVICE(0, 'board', 0, 0, abOld)
        stController = bench.CONTROLLER(self, [stDevice, bench.DEVICE(1, 'psu', 3, 0, bench.BigImage('p', 1024))])
        iTorn = 0
        iRounds = 0
        while iRounds < 4 or (iTorn == 0 and iRounds < 100):
            iRounds += 1
            abChip = self.Torn(stController, stDevice, abOld, abNew)
            self.assertTrue(all(iByte in (abOld[i], abNew[i]) for i, iByte in enumerate(abChip)))
            lstBad = bench.BadAreas(abChip)
            iTorn += bool(lstBad)
            # The cut may also lie between the chip and the cache; then they differ, and the cache has an entry too.
            mapVerdicts = {(m['device']['name'], m['source']): m
                           for m in stController.Json('verify', iExpected=None)['images']}
            mapBoard = mapVerdicts[('board', 'EEPROM')]
            self.assertEqual(mapBoard['sound'], not lstBad)
            self.assertEqual(sorted({m['area'] for m in mapBoard['problems']}), lstBad)
            self.assertTrue(mapVerdicts[('psu', 'EEPROM')]['sound'])
            # Started again, it serves, and the write done again mends the image.
            stService = bench.SERVICE(self, stController)
            strFile = os.path.join(stController.strBase, 'mend.bin')
            self.assertEqual(stService.ReadFru(1, strFile), bench.BigImage('p', 1024))
            self.assertEqual(stService.WriteFru(0, strFile, abNew).returncode, 0)
            self.assertEqual(stService.ReadFru(0, strFile), abNew)
            stController.Fructl('verify')
            self.assertEqual(stController.CacheState(stDevice), 'same')
            self.assertEqual(stService.Stop(), (0, ''))
            abOld, abNew = abNew, abOld
        self.assertGreaterEqual(iTorn, 1)
        print('  %d of %d writes were cut off in an area' % (iTorn, iRounds))

    def test_simulator_does_not_outlive_fructl(self):
        stController = bench.CONTROLLER(self, [bench.DEVICE(0, 'board', 0, 0, bench.BigImage('a', 1024))])
        stService = bench.SERVICE(self, stController)
        stService.stProcess.kill()
        stService.stProcess.communicate()
        self.assertTrue(bench.Await(lambda: not bench.IsAlive(stService.iSimulator)))
        # What it left lying does not hinder the next one, on the same port.
        stAgain = bench.SERVICE(self, stController, iPort=stService.iPort)
        self.assertEqual(stAgain.Raw(STORAGE, AREA_INFO, 0)[0], 0)
        self.assertEqual(stAgain.Stop(), (0, ''))


if __name__ == '__main__':
    bench.Main()
