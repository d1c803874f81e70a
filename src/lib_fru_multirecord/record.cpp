// SPDX-License-Identifier: Apache-2.0
// Single MultiRecords: built from a caller's value, copied into a FRU table.
#include "lib_fru_multirecord/lib_fru_multirecord_module.h"

#include <algorithm>
#include <cstring>

namespace {

// Where each byte of the stored order comes from.
constexpr u8 g_aucGuidSource[FRU_MR_GUID_LEN] = {12, 13, 14, 15, 10, 11, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0};

static_assert(sizeof(FRU_INNER_MR_S) == FRU_MULTIRECORD_HEADER_LEN);
static_assert(offsetof(FRU_MULTIRECORD_S, pucRecordData) == FRU_MULTIRECORD_HEADER_LEN);

bool IsParamValid(const FRU_MR_PARAM_S *pstDestParam)
{
    if (pstDestParam->ucRecordTypeID != FRU_MR_TYPE_MANAGEMENT_ACCESS) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown MultiRecord type: %#x",
                pstDestParam->ucRecordTypeID);
        return false;
    }
    // 256 itself passes, although its length byte wraps: the interface has it so.
    if (pstDestParam->uiLength > FRU_MR_VALUE_MAX) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Invalid length! exceeds: %#x.", pstDestParam->uiLength);
        return false;
    }
    if (pstDestParam->ucSubType == 0U || pstDestParam->ucSubType > FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown MultiRecord SubType: %#x", pstDestParam->ucSubType);
        return false;
    }
    return true;
}

} // namespace

u32 FRU_getInnerMultiRecordSize(const FRU_INNER_MR_S *pstInner)
{
    return FRU_MULTIRECORD_HEADER_LEN + pstInner->ucRecordLength;
}

u32 FRU_roundMultiRecordSize(u32 uiSize)
{
    return (uiSize + 3U) & ~3U;
}

u8 *FRU_getInnerMultiRecordData(FRU_INNER_MR_S *pstInner)
{
    return reinterpret_cast<u8 *>(pstInner) + FRU_MULTIRECORD_HEADER_LEN;
}

const u8 *FRU_getInnerMultiRecordData(const FRU_INNER_MR_S *pstInner)
{
    return reinterpret_cast<const u8 *>(pstInner) + FRU_MULTIRECORD_HEADER_LEN;
}

bool FRU_isMultiRecordEqual(u8 ucLength, const u8 *pucData, const FRU_INNER_MR_S *pstInner)
{
    return ucLength == pstInner->ucRecordLength &&
           memcmp(pucData, FRU_getInnerMultiRecordData(pstInner), ucLength) == 0;
}

void FRU_ConvertGUIDToStandardOrder(const u8 *pstSrcBuf, u8 *pstDestBuf)
{
    FRU_REQUIRE_OR_LEAVE(pstSrcBuf);
    FRU_REQUIRE_OR_LEAVE(pstDestBuf);
    u8 aucOrdered[FRU_MR_GUID_LEN];
    for (u32 i = 0; i < FRU_MR_GUID_LEN; ++i) {
        aucOrdered[i] = pstSrcBuf[g_aucGuidSource[i]];
    }
    (void)memcpy(pstDestBuf, aucOrdered, sizeof(aucOrdered));
}

