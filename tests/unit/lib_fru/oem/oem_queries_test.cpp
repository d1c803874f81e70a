// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

constexpr const char *g_pcPath = "/conf/oempack/bmc/CID_OEM.conf";
const std::string g_strUnable = std::string("0/4 lib_fru.c: Unable to get oem conf file : ") + g_pcPath;

std::map<std::string, std::string> &Keys()
{
    return fake::Ini()[g_pcPath]["oem_configure"];
}

std::vector<std::string> OneNull(const char *pcFunction, const char *pcPointer)
{
    return {fake::NullMessage("lib_fru.c", pcFunction, pcPointer)};
}

// ---- LIB_FRU_GetCopyRight

TEST(CopyRight, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_GetCopyRight(0, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), OneNull("LIB_FRU_GetCopyRight", "pcCopyRight"));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(CopyRight, EachTypeHasItsLine)
{
    fake::Reset();
    Keys() = {{"copyright_cn", "cn %n"}, {"copyright_en", std::string(300, 'e')}};
    char acOut[257];
    (void)memset(acOut, '?', sizeof(acOut));
    EXPECT_EQ(LIB_FRU_GetCopyRight(0, acOut), FRU_OK);
    EXPECT_STREQ(acOut, "cn %n");
    EXPECT_EQ(LIB_FRU_GetCopyRight(1, acOut), FRU_OK);
    EXPECT_EQ(std::string(acOut), std::string(255, 'e'));
    EXPECT_EQ(acOut[256], '?');
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(CopyRight, WithoutAFileTheLineIsEmpty)
{
    fake::Reset();
    char acOut[256] = "as it was";
    EXPECT_EQ(LIB_FRU_GetCopyRight(1, acOut), FRU_OK);
    EXPECT_STREQ(acOut, "");
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{g_strUnable});
}

TEST(CopyRight, AnotherTypeIsPrintedAndRefused)
{
    for (const i32 iType : {2, -1, 256, INT32_MIN}) {
        fake::Reset();
        Keys()["copyright_en"] = "en";
        char acOut[256] = "as it was";
        EXPECT_EQ(LIB_FRU_GetCopyRight(iType, acOut), LIB_FRU_ERR_READ);
        EXPECT_STREQ(acOut, "as it was");
        EXPECT_EQ(fake::TakeStdout(), "OEM_GetCopyrightFromBMC unvaild Copyriht Type !");
        EXPECT_TRUE(fake::Messages().empty());
        EXPECT_EQ(fake::Calls("IniLoadFile").size(), 1U); // the record is read first all the same
    }
}

// ---- LIB_FRU_CheckOEMFromPackage

TEST(CheckOem, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), OneNull("LIB_FRU_CheckOEMFromPackage", "pcCheckResult"));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(CheckOem, AskingGivesTheCheckAreaMostSignificantByteFirst)
{
    for (const u32 uiFlag : {0xFFU, 0xFFFFU}) {
        // Also when the check area happens to be that number.
        for (const u32 uiArea : {0x1234U, uiFlag}) {
            fake::Reset();
            Keys()["checkarea"] = std::to_string(uiArea);
            char acOut[128];
            (void)memset(acOut, '?', sizeof(acOut));
            EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(uiFlag, acOut), FRU_OK);
            EXPECT_EQ(static_cast<u8>(acOut[0]), uiArea >> 8U);
            EXPECT_EQ(static_cast<u8>(acOut[1]), uiArea & 0xFFU);
            EXPECT_EQ(acOut[2], '?');
            EXPECT_TRUE(fake::Messages().empty());
        }
    }
}

TEST(CheckOem, EqualPasses)
{
    fake::Reset();
    Keys()["checkarea"] = "0x1234";
    char acOut[128] = {};
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0x1234, acOut), FRU_OK);
    EXPECT_STREQ(acOut, "@\n##\nTest Result: P\n#\nError Code: 0\n$$\n");
}

