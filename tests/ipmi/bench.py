# SPDX-License-Identifier: Apache-2.0
"""What the IPMI tests share: images built byte by byte, controllers made with fructl, the service, and its clients."""
import atexit
import ctypes
import json
import os
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

HANG_SECONDS = 1800.0  # no machine is that slow: what takes it hangs
LIBC = ctypes.CDLL(None)
SKIPPED = 77  # CTest's SKIP_RETURN_CODE for these tests
STR_FRUCTL = ''
STR_BUILD = ''
# Where everything is built with sanitizers: what programs that were not load ahead, and the directory of the reports.
STR_PRELOAD = os.environ.get('BMCFRU_SANITIZER_PRELOAD', '')
STR_REPORTS = ''
# What a program of others gets that loads what was built so; its own leaks are its own.
OPTIONS_OF_OTHERS = {'LD_PRELOAD': STR_PRELOAD, 'ASAN_OPTIONS': 'detect_leaks=0'} if STR_PRELOAD else {}


def Main(bService=True):
    """python3 test.py FRUCTL [unittest arguments]; where there is no service to test, skips with the reason."""
    global STR_FRUCTL, STR_BUILD
    STR_FRUCTL = os.path.abspath(sys.argv.pop(1))
    STR_BUILD = os.path.dirname(STR_FRUCTL)
    strReason = _MissingTool() if bService else ''
    if strReason:
        print('skipped: ' + strReason)
        sys.exit(SKIPPED)
    if STR_PRELOAD:
        _Sanitize()
    stProgram = unittest.main(verbosity=2, warnings='ignore', exit=False)  # python3-pyipmi leaves its sockets open
    CheckReports()
    sys.exit(not stProgram.result.wasSuccessful())


def _Sanitize():
    """Puts a simulator with the sanitizers' runtime ahead of Debian's, and has every program report to STR_REPORTS."""
    global STR_REPORTS
    strBase = tempfile.mkdtemp(prefix='bmcfru_sanitized_')
    atexit.register(shutil.rmtree, strBase, True)
    os.chmod(strBase, 0o755)
    STR_REPORTS = os.path.join(strBase, 'reports')
    os.mkdir(STR_REPORTS)
    os.chmod(STR_REPORTS, 0o777)  # where root tests, somebody else serves
    strOptions = 'log_path=%s/report' % STR_REPORTS
    strWrapper = os.path.join(strBase, 'ipmi_sim')
    with open(strWrapper, 'w', encoding='utf-8') as stFile:
        stFile.write('#!/bin/sh\nASAN_OPTIONS=%s LD_PRELOAD="%s" exec %s "$@"\n' % (strOptions, STR_PRELOAD, shutil.which('ipmi_sim')))
    os.chmod(strWrapper, 0o755)
    os.environ.update({'PATH': strBase + ':' + os.environ['PATH'], 'ASAN_OPTIONS': strOptions})


def _OwnReport(strReport):
    """The report without what programs of others leak by themselves."""
    if 'LeakSanitizer' not in strReport:
        return strReport
    return '\n\n'.join(strBlock for strBlock in strReport.split('\n\n') if ' leak of ' in strBlock and STR_BUILD + '/' in strBlock)


def CheckReports():
    """Fails with what the sanitizers have found since the last look."""
    lstReports = []
    for strName in sorted(os.listdir(STR_REPORTS)) if STR_REPORTS else []:
        with open(os.path.join(STR_REPORTS, strName), encoding='utf-8', errors='replace') as stFile:
            lstReports.append(_OwnReport(stFile.read()))
        os.unlink(os.path.join(STR_REPORTS, strName))
    assert not any(lstReports), '\n'.join(lstReports)


