// SPDX-License-Identifier: Apache-2.0
// The kernel's EEPROM driver, played by a directory tree: what is told where something is missing.
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

#include "bmc_eeprom.h"
#include "chip_root.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr u8 LOCATION[3] = {8, 0xAA, 0};
constexpr const char *DEVICES = "/sys/bus/i2c/devices";

class Kernel : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        controller::ContractTest::SetUp();
        ASSERT_EQ(setenv("FRUCTL_SYS", (chips::Root() + "/sys").c_str(), 1), 0);
        chips::Configure("bus8-addr0xaa",
                         {{"backend", "kernel"}, {"bus", 8}, {"address", 0xAA}, {"size", 256}});
    }
    void TearDown() override
    {
        ASSERT_EQ(unsetenv("FRUCTL_SYS"), 0);
        controller::ContractTest::TearDown();
    }
    static i32 Read()
    {
        u8 aucBytes[8] = {};
        return ReadWriteEEPROM(9, LOCATION, aucBytes, 0, sizeof(aucBytes), BMC_EEPROM_READ);
    }
    static i32 Write()
    {
        u8 aucBytes[8] = {};
        return ReadWriteEEPROM(9, LOCATION, aucBytes, 0, sizeof(aucBytes), BMC_EEPROM_WRITE);
    }
    static void MakeDirectory(const std::string &strName)
    {
        std::filesystem::create_directories(controller::RealPath(DEVICES + strName));
    }
    static void ExpectTold(const std::string &strWhat)
    {
        const std::string strMessage = chips::LastMessage();
        EXPECT_NE(strMessage.find("EEPROM bus8-addr0xaa (bus 8, address 0x55): "), std::string::npos)
            << strMessage;
        EXPECT_NE(strMessage.find(strWhat), std::string::npos) << strMessage;
    }
};

TEST_F(Kernel, TellsWhichStepIsMissing)
{
    EXPECT_LT(Read(), 0);
    ExpectTold("there is no bus 8");
    MakeDirectory("/i2c-8");
    EXPECT_LT(Read(), 0);
    ExpectTold("the kernel knows no chip there");
    MakeDirectory("/8-0055");
    EXPECT_LT(Read(), 0);
    ExpectTold("no EEPROM driver has the chip");
    controller::WriteFile(std::string(DEVICES) + "/8-0055/eeprom", std::string(256, 'x'));
    EXPECT_EQ(Read(), 8);
    EXPECT_EQ(Write(), 8);
    EXPECT_EQ(controller::ReadFile(std::string(DEVICES) + "/8-0055/eeprom"),
              std::string(8, '\0') + std::string(248, 'x'));
}

TEST_F(Kernel, AChipOfAnotherSizeThanDescribedIsRefused)
{
    controller::WriteFile(std::string(DEVICES) + "/8-0055/eeprom", std::string(512, 'x'));
    EXPECT_LT(Read(), 0);
    ExpectTold("the driver has a chip of 512 bytes there, the description one of 256");
}

TEST_F(Kernel, AChipThatTheDriverHasAsReadOnlyIsToldAsWriteProtected)
{
    controller::WriteFile(std::string(DEVICES) + "/8-0055/eeprom", std::string(256, 'x'), 0444);
    EXPECT_LT(Write(), 0);
    ExpectTold("write-protected: the driver has it as read-only");
    EXPECT_EQ(Read(), 8);
}

TEST_F(Kernel, AChannelOfASwitchIsABusOfItsOwn)
{
    const u8 aucBehind[3] = {8, 0xAA, 2};
    chips::Configure("bus8-addr0xaa-switch2", {{"backend", "kernel"},
                                               {"bus", 8},
                                               {"address", 0xAA},
                                               {"switchLevel", 2},
                                               {"adapter", 23},
                                               {"size", 256}});
    controller::WriteFile(std::string(DEVICES) + "/23-0055/eeprom", std::string(256, 'y'));
    u8 ucByte = 0;
    EXPECT_EQ(ReadWriteEEPROM(9, aucBehind, &ucByte, 255, 1, BMC_EEPROM_READ), 1);
    EXPECT_EQ(ucByte, 'y');
}

} // namespace
