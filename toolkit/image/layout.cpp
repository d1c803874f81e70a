#include "toolkit/image/layout.h"

#include <algorithm>

#include "toolkit/base/text.h"
#include "toolkit/image/field_text.h"
#include "toolkit/image/hardware_block.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/names.h"

namespace {

constexpr u8 FIELD_END = 0xC1U;
constexpr u8 MR_END_OF_LIST = 0x80U;

// The areas in the order in which the header names them, from its byte 1 on.
constexpr Area HEADER_AREAS[] = {Area::InternalUse, Area::Chassis, Area::Board, Area::Product,
                                 Area::MultiRecord};

// What differs between the three info areas: the bytes before the first field, and the fields.
struct INFO_AREA_S
{
    Area enArea;
    bool bChassisType;
    bool bLanguage;
    bool bMfgDate;
    std::vector<const char *> vecFields;
    u32 uiFixedSlots; // 0: custom fields are never preset
};

const INFO_AREA_S &InfoArea(Area enArea)
{
    static const INFO_AREA_S astAreas[] = {
        {Area::Chassis, true, false, false, {"part number", "serial number"}, FRU_CHASSIS_FIXED_SLOTS},
        {Area::Board,
         false,
         true,
         true,
         {"manufacturer", "product name", "serial number", "part number", "FRU file ID"},
         0U},
        {Area::Product,
         false,
         true,
         false,
         {"manufacturer", "product name", "part number", "version", "serial number", "asset tag",
          "FRU file ID"},
         FRU_PRODUCT_FIXED_SLOTS},
    };
    return *std::find_if(std::begin(astAreas), std::end(astAreas),
                         [enArea](const INFO_AREA_S &stArea) { return stArea.enArea == enArea; });
}

u8 ZeroSum(const u8 *pucBytes, size_t uiLength)
{
    unsigned uiSum = 0;
    for (size_t i = 0; i < uiLength; i++) {
        uiSum += pucBytes[i];
    }
    return static_cast<u8>(uiSum);
}

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
    void Span(u32 uiOffset, u32 uiLength, Area enArea, const std::string &strField,
              const std::string &strText, const std::string &strProblem = "");
    void Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning = false);
    bool Header();
    void InternalUse(u32 uiStart, u32 uiNextArea);
    void Info(const INFO_AREA_S &stArea, u32 uiStart);
    u32 InfoPrefix(const INFO_AREA_S &stArea, u32 uiStart, u32 uiEnd);
    u32 Field(Area enArea, const std::string &strName, u32 uiOffset, u32 uiEnd, bool *pbGood);
    void CustomFields(const INFO_AREA_S &stArea, u32 uiOffset, u32 uiEnd);
    void CheckSlots(const INFO_AREA_S &stArea, u32 uiOffset, u32 uiCount);
    void MultiRecords(u32 uiStart);
    bool MultiRecord(u32 uiOffset, u32 *puiNext);
    void Areas();
    void CheckOverlaps();
    void FillUnused();

    const std::vector<u8> &m_vecImage;
    const u32 m_uiLength; // what the decoder is given
    const u32 m_uiStored; // what is told and shown
    const bool m_bFixedSlots;
    IMAGE_LAYOUT_S m_stLayout;
};

void Walker::Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning)
{
    m_stLayout.vecFindings.push_back({uiOffset, enArea, strWhat, bWarning});
}

void Walker::Span(u32 uiOffset, u32 uiLength, Area enArea, const std::string &strField,
                  const std::string &strText, const std::string &strProblem)
{
    if (uiOffset < m_uiStored) {
        const u32 uiShown = std::min(uiLength, m_uiStored - uiOffset);
        m_stLayout.vecSpans.push_back({uiOffset, uiShown, enArea, strField, strText, "", strProblem});
    }
    if (!strProblem.empty()) {
        Finding(uiOffset, enArea, strField + ": " + strProblem);
    }
}

