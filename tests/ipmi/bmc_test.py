# SPDX-License-Identifier: Apache-2.0
"""fructl --bmc: FRUs behind another controller, which is our own service here and OpenIPMI's simulator with a FRU of its own.
Between them stands a wire that loses what it is told to lose."""
import fcntl
import json
import os
import select
import shutil
import socket
import subprocess
import tempfile
import threading
import time

import bench
from bench import unittest

STATE = '.local/state/fructl/bmc'
PATIENT = ('--wait', '60')  # seconds for an answer: more than a busy machine needs


def MissingLibrary():
    if not os.path.exists(os.path.join(bench.STR_BUILD, 'libbmcfruhost-ipmi.so')):
        return 'the library that logs in is not built; it needs libopenipmi-dev'
    return ''


class WIRE:
    """Carries UDP between a client and the service, and counts what the client sends. fnLost decides what is lost."""

    def __init__(self, stCase, iPort, fnLost=lambda iPacket: False):
        self.fnLost = fnLost
        self.iPackets = 0
        self.stNear = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.stNear.bind(('127.0.0.1', 0))
        self.iPort = self.stNear.getsockname()[1]
        self.stFar = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.stFar.connect(('127.0.0.1', iPort))
        self.bEnd = False
        self.stThread = threading.Thread(target=self._Carry)
        self.stThread.start()
        stCase.addCleanup(self.Close)

    def _Carry(self):
        stClient = None
        while not self.bEnd:
            for stSocket in select.select([self.stNear, self.stFar], [], [], 0.1)[0]:
                try:
                    if stSocket is self.stNear:
                        abPacket, stClient = self.stNear.recvfrom(4096)
                        self.iPackets += 1
                        if not self.fnLost(self.iPackets):
                            self.stFar.send(abPacket)
                    else:
                        abPacket = self.stFar.recv(4096)
                        if stClient and not self.fnLost(self.iPackets):
                            self.stNear.sendto(abPacket, stClient)
                except ConnectionRefusedError:
                    pass  # nobody listens just now

    def Close(self):
        self.bEnd = True
        self.stThread.join()
        self.stNear.close()
        self.stFar.close()


class BmcCase(unittest.TestCase):
    def setUp(self):
        strReason = MissingLibrary()
        if strReason:
            self.skipTest(strReason)
        self.strHome = tempfile.mkdtemp(prefix='bmcfru_home_')
        self.addCleanup(shutil.rmtree, self.strHome, True)

    def Serve(self, lstDevices=None):
        self.stController = bench.CONTROLLER(self, lstDevices or bench.StandardDevices()[:5])
        self.stService = bench.SERVICE(self, self.stController)
        self.iPort = self.stService.iPort
        self.strPassword = self.stService.strPassword

    def Run(self, *lstArgs, iPort=None, strPassword=None, lstLogin=('-U', 'admin'), strHost='127.0.0.1'):
        mapEnvironment = {strKey: strValue for strKey, strValue in os.environ.items() if strKey not in ('FRUCTL_ROOT', 'XDG_STATE_HOME')}
        mapEnvironment['HOME'] = self.strHome
        strPassword = self.strPassword if strPassword is None else strPassword
        mapEnvironment.pop('IPMI_PASSWORD', None)
        if strPassword:
            mapEnvironment['IPMI_PASSWORD'] = strPassword
        return bench.Run([bench.STR_FRUCTL, '--bmc', strHost, '--port', str(iPort or self.iPort), *lstLogin, *lstArgs],
                         env=mapEnvironment)

    def Good(self, *lstArgs, **mapMore):
        stDone = self.Run(*PATIENT, *lstArgs, **mapMore)
        self.assertEqual((stDone.returncode, stDone.stderr), (0, ''), (lstArgs, stDone.stdout[-500:]))
        return stDone.stdout

    def Json(self, *lstArgs, **mapMore):
        return json.loads(self.Good('--json', *lstArgs, **mapMore))

    def Bad(self, iCode, strWords, *lstArgs, **mapMore):
        stDone = self.Run(*lstArgs, **mapMore)
        self.assertEqual(stDone.returncode, iCode, stDone)
        self.assertIn(strWords, stDone.stderr)
        self.assertEqual(stDone.stderr.count('\n'), 1, stDone.stderr)

    def StateOf(self, iPort):
        return os.path.join(self.strHome, STATE, '127.0.0.1,%d' % iPort)

    def HomeHolds(self, strText):
        for strDirectory, _, lstNames in os.walk(self.strHome):
            for strName in lstNames:
                with open(os.path.join(strDirectory, strName), 'rb') as stFile:
                    if strText.encode() in stFile.read():
                        return True
        return False

    def Serial(self, iFru=0):
        return self.Json('show', str(iFru))['board']['serialNumber']


