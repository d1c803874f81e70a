// SPDX-License-Identifier: Apache-2.0
// One record from another service into the store, then a merge of the whole store.
#include "lib_fru_multirecord/lib_fru_multirecord_module.h"

#include <cstdio>

#include "lib_fru_multirecord/store.h"

namespace {

// Whatever goes wrong here is only logged: the merge that follows decides the result.
void Queue(const FRU_INNER_MR_S *pstInner)
{
    const FRU_MR_STAY_E eStay = FRU_enterInnerStore(FRU_MR_USER_WAIT_S);
    if (eStay == FRU_MR_STAY_NONE) {
        return;
    }
    if (eStay == FRU_MR_STAY_HELD) {
        (void)FRU_queryAndUpdateInnerMultiRecord(pstInner);
    }
    FRU_leaveInnerStore(eStay == FRU_MR_STAY_HELD);
}

} // namespace

u32 FRU_queryAndUpdateInnerMultiRecord(const FRU_INNER_MR_S *pstInner)
{
    switch (FRU_putInnerMultiRecord(pstInner)) {
    case FRU_MR_PUT_QUEUED:
        return FRU_OK;
    case FRU_MR_PUT_EQUAL:
        (void)printf("Inner MultiRecord is equal: typeID:%#x", pstInner->ucRecordTypeID);
        return FRU_OK;
    case FRU_MR_PUT_FULL:
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "MultiRecords number exceeds: %#x.", FRU_MULTIRECORD_MAX);
        return FRU_ERR_MR_FAILED;
    case FRU_MR_PUT_UNKNOWN_TYPE:
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown ucRecordTypeID: %#x.", pstInner->ucRecordTypeID);
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to query inner record!");
        break;
    case FRU_MR_PUT_NO_MEMORY:
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to distribute memory!");
        break;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to do query and update!");
    return FRU_ERR_MR_FAILED;
}

u32 FRU_innerUpdateMultiRecord(const FRU_MR_PARAM_S *pstDestParam)
{
    FRU_REQUIRE(pstDestParam, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstDestParam->pucBuf, FRU_ERR_NULL_POINTER);
    if (pstDestParam->uiLength == 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Illegal field param!");
        return FRU_ERR_MR_FAILED;
    }
    FRU_INNER_MR_BUFFER upRecord(FRU_generateSingleInnerMultiRecord(pstDestParam));
    if (upRecord == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to generate one record!");
        return FRU_ERR_MR_FAILED;
    }
    Queue(upRecord.get());
    upRecord.reset();
    const u32 uiRet = FRU_syncAllMultiRecords();
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Sync All MultiRecords failed! Ret:%#x.", uiRet);
        return FRU_ERR_MR_FAILED;
    }
    return FRU_OK;
}
