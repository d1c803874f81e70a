// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

// The C library's mktime() stands behind this file's own, which can take the flag as newer C libraries do.
bool g_bShiftsWithoutMatch = false;

} // namespace

extern "C" time_t mktime(struct tm *pstTime)
{
    using MKTIME = time_t (*)(struct tm *);
    static const MKTIME g_fnReal = reinterpret_cast<MKTIME>(dlsym(RTLD_NEXT, "mktime"));
    const bool bWantsDaylight = pstTime->tm_isdst > 0;
    const time_t iReal = g_fnReal(pstTime);
    return g_bShiftsWithoutMatch && bWantsDaylight && pstTime->tm_isdst == 0 ? iReal - 3600 : iReal;
}

namespace {

constexpr const char *g_pcBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char *g_pcSydney = "AEST-10AEDT,M10.1.0,M4.1.0/3";
constexpr const char *g_pcNewYork = "EST5EDT,M3.2.0,M11.1.0";
constexpr const char *g_pcNoDaylight = "CST-8";

class MfgDate : public testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        Zone("UTC0");
    }

    void TearDown() override
    {
        g_bShiftsWithoutMatch = false;
        (void)unsetenv("TZ");
        tzset();
    }

    static void Zone(const char *pcZone)
    {
        (void)setenv("TZ", pcZone, 1);
        tzset();
    }
};

// Minutes from 1996-01-01 00:00 to a date of the proleptic Gregorian calendar.
i32 MinutesTo(i32 iYear, i32 iMonth, i32 iDay, i32 iHour = 0, i32 iMinute = 0)
{
    // Years counted from March, so that the leap day is the last one.
    const i32 iFromMarch = iMonth > 2 ? iYear : iYear - 1;
    const i32 iMonthFromMarch = (iMonth + 9) % 12;
    const i32 iDays = 365 * iFromMarch + iFromMarch / 4 - iFromMarch / 100 + iFromMarch / 400 +
                      (153 * iMonthFromMarch + 2) / 5 + iDay - 1;
    constexpr i32 iDaysTo1996 = 365 * 1995 + 1995 / 4 - 1995 / 100 + 1995 / 400 + 306;
    return (iDays - iDaysTo1996) * 24 * 60 + iHour * 60 + iMinute;
}

// The three bytes that a text gives; the rest of the record must not change.
i32 StoredMinutes(const char *pcMfgDate)
{
    FRU_DATA_S stData = {};
    (void)memset(&stData, 0xA5, sizeof(stData));
    FRU_DATA_S stExpected = stData;
    EXPECT_EQ(LIB_FRU_CaclMfgDateTime(pcMfgDate, &stData), FRU_OK) << pcMfgDate;
    (void)memcpy(stExpected.stBoardInfo.aucMfgDateTime, stData.stBoardInfo.aucMfgDateTime, 3);
    EXPECT_EQ(memcmp(&stData, &stExpected, sizeof(stData)), 0) << pcMfgDate;
    const u8 *pucDate = stData.stBoardInfo.aucMfgDateTime;
    return pucDate[0] | pucDate[1] << 8 | pucDate[2] << 16;
}

i32 LowBytes(i32 iMinutes)
{
    return iMinutes & 0xFFFFFF;
}

TEST_F(MfgDate, OracleKnowsItsCalendar)
{
    EXPECT_EQ(MinutesTo(1996, 1, 1), 0);
    EXPECT_EQ(MinutesTo(1996, 3, 1), 60 * 24 * 60);
    EXPECT_EQ(MinutesTo(1970, 1, 1), -820454400 / 60);
    EXPECT_EQ(MinutesTo(2001, 9, 9, 1, 46), (1000000000 - 820454400) / 60);
}

