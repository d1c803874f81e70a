// SPDX-License-Identifier: Apache-2.0
// INI bridge.
#include <memory>
#include <random>
#include <sys/stat.h>

#include "bmc_ini.h"
#include "controller.h"

namespace {

constexpr char g_acPath[] = "/conf/oempack/bmc/CID_OEM.conf";
constexpr char g_acSection[] = "oem_configure";

using HANDLE = std::unique_ptr<void, decltype(&BRIDGE_IniCloseFile)>;

class Ini : public controller::ContractTest
{
  protected:
    static HANDLE Load(const std::string &strContent)
    {
        controller::WriteFile(g_acPath, strContent);
        return Load();
    }

    static HANDLE Load()
    {
        return {BRIDGE_IniLoadFile(g_acPath), BRIDGE_IniCloseFile};
    }

    static std::string Get(const HANDLE &upIni, const std::string &strKey,
                           const char *pcSection = g_acSection)
    {
        return BRIDGE_IniGetStr(upIni.get(), pcSection, strKey.c_str(), "<default>");
    }

    // Sets, saves, loads: what comes back.
    static std::string RoundTrip(const std::string &strValue)
    {
        const HANDLE upIni = Load("[oem_configure]\nqbx = BMC\n");
        if (BRIDGE_IniSetStr(upIni.get(), g_acSection, "productname", strValue.c_str()) != 0U) {
            EXPECT_EQ(Get(upIni, "productname"), "<default>");
            return "<refused>";
        }
        EXPECT_EQ(Get(upIni, "productname"), strValue);
        EXPECT_EQ(BRIDGE_IniSaveFile(upIni.get(), g_acPath), 0U);
        const HANDLE upAgain = Load();
        EXPECT_EQ(Get(upAgain, "qbx"), "BMC");
        return Get(upAgain, "productname");
    }
};

TEST_F(Ini, ReadsValues)
{
    const HANDLE upIni = Load("; a comment\n"
                              "[oem_configure]\n"
                              "productname = Rack Server 2288 ; the short name\n"
                              "copyright_en=\"Copyright (c) 2024; all rights reserved #1\"\n"
                              "copyright_cn = 'quo\"ted'\n"
                              "empty =\n"
                              "empty2 = \"\"\n"
                              "\n"
                              "[other]\r\n"
                              "productname = other name\r\n");
    ASSERT_NE(upIni, nullptr);
    EXPECT_EQ(Get(upIni, "productname"), "Rack Server 2288");
    EXPECT_EQ(Get(upIni, "copyright_en"), "Copyright (c) 2024; all rights reserved #1");
    EXPECT_EQ(Get(upIni, "copyright_cn"), "quo\"ted");
    EXPECT_EQ(Get(upIni, "empty"), "");
    EXPECT_EQ(Get(upIni, "empty2"), "");
    EXPECT_EQ(Get(upIni, "productname", "other"), "other name");
}

TEST_F(Ini, KeepsTextsBeyondAscii)
{
    const HANDLE upIni = Load("[oem_configure]\ncopyright_cn = \xE7\x89\x88\xE6\x9D\x83 2024\n");
    EXPECT_EQ(Get(upIni, "copyright_cn"), "\xE7\x89\x88\xE6\x9D\x83 2024");
    EXPECT_EQ(RoundTrip("\xE7\x89\x88\xE6\x9D\x83 \xFF"), "\xE7\x89\x88\xE6\x9D\x83 \xFF");
}

TEST_F(Ini, NamesCountWithoutCase)
{
    const HANDLE upIni = Load("[OEM_Configure]\nProductName = Name\n");
    EXPECT_EQ(Get(upIni, "productname"), "Name");
    EXPECT_EQ(Get(upIni, "PRODUCTNAME", "oem_CONFIGURE"), "Name");
}

TEST_F(Ini, MissingEntriesGiveTheDefault)
{
    const HANDLE upIni = Load("top = level\n[oem_configure]\nqbx = BMC\n");
    EXPECT_EQ(Get(upIni, "none"), "<default>");
    EXPECT_EQ(Get(upIni, "qbx", "none"), "<default>");
    EXPECT_EQ(Get(upIni, "top", ""), "level");
    EXPECT_EQ(BRIDGE_IniGetStr(upIni.get(), g_acSection, "none", nullptr), nullptr);
    EXPECT_EQ(BRIDGE_IniGetUInt(upIni.get(), g_acSection, "none", 0x81000001U), 0x81000001U);
    EXPECT_EQ(BRIDGE_IniGetBool(upIni.get(), g_acSection, "none", 7), 7U);
}

TEST_F(Ini, NullArgumentsGiveTheDefault)
{
    const HANDLE upIni = Load("[oem_configure]\nqbx = BMC\n");
    EXPECT_STREQ(BRIDGE_IniGetStr(nullptr, g_acSection, "qbx", "d"), "d");
    EXPECT_STREQ(BRIDGE_IniGetStr(upIni.get(), nullptr, "qbx", "d"), "d");
    EXPECT_STREQ(BRIDGE_IniGetStr(upIni.get(), g_acSection, nullptr, "d"), "d");
    EXPECT_EQ(BRIDGE_IniGetUInt(nullptr, g_acSection, "qbx", 5), 5U);
    EXPECT_EQ(BRIDGE_IniGetBool(nullptr, g_acSection, "qbx", 5), 5U);
    EXPECT_NE(BRIDGE_IniSetStr(nullptr, g_acSection, "qbx", "v"), 0U);
    EXPECT_NE(BRIDGE_IniSetStr(upIni.get(), nullptr, "qbx", "v"), 0U);
    EXPECT_NE(BRIDGE_IniSetStr(upIni.get(), g_acSection, nullptr, "v"), 0U);
    EXPECT_NE(BRIDGE_IniSetStr(upIni.get(), g_acSection, "qbx", nullptr), 0U);
    EXPECT_NE(BRIDGE_IniSaveFile(nullptr, g_acPath), 0U);
    EXPECT_EQ(BRIDGE_IniLoadFile(nullptr), nullptr);
    BRIDGE_IniCloseFile(nullptr);
    EXPECT_EQ(Get(upIni, "qbx"), "BMC");
}

TEST_F(Ini, ReadsNumbers)
{
    const HANDLE upIni =
        Load("[oem_configure]\na = 8072\nb = 0x1234\nc = 0XfF\nd = 4294967295\ne = 010\nf = 0\n"
             "g = 4294967296\nh = -1\ni = 12abc\nj = 0x\nk = abc\nl =\nm = \" 5\"\n");
    const std::pair<const char *, u32> astWanted[] = {
        {"a", 8072}, {"b", 0x1234}, {"c", 255}, {"d", 0xFFFFFFFFU}, {"e", 10}, {"f", 0}, {"g", 77},
        {"h", 77},   {"i", 77},     {"j", 77},  {"k", 77},          {"l", 77}, {"m", 77}};
    for (const auto &[pcKey, uiWanted] : astWanted) {
        EXPECT_EQ(BRIDGE_IniGetUInt(upIni.get(), g_acSection, pcKey, 77), uiWanted) << pcKey;
    }
}

TEST_F(Ini, ReadsFlags)
{
    const HANDLE upIni = Load("[oem_configure]\na = yes\nb = Y\nc = true\nd = T\ne = 1\nf = no\ng = N\n"
                              "h = false\ni = F\nj = 0\nk = 2\nl = on\nm =\n");
    for (const char *pcKey : {"a", "b", "c", "d", "e"}) {
        EXPECT_EQ(BRIDGE_IniGetBool(upIni.get(), g_acSection, pcKey, 7), 1U) << pcKey;
    }
    for (const char *pcKey : {"f", "g", "h", "i", "j"}) {
        EXPECT_EQ(BRIDGE_IniGetBool(upIni.get(), g_acSection, pcKey, 7), 0U) << pcKey;
    }
    for (const char *pcKey : {"k", "l", "m"}) {
        EXPECT_EQ(BRIDGE_IniGetBool(upIni.get(), g_acSection, pcKey, 7), 7U) << pcKey;
    }
}

TEST_F(Ini, FilesThatAreNoneDoNotLoad)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(BRIDGE_IniLoadFile("/conf/none.conf"), nullptr);
    EXPECT_EQ(Load("[oem_configure]\nthis is no assignment\n"), nullptr);
    EXPECT_EQ(Load("[oem_configure]\nlong = " + std::string(2000, 'x') + "\n"), nullptr);
    EXPECT_EQ(BRIDGE_IniLoadFile("/conf/oempack"), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); // a library does not write there
    EXPECT_FALSE(controller::Messages().empty());
}

