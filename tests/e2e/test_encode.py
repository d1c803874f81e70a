# SPDX-License-Identifier: Apache-2.0
"""fructl encode: the inverse of 'show --json', and readers of other makes see the same."""
import random
import unittest

from encode_support import EncodeTest
from support import CHASSIS_TYPES, CORPUS_IMAGES, EXAMPLES, HexImage, Independent, NO_CORPUS, ReadIndependently

# Three-byte dates of the format, as minutes since 1996.
MINUTES_MAX = 0xFFFFFF


def RandomText(stRandom, iMax=63):
    iLength = stRandom.choice([0, 2, 3, 7, 12, 31, iMax])
    return "".join(chr(stRandom.choice([*range(0x20, 0x7F)] * 4 + [0x01, 0x0A, 0x1B, 0x7F, *range(0x80, 0x100)])) for _ in range(iLength))


def RandomFields(stRandom, *asKeys):
    return {strKey: RandomText(stRandom) for strKey in asKeys} | {"customFields": [RandomText(stRandom) for _ in range(stRandom.choice([0, 1, 4, 9]))]}


def RandomRecord(iSeed):
    """A document that 'show --json' might have printed, without its derived texts."""
    stRandom = random.Random(iSeed)
    dictRecord = {}
    if stRandom.random() < 0.4:
        dictRecord["internalUse"] = {"data": RandomText(stRandom)}
    if stRandom.random() < 0.7:
        dictRecord["chassis"] = {"type": stRandom.choice(CHASSIS_TYPES), **RandomFields(stRandom, "partNumber", "serialNumber")}
    if stRandom.random() < 0.7:
        dictRecord["board"] = {"languageCode": stRandom.choice([0, 1, 25, 136, 255]), "mfgDateMinutes": stRandom.choice([0, 1, 14838330, MINUTES_MAX]),
                               **RandomFields(stRandom, "manufacturer", "productName", "serialNumber", "partNumber", "fruFileId")}
    if stRandom.random() < 0.7:
        dictRecord["product"] = {"languageCode": stRandom.choice([0, 9, 255]),
                                 **RandomFields(stRandom, "manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId")}
    dictRecord["multiRecords"] = [
        {"type": stRandom.choice([0, 3, 5, 0x0B, 0xC1, 0xFF]), "formatVersion": stRandom.choice([0, 2, 15]),
         "data": stRandom.randbytes(stRandom.choice([1, 2, 17, 255])).hex(" ")}
        for _ in range(stRandom.choice([0, 1, 3, 6]))]
    return dictRecord


class Inverse(EncodeTest):
    def test_every_example_comes_back_byte_for_byte(self):
        for pathFile in sorted(EXAMPLES.glob("*.hex")):
            with self.subTest(pathFile.name):
                pathImage = self.Encode(self.Json("show", pathFile))
                self.assertEqual(pathImage.read_bytes(), HexImage(pathFile))

    def test_what_a_device_shows_is_taken_as_it_is(self):
        self.Provision()
        pathImage = self.Encode(self.Json("show", "baseboard"), "--size", "2048")
        self.assertEqual(pathImage.read_bytes(), self.Eeprom("bus1-addr0xa0.bin").read_bytes()[:2048])

    def test_generated_records_come_back_whole_and_other_readers_see_the_same(self):
        listShown, listImages = [], []
        for iSeed in range(10):
            dictRecord = RandomRecord(iSeed)
            pathImage = self.Encode(dictRecord, strName=f"{iSeed}.bin")
            dictShown = self.Shown(pathImage)
            with self.subTest(iSeed):
                for strArea in ("internalUse", "chassis", "board", "product"):
                    dictArea = dict(dictShown.get(strArea, {}))
                    for strDerived in ("language", "mfgDate"):
                        dictArea.pop(strDerived, None)
                    self.assertEqual(dictArea, dictRecord.get(strArea, {}))
                self.assertEqual([{strKey: dictOne[strKey] for strKey in ("type", "formatVersion", "data")} for dictOne in dictShown["multiRecords"]],
                                 dictRecord["multiRecords"])
                # Encoded again, its derived texts among it, it is the same image.
                self.assertEqual(self.Encode(dictShown).read_bytes(), pathImage.read_bytes())
            self.Good("verify", pathImage)
            listShown.append(dictShown)
            listImages.append(pathImage)
        for iSeed, dictSeen in enumerate(ReadIndependently(self, listImages)):
            with self.subTest(iSeed):
                self.assertEqual(dictSeen, Independent(listShown[iSeed]))

    def test_other_readers_see_the_examples_texts(self):
        listFiles = sorted(EXAMPLES.glob("*.hex"))
        listShown = [self.Shown(pathFile) for pathFile in listFiles]
        listImages = [self.Encode(dictShown, strName=pathFile.name + ".bin") for pathFile, dictShown in zip(listFiles, listShown)]
        for dictShown, dictSeen in zip(listShown, ReadIndependently(self, listImages)):
            self.assertEqual(dictSeen, Independent(dictShown))

    def test_real_images_come_back_or_the_reason_is_told(self):
        if not CORPUS_IMAGES:
            self.skipTest(NO_CORPUS)
        iEncoded = 0
        for pathFile in CORPUS_IMAGES:
            stShown = self.Fructl("--json", "show", pathFile)
            if stShown.iCode != 0:
                continue
            with self.subTest(pathFile.name):
                pathImage = self.pathTemp / "again.bin"
                stResult = self.Fructl("encode", self.Document(stShown.Json()), "-o", pathImage, "--force")
                if stResult.iCode != 0:
                    self.assertRegex(stResult.strErr, r"record\.json: \S+: (has \d+ characters|has one character|the document is of an image)")
                    continue
                iEncoded += 1
                self.assertEqual(self.Json("diff", pathFile, pathImage)["differences"], [])
        self.assertGreater(iEncoded, 0)


if __name__ == "__main__":
    unittest.main()
