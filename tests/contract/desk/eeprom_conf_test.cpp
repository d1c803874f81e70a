// SPDX-License-Identifier: Apache-2.0
// The desk's own: which chips are something else than image files.
#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr u8 g_aucLocation[3] = {1, 0xA0, 0};

class EepromConf : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        controller::ContractTest::SetUp();
        controller::LayChip(9, g_aucLocation, BYTES(64, 7));
    }

    static i32 Read()
    {
        u8 aucBuf[4] = {};
        return ReadWriteEEPROM(9, g_aucLocation, aucBuf, 0, sizeof(aucBuf), BMC_EEPROM_READ);
    }
    static i32 Write()
    {
        u8 aucBuf[4] = {1, 2, 3, 4};
        return ReadWriteEEPROM(9, g_aucLocation, aucBuf, 0, sizeof(aucBuf), BMC_EEPROM_WRITE);
    }
    static void Configure(const std::string &strText)
    {
        controller::WriteFile(BMCHOST_EEPROM_CONF, strText);
    }
    static std::string Problem(const std::string &strSettings)
    {
        char acWhy[512] = "x";
        const u32 uiRet = BMCHOST_CheckEepromSettings(strSettings.c_str(), sizeof(acWhy), acWhy);
        EXPECT_EQ(uiRet == 0U, acWhy[0] == '\0');
        return acWhy;
    }
};

TEST_F(EepromConf, ChipsThatAreNotNamedAreFiles)
{
    Configure(R"({"chips": {"bus2-addr0xa0": {"backend": "nosuch"}}})");
    EXPECT_EQ(Read(), 4);
    EXPECT_EQ(Write(), 4);
    EXPECT_EQ(controller::Messages(), std::vector<std::string>());
}

TEST_F(EepromConf, AChipMayBeNamedAsAFile)
{
    Configure(R"({"chips": {"bus1-addr0xa0": {"backend": "file"}}})");
    EXPECT_EQ(Read(), 4);
    EXPECT_EQ(Write(), 4);
}

TEST_F(EepromConf, AnUnknownBackEndIsNoTransferAndNamesTheKnownOnes)
{
    Configure(R"({"chips": {"bus1-addr0xa0": {"backend": "nosuch"}}})");
    EXPECT_LT(Read(), 0);
    EXPECT_LT(Write(), 0);
    ASSERT_EQ(controller::Messages().size(), 2U);
    EXPECT_EQ(controller::Messages()[0].find(
                  "EEPROM bus1-addr0xa0: there is no back end 'nosuch'; accepted: file, "),
              0U)
        << controller::Messages()[0];
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), BYTES(64, 7));
}

TEST_F(EepromConf, ADamagedConfigurationIsNoTransferForAnyChip)
{
    for (const char *pcText :
         {"", "{", "[]", "{}", R"({"chips": []})", R"({"chips": {"bus2-addr0xa0": 1}})",
          R"({"chips": {"bus2-addr0xa0": {}}})", R"({"chips": {"bus2-addr0xa0": {"backend": 1}}})"}) {
        Configure(pcText);
        EXPECT_LT(Read(), 0) << pcText;
        EXPECT_LT(Write(), 0) << pcText;
    }
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), BYTES(64, 7));
}

TEST_F(EepromConf, IsReadAnewWhenItHasChanged)
{
    Configure(R"({"chips": {"bus1-addr0xa0": {"backend": "nosuch"}}})");
    EXPECT_LT(Read(), 0);
    Configure(R"({"chips": {}})");
    EXPECT_EQ(Read(), 4);
    Configure(R"({"chips": {"bus1-addr0xa0": {"backend": "nosuch"}}})");
    EXPECT_LT(Read(), 0);
}

TEST_F(EepromConf, SettingsAreChecked)
{
    EXPECT_EQ(Problem(R"({"backend": "file"})"), "");
    EXPECT_EQ(Problem("{}").find("backend is missing; accepted: file"), 0U);
    EXPECT_EQ(Problem("no JSON").find("backend is missing; accepted: file"), 0U);
    EXPECT_EQ(Problem(R"({"backend": "nosuch"})").find("there is no back end 'nosuch'; accepted: file"), 0U);
    char acWhy[4];
    EXPECT_NE(BMCHOST_CheckEepromSettings(nullptr, sizeof(acWhy), acWhy), 0U);
    EXPECT_NE(BMCHOST_CheckEepromSettings("{}", 0, acWhy), 0U);
    EXPECT_NE(BMCHOST_CheckEepromSettings("{}", sizeof(acWhy), nullptr), 0U);
}

} // namespace
