// SPDX-License-Identifier: Apache-2.0
// EEPROM access.
#include <algorithm>
#include <array>
#include <random>
#include <utility>

#include "bmc_eeprom.h"
#include "controller.h"

namespace {

using controller::BYTES;
using controller::g_uiPageSize;

constexpr u8 g_ucType = 9;
constexpr u8 g_aucLocation[4] = {1, 0xA0, 0, 0xEE};

class Eeprom : public controller::ContractTest
{
  protected:
    static BYTES Numbered(u32 uiLen)
    {
        BYTES vecBytes(uiLen);
        for (u32 i = 0; i < uiLen; ++i) {
            vecBytes[i] = static_cast<u8>(i * 7U + i / 256U);
        }
        return vecBytes;
    }

    // The count and the buffer, of which 0x5A bytes are untouched.
    static std::pair<i32, BYTES> Read(u32 uiOffset, u32 uiLength)
    {
        BYTES vecBuf(uiLength, 0x5A);
        const i32 iCount =
            ReadWriteEEPROM(g_ucType, g_aucLocation, vecBuf.data(), uiOffset, uiLength, BMC_EEPROM_READ);
        return {iCount, vecBuf};
    }

    static i32 Write(u32 uiOffset, BYTES vecData)
    {
        return ReadWriteEEPROM(g_ucType, g_aucLocation, vecData.data(), uiOffset,
                               static_cast<u32>(vecData.size()), BMC_EEPROM_WRITE);
    }

    static BYTES Chip()
    {
        return controller::ChipContent(g_ucType, g_aucLocation);
    }
};

TEST_F(Eeprom, ReadsAnySpan)
{
    const BYTES vecChip = Numbered(512);
    controller::LayChip(g_ucType, g_aucLocation, vecChip);
    for (const auto &[uiOffset, uiLength] :
         {std::pair<u32, u32>{0, 512}, {0, 1}, {31, 2}, {300, 77}, {511, 1}}) {
        const BYTES vecWanted(vecChip.begin() + uiOffset, vecChip.begin() + uiOffset + uiLength);
        EXPECT_EQ(Read(uiOffset, uiLength), std::make_pair(static_cast<i32>(uiLength), vecWanted))
            << uiOffset;
    }
    EXPECT_EQ(Chip(), vecChip);
}

TEST_F(Eeprom, AnswersShortAtTheEndAndNothingBeyond)
{
    const BYTES vecChip = Numbered(256);
    controller::LayChip(g_ucType, g_aucLocation, vecChip);
    BYTES vecWanted(100, 0x5A);
    std::copy(vecChip.end() - 40, vecChip.end(), vecWanted.begin());
    EXPECT_EQ(Read(216, 100), std::make_pair(40, vecWanted));
    for (const u32 uiOffset : {256U, 257U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(Read(uiOffset, 8), std::make_pair(0, BYTES(8, 0x5A))) << uiOffset;
    }
}

TEST_F(Eeprom, WritesAnySpanAndNothingBesideIt)
{
    for (const auto &[uiOffset, uiLength] :
         {std::pair<u32, u32>{0, 512}, {0, 1}, {31, 2}, {5, 27}, {5, 28}, {64, 64}, {33, 200}, {511, 1}}) {
        controller::LayChip(g_ucType, g_aucLocation, BYTES(512, 0xFF));
        const BYTES vecData = Numbered(uiLength);
        BYTES vecWanted(512, 0xFF);
        std::copy(vecData.begin(), vecData.end(), vecWanted.begin() + uiOffset);
        EXPECT_EQ(Write(uiOffset, vecData), static_cast<i32>(uiLength));
        EXPECT_EQ(Chip(), vecWanted) << uiOffset;
    }
}

TEST_F(Eeprom, WritesShortAtTheEndAndNeverGrowsOrWraps)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(256, 0xFF));
    EXPECT_EQ(Write(250, BYTES(20, 1)), 6);
    BYTES vecWanted(256, 0xFF);
    std::fill(vecWanted.end() - 6, vecWanted.end(), u8{1});
    EXPECT_EQ(Chip(), vecWanted);
    EXPECT_EQ(Write(256, BYTES(20, 2)), 0);
    EXPECT_EQ(Write(0xFFFFFFF0U, BYTES(20, 2)), 0);
    EXPECT_EQ(Chip(), vecWanted);
}

