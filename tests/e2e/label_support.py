# SPDX-License-Identifier: Apache-2.0
"""What the tests of labels share."""
from support import EVENTS, FructlTest, OPERATE_LOG

PSU_EEPROM = "bus2-addr0xa4-switch1.bin"
DEV_EEPROM = "bus5-addr0xa6.bin"


class LabelTest(FructlTest):
    def Device(self, strName):
        """What a device shows, without its name."""
        dictShown = self.Json("show", strName)
        dictShown.pop("device")
        return dictShown

    def Cached(self, strName, iSize):
        """The cached image, through Read FRU Data, which serves it."""
        abImage = b""
        while len(abImage) < iSize:
            stJson = self.Json("raw", "read", strName, "--offset", len(abImage), "--count", min(128, iSize - len(abImage)))
            abImage += bytes.fromhex(stJson["response"])[2:]
        return abImage

    def OperationLog(self):
        return [(stLine["module"], stLine["result"], stLine["text"], stLine["source"]) for stLine in self.Lines(OPERATE_LOG)]

    def LabelEvents(self):
        return [(stLine["kind"], stLine["componentType"], stLine["instance"], stLine["labelId"])
                for stLine in self.Lines(EVENTS) if stLine["event"] == "labelWritten"]

    def AssertUntouched(self, dictTree):
        dictNow = self.Tree()
        self.assertEqual([strPath for strPath in {**dictTree, **dictNow} if dictTree.get(strPath) != dictNow.get(strPath)], [])
