// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/hardware_block.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/names.h"

namespace {

class Walker
{
  public:
    Walker(const std::vector<u8> &vecImage, size_t uiStored, bool bFixedSlots)
        : m_vecImage(vecImage), m_uiLength(static_cast<u32>(vecImage.size())),
          m_uiStored(static_cast<u32>(uiStored)), m_bFixedSlots(bFixedSlots)
    {}
    IMAGE_LAYOUT_S Walk();

  private:
    // Problem texts go to the span that they are about and to the list of findings.
    void Span(u32 uiOffset, u32 uiLength, const FIELD_ID_S &stField, const std::string &strText,
              const std::string &strProblem = "", const NOTE_S &stNote = {});
    void Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning = false);
    bool Header();
    bool IsCutAfter(u32 uiStart, Area enArea);
    void InternalUse(u32 uiStart, u32 uiNextArea);
    void Info(const AREA_ROW_S &stArea, u32 uiStart);
    u32 InfoPrefix(const AREA_ROW_S &stArea, u32 uiStart, u32 uiEnd);
    u32 TextField(const FIELD_ID_S &stField, u32 uiOffset, u32 uiEnd, bool *pbGood);
    void CustomFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd);
    void Fill(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiChecksum);
    void CheckSlots(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiCount);
    void MultiRecords(u32 uiStart);
    bool MultiRecord(u32 uiOffset, u32 *puiNext);
    void RecordRemarks(u32 uiOffset);
    void Areas();
    void CheckOverlaps();
    void FillUnused();

    const std::vector<u8> &m_vecImage;
    const u32 m_uiLength; // what the decoder is given: an area must end before it does
    const u32 m_uiStored; // the image's own bytes: nothing of it lies behind them
    const bool m_bFixedSlots;
    IMAGE_LAYOUT_S m_stLayout;
};

void Walker::Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning)
{
    m_stLayout.vecFindings.push_back({uiOffset, enArea, strWhat, bWarning});
}

void Walker::Span(u32 uiOffset, u32 uiLength, const FIELD_ID_S &stField, const std::string &strText,
                  const std::string &strProblem, const NOTE_S &stNote)
{
    if (uiOffset < m_uiStored) {
        const u32 uiShown = std::min(uiLength, m_uiStored - uiOffset);
        m_stLayout.vecSpans.push_back({uiOffset, uiShown, stField, strText, stNote, strProblem});
    }
    if (!strProblem.empty()) {
        Finding(uiOffset, stField.enArea, FieldName(stField) + ": " + strProblem);
    }
}

bool Walker::Header()
{
    constexpr u32 PAD = 6U;
    constexpr u32 CHECKSUM = 7U;
    if (m_uiStored < FRU_COMMON_HEADER_LEN) {
        Span(0U, m_uiStored, {Area::Header, Field::CommonHeader}, "",
             Format("cut short: %u of 8 bytes", m_uiStored));
        return false;
    }
    const u8 *pucHeader = m_vecImage.data();
    const u8 ucSum = ByteSum(pucHeader, FRU_COMMON_HEADER_LEN);
    Span(0U, 1U, {Area::Header, Field::FormatVersion}, Format("%u", pucHeader[0]),
         pucHeader[0] == 1U ? "" : Format("0x%02x; only version 1 is known", pucHeader[0]));
    for (const Area enArea : HeaderAreas()) {
        const u32 uiByte = HeaderOffsetByte(enArea);
        const u8 ucOffset = pucHeader[uiByte];
        Span(uiByte, 1U, {Area::Header, Field::AreaOffset, static_cast<u32>(enArea)},
             ucOffset == 0U ? "absent" : Format("at 0x%04x (%u x 8)", ucOffset * FRU_AREA_UNIT, ucOffset));
    }
    Span(PAD, 1U, {Area::Header, Field::Pad}, pucHeader[PAD] == 0U ? "" : Format("0x%02x", pucHeader[PAD]));
    if (pucHeader[PAD] != 0U) {
        Finding(PAD, Area::Header, Format("pad: 0x%02x, should be 0", pucHeader[PAD]), true);
    }
    Span(CHECKSUM, 1U, {Area::Header, Field::Checksum}, ucSum == 0U ? "good" : "",
         ucSum == 0U ? ""
                     : Format("0x%02x is wrong; the other bytes want 0x%02x", pucHeader[CHECKSUM],
                              static_cast<u8>(pucHeader[CHECKSUM] - ucSum)));
    return pucHeader[0] == 1U && ucSum == 0U;
}

