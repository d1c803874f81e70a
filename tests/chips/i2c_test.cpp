// SPDX-License-Identifier: Apache-2.0
// Raw transfers with the common chips: geometry, pages, the write cycle, and what a bus does to them.
#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "chip_root.h"
#include "controller.h"
#include "simulated_bus.h"

namespace {

using controller::BYTES;
using nlohmann::json;

constexpr u8 LOCATION[3] = {3, 0xA0, 0};
constexpr const char *NAME = "bus3-addr0xa0";

struct PART_S
{
    const char *pcName;
    u32 uiSize;
    u32 uiAddressBytes;
    u32 uiPage;
};
constexpr PART_S PARTS[] = {
    {"24c02", 256, 1, 8},   {"24c04", 512, 1, 16},     {"24c16", 2048, 1, 16},
    {"24c64", 8192, 2, 32}, {"24c512", 65536, 2, 128},
};

BYTES Numbered(u32 uiLength, u32 uiSeed = 0)
{
    BYTES vecBytes(uiLength);
    for (u32 i = 0; i < uiLength; i++) {
        vecBytes[i] = static_cast<u8>(i * 7U + i / 256U + uiSeed);
    }
    return vecBytes;
}

class I2c : public controller::ContractTest
{
  protected:
    static json Settings(const PART_S &stPart)
    {
        return {{"backend", "i2c"},          {"bus", 3},
                {"address", 0xA0},           {"size", stPart.uiSize},
                {"pageSize", stPart.uiPage}, {"addressBytes", stPart.uiAddressBytes},
                {"writeTimeMs", 5}};
    }
    static chips::SIMULATED_CHIP_S &Lay(const PART_S &stPart, const BYTES &vecContent)
    {
        chips::Configure(NAME, Settings(stPart));
        return chips::LaySimulated(3, 0x50, stPart.uiAddressBytes, stPart.uiPage, vecContent);
    }
    static chips::SIMULATED_CHIP_S &Lay24c64()
    {
        return Lay(PARTS[3], BYTES(8192, 0xFF));
    }
    static i32 Read(u32 uiOffset, u32 uiLength, BYTES *pvecBytes = nullptr)
    {
        BYTES vecBytes(uiLength);
        const i32 iCount = ReadWriteEEPROM(9, LOCATION, vecBytes.data(), uiOffset, uiLength, BMC_EEPROM_READ);
        if (pvecBytes != nullptr) {
            *pvecBytes = vecBytes;
        }
        return iCount;
    }
    static i32 Write(u32 uiOffset, BYTES vecBytes)
    {
        return ReadWriteEEPROM(9, LOCATION, vecBytes.data(), uiOffset, static_cast<u32>(vecBytes.size()),
                               BMC_EEPROM_WRITE);
    }
};

TEST_F(I2c, EveryPartIsWrittenAndReadWholeAndAcrossPagesAndBlocks)
{
    for (const PART_S &stPart : PARTS) {
        chips::SIMULATED_CHIP_S &stChip = Lay(stPart, BYTES(stPart.uiSize, 0xFF));
        const BYTES vecWhole = Numbered(stPart.uiSize);
        EXPECT_EQ(Write(0, vecWhole), static_cast<i32>(stPart.uiSize)) << stPart.pcName;
        EXPECT_TRUE(chips::ContentOf(stChip) == vecWhole) << stPart.pcName;
        BYTES vecRead;
        EXPECT_EQ(Read(0, stPart.uiSize, &vecRead), static_cast<i32>(stPart.uiSize));
        EXPECT_TRUE(vecRead == vecWhole) << stPart.pcName;
        BYTES vecWanted = vecWhole;
        const BYTES vecPart(100, 0x55);
        std::copy(vecPart.begin(), vecPart.end(), vecWanted.begin() + 125);
        EXPECT_EQ(Write(125, vecPart), 100);
        EXPECT_TRUE(chips::ContentOf(stChip) == vecWanted) << stPart.pcName;
    }
}

TEST_F(I2c, WhatTheChipHoldsAlreadyIsNotWritten)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    EXPECT_EQ(Write(0, BYTES(64, 0xFF)), 64);
    EXPECT_EQ(stChip.uiWrites, 0U);
    EXPECT_EQ(Write(31, BYTES(2, 1)), 2);
    EXPECT_EQ(stChip.uiWrites, 2U); // of two pages
}

