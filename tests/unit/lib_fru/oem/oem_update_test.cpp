// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "bmc_ini.h"
#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "one_device.h"
#include "support/image_builder.h"

namespace {

constexpr const char *g_pcPath = "/conf/oempack/bmc/CID_OEM.conf";
const std::string g_strLoad = std::string("IniLoadFile ") + g_pcPath + " -> open";
const std::string g_strNoLoad = std::string("IniLoadFile ") + g_pcPath + " -> null";
const std::string g_strSave = std::string("IniSaveFile ") + g_pcPath + " -> 0";
const std::vector<std::string> g_vecNoFru = {"0/4 lib_fru.c: Get fru device tbl failed!",
                                             "5/4 lib_fru.c: Fail to find fru device tbl!",
                                             "5/4 lib_fru.c: Fail to find ComponentType:0,Instance:0!"};

std::map<std::string, std::string> &Keys()
{
    return fake::Ini()[g_pcPath]["oem_configure"];
}

// ---- FRU_ReplaceOemConf

TEST(ReplaceOemConf, NullHandleThenNullValueAreReported)
{
    fake::Reset();
    int iHandle = 0;
    FRU_ReplaceOemConf(nullptr, nullptr, "current", "key");
    FRU_ReplaceOemConf(&iHandle, nullptr, "current", "key");
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_ReplaceOemConf", "hpd"),
                                        fake::NullMessage("lib_fru.c", "FRU_ReplaceOemConf", "pcStr1")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(ReplaceOemConf, SetsAKeyOnlyWhenTheValueDiffers)
{
    fake::Reset();
    Keys();
    void *hpd = BRIDGE_IniLoadFile(g_pcPath);
    FRU_ReplaceOemConf(hpd, "same", "same", "productname");
    FRU_ReplaceOemConf(hpd, "new", "old", "productname");
    FRU_ReplaceOemConf(hpd, "", "old", "productversion");
    FRU_ReplaceOemConf(hpd, "first", "", "productextra1");
    EXPECT_EQ(fake::Calls("IniSetStr"),
              (std::vector<std::string>{"IniSetStr oem_configure productname [new] -> 0",
                                        "IniSetStr oem_configure productversion [] -> 0",
                                        "IniSetStr oem_configure productextra1 [first] -> 0"}));
    EXPECT_TRUE(fake::Messages().empty());
    BRIDGE_IniCloseFile(hpd);
}

TEST(ReplaceOemConf, NullCurrentValueAndKeyAreHarmless)
{
    fake::Reset();
    Keys();
    void *hpd = BRIDGE_IniLoadFile(g_pcPath);
    FRU_ReplaceOemConf(hpd, "new", nullptr, "productname");
    FRU_ReplaceOemConf(hpd, "new", "old", nullptr);
    EXPECT_EQ(fake::Calls("IniSetStr"),
              std::vector<std::string>{"IniSetStr oem_configure productname [new] -> 0"});
    EXPECT_TRUE(fake::Messages().empty());
    BRIDGE_IniCloseFile(hpd);
}

// ---- FRU_SetOEMConf

// Every key that FRU_SetOEMConf() writes, with a value that the FRU does not have.
std::map<std::string, std::string> OldKeys()
{
    return {{"productmanufacturer", "old"}, {"productname", "old"},
            {"productserialnumber", "old"}, {"productassettag", "old"},
            {"productextra1", "old"},       {"productextra2", "old"},
            {"productextra3", "old"},       {"productextra4", "old"},
            {"productpartnumber", "old"},   {"chassispartnumber", "old"},
            {"productversion", "old"},      {"boardproductname", "old"},
            {"boardmanufacturer", "old"},   {"qbx", "old"},
            {"copyright_en", "old"}};
}

TEST(SetOemConf, ReplacesEveryKeyInOrder)
{
    fake::Reset();
    image::AREAS_S stAreas = image::FullAreas();
    stAreas.vecProduct =
        image::ProductArea(25, image::Texts({"P-MFR", "P-NAME", "P-PN", "P-VER", "P-SN", "P-TAG", "P-FILE",
                                             "E1", "E2", "E3", "E4", "E5"}));
    one_device::Put(0, 0, 0, image::Image(stAreas));
    Keys() = OldKeys();
    fake::Ini()[g_pcPath]["other"]["productname"] = "untouched";
    const u32 uiBefore = fake::LiveAllocations();
    FRU_SetOEMConf();
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(fake::Calls("Ini"),
              (std::vector<std::string>{g_strLoad, g_strLoad, "IniCloseFile",
                                        "IniSetStr oem_configure productmanufacturer [P-MFR] -> 0",
                                        "IniSetStr oem_configure productname [P-NAME] -> 0",
                                        "IniSetStr oem_configure productserialnumber [P-SN] -> 0",
                                        "IniSetStr oem_configure productassettag [P-TAG] -> 0",
                                        "IniSetStr oem_configure productpartnumber [P-PN] -> 0",
                                        "IniSetStr oem_configure productextra1 [E1] -> 0",
                                        "IniSetStr oem_configure productextra2 [E2] -> 0",
                                        "IniSetStr oem_configure productextra3 [E3] -> 0",
                                        "IniSetStr oem_configure productextra4 [E4] -> 0",
                                        "IniSetStr oem_configure chassispartnumber [CH-PN] -> 0",
                                        "IniSetStr oem_configure boardproductname [B-NAME] -> 0",
                                        "IniSetStr oem_configure productversion [P-VER] -> 0", g_strSave,
                                        "IniCloseFile"}));
    EXPECT_TRUE(one_device::OwnMessages().empty());
    EXPECT_EQ(Keys()["productname"], "P-NAME");
    EXPECT_EQ(Keys()["boardmanufacturer"], "old");
    EXPECT_EQ(Keys()["qbx"], "old");
    EXPECT_EQ(fake::Ini()[g_pcPath]["other"]["productname"], "untouched");
}

TEST(SetOemConf, KeysThatAreEmptyInTheFileAreNeverCreated)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys() = {{"productversion", "old"}, {"productname", ""}};
    FRU_SetOEMConf();
    EXPECT_EQ(fake::Calls("IniSetStr"),
              std::vector<std::string>{"IniSetStr oem_configure productversion [P-VER] -> 0"});
    EXPECT_EQ(Keys(), (std::map<std::string, std::string>{{"productversion", "P-VER"}, {"productname", ""}}));
}

TEST(SetOemConf, AKeyOfOneCharacterIsReplaced)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys() = {{"productversion", "1"}};
    FRU_SetOEMConf();
    EXPECT_EQ(Keys()["productversion"], "P-VER");
}