u32 Walker::TextField(const FIELD_ID_S &stField, u32 uiOffset, u32 uiEnd, bool *pbGood)
{
    const u8 ucTypeLength = m_vecImage[uiOffset];
    const u32 uiLength = ucTypeLength & FRU_FIELD_MAX_TEXT;
    if (uiOffset + 1U + uiLength > uiEnd) {
        Span(uiOffset, uiEnd - uiOffset, stField, "",
             Format("%u bytes long by its length byte 0x%02x, but the area ends at 0x%04x", uiLength,
                    ucTypeLength, uiEnd));
        *pbGood = false;
        return uiEnd;
    }
    const FIELD_TEXT_S stText = FieldText(ucTypeLength, &m_vecImage[uiOffset] + 1, uiLength);
    Span(uiOffset, 1U + uiLength, stField, stText.strText, "", stText.stNote);
    return uiOffset + 1U + uiLength;
}

// Whether the image ends with the area's version byte.
bool Walker::IsCutAfter(u32 uiStart, Area enArea)
{
    const bool bCut = uiStart + 1U >= m_uiStored;
    if (bCut) {
        Finding(uiStart, enArea, "cut short: the image ends after the area's first byte");
    }
    return bCut;
}

void Walker::InternalUse(u32 uiStart, u32 uiNextArea)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, {Area::InternalUse, Field::FormatVersion}, Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if (ucVersion != 1U || IsCutAfter(uiStart, Area::InternalUse)) {
        return;
    }
    bool bGood = true;
    const u32 uiAfter = TextField({Area::InternalUse, Field::Data}, uiStart + 1U, m_uiStored, &bGood);
    SPAN_S &stData = m_stLayout.vecSpans.back();
    if (uiAfter > uiNextArea) {
        // Elsewhere this area is opaque; here it is one length-coded field, and then says nothing sensible.
        stData.uiLength = uiNextArea - stData.uiOffset;
        Finding(uiStart + 1U, Area::InternalUse,
                Format("data: its length byte 0x%02x reaches into the next area; not written by this system?",
                       m_vecImage[uiStart + 1U]),
                true);
    } else if (bGood && uiAfter < uiNextArea) {
        const bool bEnd = m_vecImage[uiAfter] == FRU_FIELD_END;
        Span(uiAfter, bEnd ? 1U : uiNextArea - uiAfter,
             {Area::InternalUse, bEnd ? Field::EndMark : Field::MoreData}, "");
    }
}

// The fields of fixed size, up to the first text; returns where that is, or 0 when the area is not to be read
// further.
u32 Walker::InfoPrefix(const AREA_ROW_S &stArea, u32 uiStart, u32 uiEnd)
{
    constexpr u32 DATE_BYTES = 3U;
    u32 uiOffset = uiStart + 2U;
    u32 uiPrefix = 0;
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        uiPrefix += stRow.enKind == Kind::Text ? 0U : stRow.enKind == Kind::MfgDate ? DATE_BYTES : 1U;
    }
    if (uiOffset + uiPrefix >= uiEnd) {
        Finding(uiStart + 1U, stArea.enArea, "the area is too short for its fields");
        return 0U;
    }
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        const FIELD_ID_S stField = {stArea.enArea, stRow.enField};
        const u8 *pucBytes = &m_vecImage[uiOffset];
        if (stRow.enKind == Kind::ChassisType) {
            const std::string strName = ChassisTypeName(*pucBytes);
            Span(uiOffset++, 1U, stField, Format("0x%02x ", *pucBytes) + strName,
                 strName.empty() ? Format("0x%02x is not a chassis type; known are 0x00 to 0x1d", *pucBytes)
                                 : "");
            if (strName.empty()) {
                return 0U;
            }
        } else if (stRow.enKind == Kind::Language) {
            Span(uiOffset++, 1U, stField, LanguageName(*pucBytes));
        } else if (stRow.enKind == Kind::MfgDate) {
            const bool bNone = (pucBytes[0] | pucBytes[1] | pucBytes[2]) == 0;
            if ((pucBytes[0] & pucBytes[1] & pucBytes[2]) == ERASED) {
                Finding(uiOffset, stArea.enArea, FieldName(stField) + ": erased: every byte is 0xff", true);
            }
            Span(uiOffset, DATE_BYTES, stField, MfgDateText(pucBytes), "",
                 {bNone ? Note::NoDate : Note::None});
            uiOffset += DATE_BYTES;
        }
    }
    return uiOffset;
}

