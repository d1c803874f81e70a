// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout.h"

#include <algorithm>

#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/foreign.h"
#include "toolkit/image/hardware_block.h"
#include "toolkit/image/layout_walker.h"

void LayoutWalker::Finding(u32 uiOffset, Area enArea, const std::string &strWhat, bool bWarning)
{
    m_stLayout.vecFindings.push_back({uiOffset, enArea, strWhat, bWarning});
}

void LayoutWalker::Span(u32 uiOffset, u32 uiLength, const FIELD_ID_S &stField, const std::string &strText,
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

bool LayoutWalker::Header()
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
    return m_bPass || (pucHeader[0] == 1U && ucSum == 0U);
}

void LayoutWalker::CheckOverlaps()
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

void LayoutWalker::FillUnused()
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

void LayoutWalker::Areas()
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
    for (const auto &stStart : vecStarts) {
        const u32 uiStart = stStart.first;
        const Area enArea = stStart.second;
        m_stLayout.vecAreas.push_back(enArea);
        // One that starts in the same place is no bound: it overlaps.
        const auto itNext = std::find_if(vecStarts.begin(), vecStarts.end(),
                                         [&](const auto &stOther) { return stOther.first > uiStart; });
        const u32 uiNextArea = itNext != vecStarts.end() ? itNext->first : m_uiStored;
        if (enArea == Area::InternalUse) {
            InternalUse(uiStart, uiNextArea);
        } else if (enArea == Area::MultiRecord) {
            MultiRecords(uiStart);
        } else {
            Info(*FindAreaRow(enArea), uiStart, uiNextArea);
        }
    }
}

IMAGE_LAYOUT_S LayoutWalker::Walk()
{
    const auto fnByOffset = [](const auto &stLeft, const auto &stRight) {
        return stLeft.uiOffset < stRight.uiOffset;
    };
    m_stLayout.bErased =
        std::all_of(m_vecImage.begin(), m_vecImage.end(), [](u8 ucByte) { return ucByte == ERASED; });
    const std::string strForeign = ForeignName(m_vecImage, m_uiStored);
    if (!strForeign.empty()) {
        Finding(0U, Area::Header, strForeign);
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

IMAGE_LAYOUT_S WalkImage(const std::vector<u8> &vecImage, size_t uiStored, bool bFixedSlots, Damage enDamage)
{
    if (IsHardwareBlock(vecImage, uiStored)) {
        return WalkHardwareBlock(vecImage);
    }
    return LayoutWalker(vecImage, uiStored, bFixedSlots, enDamage).Walk();
}
