// SPDX-License-Identifier: Apache-2.0
// Tables as people and programs hand them over, and texts that say nothing.
#include "toolkit/base/row_file.h"

#include <gtest/gtest.h>

#include "toolkit/base/error.h"
#include "toolkit/base/placeholder.h"

namespace {

using CELLS = std::vector<std::optional<std::string>>;

TEST(RowFile, CellsInQuotesKeepWhatWouldPartThem)
{
    const ROW_FILE_S stFile = ParseRows("a,b\r\n\"x,\"\"y\"\"\nz\",\n\n,\"\"\n", "t");
    ASSERT_EQ(stFile.vecRows.size(), 2U);
    EXPECT_EQ(stFile.vecRows[0].vecCells, (CELLS{"x,\"y\"\nz", std::nullopt}));
    EXPECT_EQ(stFile.vecRows[1].vecCells, (CELLS{std::nullopt, ""}));
    EXPECT_EQ(stFile.vecRows[1].uiLine, 5U);
}

TEST(RowFile, TheFirstSeparatorOfTheFirstLineCounts)
{
    EXPECT_EQ(ParseRows("a;b,c\n1;2\n", "t").vecColumns, (std::vector<std::string>{"a", "b,c"}));
    EXPECT_EQ(ParseRows("\"a,b\"\tc\n1\t2", "t").vecColumns, (std::vector<std::string>{"a,b", "c"}));
}

TEST(RowFile, JsonObjectsMayHaveDifferentMembers)
{
    for (const char *pcText :
         {R"([{"a":"1"},{"b":2,"a":null}])", "{\"a\":\"1\"}\n\n{\"b\":2,\"a\":null}\n"}) {
        const ROW_FILE_S stFile = ParseRows(pcText, "t");
        ASSERT_EQ(stFile.vecRows.size(), 2U);
        EXPECT_EQ(stFile.vecRows[0].vecCells, (CELLS{"1", std::nullopt}));
        EXPECT_EQ(stFile.vecRows[1].vecCells, (CELLS{std::nullopt, "2"}));
    }
}

TEST(RowFile, WhatCsvCellWritesIsReadBack)
{
    for (const std::string strText : {"", "plain", "a,b", "\"", "a\nb", "\t;", " x "}) {
        EXPECT_EQ(ParseRows("a,b\n" + CsvCell(strText) + ",x\n", "t").vecRows.at(0).vecCells.at(0), strText);
    }
    EXPECT_EQ(CsvCell(std::nullopt), "");
}

TEST(RowFile, WhatIsNoTableIsRefused)
{
    for (const char *pcText :
         {"a,b\n1,2,3\n", "a\n\"x", "a\n\"x\"y\n", "a,a\n1,2\n", "{\"a\":[1]}", "[1]", "{\"a\""}) {
        EXPECT_THROW((void)ParseRows(pcText, "t"), Error) << pcText;
    }
}

TEST(Placeholder, WhatMakersLeaveIsKnownHoweverItIsWritten)
{
    for (const char *pcText :
         {"To be filled by O.E.M.", "TO BE FILLED BY O.E.M", "Default string", "N/A", "none", "Not Specified",
          "    ", "----", ".", "0000000000", "xxxx", "AAAAAA", "System Serial Number", "(null)"}) {
        EXPECT_NE(WhyPlaceholder(pcText, TextKind::Number), "") << pcText;
        EXPECT_NE(WhyPlaceholder(pcText, TextKind::Word), "") << pcText;
    }
    for (const char *pcText : {"123456789", "0123456789", "1234567890", "123456"}) {
        EXPECT_NE(WhyPlaceholder(pcText, TextKind::Number), "") << pcText;
        EXPECT_EQ(WhyPlaceholder(pcText, TextKind::Word), "") << pcText;
    }
}

TEST(Placeholder, NumbersAndNamesOfDevicesAreNone)
{
    for (const char *pcText : {"", "LH22024170042", "000", "0001", "12345", "234567", "PS-1", "11112",
                               "OEM Systems", "Naumann", "TBD-1"}) {
        EXPECT_EQ(WhyPlaceholder(pcText, TextKind::Number), "") << pcText;
        EXPECT_EQ(WhyPlaceholder(pcText, TextKind::Word), "") << pcText;
    }
}

TEST(Placeholder, BlanksAroundAndInsideAreTold)
{
    EXPECT_EQ(WhyBlanks(" A", TextKind::Number), "it begins with a blank");
    EXPECT_EQ(WhyBlanks("A\t", TextKind::Word), "it ends with a blank");
    EXPECT_EQ(WhyBlanks(" A ", TextKind::Word), "it begins and ends with a blank");
    EXPECT_EQ(WhyBlanks("A B", TextKind::Number), "it has a blank inside");
    EXPECT_EQ(WhyBlanks("A B", TextKind::Word), "");
    EXPECT_NE(WhyBlanks("A  B", TextKind::Word), "");
    EXPECT_EQ(WhyBlanks("", TextKind::Number), "");
}

} // namespace
