# SPDX-License-Identifier: Apache-2.0
"""The images with nothing wrong: every area, encoding, length, record. Some deserve a remark, and every reader takes them."""
from image import ENCODINGS, INFO_AREAS, TEXTS, Image, InfoArea, InternalUse, Latin, Records, SixBit, Text

INTERNAL = InternalUse(Latin("internal").Bytes() + b"\xc1")
GUID = bytes([7]) + bytes(range(0x10, 0x20))
POWER_SUPPLY = bytes.fromhex("2003ff0a640a1e010e46c81d8c8c0000c014ff000000000000")[:24]
DC_OUTPUT = bytes.fromhex("01b004a604ba0432000a002003")[:13]
DC_LOAD = bytes.fromhex("01b004a604ba0432000a002003")[:13]
EXAMPLES = {
    "binary": bytes([0x00, 0x01, 0xAB, 0xFF]), "bcdPlus": bytes([0x12, 0x34, 0xA5, 0xBC]),
    "sixBit": SixBit("SIX-BIT 0123").abData, "eightBit": "Grün & 8-bit".encode("latin-1")}


def Whole():
    """One of each area, with custom fields and three records."""
    return [INTERNAL, InfoArea("chassis", listCustom=[Latin("C-ONE"), Latin("C-TWO")]), InfoArea("board", listCustom=[Latin("B-ONE")]),
            InfoArea("product", listCustom=[Latin("P-ONE"), SixBit("P-TWO")]),
            Records([(3, b"\x02A system"), (0xC0, bytes([1, 2, 3, 4])), (3, GUID)])]


def Shapes(fnAdd):
    fnAdd("header_alone", "a common header that names no area", Image())
    for stArea in Whole():
        fnAdd(f"only_{stArea.strArea}", f"one area: {stArea.strArea}", Image(stArea))
    fnAdd("all_areas", "all five areas in the customary order", Image(*Whole()))
    fnAdd("areas_reversed", "all areas, the last one first", Image(*reversed(Whole())))
    stFull = Image(*[stArea for stBefore in Whole() for stArea in (2, stBefore)])
    fnAdd("gaps", "sixteen bytes of nothing before each area", stFull)
    stErased = Image(*Whole())
    stErased.abBytes += b"\xff" * 128
    fnAdd("erased_tail", "erased bytes behind the last area", stErased)
    fnAdd("size_2048", "an image of 2048 bytes, zero behind its areas", Image(*Whole()), lambda st: st.abBytes.extend(bytes(2048 - len(st.abBytes))))
    for strArea in INFO_AREAS:
        fnAdd(f"largest_{strArea}", "an area as long as its length byte can say: 255 x 8 bytes",
              Image(InfoArea(strArea, listCustom=[Latin("x" * 63)] * 28, iSpareUnits=0), 0), lambda st, a=strArea: Stretch(st, a))
    fnAdd("internal_opaque", "internal use data that is no type/length field, as the definition allows", Image(InternalUse(b"\xff\x10\x20\x30\x40\x50\x60"), InfoArea("board")),
          None, lambda st: [(st.At("internalUse.data"), "internalUse", "internalUseOpaque")])


def Stretch(stImage, strArea):
    """Lengthens the one area to 255 units."""
    iStart = stImage.At(strArea)
    stImage.abBytes[iStart + stImage.abBytes[iStart + 1] * 8 - 1] = 0
    stImage.abBytes.extend(bytes(iStart + 255 * 8 - len(stImage.abBytes)))
    stImage.Set(iStart + 1, 255).SealArea(strArea)


def Fields(fnAdd):
    for strArea in INFO_AREAS:
        for strEncoding in ENCODINGS:
            stText = Text(strEncoding, EXAMPLES[strEncoding])
            fnAdd(f"{strArea}_{strEncoding}", f"every field of the {strArea} area in one encoding: {strEncoding}",
                  Image(InfoArea(strArea, dictTexts={strKey: stText for strKey in TEXTS[strArea]}, listCustom=[stText, stText])))
        fnAdd(f"{strArea}_empty", "empty fields in all four encodings",
              Image(InfoArea(strArea, dictTexts={strKey: Text(ENCODINGS[i % 4], b"") for i, strKey in enumerate(TEXTS[strArea])},
                             listCustom=[Text(strEncoding, b"") for strEncoding in ENCODINGS])))
        fnAdd(f"{strArea}_longest", "fields of 63 bytes, as long as they can be",
              Image(InfoArea(strArea, dictTexts={strKey: Latin("L" * 63) for strKey in TEXTS[strArea]}, listCustom=[Text("binary", bytes(range(63)))])))
        for iCount in (1, 3, 9, 40):
            fnAdd(f"{strArea}_custom_{iCount}", f"{iCount} custom fields", Image(InfoArea(strArea, listCustom=[Latin(f"no {i}") for i in range(iCount)])))
        fnAdd(f"{strArea}_no_fill", "no fill between the end mark and the checksum", Image(Tight(strArea)))
    for iBytes in range(1, 7):
        fnAdd(f"six_bit_{iBytes}_bytes", "a packed 6-bit text whose last group is whole or not",
              Image(InfoArea("board", dictTexts={"serialNumber": Text("sixBit", SixBit("PACKED12").abData[:iBytes])})))
    fnAdd("bcd_all_digits", "every BCD plus digit, the reserved ones too", Image(InfoArea("product", dictTexts={"version": Text("bcdPlus", bytes.fromhex("0123456789abcdef"))})))
    fnAdd("latin_1_all", "8-bit texts with every byte from 0x20 to 0xff",
          Image(InfoArea("product", listCustom=[Text("eightBit", bytes(range(iFrom, iFrom + 56))) for iFrom in (0x20, 0x58, 0x90, 0xC8)])))
    fnAdd("one_byte_text", "an 8-bit text of one byte, whose type/length byte is the end mark's", Image(InfoArea("board", dictTexts={"partNumber": Latin("A")})),
          None, lambda st: [(st.At("board.partNumber"), "board", "endMarkEarly")])