def _MissingTool():
    if not os.path.exists(os.path.join(STR_BUILD, 'libbmcfru_ipmi_sim.so')):
        return 'the simulator module is built for this machine only, and needs libopenipmi-dev'
    for strTool in ('ipmi_sim', 'ipmitool', 'ipmi-fru'):
        if shutil.which(strTool) is None:
            return strTool + ' is not installed; scripts/setup installs it'
    try:
        import pyipmi  # noqa: F401
    except ImportError:
        return 'python3-pyipmi is not installed for ' + sys.executable
    return ''


# ---- images -----------------------------------------------------------------------------------------------------------


def _Text(strText):
    return bytes([0xC0 | len(strText)]) + strText.encode('latin-1')


def _Sum(abBytes):
    return -sum(abBytes) & 0xFF


def _Area(abHead, lstTexts):
    abArea = bytearray(abHead) + b''.join(_Text(strText) for strText in lstTexts) + b'\xc1'
    abArea += bytes(-(len(abArea) + 1) % 8)
    abArea[1] = (len(abArea) + 1) // 8
    return bytes(abArea) + bytes([_Sum(abArea)])


def MultiRecords(lstRecords):
    abOut = b''
    for i, (iType, abData) in enumerate(lstRecords):
        abHead = bytes([iType, 0x02 | (0x80 if i + 1 == len(lstRecords) else 0), len(abData), _Sum(abData)])
        abOut += abHead + bytes([_Sum(abHead)]) + abData
    return abOut


def BuildImage(iSize, lstChassis=None, lstBoard=None, lstProduct=None, lstRecords=None, iMinutes=0x9D1B2C):
    """An image of iSize bytes: an area for each list that is given, its texts in the format's order."""
    abHeader = bytearray([1, 0, 0, 0, 0, 0, 0])
    abBody = b''
    lstAreas = [(2, lstChassis and _Area([1, 0, 23], lstChassis)),
                (3, lstBoard and _Area(bytes([1, 0, 25]) + iMinutes.to_bytes(3, 'little'), lstBoard)),
                (4, lstProduct and _Area([1, 0, 25], lstProduct)),
                (5, lstRecords and MultiRecords(lstRecords))]
    for iIndex, abArea in lstAreas:
        if abArea:
            abHeader[iIndex] = (8 + len(abBody)) // 8
            abBody += abArea + bytes(-len(abArea) % 8)
    abImage = bytes(abHeader) + bytes([_Sum(abHeader)]) + abBody
    return abImage + b'\xff' * (iSize - len(abImage))


def Areas(abImage):
    """Every part of the image that has a checksum of its own: (area as fructl names it, start, end, checksum is right)."""
    lstAreas = [('header', 0, 8, sum(abImage[:8]) % 256 == 0)]
    for iIndex, strName in ((2, 'chassis'), (3, 'board'), (4, 'product')):
        iStart = abImage[iIndex] * 8
        if iStart:
            iEnd = iStart + abImage[iStart + 1] * 8
            lstAreas.append((strName, iStart, iEnd, sum(abImage[iStart:iEnd]) % 256 == 0))
    iStart = abImage[5] * 8
    while iStart:
        abHead = abImage[iStart:iStart + 5]
        iEnd = iStart + 5 + abHead[2]
        bRight = sum(abHead) % 256 == 0 and (sum(abImage[iStart + 5:iEnd]) + abHead[3]) % 256 == 0
        lstAreas.append(('multiRecord', iStart, iEnd, bRight))
        iStart = 0 if abHead[1] & 0x80 or sum(abHead) % 256 else iEnd
    return lstAreas


def BadAreas(abImage):
    """The names of the areas with a wrong checksum."""
    return sorted({strName for strName, _, _, bRight in Areas(abImage) if not bRight})


# ---- controllers ------------------------------------------------------------------------------------------------------