bool Walker::Header()
{
    static const char *const apcNames[] = {"internal use area offset", "chassis info area offset",
                                           "board info area offset", "product info area offset",
                                           "MultiRecord area offset"};
    if (m_uiStored < FRU_COMMON_HEADER_LEN) {
        Span(0U, m_uiStored, Area::Header, "common header", "",
             Format("cut short: %u of 8 bytes", m_uiStored));
        return false;
    }
    const u8 *pucHeader = m_vecImage.data();
    const u8 ucSum = ZeroSum(pucHeader, FRU_COMMON_HEADER_LEN);
    Span(0U, 1U, Area::Header, "format version", Format("%u", pucHeader[0]),
         pucHeader[0] == 1U ? "" : Format("0x%02x; only version 1 is known", pucHeader[0]));
    for (u32 i = 0; i < std::size(apcNames); i++) {
        const u8 ucOffset = pucHeader[i + 1U];
        Span(i + 1U, 1U, Area::Header, apcNames[i],
             ucOffset == 0U ? "absent" : Format("at 0x%04x (%u x 8)", ucOffset * 8U, ucOffset));
    }
    Span(6U, 1U, Area::Header, "pad", pucHeader[6] == 0U ? "" : Format("0x%02x", pucHeader[6]));
    if (pucHeader[6] != 0U) {
        Finding(6U, Area::Header, Format("pad: 0x%02x, should be 0", pucHeader[6]), true);
    }
    Span(7U, 1U, Area::Header, "checksum", ucSum == 0U ? "good" : "",
         ucSum == 0U ? ""
                     : Format("0x%02x is wrong; the other bytes want 0x%02x", pucHeader[7],
                              static_cast<u8>(pucHeader[7] - ucSum)));
    return pucHeader[0] == 1U && ucSum == 0U;
}

u32 Walker::Field(Area enArea, const std::string &strName, u32 uiOffset, u32 uiEnd, bool *pbGood)
{
    const u8 ucTypeLength = m_vecImage[uiOffset];
    const u32 uiLength = ucTypeLength & 0x3FU;
    if (uiOffset + 1U + uiLength > uiEnd) {
        Span(uiOffset, uiEnd - uiOffset, enArea, strName, "",
             Format("%u bytes long by its length byte 0x%02x, but the area ends at 0x%04x", uiLength,
                    ucTypeLength, uiEnd));
        *pbGood = false;
        return uiEnd;
    }
    const FIELD_TEXT_S stText = FieldText(ucTypeLength, &m_vecImage[uiOffset] + 1, uiLength);
    Span(uiOffset, 1U + uiLength, enArea, strName, stText.strText);
    m_stLayout.vecSpans.back().strNote = stText.strNote;
    return uiOffset + 1U + uiLength;
}

void Walker::InternalUse(u32 uiStart, u32 uiNextArea)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, Area::InternalUse, "format version", Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if (ucVersion != 1U || uiStart + 1U >= m_uiLength) {
        return;
    }
    bool bGood = true;
    const u32 uiAfter = Field(Area::InternalUse, "data", uiStart + 1U, m_uiLength, &bGood);
    SPAN_S &stData = m_stLayout.vecSpans.back();
    if (uiAfter > uiNextArea) {
        // Elsewhere this area is opaque; here it is one length-coded field, and then says nothing sensible.
        stData.uiLength = uiNextArea - stData.uiOffset;
        Finding(uiStart + 1U, Area::InternalUse,
                Format("data: its length byte 0x%02x reaches into the next area; not written by this system?",
                       m_vecImage[uiStart + 1U]),
                true);
    } else if (bGood && uiAfter < uiNextArea) {
        const bool bEnd = m_vecImage[uiAfter] == FIELD_END;
        Span(uiAfter, bEnd ? 1U : uiNextArea - uiAfter, Area::InternalUse,
             bEnd ? "end mark" : "more, not decoded", "");
    }
}

// The bytes up to the first field; returns where that is, or 0 when the area is not to be read further.
u32 Walker::InfoPrefix(const INFO_AREA_S &stArea, u32 uiStart, u32 uiEnd)
{
    const Area enArea = stArea.enArea;
    u32 uiOffset = uiStart + 2U;
    const u32 uiPrefix = (stArea.bChassisType || stArea.bLanguage ? 1U : 0U) + (stArea.bMfgDate ? 3U : 0U);
    if (uiOffset + uiPrefix >= uiEnd) {
        Finding(uiStart + 1U, enArea, "the area is too short for its fields");
        return 0U;
    }
    const u8 ucFirst = m_vecImage[uiOffset];
    if (stArea.bChassisType) {
        const std::string strName = ChassisTypeName(ucFirst);
        Span(uiOffset, 1U, enArea, "chassis type", Format("0x%02x ", ucFirst) + strName,
             strName.empty() ? Format("0x%02x is not a chassis type; known are 0x00 to 0x1d", ucFirst) : "");
        return strName.empty() ? 0U : uiOffset + 1U;
    }
    Span(uiOffset++, 1U, enArea, "language", LanguageName(ucFirst));
    if (stArea.bMfgDate) {
        const u8 *pucDate = &m_vecImage[uiOffset];
        Span(uiOffset, 3U, enArea, "manufacturing date", MfgDateText(pucDate));
        m_stLayout.vecSpans.back().strNote =
            (pucDate[0] | pucDate[1] | pucDate[2]) == 0 ? "all zero: not told" : "";
        uiOffset += 3U;
    }
    return uiOffset;
}

