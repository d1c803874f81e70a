// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "toolkit/image/mfg_date.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/names.h"
#include "toolkit/image/record_words.h"

namespace {

constexpr u8 AREA_VERSION = 1U;

// Pointers of the packed record are not aligned.
const void *PointerAt(const FRU_DATA_S &stData, size_t uiOffset)
{
    const void *pMember = nullptr;
    memcpy(&pMember, reinterpret_cast<const u8 *>(&stData) + uiOffset, sizeof(pMember));
    return pMember;
}

const char *TextAt(const FRU_DATA_S &stData, size_t uiOffset)
{
    return static_cast<const char *>(PointerAt(stData, uiOffset));
}

// An area's custom fields; null for one that has none.
const char *const *CustomFieldsOf(const FRU_DATA_S &stData, const AREA_ROW_S &stArea, u32 &uiCount)
{
    uiCount = 0U;
    if (!stArea.HasCustomFields()) {
        return nullptr;
    }
    uiCount = reinterpret_cast<const u8 *>(&stData)[stArea.stCustom.uiCount];
    return static_cast<const char *const *>(PointerAt(stData, stArea.stCustom.uiOffset));
}

std::string Text(const char *pcText)
{
    return pcText != nullptr ? pcText : "";
}

FIELD_VIEW_S ViewField(const FRU_DATA_S &stData, const FIELD_ROW_S &stRow)
{
    const u8 *pucMember = reinterpret_cast<const u8 *>(&stData) + stRow.uiOffset;
    switch (stRow.enKind) {
    case Kind::Language:
        return {stRow.enField, LanguageName(*pucMember), u32{*pucMember}};
    case Kind::MfgDate:
        return {stRow.enField, MfgDateText(pucMember), MfgDateMinutes(pucMember)};
    default:
        return {stRow.enField, Text(TextAt(stData, stRow.uiOffset))};
    }
}

AREA_VIEW_S ViewArea(const FRU_DATA_S &stData, const AREA_ROW_S &stArea)
{
    AREA_VIEW_S stView = {stArea.enArea, {}, {}};
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        stView.vecFields.push_back(ViewField(stData, stRow));
    }
    u32 uiCount = 0U;
    const char *const *ppcFields = CustomFieldsOf(stData, stArea, uiCount);
    for (u32 i = 0; ppcFields != nullptr && i < uiCount; i++) {
        stView.vecCustomFields.push_back(Text(ppcFields[i]));
    }
    return stView;
}

MULTIRECORD_VIEW_S ViewMultiRecord(const FRU_MULTIRECORD_S &stRecord)
{
    const u8 *pucData = stRecord.pucRecordData;
    MULTIRECORD_VIEW_S stView = {stRecord.ucRecordTypeID,
                                 static_cast<u8>(stRecord.ucRecordFormat & 0x0FU),
                                 {pucData, pucData + stRecord.ucRecordLength},
                                 "",
                                 MultiRecordText(stRecord.ucRecordTypeID, pucData, stRecord.ucRecordLength)};
    stView.strName = RecordTitle(stView.ucType, stView.vecData);
    return stView;
}

} // namespace

u8 *Record::At(size_t uiOffset)
{
    return reinterpret_cast<u8 *>(&m_stData) + uiOffset;
}

void Record::Store(size_t uiOffset, const void *pBuffer)
{
    memcpy(At(uiOffset), &pBuffer, sizeof(pBuffer)); // members of the packed record are not aligned
}

void Record::AddArea(const AREA_ROW_S &stRow)
{
    MarkArea(m_stData, stRow.enArea);
    *At(stRow.uiVersion) = AREA_VERSION;
}

void *HeapBuffer(size_t uiCount, size_t uiSize)
{
    void *pBuffer = calloc(uiCount, uiSize); // the record releases it with free()
    if (pBuffer == nullptr) {
        throw std::bad_alloc();
    }
    return pBuffer;
}

u8 *HeapText(const std::string &strText, size_t uiSize)
{
    u8 *pucText = static_cast<u8 *>(HeapBuffer(uiSize, 1U));
    memcpy(pucText, strText.data(), strText.size());
    return pucText;
}

const FIELD_VIEW_S *AREA_VIEW_S::Find(Field enField) const
{
    for (const FIELD_VIEW_S &stField : vecFields) {
        if (stField.enField == enField) {
            return &stField;
        }
    }
    return nullptr;
}

const AREA_VIEW_S *RECORD_VIEW_S::Find(Area enArea) const
{
    for (const AREA_VIEW_S &stArea : vecAreas) {
        if (stArea.enArea == enArea) {
            return &stArea;
        }
    }
    return nullptr;
}

