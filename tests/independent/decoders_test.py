# SPDX-License-Identifier: Apache-2.0
"""What the library decodes, beside what decoders that nobody of this system wrote make of the same bytes: decoders_test.py BUILD_DIRECTORY."""
import collections
import datetime
import functools
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PATH_HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(PATH_HERE), str(PATH_HERE.parent / "vectors"), str(PATH_HERE.parent / "e2e")]

import decoder  # noqa: E402
import images  # noqa: E402
from library import Library  # noqa: E402
from support import CHASSIS_TYPES  # noqa: E402

FREEIPMI_IMAGES = 150
PYIPMI_IMAGES = 500


@functools.lru_cache
def Images():
    return images.Images()


class Decoders(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.stLibrary = Library(BUILD, decoder.TEXTS, CHASSIS_TYPES)
        cls.listImages = Images()

    def Accepted(self):
        """(image, contents) of what the library takes whole and the definition too."""
        for abImage in self.listImages:
            dictSeen = self.stLibrary.Decode(abImage)
            if dictSeen and self.IsPlain(abImage, dictSeen):
                yield abImage, dictSeen

    def IsPlain(self, abImage, dictSeen):
        """Whether nothing departs from the definition: its decoder reads the same. Internal use data is everybody's own."""
        dictPlain = decoder.Decode(abImage, frozenset({"internalUseIsField"}))
        return dictPlain == dictSeen

    def test_ten_thousand_images_decode_as_the_second_decoder_has_it(self):
        dictCount = collections.Counter()
        for i, abImage in enumerate(self.listImages):
            dictLibrary = self.stLibrary.Decode(abImage)
            self.assertEqual(dictLibrary, decoder.Decode(abImage), f"image {i}: {abImage.hex()}")
            dictCount["refused" if dictLibrary is None else "read"] += 1
        self.assertEqual(sum(dictCount.values()), images.COUNT)
        # Neither is a rarity, or little would be compared.
        self.assertGreater(min(dictCount["refused"], dictCount["read"]), images.COUNT // 4, dictCount)

    def test_every_departure_from_the_definition_is_met(self):
        """A rule that changes nothing is no departure, or the images do not show it."""
        for strRule, strReason in decoder.RULES.items():
            with self.subTest(strRule, reason=strReason):
                setOthers = frozenset(decoder.RULES) - {strRule}
                self.assertTrue(any(decoder.Decode(abImage) != decoder.Decode(abImage, setOthers) for abImage in self.listImages))

    def test_pyipmi_reads_the_same(self):
        import pyipmi.fru
        iCompared = 0
        for abImage, dictSeen in self.Accepted():
            if iCompared == PYIPMI_IMAGES:
                break
            if not self.PyipmiReads(abImage, dictSeen):
                continue
            stInventory = pyipmi.fru.FruInventory(list(abImage))
            self.assertEqual(self.PyipmiAreas(stInventory), self.WithRawBinaries(abImage, dictSeen), abImage.hex())
            iCompared += 1
        self.assertEqual(iCompared, PYIPMI_IMAGES)

    def PyipmiReads(self, abImage, dictSeen):
        """pyipmi decodes BCD plus and 6-bit texts with a call that Python 3 does not have, takes OEM records of type 0xc0 for PICMG's, which are 10 bytes
        and more, and cuts an area's length byte only for the checksum."""
        bShortOem = any(tupRecord[0] == 0xC0 and len(tupRecord[2]) < 14 for tupRecord in dictSeen.get("multiRecords", []))
        return not bShortOem and not any(iType in (1, 2) for iType, _ in self.RawFields(abImage, dictSeen))

    def RawFields(self, abImage, dictSeen):
        """(type, bytes) of each field of the info areas, in their order."""
        for strArea, iByte in (("chassis", 2), ("board", 3), ("product", 4)):
            if strArea in dictSeen:
                iAt = abImage[iByte] * 8 + {"chassis": 3, "board": 6, "product": 3}[strArea]
                for _ in range(len(decoder.TEXTS[strArea]) + len(dictSeen[strArea]["customFields"])):
                    iLength = abImage[iAt] & 0x3F
                    yield abImage[iAt] >> 6, bytes(abImage[iAt + 1:iAt + 1 + iLength])
                    iAt += 1 + iLength

    def WithRawBinaries(self, abImage, dictSeen):
        """pyipmi gives a binary field's bytes, where the library gives their hex digits; PICMG's records have a version byte of their own."""
        stFields = self.RawFields(abImage, dictSeen)
        dictOut = {}
        for strArea in ("chassis", "board", "product"):
            if strArea in dictSeen:
                dictArea = dict(dictSeen[strArea])
                for strKey in decoder.TEXTS[strArea]:
                    dictArea[strKey] = next(stFields)[1].decode("latin-1")
                dictArea["customFields"] = [next(stFields)[1].decode("latin-1") for _ in dictArea["customFields"]]
                dictOut[strArea] = dictArea
        if "multiRecords" in dictSeen:
            dictOut["multiRecords"] = [(iType, int(strData[8:10], 16) if iType == 0xC0 else iVersion, strData) for iType, iVersion, strData in dictSeen["multiRecords"]]
        return dictOut

    def PyipmiAreas(self, stInventory):
        dictNames = {"productName": {"product": "name"}}
        dictAreas = {}
        for strArea in ("chassis", "board", "product"):
            stArea = getattr(stInventory, f"{strArea}_info_area")
            if stArea is None:
                continue
            dictArea = {}
            for strKey in decoder.TEXTS[strArea]:
                strName = dictNames.get(strKey, {}).get(strArea, re.sub("([A-Z])", lambda stMatch: "_" + stMatch.group(1).lower(), strKey))
                dictArea[strKey] = getattr(stArea, strName).value
            dictArea["customFields"] = [stField.value for stField in getattr(stArea, "custom_chassis_info" if strArea == "chassis" else "custom_mfg_info")]
            if strArea == "chassis":
                dictArea["type"] = stArea.type
            else:
                dictArea["languageCode"] = stArea.language_code
            if strArea == "board":
                dictArea["mfgDate"] = int((stArea.mfg_date - datetime.datetime(1996, 1, 1)).total_seconds() // 60)
            dictAreas[strArea] = dictArea
        if stInventory.multirecord_area is not None:
            dictAreas["multiRecords"] = [(stRecord.record_type_id, stRecord.format_version, bytes(stRecord.raw).hex()) for stRecord in stInventory.multirecord_area.records]
        return dictAreas

    def test_freeipmi_reads_the_same(self):
        iCompared = 0
        with tempfile.TemporaryDirectory() as strTemp:
            pathImage = pathlib.Path(strTemp) / "image.bin"
            for abImage, dictSeen in self.Accepted():
                if iCompared == FREEIPMI_IMAGES:
                    break
                if not self.FreeipmiReads(abImage, dictSeen):
                    continue
                pathImage.write_bytes(abImage)
                strOut = subprocess.run(["ipmi-fru", f"--fru-file={pathImage}"], capture_output=True, text=True, errors="replace", timeout=1800).stdout
                self.assertEqual(self.FreeipmiTexts(strOut), self.ShownTexts(dictSeen), f"{abImage.hex()}\n{strOut}")
                iCompared += 1
        self.assertEqual(iCompared, FREEIPMI_IMAGES)

    def FreeipmiReads(self, abImage, dictSeen):
        """ipmi-fru shows a binary field as hex bytes in a form of its own and no text that is empty, and does not escape what is no printable ASCII; so
        only images of 8-bit printable ASCII and of one language are compared, and no blank at a text's end."""
        listFields = list(self.RawFields(abImage, dictSeen))
        bPlain = all(iType == 3 and abData and all(0x20 < iByte < 0x7F for iByte in abData) for iType, abData in listFields)
        return bPlain and bool(listFields) and all(dictSeen[strArea].get("languageCode", 25) in (0, 25) for strArea in ("board", "product") if strArea in dictSeen)

    def FreeipmiTexts(self, strOut):
        return [strText for strName, strText in re.findall(r"^  FRU ([^:\n]+): (.*)$", strOut, re.M)
                if re.fullmatch(r"(Chassis|Board|Product) (Part Number|Serial Number|Custom Info|Manufacturer|Product Name|Manufacturer Name|Name|Part/Model Number|Version|Asset Tag)|"
                                r"Product Name|FRU File ID|Product Part/Model Number", strName)]

    def ShownTexts(self, dictSeen):
        return [strText for strArea in ("chassis", "board", "product") if strArea in dictSeen
                for strText in [dictSeen[strArea][strKey] for strKey in decoder.TEXTS[strArea]] + dictSeen[strArea]["customFields"]]


if __name__ == "__main__":
    BUILD = sys.argv.pop(1)
    os.dup2(os.open(os.devnull, os.O_WRONLY), 1)  # the library tells of a record without data on standard output, too
    unittest.main(verbosity=2)
