// SPDX-License-Identifier: Apache-2.0
// The store of queued MultiRecords. Nothing is printed and no message made while the mutex is held: either
// may block for ever (a full pipe, a log that is stuck), and the mutex is waited for without a limit.
#include "lib_fru_multirecord/store.h"

#include <cstring>

#include <pthread.h>
#include <time.h>

#include "lib_fru_multirecord/store_state.h"

FRU_INNER_MR_STORE_S g_stInnerMRStore;

namespace {

pthread_mutex_t g_stMutex = PTHREAD_MUTEX_INITIALIZER;
u32 g_uiUsers; // threads between join and quit

void Lock()
{
    (void)pthread_mutex_lock(&g_stMutex);
}

void Unlock()
{
    (void)pthread_mutex_unlock(&g_stMutex);
}

// ---- under the mutex

// Back to the zero state, once nobody can be waiting on the semaphore.
void ClearStore()
{
    FRU_freeInnerMultiRecords();
    (void)sem_destroy(&g_stInnerMRStore.stSem);
    (void)memset(&g_stInnerMRStore, 0, sizeof(g_stInnerMRStore));
}

bool Init()
{
    if (g_stInnerMRStore.ucInited == 1U) {
        return true;
    }
    // A store destroyed under waiting users still has its semaphore, and no records.
    if (g_uiUsers == 0U) {
        (void)memset(&g_stInnerMRStore, 0, sizeof(g_stInnerMRStore));
        if (sem_init(&g_stInnerMRStore.stSem, 0, 0U) != 0) {
            return false;
        }
        (void)sem_post(&g_stInnerMRStore.stSem);
    }
    g_stInnerMRStore.ucInited = 1U;
    return true;
}

// A copy in a buffer of its own, or null.
FRU_INNER_MR_S *Duplicate(const FRU_INNER_MR_S *pstInner)
{
    const u32 uiSize = FRU_getInnerMultiRecordSize(pstInner);
    void *pBuffer = FRU_ZALLOC(FRU_roundMultiRecordSize(uiSize));
    if (pBuffer != nullptr) {
        (void)memcpy(pBuffer, pstInner, uiSize);
    }
    return static_cast<FRU_INNER_MR_S *>(pBuffer);
}

FRU_MR_PUT_E Replace(u32 uiSlot, const FRU_INNER_MR_S *pstInner)
{
    FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[uiSlot];
    const u32 uiSize = FRU_getInnerMultiRecordSize(pstInner);
    // In place where it fits, else in a buffer large enough.
    if (uiSize <= FRU_roundMultiRecordSize(FRU_getInnerMultiRecordSize(pstQueued))) {
        (void)memcpy(pstQueued, pstInner, uiSize);
        return FRU_MR_PUT_QUEUED;
    }
    FRU_INNER_MR_S *pstLarger = Duplicate(pstInner);
    if (pstLarger == nullptr) {
        return FRU_MR_PUT_NO_MEMORY;
    }
    std::free(pstQueued);
    g_stInnerMRStore.apstRecords[uiSlot] = pstLarger;
    return FRU_MR_PUT_QUEUED;
}

FRU_MR_PUT_E Append(const FRU_INNER_MR_S *pstInner)
{
    FRU_INNER_MR_S *pstQueued = Duplicate(pstInner);
    if (pstQueued == nullptr) {
        return FRU_MR_PUT_NO_MEMORY;
    }
    g_stInnerMRStore.apstRecords[g_stInnerMRStore.ucCount] = pstQueued;
    ++g_stInnerMRStore.ucCount;
    return FRU_MR_PUT_QUEUED;
}

FRU_MR_PUT_E Put(const FRU_INNER_MR_S *pstInner)
{
    // Tested ahead of the search: a full store refuses even what would only replace.
    if (g_stInnerMRStore.ucCount >= FRU_MULTIRECORD_MAX) {
        return FRU_MR_PUT_FULL;
    }
    for (u32 i = 0; i < g_stInnerMRStore.ucCount; ++i) {
        const FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[i];
        if (pstQueued == nullptr || pstQueued->ucRecordTypeID != pstInner->ucRecordTypeID) {
            continue;
        }
        if (pstQueued->ucRecordTypeID != FRU_MR_TYPE_MANAGEMENT_ACCESS) {
            return FRU_MR_PUT_UNKNOWN_TYPE;
        }
        const u8 *pucData = FRU_getInnerMultiRecordData(pstQueued);
        if (pucData[0] == FRU_getInnerMultiRecordData(pstInner)[0]) {
            return FRU_isMultiRecordEqual(pstQueued->ucRecordLength, pucData, pstInner)
                       ? FRU_MR_PUT_EQUAL
                       : Replace(i, pstInner);
        }
    }
    return Append(pstInner);
}

// What the queued records occupy, rounding included: a record without data bytes has its sub-type in there.
u32 BytesQueued()
{
    u32 uiBytes = 0;
    for (u32 i = 0; i < g_stInnerMRStore.ucCount; ++i) {
        const FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[i];
        uiBytes +=
            pstQueued == nullptr ? 0U : FRU_roundMultiRecordSize(FRU_getInnerMultiRecordSize(pstQueued));
    }
    return uiBytes;
}

bool Copy(FRU_INNER_MR_COPY_S *pstCopy)
{
    const u32 uiBytes = BytesQueued();
    pstCopy->upBytes.reset(uiBytes == 0U ? nullptr : static_cast<u8 *>(FRU_ZALLOC(uiBytes)));
    if (uiBytes != 0U && pstCopy->upBytes == nullptr) {
        return false;
    }
    u8 *pucNext = pstCopy->upBytes.get();
    pstCopy->uiCount = g_stInnerMRStore.ucCount;
    for (u32 i = 0; i < pstCopy->uiCount; ++i) {
        const FRU_INNER_MR_S *pstQueued = g_stInnerMRStore.apstRecords[i];
        if (pstQueued == nullptr) {
            continue; // an empty slot stays one
        }
        const u32 uiSize = FRU_getInnerMultiRecordSize(pstQueued);
        (void)memcpy(pucNext, pstQueued, uiSize);
        pstCopy->apstRecords[i] = reinterpret_cast<const FRU_INNER_MR_S *>(pucNext);
        pucNext += FRU_roundMultiRecordSize(uiSize);
    }
    return true;
}

// ---- not under the mutex

u32 TellInit(bool bInited)
{
    if (bInited) {
        return FRU_OK;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to create sem for FRU MultiRecords");
    return FRU_ERR_MR_FAILED;
}

} // namespace

void FRU_freeInnerMultiRecords(void)
{
    for (u32 i = 0; i < g_stInnerMRStore.ucCount && i < FRU_MULTIRECORD_MAX; ++i) {
        FRU_FREE(g_stInnerMRStore.apstRecords[i]);
    }
    g_stInnerMRStore.ucCount = 0U;
}

// ---- life and lock

u32 FRU_initMultiRecords(void)
{
    Lock();
    const bool bInited = Init();
    Unlock();
    return TellInit(bInited);
}

u32 FRU_joinInnerStore(void)
{
    Lock();
    const bool bInited = Init();
    g_uiUsers += bInited ? 1U : 0U;
    Unlock();
    return TellInit(bInited);
}

void FRU_quitInnerStore(void)
{
    Lock();
    --g_uiUsers;
    if (g_uiUsers == 0U && g_stInnerMRStore.ucInited != 1U) {
        ClearStore();
    }
    Unlock();
}

u32 FRU_waitInnerSem(u32 uiSeconds)
{
    struct timespec stDeadline = {};
    if (clock_gettime(CLOCK_REALTIME, &stDeadline) != 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to get current time!");
        return FRU_ERR_MR_FAILED;
    }
    stDeadline.tv_sec += static_cast<time_t>(uiSeconds);
    // An interruption by a signal counts as a time-out: it is not waited for again.
    if (sem_timedwait(&g_stInnerMRStore.stSem, &stDeadline) != 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU Inner sem timeout: %#x", uiSeconds);
        return FRU_ERR_MR_TIMEOUT;
    }
    return FRU_OK;
}

FRU_MR_STAY_E FRU_enterInnerStore(u32 uiSeconds)
{
    if (FRU_joinInnerStore() != FRU_OK) {
        return FRU_MR_STAY_NONE;
    }
    return FRU_waitInnerSem(uiSeconds) == FRU_OK ? FRU_MR_STAY_HELD : FRU_MR_STAY_NOT_HELD;
}

void FRU_leaveInnerStore(bool bPost)
{
    if (bPost) {
        (void)sem_post(&g_stInnerMRStore.stSem);
    }
    FRU_quitInnerStore();
}

void FRU_destroyMultiRecords(void)
{
    Lock();
    const bool bInited = g_stInnerMRStore.ucInited == 1U;
    g_uiUsers += bInited ? 1U : 0U;
    Unlock();
    if (!bInited) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "MultiRecords is not inited!");
        return;
    }
    const u32 uiRet = FRU_waitInnerSem(FRU_MR_DESTROY_WAIT_S);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU MultiRecord wait to destroy failed! Ret:%#x.", uiRet);
        FRU_leaveInnerStore(false);
        return;
    }
    Lock();
    FRU_freeInnerMultiRecords();
    g_stInnerMRStore.ucInited = 0U;
    Unlock();
    FRU_leaveInnerStore(true); // posts for those who wait; the last one out destroys the semaphore
}

// ---- records

FRU_MR_PUT_E FRU_putInnerMultiRecord(const FRU_INNER_MR_S *pstInner)
{
    Lock();
    // The store may have been destroyed while this thread waited for it; its semaphore is still there.
    (void)Init();
    const FRU_MR_PUT_E ePut = Put(pstInner);
    Unlock();
    return ePut;
}

u32 FRU_countInnerMultiRecords(void)
{
    Lock();
    const u32 uiCount = g_stInnerMRStore.ucCount;
    Unlock();
    return uiCount;
}

bool FRU_copyInnerMultiRecords(FRU_INNER_MR_COPY_S *pstCopy)
{
    Lock();
    const bool bCopied = Copy(pstCopy);
    Unlock();
    if (!bCopied) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to distribute memory");
    }
    return bCopied;
}

void FRU_emptyInnerStore(void)
{
    Lock();
    FRU_freeInnerMultiRecords();
    Unlock();
}
