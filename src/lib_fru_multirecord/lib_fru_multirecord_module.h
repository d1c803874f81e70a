// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_multirecord.
#ifndef LIB_FRU_MULTIRECORD_MODULE_H
#define LIB_FRU_MULTIRECORD_MODULE_H

#define FRU_DIAG_FILE "lib_fru_multirecord.c"

#include "common/alloc.h"
#include "common/diag.h"
#include "lib_fru_multirecord.h"
#include "lib_fru_types.h"

#define FRU_MR_FORMAT_MASK 0x7FU
#define FRU_MR_CHECKED_HEADER_LEN 4U // the header checksum covers the bytes ahead of it

#pragma pack(push, 1)
// The head of a queued record. Its data follow in the same heap buffer: sub-type, then value, as
// on the device.
typedef struct
{
    u8 ucRecordTypeID;
    u8 ucRecordFormat;
    u8 ucRecordLength;
    u8 ucRecordChecksum;
    u8 ucHeaderChecksum;
} FRU_INNER_MR_S;
#pragma pack(pop)

using FRU_INNER_MR_BUFFER = std::unique_ptr<FRU_INNER_MR_S, FRU_FREE_DELETER_S>;

// Where a queued record belongs in a FRU table.
typedef enum
{
    FRU_MR_PLACE_NONE,
    FRU_MR_PLACE_FREE,
    FRU_MR_PLACE_SAME,
} FRU_MR_PLACE_E;

// ---- record.cpp: single records ----

// A record's size on the device: header and as many data bytes as its length byte says.
u32 FRU_getInnerMultiRecordSize(const FRU_INNER_MR_S *pstInner);
// What a record of that size occupies.
u32 FRU_roundMultiRecordSize(u32 uiSize);
u8 *FRU_getInnerMultiRecordData(FRU_INNER_MR_S *pstInner);
const u8 *FRU_getInnerMultiRecordData(const FRU_INNER_MR_S *pstInner);
// Whether length bytes and data are equal.
bool FRU_isMultiRecordEqual(u8 ucLength, const u8 *pucData, const FRU_INNER_MR_S *pstInner);

FRU_INNER_MR_S *FRU_generateSingleInnerMultiRecord(const FRU_MR_PARAM_S *pstDestParam);
u32 FRU_addSingleMultiRecord(FRU_MULTIRECORD_S *pstFRUBuf, const FRU_INNER_MR_S *pstInnerBuf);
u32 FRU_updateSingleMultiRecord(FRU_MULTIRECORD_S *pstDataBuf, const FRU_INNER_MR_S *pstInnerBuf);

// ---- update.cpp, sync.cpp ----

// Puts a copy of the record into the store, or replaces the queued one of the same sub-type, and tells what
// became of it. The caller holds the semaphore.
u32 FRU_queryAndUpdateInnerMultiRecord(const FRU_INNER_MR_S *pstInner);

u32 FRU_tellMultiRecordExistFlag(const FRU_MULTIRECORD_S *pstFRUBuf, const FRU_INNER_MR_S *pstInnerBuf,
                                 FRU_MR_PLACE_E *pePlace, u32 *puiIndex);

#endif
