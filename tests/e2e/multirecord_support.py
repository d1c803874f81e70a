# SPDX-License-Identifier: Apache-2.0
"""What the tests of MultiRecords share."""
import copy
import json
import shutil

from support import BASEBOARD_EEPROM, DESCRIPTION, EXAMPLES, FructlTest, HexImage, ZeroSum

GUID = "1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"
STORED_GUID = "8f 2e 4c 1b 5d 7a 3b 4c 9e 60 0a 1b 2c 3d 4e 5f"
AREA = 0x120  # where the baseboard's MultiRecords begin
MAIN = "baseboard (0x00:0)"


def Record(iType, abData, bLast=False):
    abHeader = bytes([iType, 0x82 if bLast else 0x02, len(abData)]) + ZeroSum(abData)
    return abHeader + ZeroSum(abHeader) + abData


def Records(listRecords):
    return b"".join(Record(iType, abData, i == len(listRecords) - 1) for i, (iType, abData) in enumerate(listRecords))


class MultiRecordTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def ProvisionBaseboard(self, abImage, **dictMembers):
        """A controller whose baseboard has this image."""
        pathDescription = self.pathTemp / "described"
        if not pathDescription.exists():
            shutil.copytree(EXAMPLES, pathDescription)
        (pathDescription / "main.bin").write_bytes(abImage)
        dictDescription = copy.deepcopy(DESCRIPTION)
        dictDescription["devices"][0].update({"image": "main.bin", **dictMembers})
        (pathDescription / "controller.json").write_text(json.dumps(dictDescription))
        self.Good("provision", pathDescription / "controller.json", "--force")

    def Image(self, abRecords):
        """The baseboard's image with other MultiRecords."""
        return HexImage(EXAMPLES / "baseboard.hex")[:AREA] + abRecords

    def Chip(self):
        return self.Eeprom(BASEBOARD_EEPROM).read_bytes()

    def Listed(self, *asArguments):
        return [(stRecord["name"], stRecord["text"]) for stRecord in self.Json("mr", "list", *asArguments)["multiRecords"]]
