# SPDX-License-Identifier: Apache-2.0
"""The example of docs/ipmi-service.md against a controller: requests in, responses out."""
import os
import subprocess

import bench
from bench import unittest


class Example(unittest.TestCase):
    def test_answers_requests(self):
        lstDevices = bench.StandardDevices()[:2]
        stController = bench.CONTROLLER(self, lstDevices)
        abImage = lstDevices[1].abImage
        lstExchanges = [
            ('0a 10 01', '00 00 01 00'),
            ('0a 11 01 02 00 04', '00 04 ' + abImage[2:6].hex(' ')),
            ('0a 11 01 00 00 3e', '00 3e ' + abImage[:0x3e].hex(' ')),
            ('0a 12 01 f0 00 aa bb', '00 02'),
            ('0A 11 01 F0 00 02', '00 02 aa bb'),
            ('0a 10', 'c7'), ('0a 11 01 00 00', 'c7'), ('0a 12 01 00 00', 'c7'),
            ('0a 12 01 00 00' + ' 55' * 256, 'c8'), ('0a 11 01 00 00 3f', 'ca'),
            ('0a 11 01 ff 00 02', 'c9'), ('0a 10 63', 'cb'), ('0a 11 01 00 01 01', 'cc'), ('0a 20', 'c1'), ('06 01', 'c1'),
        ]
        lstNoRequests = ['0a', 'zz', '0a 111', '0a 10 01x', '', '0a 12' + ' 00' * 513]
        strInput = '\n'.join([strReq for strReq, _ in lstExchanges] + lstNoRequests) + '\n'
        stDone = subprocess.run([os.path.join(bench.STR_BUILD, 'ipmi_service')], input=strInput, text=True,
                                timeout=bench.HANG_SECONDS, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True,
                                env={**os.environ, 'FRUCTL_ROOT': stController.strRoot})
        self.assertEqual(stDone.stdout.splitlines(), [strRes for _, strRes in lstExchanges])
        self.assertEqual(stDone.stderr.count('ipmi_service: not a request: '), len(lstNoRequests))
        self.assertEqual(stController.OperationLog(), ['Set FRU successfully, Device ID: 1.'])


if __name__ == '__main__':
    bench.Main(bService=False)
