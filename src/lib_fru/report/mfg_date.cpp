// SPDX-License-Identifier: Apache-2.0
// Board manufacturing date: three bytes that count minutes since 1996-01-01 00:00 <-> text.
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "lib_fru/lib_fru_module.h"
#include "lib_fru_dates.h"

namespace {

constexpr u32 g_uiSecondsPerMinute = 60U;
constexpr int g_iDateFields = 3;
constexpr int g_iDateTimeFields = 6;

// Subtraction that wraps: the fields come from outside unchecked.
int Minus(int iValue, u32 uiSubtrahend)
{
    return static_cast<int>(static_cast<u32>(iValue) - uiSubtrahend);
}

// Whether the process's time zone has daylight saving on any of the days that are looked at, two a year from
// 1970 to 2038. The C library's own word for it (daylight) changes with the last date that was converted.
bool KnowsDaylightSaving()
{
    constexpr time_t iHalfYear = 15778476; // of 365.2425 days
    constexpr time_t iLast = 2145916800;   // 2038-01-01, the last new year of a 32-bit clock
    for (time_t iWhen = iLast; iWhen >= 0; iWhen -= iHalfYear) {
        struct tm stLocal = {};
        if (localtime_r(&iWhen, &stLocal) != nullptr && stLocal.tm_isdst > 0) {
            return true;
        }
    }
    return false;
}

// mktime() with the daylight-saving flag set. In a zone that knows no daylight saving the flag has no
// meaning: older C libraries ignore it there, newer ones shift by an hour, this library ignores it.
time_t LocalTime(const struct tm &stFields)
{
    struct tm stDaylight = stFields;
    stDaylight.tm_isdst = 1;
    const time_t iDaylight = mktime(&stDaylight);
    struct tm stStandard = stFields;
    stStandard.tm_isdst = 0;
    const time_t iStandard = mktime(&stStandard);
    if (iDaylight == iStandard || stDaylight.tm_isdst > 0 || KnowsDaylightSaving()) {
        return iDaylight;
    }
    return iStandard;
}

} // namespace

u32 LIB_FRU_CaclMfgDateTime(const char *pcMfgDate, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pcMfgDate, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstFRUData, FRU_ERR_NULL_POINTER);
    struct tm stFields = {};
    // NOLINTNEXTLINE(cert-err34-c): what sscanf takes for a number is the interface
    const int iRet = sscanf(pcMfgDate, "%d-%d-%d %d:%d:%d", &stFields.tm_year, &stFields.tm_mon,
                            &stFields.tm_mday, &stFields.tm_hour, &stFields.tm_min, &stFields.tm_sec);
    if (iRet != g_iDateFields && iRet != g_iDateTimeFields) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Sscanf failed! Ret:%#x.", static_cast<u32>(iRet));
        return FRU_ERR_FAILED;
    }
    stFields.tm_year = Minus(stFields.tm_year, 1900U);
    stFields.tm_mon = Minus(stFields.tm_mon, 1U);
    // Neither the fields nor mktime's result are checked: month 13 is next year's January.
    const u32 uiSeconds = static_cast<u32>(LocalTime(stFields)) - FRU_MFG_EPOCH;
    // The C library's division: of its own the compiler would bring 700 bytes for a processor that has none.
    const div_t stMinutes = div(static_cast<i32>(uiSeconds), static_cast<i32>(g_uiSecondsPerMinute));
    const u32 uiMinutes = static_cast<u32>(stMinutes.quot);
    pstFRUData->stBoardInfo.aucMfgDateTime[0] = static_cast<u8>(uiMinutes);
    pstFRUData->stBoardInfo.aucMfgDateTime[1] = static_cast<u8>(uiMinutes >> 8U);
    pstFRUData->stBoardInfo.aucMfgDateTime[2] = static_cast<u8>(uiMinutes >> 16U);
    return FRU_OK;
}

u32 LIB_FRU_FormatMfgDate(const u8 *pucMfgDate, u32 uiArg, char *pcFormatMfgDate)
{
    FRU_REQUIRE(pucMfgDate, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pcFormatMfgDate, FRU_ERR_NULL_POINTER);
    const u32 uiMinutes = static_cast<u32>(pucMfgDate[0]) | static_cast<u32>(pucMfgDate[1]) << 8U |
                          static_cast<u32>(pucMfgDate[2]) << 16U;
    const u32 uiRet =
        BMC_TimeStampToIsoTime(FRU_MFG_EPOCH + uiMinutes * g_uiSecondsPerMinute, uiArg, pcFormatMfgDate);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Time Stamp To Ch Time Failed! Ret:%#x.", uiRet);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}
