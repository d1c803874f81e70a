/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, multirecord: the MultiRecord store and its merge.
 *
 * Other services hand single Management Access Records over (IPMI Platform Management FRU Information Storage
 * Definition, section 18.4: system name, system GUID, URLs, ...). Each is queued in an in-memory store of
 * this process; a merge adds every queued record to the MultiRecord area of the main FRU (component type 0,
 * instance 0), or replaces the one of the same sub-type there, and writes the FRU at most once. Records leave
 * the store when the FRU has been written, when it held them already, and on FRU_destroyMultiRecords(); after
 * a failed merge they stay queued for the next one.
 *
 * The store initialises itself. A process-private semaphore guards it: any call may be made from any thread.
 * A merge waits at most 5 seconds for it, an update 5 to queue its record and 5 to merge, a destroy 10,
 * whatever another thread is stuck in meanwhile (a device, its output, its log). A merge that has waited in
 * vain runs all the same, so after a time-out two merges may overlap and the FRU may be read and written by
 * both: the later write wins, and records queued in between may be dropped unwritten. The store's memory
 * stays sound.
 */
#ifndef LIB_FRU_MULTIRECORD_H
#define LIB_FRU_MULTIRECORD_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

#define FRU_MR_TYPE_MANAGEMENT_ACCESS 0x03U
#define FRU_MR_SUBTYPE_SYSTEM_URL 0x01U
#define FRU_MR_SUBTYPE_SYSTEM_NAME 0x02U
#define FRU_MR_SUBTYPE_SYSTEM_PING_ADDRESS 0x03U
#define FRU_MR_SUBTYPE_COMPONENT_URL 0x04U
#define FRU_MR_SUBTYPE_COMPONENT_NAME 0x05U
#define FRU_MR_SUBTYPE_COMPONENT_PING_ADDRESS 0x06U
#define FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID 0x07U
#define FRU_MR_FORMAT_VERSION 0x02U /* low seven bits of a record's format byte */
#define FRU_MR_VALUE_MAX 256U       /* bytes of a value, without its sub-type; see below */
#define FRU_MR_GUID_LEN 16U

#define FRU_MR_CHECK_MEMORY 0U /* pucBuf is FRU_DATA_S.astMultiRecord */
#define FRU_MR_CHECK_EEPROM 1U /* pucBuf is the raw bytes of a MultiRecord area */

/*
 * Validates a list of MultiRecords (same document, section 16): format version, header checksum and record
 * checksum of each, up to the one that bears the end-of-list bit. Nothing is changed.
 *
 * uiCheckType says what pucBuf is. FRU_MR_CHECK_MEMORY: the first of the 64 entries of a record's table.
 * FRU_MR_CHECK_EEPROM: headers, each followed by its data; there is no length argument, so the bytes must
 * reach to the end of the record with the end-of-list bit, or of the 64th record, or of the first faulty one.
 * *puiOutCount becomes the number of records up to and including the last; 0 for an empty list and on
 * failure.
 *
 * 0: valid, or empty, that is the first format byte is not version 2 (and, in memory, the first entry has no
 * data); FRU_ERR_MR_FAILED: not valid, or an unknown uiCheckType, then *puiOutCount is untouched;
 * FRU_ERR_NULL_POINTER, *puiOutCount untouched too.
 *
 * Prints "FRU MultiRecord[Memory] touch the end: N" (or [EEPROM]) to standard output, without a line end.
 */
u32 FRU_checkAllMultiRecords(const u8 *pucBuf, u32 uiCheckType, u32 *puiOutCount);

/*
 * Frees all queued records and takes the store back to its uninitialised state; the next user initialises it
 * anew. When the store is not had within 10 seconds it is left as it is, and the log tells. Threads that are
 * waiting for the store at that moment find it empty and go on: their record is queued into the new store.
 */
void FRU_destroyMultiRecords(void);

/*
 * Queues one record (a queued one of the same sub-type is replaced), then merges the whole store into the
 * main FRU with FRU_syncAllMultiRecords().
 *
 * pstDestParam: type FRU_MR_TYPE_MANAGEMENT_ACCESS; sub-type 1 to 7; uiLength 1 to FRU_MR_VALUE_MAX bytes of
 * value at pucBuf, which is copied.
 * Sub-type 7, the system GUID, takes uiLength 16 and reads 16 bytes at pucBuf whatever uiLength says, least
 * significant byte first; see FRU_ConvertGUIDToStandardOrder().
 *
 * A record's length byte counts value and sub-type, so only values of up to 254 bytes can be stored
 * faithfully. 255 and 256 bytes are accepted, but their length byte wraps to 0 and 1: the former can never be
 * added to a FRU and makes every merge fail until FRU_destroyMultiRecords(); the latter has a record checksum
 * that does not fit its length and makes the MultiRecord area invalid for readers. Do not give them.
 *
 * 0: the merge succeeded. Only the merge decides: when the record itself could not be queued (the store was
 * not had in time, holds 64 records already, or there was no memory), that stands in the log only.
 * FRU_ERR_MR_FAILED: nothing was queued, for a value of 0 or more than 256 bytes, an unknown type or
 * sub-type, or no memory to build the record; or the merge failed, and what was queued stays so.
 * FRU_ERR_NULL_POINTER: pstDestParam or its pucBuf is null.
 *
 * Prints "Inner MultiRecord is equal: typeID:0x3" to standard output, without a line end, when the same
 * record is queued already.
 */
u32 FRU_innerUpdateMultiRecord(const FRU_MR_PARAM_S *pstDestParam);

/*
 * Merges all queued records into the main FRU's MultiRecord area and writes the FRU, once, when that changed
 * anything. An existing area must pass FRU_checkAllMultiRecords(). A record for which the table of 64 has no
 * place is left out, which is no failure.
 *
 * 0: written, or equal already, and the store is empty now; or nothing was queued, and no device was touched.
 * As LIB_FRU_WriteArrayFRUData() does not tell of a device that refused the bytes, such a write counts as
 * done: the log has it. FRU_ERR_MR_FAILED: the store could not be initialised, the FRU not read, the merge
 * not done or the image not encoded; the records stay queued and nothing was written.
 *
 * Prints "There is no need to update FRU MutiRecords data as equal!" to standard output, without a line end,
 * when there was nothing to write.
 */
u32 FRU_syncAllMultiRecords(void);

/*
 * Writes the 16 bytes at pstSrcBuf to pstDestBuf in the order of a System Unique ID record: source bytes
 * 12 13 14 15 10 11 8 9 7 6 5 4 3 2 1 0. From a GUID given least significant byte first (its usual text read
 * backwards) that is the usual stored form: first three groups little-endian, the rest as written. Both may
 * be the same buffer. A null argument is logged and nothing is written.
 */
void FRU_ConvertGUIDToStandardOrder(const u8 *pstSrcBuf, u8 *pstDestBuf);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
