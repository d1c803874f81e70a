// The store of queued MultiRecords: initialisation, lock, release, destruction.
#include "lib_fru_multirecord_module.h"

#include <cstring>

#include <pthread.h>
#include <time.h>

#include "lib_fru_multirecord.h"

FRU_INNER_MR_STORE_S g_stInnerMRStore;

namespace {

pthread_mutex_t g_stMutex = PTHREAD_MUTEX_INITIALIZER;
u32 g_uiUsers; // threads between enter and leave, under the mutex

// Back to the zero state, once nobody can be waiting on the semaphore.
void ClearStore()
{
    FRU_freeInnerMultiRecords();
    (void)sem_destroy(&g_stInnerMRStore.stSem);
    (void)memset(&g_stInnerMRStore, 0, sizeof(g_stInnerMRStore));
}

} // namespace

void FRU_lockInnerStore(void)
{
    (void)pthread_mutex_lock(&g_stMutex);
}

void FRU_unlockInnerStore(void)
{
    (void)pthread_mutex_unlock(&g_stMutex);
}

u32 FRU_initMultiRecords(void)
{
    if (g_stInnerMRStore.ucInited == 1U) {
        return FRU_OK;
    }
    // A store destroyed under waiting users still has its semaphore, and no records.
    if (g_uiUsers == 0U) {
        (void)memset(&g_stInnerMRStore, 0, sizeof(g_stInnerMRStore));
        if (sem_init(&g_stInnerMRStore.stSem, 0, 0U) != 0) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to create sem for FRU MultiRecords");
            return FRU_ERR_MR_FAILED;
        }
        (void)sem_post(&g_stInnerMRStore.stSem);
    }
    g_stInnerMRStore.ucInited = 1U;
    return FRU_OK;
}

u32 FRU_enterInnerStore(void)
{
    FRU_lockInnerStore();
    const u32 uiRet = FRU_initMultiRecords();
    if (uiRet == FRU_OK) {
        ++g_uiUsers;
    }
    FRU_unlockInnerStore();
    return uiRet;
}

void FRU_leaveInnerStore(void)
{
    FRU_lockInnerStore();
    --g_uiUsers;
    if (g_uiUsers == 0U && g_stInnerMRStore.ucInited != 1U) {
        ClearStore();
    }
    FRU_unlockInnerStore();
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

void FRU_freeInnerMultiRecords(void)
{
    for (u32 i = 0; i < g_stInnerMRStore.ucCount && i < FRU_MULTIRECORD_MAX; ++i) {
        FRU_FREE(g_stInnerMRStore.apstRecords[i]);
    }
    g_stInnerMRStore.ucCount = 0U;
}

void FRU_destroyMultiRecords(void)
{
    FRU_lockInnerStore();
    const bool bInited = g_stInnerMRStore.ucInited == 1U;
    if (bInited) {
        ++g_uiUsers;
    }
    FRU_unlockInnerStore();
    if (!bInited) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "MultiRecords is not inited!");
        return;
    }
    const u32 uiRet = FRU_waitInnerSem(FRU_MR_DESTROY_WAIT_S);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU MultiRecord wait to destroy failed! Ret:%#x.", uiRet);
        FRU_leaveInnerStore();
        return;
    }
    FRU_lockInnerStore();
    FRU_freeInnerMultiRecords();
    g_stInnerMRStore.ucInited = 0U;
    (void)sem_post(&g_stInnerMRStore.stSem); // for those who wait; the last one out destroys it
    FRU_unlockInnerStore();
    FRU_leaveInnerStore();
}