TEST_F(Eeprom, TransfersOfNothingSucceedOnAChip)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    EXPECT_EQ(ReadWriteEEPROM(g_ucType, g_aucLocation, nullptr, 0, 0, BMC_EEPROM_READ), 0);
    EXPECT_EQ(ReadWriteEEPROM(g_ucType, g_aucLocation, nullptr, 0, 0, BMC_EEPROM_WRITE), 0);
    EXPECT_EQ(Chip(), BYTES(16, 3));
}

TEST_F(Eeprom, AbsentChipsAnswerNegative)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    for (const auto &aucOther : {std::array<u8, 3>{2, 0xA0, 0}, {1, 0xA2, 0}, {1, 0xA0, 1}}) {
        BYTES vecBuf(4, 0x5A);
        EXPECT_LT(ReadWriteEEPROM(g_ucType, aucOther.data(), vecBuf.data(), 0, 4, BMC_EEPROM_READ), 0);
        EXPECT_LT(ReadWriteEEPROM(g_ucType, aucOther.data(), vecBuf.data(), 0, 4, BMC_EEPROM_WRITE), 0);
        EXPECT_LT(ReadWriteEEPROM(g_ucType, aucOther.data(), nullptr, 0, 0, BMC_EEPROM_READ), 0);
        EXPECT_EQ(vecBuf, BYTES(4, 0x5A));
    }
    EXPECT_EQ(Chip(), BYTES(16, 3));
}

TEST_F(Eeprom, SwitchLevelsAreDifferentChips)
{
    const u8 aucBehind[3] = {1, 0xA0, 7};
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    controller::LayChip(g_ucType, aucBehind, BYTES(16, 4));
    u8 ucByte = 0;
    EXPECT_EQ(ReadWriteEEPROM(g_ucType, aucBehind, &ucByte, 0, 1, BMC_EEPROM_READ), 1);
    EXPECT_EQ(ucByte, 4U);
    EXPECT_EQ(Read(0, 1), std::make_pair(1, BYTES{3}));
}

TEST_F(Eeprom, AllI2cTypesTakeALocationAndTheOthersAName)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    controller::LayChip(1, "baseboard", BYTES(16, 4));
    for (u32 uiType = 0; uiType < 256U; ++uiType) {
        const bool bI2c = uiType >= 9U && uiType <= 15U;
        const void *pLocation = bI2c ? static_cast<const void *>(g_aucLocation) : "baseboard";
        u8 ucByte = 0;
        EXPECT_EQ(ReadWriteEEPROM(static_cast<u8>(uiType), pLocation, &ucByte, 15, 1, BMC_EEPROM_READ), 1);
        EXPECT_EQ(ucByte, bI2c ? 3U : 4U) << uiType;
    }
}

TEST_F(Eeprom, WritesToANamedChip)
{
    controller::LayChip(0, "psu-1", BYTES(64, 0));
    BYTES vecData(40, 9);
    EXPECT_EQ(ReadWriteEEPROM(0, "psu-1", vecData.data(), 8, 40, BMC_EEPROM_WRITE), 40);
    BYTES vecWanted(64, 0);
    std::fill_n(vecWanted.begin() + 8, 40, u8{9});
    EXPECT_EQ(controller::ChipContent(0, "psu-1"), vecWanted);
}

TEST_F(Eeprom, RefusesNullPointersAndOtherDirections)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    u8 aucBuf[4] = {9, 9, 9, 9};
    EXPECT_LT(ReadWriteEEPROM(g_ucType, nullptr, aucBuf, 0, 4, BMC_EEPROM_READ), 0);
    EXPECT_LT(ReadWriteEEPROM(1, nullptr, aucBuf, 0, 4, BMC_EEPROM_READ), 0);
    EXPECT_LT(ReadWriteEEPROM(g_ucType, g_aucLocation, nullptr, 0, 4, BMC_EEPROM_READ), 0);
    EXPECT_LT(ReadWriteEEPROM(g_ucType, g_aucLocation, nullptr, 0, 4, BMC_EEPROM_WRITE), 0);
    for (const u8 ucDirection : {u8{0}, u8{3}, u8{255}}) {
        EXPECT_LT(ReadWriteEEPROM(g_ucType, g_aucLocation, aucBuf, 0, 4, ucDirection), 0);
    }
    EXPECT_EQ(aucBuf[0], 9U);
    EXPECT_EQ(Chip(), BYTES(16, 3));
}