TEST(CheckOem, AnythingElseFailsWithBothNumbers)
{
    fake::Reset();
    Keys()["checkarea"] = "0x1234";
    char acOut[128] = {};
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0x11234, acOut), FRU_OK);
    EXPECT_STREQ(acOut, "@\n##\nKVToolbuild_check_Flag: 4660\nDIAG_check_Falg: 70196\nTest Result: F\n#\n"
                        "Error Code: 0\n$$\n");
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0x80000000U, acOut), FRU_OK);
    EXPECT_STREQ(acOut, "@\n##\nKVToolbuild_check_Flag: 4660\nDIAG_check_Falg: -2147483648\n"
                        "Test Result: F\n#\nError Code: 0\n$$\n");
}

TEST(CheckOem, DefaultsOfTheCheckArea)
{
    fake::Reset();
    char acOut[128] = {};
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0, acOut), FRU_OK); // no file: 0
    EXPECT_NE(strstr(acOut, "Test Result: P"), nullptr);
    Keys();
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(1, acOut), FRU_OK); // no key: 1
    EXPECT_NE(strstr(acOut, "Test Result: P"), nullptr);
    EXPECT_EQ(LIB_FRU_CheckOEMFromPackage(0x81000001U, acOut), FRU_OK);
    EXPECT_NE(strstr(acOut, "Test Result: F"), nullptr);
}

// ---- FRU_GetProductManufacturer

TEST(ProductManufacturer, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(FRU_GetProductManufacturer(8, nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), OneNull("FRU_GetProductManufacturer", "pcProductManufacturer"));
}

TEST(ProductManufacturer, OutsideOemModeThereIsNone)
{
    for (const u32 uiFlag : {0U, 2U, 4U, 0x103U}) {
        fake::Reset();
        fake::SetHwOemFlag(uiFlag);
        fake::SetBmcOemFlag(3); // the hardware library is asked
        Keys()["productmanufacturer"] = "MAKER";
        char acOut[16] = "as it was";
        EXPECT_EQ(FRU_GetProductManufacturer(sizeof(acOut), acOut), FRU_ERR_FAILED);
        EXPECT_STREQ(acOut, "as it was");
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ProductManufacturer, EmptyTextIsNone)
{
    fake::Reset();
    fake::SetHwOemFlag(3);
    Keys()["productmanufacturer"] = "";
    char acOut[16] = "as it was";
    EXPECT_EQ(FRU_GetProductManufacturer(sizeof(acOut), acOut), FRU_ERR_FAILED);
    EXPECT_STREQ(acOut, "as it was");
}

TEST(ProductManufacturer, ATextOfOneCharacterIsOne)
{
    fake::Reset();
    fake::SetHwOemFlag(3);
    Keys()["productmanufacturer"] = "M";
    char acOut[16] = {};
    EXPECT_EQ(FRU_GetProductManufacturer(sizeof(acOut), acOut), FRU_OK);
    EXPECT_STREQ(acOut, "M");
}

TEST(ProductManufacturer, OutputIsClearedAndFilled)
{
    fake::Reset();
    fake::SetHwOemFlag(3);
    Keys()["productmanufacturer"] = "MAKER";
    char acOut[16];
    (void)memset(acOut, '?', sizeof(acOut));
    EXPECT_EQ(FRU_GetProductManufacturer(10, acOut), FRU_OK);
    EXPECT_EQ(std::string(acOut, sizeof(acOut)), std::string("MAKER\0\0\0\0\0??????", 16));
    (void)memset(acOut, '?', sizeof(acOut));
    EXPECT_EQ(FRU_GetProductManufacturer(4, acOut), FRU_OK);
    EXPECT_EQ(std::string(acOut, 5), std::string("MAK\0?", 5));
    (void)memset(acOut, '?', sizeof(acOut));
    EXPECT_EQ(FRU_GetProductManufacturer(0, acOut), FRU_OK);
    EXPECT_EQ(acOut[0], '?');
}

TEST(ProductManufacturer, WithoutAFileItIsNotAvailable)
{
    fake::Reset();
    fake::SetHwOemFlag(3);
    char acOut[16] = {};
    EXPECT_EQ(FRU_GetProductManufacturer(sizeof(acOut), acOut), FRU_OK);
    EXPECT_STREQ(acOut, "N/A");
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{g_strUnable});
}

