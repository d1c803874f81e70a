/* libbmcfru, diagnostics: dumps, test result, feature list, events, dates. */
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

/*
 * Sets fault bits in the byte that a factory or diagnostic tool collects: 0x20 when the cache status of any
 * FRU device has bit 1 set, 0x04 when any has bit 2 set; an unreadable status sets neither. All other bits
 * stay as they are, and the whole byte when there is no device table. A null pointer is reported.
 */
void LIB_FRU_GetTestResult(u8 *pucTestResultByte);

/*
 * Asks the feature service for its list (waiting at most 2000 ms) and prints one sentence for each item to
 * standard output, without a line end.
 * FRU_OK; FRU_ERR_FAILED: the service did not answer (printed too).
 */
u32 LIB_FRU_GetFeatureInfoList(void);

/*
 * Passes a feature update to the feature service (waiting at most 10000 ms). The 1334 bytes are not looked
 * at. FRU_OK; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_FEATURE: the service refused it or did not answer.
 */
u32 LIB_FRU_UpdateFeatureInfo(const FRU_FEATURE_UPDATE_S *pstUpdateFRUFeatureInfo);

/*
 * Tells the controller that a FRU changed.
 * FRU_ERR_NULL_POINTER, else the RPC service's own result, 0 for success.
 */
u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent);

/*
 * Reads a date, "YYYY-MM-DD" or "YYYY-MM-DD HH:MM:SS" (leading zeros not needed) in the process's time zone,
 * and stores it as the board's manufacturing date, pstFRUData->stBoardInfo.aucMfgDateTime: minutes since
 * 1996-01-01 00:00, least significant byte first (IPMI Platform Management FRU Information Storage
 * Definition, section 11). Seconds are dropped. The time is taken as daylight-saving time in a zone that has
 * such. Fields are not range-checked: month 13 is next January. A date before 1996 stores the low three bytes
 * of a negative count, one after November 2027 the low three bytes of its count.
 * FRU_OK; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: not a date (the record stays as it is).
 */
u32 LIB_FRU_CaclMfgDateTime(const char *pcMfgDate, FRU_DATA_S *pstFRUData);

/*
 * Formats a board manufacturing date, three bytes as above. uiArg is handed to the platform's
 * BMC_TimeStampToIsoTime() as it stands, which decides on the text; pcFormatMfgDate holds at least 32 bytes.
 * FRU_OK; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: the platform could not convert it.
 */
u32 LIB_FRU_FormatMfgDate(const u8 *pucMfgDate, u32 uiArg, char *pcFormatMfgDate);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
