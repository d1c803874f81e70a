// SPDX-License-Identifier: Apache-2.0
// Manufacturing dates: the count of minutes, its ends, and what a date may be written as.
#include "toolkit/image/mfg_date.h"

#include <gtest/gtest.h>

namespace {

TEST(MfgDate, EveryDayOfTheCountReadsBackAsItWasWritten)
{
    for (u32 uiMinutes = 1440U; uiMinutes <= MFG_DATE_MAX; uiMinutes += 1440U) {
        const MFG_DATE_S stDate = ParseMfgDate(MfgDateText(uiMinutes), false);
        ASSERT_EQ(stDate.uiMinutes, uiMinutes) << MfgDateText(uiMinutes);
        ASSERT_TRUE(stDate.bExact);
        ASSERT_EQ(stDate.strWhyNot, "");
    }
}

TEST(MfgDate, TheCountEndsWhereItsBytesEnd)
{
    EXPECT_EQ(ParseMfgDate("1996-01-01 00:01:00", false).uiMinutes, 1U);
    EXPECT_EQ(ParseMfgDate("2027-11-24 20:15:59", false).uiMinutes, MFG_DATE_MAX);
    EXPECT_NE(ParseMfgDate("2027-11-24 20:16:00", false).strWhyNot, "");
    EXPECT_NE(ParseMfgDate("1995-12-31 23:59:59", false).strWhyNot, "");
    EXPECT_NE(ParseMfgDate("0000-01-01", false).strWhyNot, "");
    EXPECT_NE(ParseMfgDate("9999-12-31", true).strWhyNot, "");
}

TEST(MfgDate, ThreeBytesAreLeastSignificantFirst)
{
    u8 aucDate[MFG_DATE_BYTES] = {};
    StoreMfgDate(0x123456U, aucDate);
    EXPECT_EQ(aucDate[0], 0x56);
    EXPECT_EQ(aucDate[2], 0x12);
    EXPECT_EQ(MfgDateMinutes(aucDate), 0x123456U);
}

TEST(MfgDate, OnlyWhatReadsBackIsExact)
{
    EXPECT_TRUE(ParseMfgDate("2024-03-18", false).bExact);
    EXPECT_TRUE(ParseMfgDate("2024-03-18 09:30:00", false).bExact);
    EXPECT_FALSE(ParseMfgDate("2024-03-18 09:30:01", false).bExact);
    EXPECT_FALSE(ParseMfgDate("2024-3-18 9:30:0", false).bExact);
    EXPECT_EQ(ParseMfgDate("2024-3-18 9:30:0", false).uiMinutes,
              ParseMfgDate("2024-03-18 09:30", false).uiMinutes);
}

TEST(MfgDate, WhatIsNoDateIsTold)
{
    for (const char *pcDate :
         {"", "2024", "2024-03", "2024-03-18 09", "2024-03-18 09:30:00:00", "2024-03-18T09:30:00", "24-03-18",
          "2024-3-08", "2024-03-18 ", " 2024-03-18", "2024-13-01", "2023-02-29", "2024-03-18 24:00:00",
          "2024-03-18 09:60:00", "-024-03-18", "20240-03-18"}) {
        EXPECT_EQ(ParseMfgDate(pcDate, true).strWhyNot.rfind("it is no date", 0), 0U) << pcDate;
    }
    EXPECT_EQ(ParseMfgDate("2024-02-29", false).strWhyNot, "");
}

TEST(MfgDate, ACountThatMayHaveGoneRoundHasTwoReadings)
{
    EXPECT_EQ(OtherMfgDateText(ParseMfgDate("1999-05-01", false).uiMinutes),
              "or 2031-03-24 if the counter has gone round");
    EXPECT_EQ(ParseMfgDate("2031-03-24 20:16:00", true).uiMinutes,
              ParseMfgDate("1999-05-01", false).uiMinutes);
    EXPECT_EQ(OtherMfgDateText(ParseMfgDate("2006-01-01", false).uiMinutes), "");
    EXPECT_EQ(OtherMfgDateText(0U), "");
}

TEST(MfgDate, ALabelTakesWhatTheLibraryTakesAndTheBytesCanSay)
{
    for (const char *pcDate : {"1996-01-01", "2025-12-31 23:59:59", "2024-3-18 9:30:0", "unspecified"}) {
        EXPECT_EQ(WhyNoLabelDate(pcDate), "") << pcDate;
    }
    for (const char *pcDate :
         {"1995-12-31", "0001-01-01", "2026-01-01", "2026-1-1", "2028-01-01", "2024-03-18 09:30", "x"}) {
        EXPECT_NE(WhyNoLabelDate(pcDate), "") << pcDate;
    }
    EXPECT_EQ(LabelDate("unspecified"), "1996-01-01");
    EXPECT_EQ(LabelDate("2024-03-18"), "2024-03-18");
}

} // namespace