void Walker::Info(const INFO_AREA_S &stArea, u32 uiStart)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, stArea.enArea, "format version", Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if (ucVersion != 1U || uiStart + 1U >= m_uiLength) {
        return;
    }
    const u32 uiArea = m_vecImage[uiStart + 1U] * FRU_AREA_UNIT;
    const u32 uiEnd = uiStart + uiArea;
    // An area that ends with the image's last byte is refused by every reader of this system.
    const bool bFits = uiEnd < m_uiLength;
    Span(uiStart + 1U, 1U, stArea.enArea, "area length", Format("%u bytes (%u x 8)", uiArea, uiArea / 8U),
         bFits
             ? ""
             : Format("the area ends at 0x%04x, the image at 0x%04x; an area must end before the image does",
                      uiEnd, m_uiStored));
    if (!bFits) {
        return;
    }
    const u8 ucSum = ZeroSum(&m_vecImage[uiStart], uiArea);
    u32 uiOffset = InfoPrefix(stArea, uiStart, uiEnd);
    bool bGood = uiOffset != 0U;
    for (const char *pcField : stArea.vecFields) {
        if (bGood && uiOffset >= uiEnd) {
            Finding(uiOffset, stArea.enArea, std::string(pcField) + ": the area ends before it");
            bGood = false;
        }
        if (bGood && m_vecImage[uiOffset] == FIELD_END) {
            Finding(uiOffset, stArea.enArea,
                    std::string(pcField) + ": the end mark 0xc1 in its place reads as a text of one byte",
                    true);
        }
        if (bGood) {
            uiOffset = Field(stArea.enArea, pcField, uiOffset, uiEnd, &bGood);
        }
    }
    if (bGood) {
        CustomFields(stArea, uiOffset, uiEnd);
    }
    if (uiArea > 0U) {
        const u8 ucChecksum = m_vecImage[uiEnd - 1U];
        Span(uiEnd - 1U, 1U, stArea.enArea, "checksum", ucSum == 0U ? "good" : "",
             ucSum == 0U ? ""
                         : Format("0x%02x is wrong; the area's bytes want 0x%02x", ucChecksum,
                                  static_cast<u8>(ucChecksum - ucSum)));
    }
}

void Walker::CustomFields(const INFO_AREA_S &stArea, u32 uiOffset, u32 uiEnd)
{
    u32 uiCount = 0;
    bool bGood = true;
    while (bGood && uiOffset < uiEnd && m_vecImage[uiOffset] != FIELD_END) {
        uiCount++;
        uiOffset = Field(stArea.enArea, Format("custom field %u", uiCount), uiOffset, uiEnd, &bGood);
    }
    if (!bGood) {
        return;
    }
    if (uiOffset >= uiEnd) {
        Finding(uiEnd - 1U, stArea.enArea, "no end mark 0xc1 after the last field");
        return;
    }
    Span(uiOffset, 1U, stArea.enArea, "end mark", "");
    CheckSlots(stArea, uiOffset, uiCount);
    if (uiOffset + 2U < uiEnd) {
        Span(uiOffset + 1U, uiEnd - uiOffset - 2U, stArea.enArea, "fill", "");
    }
}

void Walker::CheckSlots(const INFO_AREA_S &stArea, u32 uiOffset, u32 uiCount)
{
    if (m_bFixedSlots && stArea.uiFixedSlots != 0U && uiCount > stArea.uiFixedSlots) {
        Finding(uiOffset, stArea.enArea,
                Format("%u custom fields; a baseboard has room for %u", uiCount, stArea.uiFixedSlots));
    }
}

