// SPDX-License-Identifier: Apache-2.0
// Decoded records for tests, from a plain model and back, independently of the library's tables.
#ifndef TESTS_SUPPORT_RECORD_BUILDER_H
#define TESTS_SUPPORT_RECORD_BUILDER_H

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"

namespace model {

using TEXTS = std::vector<std::string>;

// vecFields in image order (2, 5 or 7 of them); strChassisType, ucLanguage and aucDate where the
// area has them.
struct AREA_S
{
    std::string strChassisType;
    u8 ucLanguage = 0;
    u8 aucDate[3] = {};
    TEXTS vecFields;
    TEXTS vecCustom;
};

struct MULTIRECORD_S
{
    u8 ucType;
    u8 ucFormat;
    std::vector<u8> vecData;
};

struct RECORD_S
{
    std::optional<std::string> optInternal;
    std::optional<AREA_S> optChassis;
    std::optional<AREA_S> optBoard;
    std::optional<AREA_S> optProduct;
    std::vector<MULTIRECORD_S> vecMultiRecord;
};

inline bool operator==(const AREA_S &stLeft, const AREA_S &stRight)
{
    return stLeft.strChassisType == stRight.strChassisType && stLeft.ucLanguage == stRight.ucLanguage &&
           memcmp(stLeft.aucDate, stRight.aucDate, sizeof(stLeft.aucDate)) == 0 &&
           stLeft.vecFields == stRight.vecFields && stLeft.vecCustom == stRight.vecCustom;
}

inline bool operator==(const MULTIRECORD_S &stLeft, const MULTIRECORD_S &stRight)
{
    return stLeft.ucType == stRight.ucType && stLeft.ucFormat == stRight.ucFormat &&
           stLeft.vecData == stRight.vecData;
}

inline bool operator==(const RECORD_S &stLeft, const RECORD_S &stRight)
{
    return stLeft.optInternal == stRight.optInternal && stLeft.optChassis == stRight.optChassis &&
           stLeft.optBoard == stRight.optBoard && stLeft.optProduct == stRight.optProduct &&
           stLeft.vecMultiRecord == stRight.vecMultiRecord;
}

// ---- heap buffers that FRU_ANALYZER_SafeFree() releases ----

inline u8 *Heap(const std::string &strText)
{
    u8 *pucText = static_cast<u8 *>(malloc(strText.size() + 1U));
    (void)memcpy(pucText, strText.c_str(), strText.size() + 1U);
    return pucText;
}

inline void Free(void *pBuffer)
{
    free(pBuffer);
}

inline u8 **HeapArray(const TEXTS &vecTexts)
{
    if (vecTexts.empty()) {
        return nullptr;
    }
    u8 **ppucTexts = static_cast<u8 **>(malloc(vecTexts.size() * sizeof(u8 *)));
    for (size_t i = 0; i < vecTexts.size(); ++i) {
        ppucTexts[i] = Heap(vecTexts[i]);
    }
    return ppucTexts;
}

// ---- model to record ----

inline void FillChassis(FRU_CHASSIS_INFO_S *pstArea, const AREA_S &stModel)
{
    pstArea->ucFormatVersion = 1U;
    pstArea->pucChassisType = reinterpret_cast<char *>(Heap(stModel.strChassisType));
    pstArea->pucChassisPartNum = Heap(stModel.vecFields[0]);
    pstArea->pucChassisSerialNum = Heap(stModel.vecFields[1]);
    pstArea->ppucCustomFields = HeapArray(stModel.vecCustom);
    pstArea->ucCustomFieldCount = static_cast<u8>(stModel.vecCustom.size());
}

inline void FillBoard(FRU_BOARD_INFO_S *pstArea, const AREA_S &stModel)
{
    pstArea->ucFormatVersion = 1U;
    pstArea->ucLanguage = stModel.ucLanguage;
    (void)memcpy(pstArea->aucMfgDateTime, stModel.aucDate, sizeof(stModel.aucDate));
    pstArea->pucBoardMfr = Heap(stModel.vecFields[0]);
    pstArea->pucBoardProductName = Heap(stModel.vecFields[1]);
    pstArea->pucBoardSerialNum = Heap(stModel.vecFields[2]);
    pstArea->pucBoardPartNum = Heap(stModel.vecFields[3]);
    pstArea->pucFRUFileID = Heap(stModel.vecFields[4]);
    pstArea->ppucCustomFields = HeapArray(stModel.vecCustom);
    pstArea->ucCustomFieldCount = static_cast<u8>(stModel.vecCustom.size());
}

inline void FillProduct(FRU_PRODUCT_INFO_S *pstArea, const AREA_S &stModel)
{
    pstArea->ucFormatVersion = 1U;
    pstArea->ucLanguage = stModel.ucLanguage;
    pstArea->pucMfrName = Heap(stModel.vecFields[0]);
    pstArea->pucProductName = Heap(stModel.vecFields[1]);
    pstArea->pucProductPartNum = Heap(stModel.vecFields[2]);
    pstArea->pucProductVersion = Heap(stModel.vecFields[3]);
    pstArea->pucProductSerialNum = Heap(stModel.vecFields[4]);
    pstArea->pucAssetTag = Heap(stModel.vecFields[5]);
    pstArea->pucFRUFileID = Heap(stModel.vecFields[6]);
    pstArea->ppucCustomFields = HeapArray(stModel.vecCustom);
    pstArea->ucCustomFieldCount = static_cast<u8>(stModel.vecCustom.size());
}

inline u8 ZeroSum(const u8 *pucBytes, size_t uiCount)
{
    u32 uiSum = 0;
    for (size_t i = 0; i < uiCount; ++i) {
        uiSum += pucBytes[i];
    }
    return static_cast<u8>(0x100U - (uiSum & 0xFFU));
}

inline void FillMultiRecord(FRU_MULTIRECORD_S *pstEntry, const MULTIRECORD_S &stModel)
{
    pstEntry->ucRecordTypeID = stModel.ucType;
    pstEntry->ucRecordFormat = stModel.ucFormat;
    pstEntry->ucRecordLength = static_cast<u8>(stModel.vecData.size());
    pstEntry->ucRecordChecksum = ZeroSum(stModel.vecData.data(), stModel.vecData.size());
    pstEntry->ucHeaderChecksum = 0U;
    pstEntry->ucHeaderChecksum = ZeroSum(reinterpret_cast<const u8 *>(pstEntry), 5U);
    u8 *pucData = static_cast<u8 *>(malloc(stModel.vecData.size() + 1U));
    (void)memcpy(pucData, stModel.vecData.data(), stModel.vecData.size());
    pstEntry->pucRecordData = pucData;
}

// Into a record that owns nothing. The presence flags are 1, whatever the areas' real offsets will be.
inline void Fill(FRU_DATA_S *pstFRUData, const RECORD_S &stModel)
{
    (void)memset(pstFRUData, 0, sizeof(*pstFRUData));
    pstFRUData->stCommonHeader.ucFormatVersion = 1U;
    if (stModel.optInternal) {
        pstFRUData->stCommonHeader.ucInternalUseAreaStartOffset = 1U;
        pstFRUData->stInternalUseArea.ucFormatVersion = 1U;
        pstFRUData->stInternalUseArea.pucData = Heap(*stModel.optInternal);
    }
    if (stModel.optChassis) {
        pstFRUData->stCommonHeader.ucChassisInfoAreaStartOffset = 1U;
        FillChassis(&pstFRUData->stChassisInfo, *stModel.optChassis);
    }
    if (stModel.optBoard) {
        pstFRUData->stCommonHeader.ucBoardInfoAreaStartOffset = 1U;
        FillBoard(&pstFRUData->stBoardInfo, *stModel.optBoard);
    }
    if (stModel.optProduct) {
        pstFRUData->stCommonHeader.ucProductInfoAreaStartOffset = 1U;
        FillProduct(&pstFRUData->stProductInfo, *stModel.optProduct);
    }
    if (!stModel.vecMultiRecord.empty()) {
        pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset = 1U;
        for (size_t i = 0; i < stModel.vecMultiRecord.size(); ++i) {
            FillMultiRecord(&pstFRUData->astMultiRecord[i], stModel.vecMultiRecord[i]);
        }
    }
}

// ---- record to model; a null text reads as "(null)" ----

inline std::string Str(const void *pText)
{
    return pText == nullptr ? "(null)" : static_cast<const char *>(pText);
}

inline TEXTS Strs(u8 *const *ppucTexts, u32 uiCount)
{
    TEXTS vecTexts;
    for (u32 i = 0; ppucTexts != nullptr && i < uiCount; ++i) {
        vecTexts.push_back(Str(ppucTexts[i]));
    }
    return vecTexts;
}

inline AREA_S ReadChassis(const FRU_CHASSIS_INFO_S &stArea)
{
    AREA_S stModel;
    stModel.strChassisType = Str(stArea.pucChassisType);
    stModel.vecFields = {Str(stArea.pucChassisPartNum), Str(stArea.pucChassisSerialNum)};
    stModel.vecCustom = Strs(stArea.ppucCustomFields, stArea.ucCustomFieldCount);
    return stModel;
}

inline AREA_S ReadBoard(const FRU_BOARD_INFO_S &stArea)
{
    AREA_S stModel;
    stModel.ucLanguage = stArea.ucLanguage;
    (void)memcpy(stModel.aucDate, stArea.aucMfgDateTime, sizeof(stModel.aucDate));
    stModel.vecFields = {Str(stArea.pucBoardMfr), Str(stArea.pucBoardProductName),
                         Str(stArea.pucBoardSerialNum), Str(stArea.pucBoardPartNum),
                         Str(stArea.pucFRUFileID)};
    stModel.vecCustom = Strs(stArea.ppucCustomFields, stArea.ucCustomFieldCount);
    return stModel;
}

inline AREA_S ReadProduct(const FRU_PRODUCT_INFO_S &stArea)
{
    AREA_S stModel;
    stModel.ucLanguage = stArea.ucLanguage;
    stModel.vecFields = {Str(stArea.pucMfrName),          Str(stArea.pucProductName),
                         Str(stArea.pucProductPartNum),   Str(stArea.pucProductVersion),
                         Str(stArea.pucProductSerialNum), Str(stArea.pucAssetTag),
                         Str(stArea.pucFRUFileID)};
    stModel.vecCustom = Strs(stArea.ppucCustomFields, stArea.ucCustomFieldCount);
    return stModel;
}

inline RECORD_S Read(const FRU_DATA_S *pstFRUData)
{
    RECORD_S stModel;
    const FRU_COMMON_HEADER_S &stHeader = pstFRUData->stCommonHeader;
    if (stHeader.ucInternalUseAreaStartOffset != 0U) {
        stModel.optInternal = Str(pstFRUData->stInternalUseArea.pucData);
    }
    if (stHeader.ucChassisInfoAreaStartOffset != 0U) {
        stModel.optChassis = ReadChassis(pstFRUData->stChassisInfo);
    }
    if (stHeader.ucBoardInfoAreaStartOffset != 0U) {
        stModel.optBoard = ReadBoard(pstFRUData->stBoardInfo);
    }
    if (stHeader.ucProductInfoAreaStartOffset != 0U) {
        stModel.optProduct = ReadProduct(pstFRUData->stProductInfo);
    }
    for (const FRU_MULTIRECORD_S &stEntry : pstFRUData->astMultiRecord) {
        const u8 *pucData = stEntry.pucRecordData;
        if (pucData != nullptr) {
            stModel.vecMultiRecord.push_back({stEntry.ucRecordTypeID,
                                              stEntry.ucRecordFormat,
                                              {pucData, pucData + stEntry.ucRecordLength}});
        }
    }
    return stModel;
}

} // namespace model

#endif
