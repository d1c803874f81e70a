// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: the controller's software name, kept once it was had.
#ifndef LIB_FRU_SOFTWARE_NAME_H
#define LIB_FRU_SOFTWARE_NAME_H

#include <pthread.h>

#include "lib_fru_types.h"

#define FRU_SOFTWARE_NAME_LEN 64U
#define FRU_SOFTWARE_NAME_INIT                                                                               \
    {                                                                                                        \
        PTHREAD_MUTEX_INITIALIZER, false, ""                                                                 \
    }

struct SOFTWARE_NAME_S
{
    pthread_mutex_t stLock; // guards the two below
    bool bCached;
    char acName[FRU_SOFTWARE_NAME_LEN]; // written once, before bCached is set
};

// What FRU_GetSoftWareName() does, on a given store.
const char *FRU_SoftWareNameOf(SOFTWARE_NAME_S *pstStore);

#endif
