// SPDX-License-Identifier: Apache-2.0
// Private to store.cpp, and to the tests that look behind the store's door.
#ifndef LIB_FRU_MULTIRECORD_STORE_STATE_H
#define LIB_FRU_MULTIRECORD_STORE_STATE_H

#include <semaphore.h>

#include "lib_fru_multirecord/store.h"

// Not packed: it holds a semaphore.
typedef struct
{
    u8 ucInited;
    u8 ucCount;
    FRU_INNER_MR_S *apstRecords[FRU_MULTIRECORD_MAX]; // in the order in which they were queued
    sem_t stSem;                                      // 1: free
} FRU_INNER_MR_STORE_S;

extern FRU_INNER_MR_STORE_S g_stInnerMRStore;

// FRU_OK, or FRU_ERR_MR_FAILED, which is reported.
u32 FRU_initMultiRecords(void);

// FRU_OK; FRU_ERR_MR_TIMEOUT; FRU_ERR_MR_FAILED: no clock. Both are reported.
u32 FRU_waitInnerSem(u32 uiSeconds);

// The caller holds the mutex.
void FRU_freeInnerMultiRecords(void);

// One more user, of an initialised store, and one fewer; the semaphore lives until the last one is gone.
u32 FRU_joinInnerStore(void);
void FRU_quitInnerStore(void);

#endif