class OurService(BmcCase):
    def setUp(self):
        super().setUp()
        self.Serve()

    def test_shows_what_the_other_controller_shows_of_itself(self):
        for stDevice in self.stController.lstDevices:
            dictHere = self.Json('show', str(stDevice.iId))
            dictThere = self.stController.Json('show', stDevice.strName)
            for strArea in ('chassis', 'board', 'product', 'multiRecords'):
                self.assertEqual(dictHere.get(strArea), dictThere.get(strArea), strArea)
        lstDevices = self.Json('list')['devices']
        self.assertEqual([(m['id'], m['name'], m['size']) for m in lstDevices],
                         [(stDevice.iId, 'fru%d' % stDevice.iId, stDevice.iSize) for stDevice in self.stController.lstDevices])
        self.Good('verify', 'fru0')
        self.assertFalse(self.HomeHolds(self.strPassword))

    def test_everything_that_is_done_to_a_device_on_the_desk_is_done_there(self):
        stDevice = self.stController.lstDevices[0]
        abBefore = self.stController.Chip(stDevice)
        self.Good('label', 'set', '0', 'Product Asset Tag=RACK9')
        self.assertEqual(self.stController.Json('show', 'baseboard')['product']['assetTag'], 'RACK9')
        self.assertNotEqual(self.stController.Chip(stDevice), abBefore)
        self.assertEqual(len(self.Json('history', '0')['images']), 1)
        self.Good('undo', '0')
        self.assertEqual(self.stController.Chip(stDevice), abBefore)
        strFile = os.path.join(self.strHome, 'image.bin')
        self.Good('read', '1', '-o', strFile)
        with open(strFile, 'rb') as stFile:
            self.assertEqual(stFile.read(), self.stController.Chip(self.stController.lstDevices[1]))
        self.Good('write', '2', strFile)
        self.assertEqual(self.stController.Chip(self.stController.lstDevices[2]),
                         self.stController.Chip(self.stController.lstDevices[1]))
        self.Good('diff', '2', '1')

    def test_what_others_have_written_since_is_seen_and_kept(self):
        self.Good('label', 'set', '0', 'Product Asset Tag=OURS')
        self.stController.Fructl('label', 'set', 'baseboard', 'Board Serial Number=THEIRS')
        self.assertEqual(self.Serial(), 'THEIRS')
        self.Good('label', 'set', '0', 'Product Asset Tag=AGAIN')
        dictShown = self.stController.Json('show', 'baseboard')
        self.assertEqual((dictShown['board']['serialNumber'], dictShown['product']['assetTag']), ('THEIRS', 'AGAIN'))

    def test_who_is_not_let_in_is_told_why(self):
        self.Bad(8, "does not take the password of user 'admin'", 'list', strPassword='wrong')
        self.Bad(8, "does not know the user 'nobody'", 'list', lstLogin=('-U', 'nobody'))
        self.Bad(2, 'accepted: --password-file FILE, or the environment', 'list', strPassword='')
        self.Bad(2, 'cipherSuite is refused; accepted: 2, 3, 7 or 8', '--cipher-suite', '0', 'list')
        self.Bad(2, 'privilege is refused; accepted: user, operator or administrator', '--privilege', 'root', 'list')
        self.Bad(2, 'host is refused', 'list', strHost='/etc/passwd')
        self.assertFalse(os.path.exists(self.StateOf(self.iPort)))
        self.Good('--cipher-suite', '2', 'list')

    def test_the_password_may_stand_in_a_file(self):
        strFile = os.path.join(self.strHome, 'secret')
        with open(strFile, 'w', encoding='utf-8') as stFile:
            stFile.write(self.strPassword + '\n')
        self.Good('-f', strFile, 'show', '0', strPassword='')
        self.Bad(4, 'No such file', '-f', strFile + 'x', 'show', '0', strPassword='')

    def test_nobody_there_is_told(self):
        self.Bad(5, 'does not answer', '--wait', '1', 'list', iPort=bench.FreePort())

    def test_commands_that_make_no_sense_there_are_refused(self):
        self.Bad(2, "'provision' is for a controller in a directory", 'provision', 'x.json')
        self.Bad(2, "'serve' is for a controller in a directory", 'serve')
        stDone = bench.Run([bench.STR_FRUCTL, '-U', 'me', 'list'])
        self.assertEqual(stDone.returncode, 2)
        self.assertIn('go with --bmc HOST', stDone.stderr)
        self.Bad(4, 'has no FRU device ID 77; it has fru0, fru1', 'show', '77')

    def test_a_root_of_something_else_is_left_alone(self):
        self.Bad(3, 'is not 127.0.0.1', '--root', self.stController.strRoot, 'list')

    def test_new_frus_are_found_when_they_are_asked_for(self):
        self.assertEqual(len(self.Json('list')['devices']), 5)
        stMore = bench.DEVICE(9, 'late', 0x21, 9, bench.BuildImage(256, None, ['A', 'B', 'C', 'D', '']))
        strPlan = os.path.join(self.stController.strBase, 'more.json')
        with open(os.path.join(self.stController.strBase, 'late.bin'), 'wb') as stFile:
            stFile.write(stMore.abImage)
        with open(strPlan, 'w', encoding='utf-8') as stFile:
            json.dump({'devices': [stDevice.mapPlan for stDevice in [*self.stController.lstDevices, stMore]]}, stFile)
        self.stController.Fructl('provision', '--force', strPlan)
        self.assertEqual(len(self.Json('list')['devices']), 5)
        self.assertEqual(len(self.Json('--rescan', 'list')['devices']), 6)
        self.assertEqual(self.Json('show', '9')['board']['manufacturer'], 'A')

    def test_a_controller_that_is_busy_is_waited_for(self):
        self.Good('list')
        strLock = os.path.join(self.stController.strRoot, 'var/lock/fructl.lock')
        with open(strLock, 'r+b') as stLock:
            fcntl.lockf(stLock, fcntl.LOCK_EX)
            stTimer = threading.Timer(1.0, lambda: fcntl.lockf(stLock, fcntl.LOCK_UN))
            stTimer.start()
            self.Good('label', 'set', '0', 'Product Asset Tag=WAITED')
            stTimer.join()
        self.assertEqual(self.stController.Json('show', 'baseboard')['product']['assetTag'], 'WAITED')


