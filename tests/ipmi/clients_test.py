# SPDX-License-Identifier: Apache-2.0
"""Unmodified IPMI clients against the service: what they show, read, write and edit."""
import array
import fcntl
import os
import re
import time

import bench
from bench import unittest

STORAGE = 0x0A
AREA_INFO, READ, WRITE = 0x10, 0x11, 0x12

# (area, member of "fructl show --json") by what the clients call it.
IPMITOOL_NAMES = {
    'Chassis Type': ('chassis', 'type'), 'Chassis Part Number': ('chassis', 'partNumber'),
    'Chassis Serial': ('chassis', 'serialNumber'), 'Chassis Extra': ('chassis', 'customFields'),
    'Board Mfg': ('board', 'manufacturer'), 'Board Product': ('board', 'productName'),
    'Board Serial': ('board', 'serialNumber'), 'Board Part Number': ('board', 'partNumber'),
    'Board FRU ID': ('board', 'fruFileId'), 'Board Extra': ('board', 'customFields'),
    'Board Mfg Date': ('board', 'mfgDate'),
    'Product Manufacturer': ('product', 'manufacturer'), 'Product Name': ('product', 'productName'),
    'Product Part Number': ('product', 'partNumber'), 'Product Version': ('product', 'version'),
    'Product Serial': ('product', 'serialNumber'), 'Product Asset Tag': ('product', 'assetTag'),
    'Product FRU ID': ('product', 'fruFileId'), 'Product Extra': ('product', 'customFields'),
}
FREEIPMI_NAMES = {
    'FRU Chassis Type': ('chassis', 'type'), 'FRU Chassis Part Number': ('chassis', 'partNumber'),
    'FRU Chassis Serial Number': ('chassis', 'serialNumber'), 'FRU Chassis Custom Info': ('chassis', 'customFields'),
    'FRU Board Manufacturer': ('board', 'manufacturer'), 'FRU Board Product Name': ('board', 'productName'),
    'FRU Board Serial Number': ('board', 'serialNumber'), 'FRU Board Part Number': ('board', 'partNumber'),
    'FRU FRU File ID': ('', 'fruFileId'), 'FRU Board Custom Info': ('board', 'customFields'),
    'FRU Board Manufacturing Date/Time': ('board', 'mfgDate'),
    'FRU Product Manufacturer Name': ('product', 'manufacturer'), 'FRU Product Name': ('product', 'productName'),
    'FRU Product Part/Model Number': ('product', 'partNumber'), 'FRU Product Version': ('product', 'version'),
    'FRU Product Serial Number': ('product', 'serialNumber'), 'FRU Product Asset Tag': ('product', 'assetTag'),
    'FRU Product Custom Info': ('product', 'customFields'),
}


# The language, which clients leave out when it is English, and what repeats a text as the number it is stored as.
NOT_SHOWN = ('language', 'languageCode', 'mfgDateMinutes')


def Shown(stController, stDevice):
    """What fructl shows of a device and clients too, flat: (area, member) to text or list; without what is empty, as they
    do."""
    mapShown = {}
    for strArea, mapArea in stController.Json('show', stDevice.strName).items():
        if strArea in ('chassis', 'board', 'product'):
            mapShown.update({(strArea, strMember): value for strMember, value in mapArea.items()
                             if value and strMember not in NOT_SHOWN})
    return mapShown


def Parsed(strOutput, mapNames):
    """A client's "name : value" lines in the same form."""
    mapFound = {}
    strArea = ''
    for strName, strValue in re.findall(r'^\s*([^:\n]+?)\s*: (.*?)\s*$', strOutput, re.M):
        if strName not in mapNames:
            continue
        strKeyArea, strMember = mapNames[strName]
        strArea = strKeyArea or strArea
        if strMember == 'customFields':
            mapFound.setdefault((strArea, strMember), []).append(strValue)
        else:
            mapFound[(strArea, strMember)] = strValue
    return mapFound


def DateOf(strText, strFormat):
    import datetime
    return datetime.datetime.strptime(strText, strFormat).strftime('%Y-%m-%d %H:%M:%S')


class ClientCase(unittest.TestCase):
    def setUp(self):
        self.maxDiff = None
        self.stController = bench.CONTROLLER(self, bench.StandardDevices())
        self.stService = bench.SERVICE(self, self.stController)
        self.strFile = os.path.join(self.stController.strBase, 'client.bin')
        self.mapDevices = {stDevice.strName: stDevice for stDevice in self.stController.lstDevices}

    def Write(self, stDevice, abImage):
        stDone = self.stService.WriteFru(stDevice.iId, self.strFile, abImage)
        self.assertEqual(stDone.returncode, 0, stDone)


