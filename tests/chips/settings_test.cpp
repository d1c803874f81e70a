// SPDX-License-Identifier: Apache-2.0
// What a chip's settings have to say: nothing is guessed.
#include "bmcfru_host.h"
#include "chip_root.h"
#include "controller.h"

namespace {

using nlohmann::json;

const json I2C = {{"backend", "i2c"}, {"bus", 3},       {"address", 0xA0},   {"switchLevel", 0},
                  {"size", 8192},     {"pageSize", 32}, {"addressBytes", 2}, {"writeTimeMs", 5}};
const json KERNEL = {
    {"backend", "kernel"}, {"bus", 3}, {"address", 0xA0}, {"switchLevel", 0}, {"size", 8192}};

std::string Problem(const json &stSettings)
{
    char acWhy[1024] = "";
    (void)BMCHOST_CheckEepromSettings(stSettings.dump().c_str(), sizeof(acWhy), acWhy);
    return acWhy;
}

json Without(json stSettings, const char *pcName)
{
    stSettings.erase(pcName);
    return stSettings;
}

json With(json stSettings, const char *pcName, const json &stValue)
{
    stSettings[pcName] = stValue;
    return stSettings;
}

bool Begins(const std::string &strText, const std::string &strBegin)
{
    return strText.compare(0, strBegin.size(), strBegin) == 0;
}

TEST(ChipSettings, WholeOnesAreTaken)
{
    EXPECT_EQ(Problem(I2C), "");
    EXPECT_EQ(Problem(KERNEL), "");
    EXPECT_EQ(Problem(With(KERNEL, "pageSize", 64)), "");
    EXPECT_EQ(Problem(With(I2C, "address", "0x50")), "");
    EXPECT_EQ(Problem(With(With(I2C, "switchLevel", 2), "adapter", 17)), "");
    EXPECT_EQ(Problem(With(I2C, "writeProtect", {{"chip", "gpiochip0"}, {"line", 5}})), "");
}

TEST(ChipSettings, GeometryThatIsMissingIsNamed)
{
    for (const char *pcName : {"addressBytes", "pageSize", "writeTimeMs", "address", "bus", "size"}) {
        EXPECT_TRUE(Begins(Problem(Without(I2C, pcName)),
                           std::string(pcName) + ": missing, and nothing is guessed; accepted: "))
            << Problem(Without(I2C, pcName));
    }
}

TEST(ChipSettings, GeometryThatCannotBeIsRefused)
{
    EXPECT_TRUE(Begins(Problem(With(I2C, "addressBytes", 1)), "addressBytes: 1 reaches 2048 bytes"));
    EXPECT_TRUE(
        Begins(Problem(With(I2C, "addressBytes", 3)), "addressBytes: 3 is refused; accepted: 1 to 2"));
    EXPECT_TRUE(
        Begins(Problem(With(I2C, "size", 2048)), "addressBytes: chips below 4096 bytes take one byte"));
    EXPECT_TRUE(
        Begins(Problem(With(I2C, "size", 8191)), "eepromSize: 8191 is refused; accepted: a power of two"));
    EXPECT_TRUE(
        Begins(Problem(With(I2C, "pageSize", 24)), "pageSize: 24 is refused; accepted: a power of two"));
    const json st24c16 = With(With(I2C, "size", 2048), "addressBytes", 1);
    EXPECT_EQ(Problem(st24c16), "");
    EXPECT_TRUE(
        Begins(Problem(With(st24c16, "address", 0xA2)), "address: a chip of 2048 bytes takes 8 addresses"));
}

TEST(ChipSettings, AddressesAreThoseOfTheWireOrEightBitsWithoutADirection)
{
    for (const u32 uiAddress : {0x00U, 0x78U, 0xA1U, 0xF0U}) {
        EXPECT_TRUE(Begins(Problem(With(KERNEL, "address", uiAddress)), "address: ")) << uiAddress;
    }
}

TEST(ChipSettings, BehindASwitchTheBusHasItsOwnNumber)
{
    EXPECT_TRUE(
        Begins(Problem(With(KERNEL, "switchLevel", 2)), "adapter: missing; a chip behind a switch needs"));
}

TEST(ChipSettings, UnknownMembersAreRefused)
{
    EXPECT_TRUE(
        Begins(Problem(With(KERNEL, "addressBytes", 2)), "addressBytes: unknown member; accepted: bus, "));
    EXPECT_TRUE(Begins(Problem(With(I2C, "pagesize", 32)), "pagesize: unknown member"));
}

TEST(ChipSettings, AWriteProtectLineNamesChipAndLine)
{
    EXPECT_TRUE(Begins(Problem(With(I2C, "writeProtect", "gpiochip0")), "writeProtect: accepted: {\"chip\""));
    EXPECT_TRUE(Begins(Problem(With(I2C, "writeProtect", {{"chip", "gpiochip0"}})), "line: missing"));
    EXPECT_TRUE(Begins(Problem(With(I2C, "writeProtect", {{"chip", "g"}, {"line", 1}, {"high", true}})),
                       "writeProtect.high: unknown member; accepted: chip, line, activeLow"));
}

} // namespace