TEST(SetOemConf, EqualValuesAreNotSetButTheFileIsSaved)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys() = {{"productversion", "P-VER"}, {"chassispartnumber", "CH-PN"}};
    FRU_SetOEMConf();
    EXPECT_TRUE(fake::Calls("IniSetStr").empty());
    EXPECT_EQ(fake::Calls("IniSaveFile"), std::vector<std::string>{g_strSave});
}

TEST(SetOemConf, ExtraFieldsNeedTheirCustomField)
{
    for (u32 uiFields = 0; uiFields <= 5U; ++uiFields) {
        fake::Reset();
        std::vector<std::string> vecTexts = {"MF", "NA", "PN", "VE", "SN", "TA", "FI"};
        for (u32 i = 1; i <= uiFields; ++i) {
            vecTexts.push_back("E" + std::to_string(i));
        }
        image::AREAS_S stAreas;
        stAreas.vecProduct = image::ProductArea(25, image::Texts(vecTexts));
        one_device::Put(0, 0, 0, image::Image(stAreas));
        std::vector<std::string> vecExpected;
        for (u32 i = 1; i <= 4U; ++i) {
            Keys()["productextra" + std::to_string(i)] = "old";
            if (i <= uiFields) {
                vecExpected.push_back("IniSetStr oem_configure productextra" + std::to_string(i) + " [E" +
                                      std::to_string(i) + "] -> 0");
            }
        }
        FRU_SetOEMConf();
        EXPECT_EQ(fake::Calls("IniSetStr"), vecExpected);
        EXPECT_TRUE(one_device::OwnMessages().empty());
    }
}

