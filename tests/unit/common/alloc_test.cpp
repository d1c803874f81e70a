// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#define FRU_DIAG_FILE "lib_fru.c"
#include "common/alloc.h"
#include "common/diag.h"
#include "fake/fake_platform.h"

namespace {

TEST(Alloc, MallocFormGivesZeroedMemory)
{
    fake::Reset();
    const FRU_BUFFER upBuffer(static_cast<u8 *>(FRU_ZALLOC(64U)));
    ASSERT_NE(upBuffer, nullptr);
    for (u32 i = 0; i < 64U; ++i) {
        EXPECT_EQ(upBuffer[i], 0U);
    }
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(Alloc, PlainFormGivesMemoryToFill)
{
    fake::Reset();
    const FRU_BUFFER upBuffer(static_cast<u8 *>(FRU_ALLOC(64U)));
    ASSERT_NE(upBuffer, nullptr);
    (void)memset(upBuffer.get(), 0xA5, 64U);
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 1U);
    EXPECT_TRUE(fake::Messages().empty());
}

// Memory that was used before is the case that matters.
TEST(Alloc, ZeroedFormsClearMemoryThatWasUsedBefore)
{
    for (const bool bCallocForm : {false, true}) {
        fake::Reset();
        u8 *pucUsed = static_cast<u8 *>(FRU_ALLOC(64U));
        ASSERT_NE(pucUsed, nullptr);
        (void)memset(pucUsed, 0xA5, 64U);
        FRU_FREE(pucUsed);
        const FRU_BUFFER upBuffer(static_cast<u8 *>(bCallocForm ? FRU_CALLOC(8U, 8U) : FRU_ZALLOC(64U)));
        ASSERT_NE(upBuffer, nullptr);
        for (u32 i = 0; i < 64U; ++i) {
            EXPECT_EQ(upBuffer[i], 0U);
        }
    }
}

TEST(Alloc, CopyHoldsTheSameBytesAndRefusesNone)
{
    fake::Reset();
    const u8 aucBytes[] = {1U, 2U, 3U};
    const FRU_BUFFER upCopy(static_cast<u8 *>(FRU_COPY(aucBytes, sizeof(aucBytes))));
    ASSERT_NE(upCopy, nullptr);
    EXPECT_EQ(memcmp(upCopy.get(), aucBytes, sizeof(aucBytes)), 0);
    EXPECT_NE(upCopy.get(), aucBytes);
    EXPECT_EQ(FRU_COPY_IN(aucBytes, 0U, "FRU_Caller"), nullptr);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"0/3 lib_fru.c: Invalid MALLOC size (size is 0)is detected"});
    EXPECT_EQ(fake::TakeStdout(), "Invalid MALLOC size (size is 0)is detected in # FRU_Caller lib_fru.c\n");
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_COPY(aucBytes, 2U), nullptr);
    fake::Disarm();
}

TEST(Alloc, CallocFormRefusesAProductThatWraps)
{
    fake::Reset();
    EXPECT_EQ(FRU_CALLOC(SIZE_MAX / 2U, 3U), nullptr);
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(Alloc, MallocFormReportsSizeZeroToLogAndStdout)
{
    fake::Reset();
    for (const bool bZeroed : {false, true}) {
        fake::Reset();
        EXPECT_EQ(bZeroed ? FRU_ZALLOC_IN(0U, "FRU_Caller") : FRU_ALLOC_IN(0U, "FRU_Caller"), nullptr);
        EXPECT_EQ(fake::Messages(),
                  std::vector<std::string>{"0/3 lib_fru.c: Invalid MALLOC size (size is 0)is detected"});
        EXPECT_EQ(fake::TakeStdout(),
                  "Invalid MALLOC size (size is 0)is detected in # FRU_Caller lib_fru.c\n");
        EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
    }
}

TEST(Alloc, CallocFormReportsSizeZeroTwiceToStdoutOnly)
{
    for (const auto &[uiCount, uiSize] : {std::pair<u32, u32>{0U, 8U}, {8U, 0U}}) {
        fake::Reset();
        EXPECT_EQ(FRU_CALLOC_IN(uiCount, uiSize, "FRU_Caller"), nullptr);
        EXPECT_TRUE(fake::Messages().empty());
        EXPECT_EQ(fake::TakeStdout(),
                  "Invalid CALLOC size (size or nmemb is 0 )is detected"
                  "Invalid CALLOC size (size or nmemb is 0)is detected in # FRU_Caller lib_fru.c\n");
    }
}

TEST(Alloc, FailureIsNullWithoutAMessage)
{
    fake::Reset();
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_ALLOC(8U), nullptr);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_ZALLOC(8U), nullptr);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_CALLOC(1U, 8U), nullptr);
    fake::Disarm();
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(Alloc, FreeNullsThePointer)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    u8 *pucBuffer = static_cast<u8 *>(FRU_ZALLOC(8U));
    EXPECT_EQ(fake::LiveAllocations(), uiBefore + 1U);
    FRU_FREE(pucBuffer);
    EXPECT_EQ(pucBuffer, nullptr);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
}

} // namespace
