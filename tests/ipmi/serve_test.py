# SPDX-License-Identifier: Apache-2.0
"""fructl serve as its user meets it: what it refuses, what it says, how it ends."""
import os
import shutil
import signal
import socket
import subprocess
import time

import bench
from bench import unittest

# In some containers nobody may trace.
MAY_TRACE = shutil.which('strace') is not None and subprocess.run(['strace', '-o', '/dev/null', 'true'], check=False).returncode == 0


class ServeCase(unittest.TestCase):
    def setUp(self):
        self.stController = bench.CONTROLLER(self, bench.StandardDevices()[:2])
        self.strRun = os.path.join(self.stController.strRoot, 'var/run/ipmi_sim')

    def PasswordFile(self, strText):
        strFile = os.path.join(self.stController.strBase, 'the secret')
        with open(strFile, 'w', encoding='utf-8') as stFile:
            stFile.write(strText)
        return strFile

    def Refused(self, iCode, strWords, *lstArgs):
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve', *lstArgs])
        self.assertEqual(stDone.returncode, iCode, stDone)
        self.assertIn(strWords, stDone.stderr)
        self.assertEqual(stDone.stderr.count('\n'), 1)
        self.assertEqual(stDone.stdout, '')
        self.assertFalse(os.path.exists(self.strRun))


class Refusals(ServeCase):
    def test_port(self):
        for strPort in ('0', '65536', '-1', 'x'):
            self.Refused(2, 'accepted: 1 to 65535', '--port=' + strPort)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as stSocket:
            stSocket.bind(('127.0.0.1', 0))
            iPort = stSocket.getsockname()[1]
            self.Refused(7, 'UDP port %d of 127.0.0.1 is in use by another program; --port names another' % iPort,
                         '--port', str(iPort))

    def test_address(self):
        self.Refused(2, 'accepted: a numeric IPv4 or IPv6 address', '--address', 'localhost')
        self.Refused(2, 'accepted: a numeric IPv4 or IPv6 address', '--address', '')
        self.Refused(1, '--address takes an address of this machine', '--address', '192.0.2.1', '--password-file',
                     self.PasswordFile('s3cret'))

    def test_the_users_name_is_no_password(self):
        for strAddress in ('127.0.0.1', '0.0.0.0', '192.0.2.1', '::', '2001:db8::1'):
            self.Refused(2, "the user's name is refused as password", '--address', strAddress, '--password-file',
                         self.PasswordFile('admin\n'))
        self.Refused(2, "the user's name is refused as password", '--user', 'me', '--password-file', self.PasswordFile('me'))

    def test_user_and_password(self):
        for strUser in ('', 'x' * 16, 'two words', 'tab\t'):
            self.Refused(2, 'accepted: 1 to 15 printable ASCII characters', '--user', strUser)
        for strText in ('', '\nsecret', 'x' * 20, 'two words'):
            self.Refused(3, 'accepted: 1 to 19 printable ASCII characters', '--password-file', self.PasswordFile(strText))
        self.Refused(4, 'No such file', '--password-file', '/nowhere/at all')

    def test_no_controller(self):
        shutil.rmtree(self.stController.strRoot)
        self.Refused(4, 'there is no controller in')

    def test_second_service_on_one_controller(self):
        bench.SERVICE(self, self.stController)
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve', '--port', str(bench.FreePort())])
        self.assertEqual(stDone.returncode, 7)
        self.assertIn("another 'fructl serve' serves", stDone.stderr)

    def test_no_simulator(self):
        strEmpty = os.path.join(self.stController.strBase, 'empty')
        os.mkdir(strEmpty)
        if os.path.exists('/usr/bin/ipmi_sim') or os.path.exists('/usr/local/bin/ipmi_sim'):
            self.skipTest('ipmi_sim lies where it is always looked for')
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve'], env={'PATH': strEmpty})
        self.assertIn('ipmi_sim is not installed', stDone.stderr)


