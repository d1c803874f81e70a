// SPDX-License-Identifier: Apache-2.0
#include "codec_test_helper.h"

namespace {

using namespace codec;

u8 Crc8(const u8 *pucBytes, u32 uiCount)
{
    u32 uiCrc = 0;
    for (u32 i = 0; i < uiCount * 8U; ++i) {
        const u32 uiBit = static_cast<u32>(pucBytes[i / 8U]) >> (7U - i % 8U) & 1U;
        const u32 uiTop = uiCrc >> 7U & 1U;
        uiCrc = (uiCrc << 1U & 0xFFU) ^ ((uiTop ^ uiBit) != 0U ? 0x07U : 0U);
    }
    return static_cast<u8>(uiCrc);
}

BYTES Block(bool bValid)
{
    BYTES vecBlock;
    for (u32 i = 0; i < 32U; ++i) {
        vecBlock.push_back(static_cast<u8>(0x30U + i));
    }
    vecBlock[0] = static_cast<u8>(Crc8(&vecBlock[1], 15) ^ (bValid ? 0U : 1U));
    vecBlock[16] = static_cast<u8>(Crc8(&vecBlock[17], 15) ^ (bValid ? 0U : 1U));
    return vecBlock;
}

TEST(InterpretALLHwFRUData, FillsEveryMember)
{
    fake::Reset();
    FRU_HW_DATA_S stData{};
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(image::Exact(Block(true)).get(), 32, &stData), 0U);
    EXPECT_EQ(stData.stHwBoardInfo.ucBoardCrc8, Block(true)[0]);
    EXPECT_EQ(stData.stHwBoardInfo.aucBoardType[0], 0x31U);
    EXPECT_EQ(stData.stHwBoardInfo.aucBoardType[3], 0x34U);
    EXPECT_EQ(stData.stHwBoardInfo.ucPCBVer, 0x35U);
    EXPECT_EQ(stData.stHwBoardInfo.ucEEPROMVer, 0x36U);
    EXPECT_EQ(stData.stHwBoardInfo.ucCPLDVer, 0x37U);
    EXPECT_EQ(stData.stHwBoardInfo.aucBoardReserved[7], 0x3FU);
    EXPECT_EQ(stData.stHwDiagInfo.ucDiagCrc8, Block(true)[16]);
    EXPECT_EQ(stData.stHwDiagInfo.aucDiagReserved[13], 0x4EU);
    EXPECT_EQ(stData.stHwDiagInfo.ucOEMFlag, 0x4FU);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(InterpretALLHwFRUData, RefusesNull)
{
    fake::Reset();
    FRU_HW_DATA_S stData{};
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(nullptr, 32, &stData), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(&ucByte, 32, nullptr), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(nullptr, 1, nullptr), 0x29000008U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ANALYZER_InterpretALLHwFRUData", "pucBuff"),
                                       Null("FRU_ANALYZER_InterpretALLHwFRUData", "pstFruHwData"),
                                       Null("FRU_ANALYZER_InterpretALLHwFRUData", "pucBuff")}));
}

TEST(InterpretALLHwFRUData, RefusesAnotherSizeAndLeavesTheRecordAlone)
{
    for (const u32 uiSize : {0U, 31U, 33U, 64U}) {
        fake::Reset();
        FRU_HW_DATA_S stData;
        (void)memset(&stData, 0x5A, sizeof(stData));
        const BYTES vecBlock(uiSize + 1U);
        EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(vecBlock.data(), uiSize, &stData), 0x29000008U);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(2, "Hw Fru size:" + std::to_string(uiSize) + " is not valid!")});
        EXPECT_EQ(std::string(reinterpret_cast<char *>(&stData), 32), std::string(32, '\x5A'));
    }
}

TEST(InterpretALLHwFRUData, WrongCrcsAreWarningsOnly)
{
    fake::Reset();
    FRU_HW_DATA_S stData{};
    const BYTES vecBlock = Block(false);
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(vecBlock.data(), 32, &stData), 0U);
    EXPECT_EQ(memcmp(&stData, vecBlock.data(), 32), 0);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, "Check HwBoardInfo CRC8 failed!"), Line(4, "Check HwDiagInfo CRC8 failed!")}));
}

TEST(InterpretALLHwFRUData, EachHalfHasItsOwnCrc)
{
    for (const u32 uiHalf : {0U, 16U}) {
        fake::Reset();
        FRU_HW_DATA_S stData{};
        BYTES vecBlock = Block(true);
        vecBlock[uiHalf + 15U] ^= 0x80U;
        EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(vecBlock.data(), 32, &stData), 0U);
        EXPECT_EQ(fake::Messages(), LINES{Line(4, uiHalf == 0U ? "Check HwBoardInfo CRC8 failed!"
                                                               : "Check HwDiagInfo CRC8 failed!")});
    }
}

TEST(ConvertToHwArray, StoresBothCrcsInRecordAndBuffer)
{
    fake::Reset();
    FRU_HW_DATA_S stData;
    (void)memcpy(&stData, Block(false).data(), 32);
    const std::unique_ptr<u8[]> upBuf = image::Exact(BYTES(32));
    EXPECT_EQ(FRU_ANALYZER_ConvertToHwArray(&stData, 32, upBuf.get()), 0U);
    EXPECT_EQ(BYTES(upBuf.get(), upBuf.get() + 32), Block(true));
    EXPECT_EQ(memcmp(&stData, Block(true).data(), 32), 0);
    FRU_HW_DATA_S stAgain{};
    EXPECT_EQ(FRU_ANALYZER_InterpretALLHwFRUData(upBuf.get(), 32, &stAgain), 0U);
    EXPECT_EQ(memcmp(&stAgain, &stData, 32), 0);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertToHwArray, RefusesNull)
{
    fake::Reset();
    FRU_HW_DATA_S stData{};
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ANALYZER_ConvertToHwArray(&stData, 32, nullptr), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_ConvertToHwArray(nullptr, 32, &ucByte), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_ConvertToHwArray(nullptr, 1, nullptr), 0x29000008U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ANALYZER_ConvertToHwArray", "pucBuf"),
                                       Null("FRU_ANALYZER_ConvertToHwArray", "pstHwData"),
                                       Null("FRU_ANALYZER_ConvertToHwArray", "pucBuf")}));
}

TEST(ConvertToHwArray, RefusesAnotherSizeAndWritesNothing)
{
    for (const u32 uiSize : {0U, 31U, 33U}) {
        fake::Reset();
        FRU_HW_DATA_S stData;
        (void)memset(&stData, 0x5A, sizeof(stData));
        BYTES vecBuf(33, 0x11U);
        EXPECT_EQ(FRU_ANALYZER_ConvertToHwArray(&stData, uiSize, vecBuf.data()), 0x29000008U);
        EXPECT_EQ(vecBuf, BYTES(33, 0x11U));
        EXPECT_EQ(std::string(reinterpret_cast<char *>(&stData), 32), std::string(32, '\x5A'));
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(2, "Hw data size:" + std::to_string(uiSize) + " is not valid!")});
    }
}

} // namespace
