// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/field_writer.h"

#include <sys/mman.h>
#include <unistd.h>

#include "codec_test_helper.h"

namespace {

using namespace codec;

constexpr u8 g_ucGuard = 0x5AU;

TEST(WriteFRUDataByLength, CopiesAndReturnsTheCount)
{
    fake::Reset();
    BYTES vecBuf(4, g_ucGuard);
    const u8 aucData[] = {1, 2, 3};
    EXPECT_EQ(FRU_WriteFRUDataByLength(aucData, 3, 3, vecBuf.data()), 3);
    EXPECT_EQ(vecBuf, (BYTES{1, 2, 3, g_ucGuard}));
    EXPECT_EQ(FRU_WriteFRUDataByLength(aucData, 0, 0, vecBuf.data()), 0);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(WriteFRUDataByLength, RefusesMoreThanTheRoom)
{
    fake::Reset();
    BYTES vecBuf(4, g_ucGuard);
    const u8 aucData[] = {1, 2, 3};
    EXPECT_EQ(FRU_WriteFRUDataByLength(aucData, 2, 3, vecBuf.data()), -1);
    EXPECT_EQ(vecBuf, BYTES(4, g_ucGuard));
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "FRU data exceeds[0x3, 0x2]")});
}

TEST(WriteFRUDataByLength, RefusesNull)
{
    fake::Reset();
    u8 ucByte = 0;
    EXPECT_EQ(FRU_WriteFRUDataByLength(&ucByte, 1, 1, nullptr), -1);
    EXPECT_EQ(FRU_WriteFRUDataByLength(nullptr, 1, 1, &ucByte), -1);
    EXPECT_EQ(FRU_WriteFRUDataByLength(nullptr, 1, 0, &ucByte), -1);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_WriteFRUDataByLength", "pucBuf"), Null("FRU_WriteFRUDataByLength", "pucData"),
                     Null("FRU_WriteFRUDataByLength", "pucData")}));
}

TEST(WriteFRUDataByType, EveryLengthUpTo63)
{
    for (u32 uiLength = 0; uiLength < 64U; ++uiLength) {
        fake::Reset();
        const std::string strText(uiLength, 't');
        BYTES vecBuf(uiLength + 2U, g_ucGuard);
        EXPECT_EQ(FRU_WriteFRUDataByType(strText.c_str(), uiLength + 1U, vecBuf.data()),
                  static_cast<i32>(uiLength + 1U));
        BYTES vecExpected = image::Text(strText);
        vecExpected.push_back(g_ucGuard);
        EXPECT_EQ(vecBuf, vecExpected);
        EXPECT_EQ(fake::Messages(), LINES{});
    }
}

TEST(WriteFRUDataByType, NullWritesAnEmptyFieldThatCountsForNothing)
{
    fake::Reset();
    BYTES vecBuf(2, g_ucGuard);
    EXPECT_EQ(FRU_WriteFRUDataByType(nullptr, 1, vecBuf.data()), 0);
    EXPECT_EQ(vecBuf, (BYTES{0xC0U, g_ucGuard}));
    EXPECT_EQ(FRU_WriteFRUDataByType(nullptr, 0, vecBuf.data() + 1), 0);
    EXPECT_EQ(vecBuf, (BYTES{0xC0U, g_ucGuard})); // no room, nothing written
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(WriteFRUDataByType, RefusesMoreThanTheRoom)
{
    fake::Reset();
    BYTES vecBuf(4, g_ucGuard);
    EXPECT_EQ(FRU_WriteFRUDataByType("abc", 3, vecBuf.data()), -1);
    EXPECT_EQ(FRU_WriteFRUDataByType("", 0, vecBuf.data()), -1);
    EXPECT_EQ(vecBuf, BYTES(4, g_ucGuard));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2, "FRU data exceeds[0x4, 0x3]"), Line(2, "FRU data exceeds[0x1, 0]")}));
}

