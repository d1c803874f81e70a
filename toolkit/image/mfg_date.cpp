// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/mfg_date.h"

#include <array>
#include <ctime>
#include <optional>

#include "lib_fru.h"
#include "toolkit/base/text.h"

namespace {

constexpr int64_t MINUTES_PER_DAY = 1440;
constexpr int64_t EPOCH_DAY = 9496;                                    // 1996-01-01, counted from 1970-01-01
constexpr int64_t ROUND = MFG_DATE_MAX + 1;                            // minutes
constexpr int64_t DAY_2006 = 13149;                                    // 2006-01-01, counted from 1970-01-01
constexpr int64_t DOUBTFUL = (DAY_2006 - EPOCH_DAY) * MINUTES_PER_DAY; // counts below it may have gone round
constexpr const char *LABEL_YEARS_END = "2026";

// Days from 1970-01-01, by the calendar of today for all years.
int64_t DaysOf(int64_t iYear, int64_t iMonth, int64_t iDay)
{
    const int64_t iShifted = iMonth <= 2 ? iYear - 1 : iYear; // years that begin in March: February ends them
    const int64_t iEra = (iShifted >= 0 ? iShifted : iShifted - 399) / 400;
    const int64_t iYearOfEra = iShifted - iEra * 400;
    const int64_t iDayOfYear = (153 * (iMonth + (iMonth > 2 ? -3 : 9)) + 2) / 5 + iDay - 1;
    return iEra * 146097 + iYearOfEra * 365 + iYearOfEra / 4 - iYearOfEra / 100 + iDayOfYear - 719468;
}

bool IsLeap(int64_t iYear)
{
    return iYear % 4 == 0 && (iYear % 100 != 0 || iYear % 400 == 0);
}

int64_t DaysIn(int64_t iYear, int64_t iMonth)
{
    static const int64_t DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return DAYS[iMonth - 1] + (iMonth == 2 && IsLeap(iYear) ? 1 : 0);
}

// The day alone, for a count of any size.
std::string DayText(int64_t iMinutes)
{
    int64_t iLeft = iMinutes / MINUTES_PER_DAY;
    int64_t iYear = 1996;
    for (; iLeft >= (IsLeap(iYear) ? 366 : 365); iYear++) {
        iLeft -= IsLeap(iYear) ? 366 : 365;
    }
    int64_t iMonth = 1;
    for (; iLeft >= DaysIn(iYear, iMonth); iMonth++) {
        iLeft -= DaysIn(iYear, iMonth);
    }
    return Format("%04d-%02d-%02d", static_cast<int>(iYear), static_cast<int>(iMonth),
                  static_cast<int>(iLeft + 1));
}

// A date's numbers as they are written.
struct WRITTEN_S
{
    std::array<int64_t, 6> aiNumbers = {0, 1, 1, 0, 0, 0}; // year, month, day, hour, minute, second
    size_t uiCount = 0;
    bool bFilled = true; // no number lacks its zero in front
    bool bBare = true;   // no number has one
};

// Nothing when it is not written as a date.
std::optional<WRITTEN_S> Scan(const std::string &strDate)
{
    constexpr const char *BEHIND = "-- ::";
    WRITTEN_S stWritten;
    size_t uiAt = 0;
    while (true) {
        const size_t uiWidth = stWritten.uiCount == 0U ? 4U : 2U;
        const size_t uiStart = uiAt;
        int64_t iNumber = 0;
        for (; uiAt < strDate.size() && strDate[uiAt] >= '0' && strDate[uiAt] <= '9'; uiAt++) {
            iNumber = uiAt - uiStart < uiWidth ? iNumber * 10 + (strDate[uiAt] - '0') : iNumber;
        }
        const size_t uiDigits = uiAt - uiStart;
        if (uiDigits == 0U || uiDigits > uiWidth || (stWritten.uiCount == 0U && uiDigits != uiWidth)) {
            return std::nullopt;
        }
        stWritten.bFilled = stWritten.bFilled && uiDigits == uiWidth;
        stWritten.bBare = stWritten.bBare && (uiDigits == 1U || strDate[uiStart] != '0');
        stWritten.aiNumbers[stWritten.uiCount++] = iNumber;
        if (uiAt == strDate.size()) {
            break;
        }
        if (stWritten.uiCount == stWritten.aiNumbers.size() ||
            strDate[uiAt] != BEHIND[stWritten.uiCount - 1U]) {
            return std::nullopt;
        }
        uiAt++;
    }
    const bool bWhole = stWritten.uiCount == 3U || stWritten.uiCount >= 5U; // a time has its minutes
    return bWhole && (stWritten.bFilled || stWritten.bBare) ? std::optional<WRITTEN_S>(stWritten)
                                                            : std::nullopt;
}

bool IsInCalendar(const WRITTEN_S &stWritten)
{
    const auto &[iYear, iMonth, iDay, iHour, iMinute, iSecond] = stWritten.aiNumbers;
    return iMonth >= 1 && iMonth <= 12 && iDay >= 1 && iDay <= DaysIn(iYear, iMonth) && iHour <= 23 &&
           iMinute <= 59 && iSecond <= 59;
}

MFG_DATE_S Counted(int64_t iMinutes, bool bExact, bool bWrap)
{
    if (iMinutes < 0) {
        return {0, false, "it lies before 1996-01-01, from which on the three bytes count minutes"};
    }
    if (iMinutes < ROUND) {
        return {static_cast<u32>(iMinutes), bExact};
    }
    const std::string strEnd =
        "it lies beyond 2027-11-24 20:15:00, where the three bytes end and start again at 0";
    if (!bWrap) {
        return {0, false, strEnd + " (--wrap of 'edit' and 'encode' writes it all the same)"};
    }
    if (iMinutes == ROUND) {
        return {0, false, strEnd + ", and 0 stands for unspecified"};
    }
    if (iMinutes >= ROUND + DOUBTFUL) {
        return {0, false,
                strEnd + ", and from " + DayText(ROUND + DOUBTFUL) +
                    " on nobody would read the small count so"};
    }
    return {static_cast<u32>(iMinutes - ROUND), bExact};
}

} // namespace

