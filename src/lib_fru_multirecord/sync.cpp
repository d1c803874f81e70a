// SPDX-License-Identifier: Apache-2.0
// The merge of all queued records into the main FRU's MultiRecord table, and its write.
#include "lib_fru_multirecord/lib_fru_multirecord_module.h"

#include <cstdio>

#include "lib_fru_access.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_codec.h"
#include "lib_fru_multirecord/store.h"

namespace {

enum class MERGE_E
{
    FAILED,
    CHANGED,
    EQUAL,
    NOTHING, // the queue was emptied while the FRU was read
};

void SetFormat(FRU_MULTIRECORD_S *pstEntry, u32 uiFormat)
{
    pstEntry->ucRecordFormat = static_cast<u8>(uiFormat);
    pstEntry->ucHeaderChecksum =
        BMC_CalcZeroCheckSum(reinterpret_cast<const u8 *>(pstEntry), FRU_MR_CHECKED_HEADER_LEN);
}

u32 CheckTable(const FRU_DATA_S *pstFRUData)
{
    u32 uiCount = 0;
    return FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(pstFRUData->astMultiRecord),
                                    FRU_MR_CHECK_MEMORY, &uiCount);
}

// The FRU has no MultiRecord area yet: it gets one with all queued records, in their order.
MERGE_E MergeIntoNewArea(const FRU_INNER_MR_COPY_S &stQueued, FRU_DATA_S *pstFRUData)
{
    pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset = FRU_AREA_PRESENT;
    for (u32 i = 0; i < stQueued.uiCount; ++i) {
        if (FRU_addSingleMultiRecord(&pstFRUData->astMultiRecord[i], stQueued.apstRecords[i]) != FRU_OK) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to add MultiRecord! index:%d.", i);
            return MERGE_E::FAILED;
        }
    }
    FRU_MULTIRECORD_S *pstLast = &pstFRUData->astMultiRecord[stQueued.uiCount - 1U];
    SetFormat(pstLast, pstLast->ucRecordFormat | FRU_MULTIRECORD_END_OF_LIST);
    return CheckTable(pstFRUData) == FRU_OK ? MERGE_E::CHANGED : MERGE_E::FAILED;
}

// Merges one queued record; not 0: the merge is over.
u32 MergeRecord(FRU_DATA_S *pstFRUData, const FRU_INNER_MR_S *pstInner, bool *pbChanged)
{
    FRU_MR_PLACE_E ePlace = FRU_MR_PLACE_NONE;
    u32 uiIndex = 0;
    if (FRU_tellMultiRecordExistFlag(pstFRUData->astMultiRecord, pstInner, &ePlace, &uiIndex) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Tell the position and exist flag failed.");
        return FRU_ERR_MR_FAILED;
    }
    if (ePlace == FRU_MR_PLACE_NONE) {
        return FRU_OK; // left out, not a failure: the table is full
    }
    FRU_MULTIRECORD_S *pstEntry = &pstFRUData->astMultiRecord[uiIndex];
    if (ePlace == FRU_MR_PLACE_SAME &&
        FRU_isMultiRecordEqual(pstEntry->ucRecordLength, pstEntry->pucRecordData, pstInner)) {
        return FRU_OK;
    }
    const u32 uiRet = ePlace == FRU_MR_PLACE_SAME ? FRU_updateSingleMultiRecord(pstEntry, pstInner)
                                                  : FRU_addSingleMultiRecord(pstEntry, pstInner);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Err happen while updating, return!");
        return uiRet;
    }
    *pbChanged = true;
    return FRU_OK;
}

// Of all entries with data only the last bears the end-of-list bit.
void RenewMarks(FRU_DATA_S *pstFRUData)
{
    u32 uiUsed = 0;
    for (; uiUsed < FRU_MULTIRECORD_MAX && pstFRUData->astMultiRecord[uiUsed].pucRecordData != nullptr;
         ++uiUsed) {
        FRU_MULTIRECORD_S *pstEntry = &pstFRUData->astMultiRecord[uiUsed];
        SetFormat(pstEntry, pstEntry->ucRecordFormat & FRU_MR_FORMAT_MASK);
    }
    if (uiUsed != 0U) {
        FRU_MULTIRECORD_S *pstLast = &pstFRUData->astMultiRecord[uiUsed - 1U];
        SetFormat(pstLast, pstLast->ucRecordFormat | FRU_MULTIRECORD_END_OF_LIST);
    }
}