void Walker::Info(const AREA_ROW_S &stArea, u32 uiStart)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, {stArea.enArea, Field::FormatVersion}, Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if (ucVersion != 1U || IsCutAfter(uiStart, stArea.enArea)) {
        return;
    }
    const u32 uiArea = m_vecImage[uiStart + 1U] * FRU_AREA_UNIT;
    const u32 uiEnd = uiStart + uiArea;
    // An area that ends with the image's last byte is refused by every reader of this system.
    const bool bFits = uiEnd < m_uiLength && uiEnd <= m_uiStored;
    Span(uiStart + 1U, 1U, {stArea.enArea, Field::AreaLength},
         Format("%u bytes (%u x 8)", uiArea, uiArea / 8U),
         bFits
             ? ""
             : Format("the area ends at 0x%04x, the image at 0x%04x; an area must end before the image does",
                      uiEnd, m_uiStored));
    if (!bFits) {
        return;
    }
    const u8 ucSum = ByteSum(&m_vecImage[uiStart], uiArea);
    u32 uiOffset = InfoPrefix(stArea, uiStart, uiEnd);
    bool bGood = uiOffset != 0U;
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        if (stRow.enKind != Kind::Text) {
            continue;
        }
        const FIELD_ID_S stField = {stArea.enArea, stRow.enField};
        if (bGood && uiOffset >= uiEnd) {
            Finding(uiOffset, stArea.enArea, FieldName(stField) + ": the area ends before it");
            bGood = false;
        }
        if (bGood && m_vecImage[uiOffset] == FRU_FIELD_END) {
            Finding(uiOffset, stArea.enArea,
                    FieldName(stField) + ": the end mark 0xc1 in its place reads as a text of one byte",
                    true);
        }
        if (bGood) {
            uiOffset = TextField(stField, uiOffset, uiEnd, &bGood);
        }
    }
    if (bGood) {
        CustomFields(stArea, uiOffset, uiEnd);
    }
    if (uiArea > 0U) {
        const u8 ucChecksum = m_vecImage[uiEnd - 1U];
        Span(uiEnd - 1U, 1U, {stArea.enArea, Field::Checksum}, ucSum == 0U ? "good" : "",
             ucSum == 0U ? ""
                         : Format("0x%02x is wrong; the area's bytes want 0x%02x", ucChecksum,
                                  static_cast<u8>(ucChecksum - ucSum)));
    }
}

void Walker::CustomFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd)
{
    u32 uiCount = 0;
    bool bGood = true;
    // The last byte is the checksum and no field's, whatever length it would say.
    while (bGood && uiOffset + 1U < uiEnd && m_vecImage[uiOffset] != FRU_FIELD_END) {
        uiOffset = TextField({stArea.enArea, Field::Custom, uiCount++}, uiOffset, uiEnd, &bGood);
    }
    if (!bGood) {
        return;
    }
    if (uiOffset >= uiEnd || m_vecImage[uiOffset] != FRU_FIELD_END) {
        Finding(uiEnd - 1U, stArea.enArea, "no end mark 0xc1 after the last field");
        return;
    }
    CheckSlots(stArea, uiOffset, uiCount);
    if (uiOffset + 1U == uiEnd) {
        Finding(uiOffset, stArea.enArea, "the checksum stands in the end mark's place, and is 0xc1 by chance",
                true);
        return;
    }
    Span(uiOffset, 1U, {stArea.enArea, Field::EndMark}, "");
    Fill(stArea, uiOffset + 1U, uiEnd - 1U);
}

void Walker::Fill(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiChecksum)
{
    if (uiOffset == uiChecksum) {
        return;
    }
    Span(uiOffset, uiChecksum - uiOffset, {stArea.enArea, Field::Fill}, "");
    for (u32 i = uiOffset; i < uiChecksum; i++) {
        if (m_vecImage[i] != 0U) {
            Finding(i, stArea.enArea, Format("fill: 0x%02x, should be 0", m_vecImage[i]), true);
            return;
        }
    }
}

void Walker::CheckSlots(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiCount)
{
    const u32 uiFixed = stArea.stCustom.uiFixed;
    if (m_bFixedSlots && uiFixed != 0U && uiCount > uiFixed) {
        Finding(uiOffset, stArea.enArea,
                Format("%u custom fields; a baseboard has room for %u", uiCount, uiFixed));
    }
}