TEST(WriteFRUDataByType, RefusesATextThatTheLengthBitsCannotHold)
{
    fake::Reset();
    BYTES vecBuf(200, g_ucGuard);
    EXPECT_EQ(FRU_WriteFRUDataByType(std::string(64, 'x').c_str(), 200, vecBuf.data()), -1);
    EXPECT_EQ(FRU_WriteFRUDataByType(std::string(127, 'x').c_str(), 200, vecBuf.data()), -1);
    EXPECT_EQ(FRU_WriteFRUDataByType(std::string(127, 'x').c_str(), 100, vecBuf.data()), -1);
    EXPECT_EQ(vecBuf, BYTES(200, g_ucGuard));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2, "FRU data exceeds[0x41, 0x40]"), Line(2, "FRU data exceeds[0x80, 0x40]"),
                     Line(2, "FRU data exceeds[0x80, 0x64]")}));
}

TEST(WriteFRUDataByType, RefusesItAlsoWhereItWouldJustFitTheRoom)
{
    fake::Reset();
    BYTES vecBuf(65, g_ucGuard);
    EXPECT_EQ(FRU_WriteFRUDataByType(std::string(64, 'x').c_str(), 65, vecBuf.data()), -1);
    EXPECT_EQ(vecBuf, BYTES(65, g_ucGuard));
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "FRU data exceeds[0x41, 0x40]")});
}

#if SIZE_MAX > UINT32_MAX
// 4 GiB and a few characters, of one small file mapped again and again.
TEST(WriteFRUDataByType, ALengthIsNotCutTo32Bits)
{
    constexpr size_t PIECE = 64U * 1024U * 1024U;
    constexpr size_t PIECES = (size_t{1} << 32U) / PIECE;
    const int iFile = memfd_create("text", 0);
    ASSERT_GE(iFile, 0);
    ASSERT_EQ(ftruncate(iFile, PIECE), 0);
    void *pPiece = mmap(nullptr, PIECE, PROT_READ | PROT_WRITE, MAP_SHARED, iFile, 0);
    ASSERT_NE(pPiece, MAP_FAILED);
    (void)memset(pPiece, 'x', PIECE);
    void *pText =
        mmap(nullptr, (PIECES + 1U) * PIECE, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pText, MAP_FAILED);
    char *pcText = static_cast<char *>(pText);
    for (size_t i = 0; i <= PIECES; ++i) {
        ASSERT_NE(mmap(pcText + i * PIECE, PIECE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED, iFile, 0),
                  MAP_FAILED);
    }
    for (const size_t uiLength : {PIECES * PIECE - 1U, PIECES * PIECE + 10U}) {
        pcText[uiLength] = '\0';
        fake::Reset();
        BYTES vecBuf(64, g_ucGuard);
        EXPECT_EQ(FRU_WriteFRUDataByType(pcText, 64, vecBuf.data()), -1);
        EXPECT_EQ(vecBuf, BYTES(64, g_ucGuard));
        EXPECT_EQ(fake::Messages(), LINES{Line(2, "FRU data exceeds[0xffffffff, 0x40]")});
        pcText[uiLength] = 'x';
    }
    (void)munmap(pText, (PIECES + 1U) * PIECE);
    (void)munmap(pPiece, PIECE);
    (void)close(iFile);
}
#endif

TEST(Writer, StopsAtItsRoom)
{
    fake::Reset();
    BYTES vecBuf(5, g_ucGuard);
    FRU_WRITER_S stWriter = {vecBuf.data(), 4U, 0U};
    EXPECT_TRUE(FRU_PutByte(stWriter, 1U));
    EXPECT_TRUE(FRU_PutText(stWriter, reinterpret_cast<const u8 *>("ab")));
    EXPECT_EQ(stWriter.uiUsed, 4U);
    EXPECT_FALSE(FRU_PutByte(stWriter, 1U));
    EXPECT_FALSE(FRU_PutText(stWriter, reinterpret_cast<const u8 *>("")));
    EXPECT_TRUE(FRU_PutText(stWriter, nullptr));
    EXPECT_EQ(stWriter.uiUsed, 4U);
    EXPECT_EQ(vecBuf, (BYTES{1, 0xC2U, 'a', 'b', g_ucGuard}));
    EXPECT_EQ(fake::Messages(), LINES(2, Line(2, "FRU data exceeds[0x1, 0]")));
}

} // namespace