class ARootsDevice(BmcCase):
    def setUp(self):
        super().setUp()
        self.Serve()
        self.strRoot = os.path.join(self.strHome, 'root')
        strSecret = os.path.join(self.strHome, 'secret')
        with open(strSecret, 'w', encoding='utf-8') as stFile:
            stFile.write(self.strPassword)
        self.dictLocation = {'backend': 'ipmi', 'bus': 3, 'address': 0xA0, 'host': '127.0.0.1', 'port': self.iPort, 'user': 'admin',
                             'passwordFile': strSecret, 'fru': 1, 'chunk': 5, 'timeoutSeconds': 60}

    def Fructl(self, *lstArgs):
        return bench.Run([bench.STR_FRUCTL, '--root', self.strRoot, *lstArgs])

    def Provision(self, bCached=True, **mapMore):
        strPlan = os.path.join(self.strHome, 'plan.json')
        with open(strPlan, 'w', encoding='utf-8') as stFile:
            json.dump({'devices': [{'id': 7, 'name': 'far', 'componentType': 3, 'instance': 0, 'size': 256, 'eepromSize': 256,
                                    'cached': bCached, 'location': {**self.dictLocation, **mapMore}}]}, stFile)
        return self.Fructl('provision', '--force', strPlan)

    def test_is_read_and_written_in_chunks_of_five_bytes(self):
        self.assertEqual(self.Provision().returncode, 0)
        stDevice = self.stController.lstDevices[1]
        stDone = self.Fructl('--json', 'show', 'far')
        self.assertEqual(stDone.returncode, 0, stDone)
        self.assertEqual(json.loads(stDone.stdout)['board']['serialNumber'], 'PS8024100311')
        stDone = self.Fructl('label', 'set', 'far', 'Board Serial Number=FROM AFAR')
        self.assertEqual((stDone.returncode, stDone.stderr), (0, ''))
        self.assertEqual(self.stController.Json('show', stDevice.strName)['board']['serialNumber'], 'FROM AFAR')

    def test_what_its_description_says_wrong_is_refused(self):
        for mapWrong, strWords in (({'fru': 255}, 'fru is refused; accepted: 0 to 254'), ({'password': 'x'}, 'password is unknown'),
                                   ({'host': ''}, 'host is refused')):
            stDone = self.Provision(**mapWrong)
            self.assertEqual(stDone.returncode, 3, stDone)
            self.assertIn(strWords, stDone.stderr)

    def test_a_fru_that_is_not_there_does_not_answer(self):
        self.assertEqual(self.Provision(bCached=False, fru=99).returncode, 0)
        stDone = self.Fructl('show', 'far')
        self.assertEqual(stDone.returncode, 5, stDone)
        self.assertIn('completion code 0xcb, there is none', stDone.stderr)