bool Walker::MultiRecord(u32 uiOffset, u32 *puiNext)
{
    const FIELD_ID_S stHeader = {Area::MultiRecord, Field::RecordHeader, m_stLayout.uiMultiRecords};
    const FIELD_ID_S stBody = {Area::MultiRecord, Field::RecordData, m_stLayout.uiMultiRecords};
    if (uiOffset + FRU_MULTIRECORD_HEADER_LEN > m_uiStored) {
        Span(uiOffset, m_uiStored - uiOffset, stHeader, "",
             "the image ends inside it (no record before it says that it is the last)");
        return false;
    }
    const u8 *pucRecord = &m_vecImage[uiOffset];
    const u8 ucSum = ByteSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN);
    Span(uiOffset, FRU_MULTIRECORD_HEADER_LEN, stHeader,
         Format("type 0x%02x %s, %u bytes%s", pucRecord[0], MultiRecordTypeName(pucRecord[0]), pucRecord[2],
                (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) != 0U ? ", last record" : ""),
         ucSum == 0U ? ""
                     : Format("header checksum 0x%02x is wrong; the bytes want 0x%02x", pucRecord[4],
                              static_cast<u8>(pucRecord[4] - ucSum)));
    if (ucSum != 0U) {
        return false;
    }
    const u32 uiData = uiOffset + FRU_MULTIRECORD_HEADER_LEN;
    const u8 ucLength = pucRecord[2];
    *puiNext = uiData + ucLength;
    if (*puiNext > m_uiStored) {
        Span(uiData, m_uiStored - uiData, stBody, "",
             Format("%u bytes long, but the image ends at 0x%04x", ucLength, m_uiStored));
        return false;
    }
    if (ucLength == 0U) {
        Finding(uiOffset + 2U, Area::MultiRecord,
                FieldName({Area::MultiRecord, Field::OneRecord, stBody.uiIndex}) +
                    " has no data; readers refuse such a record");
        return false;
    }
    const u8 ucWanted = ZeroChecksum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, ucLength);
    const u8 *pucData = pucRecord + FRU_MULTIRECORD_HEADER_LEN;
    const char *pcSubType =
        pucRecord[0] == FRU_MR_TYPE_MANAGEMENT_ACCESS ? ManagementAccessName(pucData[0]) : nullptr;
    const std::string strText = MultiRecordText(pucRecord[0], pucData, ucLength);
    Span(uiData, ucLength, stBody, pcSubType != nullptr ? std::string(pcSubType) + ": " + strText : "",
         ucWanted == pucRecord[3]
             ? ""
             : Format("the data's checksum is 0x%02x, but the header says 0x%02x", ucWanted, pucRecord[3]));
    RecordRemarks(uiOffset);
    m_stLayout.uiMultiRecords++;
    return ucWanted == pucRecord[3] && (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) == 0U;
}

// What no reader refuses, and still is not as the record's own type has it.
void Walker::RecordRemarks(u32 uiOffset)
{
    constexpr u8 FORMAT = 2U;
    constexpr u8 FORMAT_BITS = 0x0FU;
    const u8 *pucRecord = &m_vecImage[uiOffset];
    const std::string strRecord =
        FieldName({Area::MultiRecord, Field::OneRecord, m_stLayout.uiMultiRecords}) + ": ";
    if (IsReservedMultiRecord(pucRecord[0])) {
        Finding(uiOffset, Area::MultiRecord, strRecord + Format("type 0x%02x is reserved", pucRecord[0]),
                true);
    }
    if ((pucRecord[1] & FORMAT_BITS) != FORMAT) {
        Finding(uiOffset + 1U, Area::MultiRecord,
                strRecord + Format("format version %u, should be 2", pucRecord[1] & FORMAT_BITS), true);
    }
    const u32 uiWanted = MultiRecordLength(pucRecord[0], pucRecord[FRU_MULTIRECORD_HEADER_LEN]);
    if (uiWanted != 0U && uiWanted != pucRecord[2]) {
        Finding(uiOffset + 2U, Area::MultiRecord,
                strRecord + Format("%u bytes long, but its type has %u", pucRecord[2], uiWanted), true);
    }
}

void Walker::MultiRecords(u32 uiStart)
{
    u32 uiOffset = uiStart;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; i++) {
        u32 uiNext = uiOffset;
        if (!MultiRecord(uiOffset, &uiNext)) {
            return;
        }
        uiOffset = uiNext;
    }
    Finding(uiOffset, Area::MultiRecord,
            Format("%u records and none says that it is the last; no more are read", FRU_MULTIRECORD_MAX));
}

void Walker::CheckOverlaps()
{
    // Spans are sorted by now: two that share bytes and belong to different areas stand next to
    // each other somewhere.
    for (size_t i = 1; i < m_stLayout.vecSpans.size(); i++) {
        const SPAN_S &stBefore = m_stLayout.vecSpans[i - 1U];
        const SPAN_S &stSpan = m_stLayout.vecSpans[i];
        if (stBefore.stField.enArea != stSpan.stField.enArea &&
            stSpan.uiOffset < stBefore.uiOffset + stBefore.uiLength) {
            Finding(stSpan.uiOffset, stSpan.stField.enArea,
                    std::string("overlaps the ") + AreaName(stBefore.stField.enArea));
            return;
        }
    }
}