class IpmitoolShows(ClientCase):
    def test_all_fields_of_every_device_found_through_the_repository(self):
        stDone = self.stService.Tool('-v', 'fru', 'print')
        lstBlocks = re.split(r'^FRU Device Description : ', stDone.stdout, flags=re.M)[1:]
        mapBlocks = {int(re.match(r'.*\(ID (\d+)\)', strBlock).group(1)): strBlock for strBlock in lstBlocks}
        self.assertEqual(sorted(mapBlocks), sorted(stDevice.iId for stDevice in self.stController.lstDevices))
        for stDevice in self.stController.lstDevices:
            mapFound = Parsed(mapBlocks[stDevice.iId], IPMITOOL_NAMES)
            mapFound[('board', 'mfgDate')] = DateOf(mapFound[('board', 'mfgDate')], '%a %b %d %H:%M:%S %Y UTC')
            self.assertEqual(mapFound, Shown(self.stController, stDevice), stDevice.strName)
            if stDevice.iId != 0:  # the client has a name of its own for device 0
                self.assertTrue(mapBlocks[stDevice.iId].startswith(stDevice.strName + ' '))

    def test_repository_names_every_device(self):
        stDone = self.stService.Tool('sdr', 'list', 'fru')
        self.assertEqual([strLine.split('|')[0].strip() for strLine in stDone.stdout.splitlines()],
                         [stDevice.strName for stDevice in self.stController.lstDevices])
        self.assertIn('Record Count                        : 6', self.stService.Tool('sdr', 'info').stdout)

    def test_file_read_is_the_image(self):
        for stDevice in self.stController.lstDevices:
            abRead = self.stService.ReadFru(stDevice.iId, self.strFile)
            abImage = stDevice.abImage if stDevice.strName == 'vault' else self.stController.Chip(stDevice)
            self.assertEqual(abRead, abImage, stDevice.strName)
            self.assertEqual(abRead, stDevice.abImage, stDevice.strName)


class IpmitoolWrites(ClientCase):
    def test_device_cache_and_one_log_entry_follow_a_write(self):
        for i, strName in enumerate(('psu1', 'bmc-card', 'riser')):
            stDevice = self.mapDevices[strName]
            abImage = bench.BuildImage(stDevice.iSize, None, ['Other Maker', 'Other ' + strName, 'SN-%d' % i, 'PN', ''])
            self.Write(stDevice, abImage)
            self.assertEqual(self.stController.Chip(stDevice), abImage)
            self.assertEqual(self.stController.CacheState(stDevice), 'none' if strName == 'riser' else 'same')
            self.assertEqual(self.stService.ReadFru(stDevice.iId, self.strFile), abImage)
            self.assertEqual(self.stController.Json('show', strName)['board']['productName'], 'Other ' + strName)
            self.assertEqual(self.stController.OperationLog()[i:],
                             ['Set FRU successfully, Device ID: %d.' % stDevice.iId])
        for stOther in (self.mapDevices['psu2'], self.mapDevices['baseboard']):
            self.assertEqual(self.stController.Chip(stOther), stOther.abImage)

    def test_only_the_first_write_after_area_info_is_logged(self):
        for iSequence in range(1, 4):
            self.assertEqual(self.stService.Raw(STORAGE, AREA_INFO, 1)[0], 0)
            for iOffset in range(5):
                self.assertEqual(self.stService.Raw(STORAGE, WRITE, 1, iOffset, 0, 0x77), (0, b'\x01'))
            self.assertEqual(self.stController.OperationLog(), ['Set FRU successfully, Device ID: 1.'] * iSequence)

    def test_edit_changes_one_field(self):
        # The client moves the areas behind a field that grows or shrinks only where a MultiRecord area ends them, and
        # calls even that a failure in its exit code, so only the outcome counts.
        lstEdits = [('psu1', 'b', 2, ('board', 'serialNumber'), 'PS8024999999'),
                    ('psu1', 'p', 4, ('product', 'serialNumber'), 'PS8024999999'),
                    ('baseboard', 'p', 1, ('product', 'productName'), 'Hain 220 with a longer name'),
                    ('baseboard', 'b', 2, ('board', 'serialNumber'), 'MB1')]
        for strName, strArea, iIndex, pairKey, strValue in lstEdits:
            stDevice = self.mapDevices[strName]
            mapExpected = Shown(self.stController, stDevice)
            self.stService.Tool('fru', 'edit', str(stDevice.iId), 'field', strArea, str(iIndex), strValue)
            mapExpected[pairKey] = strValue
            self.assertEqual(Shown(self.stController, stDevice), mapExpected)
            self.assertEqual(self.stController.CacheState(stDevice), 'same')
            self.stController.Fructl('verify', strName)


