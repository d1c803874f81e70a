// SPDX-License-Identifier: Apache-2.0
// What a chip's settings may say, and where the password comes from.
#include "eeprom/ipmi/settings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

using ipmi::ReadSettings;
using ipmi::SETTINGS_S;
using ipmi::TakePassword;

std::string Wrong(const std::string &strSettings)
{
    SETTINGS_S stSettings;
    return ReadSettings(strSettings.c_str(), &stSettings);
}

SETTINGS_S Right(const std::string &strSettings)
{
    SETTINGS_S stSettings;
    EXPECT_EQ(ReadSettings(strSettings.c_str(), &stSettings), "");
    return stSettings;
}

TEST(IpmiSettings, WhatIsNotSaidHasASaneDefault)
{
    const SETTINGS_S stSettings = Right(R"({"backend": "ipmi", "host": "bmc7", "fru": 3})");
    EXPECT_EQ(stSettings.stLogin.strHost, "bmc7");
    EXPECT_EQ(stSettings.stLogin.uiPort, 623U);
    EXPECT_EQ(stSettings.stLogin.strUser, "");
    EXPECT_EQ(stSettings.stLogin.uiPrivilege, 4U);
    EXPECT_EQ(stSettings.stLogin.uiSuite, 3U);
    EXPECT_EQ(stSettings.stLogin.uiPatienceMs, 10000U);
    EXPECT_EQ(stSettings.ucFru, 3U);
    EXPECT_EQ(stSettings.uiChunk, 32U);
    EXPECT_FALSE(stSettings.stLogin.IsLocal());
}

TEST(IpmiSettings, EverythingThatCanBeSaidIsTaken)
{
    const SETTINGS_S stSettings = Right(
        R"({"backend": "ipmi", "bus": 1, "address": 160, "switchLevel": 0, "size": 256, "host": "::1", "port": 9623,
            "user": "admin", "passwordFile": "/secret", "privilege": "operator", "cipherSuite": 8, "fru": 254,
            "chunk": 16, "timeoutSeconds": 3})");
    EXPECT_EQ(stSettings.stLogin.uiPort, 9623U);
    EXPECT_EQ(stSettings.stLogin.strUser, "admin");
    EXPECT_EQ(stSettings.strPasswordFile, "/secret");
    EXPECT_EQ(stSettings.stLogin.uiPrivilege, 3U);
    EXPECT_EQ(stSettings.stLogin.uiSuite, 8U);
    EXPECT_EQ(stSettings.uiChunk, 16U);
    EXPECT_EQ(stSettings.stLogin.uiPatienceMs, 3000U);
}

TEST(IpmiSettings, WhatIsWrongIsNamedWithWhatIsAccepted)
{
    const std::vector<std::pair<std::string, std::string>> vecWrong = {
        {R"([])", "the settings are no JSON object"},
        {R"({"fru": 1})", "host is missing; accepted: a name, an address or /dev/ipmi0"},
        {R"({"host": "", "fru": 1})", "host is refused; accepted: a name, an address or /dev/ipmi0"},
        {R"({"host": "/etc/x", "fru": 1})", "host is refused; accepted: a name, an address or /dev/ipmi0"},
        {R"({"host": "/dev/ipmix", "fru": 1})",
         "host is refused; accepted: a name, an address or /dev/ipmi0"},
        {R"({"host": "h"})", "fru is missing; accepted: the FRU device ID on that controller, 0 to 254"},
        {R"({"host": "h", "fru": 255})", "fru is refused; accepted: 0 to 254"},
        {R"({"host": "h", "fru": "1"})", "fru is refused; accepted: 0 to 254"},
        {R"({"host": "h", "fru": 1, "port": 0})", "port is refused; accepted: 1 to 65535"},
        {R"({"host": "h", "fru": 1, "port": -1})", "port is refused; accepted: 1 to 65535"},
        {R"({"host": "h", "fru": 1, "user": "12345678901234567"})",
         "user is refused; accepted: a text of at most 16 bytes"},
        {R"({"host": "h", "fru": 1, "privilege": "root"})",
         "privilege is refused; accepted: user, operator or administrator"},
        {R"({"host": "h", "fru": 1, "cipherSuite": 0})", "cipherSuite is refused; accepted: 2, 3, 7 or 8"},
        {R"({"host": "h", "fru": 1, "cipherSuite": 17})", "cipherSuite is refused; accepted: 2, 3, 7 or 8"},
        {R"({"host": "h", "fru": 1, "passwordFile": "secret"})",
         "passwordFile is refused; accepted: an absolute path"},
        {R"({"host": "h", "fru": 1, "chunk": 0})", "chunk is refused; accepted: 1 to 240"},
        {R"({"host": "h", "fru": 1, "password": "x"})",
         "password is unknown; accepted: host, port, user, passwordFile, privilege, cipherSuite, fru, chunk, "
         "timeoutSeconds"},
    };
    for (const auto &[strSettings, strWhy] : vecWrong) {
        EXPECT_EQ(Wrong(strSettings), strWhy) << strSettings;
    }
}

TEST(IpmiSettings, ThePasswordIsTheFirstLineOfItsFile)
{
    const std::filesystem::path pathRoot =
        std::filesystem::temp_directory_path() / ("ipmi_settings_" + std::to_string(getpid()));
    std::filesystem::create_directories(pathRoot);
    std::ofstream(pathRoot / "secret") << "pass word\r\nsecond line\n";
    std::ofstream(pathRoot / "long") << std::string(21, 'x') << "\n";
    SETTINGS_S stSettings = Right(R"({"host": "h", "fru": 1})");
    stSettings.strPasswordFile = (pathRoot / "secret").string();
    EXPECT_EQ(TakePassword(&stSettings), "");
    EXPECT_EQ(stSettings.stLogin.strPassword, "pass word");
    stSettings.strPasswordFile = (pathRoot / "long").string();
    EXPECT_EQ(TakePassword(&stSettings), "the password has more than the 20 bytes that IPMI takes");
    stSettings.strPasswordFile = (pathRoot / "absent").string();
    EXPECT_EQ(TakePassword(&stSettings), "the password cannot be read from " +
                                             (pathRoot / "absent").string() + ": No such file or directory");
    std::filesystem::remove_all(pathRoot);
}

TEST(IpmiSettings, WithoutAFileTheEnvironmentHasThePassword)
{
    SETTINGS_S stSettings = Right(R"({"host": "h", "fru": 1})");
    ASSERT_EQ(setenv("IPMI_PASSWORD", "from outside", 1), 0);
    EXPECT_EQ(TakePassword(&stSettings), "");
    EXPECT_EQ(stSettings.stLogin.strPassword, "from outside");
    ASSERT_EQ(unsetenv("IPMI_PASSWORD"), 0);
    EXPECT_EQ(TakePassword(&stSettings),
              "no password for h; accepted: a file that \"passwordFile\" names, or the environment's "
              "IPMI_PASSWORD");
}

TEST(IpmiSettings, ThisMachinesOwnControllerAsksForNoPassword)
{
    SETTINGS_S stSettings = Right(R"({"host": "/dev/ipmi12", "fru": 0})");
    EXPECT_EQ(stSettings.stLogin.uiDevice, 12U);
    EXPECT_TRUE(stSettings.stLogin.IsLocal());
    EXPECT_EQ(TakePassword(&stSettings), "");
}

} // namespace
