// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "common/reader.h"

namespace {

TEST(Reader, ReadsToTheEndAndNoFurther)
{
    const u8 aucBytes[] = {1, 2, 3};
    FRU_READER_S stReader = FRU_ReaderOver(aucBytes, sizeof(aucBytes));
    EXPECT_EQ(FRU_ReadByte(stReader), 1U);
    EXPECT_EQ(FRU_ReaderLeft(stReader), 2U);
    EXPECT_EQ(FRU_ReadBytes(stReader, 2U), aucBytes + 1);
    EXPECT_EQ(FRU_ReaderLeft(stReader), 0U);
    EXPECT_EQ(FRU_ReadBytes(stReader, 0U), aucBytes + 3);
    EXPECT_FALSE(stReader.bPoisoned);
}

TEST(Reader, AReadPastTheEndPoisons)
{
    const u8 aucBytes[] = {1, 2, 3};
    FRU_READER_S stReader = FRU_ReaderOver(aucBytes, sizeof(aucBytes));
    EXPECT_EQ(FRU_ReadBytes(stReader, 4U), nullptr);
    EXPECT_TRUE(stReader.bPoisoned);
    EXPECT_EQ(FRU_ReaderLeft(stReader), 0U);
    EXPECT_EQ(FRU_ReadByte(stReader), 0U);
    EXPECT_EQ(FRU_ReadBytes(stReader, 1U), nullptr);
}

// A caller may call any length its own; only what is read counts.
TEST(Reader, ALengthPastTheAddressSpaceIsOnlyACount)
{
    const u8 *pucLast = reinterpret_cast<const u8 *>(UINTPTR_MAX - 16U);
    FRU_READER_S stReader = FRU_ReaderOver(pucLast, 0xFFFFFFFFU);
    EXPECT_EQ(FRU_ReaderLeft(stReader), 0xFFFFFFFFU);
    EXPECT_EQ(FRU_ReadBytes(stReader, 8U), pucLast);
    EXPECT_EQ(FRU_ReaderLeft(stReader), 0xFFFFFFF7U);
    EXPECT_FALSE(stReader.bPoisoned);
}

} // namespace