void Walker::FillUnused()
{
    std::vector<SPAN_S> vecUnused;
    u32 uiEnd = 0;
    const auto fnGap = [&](u32 uiUntil) {
        if (uiEnd < uiUntil) {
            const auto itFirst = m_vecImage.begin() + uiEnd;
            const auto itLast = m_vecImage.begin() + uiUntil;
            const bool bSame = std::all_of(itFirst, itLast, [&](u8 ucByte) { return ucByte == *itFirst; });
            vecUnused.push_back({uiEnd,
                                 uiUntil - uiEnd,
                                 {Area::Unused, Field::Unused},
                                 "",
                                 {bSame ? Note::OneValue : Note::DifferentValues, Format("0x%02x", *itFirst)},
                                 ""});
        }
    };
    for (const SPAN_S &stSpan : m_stLayout.vecSpans) {
        fnGap(stSpan.uiOffset);
        uiEnd = std::max(uiEnd, stSpan.uiOffset + stSpan.uiLength);
    }
    fnGap(m_uiStored);
    m_stLayout.vecSpans.insert(m_stLayout.vecSpans.end(), vecUnused.begin(), vecUnused.end());
}

void Walker::Areas()
{
    std::vector<std::pair<u32, Area>> vecStarts;
    for (const Area enArea : HeaderAreas()) {
        const u32 uiByte = HeaderOffsetByte(enArea);
        const u32 uiStart = m_vecImage[uiByte] * FRU_AREA_UNIT;
        if (uiStart >= m_uiStored) {
            Finding(uiByte, Area::Header,
                    Format("%s: starts at 0x%04x, but the image ends at 0x%04x", AreaName(enArea), uiStart,
                           m_uiStored));
        } else if (uiStart != 0U) {
            vecStarts.emplace_back(uiStart, enArea);
        }
    }
    std::sort(vecStarts.begin(), vecStarts.end());
    for (size_t i = 0; i < vecStarts.size(); i++) {
        const auto [uiStart, enArea] = vecStarts[i];
        m_stLayout.vecAreas.push_back(enArea);
        if (enArea == Area::InternalUse) {
            InternalUse(uiStart, i + 1U < vecStarts.size() ? vecStarts[i + 1U].first : m_uiStored);
        } else if (enArea == Area::MultiRecord) {
            MultiRecords(uiStart);
        } else {
            Info(*FindAreaRow(enArea), uiStart);
        }
    }
}

IMAGE_LAYOUT_S Walker::Walk()
{
    const auto fnByOffset = [](const auto &stLeft, const auto &stRight) {
        return stLeft.uiOffset < stRight.uiOffset;
    };
    m_stLayout.bErased =
        std::all_of(m_vecImage.begin(), m_vecImage.end(), [](u8 ucByte) { return ucByte == ERASED; });
    if (m_stLayout.bErased) {
        Finding(0U, Area::Header, "erased: every byte is 0xff");
    } else if (Header()) {
        Areas();
    }
    std::stable_sort(m_stLayout.vecSpans.begin(), m_stLayout.vecSpans.end(), fnByOffset);
    CheckOverlaps();
    FillUnused();
    std::stable_sort(m_stLayout.vecSpans.begin(), m_stLayout.vecSpans.end(), fnByOffset);
    std::stable_sort(m_stLayout.vecFindings.begin(), m_stLayout.vecFindings.end(), fnByOffset);
    return std::move(m_stLayout);
}

} // namespace

bool IMAGE_LAYOUT_S::IsSound() const
{
    return std::all_of(vecFindings.begin(), vecFindings.end(),
                       [](const FINDING_S &stFinding) { return stFinding.bWarning; });
}

std::string FindingText(const FINDING_S &stFinding)
{
    return Format("byte 0x%04x  %s: %s", stFinding.uiOffset, AreaName(stFinding.enArea),
                  stFinding.strWhat.c_str());
}

IMAGE_LAYOUT_S WalkImage(const std::vector<u8> &vecImage, size_t uiStored, bool bFixedSlots)
{
    if (IsHardwareBlock(vecImage, uiStored)) {
        return WalkHardwareBlock(vecImage);
    }
    return Walker(vecImage, uiStored, bFixedSlots).Walk();
}