TEST_F(I2c, TheWriteCycleIsAwaitedByAsking)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    EXPECT_EQ(Write(0, Numbered(64)), 64);
    EXPECT_GT(stChip.uiRefused, 2U);
    stChip.uiWriteTimeUs = 14000; // longer than it is said to take, within twice of that
    EXPECT_EQ(Write(0, Numbered(32, 1)), 32);
    stChip.uiWriteTimeUs = 100000;
    EXPECT_LT(Write(0, Numbered(32, 2)), 0);
    EXPECT_NE(
        chips::LastMessage().find("bus 3, address 0x50): writing 32 bytes at 0: it took the page and does "
                                  "not answer any more after twice its write time of 5 ms"),
        std::string::npos)
        << chips::LastMessage();
}

TEST_F(I2c, AnAbsentChipIsToldWithBusAndAddress)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.bAbsent = true;
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_EQ(chips::LastMessage(),
              "EEPROM bus3-addr0xa0 (bus 3, address 0x50): reading 4 bytes at 0: nobody answers");
    EXPECT_LT(Write(0, {1, 2}), 0);
    EXPECT_LT(ReadWriteEEPROM(9, LOCATION, nullptr, 0, 0, BMC_EEPROM_READ), 0);
    EXPECT_LT(ReadWriteEEPROM(9, LOCATION, nullptr, 0, 0, BMC_EEPROM_WRITE), 0);
}

TEST_F(I2c, ABusThatIsNotThereIsTold)
{
    chips::Configure(NAME, Settings(PARTS[3]));
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_NE(
        chips::LastMessage().find("/dev/i2c-3: No such file or directory (is the module i2c-dev there?)"),
        std::string::npos)
        << chips::LastMessage();
}

TEST_F(I2c, LostArbitrationIsTriedAgainAndToldWhenItDoesNotEnd)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.uiArbitrationLost = 8;
    EXPECT_EQ(Write(0, Numbered(64)), 64);
    EXPECT_EQ(stChip.uiArbitrationLost, 0U);
    stChip.uiArbitrationLost = 1000;
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_NE(chips::LastMessage().find("reading 4 bytes at 0: arbitration lost to another master 20 times"),
              std::string::npos)
        << chips::LastMessage();
}

TEST_F(I2c, AHungBusIsNotTriedAgain)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.bHangs = true;
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_EQ(stChip.uiRefused, 1U);
    EXPECT_NE(chips::LastMessage().find("the bus hangs"), std::string::npos) << chips::LastMessage();
}

TEST_F(I2c, AProtectedChipThatAcknowledgesIsToldAsThat)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.bProtected = true;
    EXPECT_LT(Write(40, {1, 2}), 0);
    EXPECT_EQ(chips::LastMessage(),
              "EEPROM bus3-addr0xa0 (bus 3, address 0x50): writing 2 bytes at 0x28: acknowledged, and "
              "unchanged from byte 0x28 on: the chip is write-protected");
    EXPECT_EQ(chips::ContentOf(stChip), BYTES(8192, 0xFF));
}

TEST_F(I2c, AProtectedChipThatRefusesBytesIsToldAsThat)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.bRefusesWrites = true;
    EXPECT_LT(Write(0, {1, 2}), 0);
    EXPECT_NE(
        chips::LastMessage().find("it answers reads and refuses the write: the chip is write-protected"),
        std::string::npos)
        << chips::LastMessage();
}

