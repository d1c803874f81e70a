# SPDX-License-Identifier: Apache-2.0
"""Builds FRU images byte by byte and remembers where everything lies, so that a fault can be planted anywhere.

Written from the public IPMI Platform Management FRU Information Storage Definition; nothing but Python's standard library.
"""
ENCODINGS = ("binary", "bcdPlus", "sixBit", "eightBit")
FIXED_BYTES = {"chassis": ["type"], "board": ["languageCode", "mfgDate"], "product": ["languageCode"]}
TEXTS = {
    "chassis": ["partNumber", "serialNumber"],
    "board": ["manufacturer", "productName", "serialNumber", "partNumber", "fruFileId"],
    "product": ["manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId"],
}
HEADER_BYTE = {"internalUse": 1, "chassis": 2, "board": 3, "product": 4, "multiRecord": 5}
INFO_AREAS = ("chassis", "board", "product")
END_MARK = 0xC1
END_OF_LIST = 0x80


def ZeroSum(abBytes):
    """The byte that makes the sum of all bytes 0 modulo 256."""
    return -sum(abBytes) & 0xFF


class Text:
    """One field: a type/length byte and its data."""

    def __init__(self, strEncoding, abData):
        assert len(abData) < 64
        self.strEncoding = strEncoding
        self.abData = bytes(abData)

    def Bytes(self):
        return bytes([ENCODINGS.index(self.strEncoding) << 6 | len(self.abData)]) + self.abData

    def Meaning(self):
        """What the bytes say by the definition."""
        if self.strEncoding == "binary":
            return self.abData.hex().upper()
        if self.strEncoding == "bcdPlus":
            return "".join("0123456789 -.???"[iDigit] for iByte in self.abData for iDigit in (iByte >> 4, iByte & 15))
        if self.strEncoding == "sixBit":
            iBits = int.from_bytes(self.abData, "little")
            return "".join(chr(0x20 + (iBits >> 6 * i & 0x3F)) for i in range(len(self.abData) * 8 // 6))
        return self.abData.decode("latin-1")

    def Json(self):
        return {"encoding": self.strEncoding, "bytes": self.abData.hex(" "), "text": self.Meaning()}


def Latin(strText):
    return Text("eightBit", strText.encode("latin-1"))


def SixBit(strText):
    """Six bits a character, the first in the lowest bits; the last byte is filled with zero bits."""
    iBits = sum((ord(strChar) - 0x20) << 6 * i for i, strChar in enumerate(strText))
    return Text("sixBit", iBits.to_bytes((len(strText) * 6 + 7) // 8, "little"))


class InfoArea:
    """A chassis, board or product info area."""

    def __init__(self, strArea, dictFixed=None, dictTexts=None, listCustom=(), iSpareUnits=0):
        dictDefault = {"type": 0x17, "languageCode": 25, "mfgDate": 0x9A1B2C}
        self.strArea = strArea
        self.dictFixed = {strKey: (dictFixed or {}).get(strKey, dictDefault[strKey]) for strKey in FIXED_BYTES[strArea]}
        self.dictTexts = {strKey: (dictTexts or {}).get(strKey, Latin(f"{strArea[:2].upper()}-{strKey[:6]}")) for strKey in TEXTS[strArea]}
        self.listCustom = list(listCustom)
        self.iSpareUnits = iSpareUnits

    def Build(self):
        """The area's bytes, and the offsets in it of its parts by name."""
        abArea = bytearray([1, 0])
        dictAt = {"formatVersion": 0, "length": 1}
        for strKey, iValue in self.dictFixed.items():
            dictAt[strKey] = len(abArea)
            abArea += iValue.to_bytes(3 if strKey == "mfgDate" else 1, "little")
        listTexts = list(self.dictTexts.items()) + [(f"custom{i}", stText) for i, stText in enumerate(self.listCustom)]
        for strKey, stText in listTexts:
            dictAt[strKey] = len(abArea)
            abArea += stText.Bytes()
        dictAt["end"] = len(abArea)
        abArea.append(END_MARK)
        iUnits = -(-(len(abArea) + 1) // 8) + self.iSpareUnits
        dictAt["fill"] = len(abArea)
        abArea += bytes(iUnits * 8 - len(abArea))
        dictAt["checksum"] = len(abArea) - 1
        abArea[1] = iUnits
        abArea[-1] = ZeroSum(abArea)
        return bytes(abArea), dictAt

    def Json(self):
        return {**self.dictFixed, **{strKey: stText.Json() for strKey, stText in self.dictTexts.items()},
                "customFields": [stText.Json() for stText in self.listCustom]}


class InternalUse:
    strArea = "internalUse"

    def __init__(self, abData):
        self.abData = bytes(abData)

    def Build(self):
        abArea = b"\x01" + self.abData
        return abArea + bytes(-len(abArea) % 8), {"formatVersion": 0, "data": 1}

    def Json(self):
        return {"bytes": self.abData.hex(" ")}


class Records:
    """The MultiRecord area: (type, data) each; the last one ends the list unless bEnd is false."""
    strArea = "multiRecord"

    def __init__(self, listRecords, bEnd=True, iVersion=2):
        self.listRecords = listRecords
        self.bEnd = bEnd
        self.iVersion = iVersion

    def Build(self):
        abArea = bytearray()
        dictAt = {}
        for i, (iType, abData) in enumerate(self.listRecords):
            bLast = self.bEnd and i == len(self.listRecords) - 1
            abHeader = bytes([iType, self.iVersion | (END_OF_LIST if bLast else 0), len(abData), ZeroSum(abData)])
            dictAt[f"record{i}"] = len(abArea)
            abArea += abHeader + bytes([ZeroSum(abHeader)]) + abData
        dictAt["after"] = len(abArea)
        return bytes(abArea), dictAt

    def Json(self):
        return [{"type": iType, "formatVersion": self.iVersion, "bytes": abData.hex(" ")} for iType, abData in self.listRecords]


class Image:
    """An image of areas in the order given, from byte 8 on; a plain number among them leaves that many units of 8 bytes out."""

    def __init__(self, *listAreas):
        self.dictAt = {}
        self.dictContents = {}
        self.dictUnits = {}
        abHeader = bytearray([1, 0, 0, 0, 0, 0, 0])
        abBody = bytearray()
        for stArea in listAreas:
            if isinstance(stArea, int):
                abBody += bytes(stArea * 8)
                continue
            iStart = 8 + len(abBody)
            abHeader[HEADER_BYTE[stArea.strArea]] = iStart // 8
            abArea, dictAt = stArea.Build()
            self.dictUnits[stArea.strArea] = len(abArea) // 8
            self.dictContents[stArea.strArea] = stArea.Json()
            self.dictAt[stArea.strArea] = iStart
            for strPart, iAt in dictAt.items():
                self.dictAt[f"{stArea.strArea}.{strPart}"] = iStart + iAt
            abBody += abArea + (bytes(-len(abArea) % 8) if stArea is not listAreas[-1] else b"")
        self.abBytes = bytearray(abHeader) + bytes([ZeroSum(abHeader)]) + abBody

    def At(self, strPart):
        return self.dictAt[strPart]

    def Set(self, iAt, *tupBytes):
        self.abBytes[iAt:iAt + len(tupBytes)] = bytes(tupBytes)
        return self

    def SealHeader(self):
        return self.Set(7, ZeroSum(self.abBytes[:7]))

    def SealArea(self, strArea):
        """The checksum as the area's length byte, as it stands, has it."""
        iStart = self.At(strArea)
        iEnd = iStart + self.abBytes[iStart + 1] * 8
        return self.Set(iEnd - 1, ZeroSum(self.abBytes[iStart:iEnd - 1]))

    def SealRecord(self, iRecord):
        iStart = self.At(f"multiRecord.record{iRecord}")
        return self.Set(iStart + 4, ZeroSum(self.abBytes[iStart:iStart + 4]))

    def Cut(self, iLength):
        del self.abBytes[iLength:]
        return self