class BrokenWire(BmcCase):
    """A write's session breaks off, and the next command makes the device old or new."""

    def setUp(self):
        super().setUp()
        self.Serve(bench.StandardDevices()[:1])
        self.stDevice = self.stController.lstDevices[0]

    def test_a_write_that_breaks_off_is_old_or_new_at_the_next_command(self):
        iLimit = [1 << 30]
        stWire = WIRE(self, self.iPort, lambda iPacket: iPacket > iLimit[0])
        lstSerials = ['A' * 19 + '1', 'B' * 19 + '2']
        self.Good('label', 'set', '0', 'Board Serial Number=' + lstSerials[0], iPort=stWire.iPort)
        iBefore = stWire.iPackets
        self.Good('label', 'set', '0', 'Board Serial Number=' + lstSerials[1], iPort=stWire.iPort)
        iPackets = stWire.iPackets - iBefore
        iHalf = 0
        for i in range(6):
            strOld, strNew = lstSerials[(i + 1) % 2], lstSerials[i % 2]
            # Most of a write's packets are reads ahead of it; its own come late.
            iLimit[0] = stWire.iPackets + iPackets - 2 - (5 - i) * max(iPackets // 12, 1)
            stDone = self.Run('--wait', '1', 'label', 'set', '0', 'Board Serial Number=' + strNew, iPort=stWire.iPort)
            iHalf += stDone.returncode != 0
            iLimit[0] = 1 << 30
            stDone = self.Run(*PATIENT, '--json', 'show', '0', iPort=stWire.iPort)
            self.assertEqual(stDone.returncode, 0, stDone)
            strSerial = json.loads(stDone.stdout)['board']['serialNumber']
            self.assertIn(strSerial, (strOld, strNew))
            self.assertEqual(bench.BadAreas(self.stController.Chip(self.stDevice)), [])
            self.assertEqual(self.Json('journal', 'list', iPort=stWire.iPort)['entries'], [])
            if strSerial != strNew:
                self.Good('label', 'set', '0', 'Board Serial Number=' + strNew, iPort=stWire.iPort)
        self.assertGreater(iHalf, 0)

    def test_packets_that_are_lost_now_and_then_harm_nothing(self):
        stWire = WIRE(self, self.iPort)
        self.Good('list', iPort=stWire.iPort)
        iBegin = stWire.iPackets
        stWire.fnLost = lambda iPacket: (iPacket - iBegin) % 97 == 50
        self.Good('label', 'set', '0', 'Product Asset Tag=SURVIVED', iPort=stWire.iPort)
        self.assertEqual(self.stController.Json('show', 'baseboard')['product']['assetTag'], 'SURVIVED')


class SimulatorsOwnFru(BmcCase):
    """No code of ours on the other side."""

    def setUp(self):
        super().setUp()
        self.strPassword = 's3cret'
        self.iPort = bench.FreePort()
        self.abImage = bench.BuildImage(256, None, ['Somebody', 'Board', 'SER1', 'PART', 'f'])
        strLan = os.path.join(self.strHome, 'lan.conf')
        strCommands = os.path.join(self.strHome, 'sim.emu')
        with open(strLan, 'w', encoding='utf-8') as stFile:
            stFile.write('name "sim"\nset_working_mc 0x20\n  startlan 1\n    addr 127.0.0.1 %d\n'
                         '    guid a123456789abcdefa123456789abcdef\n    priv_limit admin\n'
                         '    allowed_auths_admin md5\n  endlan\n  user 2 true "admin" "s3cret" admin 10 md5\n' % self.iPort)
        with open(strCommands, 'w', encoding='utf-8') as stFile:
            stFile.write('mc_setbmc 0x20\nmc_add 0x20 0x20 no-device-sdrs 0x23 9 8 0x9f 0x1291 0xf02 persist_sdr\n'
                         'mc_add_fru_data 0x20 0 %d data %s\nmc_enable 0x20\n'
                         % (len(self.abImage), ' '.join('0x%02x' % iByte for iByte in self.abImage)))
        self.stProcess = subprocess.Popen(['ipmi_sim', '-c', strLan, '-f', strCommands, '-s', self.strHome, '-n', '-p'],
                                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                          preexec_fn=bench.DieWithParent)
        self.addCleanup(self.Stop)
        self.assertTrue(bench.Await(self.Answers), 'the simulator does not answer')

    def Stop(self):
        self.stProcess.kill()
        self.stProcess.communicate()

    def Answers(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as stSocket:
            stSocket.settimeout(0.5)
            try:
                stSocket.sendto(bytes([6, 0, 0xFF, 6, 0, 0, 0x11, 0xBE, 0x80, 0, 0, 0]), ('127.0.0.1', self.iPort))
                return bool(stSocket.recv(64))
            except (socket.timeout, ConnectionRefusedError):
                time.sleep(0.05)
                return False

    def test_is_shown_changed_and_put_back(self):
        self.assertEqual(self.Json('show', '0')['board']['manufacturer'], 'Somebody')
        self.Good('label', 'set', '0', 'Board Serial Number=SER2')
        self.assertEqual(self.Serial(), 'SER2')
        self.Good('undo', '0')
        strFile = os.path.join(self.strHome, 'image.bin')
        self.Good('read', '0', '-o', strFile)
        with open(strFile, 'rb') as stFile:
            self.assertEqual(stFile.read(), self.abImage)



if __name__ == '__main__':
    bench.Main()
