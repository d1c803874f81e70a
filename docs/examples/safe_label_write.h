/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Label writes that no power cut and no kill leaves half done: LIB_FRU_WriteElectronicLabel() between an
 * entry in a journal of your own and its removal, and a repair at start. docs/interrupted-writes.md tells why
 * it is done in this order.
 *
 * One change at a time in the whole controller: the caller holds its writers' lock around each of these
 * calls.
 */
#ifndef SAFE_LABEL_WRITE_H
#define SAFE_LABEL_WRITE_H

#include "lib_fru.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The largest page of your EEPROMs. A page that was being programmed when the power went may hold anything.
 */
#define SAFE_PAGE_MAX 128U

/* Room that the journal needs for a change of a FRU of that many bytes. */
#define SAFE_JOURNAL_ROOM(uiFRUSize) (256U + 2U * (uiFRUSize))

/*
 * The journal's storage: room for one entry where it outlives a power cut, such as two flash sectors or a
 * file in flash. Results are 0 for success. pContext is handed through.
 */
typedef struct
{
    /* Stores the entry, from the storage's first byte on, in place of what was there. Once this has returned
     * 0 the entry is there for good. A cut inside it may leave any part: the entry has a checksum. */
    u32 (*pfnStore)(void *pContext, const u8 *pucEntry, u32 uiLength);
    /* Reads uiLength bytes from uiOffset on. Where nothing is stored, and in an empty or missing storage,
     * bytes of any value are right. Not 0 only when the storage does not answer. */
    u32 (*pfnLoad)(void *pContext, u32 uiOffset, u8 *pucOut, u32 uiLength);
    /* Makes the entry invalid; its first four bytes are enough. An empty storage is a success. */
    u32 (*pfnErase)(void *pContext);
    void *pContext;
} SAFE_JOURNAL_S;

/* Results besides 0 and the library's own codes. */
#define SAFE_ERR_JOURNAL 1U /* the journal does not answer; the device was not touched */
#define SAFE_ERR_DEVICE                                                                                      \
    2U /* the chip does not answer with its whole image, or the device has none; as above */
#define SAFE_ERR_DAMAGED 3U /* the image on the chip is not whole: restore it first; as above */
#define SAFE_ERR_CACHE 4U   /* the database does not take the device's cache records; as above */
#define SAFE_ERR_REFUSED 5U /* the chip did not keep the new image; the old one is in force, whole */
#define SAFE_ERR_PENDING 6U /* the entry is still there: call RepairAtStart() again */
#define SAFE_ERR_FOREIGN 7U /* the chip holds something else than the change: left alone, the entry stays */

/*
 * LIB_FRU_WriteElectronicLabel() with the same block. Repairs first what an earlier change left.
 * 0: the new image is on the chip and in the cache, byte for byte the same, and the cache is trusted.
 * FRU_ERR_ and LIB_FRU_ERR_ codes: nothing changed. The block's outputs are filled when the library's call
 * was made.
 */
u32 WriteLabelSafely(const SAFE_JOURNAL_S *pstJournal, FRU_SET_PARA_S *pstPara);

/*
 * Finishes or undoes the change that the journal holds. Call it at every start, once the device records are
 * in the database and before anyone else reads or writes FRU data. 0: there is no entry (any more); chip and
 * cache of its device hold the old or the new image, whole.
 */
u32 RepairAtStart(const SAFE_JOURNAL_S *pstJournal);

#ifdef __cplusplus
}
#endif

#endif
