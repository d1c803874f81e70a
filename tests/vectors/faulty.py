# SPDX-License-Identifier: Apache-2.0
"""The images with a fault: checksums, lengths, offsets, missing ends, types, sizes. Each fault stands at the byte that the bytes alone point to."""
from image import END_OF_LIST, HEADER_BYTE, INFO_AREAS, TEXTS, Image, InfoArea, InternalUse, Latin, Records
from sound import INTERNAL, Whole

SEVERAL = [(0xC0, b"one!"), (0xC1, b"two two"), (0xC2, b"three")]


def Header(fnAdd):
    for iLength in range(1, 8):
        fnAdd(f"header_cut_{iLength}", f"cut after {iLength} bytes of the common header", Image(*Whole()), lambda st, n=iLength: st.Cut(n),
              lambda st: [(0, "header", "cutShort")])
    for iLength in (8, 32, 33, 256):
        fnAdd(f"erased_{iLength}", f"{iLength} erased bytes", Image(), lambda st, n=iLength: setattr(st, "abBytes", bytearray(b"\xff" * n)),
              lambda st: [(0, "header", "erased")])
    fnAdd("all_zero", "nothing but zero bytes", Image(), lambda st: setattr(st, "abBytes", bytearray(64)), lambda st: [(0, "header", "version")])
    for iVersion in (0, 2, 0x11, 0xFE):
        fnAdd(f"header_version_{iVersion:02x}", "a common header of another version", Image(InfoArea("board")), lambda st, v=iVersion: st.Set(0, v).SealHeader(),
              lambda st: [(0, "header", "version")])
    fnAdd("header_version_unsealed", "another version in the common header, and so a wrong checksum", Image(InfoArea("board")), lambda st: st.Set(0, 3),
          lambda st: [(0, "header", "version"), (7, "header", "checksum")])
    for iDelta in (1, 0x80, 0xFF):
        fnAdd(f"header_checksum_{iDelta:02x}", "a wrong checksum of the common header", Image(InfoArea("board")),
              lambda st, d=iDelta: st.Set(7, st.abBytes[7] + d & 0xFF), lambda st: [(7, "header", "checksum")])
    for strArea, iByte in HEADER_BYTE.items():
        fnAdd(f"offset_beyond_{strArea}", "an offset that points behind the image", Image(*Whole()), lambda st, b=iByte: st.Set(b, 0xFF).SealHeader(),
              lambda st, b=iByte: [(b, "header", "offsetBeyondImage")])
        fnAdd(f"offset_at_end_{strArea}", "an offset that points at the image's end", Image(*Whole()),
              lambda st, b=iByte: (st.abBytes.extend(bytes(-len(st.abBytes) % 8)), st.Set(b, len(st.abBytes) // 8).SealHeader()),
              lambda st, b=iByte: [(b, "header", "offsetBeyondImage")])


def Lengths(fnAdd, strArea):
    def Length(iUnits):
        return lambda st: st.Set(st.At(strArea) + 1, iUnits)

    def At(strPart, strKind):
        return lambda st: [(st.At(f"{strArea}.{strPart}"), strArea, strKind)]

    stNew = InfoArea(strArea, listCustom=[Latin("CUSTOM")])
    stShort = InfoArea(strArea, dictTexts={strKey: Latin("ab") for strKey in TEXTS[strArea]}, listCustom=[Latin("CUSTOM")])
    strFirst, strLast = TEXTS[strArea][0], TEXTS[strArea][-1]
    fnAdd(f"{strArea}_length_0", "an area of no length", Image(stNew), Length(0), At("length", "areaTooShort"))
    fnAdd(f"{strArea}_length_1", "an area that ends inside its first text", Image(stNew), lambda st: Length(1)(st).SealArea(strArea), At(strFirst, "fieldTooLong"))
    fnAdd(f"{strArea}_length_ff", "an area that ends behind the image", Image(stNew), Length(0xFF), At("length", "areaTooLong"))
    fnAdd(f"{strArea}_length_plus_1", "the last area, one unit too long for the image", Image(stNew),
          lambda st: Length(st.dictUnits[strArea] + 1)(st), At("length", "areaTooLong"))
    for iMissing in (1, 7, 8):
        fnAdd(f"{strArea}_cut_{iMissing}", f"the last area, of which {iMissing} bytes are missing", Image(stNew), lambda st, n=iMissing: st.Cut(len(st.abBytes) - n),
              At("length", "areaTooLong"))
    fnAdd(f"{strArea}_cut_after_version", "the last area, cut after its version", Image(stNew), lambda st: st.Cut(st.At(strArea) + 1), At("formatVersion", "cutShort"))
    for strName, strField in (("first", strFirst), ("last", strLast), ("custom", "custom0")):
        fnAdd(f"{strArea}_{strName}_text_too_long", f"a text that reaches over its area's end: {strField}", Image(stShort),
              lambda st, f=strField: st.Set(st.At(f"{strArea}.{f}"), 0xFF).SealArea(strArea), At(strField, "fieldTooLong"))


def Info(fnAdd, strArea):
    stNew = InfoArea(strArea, listCustom=[Latin("CUSTOM")], iSpareUnits=1)
    strFirst = TEXTS[strArea][0]
    for iVersion in (0, 2, 0xFF):
        fnAdd(f"{strArea}_version_{iVersion:02x}", "an area of another version", Image(stNew),
              lambda st, v=iVersion: st.Set(st.At(strArea), v).SealArea(strArea), lambda st: [(st.At(strArea), strArea, "version")])
    for strName, fnChange in (("checksum", lambda st: (st.At(f"{strArea}.checksum"), 1)), ("text", lambda st: (st.At(f"{strArea}.{strFirst}") + 1, 0x20)),
                              ("bit", lambda st: (st.At(f"{strArea}.custom0") + 3, 0x80))):
        fnAdd(f"{strArea}_changed_{strName}", f"one byte changed after the checksum was made: {strName}", Image(stNew),
              lambda st, fn=fnChange: st.Set(fn(st)[0], st.abBytes[fn(st)[0]] ^ fn(st)[1]), lambda st: [(st.At(f"{strArea}.checksum"), strArea, "checksum")])

    def NoEnd(stImage):
        iEnd = stImage.At(f"{strArea}.end")
        stImage.Set(iEnd, 0xC0 | stImage.At(f"{strArea}.checksum") - iEnd - 1).SealArea(strArea)

    fnAdd(f"{strArea}_no_end_mark", "fields up to the checksum, and no end mark", Image(stNew), NoEnd, lambda st: [(st.At(f"{strArea}.checksum"), strArea, "noEndMark")])
    fnAdd(f"{strArea}_end_mark_zero", "a zero byte in the end mark's place: empty fields up to the checksum", Image(stNew),
          lambda st: st.Set(st.At(f"{strArea}.end"), 0).SealArea(strArea), lambda st: [(st.At(f"{strArea}.checksum"), strArea, "noEndMark")])

    def Early(stImage):
        iAt = stImage.At(f"{strArea}.{TEXTS[strArea][1]}")
        iSum = stImage.At(f"{strArea}.checksum")
        stImage.Set(iAt, 0xC1, *bytes(iSum - iAt - 1)).SealArea(strArea)

    fnAdd(f"{strArea}_end_mark_early", "the end mark where a field that must be there is missing, zero behind it", Image(stNew), Early,
          lambda st: [(st.At(f"{strArea}.{TEXTS[strArea][1]}"), strArea, "endMarkEarly"), (st.At(f"{strArea}.checksum"), strArea, "noEndMark")])


def Overlapped(stImage):
    """The board area read as a product area, too: what that reading finds depends on the texts, so it is worked out here by hand."""
    iStart = stImage.At("board")
    # Byte 3, the date's lowest, stands where the manufacturer is looked for: 0x2c, a text of 44 bytes of 48.
    iField, iEnd = iStart + 3, iStart + stImage.abBytes[iStart + 1] * 8
    for _ in range(7):
        if iField == iEnd:
            return [(iStart, "product", "overlap"), (iEnd, "product", "areaTooShort")]
        iNext = iField + 1 + (stImage.abBytes[iField] & 0x3F)
        if iNext > iEnd:
            return [(iStart, "product", "overlap"), (iField, "product", "fieldTooLong")]
        iField = iNext
    raise AssertionError("the board area's texts were to read as too long a product area")


def Overlaps(fnAdd):
    stBoard, stProduct = InfoArea("board"), InfoArea("product")
    fnAdd("overlap_same_offset", "two areas at one offset", Image(stBoard, stProduct), lambda st: st.Set(4, st.abBytes[3]).SealHeader(),
          Overlapped)
    fnAdd("overlap_records_in_board", "the MultiRecord area inside the board area's texts", Image(stBoard, Records(SEVERAL)),
          lambda st: st.Set(5, st.abBytes[3] + 1).SealHeader(),
          lambda st: [(st.At("board") + 8, "multiRecord", "recordHeaderChecksum"), (st.At("board") + 8, "multiRecord", "overlap")])
    fnAdd("overlap_product_in_board", "the product area inside the board area's texts", Image(stBoard, stProduct), lambda st: st.Set(4, st.abBytes[3] + 2).SealHeader(),
          lambda st: [(st.At("board") + 16, "product", "version"), (st.At("board") + 16, "product", "overlap")])

    def LongBoard(stImage):
        stImage.Set(stImage.At("board") + 1, stImage.dictUnits["board"] + 1).SealArea("board").SealArea("product")

    fnAdd("overlap_length_over_next", "the board area's length covers eight bytes of the product area, both checksums right", Image(stBoard, stProduct), LongBoard,
          lambda st: [(st.At("board.checksum"), "board", "fillNotZero"), (st.At("product"), "product", "overlap")])
    fnAdd("overlap_internal_in_board", "the internal use area inside the board area", Image(INTERNAL, stBoard), lambda st: st.Set(1, st.abBytes[3] + 1).SealHeader(),
          lambda st: [(st.At("board") + 8, "internalUse", "version"), (st.At("board") + 8, "internalUse", "overlap")])
    fnAdd("overlap_records_over_board", "the board area inside a record's data, all checksums right",
          Image(Records([(0xC0, b"\x01\x02\x03" + Image(InfoArea("board")).abBytes[8:])])),
          lambda st: st.Set(3, 2).SealHeader(), lambda st: [(16, "board", "overlap")])


def MultiRecords(fnAdd):
    for i in range(len(SEVERAL)):
        strRecord = f"multiRecord.record{i}"
        stNew = lambda: Image(InfoArea("board"), Records(SEVERAL))
        fnAdd(f"record_{i}_header_checksum", f"a wrong header checksum: record {i + 1} of 3", stNew(), lambda st, r=strRecord: st.Set(st.At(r) + 4, st.abBytes[st.At(r) + 4] ^ 1),
              lambda st, r=strRecord: [(st.At(r), "multiRecord", "recordHeaderChecksum")])
        fnAdd(f"record_{i}_data_changed", f"a changed data byte: record {i + 1} of 3", stNew(), lambda st, r=strRecord: st.Set(st.At(r) + 7, st.abBytes[st.At(r) + 7] ^ 0x10),
              lambda st, r=strRecord: [(st.At(r) + 5, "multiRecord", "recordDataChecksum")])
        fnAdd(f"record_{i}_data_checksum", f"a wrong data checksum under a right header: record {i + 1} of 3", stNew(),
              lambda st, r=strRecord, n=i: st.Set(st.At(r) + 3, st.abBytes[st.At(r) + 3] ^ 0x80).SealRecord(n),
              lambda st, r=strRecord: [(st.At(r) + 5, "multiRecord", "recordDataChecksum")])
        fnAdd(f"record_{i}_length_ff", f"data that reaches behind the image: record {i + 1} of 3", stNew(),
              lambda st, r=strRecord, n=i: st.Set(st.At(r) + 2, 0xFF).SealRecord(n), lambda st, r=strRecord: [(st.At(r) + 5, "multiRecord", "recordTooLong")])
        fnAdd(f"record_{i}_length_0", f"no data: record {i + 1} of 3", stNew(), lambda st, r=strRecord, n=i: st.Set(st.At(r) + 2, 0).SealRecord(n),
              lambda st, r=strRecord: [(st.At(r) + 2, "multiRecord", "recordEmpty")])
    fnAdd("records_cut_data", "cut inside the last record's data", Image(Records(SEVERAL)), lambda st: st.Cut(len(st.abBytes) - 2),
          lambda st: [(st.At("multiRecord.record2") + 5, "multiRecord", "recordTooLong")])
    fnAdd("records_cut_header", "cut inside the last record's header", Image(Records(SEVERAL)), lambda st: st.Cut(st.At("multiRecord.record2") + 3),
          lambda st: [(st.At("multiRecord.record2"), "multiRecord", "listWithoutEnd")])
    fnAdd("records_no_end", "no record says that it is the last", Image(Records(SEVERAL, bEnd=False)), None, lambda st: [(st.At("multiRecord.after"), "multiRecord", "listWithoutEnd")])
    fnAdd("records_no_end_zero", "no record says that it is the last, and zero bytes behind them", Image(Records(SEVERAL, bEnd=False), 1), None,
          lambda st: [(st.At("multiRecord.after") + 2, "multiRecord", "recordEmpty")])
    fnAdd("records_no_end_erased", "no record says that it is the last, and erased bytes behind them", Image(Records(SEVERAL, bEnd=False)),
          lambda st: st.abBytes.extend(b"\xff" * 32), lambda st: [(st.At("multiRecord.after"), "multiRecord", "recordHeaderChecksum")])
    fnAdd("records_end_lost", "the last record's mark lost, its header sealed again", Image(Records(SEVERAL)),
          lambda st: st.Set(st.At("multiRecord.record2") + 1, st.abBytes[st.At("multiRecord.record2") + 1] & ~END_OF_LIST & 0xFF).SealRecord(2),
          lambda st: [(st.At("multiRecord.after"), "multiRecord", "listWithoutEnd")])
    fnAdd("records_65", "65 records: one more than is read", Image(Records([(0xC0, bytes([i + 1])) for i in range(65)])), None,
          lambda st: [(st.At("multiRecord.record64"), "multiRecord", "tooManyRecords")])
    fnAdd("record_data_into_board", "a record's data reaches into the board area, all checksums right",
          Image(Records([(0xC0, b"\x01\x02\x03" + bytes(8))]), InfoArea("board")), lambda st: st.Set(8 + 2, 15) and SealData(st),
          lambda st: [(24, "board", "overlap")])


def SealData(stImage):
    """The first record's data checksum and header as its length byte has it."""
    iLength = stImage.abBytes[10]
    stImage.Set(11, -sum(stImage.abBytes[13:13 + iLength]) & 0xFF).SealRecord(0)


def Rest(fnAdd):
    for iType in (0x1E, 0x7F, 0xFF):
        fnAdd(f"chassis_type_{iType:02x}_unknown", "a chassis type that the list does not have", Image(InfoArea("chassis", {"type": iType})), None,
              lambda st: [(st.At("chassis.type"), "chassis", "chassisType")])
    for iVersion in (0, 2, 0x81):
        fnAdd(f"internal_version_{iVersion:02x}", "an internal use area of another version", Image(INTERNAL, InfoArea("board")),
              lambda st, v=iVersion: st.Set(8, v), lambda st: [(8, "internalUse", "version")])
    fnAdd("internal_beyond_image", "internal use data longer than the image", Image(InternalUse(b"\xff\x01\x02")), None, lambda st: [(9, "internalUse", "fieldTooLong")])
    fnAdd("internal_cut_after_version", "the internal use area, cut after its version", Image(INTERNAL), lambda st: st.Cut(9), lambda st: [(8, "internalUse", "cutShort")])
    fnAdd("two_faults", "a wrong board checksum and a wrong product version", Image(InfoArea("board"), InfoArea("product")),
          lambda st: st.Set(st.At("board.checksum"), st.abBytes[st.At("board.checksum")] ^ 1).Set(st.At("product"), 9).SealArea("product"),
          lambda st: [(st.At("board.checksum"), "board", "checksum"), (st.At("product"), "product", "version")])
    fnAdd("three_checksums", "a wrong checksum in each info area", Image(*Whole()),
          lambda st: [st.Set(st.At(f"{a}.checksum"), st.abBytes[st.At(f"{a}.checksum")] ^ 0x40) for a in INFO_AREAS],
          lambda st: [(st.At(f"{a}.checksum"), a, "checksum") for a in INFO_AREAS])
    for strArea in ("chassis", "board", "product", "multiRecord"):
        fnAdd(f"cut_before_{strArea}", f"cut where the {strArea} area begins", Image(*Whole()), lambda st, a=strArea: st.Cut(st.At(a)),
              lambda st, a=strArea: [(HEADER_BYTE[b], "header", "offsetBeyondImage") for b in list(HEADER_BYTE)[HEADER_BYTE[a] - 1:]])


def Add(fnAdd):
    Header(fnAdd)
    for strArea in INFO_AREAS:
        Lengths(fnAdd, strArea)
        Info(fnAdd, strArea)
    for fnPart in (Overlaps, MultiRecords, Rest):
        fnPart(fnAdd)