TEST_F(MfgDate, NullPointersAreReportedInTheOrderOfTheParameters)
{
    FRU_DATA_S stData = {};
    EXPECT_EQ(LIB_FRU_CaclMfgDateTime(nullptr, &stData), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(LIB_FRU_CaclMfgDateTime("1996-01-01", nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(LIB_FRU_CaclMfgDateTime(nullptr, nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), (std::vector<std::string>{
                                    fake::NullMessage("lib_fru.c", "LIB_FRU_CaclMfgDateTime", "pcMfgDate"),
                                    fake::NullMessage("lib_fru.c", "LIB_FRU_CaclMfgDateTime", "pstFRUData"),
                                    fake::NullMessage("lib_fru.c", "LIB_FRU_CaclMfgDateTime", "pcMfgDate")}));
}

TEST_F(MfgDate, DateOnlyIsMidnight)
{
    EXPECT_EQ(StoredMinutes("1996-01-01"), 0);
    EXPECT_EQ(StoredMinutes("1996-01-02"), 24 * 60);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(MfgDate, BytesGoLeastSignificantFirst)
{
    FRU_DATA_S stData = {};
    ASSERT_EQ(LIB_FRU_CaclMfgDateTime("2023-05-07 11:22:33", &stData), FRU_OK);
    const i32 iMinutes = MinutesTo(2023, 5, 7, 11, 22);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[0], iMinutes & 0xFF);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[1], iMinutes >> 8 & 0xFF);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[2], iMinutes >> 16);
}

TEST_F(MfgDate, SecondsAreDroppedNotRounded)
{
    EXPECT_EQ(StoredMinutes("1996-01-01 00:01:59"), 1);
    EXPECT_EQ(StoredMinutes("1996-01-01 00:00:59"), 0);
    EXPECT_EQ(StoredMinutes("1996-01-01 00:02:00"), 2);
}

TEST_F(MfgDate, BeforeTheEpochTruncatesTowardZero)
{
    EXPECT_EQ(StoredMinutes("1995-12-31 23:59:01"), 0);
    EXPECT_EQ(StoredMinutes("1995-12-31 23:59:00"), 0xFFFFFF);
    EXPECT_EQ(StoredMinutes("1995-12-31 23:58:30"), 0xFFFFFF);
    EXPECT_EQ(StoredMinutes("1995-12-31"), LowBytes(-24 * 60));
    EXPECT_EQ(StoredMinutes("1970-01-01"), LowBytes(MinutesTo(1970, 1, 1)));
}

TEST_F(MfgDate, LeadingZerosAreNotNeeded)
{
    EXPECT_EQ(StoredMinutes("2023-5-7"), MinutesTo(2023, 5, 7));
    EXPECT_EQ(StoredMinutes("2023-5-7 1:2:3"), MinutesTo(2023, 5, 7, 1, 2));
}

TEST_F(MfgDate, WhatFollowsAFullCountIsIgnored)
{
    EXPECT_EQ(StoredMinutes("2023-05-07 and more"), MinutesTo(2023, 5, 7));
    EXPECT_EQ(StoredMinutes("2023-05-07 01:02:03.5"), MinutesTo(2023, 5, 7, 1, 2));
    EXPECT_EQ(StoredMinutes("  2023- 05- 07"), MinutesTo(2023, 5, 7));
}

TEST_F(MfgDate, AnyOtherCountIsRefusedAndTheRecordKept)
{
    const std::pair<const char *, const char *> aCases[] = {
        {"", "0xffffffff"},
        {"   ", "0xffffffff"},
        {"2023/05/07", "0x1"},
        {"tomorrow", "0"},
        {"2023", "0x1"},
        {"2023-05", "0x2"},
        {"2023-05-07 11", "0x4"},
        {"2023-05-07 11:22", "0x5"},
        {"2023-05-07 11:22:x", "0x5"},
        {"2023-05-07 11-22-33", "0x4"},
    };
    for (const auto &[pcText, pcCount] : aCases) {
        fake::Reset();
        FRU_DATA_S stData = {};
        (void)memset(&stData, 0x5A, sizeof(stData));
        const FRU_DATA_S stBefore = stData;
        EXPECT_EQ(LIB_FRU_CaclMfgDateTime(pcText, &stData), FRU_ERR_FAILED) << pcText;
        EXPECT_EQ(memcmp(&stData, &stBefore, sizeof(stData)), 0) << pcText;
        EXPECT_EQ(fake::Messages(),
                  std::vector<std::string>{std::string("0/4 lib_fru.c: Sscanf failed! Ret:") + pcCount + "."})
            << pcText;
    }
}

TEST_F(MfgDate, FieldsOutOfRangeAreCarriedOver)
{
    EXPECT_EQ(StoredMinutes("2023-13-01"), MinutesTo(2024, 1, 1));
    EXPECT_EQ(StoredMinutes("2023-01-40"), MinutesTo(2023, 2, 9));
    EXPECT_EQ(StoredMinutes("2023-02-29"), MinutesTo(2023, 3, 1));
    EXPECT_EQ(StoredMinutes("2023-00-01"), MinutesTo(2022, 12, 1));
    EXPECT_EQ(StoredMinutes("2023-05-07 25:61:00"), MinutesTo(2023, 5, 8, 2, 1));
    EXPECT_EQ(StoredMinutes("2023--1-01"), MinutesTo(2022, 11, 1));
}

TEST_F(MfgDate, FieldsAtTheEndsOfIntAreSafe)
{
    for (const char *pcText : {
             "2147483647-2147483647-2147483647 2147483647:2147483647:2147483647",
             "-2147483648--2147483648--2147483648 -2147483648:-2147483648:-2147483648",
             "-2147483648-01-01",
             "2147483647-12-31 23:59:59",
             "2000--2147483648-01",
             "99999999999999999999-01-01",
             "2000-01-01 2147483647:00:00",
         }) {
        (void)StoredMinutes(pcText);
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(MfgDate, MktimesFailureIsNotChecked)
{
    // A 32-bit clock ends in 2038; then mktime's -1 counts as a time.
    EXPECT_EQ(StoredMinutes("2060-01-01"),
              sizeof(time_t) == 4 ? LowBytes((-1 - 820454400) / 60) : LowBytes(MinutesTo(2060, 1, 1)));
}

TEST_F(MfgDate, CountsAboveThreeBytesKeepTheirLowOnes)
{
    EXPECT_EQ(StoredMinutes("2027-11-24 20:15:00"), 0xFFFFFF);
    EXPECT_EQ(StoredMinutes("2027-11-24 20:16:00"), 0);
}

TEST_F(MfgDate, ZoneWithoutDaylightSavingIgnoresTheFlag)
{
    for (const bool bShifts : {false, true}) {
        g_bShiftsWithoutMatch = bShifts;
        Zone("UTC0");
        EXPECT_EQ(StoredMinutes("1996-01-01"), 0) << bShifts;
        EXPECT_EQ(StoredMinutes("2023-07-01 12:00:00"), MinutesTo(2023, 7, 1, 12)) << bShifts;
        Zone("");
        EXPECT_EQ(StoredMinutes("1996-01-01"), 0) << bShifts;
        Zone(g_pcNoDaylight);
        EXPECT_EQ(StoredMinutes("1996-01-01"), LowBytes(-8 * 60)) << bShifts;
        EXPECT_EQ(StoredMinutes("2023-07-01 12:00:00"), MinutesTo(2023, 7, 1, 4)) << bShifts;
    }
}

TEST_F(MfgDate, ZoneWithDaylightSavingTakesEveryTimeAsSuch)
{
    struct CASE_S
    {
        const char *pcZone;
        i32 iSummerOffset; // minutes east of Greenwich
    };
    for (const CASE_S &stCase : {CASE_S{g_pcBerlin, 120}, {g_pcSydney, 660}, {g_pcNewYork, -240}}) {
        Zone(stCase.pcZone);
        EXPECT_EQ(StoredMinutes("1996-01-01"), LowBytes(-stCase.iSummerOffset)) << stCase.pcZone;
        EXPECT_EQ(StoredMinutes("2023-01-15 12:00:00"), MinutesTo(2023, 1, 15, 12) - stCase.iSummerOffset)
            << stCase.pcZone;
        EXPECT_EQ(StoredMinutes("2023-07-15 12:00:00"), MinutesTo(2023, 7, 15, 12) - stCase.iSummerOffset)
            << stCase.pcZone;
    }
}

// In none of the days that are looked at for daylight saving, but on the date's own.
TEST_F(MfgDate, ZoneWithDaylightSavingOfAFewDaysTakesThemAsSuch)
{
    Zone("AAA0BBB,J100/0,J120/0");
    EXPECT_EQ(StoredMinutes("2023-04-20 12:00:00"), MinutesTo(2023, 4, 20, 11));
}

TEST_F(MfgDate, ZoneThatGaveUpDaylightSavingLeavesItToTheCLibrary)
{
    // Daylight saving from 1986 to 1991, none since: the flag's meaning is the C library's.
    Zone("Asia/Shanghai");
    time_t iSummer1988 = 584000000;
    struct tm stLocal = {};
    if (localtime_r(&iSummer1988, &stLocal) == nullptr || stLocal.tm_isdst == 0) {
        GTEST_SKIP() << "no time zone data on this machine";
    }
    struct tm stWinter = {};
    stWinter.tm_year = 123;
    stWinter.tm_mday = 1;
    stWinter.tm_isdst = 1;
    const time_t iExpected = mktime(&stWinter);
    EXPECT_EQ(StoredMinutes("2023-01-01"), static_cast<i32>((iExpected - 820454400) / 60));
    g_bShiftsWithoutMatch = true;
    EXPECT_EQ(StoredMinutes("2023-01-01"), static_cast<i32>((iExpected - 3600 - 820454400) / 60));
}

TEST_F(MfgDate, NullBytesAndOutputAreReported)
{
    const u8 aucDate[3] = {};
    char acOut[32] = "as it was";
    EXPECT_EQ(LIB_FRU_FormatMfgDate(nullptr, 0, acOut), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(LIB_FRU_FormatMfgDate(aucDate, 0, nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(LIB_FRU_FormatMfgDate(nullptr, 0, nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_STREQ(acOut, "as it was");
    EXPECT_EQ(
        fake::Messages(),
        (std::vector<std::string>{fake::NullMessage("lib_fru.c", "LIB_FRU_FormatMfgDate", "pucMfgDate"),
                                  fake::NullMessage("lib_fru.c", "LIB_FRU_FormatMfgDate", "pcFormatMfgDate"),
                                  fake::NullMessage("lib_fru.c", "LIB_FRU_FormatMfgDate", "pucMfgDate")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(MfgDate, ThePlatformFormatsTheTimeStamp)
{
    struct CASE_S
    {
        u8 aucDate[3];
        u32 uiArg;
        const char *pcCall;
    };
    for (const CASE_S &stCase : {CASE_S{{0, 0, 0}, 0U, "BMC_TimeStampToIsoTime 820454400 0 -> 0"},
                                 {{1, 0, 0}, 1U, "BMC_TimeStampToIsoTime 820454460 1 -> 0"},
                                 {{0, 1, 0}, 0xFFFFFFFFU, "BMC_TimeStampToIsoTime 820469760 4294967295 -> 0"},
                                 {{0, 0, 1}, 7U, "BMC_TimeStampToIsoTime 824386560 7 -> 0"},
                                 {{0xFF, 0xFF, 0xFF}, 2U, "BMC_TimeStampToIsoTime 1827087300 2 -> 0"}}) {
        fake::Reset();
        char acOut[32] = {};
        EXPECT_EQ(LIB_FRU_FormatMfgDate(stCase.aucDate, stCase.uiArg, acOut), FRU_OK);
        EXPECT_EQ(fake::Calls(), std::vector<std::string>{stCase.pcCall});
        EXPECT_EQ(acOut[0], 'T');
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST_F(MfgDate, ThePlatformsFailureIsReported)
{
    const u8 aucDate[3] = {1, 2, 3};
    char acOut[32] = "as it was";
    fake::Arm({fake::KIND_E::CLOCK, 1, false});
    EXPECT_EQ(LIB_FRU_FormatMfgDate(aucDate, 0, acOut), FRU_ERR_FAILED);
    EXPECT_STREQ(acOut, "as it was");
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"0/2 lib_fru.c: Time Stamp To Ch Time Failed! Ret:0x81000001."});
}

TEST_F(MfgDate, EveryMonthsEndsGoThereAndBack)
{
    for (i32 iYear = 1996; iYear <= 2025; ++iYear) {
        fake::Reset();
        for (i32 iMonth = 1; iMonth <= 12; ++iMonth) {
            const i32 iNext = iMonth == 12 ? MinutesTo(iYear + 1, 1, 1) : MinutesTo(iYear, iMonth + 1, 1);
            const i32 iLastDay = (iNext - MinutesTo(iYear, iMonth, 1)) / (24 * 60);
            for (const i32 iDay : {1, 15, iLastDay}) {
                for (const i32 iMinute : {0, 24 * 60 - 1}) {
                    char acText[64];
                    (void)snprintf(acText, sizeof(acText), "%04d-%02d-%02d %02d:%02d:59", iYear, iMonth, iDay,
                                   iMinute / 60, iMinute % 60);
                    FRU_DATA_S stData = {};
                    ASSERT_EQ(LIB_FRU_CaclMfgDateTime(acText, &stData), FRU_OK);
                    char acOut[32] = {};
                    ASSERT_EQ(LIB_FRU_FormatMfgDate(stData.stBoardInfo.aucMfgDateTime, 0, acOut), FRU_OK);
                    const i32 iExpected = MinutesTo(iYear, iMonth, iDay, iMinute / 60, iMinute % 60);
                    EXPECT_EQ(acOut, "T" + std::to_string(820454400 + 60 * iExpected)) << acText;
                }
            }
        }
    }
}

} // namespace
