// SPDX-License-Identifier: Apache-2.0
// Names, manufacturing dates and regular expressions; the values have a file of their own.
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/regular_expression.h"

namespace {

using label::DateReport;
using label::Line;
using label::LINES;
using label::Null;
using label::Text;

// ---- dates

i32 Date(const std::string &strDate)
{
    return isLabelValueMfgDateNormal(Text(strDate).get());
}

TEST(MfgDate, ANullValueIsReported)
{
    fake::Reset();
    EXPECT_EQ(isLabelValueMfgDateNormal(nullptr), 0);
    EXPECT_EQ(fake::Messages(), LINES{Null("isLabelValueMfgDateNormal", "pcValue")});
}

TEST(MfgDate, TellsWhichOfTheFourPatternsMatched)
{
    struct CASE_S
    {
        const char *pcDate;
        i32 iResult;
        std::string strReport;
    };
    for (const CASE_S &stCase : {
             CASE_S{"2024-4-5", 1, DateReport(1, 0, 0, 0)},
             {"2024-4-5 6:7:8", 1, DateReport(0, 1, 0, 0)},
             {"2024-04-05", 1, DateReport(0, 0, 1, 0)},
             {"2024-04-05 06:07:08", 1, DateReport(0, 0, 0, 1)},
             {"2024-10-15", 1, DateReport(1, 0, 1, 0)},
             {"2024-12-31 23:59:59", 1, DateReport(0, 1, 0, 1)},
             {"2024-4-05", 0, DateReport(0, 0, 0, 0)},
             {"2024-04-5", 0, DateReport(0, 0, 0, 0)},
             {"2024-04-05 6:7:8", 0, DateReport(0, 0, 0, 0)},
             {"", 0, DateReport(0, 0, 0, 0)},
             {"2026-4-5", 0, DateReport(1, 0, 0, 0)}, // matched, but late
         }) {
        fake::Reset();
        EXPECT_EQ(Date(stCase.pcDate), stCase.iResult) << stCase.pcDate;
        EXPECT_EQ(fake::Messages(), LINES{stCase.strReport}) << stCase.pcDate;
    }
}

std::string Padded(u32 uiNumber)
{
    return (uiNumber < 10U ? "0" : "") + std::to_string(uiNumber);
}

TEST(MfgDate, KnowsTheDaysOfEveryMonth)
{
    const u32 auiDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}; // February in every year
    for (u32 uiMonth = 0U; uiMonth <= 13U; ++uiMonth) {
        for (u32 uiDay = 0U; uiDay <= 32U; ++uiDay) {
            const bool bDate =
                uiMonth >= 1U && uiMonth <= 12U && uiDay >= 1U && uiDay <= auiDays[uiMonth - 1U];
            const std::string strBare = "1999-" + std::to_string(uiMonth) + "-" + std::to_string(uiDay);
            const std::string strFilled = "1999-" + Padded(uiMonth) + "-" + Padded(uiDay);
            EXPECT_EQ(Date(strBare), bDate ? 1 : 0) << strBare;
            EXPECT_EQ(Date(strFilled), bDate ? 1 : 0) << strFilled;
            EXPECT_EQ(Date(strBare + " 1:2:3"), bDate ? 1 : 0) << strBare;
            EXPECT_EQ(Date(strFilled + " 01:02:03"), bDate ? 1 : 0) << strFilled;
        }
    }
}

TEST(MfgDate, KnowsHoursMinutesAndSeconds)
{
    for (u32 uiNumber = 0U; uiNumber <= 99U; ++uiNumber) {
        const std::string strBare = std::to_string(uiNumber);
        const std::string strFilled = Padded(uiNumber);
        EXPECT_EQ(Date("2024-4-5 " + strBare + ":0:0"), uiNumber < 24U ? 1 : 0);
        EXPECT_EQ(Date("2024-4-5 0:" + strBare + ":0"), uiNumber < 60U ? 1 : 0);
        EXPECT_EQ(Date("2024-4-5 0:0:" + strBare), uiNumber < 60U ? 1 : 0);
        EXPECT_EQ(Date("2024-04-05 " + strFilled + ":00:00"), uiNumber < 24U ? 1 : 0);
        EXPECT_EQ(Date("2024-04-05 00:" + strFilled + ":00"), uiNumber < 60U ? 1 : 0);
        EXPECT_EQ(Date("2024-04-05 00:00:" + strFilled), uiNumber < 60U ? 1 : 0);
    }
}

TEST(MfgDate, IsBoundedByItsYearAlone)
{
    for (const char *pcDate : {"2025-12-31 23:59:59", "2025-12-31", "2025-6-30", "0000-1-1", "1995-12-31",
                               "1999-2-29", "0008-08-08"}) {
        EXPECT_EQ(Date(pcDate), 1) << pcDate;
    }
    for (const char *pcDate : {"2026-01-01", "2026-1-1", "2026-01-01 00:00:00", "9999-12-31"}) {
        EXPECT_EQ(Date(pcDate), 0) << pcDate;
    }
}

