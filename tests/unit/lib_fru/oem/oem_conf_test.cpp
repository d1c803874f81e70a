// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "one_device.h"
#include "support/image_builder.h"

namespace {

constexpr const char *g_pcPath = "/conf/oempack/bmc/CID_OEM.conf";
const std::string g_strLoad = std::string("IniLoadFile ") + g_pcPath + " -> open";
const std::string g_strNoLoad = std::string("IniLoadFile ") + g_pcPath + " -> null";
const std::string g_strUnable = std::string("0/4 lib_fru.c: Unable to get oem conf file : ") + g_pcPath;
const std::vector<std::string> g_vecNoFru = {"0/4 lib_fru.c: Get fru device tbl failed!",
                                             "5/4 lib_fru.c: Fail to find fru device tbl!",
                                             "5/4 lib_fru.c: Fail to find ComponentType:0,Instance:0!"};

std::map<std::string, std::string> &Keys()
{
    return fake::Ini()[g_pcPath]["oem_configure"];
}

FRU_OEM_CONF_S Filled()
{
    FRU_OEM_CONF_S stConf = {};
    (void)memset(&stConf, 0xA5, sizeof(stConf));
    return stConf;
}

bool Same(const FRU_OEM_CONF_S &stLeft, const FRU_OEM_CONF_S &stRight)
{
    return memcmp(&stLeft, &stRight, sizeof(stLeft)) == 0;
}

// A file without any of the keys.
FRU_OEM_CONF_S WithoutKeys()
{
    FRU_OEM_CONF_S stConf = {};
    (void)strcpy(stConf.acQbx, "BMC");
    stConf.ucOemFlag = 1;
    stConf.usCheckArea = 1;
    stConf.uiPrivateOid = 0x81000001U;
    stConf.ucLogoCidFlag = 1;
    return stConf;
}

// The same without a file.
FRU_OEM_CONF_S WithoutFile()
{
    FRU_OEM_CONF_S stConf = {};
    (void)strcpy(stConf.acBoardManufacturer, "N/A");
    (void)strcpy(stConf.acProductManufacturer, "N/A");
    (void)strcpy(stConf.acProductName, "N/A");
    (void)strcpy(stConf.acQbx, "BMC");
    stConf.uiPrivateOid = 8072;
    stConf.ucLogoCidFlag = 1;
    return stConf;
}

struct TEXT_KEY_S
{
    const char *pcKey;
    size_t uiOffset;
    size_t uiSize;
};

#define TEXT_KEY(pcKey, Member)                                                                              \
    {                                                                                                        \
        pcKey, offsetof(FRU_OEM_CONF_S, Member), sizeof(FRU_OEM_CONF_S::Member)                              \
    }

const TEXT_KEY_S g_astTextKey[] = {
    TEXT_KEY("copyright_cn", acCopyrightCn),
    TEXT_KEY("copyright_en", acCopyrightEn),
    TEXT_KEY("boardmanufacturer", acBoardManufacturer),
    TEXT_KEY("productmanufacturer", acProductManufacturer),
    TEXT_KEY("productname", acProductName),
    TEXT_KEY("qbx", acQbx),
    TEXT_KEY("productserialnumber", acProductSerialNumber),
    TEXT_KEY("productassettag", acProductAssetTag),
    TEXT_KEY("productextra1", acProductExtra1),
    TEXT_KEY("productextra2", acProductExtra2),
    TEXT_KEY("productextra3", acProductExtra3),
    TEXT_KEY("productextra4", acProductExtra4),
    TEXT_KEY("productpartnumber", acProductPartNumber),
    TEXT_KEY("chassispartnumber", acChassisPartNumber),
    TEXT_KEY("boardproductname", acBoardProductName),
    TEXT_KEY("productversion", acProductVersion),
};

// ---- FRU_GetOEMConfBeforeDeal

TEST(OemConfBeforeDeal, NullIsReported)
{
    fake::Reset();
    FRU_GetOEMConfBeforeDeal(nullptr);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "FRU_GetOEMConfBeforeDeal", "pstOemConf")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(OemConfBeforeDeal, WithoutAFile)
{
    fake::Reset();
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConfBeforeDeal(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutFile()));
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{g_strUnable});
    EXPECT_EQ(fake::Calls(), std::vector<std::string>{g_strNoLoad});
}

