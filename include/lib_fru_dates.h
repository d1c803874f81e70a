/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, dates: the board's manufacturing date, three bytes <-> text. */
#ifndef LIB_FRU_DATES_H
#define LIB_FRU_DATES_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The date bytes 00 00 00 in Unix time: 1996-01-01 00:00:00 UTC (in the process's time zone for texts). */
#define FRU_MFG_EPOCH 820454400U

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