TEST(SetOemConf, AbsentTextsAreReportedAndSkipped)
{
    fake::Reset();
    image::AREAS_S stAreas = image::FullAreas();
    stAreas.vecChassis.clear();
    one_device::Put(0, 0, 0, image::Image(stAreas));
    Keys() = OldKeys();
    FRU_SetOEMConf();
    EXPECT_EQ(one_device::OwnMessages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", "FRU_ReplaceOemConf", "pcStr1")});
    EXPECT_EQ(Keys()["chassispartnumber"], "old");
    EXPECT_EQ(Keys()["productversion"], "P-VER");
}

TEST(SetOemConf, WithoutAFruTheFileIsNotOpened)
{
    fake::Reset();
    Keys() = OldKeys();
    FRU_SetOEMConf();
    std::vector<std::string> vecExpected = g_vecNoFru;
    vecExpected.emplace_back("[23]0/2 lib_fru.c: Get fru info failed!");
    EXPECT_EQ(fake::Messages(), vecExpected);
    EXPECT_TRUE(fake::Calls("Ini").empty());
    EXPECT_EQ(Keys(), OldKeys());
}

TEST(SetOemConf, AFruThatDoesNotDecodeIsReleased)
{
    fake::Reset();
    image::BYTES vecImage = image::FullImage();
    vecImage[vecImage[4] * 8U] = 2U; // the version of the last info area: the others have been decoded
    one_device::Put(0, 0, 0, vecImage);
    Keys() = OldKeys();
    const u32 uiBefore = fake::LiveAllocations();
    FRU_SetOEMConf();
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(fake::Messages().back(), "[23]0/2 lib_fru.c: Get fru info failed!");
    EXPECT_TRUE(fake::Calls("Ini").empty());
}

TEST(SetOemConf, ADamagedFruIsNotRecovered)
{
    fake::Reset();
    one_device::PutDamaged(0, 0, 0, image::FullImage());
    Keys() = OldKeys();
    FRU_SetOEMConf();
    EXPECT_EQ(fake::Messages().back(), "[23]0/2 lib_fru.c: Get fru info failed!");
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
    EXPECT_EQ(Keys(), OldKeys());
}

TEST(SetOemConf, WithoutAFile)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    const u32 uiBefore = fake::LiveAllocations();
    FRU_SetOEMConf();
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(one_device::OwnMessages(),
              std::vector<std::string>{std::string("[23]0/2 lib_fru.c: open file ") + g_pcPath + " failed."});
    EXPECT_EQ(fake::Calls("Ini"), std::vector<std::string>{g_strNoLoad});
    EXPECT_TRUE(fake::Ini().empty());
}

TEST(SetOemConf, ASaveThatFailsIsNotTold)
{
    fake::Reset();
    one_device::Put(0, 0, 0, image::FullImage());
    Keys() = {{"productversion", "P-VER"}};
    fake::Arm({fake::KIND_E::INI, 3, false}); // load, load, save
    FRU_SetOEMConf();
    EXPECT_TRUE(one_device::OwnMessages().empty());
    EXPECT_EQ(fake::Calls("Ini").back(), "IniCloseFile");
}

TEST(SetOemConf, SurvivesEveryFailure)
{
    fake::Sweep(
        [] {
            image::AREAS_S stAreas;
            stAreas.vecProduct =
                image::ProductArea(25, image::Texts({"MF", "NA", "PN", "VE", "SN", "TA", "FI", "E1"}));
            one_device::Put(0, 0, 0, image::Image(stAreas));
            Keys() = {{"productversion", "old"}, {"productextra1", "old"}};
        },
        [] { FRU_SetOEMConf(); },
        [](const fake::FAULT_S *pstFault) {
            const std::map<std::string, std::string> mapOld{{"productversion", "old"},
                                                            {"productextra1", "old"}};
            if (pstFault == nullptr) {
                EXPECT_EQ(Keys(), (std::map<std::string, std::string>{{"productversion", "VE"},
                                                                      {"productextra1", "E1"}}));
            } else if (fake::Calls("IniSaveFile").empty()) {
                EXPECT_EQ(Keys(), mapOld);
            }
            // Every handle that was opened is closed.
            EXPECT_EQ(fake::Calls(g_strLoad).size(), fake::Calls("IniCloseFile").size());
        });
}

} // namespace