class RawRequests(ClientCase):
    def setUp(self):
        super().setUp()
        lstDevices = bench.StandardDevices()[:2] + [
            bench.DEVICE(5, 'ghost', 0x10, 0, b'', 256),
            bench.DEVICE(6, 'lost', 0x20, 0, bench.StandardDevices()[1].abImage, databaseOnly=True)]
        self.stController = bench.CONTROLLER(self, lstDevices)
        os.remove(self.stController.ChipPath(lstDevices[2]))
        self.stController.Library('FRU_DB_DelFRUData', 6)
        self.stService = bench.SERVICE(self, self.stController)

    def test_every_completion_code(self):
        fnRaw = self.stService.Raw
        lstRequests = [
            (0x00, (AREA_INFO, 1)), (0x00, (READ, 1, 255, 0, 1)), (0x00, (READ, 1, 0, 0, 0)),
            (0x81, (READ, 5, 0, 0, 8)), (0x81, (WRITE, 5, 0, 0, 8)),
            (0xC7, (AREA_INFO,)), (0xC7, (READ,)), (0xC7, (READ, 1)), (0xC7, (READ, 1, 0)), (0xC7, (READ, 1, 0, 0)),
            (0xC7, (WRITE,)), (0xC7, (WRITE, 1)), (0xC7, (WRITE, 1, 0)), (0xC7, (WRITE, 1, 0, 0)),
            (0xC9, (READ, 1, 255, 0, 2)), (0xC9, (WRITE, 1, 255, 0, 1, 2)),
            (0xCA, (READ, 1, 0, 0, 35)), (0xCA, (READ, 1, 0, 0, 255)),
            (0xCB, (AREA_INFO, 99)), (0xCB, (READ, 99, 0, 0, 1)), (0xCB, (WRITE, 99, 0, 0, 1)), (0xCB, (READ, 6, 0, 0, 1)),
            (0xCC, (READ, 1, 0, 1, 1)), (0xCC, (READ, 1, 255, 255, 0)), (0xCC, (WRITE, 1, 0, 1, 1)),
            (0xC1, (0x24, 0)), (0xC1, (0x27, 0, 0, 0x43, 0x4C, 0x52, 0xAA)), (0xC7, (0x23, 0, 0)),
            (0xCB, (0x23, 0, 0, 0x77, 0x77, 0, 0xFF)), (0xC5, (0x23, 0x55, 0x55, 0, 0, 1, 1)),
        ]
        for iCode, lstBytes in lstRequests:
            self.assertEqual(fnRaw(STORAGE, *lstBytes)[0], iCode, lstBytes)
        self.assertEqual(self.stController.Chip(self.stController.lstDevices[1]), self.stController.lstDevices[1].abImage)

    def test_answers_are_the_handlers_own(self):
        self.assertEqual(self.stService.Raw(STORAGE, AREA_INFO, 0), (0, bytes([0x00, 0x08, 0x00])))
        abImage = self.stController.lstDevices[1].abImage
        self.assertEqual(self.stService.Raw(STORAGE, READ, 1, 3, 0, 34), (0, b'\x22' + abImage[3:37]))

    def test_failed_write_is_logged_as_such(self):
        self.stService.Raw(STORAGE, AREA_INFO, 5)
        self.stService.Raw(STORAGE, WRITE, 5, 0, 0, 1)
        self.assertEqual(self.stController.OperationLog(), ['Failed to set FRU, Device ID: 5.'])

    def test_write_waits_for_another_writer_and_then_is_busy(self):
        with open(os.path.join(self.stController.strRoot, 'var/lock/fructl.lock'), 'r+b') as stLock:
            fcntl.flock(stLock, fcntl.LOCK_EX)
            with bench.PYIPMI(self.stService) as stClient:
                self.assertEqual(stClient.Raw(STORAGE, WRITE, [1, 0, 0, 0x55]), b'\xc0')
                self.assertEqual(stClient.Raw(STORAGE, READ, [1, 0, 0, 1]), b'\x00\x01\x01')
        self.assertEqual(self.stService.Raw(STORAGE, WRITE, 1, 0, 0, 1), (0, b'\x01'))


class Speed(ClientCase):
    def test_questions_that_change_nothing_cost_little_more_than_the_simulators_own(self):
        """The shortest of many, one after the other: this client does not pause between its packets."""
        GET_DEVICE_ID = (6, 1, b'')
        with bench.PYIPMI(self.stService) as stClient:
            def Shortest(lstRequests):
                mapShortest = dict.fromkeys(lstRequests, 1.0)
                for _ in range(300):
                    for stRequest in lstRequests:
                        fBegin = time.perf_counter()
                        stClient.Raw(*stRequest)
                        mapShortest[stRequest] = min(mapShortest[stRequest], time.perf_counter() - fBegin)
                return mapShortest
            for stRequest in ((STORAGE, AREA_INFO, b'\0'), (STORAGE, READ, b'\0\0\0\x10')):
                mapShortest = Shortest([GET_DEVICE_ID, stRequest])
                self.assertLess(mapShortest[stRequest], 2 * mapShortest[GET_DEVICE_ID], mapShortest)


