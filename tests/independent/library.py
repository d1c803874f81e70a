# SPDX-License-Identifier: Apache-2.0
"""The library's decoder, called through ctypes; its record in the same form as decoder.py's."""
import ctypes
import pathlib

u8, u32, TEXT, TEXTS = ctypes.c_uint8, ctypes.c_uint32, ctypes.c_char_p, ctypes.POINTER(ctypes.c_char_p)
MAX_RECORDS = 64
CUSTOM = [("customFields", TEXTS), ("customCount", u8)]


def Structure(strName, listFields):
    return type(strName, (ctypes.Structure,), {"_pack_": 1, "_fields_": listFields})


def TextFields(*asNames):
    return [tupField for strName in asNames for tupField in ((f"{strName}Size", u8), (strName, TEXT))]


CHASSIS = Structure("CHASSIS", [("version", u8), ("units", u8), ("type", TEXT), *TextFields("partNumber", "serialNumber"), *CUSTOM])
BOARD = Structure("BOARD", [("version", u8), ("units", u8), ("languageCode", u8), ("mfgDate", u8 * 3),
                            *TextFields("manufacturer", "productName", "serialNumber", "partNumber", "fruFileId"), *CUSTOM])
PRODUCT = Structure("PRODUCT", [("formatVersion", u8), ("units", u8), ("languageCode", u8),
                                *TextFields("manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId"), *CUSTOM])
RECORD = Structure("RECORD", [("type", u8), ("format", u8), ("length", u8), ("dataSum", u8), ("headerSum", u8), ("data", ctypes.c_void_p)])
INTERNAL = Structure("INTERNAL", [("version", u8), ("data", TEXT)])
DATA = Structure("DATA", [("header", u8 * 8), ("internalUse", INTERNAL), ("chassis", CHASSIS), ("board", BOARD), ("product", PRODUCT),
                          ("records", RECORD * MAX_RECORDS)])


class Library:
    def __init__(self, strDirectory, dictTexts, listTypes):
        """dictTexts: the names of an info area's texts; listTypes: of the chassis types, by code."""
        pathBuild = pathlib.Path(strDirectory)
        ctypes.CDLL(str(pathBuild / "libbmcfruhost.so"), mode=ctypes.RTLD_GLOBAL)
        self.stLibrary = ctypes.CDLL(str(pathBuild / "libbmcfru.so"))
        self.stLibrary.FRU_ANALYZER_InterpretFRUData.restype = u32
        self.dictTexts = dictTexts
        self.dictTypes = {strName: i for i, strName in enumerate(listTypes)}

    def Decode(self, abImage):
        stData = DATA()
        try:
            if self.stLibrary.FRU_ANALYZER_InterpretFRUData(bytes(abImage), u32(len(abImage)), ctypes.byref(stData)) != 0:
                return None
            return self.Areas(stData)
        finally:
            self.stLibrary.FRU_ANALYZER_SafeFree(ctypes.byref(stData))

    def Areas(self, stData):
        dictAreas = {}
        if stData.header[1]:
            dictAreas["internalUse"] = stData.internalUse.data.decode("latin-1")
        for iByte, strArea in ((2, "chassis"), (3, "board"), (4, "product")):
            if stData.header[iByte]:
                stArea = getattr(stData, strArea)
                dictArea = {strKey: getattr(stArea, strKey).decode("latin-1") for strKey in self.dictTexts[strArea]}
                if strArea == "chassis":
                    dictArea["type"] = self.dictTypes[stArea.type.decode()]
                else:
                    dictArea["languageCode"] = stArea.languageCode
                if strArea == "board":
                    dictArea["mfgDate"] = int.from_bytes(stArea.mfgDate, "little")
                dictArea["customFields"] = [stArea.customFields[i].decode("latin-1") for i in range(stArea.customCount)]
                dictAreas[strArea] = dictArea
        if stData.header[5]:
            dictAreas["multiRecords"] = self.Records(stData)
        return dictAreas

    def Records(self, stData):
        listRecords = []
        for i in range(MAX_RECORDS):
            stRecord = stData.records[i]
            if not stRecord.data:
                break
            listRecords.append((stRecord.type, stRecord.format & 0x0F, ctypes.string_at(stRecord.data, stRecord.length).hex()))
        return listRecords