TEST(OemConfBeforeDeal, WithoutTheSection)
{
    fake::Reset();
    fake::Ini()[g_pcPath]["other"]["qbx"] = "elsewhere";
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConfBeforeDeal(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutKeys()));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(), (std::vector<std::string>{g_strLoad, "IniCloseFile"}));
}

TEST(OemConfBeforeDeal, EveryTextGoesToItsMember)
{
    for (const TEXT_KEY_S &stKey : g_astTextKey) {
        fake::Reset();
        Keys()[stKey.pcKey] = "100%s of it";
        FRU_OEM_CONF_S stConf = Filled();
        FRU_GetOEMConfBeforeDeal(&stConf);
        FRU_OEM_CONF_S stExpected = WithoutKeys();
        char *pcMember = reinterpret_cast<char *>(&stExpected) + stKey.uiOffset;
        (void)memset(pcMember, 0, stKey.uiSize);
        (void)strcpy(pcMember, "100%s of it");
        EXPECT_TRUE(Same(stConf, stExpected)) << stKey.pcKey;
    }
}

TEST(OemConfBeforeDeal, TextsAreCutToTheirMember)
{
    for (const TEXT_KEY_S &stKey : g_astTextKey) {
        for (const size_t uiLength : {stKey.uiSize - 1U, stKey.uiSize, size_t{1000}}) {
            fake::Reset();
            Keys()[stKey.pcKey] = std::string(uiLength, 'x');
            FRU_OEM_CONF_S stConf = Filled();
            FRU_GetOEMConfBeforeDeal(&stConf);
            FRU_OEM_CONF_S stExpected = WithoutKeys();
            char *pcMember = reinterpret_cast<char *>(&stExpected) + stKey.uiOffset;
            (void)memset(pcMember, 'x', stKey.uiSize - 1U);
            EXPECT_TRUE(Same(stConf, stExpected)) << stKey.pcKey << " " << uiLength;
        }
    }
}

TEST(OemConfBeforeDeal, AnEmptySoftwareNameStaysEmpty)
{
    fake::Reset();
    Keys()["qbx"] = "";
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConfBeforeDeal(&stConf);
    EXPECT_STREQ(stConf.acQbx, "");
}

TEST(OemConfBeforeDeal, NumbersKeepWhatFitsTheirMember)
{
    fake::Reset();
    Keys() = {{"oemflag", "0x1FE"},
              {"checkarea", "0x51234"},
              {"privateoid", "0xFEDCBA98"},
              {"userid", "511"},
              {"logocidflag", "no"}};
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConfBeforeDeal(&stConf);
    FRU_OEM_CONF_S stExpected = WithoutKeys();
    stExpected.ucOemFlag = 0xFE;
    stExpected.usCheckArea = 0x1234;
    stExpected.uiPrivateOid = 0xFEDCBA98U;
    stExpected.ucUserId = 0xFF;
    stExpected.ucLogoCidFlag = 0;
    EXPECT_TRUE(Same(stConf, stExpected));
}

TEST(OemConfBeforeDeal, TheLogoFlagIsABoolean)
{
    for (const auto &[pcValue, ucExpected] : std::map<const char *, u8>{
             {"yes", 1}, {"True", 1}, {"1", 1}, {"No", 0}, {"false", 0}, {"0", 0}, {"maybe", 1}, {"", 1}}) {
        fake::Reset();
        Keys()["logocidflag"] = pcValue;
        FRU_OEM_CONF_S stConf = {};
        FRU_GetOEMConfBeforeDeal(&stConf);
        EXPECT_EQ(stConf.ucLogoCidFlag, ucExpected) << pcValue;
    }
}

// ---- FRU_GetOEMConf