TEST_F(Ini, AnEmptyFileLoads)
{
    const HANDLE upIni = Load("");
    ASSERT_NE(upIni, nullptr);
    EXPECT_EQ(Get(upIni, "qbx"), "<default>");
    EXPECT_EQ(BRIDGE_IniSaveFile(upIni.get(), g_acPath), 0U);
    EXPECT_EQ(controller::ReadFile(g_acPath), "");
}

TEST_F(Ini, SavesWhatWasSetAndAllTheRest)
{
    const HANDLE upIni =
        Load("first = 1\n[oem_configure]\nproductname = Old\nQBX = \"a;b\"\n[a:b]\nkey = v\nx:y = z\n"
             "[empty]\n");
    EXPECT_EQ(BRIDGE_IniSetStr(upIni.get(), "OEM_configure", "ProductName", "New Name"), 0U);
    EXPECT_EQ(BRIDGE_IniSetStr(upIni.get(), g_acSection, "productextra1", "extra"), 0U);
    EXPECT_EQ(BRIDGE_IniSetStr(upIni.get(), "fresh", "key", ""), 0U);
    EXPECT_EQ(BRIDGE_IniSetStr(upIni.get(), "", "second", "2"), 0U);
    EXPECT_EQ(Get(upIni, "productname"), "New Name");
    EXPECT_EQ(Get(Load(), "productname"), "Old") << "only a save changes the file";
    ASSERT_EQ(BRIDGE_IniSaveFile(upIni.get(), g_acPath), 0U);
    const HANDLE upAgain = Load();
    ASSERT_NE(upAgain, nullptr);
    EXPECT_EQ(Get(upAgain, "productname"), "New Name");
    EXPECT_EQ(Get(upAgain, "qbx"), "a;b");
    EXPECT_EQ(Get(upAgain, "productextra1"), "extra");
    EXPECT_EQ(Get(upAgain, "key", "fresh"), "");
    EXPECT_EQ(Get(upAgain, "key", "a:b"), "v");
    EXPECT_EQ(Get(upAgain, "x:y", "a:b"), "z");
    EXPECT_EQ(Get(upAgain, "first", ""), "1");
    EXPECT_EQ(Get(upAgain, "second", ""), "2");
}