TEST_F(Eeprom, AProtectedChipIsReadButNotWritten)
{
    controller::LayChip(g_ucType, g_aucLocation, BYTES(16, 3));
    controller::ProtectChip(g_ucType, g_aucLocation);
    EXPECT_LT(Write(0, BYTES(4, 1)), 0);
    EXPECT_EQ(Read(0, 4), std::make_pair(4, BYTES(4, 3)));
    EXPECT_EQ(Chip(), BYTES(16, 3));
}

// Fills the chip again and again, page by page, until it is killed.
int FillUntilKilled(u8 ucFirst, u32 uiSize)
{
    for (u32 uiCount = 0;; ++uiCount) {
        BYTES vecData(uiSize, static_cast<u8>(ucFirst + uiCount));
        if (ReadWriteEEPROM(g_ucType, g_aucLocation, vecData.data(), 0, uiSize, BMC_EEPROM_WRITE) !=
            static_cast<i32>(uiSize)) {
            return 1;
        }
    }
}

// True when every page is of one byte and no page is newer than the one ahead of it, by one fill at most.
bool IsCleanCut(const BYTES &vecChip)
{
    bool bClean = true;
    for (size_t uiAt = 0; uiAt < vecChip.size() && bClean; ++uiAt) {
        const bool bPageStart = uiAt % g_uiPageSize == 0U;
        const u8 ucBack = uiAt == 0U ? u8{0} : static_cast<u8>(vecChip[uiAt - 1U] - vecChip[uiAt]);
        bClean = ucBack == 0U || (bPageStart && ucBack == 1U);
    }
    return bClean && static_cast<u8>(vecChip.front() - vecChip.back()) <= 1U;
}

TEST_F(Eeprom, AKilledWriteLeavesWholePages)
{
    std::mt19937 random(5);
    constexpr u32 uiSize =
        32768; // large, so that a kill falls among the pages rather than into the final sync
    controller::LayChip(g_ucType, g_aucLocation, BYTES(uiSize, 0));
    constexpr u32 FEW = 5;
    u32 uiCut = 0;
    for (u32 uiRound = 0; uiRound < 200U || (uiCut <= FEW && uiRound < 20000U); ++uiRound) {
        const u8 ucBefore = Chip().front();
        controller::LayChip(g_ucType, g_aucLocation, BYTES(uiSize, ucBefore));
        const pid_t iPid =
            controller::Spawn([&] { return FillUntilKilled(static_cast<u8>(ucBefore + 1U), uiSize); });
        controller::Pause(static_cast<unsigned>(1000U + random() % 4000U));
        controller::Kill(iPid);
        const BYTES vecChip = Chip();
        ASSERT_EQ(vecChip.size(), uiSize);
        ASSERT_TRUE(IsCleanCut(vecChip)) << "round " << uiRound << testing::PrintToString(vecChip);
        uiCut += vecChip.front() != vecChip.back() ? 1U : 0U;
        EXPECT_EQ(Read(0, uiSize), std::make_pair(static_cast<i32>(uiSize), vecChip)); // no lock is left
    }
    RecordProperty("cuts", static_cast<int>(uiCut));
    EXPECT_GT(uiCut, FEW) << "no kill hit a write: the test proves nothing";
}

TEST_F(Eeprom, ReadersSeeWholePagesWhileAnotherProcessWrites)
{
    constexpr u32 uiSize = 1024;
    controller::LayChip(g_ucType, g_aucLocation, BYTES(uiSize, 0));
    const pid_t iPid = controller::Spawn([] { return FillUntilKilled(1, uiSize); });
    for (u32 i = 0; i < 500U; ++i) {
        const auto [iCount, vecBuf] = Read(0, uiSize);
        ASSERT_EQ(iCount, static_cast<i32>(uiSize));
        ASSERT_TRUE(IsCleanCut(vecBuf)) << testing::PrintToString(vecBuf);
    }
    controller::Kill(iPid);
}

} // namespace
