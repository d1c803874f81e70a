// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/lenient.h"

#include <algorithm>

#include "toolkit/base/text.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record_words.h"

namespace {

class LenientReader
{
  public:
    LenientReader(const IMAGE_S &stImage, bool bFixedSlots)
        : m_stImage(stImage),
          m_stLayout(WalkImage(stImage.vecBytes, stImage.uiStored, bFixedSlots, Damage::Passed))
    {}
    LENIENT_VIEW_S Read();

  private:
    std::string FrameDoubt(Area enArea) const;
    std::string OverlapDoubt(const SPAN_S &stSpan) const;
    LENIENT_AREA_S ReadArea(Area enArea) const;
    void AddRecordData(const SPAN_S &stSpan, LENIENT_FIELD_S &stField) const;

    const IMAGE_S &m_stImage;
    const IMAGE_LAYOUT_S m_stLayout;
};

// What is wrong with what holds an area together: then no field of it can be trusted.
std::string LenientReader::FrameDoubt(Area enArea) const
{
    for (const SPAN_S &stSpan : m_stLayout.vecSpans) {
        if (stSpan.stField.enArea == enArea && IsFrame(stSpan.stField.enField) &&
            !stSpan.strProblem.empty()) {
            return std::string("the ") + AreaName(enArea) + "'s " + FieldName(stSpan.stField) +
                   (stSpan.stField.enField == Field::Checksum ? " does not match" : " is wrong");
        }
    }
    return "";
}

std::string LenientReader::OverlapDoubt(const SPAN_S &stSpan) const
{
    for (const SPAN_S &stOther : m_stLayout.vecSpans) {
        if (stOther.stField.enArea != stSpan.stField.enArea && stOther.stField.enArea != Area::Unused &&
            stOther.uiOffset < stSpan.uiOffset + stSpan.uiLength &&
            stSpan.uiOffset < stOther.uiOffset + stOther.uiLength) {
            return std::string("the ") + AreaName(stOther.stField.enArea) + " claims the same bytes";
        }
    }
    return "";
}

void LenientReader::AddRecordData(const SPAN_S &stSpan, LENIENT_FIELD_S &stField) const
{
    const std::vector<u8> &vecBytes = m_stImage.vecBytes;
    const auto itData = vecBytes.begin() + stSpan.uiOffset;
    const std::vector<u8> vecData(itData, itData + stSpan.uiLength);
    const u8 ucType = vecBytes[stField.uiOffset];
    const std::string strSays = RecordSummary(ReadRecord(ucType, vecData));
    stField.strText = RecordTitle(ucType, vecData) + ": " + (strSays.empty() ? HexBytes(vecData) : strSays);
}

LENIENT_AREA_S LenientReader::ReadArea(Area enArea) const
{
    LENIENT_AREA_S stArea = {enArea, {}, {}};
    const std::string strHeader = FrameDoubt(Area::Header);
    const std::string strFrame = FrameDoubt(enArea);
    for (const SPAN_S &stSpan : m_stLayout.vecSpans) {
        const FIELD_ID_S &stField = stSpan.stField;
        if (stField.enArea != enArea || IsFrame(stField.enField)) {
            continue;
        }
        const std::string strOverlap = OverlapDoubt(stSpan);
        const std::string strDoubt = !stSpan.strProblem.empty() ? stSpan.strProblem
                                     : !strFrame.empty()        ? strFrame
                                     : !strHeader.empty()       ? strHeader
                                                                : strOverlap;
        if (stField.enField == Field::RecordData && !stArea.vecFields.empty()) {
            LENIENT_FIELD_S &stRecord = stArea.vecFields.back();
            AddRecordData(stSpan, stRecord);
            stRecord.strDoubt = stRecord.strDoubt.empty() ? strDoubt : stRecord.strDoubt;
            continue;
        }
        const bool bRecord = stField.enField == Field::RecordHeader;
        const bool bRaw = stField.enField == Field::MoreData;
        const u8 *pucBytes = &m_stImage.vecBytes[stSpan.uiOffset];
        stArea.vecFields.push_back(
            {bRecord ? FIELD_ID_S{enArea, Field::OneRecord, stField.uiIndex} : stField, stSpan.uiOffset,
             bRaw ? HexBytes(pucBytes, stSpan.uiLength) : stSpan.strText, stSpan.stNote, strDoubt});
    }
    for (const FINDING_S &stFinding : m_stLayout.vecFindings) {
        if (stFinding.enArea == enArea && !stFinding.bWarning) {
            stArea.vecRemarks.push_back(FindingText(stFinding));
        }
    }
    return stArea;
}

LENIENT_VIEW_S LenientReader::Read()
{
    LENIENT_VIEW_S stView;
    for (const Area enArea : m_stLayout.vecAreas) {
        stView.vecAreas.push_back(ReadArea(enArea));
        for (const LENIENT_FIELD_S &stField : stView.vecAreas.back().vecFields) {
            (stField.strDoubt.empty() ? stView.uiGood : stView.uiDoubtful)++;
        }
    }
    for (const FINDING_S &stFinding : m_stLayout.vecFindings) {
        if (stFinding.enArea == Area::Header && !stFinding.bWarning) {
            stView.vecRemarks.push_back(FindingText(stFinding));
        }
    }
    return stView;
}

} // namespace

LENIENT_VIEW_S ViewLeniently(const IMAGE_S &stImage, bool bFixedSlots)
{
    return LenientReader(stImage, bFixedSlots).Read();
}