FRU_INNER_MR_S *FRU_generateSingleInnerMultiRecord(const FRU_MR_PARAM_S *pstDestParam)
{
    // Allocated ahead of the checks; a length that they will refuse claims no more than the largest record. A
    // length that wraps the size to 0 never gets to the checks: the allocation guard refuses it.
    const u32 uiLength = pstDestParam->uiLength;
    const bool bWraps = FRU_roundMultiRecordSize(FRU_MULTIRECORD_HEADER_LEN + uiLength) == 0U;
    const u32 uiValueLen = std::min(uiLength, FRU_MR_VALUE_MAX);
    const u32 uiRoom = std::max(uiValueLen, FRU_MR_GUID_LEN); // a GUID is written whole, whatever its length
    const u32 uiSize = FRU_roundMultiRecordSize(FRU_MULTIRECORD_HEADER_LEN + 1U + uiRoom);
    FRU_INNER_MR_BUFFER upRecord(static_cast<FRU_INNER_MR_S *>(FRU_ZALLOC(bWraps ? 0U : uiSize)));
    if (upRecord == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to distribute memory!");
        return nullptr;
    }
    if (!IsParamValid(pstDestParam)) {
        return nullptr;
    }
    u8 *pucData = FRU_getInnerMultiRecordData(upRecord.get());
    pucData[0] = pstDestParam->ucSubType;
    if (pstDestParam->ucSubType == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID) {
        FRU_ConvertGUIDToStandardOrder(pstDestParam->pucBuf, pucData + 1);
    } else {
        (void)memcpy(pucData + 1, pstDestParam->pucBuf, uiValueLen);
    }
    upRecord->ucRecordTypeID = pstDestParam->ucRecordTypeID;
    upRecord->ucRecordFormat = FRU_MR_FORMAT_VERSION;
    upRecord->ucRecordLength = static_cast<u8>(uiValueLen + 1U);
    // Over the full count, not over what the length byte keeps of it: the interface has it so.
    upRecord->ucRecordChecksum = BMC_CalcZeroCheckSum(pucData, uiValueLen + 1U);
    upRecord->ucHeaderChecksum =
        BMC_CalcZeroCheckSum(reinterpret_cast<const u8 *>(upRecord.get()), FRU_MR_CHECKED_HEADER_LEN);
    return upRecord.release();
}

u32 FRU_addSingleMultiRecord(FRU_MULTIRECORD_S *pstFRUBuf, const FRU_INNER_MR_S *pstInnerBuf)
{
    FRU_REQUIRE(pstFRUBuf, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstInnerBuf, FRU_ERR_NULL_POINTER);
    // A value of 255 bytes has the length byte 0 and ends in the guard.
    u8 *pucData = static_cast<u8 *>(FRU_ZALLOC(FRU_roundMultiRecordSize(pstInnerBuf->ucRecordLength)));
    if (pucData == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to distribute memory");
        return FRU_ERR_MR_FAILED;
    }
    (void)memcpy(pucData, FRU_getInnerMultiRecordData(pstInnerBuf), pstInnerBuf->ucRecordLength);
    (void)memcpy(pstFRUBuf, pstInnerBuf, FRU_MULTIRECORD_HEADER_LEN);
    pstFRUBuf->pucRecordData = pucData;
    return FRU_OK;
}

u32 FRU_updateSingleMultiRecord(FRU_MULTIRECORD_S *pstDataBuf, const FRU_INNER_MR_S *pstInnerBuf)
{
    FRU_REQUIRE(pstDataBuf, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstDataBuf->pucRecordData, FRU_ERR_NULL_POINTER);
    u8 *pucData = pstDataBuf->pucRecordData;
    // The entry's buffer holds just what its length byte says; longer data need a larger one.
    if (pstInnerBuf->ucRecordLength > pstDataBuf->ucRecordLength) {
        u8 *pucLarger = static_cast<u8 *>(FRU_ZALLOC(FRU_roundMultiRecordSize(pstInnerBuf->ucRecordLength)));
        if (pucLarger == nullptr) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to distribute memory");
            return FRU_ERR_MR_FAILED;
        }
        FRU_FREE(pucData);
        pucData = pucLarger;
        pstDataBuf->pucRecordData = pucData;
    }
    (void)memcpy(pstDataBuf, pstInnerBuf, FRU_MULTIRECORD_HEADER_LEN);
    (void)memcpy(pucData, FRU_getInnerMultiRecordData(pstInnerBuf), pstInnerBuf->ucRecordLength);
    return FRU_OK;
}
