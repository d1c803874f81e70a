#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes FRU images with known contents and known faults: make_vectors.py DIRECTORY writes NAME.bin and NAME.json of each, and index.json.

Always the same bytes, and nothing needed but Python. docs/vectors.md tells what the files say.
"""
import hashlib
import json
import pathlib
import sys

import faulty
import sound

# What can be wrong, in words.
FAULTS = {
    "erased": "every byte is 0xff: the EEPROM was never written",
    "cutShort": "the image ends inside a part that has a fixed size",
    "version": "the format version is not 1",
    "checksum": "the bytes that the checksum covers do not sum to 0 modulo 256",
    "offsetBeyondImage": "the offset points to or behind the image's end",
    "areaTooShort": "the area has no room for the fields that it must have",
    "areaTooLong": "the area ends behind the image",
    "fieldTooLong": "the field's length byte reaches over the end of its area",
    "noEndMark": "no end mark 0xc1 before the area's checksum",
    "chassisType": "the chassis type is none of 0x00 to 0x1d",
    "overlap": "the byte belongs to another area already",
    "recordHeaderChecksum": "the record's header does not sum to 0 modulo 256",
    "recordDataChecksum": "the record's data does not match its checksum",
    "recordTooLong": "the record's data ends behind the image",
    "recordEmpty": "the record has no data",
    "listWithoutEnd": "the image ends before a record says that it is the last",
    "tooManyRecords": "more than 64 records",
}
# What every reader takes, and what still is not as it should be.
REMARKS = {
    "pad": "the pad byte is not 0",
    "endMarkEarly": "0xc1 in the place of a field that must be there: end mark, or an 8-bit text of one byte?",
    "internalUseOpaque": "the data is no type/length field",
    "fillNotZero": "a byte between end mark and checksum is not 0",
    "dateErased": "the date's three bytes are 0xff",
    "recordVersion": "the record's format version is not 2",
    "recordType": "the record's type is reserved",
    "recordSize": "the record's length is not that of its type",
}


class Set:
    def __init__(self):
        self.dictImages = {}

    def Add(self, strName, strAbout, stImage, fnChange=None, fnFaults=None):
        """fnChange plants the fault; fnFaults tells the (byte, area, kind) of each thing that is then to be found."""
        assert strName not in self.dictImages, strName
        if fnChange is not None:
            fnChange(stImage)
        listAll = [{"offset": iAt, "area": strArea, "kind": strKind, "reason": {**FAULTS, **REMARKS}[strKind]}
                   for iAt, strArea, strKind in (fnFaults(stImage) if fnFaults else [])]
        abImage = bytes(stImage.abBytes)
        dictInfo = {
            "name": strName, "about": strAbout, "file": f"{strName}.bin", "size": len(abImage), "sha256": hashlib.sha256(abImage).hexdigest(),
            "contents": stImage.dictContents, "faults": [dictOne for dictOne in listAll if dictOne["kind"] in FAULTS],
            "remarks": [dictOne for dictOne in listAll if dictOne["kind"] in REMARKS]}
        self.dictImages[strName] = (abImage, dictInfo)


def All():
    """Name -> (image, what is told of it)."""
    stSet = Set()
    sound.Add(stSet.Add)
    faulty.Add(stSet.Add)
    return stSet.dictImages


def Main(strDirectory):
    pathOut = pathlib.Path(strDirectory)
    pathOut.mkdir(parents=True, exist_ok=True)
    dictImages = All()
    for strName, (abImage, dictInfo) in dictImages.items():
        (pathOut / f"{strName}.bin").write_bytes(abImage)
        (pathOut / f"{strName}.json").write_text(json.dumps(dictInfo, indent=2) + "\n")
    (pathOut / "index.json").write_text(json.dumps({"faults": FAULTS, "remarks": REMARKS, "images": sorted(dictImages)}, indent=2) + "\n")
    iFaulty = sum(bool(dictInfo["faults"]) for _, dictInfo in dictImages.values())
    print(f"{len(dictImages)} images, {iFaulty} of them with a fault")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_vectors.py DIRECTORY")
    Main(sys.argv[1])