TEST(OemConf, NullIsReported)
{
    fake::Reset();
    FRU_GetOEMConf(nullptr);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_GetOEMConf", "pstOemConf")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(OemConf, EmptyNamesComeFromTheFru)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys()["boardproductname"] = ""; // none of the three
    const u32 uiBefore = fake::LiveAllocations();
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConf(&stConf);
    FRU_OEM_CONF_S stExpected = WithoutKeys();
    (void)strcpy(stExpected.acProductName, "P-NAME");
    (void)strcpy(stExpected.acProductManufacturer, "P-MFR");
    (void)strcpy(stExpected.acBoardManufacturer, "B-MFR");
    EXPECT_TRUE(Same(stConf, stExpected));
    EXPECT_TRUE(one_device::OwnMessages().empty());
    EXPECT_EQ(fake::LiveAllocations(), uiBefore); // the record that was read is released
}

TEST(OemConf, NamesOfTheFileStay)
{
    for (const char *pcKept : {"productname", "productmanufacturer", "boardmanufacturer"}) {
        fake::Reset();
        one_device::Put(0, 0, 0, image::FullImage());
        Keys()[pcKept] = "FILE";
        FRU_OEM_CONF_S stConf = {};
        FRU_GetOEMConf(&stConf);
        EXPECT_STREQ(stConf.acProductName, pcKept == std::string("productname") ? "FILE" : "P-NAME");
        EXPECT_STREQ(stConf.acProductManufacturer,
                     pcKept == std::string("productmanufacturer") ? "FILE" : "P-MFR");
        EXPECT_STREQ(stConf.acBoardManufacturer,
                     pcKept == std::string("boardmanufacturer") ? "FILE" : "B-MFR");
    }
}

TEST(OemConf, ANameOfOneCharacterStays)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys()["productname"] = "X";
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConf(&stConf);
    EXPECT_STREQ(stConf.acProductName, "X");
}

TEST(OemConf, WithoutAFileNamesAreNeverReplaced)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConf(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutFile()));
    EXPECT_EQ(one_device::OwnMessages(), std::vector<std::string>{g_strUnable});
}

TEST(OemConf, WithoutAFruTheNamesStayEmpty)
{
    fake::Reset();
    Keys();
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConf(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutKeys()));
    EXPECT_EQ(fake::Messages(), g_vecNoFru);
}

TEST(OemConf, FruWithoutAreasLeavesTheNamesEmpty)
{
    fake::Reset();
    Keys();
    one_device::Put(0, 0, 0, image::Image({}));
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConf(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutKeys()));
}

TEST(OemConf, ADamagedFruIsNotRecovered)
{
    fake::Reset();
    Keys();
    one_device::PutDamaged(0, 0, 0, image::FullImage());
    FRU_OEM_CONF_S stConf = Filled();
    FRU_GetOEMConf(&stConf);
    EXPECT_TRUE(Same(stConf, WithoutKeys()));
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
}

TEST(OemConf, SurvivesEveryFailure)
{
    FRU_OEM_CONF_S stConf = {};
    fake::Sweep(
        [&] {
            image::AREAS_S stAreas;
            stAreas.vecProduct = image::ProductArea(25, image::Texts({"P-MFR", "P-NAME"}));
            one_device::Put(0, 0, 0, image::Image(stAreas));
            Keys()["boardmanufacturer"] = "FILE";
            stConf = Filled();
        },
        [&] { FRU_GetOEMConf(&stConf); },
        [&](const fake::FAULT_S *pstFault) {
            if (pstFault != nullptr && pstFault->eKind == fake::KIND_E::INI) {
                EXPECT_TRUE(Same(stConf, WithoutFile()));
                return;
            }
            EXPECT_STREQ(stConf.acBoardManufacturer, "FILE");
            EXPECT_TRUE(strcmp(stConf.acProductName, "P-NAME") == 0 ||
                        (pstFault != nullptr && stConf.acProductName[0] == '\0'));
            EXPECT_STREQ(stConf.acQbx, "BMC");
        });
}

} // namespace
