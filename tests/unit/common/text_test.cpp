// SPDX-License-Identifier: Apache-2.0
#include "common/text.h"

#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "lib_fru_types.h"

namespace {

// Bytes in a buffer of exactly their size, so that a read past them shows.
std::unique_ptr<char[]> Exactly(const std::string &strText)
{
    auto upBuffer = std::make_unique<char[]>(strText.size());
    (void)memcpy(upBuffer.get(), strText.data(), strText.size());
    return upBuffer;
}

std::unique_ptr<char[]> Text(const std::string &strText)
{
    return Exactly(strText + '\0');
}

TEST(MemberText, AMemberIsCopiedUpToItsNulOrItsEnd)
{
    const auto upWhole = Exactly("0123456789ABCDEF");
    char acCopy[17];
    FRU_CopyText(acCopy, upWhole.get(), 16U);
    EXPECT_STREQ(acCopy, "0123456789ABCDEF");
    FRU_CopyText(acCopy, Text("name").get(), 16U);
    EXPECT_STREQ(acCopy, "name");
    FRU_CopyText(acCopy, upWhole.get(), 0U);
    EXPECT_STREQ(acCopy, "");
}

TEST(TextRow, TextsAreCountedAndFoundByTheirPlace)
{
    constexpr char acTexts[] = "first\0"
                               "\0"
                               "third\0";
    static_assert(FRU_CountTexts(acTexts) == 3U);
    EXPECT_STREQ(FRU_NthText(acTexts, 0U), "first");
    EXPECT_STREQ(FRU_NthText(acTexts, 1U), "");
    EXPECT_STREQ(FRU_NthText(acTexts, 2U), "third");
}

TEST(MemberText, ATerminatorCountsOnlyInsideTheMember)
{
    EXPECT_TRUE(FRU_IsTerminated(Text("012").get(), 4U));
    EXPECT_FALSE(FRU_IsTerminated(Text("0123").get(), 4U));
    EXPECT_FALSE(FRU_IsTerminated(Exactly("0123").get(), 4U));
}

TEST(MemberText, AMemberIsPrintedWholeEvenWithoutANul)
{
    FRU_SET_PARA_S stBlock = {};
    (void)strcpy(stBlock.acFRUName, "board");
    EXPECT_STREQ(FRU_TextOf(stBlock.acFRUName).acText, "board");
    (void)memset(stBlock.acFRUName, 'N', sizeof(stBlock.acFRUName));
    stBlock.ucOperateLogType = 'x'; // right behind it
    EXPECT_EQ(std::string(FRU_TextOf(stBlock.acFRUName).acText), std::string(16U, 'N'));
}

} // namespace