bool Walker::MultiRecord(u32 uiOffset, u32 *puiNext)
{
    const std::string strRecord = Format("record %u ", m_stLayout.uiMultiRecords + 1U);
    if (uiOffset + FRU_MULTIRECORD_HEADER_LEN > m_uiLength) {
        Span(uiOffset, m_uiLength - uiOffset, Area::MultiRecord, strRecord + "header", "",
             "the image ends inside it (no record before it says that it is the last)");
        return false;
    }
    const u8 *pucRecord = &m_vecImage[uiOffset];
    const u8 ucSum = ZeroSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN);
    Span(uiOffset, FRU_MULTIRECORD_HEADER_LEN, Area::MultiRecord, strRecord + "header",
         Format("type 0x%02x %s, %u bytes%s", pucRecord[0], MultiRecordTypeName(pucRecord[0]), pucRecord[2],
                (pucRecord[1] & MR_END_OF_LIST) != 0U ? ", last record" : ""),
         ucSum == 0U ? ""
                     : Format("header checksum 0x%02x is wrong; the bytes want 0x%02x", pucRecord[4],
                              static_cast<u8>(pucRecord[4] - ucSum)));
    if (ucSum != 0U) {
        return false;
    }
    const u32 uiData = uiOffset + FRU_MULTIRECORD_HEADER_LEN;
    const u8 ucLength = pucRecord[2];
    *puiNext = uiData + ucLength;
    if (*puiNext > m_uiLength) {
        Span(uiData, m_uiLength - uiData, Area::MultiRecord, strRecord + "data", "",
             Format("%u bytes long, but the image ends at 0x%04x", ucLength, m_uiStored));
        return false;
    }
    if (ucLength == 0U) {
        Finding(uiOffset + 2U, Area::MultiRecord, strRecord + "has no data; readers refuse such a record");
        return false;
    }
    const u8 ucWanted = static_cast<u8>(0U - ZeroSum(pucRecord + FRU_MULTIRECORD_HEADER_LEN, ucLength));
    const u8 *pucData = pucRecord + FRU_MULTIRECORD_HEADER_LEN;
    const char *pcSubType = pucRecord[0] == MR_MANAGEMENT_ACCESS ? ManagementAccessName(pucData[0]) : nullptr;
    const std::string strText = MultiRecordText(pucRecord[0], pucData, ucLength);
    Span(uiData, ucLength, Area::MultiRecord, strRecord + "data",
         pcSubType != nullptr ? std::string(pcSubType) + ": " + strText : "",
         ucWanted == pucRecord[3]
             ? ""
             : Format("the data's checksum is 0x%02x, but the header says 0x%02x", ucWanted, pucRecord[3]));
    m_stLayout.uiMultiRecords++;
    return ucWanted == pucRecord[3] && (pucRecord[1] & MR_END_OF_LIST) == 0U;
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
        if (stBefore.enArea != stSpan.enArea && stSpan.uiOffset < stBefore.uiOffset + stBefore.uiLength) {
            Finding(stSpan.uiOffset, stSpan.enArea, std::string("overlaps the ") + AreaName(stBefore.enArea));
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
            vecUnused.push_back({uiEnd, uiUntil - uiEnd, Area::Unused, "unused", "",
                                 bSame ? Format("all 0x%02x", *itFirst) : "not in any area", ""});
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
    for (u32 i = 0; i < std::size(HEADER_AREAS); i++) {
        const u32 uiStart = m_vecImage[i + 1U] * FRU_AREA_UNIT;
        if (uiStart >= m_uiLength) {
            Finding(i + 1U, Area::Header,
                    Format("%s: starts at 0x%04x, but the image ends at 0x%04x", AreaName(HEADER_AREAS[i]),
                           uiStart, m_uiStored));
        } else if (uiStart != 0U) {
            vecStarts.emplace_back(uiStart, HEADER_AREAS[i]);
        }
    }
    std::sort(vecStarts.begin(), vecStarts.end());
    for (size_t i = 0; i < vecStarts.size(); i++) {
        const auto [uiStart, enArea] = vecStarts[i];
        m_stLayout.vecAreas.push_back(enArea);
        if (enArea == Area::InternalUse) {
            InternalUse(uiStart, i + 1U < vecStarts.size() ? vecStarts[i + 1U].first : m_uiLength);
        } else if (enArea == Area::MultiRecord) {
            MultiRecords(uiStart);
        } else {
            Info(InfoArea(enArea), uiStart);
        }
    }
}

IMAGE_LAYOUT_S Walker::Walk()
{
    const auto fnByOffset = [](const auto &stLeft, const auto &stRight) {
        return stLeft.uiOffset < stRight.uiOffset;
    };
    m_stLayout.bErased =
        std::all_of(m_vecImage.begin(), m_vecImage.end(), [](u8 ucByte) { return ucByte == 0xFFU; });
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

const char *AreaName(Area enArea)
{
    static const char *const apcNames[] = {"common header",   "internal use area", "chassis info area",
                                           "board info area", "product info area", "MultiRecord area",
                                           "unused",          "hardware block"};
    return apcNames[static_cast<size_t>(enArea)];
}

const char *AreaKey(Area enArea)
{
    static const char *const apcKeys[] = {"header",  "internalUse", "chassis", "board",
                                          "product", "multiRecord", "unused",  "hardware"};
    return apcKeys[static_cast<size_t>(enArea)];
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
