# SPDX-License-Identifier: Apache-2.0
"""What the tests of the OEM texts share."""
from support import Described

OEM_FILE = "conf/oempack/bmc/CID_OEM.conf"
CAPABILITY = "conf/capability.ini"


class OemTest(Described):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Put(self, strFile, strText):
        pathFile = self.pathRoot / strFile
        pathFile.parent.mkdir(parents=True, exist_ok=True)
        pathFile.write_bytes(strText.encode("utf-8") if isinstance(strText, str) else strText)

    def Oem(self, *asLines):
        self.Put(OEM_FILE, "[oem_configure]\n" + "".join(strLine + "\n" for strLine in asLines))

    def OemMode(self):
        self.Put(CAPABILITY, "[OEM]\nOemFlag = 3\n")