class DEVICE:
    def __init__(self, iId, strName, iType, iInstance, abImage, iSize=None, **mapMore):
        self.iId = iId
        self.strName = strName
        self.abImage = abImage
        self.iSize = iSize or len(abImage)
        self.iStart = mapMore.get('startOffset', 0)
        self.strChip = 'bus%d-addr0x%02x.bin' % (iId + 1 & 15, 0xA0 + iId // 15)
        self.mapPlan = {'id': iId, 'name': strName, 'componentType': iType, 'instance': iInstance, 'size': self.iSize}
        if not mapMore.get('databaseOnly'):
            self.mapPlan['location'] = {'bus': iId + 1 & 15, 'address': 0xA0 + iId // 15}
        if abImage:
            self.mapPlan['image'] = strName + '.bin'
        self.mapPlan.update(mapMore)


class CONTROLLER:
    """A controller in a directory of its own, below /tmp until the test is over."""

    def __init__(self, stCase, lstDevices):
        self.strBase = tempfile.mkdtemp(prefix='bmcfru_ipmi_')
        os.chmod(self.strBase, 0o755)  # where root tests, somebody else serves
        stCase.addCleanup(CheckReports)  # after every service's end
        stCase.addCleanup(shutil.rmtree, self.strBase, True)
        self.strRoot = os.path.join(self.strBase, "a controller's root")
        self.lstDevices = lstDevices
        for stDevice in lstDevices:
            if stDevice.abImage:
                with open(os.path.join(self.strBase, stDevice.strName + '.bin'), 'wb') as stFile:
                    stFile.write(stDevice.abImage)
        strPlan = os.path.join(self.strBase, 'controller.json')
        with open(strPlan, 'w', encoding='utf-8') as stFile:
            json.dump({'devices': [stDevice.mapPlan for stDevice in lstDevices]}, stFile)
        self.Fructl('provision', strPlan)

    def Fructl(self, *lstArgs, iExpected=0):
        """What it printed; None expects any exit code."""
        stDone = Run([STR_FRUCTL, '--root', self.strRoot, *lstArgs])
        assert iExpected in (None, stDone.returncode), (lstArgs, stDone)
        return stDone.stdout

    def Json(self, *lstArgs, iExpected=0):
        return json.loads(self.Fructl('--json', *lstArgs, iExpected=iExpected))

    def Library(self, strFunction, *lstNumbers):
        """Calls an exported function with whole numbers, in a process of its own."""
        strCode = 'import ctypes, sys; sys.exit(ctypes.CDLL(sys.argv[1])[sys.argv[2]](*map(int, sys.argv[3:])) != 0)'
        stDone = Run([sys.executable, '-c', strCode, os.path.join(STR_BUILD, 'libbmcfru.so'), strFunction,
                      *map(str, lstNumbers)], env={**os.environ, **OPTIONS_OF_OTHERS, 'FRUCTL_ROOT': self.strRoot})
        assert stDone.returncode == 0, (strFunction, stDone)

    def ChipPath(self, stDevice):
        return os.path.join(self.strRoot, 'eeprom', stDevice.strChip)

    def Chip(self, stDevice):
        """The image as it is in the EEPROM."""
        with open(self.ChipPath(stDevice), 'rb') as stFile:
            return stFile.read()[stDevice.iStart:stDevice.iStart + stDevice.iSize]

    def CacheState(self, stDevice):
        return next(m['cache'] for m in self.Json('list')['devices'] if m['id'] == stDevice.iId)

    def OperationLog(self):
        """The sentences of the operation log."""
        strPath = os.path.join(self.strRoot, 'var/log/operate.jsonl')
        if not os.path.exists(strPath):
            return []
        with open(strPath, encoding='utf-8') as stFile:
            return [json.loads(strLine)['text'] for strLine in stFile]


def BigImage(strLetter, iSize=2048, strBoardSerial=''):
    """All areas, every text made of one letter: parts of two such images are never mistaken for one another."""
    return BuildImage(iSize, [strLetter * 20, strLetter * 21] + [strLetter * 22] * 5,
                      [strLetter * 30, strLetter * 31, strBoardSerial or strLetter * 32, strLetter * 33, strLetter * 34, strLetter * 35],
                      [strLetter * n for n in range(40, 51)], [(3, strLetter.encode() * 100), (0xC0, strLetter.encode() * 99)])


def StandardDevices():
    return [
        DEVICE(0, 'baseboard', 0, 0,
               BuildImage(2048, ['CH-PN-1', 'CH-SN-0815', 'CUST-1', '02005E1000A0', '04', 'CLEI', 'R07-U12'],
                          ['Lindenhain Systems', 'LH-MB2 Baseboard', 'MB2241700137', 'LHMB2-B03', 'mb2-1.4', 'TOP24170099'],
                          ['Lindenhain Systems', 'Hain 220', 'LH220-24C', '2.1', 'LH22024170042', 'RACK7-UNIT12', 'lh220-1.4',
                           'Compute', '2+0', '2x25G', '800W'],
                          [(3, b'\x02hain-r07-u12'), (0xC0, b'\x5a\x31\x00free bytes')])),
        DEVICE(1, 'psu1', 3, 0, BuildImage(256, None, ['Lindenhain Power', 'LH-PS800', 'PS8024100311', 'LHPS800-A1', ''],
                                           ['Lindenhain Power', '800 W Power Supply', 'LH-PS800', 'A1', 'PS8024100311', '', ''])),
        DEVICE(2, 'psu2', 3, 1, BuildImage(256, None, ['Lindenhain Power', 'LH-PS800', 'PS8024100312', 'LHPS800-A1', ''],
                                           ['Lindenhain Power', '800 W Power Supply', 'LH-PS800', 'A1', 'PS8024100312', '', ''])),
        DEVICE(3, 'riser', 8, 0, BuildImage(256, None, ['Lindenhain Systems', 'LH-RS2 Riser', 'RS2240900058', 'LHRS2-A2', ''],
                                            iMinutes=14000000), cached=False),
        DEVICE(4, 'bmc-card', 0x30, 0,
               BuildImage(1024, None, ['Lindenhain Systems', 'LH-BMC1', 'BC1240800720', 'LHBMC1-C1', 'bmc-2'],
                          ['Lindenhain Systems', 'Management Card', 'LH-BMC1', 'C1', 'BC1240800720', 'TAG9', 'bmc-p', 'note']),
               startOffset=256),
        DEVICE(200, 'vault', 0x20, 0, BuildImage(200, None, ['Lindenhain', 'Vault', 'V1', 'V-PN', '']), databaseOnly=True),
    ]


# ---- the service and its clients --------------------------------------------------------------------------------------


def Run(lstArgs, fTimeout=HANG_SECONDS, **mapMore):
    return subprocess.run(lstArgs, stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True,
                          errors='replace', timeout=fTimeout, check=False, **mapMore)


def DieWithParent():
    """In the child: no service outlives a test that CTest has killed."""
    PR_SET_PDEATHSIG = 1
    LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


def FreePort():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as stSocket:
        stSocket.bind(('127.0.0.1', 0))
        return stSocket.getsockname()[1]


def IsAlive(iPid):
    try:
        os.kill(iPid, 0)
    except ProcessLookupError:
        return False
    with open('/proc/%d/stat' % iPid, encoding='utf-8') as stFile:
        return stFile.read().rsplit(')', 1)[1].split()[0] != 'Z'


def Await(fnTest, fSeconds=HANG_SECONDS):
    fUntil = time.monotonic() + fSeconds
    while not fnTest() and time.monotonic() < fUntil:
        time.sleep(0.01)
    return fnTest()


class SERVICE:
    """A running "fructl serve"."""

    def __init__(self, stCase, stController, *lstArgs, iPort=None):
        self.iPort = iPort or FreePort()
        self.stController = stController
        self.stProcess = subprocess.Popen(
            [STR_FRUCTL, '--root', stController.strRoot, '--json', 'serve', '--port', str(self.iPort), *lstArgs],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True, preexec_fn=DieWithParent)
        # Whoever is killed cannot tell what he has leaked.
        stCase.addCleanup(self.Stop, signal.SIGTERM if STR_REPORTS else signal.SIGKILL)
        self.mapFacts = json.loads(self._Announcement())
        self.iSimulator = self.mapFacts['pid']
        stCase.assertTrue(not STR_PRELOAD or self._IsSanitized())
        self.strPassword = self.mapFacts.get('password', '')  # made for this service alone

    def _Announcement(self):
        """What it says when it serves; a service that keeps silent is a failure, not a wait."""
        strText = ''
        fUntil = time.monotonic() + HANG_SECONDS
        iFd = self.stProcess.stdout.fileno()
        while not strText.endswith('\n}\n'):
            lstReady, _, _ = select.select([iFd], [], [], max(0.0, fUntil - time.monotonic()))
            abRead = os.read(iFd, 4096) if lstReady else b''
            if not abRead:
                self.stProcess.kill()
                raise AssertionError('no announcement but %r, %r' % (strText, self.stProcess.communicate()[1]))
            strText += abRead.decode()
        return strText

    def _IsSanitized(self):
        with open('/proc/%d/maps' % self.iSimulator, encoding='utf-8') as stFile:
            return 'libclang_rt.asan' in stFile.read()

    def Stop(self, iSignal=signal.SIGTERM):
        """Exit code and what it said on stderr."""
        if self.stProcess.returncode is not None:
            return None
        self.stProcess.send_signal(iSignal)
        _, strErrors = self.stProcess.communicate(timeout=HANG_SECONDS)
        return self.stProcess.returncode, strErrors

    def Tool(self, *lstArgs, strUser='admin', strPassword=None, iSuite=3):
        strPassword = self.strPassword if strPassword is None else strPassword
        return Run(['ipmitool', '-I', 'lanplus', '-C', str(iSuite), '-H', '127.0.0.1', '-p', str(self.iPort), '-U', strUser,
                    '-P', strPassword, '-N', '30', *lstArgs])

    def ReadFru(self, iId, strFile):
        stDone = self.Tool('fru', 'read', str(iId), strFile)
        assert stDone.returncode == 0 and 'Done' in stDone.stdout, stDone
        with open(strFile, 'rb') as stFile:
            return stFile.read()

    def WriteFru(self, iId, strFile, abImage):
        with open(strFile, 'wb') as stFile:
            stFile.write(abImage)
        return self.Tool('fru', 'write', str(iId), strFile)

    def Raw(self, *lstBytes):
        """(completion code, data) of a raw request."""
        stDone = self.Tool('raw', *('0x%02x' % iByte for iByte in lstBytes))
        stCode = re.search(r'rsp=0x([0-9a-f]+)', stDone.stderr)
        if stCode:
            return int(stCode.group(1), 16), b''
        assert stDone.returncode == 0, stDone
        return 0, bytes.fromhex(stDone.stdout.replace('\n', ''))


class PYIPMI:
    """One session of python3-pyipmi."""

    def __init__(self, stService, strUser='admin', strPassword=None):
        import pyipmi
        import pyipmi.interfaces
        stInterface = pyipmi.interfaces.create_interface('rmcp', slave_address=0x81, host_target_address=0x20,
                                                         keep_alive_interval=0)
        stInterface.set_timeout(HANG_SECONDS)
        self.stIpmi = pyipmi.create_connection(stInterface)
        self.stIpmi.session.set_session_type_rmcp('127.0.0.1', port=stService.iPort)
        self.stIpmi.session.set_auth_type_user(strUser, stService.strPassword if strPassword is None else strPassword)
        self.stIpmi.target = pyipmi.Target(ipmb_address=0x20)
        self.stIpmi.session.establish()

    def __enter__(self):
        return self

    def __exit__(self, *lstWhat):
        self.stIpmi.session.close()

    def Raw(self, iNetFn, iCommand, abData):
        """The answer's bytes, completion code first."""
        return bytes(self.stIpmi.raw_command(0, iNetFn, bytes([iCommand]) + bytes(abData)))