class Life(ServeCase):
    def FilesWith(self, strText):
        """The files of the controller that hold the text."""
        lstFound = []
        for strDirectory, _, lstNames in os.walk(self.stController.strRoot):
            for strName in lstNames:
                with open(os.path.join(strDirectory, strName), 'rb') as stFile:
                    if strText.encode() in stFile.read():
                        lstFound.append(strName)
        return lstFound

    def test_nothing_is_left_of_a_killed_service(self):
        stService = bench.SERVICE(self, self.stController)
        lstBefore = sorted(os.listdir(self.stController.strRoot + '/var'))
        stService.Stop(signal.SIGKILL)
        self.assertTrue(bench.Await(lambda: not os.path.exists('/proc/%d' % stService.iSimulator)
                                    or not bench.IsAlive(stService.iSimulator)))
        self.assertFalse(os.path.exists(self.strRun))
        self.assertEqual(sorted(os.listdir(self.stController.strRoot + '/var')), lstBefore)
        self.assertEqual(self.FilesWith(stService.strPassword), [])
        self.assertEqual(bench.SERVICE(self, self.stController).Stop(), (0, ''))

    def test_each_service_has_a_password_of_its_own(self):
        lstPasswords = []
        for _ in range(3):
            stService = bench.SERVICE(self, self.stController)
            lstPasswords.append(stService.strPassword)
            self.assertRegex(stService.strPassword, '^[a-z2-9]{16}$')
            self.assertNotEqual(stService.Tool('raw', '6', '1', strPassword='admin').returncode, 0)
            self.assertEqual(stService.Tool('raw', '6', '1').returncode, 0)
            stService.Stop()
        self.assertEqual(len(set(lstPasswords)), 3)
        stService = bench.SERVICE(self, self.stController, '--password-file', self.PasswordFile('secret'))
        self.assertNotIn('password', stService.mapFacts)

    def test_the_simulators_end_is_noticed_where_childrens_ends_are_ignored(self):
        import subprocess

        def Ignore():
            bench.DieWithParent()
            signal.signal(signal.SIGCHLD, signal.SIG_IGN)

        with subprocess.Popen([bench.STR_FRUCTL, '--root', self.stController.strRoot, '--json', 'serve', '--port',
                               str(bench.FreePort())], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              preexec_fn=Ignore) as stProcess:
            strText = ''
            while not strText.endswith('}\n'):
                strText += stProcess.stdout.readline()
            os.kill(bench.json.loads(strText)['pid'], signal.SIGKILL)
            strErrors = stProcess.communicate(timeout=bench.HANG_SECONDS)[1]
        self.assertEqual(stProcess.returncode, 1)
        self.assertIn('the service has ended: ipmi_sim was ended by signal 9', strErrors)

    def Status(self, stService):
        with open('/proc/%d/status' % stService.iSimulator, encoding='utf-8') as stFile:
            return dict(strLine.rstrip('\n').split(':\t', 1) for strLine in stFile if ':\t' in strLine)

    def test_the_simulator_has_no_privileges_and_a_clean_environment(self):
        os.environ['LD_BIND_NOW'] = '1'
        self.addCleanup(os.environ.pop, 'LD_BIND_NOW')
        stService = bench.SERVICE(self, self.stController)
        mapStatus = self.Status(stService)
        for strSet in ('CapInh', 'CapPrm', 'CapEff', 'CapAmb'):
            self.assertEqual(int(mapStatus[strSet], 16), 0, strSet)
        self.assertEqual(mapStatus['NoNewPrivs'], '1')
        with open('/proc/%d/environ' % stService.iSimulator, 'rb') as stFile:
            lstNames = [abEntry.split(b'=')[0] for abEntry in stFile.read().split(b'\0') if abEntry]
        # Those behind it are the test's own, of the script that starts the simulator with sanitizers.
        lstOwn = [b'ASAN_OPTIONS', b'LD_PRELOAD', b'PWD'] if bench.STR_PRELOAD else []
        self.assertEqual(sorted(lstNames), sorted([b'LC_ALL', b'PATH', b'TZ', *lstOwn]))
        with open('/proc/%d/cmdline' % stService.iSimulator, 'rb') as stFile:
            self.assertNotIn(stService.strPassword.encode(), stFile.read())

    def NeedsRoot(self):
        if os.geteuid() != 0:
            self.skipTest('only root can act as two users')

    def Owners(self, strBelow=''):
        """User number by path, of everything there."""
        mapOwners = {}
        for strDirectory, lstDirectories, lstNames in os.walk(os.path.join(self.stController.strRoot, strBelow)):
            for strName in lstDirectories + lstNames:
                strPath = os.path.join(strDirectory, strName)
                mapOwners[os.path.relpath(strPath, self.stController.strRoot)] = os.lstat(strPath).st_uid
        return mapOwners

    def test_root_serves_its_own_controller_as_somebody_who_has_nothing_else(self):
        self.NeedsRoot()
        import pwd
        setNames = {stEntry.pw_name for stEntry in pwd.getpwall()}
        strUser = 'fructl' if 'fructl' in setNames else 'nobody'
        iUser = pwd.getpwnam(strUser).pw_uid
        for strSecret in ('secret', 'conf/secret'):
            strPath = os.path.join(self.stController.strRoot, strSecret)
            os.makedirs(os.path.dirname(strPath), exist_ok=True)
            with open(strPath, 'w', encoding='utf-8'):
                os.chmod(strPath, 0o600)
        stService = bench.SERVICE(self, self.stController)
        self.assertEqual(stService.mapFacts['runsAs'], strUser)
        mapStatus = self.Status(stService)
        self.assertEqual(mapStatus['Uid'].split(), [str(iUser)] * 4)
        self.assertEqual(mapStatus['Groups'].split(), [])
        self.assertEqual(int(mapStatus['CapBnd'], 16), 0)
        stDevice = self.stController.lstDevices[1]
        self.assertEqual(stService.Raw(0x0A, 0x12, 1, 0, 0, 1), (0, b'\x01'))
        # Root works on beside it, with files that both can use.
        self.stController.Fructl('label', 'set', stDevice.strName, 'Product Version=B2')
        self.assertEqual(stService.Raw(0x0A, 0x10, 1)[0], 0)
        self.assertEqual(stService.Raw(0x0A, 0x12, 1, 0, 0, 1), (0, b'\x01'))
        self.assertEqual(self.stController.CacheState(stDevice), 'same')  # as what is in the chip
        for strPath, iOwner in self.Owners().items():
            bHis = strPath in ('eeprom', 'var/lib/fru', 'var/log', 'var/lock') or strPath.startswith(
                ('eeprom/', 'var/lib/fru/', 'var/log/', 'var/lock/'))
            # Root finishes what is noted there, so nobody else may note it.
            bHis = bHis and not strPath.startswith('var/lib/fru/journal')
            self.assertEqual(iOwner, iUser if bHis else 0, strPath)
        self.assertEqual(stService.Stop(), (0, ''))

    def test_root_serves_as_root_when_told_so_but_without_a_capability(self):
        self.NeedsRoot()
        stService = bench.SERVICE(self, self.stController, '--run-as', 'root')
        mapStatus = self.Status(stService)
        self.assertEqual(mapStatus['Uid'].split(), ['0'] * 4)
        for strSet in ('CapPrm', 'CapEff', 'CapBnd', 'CapAmb'):
            self.assertEqual(int(mapStatus[strSet], 16), 0, strSet)
        self.assertEqual(set(self.Owners().values()), {0})
        self.assertEqual(stService.Raw(0x0A, 0x12, 1, 0, 0, 1), (0, b'\x01'))

    def test_a_user_who_cannot_serve_is_refused_and_given_nothing(self):
        self.NeedsRoot()
        self.Refused(2, 'there is no such user', '--run-as', 'not a user')
        os.chmod(self.stController.strBase, 0o700)
        self.Refused(8, '--run-as names another user, --root another place')
        self.assertEqual(set(self.Owners().values()), {0})
        os.chmod(self.stController.strBase, 0o755)
        strLog = os.path.join(self.stController.strRoot, 'var/log')
        os.makedirs(strLog, exist_ok=True)
        os.chown(strLog, 1, 1)
        self.Refused(8, 'it belongs neither to him nor to root')
        os.rmdir(strLog)
        os.symlink(self.stController.strBase, strLog)  # even root's own
        self.Refused(8, 'a symbolic link there is not followed')
        self.assertEqual(os.stat(self.stController.strBase).st_uid, 0)

    def test_only_root_names_another_user(self):
        self.NeedsRoot()
        iUser = 65534
        for strPath in ['.', *self.Owners()]:
            os.chown(os.path.join(self.stController.strRoot, strPath), iUser, iUser)
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve', '--run-as', 'root'],
                           user=iUser, group=iUser, extra_groups=[])
        self.assertEqual(stDone.returncode, 2)
        self.assertIn('only root can run it as another user', stDone.stderr)

    def test_root_serves_a_users_controller_as_that_user(self):
        self.NeedsRoot()
        iUser = 65534
        for strPath in ['.', *self.Owners()]:
            os.chown(os.path.join(self.stController.strRoot, strPath), iUser, iUser)
        self.Refused(8, '--foreign-root writes all the same')
        os.environ['SUDO_UID'] = str(iUser)
        self.addCleanup(os.environ.pop, 'SUDO_UID')
        stService = bench.SERVICE(self, self.stController)
        mapStatus = self.Status(stService)
        self.assertEqual(mapStatus['Uid'].split(), [str(iUser)] * 4)
        self.assertEqual(mapStatus['Gid'].split(), [str(iUser)] * 4)
        self.assertEqual(mapStatus['Groups'].split(), [])
        self.assertEqual(int(mapStatus['CapBnd'], 16), 0)
        self.assertEqual(stService.Raw(0x0A, 0x12, 1, 0, 0, 1), (0, b'\x01'))  # and it can write there
        self.assertEqual(stService.Stop(), (0, ''))
        self.assertEqual(set(self.Owners().values()), {iUser})

    def test_what_others_laid_where_its_files_once_were_stays(self):
        strVictim = os.path.join(self.stController.strBase, 'victim')
        os.makedirs(strVictim + '/state')
        with open(strVictim + '/state/kept', 'w', encoding='utf-8'):
            pass
        os.makedirs(os.path.dirname(self.strRun))
        os.symlink(strVictim, self.strRun)
        if os.geteuid() == 0:
            os.lchown(self.strRun, 65534, 65534)
        self.assertEqual(bench.SERVICE(self, self.stController).Stop(), (0, ''))
        self.assertEqual(os.listdir(strVictim), ['state'])
        self.assertEqual(os.listdir(strVictim + '/state'), ['kept'])

    def test_a_lock_that_is_a_link_empties_nothing(self):
        strVictim = os.path.join(self.stController.strBase, 'victim')
        with open(strVictim, 'w', encoding='utf-8') as stFile:
            stFile.write('kept')
        for strLock in ('fructl.lock', 'fructl-serve.lock'):
            strPath = os.path.join(self.stController.strRoot, 'var/lock', strLock)
            if os.path.exists(strPath):
                os.unlink(strPath)
            os.symlink(strVictim, strPath)
        self.Refused(8, 'a symbolic link there is not followed')
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'label', 'set', 'psu1', 'Product Version=B2'])
        self.assertEqual(stDone.returncode, 8)
        self.assertIn('a symbolic link there is not followed', stDone.stderr)
        with open(strVictim, encoding='utf-8') as stFile:
            self.assertEqual(stFile.read(), 'kept')

    def test_stops_cleanly_on_each_signal(self):
        for iSignal in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            stService = bench.SERVICE(self, self.stController)
            self.assertFalse(os.path.exists(self.strRun))  # the configuration lies in no directory at all
            self.assertEqual(self.FilesWith(stService.strPassword), [])
            self.assertEqual(stService.Stop(iSignal), (0, ''))
            self.assertFalse(bench.IsAlive(stService.iSimulator) if os.path.exists('/proc/%d' % stService.iSimulator) else False)
            self.assertFalse(os.path.exists(self.strRun))
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as stSocket:
                stSocket.bind(('127.0.0.1', stService.iPort))

    def test_says_how_to_connect(self):
        iPort = bench.FreePort()
        import subprocess
        with subprocess.Popen([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve', '--port', str(iPort)],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              preexec_fn=bench.DieWithParent) as stProcess:
            strFirst, strSecond = stProcess.stdout.readline(), stProcess.stdout.readline()
            self.assertTrue(strFirst.startswith('serving 2 FRU devices of '), strFirst)
            self.assertRegex(strSecond.strip(),
                             '^ipmitool -I lanplus -C 3 -H 127.0.0.1 -p %d -U admin -P [a-z2-9]{16} fru print$' % iPort)
            stDone = bench.Run(['sh', '-c', strSecond.strip()])
            self.assertEqual(stDone.returncode, 0, stDone)
            self.assertIn('PS8024100311', stDone.stdout)
            stProcess.terminate()
            self.assertEqual(stProcess.communicate(timeout=bench.HANG_SECONDS), ('', ''))

    def test_own_user_and_password_and_the_line_that_uses_them(self):
        strPassword = 'p$a"ss\\#\'1'
        strFile = self.PasswordFile(strPassword + '\nnot this\n')
        stService = bench.SERVICE(self, self.stController, '--user', "o'neil$", '--password-file', strFile)
        stDone = bench.Run(['sh', '-c', stService.mapFacts['client']])
        self.assertEqual(stDone.returncode, 0, stDone)
        self.assertIn('PS8024100311', stDone.stdout)
        self.assertNotEqual(stService.Tool('raw', '6', '1').returncode, 0)
        self.assertEqual(stService.Tool('raw', '6', '1', strUser="o'neil$", strPassword=strPassword).returncode, 0)

    def test_longest_user_and_password(self):
        stService = bench.SERVICE(self, self.stController, '--user', 'u' * 15, '--password-file', self.PasswordFile('p' * 19))
        self.assertEqual(stService.Tool('raw', '6', '1', strUser='u' * 15, strPassword='p' * 19).returncode, 0)

    def test_other_addresses_of_this_machine(self):
        with socket.socket(socket.AF_INET6, socket.SOCK_DGRAM) as stSocket:
            try:
                stSocket.bind(('::1', 0))
            except OSError:
                self.skipTest('this machine has no IPv6')
        stService = bench.SERVICE(self, self.stController, '--address', '::1')
        stDone = bench.Run(['sh', '-c', stService.mapFacts['client']])
        self.assertIn('PS8024100311', stDone.stdout)
        self.assertEqual(stService.Stop(), (0, ''))
        stService = bench.SERVICE(self, self.stController, '--address', '127.0.0.2')
        self.assertIn('PS8024100311', bench.Run(['sh', '-c', stService.mapFacts['client']]).stdout)

    def test_repository_time_is_in_the_clock_of_its_stamps(self):
        stService = bench.SERVICE(self, self.stController)
        _, abInfo = stService.Raw(0x0A, 0x20)
        iCode, abTime = stService.Raw(0x0A, 0x28)
        self.assertEqual((iCode, len(abTime)), (0, 4))
        iTime = int.from_bytes(abTime, 'little')
        self.assertLess(abs(iTime - time.time()), 60)
        self.assertLessEqual(int.from_bytes(abInfo[5:9], 'little'), iTime)
        self.assertEqual(stService.Raw(0x0A, 0x29, 0, 0, 0, 0)[0], 0xC1)

    def test_what_the_simulator_prints_is_plain_text(self):
        import subprocess
        strChip = self.stController.ChipPath(self.stController.lstDevices[1])
        with open(strChip[:-len('.bin')] + '.fault', 'w', encoding='utf-8') as stFile:
            stFile.write('absent')
        iPort = bench.FreePort()
        with subprocess.Popen([bench.STR_FRUCTL, '--root', self.stController.strRoot, '--json', '-v', 'serve', '--port', str(iPort)],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, preexec_fn=bench.DieWithParent) as stProcess:
            abText = b''
            while not abText.endswith(b'}\n'):
                abText += stProcess.stdout.readline()
            strPassword = bench.json.loads(abText)['password']
            bench.Run(['ipmitool', '-I', 'lanplus', '-C', '3', '-H', '127.0.0.1', '-p', str(iPort), '-U', 'ad\x1b[2Jmin', '-P', 'x', 'raw', '6', '1'])
            bench.Run(['ipmitool', '-I', 'lanplus', '-C', '3', '-H', '127.0.0.1', '-p', str(iPort), '-U', 'admin', '-P', strPassword,
                       'raw', '0x0a', '0x12', '1', '0', '0', '1'])
            stProcess.terminate()
            abErrors = stProcess.communicate(timeout=bench.HANG_SECONDS)[1]
        self.assertIn(b'nobody answers', abErrors)
        self.assertEqual([i for i in abErrors if i != 10 and not 32 <= i < 127], [])

    def test_change_of_the_devices_is_seen_at_once(self):
        stService = bench.SERVICE(self, self.stController)
        self.assertEqual(stService.Tool('sdr', 'list', 'fru').stdout.count('\n'), 2)
        strPlan = os.path.join(self.stController.strBase, 'controller.json')
        self.stController.Fructl('provision', '--force', self.Plan(strPlan, bench.StandardDevices()[:1]))
        self.assertEqual(stService.Tool('sdr', 'list', 'fru').stdout.count('\n'), 1)

    def CutLabelWrite(self, stDevice):
        """A fructl that is killed with its write begun and not finished."""
        strJournal = os.path.join(self.stController.strRoot, 'var/lib/fru/journal')
        for iWhen in range(1, 100):
            subprocess.run(['strace', '-f', '-o', '/dev/null', '-e', 'trace=pwrite64', '-e', 'inject=pwrite64:signal=KILL:when=%d' % iWhen,
                            bench.STR_FRUCTL, '--root', self.stController.strRoot, 'label', 'set', stDevice.strName,
                            'Board Serial Number', 'CUT-OFF-%d' % iWhen],
                           check=False, capture_output=True, env={**os.environ, 'ASAN_OPTIONS': 'detect_leaks=0'})
            if os.path.isdir(strJournal) and os.listdir(strJournal):
                return strJournal
        self.fail('no write was cut short')

    @unittest.skipUnless(MAY_TRACE, 'there is no strace, or it may not trace')
    def test_a_write_that_was_cut_short_is_mended_before_clients_write(self):
        stDevice = self.stController.lstDevices[1]
        stService = bench.SERVICE(self, self.stController)
        os.kill(stService.stProcess.pid, signal.SIGSTOP)  # nobody mends for now
        strJournal = self.CutLabelWrite(stDevice)
        self.assertEqual(stService.Raw(0x0A, 0x12, stDevice.iId, 0, 0, 1), (0xC0, b''))
        os.kill(stService.stProcess.pid, signal.SIGCONT)
        self.assertTrue(bench.Await(lambda: not os.listdir(strJournal)))
        self.assertEqual(stService.Raw(0x0A, 0x12, stDevice.iId, 0, 0, 1), (0, b'\x01'))
        iCode, strErrors = stService.Stop()
        self.assertEqual(iCode, 0)
        self.assertIn('is finished now', strErrors)

    def Plan(self, strPlan, lstDevices):
        import json
        with open(strPlan, 'w', encoding='utf-8') as stFile:
            json.dump({'devices': [stDevice.mapPlan for stDevice in lstDevices]}, stFile)
        return strPlan


if __name__ == '__main__':
    bench.Main()
