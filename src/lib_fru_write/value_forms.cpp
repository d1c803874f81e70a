// SPDX-License-Identifier: Apache-2.0
// Matchers by hand: a compiled expression would cost a thousand times as much, and ask the locale for digits.
#include "lib_fru_write/value_forms.h"

namespace {

constexpr u32 g_uiYearDigits = 4U;
constexpr u32 g_uiMonths = 12U;
constexpr u32 g_uiLastHour = 23U;
constexpr u32 g_uiLastMinute = 59U; // and second
constexpr u32 g_uiMacDigits = 12U;
constexpr u32 g_uiTwoDigits = 10U; // from here on a number is not filled

bool IsDigit(char cChar)
{
    return cChar >= '0' && cChar <= '9';
}

bool IsHexDigit(char cChar)
{
    return IsDigit(cChar) || (cChar >= 'a' && cChar <= 'f') || (cChar >= 'A' && cChar <= 'F');
}

u32 DaysOf(u32 uiMonth)
{
    if (uiMonth == 2U) {
        return 29U;
    }
    return uiMonth == 4U || uiMonth == 6U || uiMonth == 9U || uiMonth == 11U ? 30U : 31U;
}

// A walk through a date; the forms left are those that all numbers so far agree with.
struct DATE_WALK_S
{
    const char *pcNext;
    u32 uiForms;
};

bool Skip(DATE_WALK_S *pstWalk, char cChar)
{
    if (*pstWalk->pcNext != cChar) {
        return false;
    }
    ++pstWalk->pcNext;
    return true;
}

// One or two digits from uiFirst to uiLast.
bool Number(DATE_WALK_S *pstWalk, u32 uiFirst, u32 uiLast, u32 *puiValue)
{
    if (!IsDigit(*pstWalk->pcNext)) {
        return false;
    }
    u32 uiValue = static_cast<u32>(*pstWalk->pcNext++ - '0');
    if (!IsDigit(*pstWalk->pcNext)) {
        pstWalk->uiForms &= FRU_DATE_BARE;
    } else {
        uiValue = uiValue * 10U + static_cast<u32>(*pstWalk->pcNext++ - '0');
        pstWalk->uiForms &= uiValue < g_uiTwoDigits ? FRU_DATE_FILLED : FRU_DATE_FILLED | FRU_DATE_BARE;
    }
    *puiValue = uiValue;
    return uiValue >= uiFirst && uiValue <= uiLast;
}

bool Day(DATE_WALK_S *pstWalk)
{
    for (u32 i = 0; i < g_uiYearDigits; ++i) {
        if (!IsDigit(*pstWalk->pcNext++)) {
            return false;
        }
    }
    u32 uiMonth = 0;
    u32 uiDay = 0;
    return Skip(pstWalk, '-') && Number(pstWalk, 1U, g_uiMonths, &uiMonth) && Skip(pstWalk, '-') &&
           Number(pstWalk, 1U, DaysOf(uiMonth), &uiDay);
}

bool Time(DATE_WALK_S *pstWalk)
{
    u32 uiNumber = 0;
    return Skip(pstWalk, ' ') && Number(pstWalk, 0U, g_uiLastHour, &uiNumber) && Skip(pstWalk, ':') &&
           Number(pstWalk, 0U, g_uiLastMinute, &uiNumber) && Skip(pstWalk, ':') &&
           Number(pstWalk, 0U, g_uiLastMinute, &uiNumber);
}

} // namespace

u32 FRU_DateForms(const char *pcValue)
{
    DATE_WALK_S stWalk = {pcValue, FRU_DATE_BARE | FRU_DATE_FILLED};
    if (!Day(&stWalk)) {
        return 0U;
    }
    if (*stWalk.pcNext == '\0') {
        return stWalk.uiForms;
    }
    static_assert(FRU_DATE_BARE_TIME == FRU_DATE_BARE << 1U && FRU_DATE_FILLED_TIME == FRU_DATE_FILLED << 1U);
    return Time(&stWalk) && *stWalk.pcNext == '\0' ? stWalk.uiForms << 1U : 0U;
}

bool FRU_IsDigits(const char *pcValue)
{
    while (IsDigit(*pcValue)) {
        ++pcValue;
    }
    return *pcValue == '\0';
}

bool FRU_IsPrintable(const char *pcValue)
{
    while (*pcValue >= ' ' && *pcValue <= '~') {
        ++pcValue;
    }
    return *pcValue == '\0';
}

bool FRU_IsSpace(char cChar)
{
    return cChar == ' ' || (cChar >= '\t' && cChar <= '\r');
}

bool FRU_IsMacAddress(const char *pcValue)
{
    for (u32 i = 0; i < g_uiMacDigits; ++i) {
        if (!IsHexDigit(pcValue[i])) {
            return false;
        }
    }
    return pcValue[g_uiMacDigits] == '\0';
}

void FRU_ToUpper(char *pcValue)
{
    for (; *pcValue != '\0'; ++pcValue) {
        if (*pcValue >= 'a' && *pcValue <= 'z') {
            *pcValue = static_cast<char>(*pcValue - 'a' + 'A');
        }
    }
}