def Tight(strArea):
    """An area whose fields, end mark and checksum make whole units."""
    for iLength in range(2, 12):
        stArea = InfoArea(strArea, listCustom=[Latin("t" * iLength)])
        _, dictAt = stArea.Build()
        if dictAt["fill"] == dictAt["checksum"]:
            return stArea
    raise AssertionError(strArea)


def Values(fnAdd):
    for iType in (0x00, 0x01, 0x0F, 0x11, 0x1C, 0x1D):
        fnAdd(f"chassis_type_{iType:02x}", "a chassis type", Image(InfoArea("chassis", {"type": iType})))
    for iMinutes, strWhat in ((0, "told to be unknown"), (1, "the first minute that can be told"), (1440 * 59, "a leap day, 1996-02-29"),
                              (0x800000, "a date of 2011 with two zero bytes")):
        fnAdd(f"date_{iMinutes:06x}", f"a manufacturing date: {strWhat}", Image(InfoArea("board", {"mfgDate": iMinutes})))
    fnAdd("date_ffffff", "a manufacturing date whose bytes are erased", Image(InfoArea("board", {"mfgDate": 0xFFFFFF})),
          None, lambda st: [(st.At("board.mfgDate"), "board", "dateErased")])
    for iLanguage in (0, 1, 25, 136, 255):
        fnAdd(f"language_{iLanguage}", "a language code", Image(InfoArea("board", {"languageCode": iLanguage}), InfoArea("product", {"languageCode": iLanguage})))
    for strArea in INFO_AREAS:
        fnAdd(f"{strArea}_fill_not_zero", "bytes behind the end mark that are not zero", Image(InfoArea(strArea, iSpareUnits=1)),
              lambda st, a=strArea: st.Set(st.At(f"{a}.checksum") - 2, 0x55).SealArea(a), lambda st, a=strArea: [(st.At(f"{a}.checksum") - 2, a, "fillNotZero")])
    fnAdd("pad_not_zero", "the common header's pad byte is not zero", Image(InfoArea("board")), lambda st: st.Set(6, 5).SealHeader(),
          lambda st: [(6, "header", "pad")])


def RecordTypes(fnAdd):
    for strName, iType, abData in (("power_supply", 0, POWER_SUPPLY), ("dc_output", 1, DC_OUTPUT), ("dc_load", 2, DC_LOAD), ("base_compatibility", 4, bytes(6)),
                                   ("extended_compatibility", 5, bytes(6)), ("asf_smbus", 6, bytes(range(12))), ("asf_alerts", 7, bytes(range(9))),
                                   ("asf_remote_control", 8, bytes(range(8))), ("oem_c0", 0xC0, bytes([0x11, 0x22, 0x33, 0x44])), ("oem_ff", 0xFF, b"\xff")):
        fnAdd(f"record_{strName}", f"a MultiRecord of type 0x{iType:02x}", Image(InfoArea("board"), Records([(iType, abData)])))
    for iSubType, abData in enumerate((b"http://example.org/system", b"A system", b"192.0.2.1", b"http://example.org/board", b"A component", b"192.0.2.2", GUID[1:]), 1):
        fnAdd(f"record_management_{iSubType}", f"a management access record of sub-type {iSubType}", Image(Records([(3, bytes([iSubType]) + abData)])))
    fnAdd("record_255_bytes", "a record as long as it can be", Image(Records([(0xC1, bytes(range(255)))])))
    fnAdd("records_64", "64 records", Image(Records([(0xC0, bytes([i + 1])) for i in range(64)])))
    fnAdd("record_format_1", "a record of format version 1, which is not the one in use", Image(Records([(0xC0, b"\x01\x02\x03")], iVersion=1)),
          None, lambda st: [(st.At("multiRecord.record0") + 1, "multiRecord", "recordVersion")])
    fnAdd("record_type_reserved", "a record of a reserved type", Image(Records([(0x50, b"\x01\x02\x03")])),
          None, lambda st: [(st.At("multiRecord.record0"), "multiRecord", "recordType")])
    for strName, iType, abData in (("power_supply_short", 0, POWER_SUPPLY[:23]), ("dc_output_long", 1, DC_OUTPUT + b"\x00"), ("dc_load_short", 2, DC_LOAD[:1]),
                                   ("guid_short", 3, GUID[:16]), ("guid_long", 3, GUID + b"\x00")):
        fnAdd(f"record_{strName}", "a record that is not as long as its type says", Image(Records([(iType, abData)])),
              None, lambda st: [(st.At("multiRecord.record0") + 2, "multiRecord", "recordSize")])


def Add(fnAdd):
    for fnPart in (Shapes, Fields, Values, RecordTypes):
        fnPart(fnAdd)