u32 MfgDateMinutes(const u8 *pucMfgDate)
{
    return pucMfgDate[0] | static_cast<u32>(pucMfgDate[1]) << 8U | static_cast<u32>(pucMfgDate[2]) << 16U;
}

void StoreMfgDate(u32 uiMinutes, u8 *pucMfgDate)
{
    for (u32 i = 0; i < MFG_DATE_BYTES; i++) {
        pucMfgDate[i] = static_cast<u8>(uiMinutes >> (8U * i));
    }
}

std::string MfgDateText(u32 uiMinutes)
{
    if (uiMinutes == 0U) {
        return MFG_DATE_UNSPECIFIED;
    }
    u8 aucMfgDate[MFG_DATE_BYTES];
    StoreMfgDate(uiMinutes, aucMfgDate);
    char acText[64] = "";
    const u32 uiRet = LIB_FRU_FormatMfgDate(aucMfgDate, 0U, acText);
    return uiRet == FRU_OK ? acText : StatusText(uiRet);
}

std::string MfgDateText(const u8 *pucMfgDate)
{
    return MfgDateText(MfgDateMinutes(pucMfgDate));
}

std::string OtherMfgDateText(u32 uiMinutes)
{
    const bool bDoubtful = uiMinutes != 0U && uiMinutes < DOUBTFUL;
    return bDoubtful ? "or " + DayText(ROUND + uiMinutes) + " if the counter has gone round" : "";
}

uint64_t MfgDateClock()
{
    return (static_cast<uint64_t>(time(nullptr)) - static_cast<uint64_t>(EPOCH_DAY * MINUTES_PER_DAY * 60)) /
           60U;
}

MFG_DATE_S ParseMfgDate(const std::string &strDate, bool bWrap)
{
    if (strDate == MFG_DATE_UNSPECIFIED) {
        return {0, true};
    }
    if (strDate == MFG_DATE_NOW) {
        return Counted(static_cast<int64_t>(MfgDateClock()), true, bWrap);
    }
    const std::optional<WRITTEN_S> optWritten = Scan(strDate);
    if (!optWritten.has_value()) {
        return {0, false, "it is no date"};
    }
    if (!IsInCalendar(*optWritten)) {
        return {0, false, "it is no date: there is no such day or time"};
    }
    const auto &[iYear, iMonth, iDay, iHour, iMinute, iSecond] = optWritten->aiNumbers;
    const int64_t iMinutes =
        (DaysOf(iYear, iMonth, iDay) - EPOCH_DAY) * MINUTES_PER_DAY + iHour * 60 + iMinute;
    return Counted(iMinutes, optWritten->bFilled && iSecond == 0, bWrap);
}

std::string LabelDate(const std::string &strDate)
{
    if (strDate == MFG_DATE_UNSPECIFIED) {
        return "1996-01-01";
    }
    const MFG_DATE_S stNow = strDate == MFG_DATE_NOW ? ParseMfgDate(strDate, false) : MFG_DATE_S();
    return stNow.uiMinutes == 0U ? strDate : MfgDateText(stNow.uiMinutes);
}

std::string WhyNoLabelDate(const std::string &strDate)
{
    const std::string strTaken = LabelDate(strDate);
    // Before the library's rule: it takes the year 1995, and stores it as 2026.
    const MFG_DATE_S stDate = ParseMfgDate(strTaken, false);
    const bool bByRule = isLabelValueMfgDateNormal(strTaken.c_str()) == 1;
    if (bByRule) {
        // Its calendar is not asked further: it takes 1999-2-29 as the day after 1999-2-28.
        return strTaken.compare(0, 4U, "1996") < 0 ? ParseMfgDate("1995-12-31", false).strWhyNot : "";
    }
    if (!stDate.strWhyNot.empty()) {
        return stDate.strWhyNot;
    }
    return strTaken.compare(0, 4U, LABEL_YEARS_END) >= 0
               ? "it lies beyond 2025-12-31, with which the library's rule for labels ends; 'edit' and 'encode' "
                 "take it"
               : "it is not written as the library's rule for labels asks";
}
