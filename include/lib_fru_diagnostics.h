/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, diagnostics: dumps and test result, for engineers and their tools. */
#ifndef LIB_FRU_DIAGNOSTICS_H
#define LIB_FRU_DIAGNOSTICS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Dumps to standard output, for engineers. Nothing is changed or kept; a null pointer is reported and nothing
 * printed.
 */

/* Prints usLength bytes in hexadecimal, 16 a line. Length 0 prints nothing. */
void FRU_DebugBuf(const u8 *pucBuf, u16 usLength);

/*
 * Prints a decoded record: the area offsets of its common header and, for each of chassis, board and product
 * whose offset is not 0, versions, lengths, texts and the number of custom fields. An absent text prints as
 * "(null)". File IDs, the custom fields themselves and MultiRecords are not printed.
 */
void FRU_DebugData(const FRU_DATA_S *pstFRUData);

/* Prints the 32-byte hardware FRU block, board half and diagnostic half. */
void FRU_DebugHWData(const FRU_HW_DATA_S *pstHWData);

#define FRU_TEST_RESULT_FAULT_1 0x20U /* a device's cache status has FRU_CACHE_FAULT_1 */
#define FRU_TEST_RESULT_FAULT_2 0x04U /* a device's cache status has FRU_CACHE_FAULT_2 */

/*
 * Sets these bits in the byte that a factory or diagnostic tool collects, by the cache status of all FRU
 * devices; an unreadable status sets neither. All other bits stay as they are, and the whole byte when there
 * is no device table. A null pointer is reported.
 */
void LIB_FRU_GetTestResult(u8 *pucTestResultByte);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