TEST_F(I2c, AnAddressThatADriverHoldsIsRefused)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    stChip.bHasDriver = true;
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_NE(chips::LastMessage().find("a driver of the kernel holds the address; it is never forced"),
              std::string::npos)
        << chips::LastMessage();
    EXPECT_LT(Write(0, {1}), 0);
    EXPECT_EQ(stChip.uiRefused, 0U); // not even asked
}

TEST_F(I2c, AnAdapterWithSmbusCommandsOnlyIsRefused)
{
    (void)Lay24c64();
    chips::SetPlainTransfers(false);
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_NE(chips::LastMessage().find("the bus takes SMBus commands only"), std::string::npos);
}

TEST_F(I2c, AnAdapterWithShortMessagesIsReadInShortMessages)
{
    chips::SIMULATED_CHIP_S &stChip = Lay(PARTS[3], Numbered(8192));
    stChip.uiLongestRead = 16;
    BYTES vecRead;
    EXPECT_EQ(Read(100, 300, &vecRead), 300);
    const BYTES vecWhole = Numbered(8192);
    EXPECT_EQ(vecRead, BYTES(vecWhole.begin() + 100, vecWhole.begin() + 400));
}

TEST_F(I2c, ProbingAsksForAByteAndSendsNone)
{
    chips::SIMULATED_CHIP_S &stChip = Lay24c64();
    chips::LaySimulated(3, 0x53, 1, 8, Numbered(256)).bHasDriver = true;
    u8 aucFound[BMCHOST_I2C_PROBED] = {};
    char acWhy[256] = "";
    EXPECT_EQ(BMCHOST_ProbeI2c(3, aucFound, sizeof(acWhy), acWhy), 0U) << acWhy;
    const BYTES vecWanted = {BMCHOST_I2C_ANSWERS, 0, 0, BMCHOST_I2C_DRIVER, 0, 0, 0, 0};
    EXPECT_EQ(BYTES(aucFound, aucFound + sizeof(aucFound)), vecWanted);
    EXPECT_EQ(stChip.uiPointer, 1U); // it went on by the byte that was read, and was not set
    EXPECT_EQ(stChip.uiWrites, 0U);
    EXPECT_EQ(chips::FindSimulated(3, 0x53)->uiPointer, 0U);
}

TEST_F(I2c, ProbingABusThatIsNotThereOrHangsFails)
{
    u8 aucFound[BMCHOST_I2C_PROBED] = {};
    char acWhy[256] = "";
    EXPECT_NE(BMCHOST_ProbeI2c(9, aucFound, sizeof(acWhy), acWhy), 0U);
    EXPECT_STREQ(acWhy, "/dev/i2c-9: No such file or directory");
    Lay24c64().bHangs = true;
    EXPECT_NE(BMCHOST_ProbeI2c(3, aucFound, sizeof(acWhy), acWhy), 0U);
    EXPECT_STREQ(acWhy, "the bus hangs");
    EXPECT_NE(BMCHOST_ProbeI2c(3, nullptr, sizeof(acWhy), acWhy), 0U);
}

// What reading with the wrong number of address bytes does to a chip, and that the settings do not allow it.
TEST_F(I2c, ASmallChipIsNotReadWithTwoAddressBytes)
{
    chips::SIMULATED_CHIP_S &stChip = Lay(PARTS[0], Numbered(256));
    json stWrong = Settings(PARTS[0]);
    stWrong["addressBytes"] = 2;
    chips::Configure(NAME, stWrong);
    EXPECT_LT(Read(0, 4), 0);
    EXPECT_NE(chips::LastMessage().find("addressBytes: chips below 4096 bytes take one byte"),
              std::string::npos)
        << chips::LastMessage();
    EXPECT_EQ(chips::ContentOf(stChip), Numbered(256));
    EXPECT_EQ(stChip.uiWrites, 0U);
}

} // namespace
