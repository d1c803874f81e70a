// One record from another service into the store, then a merge of the whole store.
#include "lib_fru_multirecord_module.h"

#include <cstdio>
#include <cstring>

#include "lib_fru_multirecord.h"

namespace {

FRU_INNER_MR_S *AllocateLike(const FRU_INNER_MR_S *pstInner)
{
    void *pBuffer = FRU_MALLOC(FRU_roundMultiRecordSize(FRU_getInnerMultiRecordSize(pstInner)));
    if (pBuffer == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to distribute memory!");
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to do query and update!");
    }
    return static_cast<FRU_INNER_MR_S *>(pBuffer);
}

u32 ReplaceQueued(u32 uiSlot, const FRU_INNER_MR_S *pstInner)
{
    FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[uiSlot];
    const u32 uiSize = FRU_getInnerMultiRecordSize(pstInner);
    // In place where it fits, else into a buffer large enough.
    if (uiSize > FRU_roundMultiRecordSize(FRU_getInnerMultiRecordSize(pstQueued))) {
        FRU_INNER_MR_S *pstLarger = AllocateLike(pstInner);
        if (pstLarger == nullptr) {
            return FRU_ERR_MR_FAILED;
        }
        std::free(pstQueued);
        pstQueued = pstLarger;
        g_stInnerMRStore.apstRecords[uiSlot] = pstQueued;
    }
    (void)memcpy(pstQueued, pstInner, uiSize);
    return FRU_OK;
}

u32 AppendQueued(const FRU_INNER_MR_S *pstInner)
{
    FRU_INNER_MR_S *pstQueued = AllocateLike(pstInner);
    if (pstQueued == nullptr) {
        return FRU_ERR_MR_FAILED;
    }
    (void)memcpy(pstQueued, pstInner, FRU_getInnerMultiRecordSize(pstInner));
    g_stInnerMRStore.apstRecords[g_stInnerMRStore.ucCount] = pstQueued;
    ++g_stInnerMRStore.ucCount;
    return FRU_OK;
}

// The caller holds semaphore and mutex.
void QueueLocked(const FRU_INNER_MR_S *pstInner)
{
    // The store may have been destroyed while this thread waited for it.
    (void)FRU_initMultiRecords();
    // Tested ahead of the search: a full store refuses even what would only replace.
    if (g_stInnerMRStore.ucCount >= FRU_MULTIRECORD_MAX) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "MultiRecords number exceeds: %#x.", FRU_MULTIRECORD_MAX);
        return;
    }
    (void)FRU_queryAndUpdateInnerMultiRecord(pstInner);
}

// Whatever goes wrong here is only logged: the merge that follows decides the result.
void Queue(const FRU_INNER_MR_S *pstInner)
{
    if (FRU_enterInnerStore() != FRU_OK) {
        return;
    }
    if (FRU_waitInnerSem(FRU_MR_USER_WAIT_S) == FRU_OK) {
        FRU_lockInnerStore();
        QueueLocked(pstInner);
        FRU_unlockInnerStore();
        (void)sem_post(&g_stInnerMRStore.stSem);
    }
    FRU_leaveInnerStore();
}

} // namespace

u32 FRU_queryAndUpdateInnerMultiRecord(const FRU_INNER_MR_S *pstInner)
{
    for (u32 i = 0; i < g_stInnerMRStore.ucCount; ++i) {
        const FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[i];
        if (pstQueued == nullptr || pstQueued->ucRecordTypeID != pstInner->ucRecordTypeID) {
            continue;
        }
        if (pstQueued->ucRecordTypeID != FRU_MR_TYPE_MANAGEMENT_ACCESS) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown ucRecordTypeID: %#x.",
                    pstQueued->ucRecordTypeID);
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Fail to query inner record!");
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to do query and update!");
            return FRU_ERR_MR_FAILED;
        }
        const u8 *pucData = FRU_getInnerMultiRecordData(pstQueued);
        if (pucData[0] != FRU_getInnerMultiRecordData(pstInner)[0]) {
            continue;
        }
        if (FRU_isMultiRecordEqual(pstQueued->ucRecordLength, pucData, pstInner)) {
            (void)printf("Inner MultiRecord is equal: typeID:%#x", pstInner->ucRecordTypeID);
            return FRU_OK;
        }
        return ReplaceQueued(i, pstInner);
    }
    return AppendQueued(pstInner);
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
