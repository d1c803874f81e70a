// SPDX-License-Identifier: Apache-2.0
#include "codec_test_helper.h"

namespace {

using namespace codec;

std::string Escape(const std::string &strText)
{
    char *pcEscaped = FRU_ANALYZER_Escape(strText.c_str());
    const std::string strEscaped = Str(pcEscaped);
    model::Free(pcEscaped);
    return strEscaped;
}

TEST(Escape, FourCharactersAreEscaped)
{
    fake::Reset();
    EXPECT_EQ(Escape("it's"), "it\\'s");
    EXPECT_EQ(Escape("a\\b"), "a\\\\b");
    EXPECT_EQ(Escape("a\nb\rc"), "a\\nb\\rc");
    EXPECT_EQ(Escape("'\\\n\r"), "\\'\\\\\\n\\r");
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(Escape, EverythingElseStays)
{
    fake::Reset();
    std::string strAll;
    for (int i = 1; i < 256; ++i) {
        if (i != '\'' && i != '\\' && i != '\n' && i != '\r') {
            strAll.push_back(static_cast<char>(i));
        }
    }
    EXPECT_EQ(Escape(strAll), strAll);
    EXPECT_EQ(Escape("%s%n\"\t"), "%s%n\"\t");
}

TEST(Escape, ATextOfEscapesOnlyFitsWithItsTerminator)
{
    fake::Reset();
    for (size_t i = 1; i < 70U; ++i) {
        EXPECT_EQ(Escape(std::string(i, '\n')).size(), 2U * i);
    }
}

TEST(Escape, NullGivesNull)
{
    fake::Reset();
    EXPECT_EQ(FRU_ANALYZER_Escape(nullptr), nullptr);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_ANALYZER_Escape", "pcStr")});
}

TEST(Escape, EmptyGivesANewEmptyText)
{
    fake::Reset();
    EXPECT_EQ(Escape(""), "");
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 1U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(Escape, OutOfMemoryGivesNull)
{
    const struct
    {
        const char *pcText;
        u32 uiNth;
        LINES vecMessages;
    } astCases[] = {
        {"", 1, {Line(2, "Memory allocation failing!")}},
        {"x", 1, {Line(2, "Memory BkStr allocation failing!")}},
        {"x", 2, {}},
        {"'", 2, {}},
    };
    for (const auto &stCase : astCases) {
        fake::Reset();
        const u32 uiBefore = fake::LiveAllocations();
        fake::Arm({fake::KIND_E::ALLOC, stCase.uiNth, false});
        EXPECT_EQ(FRU_ANALYZER_Escape(stCase.pcText), nullptr);
        fake::Disarm();
        EXPECT_EQ(fake::Messages(), stCase.vecMessages);
        EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    }
}

} // namespace
