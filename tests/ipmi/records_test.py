# SPDX-License-Identifier: Apache-2.0
"""What fructl tells of MultiRecords, beside what ipmitool shows of the same image over the service."""
import random
import re

import bench
from bench import unittest

PICMG = bytes([0x5A, 0x31, 0x00])


def Picmg(iRecord, abData):
    return 0xC0, PICMG + bytes([iRecord, 0]) + abData


def Numbers(strPattern, strText):
    return [tuple(map(float, stMatch)) if isinstance(stMatch, tuple) else float(stMatch) for stMatch in re.findall(strPattern, strText)]


class IpmitoolShows(unittest.TestCase):
    """The numbers of each kind that it decodes, of one image of random values."""

    @classmethod
    def setUpClass(cls):
        cls.maxDiff = None
        stRandom = random.Random(3)
        # Voltages and currents that no reader takes for something else.
        abOutput = bytes([0x82]) + b''.join(iValue.to_bytes(2, 'little', signed=True) for iValue in (-1200, -60, 60)) + bytes([120, 0, 0, 0, 0x40, 0x9C])
        cls.lstRecords = [
            (0x01, abOutput), (0x02, bytes([0x01]) + bytes.fromhex('4a013a015a0132006400b80b')),
            Picmg(0x16, stRandom.randbytes(1)),
            Picmg(0x17, stRandom.randbytes(3) + bytes([2]) + stRandom.randbytes(2) + b'\xff' + stRandom.randbytes(2) + b'\xff'),
            Picmg(0x18, bytes([0x85, 2]) + bytes.fromhex('051120' '83a202')),
            Picmg(0x14, bytes([0]) + bytes.fromhex('01110000' '41212003')),
            Picmg(0x11, bytes([1]) + stRandom.randbytes(4) + bytes([72, 1]) + stRandom.randbytes(2)),
            Picmg(0x12, stRandom.randbytes(1) + bytes([1]) + stRandom.randbytes(5)),
        ]

    def setUp(self):
        abImage = bench.BuildImage(1024, None, ['Maker', 'Board', 'SN', 'PN', ''], None, self.lstRecords)
        self.stController = bench.CONTROLLER(self, [bench.DEVICE(0, 'board', 0x00, 0, abImage)])
        strShown = bench.SERVICE(self, self.stController).Tool('-v', 'fru', 'print', '0').stdout
        # Each record's part of what is shown.
        self.lstShown = re.split(r'^ (?:DC Output|DC Load|Power Supply) Record|^  PICMG Extension Record', strShown, flags=re.M)[1:]
        self.lstFields = [stRecord['fields'] for stRecord in self.stController.Json('show', 'board')['multiRecords']]
        self.assertEqual(len(self.lstShown), len(self.lstFields))

    def test_the_same_numbers(self):
        for strShown, stFields, lstExpected in zip(self.lstShown, self.lstFields, self.Expected()):
            for strPattern, lstValues in lstExpected:
                with self.subTest(strPattern):
                    self.assertEqual(Numbers(strPattern, strShown), lstValues, strShown + str(stFields))

    def Expected(self):
        """For each record what its lines say: (how they look, the numbers by fructl)."""
        stOutput, stLoad, stModule, stCarrier, stCarrierP2p, stBoardP2p, stPower, stActivation = self.lstFields
        yield [(r'Output Number +: (\d+)', [stOutput['outputNumber']]),
               (r'Nominal voltage +: (\S+) V', [stOutput['nominalVoltageMillivolts'] / 1000]),
               (r'Max negative deviation +: (\S+) V', [stOutput['maximumNegativeDeviationMillivolts'] / 1000]),
               (r'Maximum current draw +: (\S+) A', [stOutput['maximumCurrentMilliamperes'] / 1000])]
        yield [(r'Min voltage allowed +: (\S+) V', [stLoad['minimumVoltageMillivolts'] / 1000]),
               (r'Minimum current load +: (\S+) A', [stLoad['minimumCurrentMilliamperes'] / 1000])]
        yield [(r'Current draw\(@12V\): (\S+) A', [stModule['currentMilliamperes'] / 1000])]
        yield [(r'Maximum Internal Current\(@12V\): (\S+) A', [stCarrier['maximumInternalCurrentMilliamperes'] / 1000]),
               (r'Module Activation Readiness: +(\d+) sec', [stCarrier['moduleActivationReadinessSeconds']]),
               (r'Max\. Module Current: +(\S+) A', [stOne['maximumCurrentMilliamperes'] / 1000 for stOne in stCarrier['modules']])]
        stResource, = stCarrierP2p['resources']
        yield [(r'Resource ID: +(\d+)', [stResource['number']]),
               (r'Port: (\d+)\s+->  Remote Port: (\d+)', [(stOne['localPort'], stOne['remotePort']) for stOne in stResource['connections']]),
               (r'(?:local|AMC  ) ID: (\d+)', [stOne['remoteNumber'] for stOne in stResource['connections']])]
        yield [(r'Link Type: +0x0?(\d+)', [stOne['typeCode'] for stOne in stBoardP2p['links']]),
               (r'Link Type Extension: +0x0?(\d+)', [stOne['typeExtension'] for stOne in stBoardP2p['links']]),
               (r'Link Grouping ID: +0x0?(\d+)', [stOne['groupingId'] for stOne in stBoardP2p['links']]),
               (r'Interface: +0x0?(\d+)', [stOne['interfaceCode'] for stOne in stBoardP2p['links']]),
               (r'Channel Number: +0x0?(\d+)', [stOne['channel'] for stOne in stBoardP2p['links']])]
        stFeed, = stPower['feeds']
        yield [(r'Max External Current: +(\S+) Amps', [stFeed['maximumExternalCurrentMilliamperes'] / 1000]),
               (r'Max Internal Current: +(\S+) Amps', [stFeed['maximumInternalCurrentMilliamperes'] / 1000]),
               # It shows what is stored as a negative voltage.
               (r'Min Expected Voltage: +-(\S+)V', [stFeed['minimumVoltageMillivolts'] / 1000])]
        stFru, = stActivation['frus']
        strShown = self.lstShown[7]
        self.assertEqual(int(re.search(r'Max FRU Power: 0x(\w+)', strShown).group(1), 16), stFru['maximumPowerWatts'])
        self.assertEqual(int(re.search(r'HW Addr: 0x(\w+)', strShown).group(1), 16), stFru['hardwareAddress'])
        yield [(r'Desc Cnt: 0x0?(\d+)', [len(stActivation['frus'])])]


if __name__ == '__main__':
    bench.Main()
