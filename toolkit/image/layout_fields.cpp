// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/layout_walker.h"

#include <algorithm>

#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/names.h"

u32 LayoutWalker::TextField(const FIELD_ID_S &stField, u32 uiOffset, u32 uiEnd, bool *pbGood)
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
    FIELD_TEXT_S stText = FieldText(ucTypeLength, &m_vecImage[uiOffset] + 1, uiLength);
    if (const std::optional<std::string> optText =
            UnicodeText(ucTypeLength, m_ucLanguage, &m_vecImage[uiOffset] + 1, uiLength)) {
        stText.stNote = {Note::Unicode, *optText};
    }
    Span(uiOffset, 1U + uiLength, stField, stText.strText, "", stText.stNote);
    return uiOffset + 1U + uiLength;
}

// Whether the image ends with the area's version byte.
bool LayoutWalker::IsCutAfter(u32 uiStart, Area enArea)
{
    const bool bCut = uiStart + 1U >= m_uiStored;
    if (bCut) {
        Finding(uiStart, enArea, "cut short: the image ends after the area's first byte");
    }
    return bCut;
}

void LayoutWalker::InternalUse(u32 uiStart, u32 uiNextArea)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, {Area::InternalUse, Field::FormatVersion}, Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if (ucVersion != 1U || IsCutAfter(uiStart, Area::InternalUse)) {
        return;
    }
    bool bGood = true;
    m_ucLanguage = 0;
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
u32 LayoutWalker::InfoPrefix(const AREA_ROW_S &stArea, u32 uiStart, u32 uiEnd)
{
    u32 uiOffset = uiStart + 2U;
    u32 uiPrefix = 0;
    m_ucLanguage = 0;
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        uiPrefix += stRow.enKind == Kind::Text ? 0U : stRow.enKind == Kind::MfgDate ? MFG_DATE_BYTES : 1U;
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
            if (strName.empty() && !m_bPass) {
                return 0U;
            }
        } else if (stRow.enKind == Kind::Language) {
            m_ucLanguage = *pucBytes;
            Span(uiOffset++, 1U, stField, LanguageName(*pucBytes));
        } else if (stRow.enKind == Kind::MfgDate) {
            const std::string strOther = OtherMfgDateText(MfgDateMinutes(pucBytes));
            if ((pucBytes[0] & pucBytes[1] & pucBytes[2]) == ERASED) {
                Finding(uiOffset, stArea.enArea, FieldName(stField) + ": erased: every byte is 0xff", true);
            }
            Span(uiOffset, MFG_DATE_BYTES, stField, MfgDateText(pucBytes), "",
                 {strOther.empty() ? Note::None : Note::OtherDate, strOther});
            uiOffset += MFG_DATE_BYTES;
        }
    }
    return uiOffset;
}

// Where the area ends; 0 when it is not to be read further.
u32 LayoutWalker::InfoEnd(const AREA_ROW_S &stArea, u32 uiStart, u32 uiNextArea)
{
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
    if (m_bPass && (!bFits || uiArea == 0U)) {
        return uiNextArea;
    }
    return bFits ? uiEnd : 0U;
}

void LayoutWalker::Info(const AREA_ROW_S &stArea, u32 uiStart, u32 uiNextArea)
{
    const u8 ucVersion = m_vecImage[uiStart];
    Span(uiStart, 1U, {stArea.enArea, Field::FormatVersion}, Format("%u", ucVersion),
         ucVersion == 1U ? "" : Format("0x%02x; only version 1 is known", ucVersion));
    if ((ucVersion != 1U && !m_bPass) || IsCutAfter(uiStart, stArea.enArea)) {
        return;
    }
    const u32 uiEnd = InfoEnd(stArea, uiStart, uiNextArea);
    if (uiEnd == 0U) {
        return;
    }
    const u32 uiText = InfoPrefix(stArea, uiStart, uiEnd);
    if (uiText != 0U) {
        TextFields(stArea, uiText, uiEnd);
    }
    if (uiEnd > uiStart) {
        const u8 ucSum = ByteSum(&m_vecImage[uiStart], uiEnd - uiStart);
        const u8 ucChecksum = m_vecImage[uiEnd - 1U];
        Span(uiEnd - 1U, 1U, {stArea.enArea, Field::Checksum}, ucSum == 0U ? "good" : "",
             ucSum == 0U ? ""
                         : Format("0x%02x is wrong; the area's bytes want 0x%02x", ucChecksum,
                                  static_cast<u8>(ucChecksum - ucSum)));
    }
}

void LayoutWalker::TextFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd)
{
    bool bGood = true;
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
}

void LayoutWalker::CustomFields(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiEnd)
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

void LayoutWalker::Fill(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiChecksum)
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

void LayoutWalker::CheckSlots(const AREA_ROW_S &stArea, u32 uiOffset, u32 uiCount)
{
    const u32 uiFixed = stArea.stCustom.uiFixed;
    if (m_bFixedSlots && uiFixed != 0U && uiCount > uiFixed) {
        Finding(uiOffset, stArea.enArea,
                Format("%u custom fields; a baseboard has room for %u", uiCount, uiFixed));
    }
}