MERGE_E MergeIntoExistingArea(const FRU_INNER_MR_COPY_S &stQueued, FRU_DATA_S *pstFRUData)
{
    if (CheckTable(pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Check multirecords failed.");
        return MERGE_E::FAILED;
    }
    bool bChanged = false;
    for (u32 i = 0; i < stQueued.uiCount; ++i) {
        if (MergeRecord(pstFRUData, stQueued.apstRecords[i], &bChanged) != FRU_OK) {
            return MERGE_E::FAILED;
        }
    }
    // What was merged is not checked again, unlike a new area.
    RenewMarks(pstFRUData);
    if (!bChanged) {
        (void)printf("There is no need to update FRU MutiRecords data as equal!");
        return MERGE_E::EQUAL;
    }
    return MERGE_E::CHANGED;
}

// Merges from a copy: its messages and prints may take any time, and others use the store meanwhile.
MERGE_E MergeQueued(FRU_DATA_S *pstFRUData)
{
    FRU_INNER_MR_COPY_S stQueued = {};
    if (!FRU_copyInnerMultiRecords(&stQueued)) {
        return MERGE_E::FAILED;
    }
    if (stQueued.uiCount == 0U) {
        return MERGE_E::NOTHING;
    }
    return pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset == 0U
               ? MergeIntoNewArea(stQueued, pstFRUData)
               : MergeIntoExistingArea(stQueued, pstFRUData);
}

// Reads, merges and writes; the record's buffers are the caller's to release.
u32 ReadMergeWrite(FRU_DATA_S *pstFRUData)
{
    u32 uiRet = LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN,
                                   FRU_READ_ARG_USUAL, pstFRUData);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to get fru data! Ret:%#x.", uiRet);
        return FRU_ERR_MR_FAILED;
    }
    const MERGE_E eMerge = MergeQueued(pstFRUData);
    if (eMerge == MERGE_E::FAILED) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to sync FRU MultiRecords data!");
        return FRU_ERR_MR_FAILED;
    }
    if (eMerge == MERGE_E::CHANGED) {
        uiRet = LIB_FRU_WriteArrayFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, pstFRUData,
                                          FRU_WRITE_ARG_USUAL);
        if (uiRet != FRU_OK) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to create FRU bin data! Ret:%#x.", uiRet);
            return FRU_ERR_MR_FAILED;
        }
    }
    return FRU_OK;
}

u32 SyncQueued()
{
    if (FRU_countInnerMultiRecords() == 0U) {
        return FRU_OK;
    }
    FRU_DATA_S stFRUData = {};
    const u32 uiRet = ReadMergeWrite(&stFRUData);
    FRU_ANALYZER_SafeFree(&stFRUData);
    if (uiRet == FRU_OK) {
        FRU_emptyInnerStore();
    }
    return uiRet;
}

} // namespace

u32 FRU_tellMultiRecordExistFlag(const FRU_MULTIRECORD_S *pstFRUBuf, const FRU_INNER_MR_S *pstInnerBuf,
                                 FRU_MR_PLACE_E *pePlace, u32 *puiIndex)
{
    FRU_REQUIRE(pstInnerBuf, FRU_ERR_NULL_POINTER);
    *pePlace = FRU_MR_PLACE_NONE;
    for (u32 k = 0; k < FRU_MULTIRECORD_MAX; ++k) {
        *puiIndex = k;
        const u8 *pucData = pstFRUBuf[k].pucRecordData;
        if (pucData == nullptr) {
            *pePlace = FRU_MR_PLACE_FREE;
            return FRU_OK;
        }
        if (pstFRUBuf[k].ucRecordTypeID != pstInnerBuf->ucRecordTypeID) {
            continue;
        }
        if (pstFRUBuf[k].ucRecordTypeID != FRU_MR_TYPE_MANAGEMENT_ACCESS) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown ucRecordTypeID: %#x",
                    pstFRUBuf[k].ucRecordTypeID);
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Err while comparing: index:%d.", k);
            return FRU_ERR_MR_FAILED;
        }
        // An entry without data bytes has no sub-type.
        if (pstFRUBuf[k].ucRecordLength != 0U && pucData[0] == FRU_getInnerMultiRecordData(pstInnerBuf)[0]) {
            *pePlace = FRU_MR_PLACE_SAME;
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Not enough space to add MultiRecord: ucRecIndex:%d.",
            FRU_MULTIRECORD_MAX);
    return FRU_OK;
}

u32 FRU_syncAllMultiRecords(void)
{
    // Only a store that cannot be initialised ends it: after a time-out the merge runs anyway, and posts like
    // a holder would. Intended.
    if (FRU_enterInnerStore(FRU_MR_USER_WAIT_S) == FRU_MR_STAY_NONE) {
        return FRU_ERR_MR_FAILED;
    }
    const u32 uiRet = SyncQueued();
    FRU_leaveInnerStore(true);
    return uiRet;
}