// ---- FRU_CheckCharaIsLegal

TEST(CharaIsLegal, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(FRU_CheckCharaIsLegal(nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), OneNull("FRU_CheckCharaIsLegal", "pcValue"));
}

TEST(CharaIsLegal, LegalTextsAreUpperCased)
{
    for (const auto &[strText, strExpected] :
         std::map<std::string, std::string>{{"", ""}, {"ab12", "AB12"}, {"azAZ09", "AZAZ09"}, {"0", "0"}}) {
        fake::Reset();
        std::vector<char> vecText(strText.begin(), strText.end());
        vecText.push_back('\0');
        EXPECT_EQ(FRU_CheckCharaIsLegal(vecText.data()), FRU_OK) << strText;
        EXPECT_EQ(std::string(vecText.data()), strExpected);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(CharaIsLegal, EveryOtherByteIsIllegalAndTheTextUpperCasedAllTheSame)
{
    fake::Reset();
    u32 uiIllegal = 0;
    for (u32 uiByte = 1; uiByte < 256U; ++uiByte) {
        const bool bLegal = (uiByte >= '0' && uiByte <= '9') || (uiByte >= 'A' && uiByte <= 'Z') ||
                            (uiByte >= 'a' && uiByte <= 'z');
        uiIllegal += bLegal ? 0U : 1U;
        char acText[] = "ab?1z";
        acText[2] = static_cast<char>(uiByte);
        EXPECT_EQ(FRU_CheckCharaIsLegal(acText), bLegal ? FRU_OK : FRU_ERR_FAILED) << uiByte;
        const bool bLower = uiByte >= 'a' && uiByte <= 'z';
        EXPECT_EQ(static_cast<u8>(acText[2]), bLower ? uiByte - 'a' + 'A' : uiByte);
        EXPECT_EQ(std::string(acText, 2), "AB");
        EXPECT_STREQ(acText + 3, "1Z");
    }
    EXPECT_EQ(uiIllegal, 255U - 62U);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>(uiIllegal, "0/4 lib_fru.c: paraments are illegal!"));
}

// ---- LIB_FRU_GetBmcLogoFlag

constexpr const char *g_pcOemFile = "/mnt/sdmmc0p2/OEMFile";

TEST(BmcLogoFlag, OutsideOemModeIsZero)
{
    fake::Reset();
    fake::SetHwOemFlag(3); // the support library is asked
    fake::SetBmcOemFlag(2);
    fake::WriteFile(g_pcOemFile, {});
    Keys()["logocidflag"] = "1";
    EXPECT_EQ(LIB_FRU_GetBmcLogoFlag(), 0U);
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(BmcLogoFlag, WithoutTheOemFileIsOne)
{
    fake::Reset();
    fake::SetBmcOemFlag(3);
    Keys()["logocidflag"] = "0";
    EXPECT_EQ(LIB_FRU_GetBmcLogoFlag(), 1U);
    EXPECT_TRUE(fake::Calls("Ini").empty());
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(BmcLogoFlag, WithTheOemFileIsTheConfigurations)
{
    for (const auto &[pcValue, uiExpected] : {std::pair<const char *, u32>{"0", 0U}, {"1", 1U}}) {
        fake::Reset();
        fake::SetBmcOemFlag(3);
        fake::WriteFile(g_pcOemFile, {});
        Keys()["logocidflag"] = pcValue;
        EXPECT_EQ(LIB_FRU_GetBmcLogoFlag(), uiExpected);
    }
    fake::Ini().clear();
    EXPECT_EQ(LIB_FRU_GetBmcLogoFlag(), 1U);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{g_strUnable});
}

} // namespace
