# SPDX-License-Identifier: Apache-2.0
"""An image that would not decode to the same record again is refused before anything is written, whatever command makes it."""
import unittest

from multirecord_support import MAIN, MultiRecordTest, Records
from support import Described, OPERATE_LOG

MOST = 2040  # bytes of MultiRecords that the encoder lays out
OWN = [(0xC0, bytes([i]) * 250) for i in range(7)]  # 255 bytes each, with their headers


class MultiRecords(MultiRecordTest):
    def ProvisionRecords(self, listRecords):
        self.ProvisionBaseboard(self.Image(Records(listRecords)), size=4096)

    def AssertUntouched(self, abBefore):
        self.assertEqual(self.Chip(), abBefore)
        self.assertEqual(self.Json("list")["devices"][0]["cache"], "same")
        self.assertEqual(self.Lines(OPERATE_LOG), [])

    def test_as_many_as_an_image_is_made_with_are_added(self):
        self.ProvisionRecords(OWN)
        self.Good("mr", "add", "system-name=" + "n" * (MOST - 7 * 255 - 6))
        self.assertEqual(len(self.Listed()), 8)
        self.Good("verify", "baseboard")

    def test_one_byte_more_is_refused(self):
        self.ProvisionRecords(OWN)
        abBefore = self.Chip()
        for asMore in ([], ["--dry-run"], ["--force"]):
            self.assertEqual(self.Bad(3, "mr", "add", "system-name=" + "n" * (MOST - 7 * 255 - 5), *asMore),
                             f"{MAIN}: with the new System Name the image would read back differently: its MultiRecords take 2041 bytes, "
                             "and an image is made with at most 2040")
        self.AssertUntouched(abBefore)

    def test_a_label_that_would_move_too_many_is_refused(self):
        self.ProvisionRecords([*OWN, (0xC0, b"x" * 250), (0xC0, b"y" * 250)])
        abBefore = self.Chip()
        for asMore in ([], ["--dry-run"], ["--force"]):
            self.assertIn("would read back differently: its MultiRecords take 2295 bytes, and an image is made with at most 2040",
                          self.Bad(3, "label", "set", "baseboard", "Product Serial Number", "SN" * 30, *asMore))
        self.AssertUntouched(abBefore)

    def test_an_encoded_file_is_not_made(self):
        pathImage = self.Write("many.bin", self.Image(Records([*OWN, (0xC0, b"x" * 250), (0xC0, b"y" * 250)])))
        pathDocument = self.Write("many.json", self.Good("show", "--json", pathImage).strOut.encode())
        pathOut = self.pathTemp / "out.bin"
        self.assertIn("the encoded image does not read back as the JSON says; nothing was written", self.Bad(3, "encode", pathDocument, "-o", pathOut))
        self.assertFalse(pathOut.exists())


class Assembly(Described):
    def ProvisionFan(self, iSize):
        def FanBoard(dictDescription, _):
            dictDescription["devices"].append({"id": 6, "name": "fan", "componentType": 9, "instance": 0, "size": iSize, "databaseOnly": True, "cached": True})

        self.Good("provision", self.Describe(FanBoard), "--force")

    def test_an_area_that_would_end_with_the_fru_is_refused(self):
        self.ProvisionFan(24)
        for asMore in ([], ["--dry-run"]):
            self.assertIn("fan (0x09:0): with these texts the image would not be readable any more: 0x29000001",
                          self.Bad(3, "assemble", "fan", "asset-tag=xy", *asMore))
        self.assertEqual(self.Json("list")["devices"][6]["image"], "erased")
        self.ProvisionFan(32)
        self.Good("assemble", "fan", "asset-tag=xy")
        self.assertEqual(self.Json("show", "fan")["product"]["assetTag"], "xy")


class Clear(MultiRecordTest):
    def test_every_byte_is_looked_at_afterwards(self):
        self.Good("clear", "baseboard", "--yes")
        self.assertEqual(set(self.Chip()), {0xFF})
        self.assertEqual(self.Json("list")["devices"][0]["cache"], "same")


if __name__ == "__main__":
    unittest.main()
