// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_multirecord: the door of the store of queued records.
//
// Two locks guard the store. The semaphore is waited for with a time limit and held through a whole update or
// merge; after a time-out there may be more than one holder. A mutex behind the door is held only while the
// store's members are looked at or changed: never across a wait, a device access, a print or a message. So
// whatever a holder is stuck in, nobody waits for it longer than the semaphore's limit.
#ifndef LIB_FRU_MULTIRECORD_STORE_H
#define LIB_FRU_MULTIRECORD_STORE_H

#include "lib_fru_multirecord/lib_fru_multirecord_module.h"

#define FRU_MR_USER_WAIT_S 5U
#define FRU_MR_DESTROY_WAIT_S 10U

typedef enum
{
    FRU_MR_STAY_NONE,     // the store could not be initialised; there is nothing to leave
    FRU_MR_STAY_NOT_HELD, // the semaphore was not had in time
    FRU_MR_STAY_HELD,
} FRU_MR_STAY_E;

// Initialises the store where needed and waits for it; failures are reported. Whoever was let in leaves
// again. A destroy on another thread empties the store at once, but leaves the semaphore to those who
// are inside.
FRU_MR_STAY_E FRU_enterInnerStore(u32 uiSeconds);
void FRU_leaveInnerStore(bool bPost);

typedef enum
{
    FRU_MR_PUT_QUEUED, // or replaced the queued one of the same sub-type
    FRU_MR_PUT_EQUAL,  // queued already
    FRU_MR_PUT_FULL,
    FRU_MR_PUT_UNKNOWN_TYPE, // the same as a queued one's, and not to be compared
    FRU_MR_PUT_NO_MEMORY,
} FRU_MR_PUT_E;

// Puts a copy of the record into the store. The caller tells what became of it.
FRU_MR_PUT_E FRU_putInnerMultiRecord(const FRU_INNER_MR_S *pstInner);

u32 FRU_countInnerMultiRecords(void);

// The queued records at one moment, to be read in peace.
struct FRU_INNER_MR_COPY_S
{
    u32 uiCount;
    const FRU_INNER_MR_S *apstRecords[FRU_MULTIRECORD_MAX]; // in upBytes, in the order of the queue
    FRU_BUFFER upBytes;
};

// False: no memory, which is reported. *pstCopy is the caller's, cleared before.
bool FRU_copyInnerMultiRecords(FRU_INNER_MR_COPY_S *pstCopy);

// Releases every queued record.
void FRU_emptyInnerStore(void);

#endif