TEST(MfgDate, RefusesEveryOtherForm)
{
    for (const char *pcDate : {"2024/04/05", "24-04-05", "12024-04-05", " 2024-04-05", "2024-04-05 ",
                               "2024-04-05 06:07", "2024-04-05T06:07:08", "2024-04-05  06:07:08", "2024-04",
                               "2024-04-05\n", "20240405", "date", "2024-04-05 06:07:08Z", "-024-4-5"}) {
        EXPECT_EQ(Date(pcDate), 0) << pcDate;
    }
}

TEST(RegularExpression, MatchesExtendedPatternsAsTheyStand)
{
    fake::Reset();
    EXPECT_EQ(checkRegularExpressionCorrect("ab", "^(a|c)b$"), 1U);
    EXPECT_EQ(checkRegularExpressionCorrect("xaby", "(a|c)b"),
              1U); // anywhere, unless the pattern is anchored
    EXPECT_EQ(checkRegularExpressionCorrect("AB", "^(a|c)b$"), 0U);
    EXPECT_EQ(checkRegularExpressionCorrect("ab\nab", "^ab$"), 0U); // a line end is a character like others
    EXPECT_EQ(checkRegularExpressionCorrect("", "^$"), 1U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(RegularExpression, APatternThatDoesNotCompileMatchesNothing)
{
    fake::Reset();
    EXPECT_EQ(checkRegularExpressionCorrect("(", "("), 0U);
    EXPECT_EQ(checkRegularExpressionCorrect("[", "["), 0U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(RegularExpression, ANullValueIsReported)
{
    fake::Reset();
    EXPECT_EQ(checkRegularExpressionCorrect(nullptr, "^$"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Null("checkRegularExpressionCorrect", "pcValue")});
}

// ---- names

FRU_SET_PARA_S Block(u8 ucFieldFlag, const char *pcName)
{
    FRU_SET_PARA_S stBlock = {};
    stBlock.ucFieldFlag = ucFieldFlag;
    (void)strcpy(stBlock.acLabelName, pcName);
    return stBlock;
}

TEST(LabelName, ANullBlockIsReported)
{
    fake::Reset();
    EXPECT_EQ(isLabelNameValid(nullptr), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Null("isLabelNameValid", "pstFRUSetPara")});
}

TEST(LabelName, ADeviceWithAnUnknownFlagHasNoValidNames)
{
    for (const u8 ucFlag : {u8{0}, u8{10}, u8{255}}) {
        fake::Reset();
        const FRU_SET_PARA_S stBlock = Block(ucFlag, "Board Serial Number");
        EXPECT_EQ(isLabelNameValid(&stBlock), 0U);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2U, "FieldFlag " + std::to_string(ucFlag) + " is not available!\n"),
                         Line(4U, "Confirm Electronic label Field failed!")}));
    }
}

TEST(LabelName, AnUnknownNameIsRefused)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = Block(7U, "Board Serial");
    EXPECT_EQ(isLabelNameValid(&stBlock), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4U, "Find Electronic label Name Failed! LabelId:0x24\n")});
}

TEST(LabelName, ANameWithoutATerminatorIsUnknown)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Block(7U, "");
    (void)memset(stBlock.acLabelName, 'x', sizeof(stBlock.acLabelName));
    EXPECT_EQ(isLabelNameValid(&stBlock), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4U, "Find Electronic label Name Failed! LabelId:0x24\n")});
}

TEST(LabelName, APsuNameIsJudgedByItsBoardLabel)
{
    fake::Reset();
    for (const char *pcName : {"Board Product Name", "Board Serial Number", "Mfg.Date", "Board Manufacturer",
                               "Board Part Number"}) {
        const FRU_SET_PARA_S stBoard = Block(2U, pcName);
        const FRU_SET_PARA_S stProduct = Block(4U, pcName);
        EXPECT_EQ(isLabelNameValid(&stBoard), 1U);
        EXPECT_EQ(isLabelNameValid(&stProduct), 0U);
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(LabelName, SpecialSetsLeaveOutWhatTheyShould)
{
    fake::Reset();
    const FRU_SET_PARA_S astBlocks[] = {Block(7U, "Hardware FRU Label"), Block(8U, "Chassis MAC Address"),
                                        Block(8U, "Chassis MAC Address Count"), Block(9U, "Language Code"),
                                        Block(9U, "Product Node Type")};
    for (const FRU_SET_PARA_S &stBlock : astBlocks) {
        EXPECT_EQ(isLabelNameValid(&stBlock), 0U) << stBlock.acLabelName;
    }
    EXPECT_TRUE(fake::Messages().empty()); // a name that is merely not allowed is refused in silence
}

} // namespace
