# SPDX-License-Identifier: Apache-2.0
"""fructl verify finds in each of the images with known faults exactly what was planted, and show reads in the sound ones what was put there."""
import json
import re
import subprocess
import sys
import unittest

from support import EMULATOR, SOURCE, FructlTest

# How verify tells each kind, in its own words.
WORDS = {
    "erased": r"^erased: every byte is 0xff", "cutShort": r"cut short", "version": r"format version: 0x\w\w; only version 1 is known|^blank: every byte is 0x00",
    "checksum": r"checksum: 0x\w\w is wrong", "offsetBeyondImage": r"starts at 0x\w+, but the image ends at", "areaTooShort": r"too short for its fields|the area ends before it",
    "areaTooLong": r"area length: the area ends at 0x\w+, the image at", "fieldTooLong": r"bytes long by its length byte 0x\w\w, but the area ends at",
    "noEndMark": r"no end mark 0xc1", "chassisType": r"is not a chassis type", "overlap": r"overlaps the", "recordHeaderChecksum": r"header checksum 0x\w\w is wrong",
    "recordDataChecksum": r"the data's checksum is 0x\w\w, but the header says", "recordTooLong": r"bytes long, but the image ends at", "recordEmpty": r"has no data",
    "listWithoutEnd": r"the image ends inside it", "tooManyRecords": r"64 records and none says", "pad": r"pad: 0x\w\w, should be 0",
    "endMarkEarly": r"the end mark 0xc1 in its place", "internalUseOpaque": r"data: its length byte 0x\w\w reaches into the next area",
    "fillNotZero": r"fill: 0x\w\w, should be 0", "dateErased": r"manufacturing date: erased", "recordVersion": r"format version \d+, should be 2",
    "recordType": r"type 0x\w\w is reserved", "recordSize": r"bytes long, but its type has",
}


class Vectors(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathVectors = self.pathTemp / "vectors"
        subprocess.run([sys.executable, "-B", SOURCE / "tests/vectors/make_vectors.py", self.pathVectors], check=True, capture_output=True)
        self.dictIndex = json.loads((self.pathVectors / "index.json").read_text())
        self.dictVectors = {strName: json.loads((self.pathVectors / f"{strName}.json").read_text()) for strName in self.dictIndex["images"]}

    def Kind(self, strWhat):
        listKinds = [strKind for strKind, strWords in WORDS.items() if re.search(strWords, strWhat)]
        return listKinds[0] if len(listKinds) == 1 else f"{listKinds}: {strWhat}"

    def Found(self, listFindings):
        return sorted((dictOne["offset"], dictOne["area"], self.Kind(dictOne["what"])) for dictOne in listFindings)

    def Planted(self, listFaults):
        return sorted((dictOne["offset"], dictOne["area"], dictOne["kind"]) for dictOne in listFaults)

    def test_there_are_many_and_every_kind_is_among_them(self):
        self.assertGreaterEqual(len(self.dictVectors), 150)
        setSeen = {dictOne["kind"] for dictVector in self.dictVectors.values() for dictOne in dictVector["faults"] + dictVector["remarks"]}
        self.assertEqual(setSeen, set(self.dictIndex["faults"]) | set(self.dictIndex["remarks"]))
        self.assertEqual(setSeen, set(WORDS))

    def test_verify_finds_exactly_what_was_planted(self):
        stResult = self.Fructl("--json", "verify", *[self.pathVectors / f"{strName}.bin" for strName in self.dictVectors])
        listImages = stResult.Json()["images"]
        self.assertEqual(len(listImages), len(self.dictVectors))
        for (strName, dictVector), dictImage in zip(self.dictVectors.items(), listImages):
            with self.subTest(strName):
                self.assertNotIn("failure", dictImage)
                self.assertEqual(self.Found(dictImage["problems"]), self.Planted(dictVector["faults"]))
                self.assertEqual(self.Found(dictImage["warnings"]), self.Planted(dictVector["remarks"]))
                self.assertEqual(dictImage["sound"], not dictVector["faults"])

    @unittest.skipIf(EMULATOR, "a hundred processes under an emulator take long, and show is tested there by its own tests")
    def test_show_reads_what_was_put_in(self):
        """The texts of sound images; of BCD plus fields the library gives an empty text, and of a 6-bit text always whole groups of four."""
        for strName, dictVector in self.dictVectors.items():
            if dictVector["faults"]:
                continue
            with self.subTest(strName):
                dictShown = self.Json("show", self.pathVectors / f"{strName}.bin")
                for strArea in ("chassis", "board", "product"):
                    dictArea = dictVector["contents"].get(strArea)
                    self.assertEqual(strArea in dictShown, dictArea is not None)
                    for strKey, stField in (dictArea or {}).items():
                        if isinstance(stField, dict):
                            self.AssertField(dictShown[strArea][strKey], stField)
                        elif isinstance(stField, list):
                            self.assertEqual(len(dictShown[strArea][strKey]), len(stField))
                            for strText, dictField in zip(dictShown[strArea][strKey], stField):
                                self.AssertField(strText, dictField)
                listShown = [(dictRecord["type"], dictRecord["formatVersion"], dictRecord["data"]) for dictRecord in dictShown["multiRecords"]]
                self.assertEqual(listShown, [(dictRecord["type"], dictRecord["formatVersion"], dictRecord["bytes"])
                                             for dictRecord in dictVector["contents"].get("multiRecord", [])])

    def AssertField(self, strShown, dictField):
        strExpected = "" if dictField["encoding"] == "bcdPlus" else dictField["text"]
        if dictField["encoding"] == "sixBit":
            strShown, strFill = strShown[:len(strExpected)], strShown[len(strExpected):]
            # A started group is always told whole: what is behind the text comes from zero bits and the last byte's rest.
            self.assertLess(len(strFill), 4)
        self.assertEqual(strShown, strExpected)


if __name__ == "__main__":
    unittest.main()
