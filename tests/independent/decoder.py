# SPDX-License-Identifier: Apache-2.0
"""A second decoder of FRU images, for tests alone: written from the public IPMI FRU Information Storage Definition, without a look at the library.

RULES names each point in which the library departs from the definition, on purpose. With no rule the decoder is the definition's; with all of
them it has to say exactly what the library says.
"""
CHASSIS_TYPES = 0x1E
MAX_RECORDS = 64
HEADER_BYTE = {"internalUse": 1, "chassis": 2, "board": 3, "product": 4}
FIXED = {"chassis": ["type"], "board": ["languageCode", "mfgDate"], "product": ["languageCode"]}
TEXTS = {
    "chassis": ["partNumber", "serialNumber"],
    "board": ["manufacturer", "productName", "serialNumber", "partNumber", "fruFileId"],
    "product": ["manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId"],
}
END_MARK = 0xC1

RULES = {
    "bcdPlusIsEmpty": "BCD plus fields are kept as empty texts",
    "sixBitWholeGroups": "a started group of a 6-bit text always gives four characters",
    "textEndsAtZero": "texts are C strings: they end at their first zero byte",
    "unicodeIsBytes": "type 3 is 8-bit in every language, where the definition has two bytes a character in others than English",
    "endMarkIsText": "0xc1 in the place of a field that must be there is a text of one byte",
    "endMarkIsChecksum": "the area's last byte may be end mark and checksum at once",
    "areaEndsBefore": "an area must end before the image does",
    "reservedBits": "the reserved bits of a version must be zero",
    "chassisTypes": "a chassis type beyond the list refuses the area",
    "internalUseIsField": "the internal use area holds one type/length field",
    "firstFaultEnds": "the first area with a fault, in the header's order, refuses the image",
    "badRecordEmpties": "one bad MultiRecord and there are none, which refuses nothing",
    "emptyRecordIsBad": "a record without data is bad",
    "recordLimit": "65 records are bad",
}


class Fault(Exception):
    """The image, or the area, is not as the definition has it."""


class Decoder:
    def __init__(self, abImage, setRules=frozenset()):
        self.abImage = abImage
        self.setRules = setRules

    def Has(self, strRule):
        assert strRule in RULES
        return strRule in self.setRules

    def Decode(self):
        """{area: contents, or None where it is bad}; None when there is no reading it at all."""
        abImage = self.abImage
        if len(abImage) < 8 or not self.IsVersion(abImage[0]) or sum(abImage[:8]) % 256:
            return None
        dictAreas = {}
        for strArea, iByte in HEADER_BYTE.items():
            if abImage[iByte]:
                try:
                    fnArea = self.InternalUse if strArea == "internalUse" else self.Info
                    dictAreas[strArea] = fnArea(strArea, abImage[iByte] * 8)
                except Fault:
                    if self.Has("firstFaultEnds"):
                        return None
                    dictAreas[strArea] = None
        if abImage[5]:
            try:
                dictAreas["multiRecords"] = self.Records(abImage[5] * 8)
            except Fault:
                dictAreas["multiRecords"] = [] if self.Has("badRecordEmpties") else None
        return dictAreas

    def IsVersion(self, iByte):
        return (iByte if self.Has("reservedBits") else iByte & 0x0F) == 1

    def Byte(self, iAt, iEnd):
        if iAt >= iEnd:
            raise Fault
        return self.abImage[iAt]

    def InternalUse(self, _, iStart):
        if not self.IsVersion(self.Byte(iStart, len(self.abImage))):
            raise Fault
        if not self.Has("internalUseIsField"):
            return bytes(self.abImage[iStart + 1:])  # how long it is, only its owner knows
        return self.Field(iStart + 1, len(self.abImage), 25)[0]

    def Field(self, iAt, iEnd, iLanguage):
        """(text, where the next field is)."""
        iByte = self.Byte(iAt, iEnd)
        abData = bytes(self.abImage[iAt + 1:iAt + 1 + (iByte & 0x3F)])
        iNext = iAt + 1 + (iByte & 0x3F)
        if iNext > iEnd:
            raise Fault
        return self.Text(iByte >> 6, abData, iLanguage), iNext

    def Text(self, iType, abData, iLanguage):
        if iType == 0:
            return abData.hex().upper()
        if iType == 1:
            return "" if self.Has("bcdPlusIsEmpty") else "".join("0123456789 -.???"[iDigit] for iByte in abData for iDigit in (iByte >> 4, iByte & 15))
        if iType == 2:
            iCount = -(-len(abData) // 3) * 4 if self.Has("sixBitWholeGroups") else len(abData) * 8 // 6
            iBits = int.from_bytes(abData, "little")
            return "".join(chr(0x20 + (iBits >> 6 * i & 0x3F)) for i in range(iCount))
        if iLanguage not in (0, 25) and not self.Has("unicodeIsBytes"):
            return abData.decode("utf-16-le", "replace")
        strText = abData.decode("latin-1")
        return strText.split("\0")[0] if self.Has("textEndsAtZero") else strText

    def Info(self, strArea, iStart):
        iImage = len(self.abImage)
        if not self.IsVersion(self.Byte(iStart, iImage)):
            raise Fault
        iEnd = iStart + self.Byte(iStart + 1, iImage) * 8
        if iEnd > iImage or iEnd == iStart or (iEnd == iImage and self.Has("areaEndsBefore")):
            raise Fault
        if sum(self.abImage[iStart:iEnd]) % 256:
            raise Fault
        iAt = iStart + 2
        dictArea = {}
        for strKey in FIXED[strArea]:
            iSize = 3 if strKey == "mfgDate" else 1
            dictArea[strKey] = int.from_bytes(self.abImage[iAt:iAt + iSize], "little")
            iAt += iSize
        if strArea == "chassis" and dictArea["type"] >= CHASSIS_TYPES and self.Has("chassisTypes"):
            raise Fault
        iLanguage = dictArea.get("languageCode", 25)
        for strKey in TEXTS[strArea]:
            if self.Byte(iAt, iEnd) == END_MARK and not self.Has("endMarkIsText"):
                raise Fault
            strLanguageOf = 25 if strKey in ("serialNumber", "fruFileId") else iLanguage
            dictArea[strKey], iAt = self.Field(iAt, iEnd, strLanguageOf)
        dictArea["customFields"] = []
        iLast = iEnd if self.Has("endMarkIsChecksum") else iEnd - 1
        while self.Byte(iAt, iLast) != END_MARK:
            strText, iAt = self.Field(iAt, iEnd, iLanguage)
            dictArea["customFields"].append(strText)
        return dictArea

    def Records(self, iStart):
        listRecords = []
        bEnd = False
        while not bEnd:
            abHeader = self.abImage[iStart:iStart + 5]
            if len(abHeader) < 5 or sum(abHeader) % 256:
                raise Fault
            abData = bytes(self.abImage[iStart + 5:iStart + 5 + abHeader[2]])
            if len(abData) < abHeader[2] or (sum(abData) + abHeader[3]) % 256 or (not abData and self.Has("emptyRecordIsBad")):
                raise Fault
            bEnd = bool(abHeader[1] & 0x80)
            listRecords.append((abHeader[0], abHeader[1] & 0x0F, abData.hex()))
            if len(listRecords) > MAX_RECORDS and self.Has("recordLimit"):
                raise Fault
            iStart += 5 + len(abData)
        return listRecords


def Decode(abImage, setRules=frozenset(RULES)):
    return Decoder(abImage, setRules).Decode()