bool operator==(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight)
{
    const auto fnSameField = [](const FIELD_VIEW_S &stOne, const FIELD_VIEW_S &stOther) {
        return stOne.enField == stOther.enField && stOne.strText == stOther.strText &&
               stOne.optNumber == stOther.optNumber;
    };
    const auto fnSameArea = [&](const AREA_VIEW_S &stOne, const AREA_VIEW_S &stOther) {
        return stOne.enArea == stOther.enArea && stOne.vecCustomFields == stOther.vecCustomFields &&
               std::equal(stOne.vecFields.begin(), stOne.vecFields.end(), stOther.vecFields.begin(),
                          stOther.vecFields.end(), fnSameField);
    };
    const auto fnSameRecord = [](const MULTIRECORD_VIEW_S &stOne, const MULTIRECORD_VIEW_S &stOther) {
        return stOne.ucType == stOther.ucType && stOne.ucFormatVersion == stOther.ucFormatVersion &&
               stOne.vecData == stOther.vecData;
    };
    // A MultiRecord area without records counts as none, unless the other side's cannot be read.
    return stLeft.IsMultiRecordAreaDamaged() == stRight.IsMultiRecordAreaDamaged() &&
           std::equal(stLeft.vecAreas.begin(), stLeft.vecAreas.end(), stRight.vecAreas.begin(),
                      stRight.vecAreas.end(), fnSameArea) &&
           std::equal(stLeft.vecMultiRecords.begin(), stLeft.vecMultiRecords.end(),
                      stRight.vecMultiRecords.begin(), stRight.vecMultiRecords.end(), fnSameRecord);
}

bool operator!=(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight)
{
    return !(stLeft == stRight);
}

void MarkArea(FRU_DATA_S &stData, Area enArea)
{
    reinterpret_cast<u8 *>(&stData.stCommonHeader)[HeaderOffsetByte(enArea)] = 1U;
}

bool HasArea(const FRU_DATA_S &stData, Area enArea)
{
    return reinterpret_cast<const u8 *>(&stData.stCommonHeader)[HeaderOffsetByte(enArea)] != 0U;
}

std::optional<std::string> RecordText(const FRU_DATA_S &stData, const FIELD_ID_S &stField)
{
    const AREA_ROW_S *pstArea = FindAreaRow(stField.enArea);
    const char *pcText = nullptr;
    if (pstArea != nullptr && stField.enField == Field::Custom) {
        u32 uiCount = 0U;
        const char *const *ppcFields = CustomFieldsOf(stData, *pstArea, uiCount);
        pcText = ppcFields != nullptr && stField.uiIndex < uiCount ? ppcFields[stField.uiIndex] : nullptr;
    } else if (pstArea != nullptr) {
        for (const FIELD_ROW_S &stRow : pstArea->vecFields) {
            const bool bText = stRow.enKind == Kind::Text || stRow.enKind == Kind::ChassisType;
            if (stRow.enField == stField.enField && bText) {
                pcText = TextAt(stData, stRow.uiOffset);
            }
        }
    }
    return pcText == nullptr ? std::nullopt : std::optional<std::string>(pcText);
}

void AppendTexts(const FRU_DATA_S &stData, const AREA_ROW_S &stArea, std::string &strOut)
{
    const auto fnAppend = [&strOut](const char *pcText) {
        strOut.append(pcText == nullptr ? "" : pcText).push_back('\0');
    };
    for (const FIELD_ROW_S &stRow : stArea.vecFields) {
        if (stRow.enKind != Kind::Language && stRow.enKind != Kind::MfgDate) {
            fnAppend(TextAt(stData, stRow.uiOffset));
            continue;
        }
        const FIELD_VIEW_S stView = ViewField(stData, stRow);
        const bool bUnspecified = stRow.enKind == Kind::MfgDate && stView.optNumber == 0U;
        fnAppend(bUnspecified ? "" : stView.strText.c_str());
        fnAppend(std::to_string(stView.optNumber.value_or(0U)).c_str());
    }
    u32 uiCount = 0U;
    const char *const *ppcFields = CustomFieldsOf(stData, stArea, uiCount);
    if (stArea.HasCustomFields()) {
        uiCount = ppcFields == nullptr ? 0U : uiCount;
        fnAppend(std::to_string(uiCount).c_str());
    }
    for (u32 i = 0; i < uiCount; i++) {
        fnAppend(ppcFields[i]);
    }
}

RECORD_VIEW_S ViewRecord(const FRU_DATA_S &stData)
{
    RECORD_VIEW_S stView = {{}, {}, HasArea(stData, Area::MultiRecord)};
    for (const AREA_ROW_S &stArea : AreaRows()) {
        if (HasArea(stData, stArea.enArea)) {
            stView.vecAreas.push_back(ViewArea(stData, stArea));
        }
    }
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX && stData.astMultiRecord[i].pucRecordData != nullptr; i++) {
        stView.vecMultiRecords.push_back(ViewMultiRecord(stData.astMultiRecord[i]));
    }
    return stView;
}

u32 DecodeImage(const IMAGE_S &stImage, bool bFixedSlots, Record &stRecord)
{
    for (const AREA_ROW_S &stArea : AreaRows()) {
        if (bFixedSlots && stArea.stCustom.uiFixed != 0U) {
            reinterpret_cast<u8 *>(stRecord.Data())[stArea.stCustom.uiCount] =
                static_cast<u8>(stArea.stCustom.uiFixed);
        }
    }
    return FRU_ANALYZER_InterpretFRUData(stImage.vecBytes.data(), static_cast<u32>(stImage.vecBytes.size()),
                                         stRecord.Data());
}