TEST_F(Ini, ASetMayUseTheHandlesOwnText)
{
    const HANDLE upIni = Load("[oem_configure]\nqbx = BMC\n");
    const char *pcValue = BRIDGE_IniGetStr(upIni.get(), g_acSection, "qbx", nullptr);
    EXPECT_EQ(BRIDGE_IniSetStr(upIni.get(), g_acSection, "qbx", pcValue), 0U);
    EXPECT_EQ(Get(upIni, "qbx"), "BMC");
}

TEST_F(Ini, ValuesComeBackAsTheyWere)
{
    for (const char *pcValue : {"plain",       "with spaces  inside",
                                " leading",    "trailing ",
                                "\ttab",       "semi;colon",
                                "ha#sh",       "",
                                "\"quoted\"",  "'single'",
                                "it's",        "say \"hi\"",
                                "back\\slash", "ends with \\",
                                "\\",          "a = b",
                                "[bracket]",   "=",
                                "5 \"' mixed", "''",
                                "\"\""}) {
        EXPECT_EQ(RoundTrip(pcValue), pcValue);
    }
}

TEST_F(Ini, ValuesThatNoFileGivesBackAreRefused)
{
    for (const char *pcValue : {"line\nend", "carriage\rreturn", "\"'", "'a\" ;b", " \"'", "bell\a"}) {
        EXPECT_EQ(RoundTrip(pcValue), "<refused>");
    }
    EXPECT_EQ(RoundTrip(std::string(1100, 'x')), "<refused>");
    EXPECT_EQ(RoundTrip(std::string(900, 'x')), std::string(900, 'x'));
    const HANDLE upIni = Load("[oem_configure]\nqbx = BMC\n");
    for (const char *pcKey : {"", "a=b", "a:b", " a", "a ", "[a", "#a", ";a", "a\nb"}) {
        EXPECT_NE(BRIDGE_IniSetStr(upIni.get(), g_acSection, pcKey, "v"), 0U) << pcKey;
    }
    for (const char *pcSection : {"a]b", "a:b", " a", "a\nb"}) {
        EXPECT_NE(BRIDGE_IniSetStr(upIni.get(), pcSection, "key", "v"), 0U) << pcSection;
    }
}

TEST_F(Ini, RandomValuesComeBackOrAreRefused)
{
    static constexpr char acAlphabet[] = "ab \"';#=[]\\\t:%";
    std::mt19937 random(1);
    u32 uiKept = 0;
    for (u32 uiRound = 0; uiRound < 200U; ++uiRound) {
        std::string strValue;
        for (u32 uiLength = static_cast<u32>(random() % 9U); uiLength != 0U; --uiLength) {
            strValue += acAlphabet[random() % (sizeof(acAlphabet) - 1U)];
        }
        const std::string strBack = RoundTrip(strValue);
        EXPECT_TRUE(strBack == strValue || strBack == "<refused>")
            << "[" << strValue << "] [" << strBack << "]";
        uiKept += strBack == strValue ? 1U : 0U;
    }
    EXPECT_GT(uiKept, 150U);
}

TEST_F(Ini, ASaveKeepsThePermissionBitsAndLeavesNothingElse)
{
    controller::WriteFile(g_acPath, "[oem_configure]\nqbx = BMC\n", 0640);
    const HANDLE upIni = Load();
    ASSERT_EQ(BRIDGE_IniSaveFile(upIni.get(), g_acPath), 0U);
    struct stat stStat = {};
    ASSERT_EQ(stat(controller::RealPath(g_acPath).c_str(), &stStat), 0);
    EXPECT_EQ(stStat.st_mode & 07777U, 0640U);
    EXPECT_EQ(controller::FilesIn("/conf/oempack/bmc"), std::vector<std::string>{"CID_OEM.conf"});
    EXPECT_NE(BRIDGE_IniSaveFile(upIni.get(), "/conf/none/CID_OEM.conf"), 0U);
    EXPECT_NE(BRIDGE_IniSaveFile(upIni.get(), "/conf/oempack"), 0U);
    EXPECT_EQ(controller::FilesIn("/conf"), std::vector<std::string>{"oempack"});
}

} // namespace
