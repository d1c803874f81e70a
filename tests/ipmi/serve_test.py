"""fructl serve as its user meets it: what it refuses, what it says, how it ends."""
import os
import shutil
import signal
import socket
import stat

import bench
from bench import unittest


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
            self.Refused(1, 'UDP port %d of 127.0.0.1 is in use by another program; --port names another' % iPort,
                         '--port', str(iPort))

    def test_address(self):
        self.Refused(2, 'accepted: a numeric IPv4 or IPv6 address', '--address', 'localhost')
        self.Refused(2, 'accepted: a numeric IPv4 or IPv6 address', '--address', '')
        self.Refused(1, '--address takes an address of this machine', '--address', '192.0.2.1', '--password-file',
                     self.PasswordFile('s3cret'))

    def test_default_password_beyond_loopback(self):
        for strAddress in ('0.0.0.0', '192.0.2.1', '::', '2001:db8::1'):
            self.Refused(2, 'is refused with the default password', '--address', strAddress)
        self.Refused(2, 'is refused with the default password', '--address', '0.0.0.0', '--password-file',
                     self.PasswordFile('admin\n'))

    def test_user_and_password(self):
        for strUser in ('', 'x' * 16, 'two words', 'tab\t'):
            self.Refused(2, 'accepted: 1 to 15 printable ASCII characters', '--user', strUser)
        for strText in ('', '\nsecret', 'x' * 20, 'two words'):
            self.Refused(1, 'accepted: 1 to 19 printable ASCII characters', '--password-file', self.PasswordFile(strText))
        self.Refused(1, 'No such file', '--password-file', '/nowhere/at all')

    def test_no_controller(self):
        shutil.rmtree(self.stController.strRoot)
        self.Refused(1, 'there is no controller in')

    def test_second_service_on_one_controller(self):
        bench.SERVICE(self, self.stController)
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve', '--port', str(bench.FreePort())])
        self.assertEqual(stDone.returncode, 1)
        self.assertIn("another 'fructl serve' serves", stDone.stderr)

    def test_no_simulator(self):
        strEmpty = os.path.join(self.stController.strBase, 'empty')
        os.mkdir(strEmpty)
        if os.path.exists('/usr/bin/ipmi_sim') or os.path.exists('/usr/local/bin/ipmi_sim'):
            self.skipTest('ipmi_sim lies where it is always looked for')
        stDone = bench.Run([bench.STR_FRUCTL, '--root', self.stController.strRoot, 'serve'], env={'PATH': strEmpty})
        self.assertIn('ipmi_sim is not installed', stDone.stderr)


class Life(ServeCase):
    def test_stops_cleanly_on_each_signal(self):
        for iSignal in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            stService = bench.SERVICE(self, self.stController)
            self.assertEqual(stat.S_IMODE(os.stat(self.strRun).st_mode), 0o700)
            self.assertEqual(stat.S_IMODE(os.stat(self.strRun + '/lan.conf').st_mode), 0o600)
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
            self.assertEqual(strSecond.strip(),
                             'ipmitool -I lanplus -C 3 -H 127.0.0.1 -p %d -U admin -P admin fru print' % iPort)
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

    def test_change_of_the_devices_is_seen_at_once(self):
        stService = bench.SERVICE(self, self.stController)
        self.assertEqual(stService.Tool('sdr', 'list', 'fru').stdout.count('\n'), 2)
        strPlan = os.path.join(self.stController.strBase, 'controller.json')
        self.stController.Fructl('provision', '--force', self.Plan(strPlan, bench.StandardDevices()[:1]))
        self.assertEqual(stService.Tool('sdr', 'list', 'fru').stdout.count('\n'), 1)

    def Plan(self, strPlan, lstDevices):
        import json
        with open(strPlan, 'w', encoding='utf-8') as stFile:
            json.dump({'devices': [stDevice.mapPlan for stDevice in lstDevices]}, stFile)
        return strPlan


if __name__ == '__main__':
    bench.Main()