class OtherClients(ClientCase):
    def test_freeipmi_shows_all_fields(self):
        for lstDriver in (['-D', 'LAN'], ['-D', 'LAN_2_0', '-W', 'opensesspriv']):
            stDone = bench.Run(['ipmi-fru', '-h', '127.0.0.1:%d' % self.stService.iPort, '-u', 'admin', '-p', self.stService.strPassword, '-l',
                                'ADMIN', *lstDriver, '--sdr-cache-directory', self.stController.strBase, '--quiet-cache',
                                '--session-timeout', str(int(bench.HANG_SECONDS * 1000))])
            self.assertEqual(stDone.returncode, 0, stDone)
            lstBlocks = re.split(r'^FRU Inventory Device: ', stDone.stdout, flags=re.M)[1:]
            mapBlocks = {strBlock.split(' ')[0]: strBlock for strBlock in lstBlocks}
            self.assertEqual(sorted(mapBlocks), sorted(self.mapDevices))
            for strName, stDevice in self.mapDevices.items():
                mapFound = Parsed(mapBlocks[strName], FREEIPMI_NAMES)
                mapFound[('board', 'mfgDate')] = DateOf(mapFound[('board', 'mfgDate')], '%m/%d/%y - %H:%M:%S')
                self.assertEqual(mapFound, Shown(self.stController, stDevice), strName)

    def test_pyipmi_decodes_the_same(self):
        from pyipmi.fru import FruInventory
        with bench.PYIPMI(self.stService) as stClient:
            lstNames = [stSdr.device_id_string for stSdr in stClient.stIpmi.sdr_repository_entries()]
            self.assertEqual([bytes(abName).decode() for abName in lstNames], list(self.mapDevices))
            for strName, stDevice in self.mapDevices.items():
                abImage = b''
                while len(abImage) < stDevice.iSize:  # its own loop ends in a call that Python 3.9 dropped
                    stAnswer = stClient.stIpmi.send_message_with_name('ReadFruData', fru_id=stDevice.iId,
                                                                      offset=len(abImage),
                                                                      count=min(32, stDevice.iSize - len(abImage)))
                    abImage += bytes(stAnswer.data)
                stInventory = FruInventory(array.array('B', abImage))
                self.assertEqual(PyipmiFields(stInventory), {k: v for k, v in Shown(self.stController, stDevice).items()
                                                             if k[1] != 'type'}, strName)
                lstRecords = self.stController.Json('show', strName).get('multiRecords', [])
                self.assertEqual([bytes(r.raw).hex(' ') for r in stInventory.multirecord_area.records]
                                 if stInventory.multirecord_area else [], [m['data'] for m in lstRecords])

    def test_pyipmi_writes(self):
        stDevice = self.mapDevices['psu2']
        abImage = bench.BuildImage(256, None, ['By pyipmi', 'Board', 'SN', 'PN', ''])
        with bench.PYIPMI(self.stService) as stClient:
            stClient.stIpmi.get_fru_inventory_area_info(stDevice.iId)
            stClient.stIpmi.write_fru_data(abImage, 0, stDevice.iId)
        self.assertEqual(self.stController.Chip(stDevice), abImage)
        self.assertEqual(self.stController.CacheState(stDevice), 'same')
        self.assertEqual(self.stController.OperationLog(), ['Set FRU successfully, Device ID: 2.'])


def PyipmiFields(stInventory):
    mapAreas = {'chassis': (stInventory.chassis_info_area, {'partNumber': 'part_number', 'serialNumber': 'serial_number'}),
                'board': (stInventory.board_info_area,
                          {'manufacturer': 'manufacturer', 'productName': 'product_name', 'serialNumber': 'serial_number',
                           'partNumber': 'part_number', 'fruFileId': 'fru_file_id'}),
                'product': (stInventory.product_info_area,
                            {'manufacturer': 'manufacturer', 'productName': 'name', 'partNumber': 'part_number',
                             'version': 'version', 'serialNumber': 'serial_number', 'assetTag': 'asset_tag',
                             'fruFileId': 'fru_file_id'})}
    mapFound = {}
    for strArea, (stArea, mapMembers) in mapAreas.items():
        if stArea is None:
            continue
        for strMember, strAttribute in mapMembers.items():
            mapFound[(strArea, strMember)] = str(getattr(stArea, strAttribute))
        lstCustom = getattr(stArea, 'custom_chassis_info' if strArea == 'chassis' else 'custom_mfg_info')
        mapFound[(strArea, 'customFields')] = [str(stField) for stField in lstCustom]
        if strArea == 'board':
            mapFound[(strArea, 'mfgDate')] = str(stArea.mfg_date)
    return {k: v for k, v in mapFound.items() if v}


if __name__ == '__main__':
    bench.Main()
