// SPDX-License-Identifier: Apache-2.0
// Images that other programs made and boards hold, where they are at hand.
#include <fstream>
#include <iterator>

#include "codec_test_helper.h"

namespace {

using namespace codec;
using model::TEXTS;

constexpr char NO_IMAGES[] = "no such image in BMCFRU_CORPUS_DIR, which is '" BMCFRU_CORPUS_DIR "'";

// False: the images are not there.
bool Load(const std::string &strName, BYTES &vecImage)
{
    const std::string strFolder = BMCFRU_CORPUS_DIR;
    vecImage.clear();
    if (strFolder.empty()) {
        return false;
    }
    std::ifstream stream(strFolder + "/" + strName, std::ios::binary);
    vecImage.assign(std::istreambuf_iterator<char>(stream), {});
    return !vecImage.empty();
}

struct CORPUS_CASE_S
{
    const char *pcName;
    size_t uiTail; // bytes of the device behind the image
    u32 uiRet;
    TEXTS vecBoard;
    TEXTS vecProduct;
    TEXTS vecProductCustom;
    size_t uiMultiRecords;
};

class Corpus : public testing::TestWithParam<CORPUS_CASE_S>
{};

TEST_P(Corpus, HasTheseTexts)
{
    BYTES vecImage;
    if (!Load(GetParam().pcName, vecImage)) {
        GTEST_SKIP() << NO_IMAGES;
    }
    fake::Reset();
    RECORD record;
    vecImage.resize(vecImage.size() + GetParam().uiTail, 0xFFU);
    EXPECT_EQ(Decode(vecImage, record.Get()), GetParam().uiRet);
    if (GetParam().uiRet != 0U) {
        return;
    }
    const model::RECORD_S stModel = model::Read(record.Get());
    EXPECT_EQ(stModel.optBoard ? stModel.optBoard->vecFields : TEXTS{}, GetParam().vecBoard);
    EXPECT_EQ(stModel.optProduct ? stModel.optProduct->vecFields : TEXTS{}, GetParam().vecProduct);
    EXPECT_EQ(stModel.optProduct ? stModel.optProduct->vecCustom : TEXTS{}, GetParam().vecProductCustom);
    EXPECT_EQ(stModel.vecMultiRecord.size(), GetParam().uiMultiRecords);
}

const CORPUS_CASE_S g_astCases[] = {
    {"pyipmi-fru_supermicro_x11scz-f.bin",
     0,
     0,
     {"Supermicro", "X11SCZ-F", "VM211S003599", "MDB-X11SCZ-F-B", ""},
     {"RNT Rausch", "SRV-RNT-1U-DED-3-0002", "", "PO-00003902", "DS03210109", "", ""},
     {},
     0},
    {"pyipmi-kontron_am4010.bin",
     0,
     0,
     {"Kontron", "AM4010", "0023721003", "35943", "EF_0100"},
     {"Kontron", "AM4010", "0012", std::string(25, '0'), std::string(25, '0'), std::string(25, '_'),
      "EF_0100"},
     {"MAC=00:80:82:74:09:78"},
     2},
    {"pyipmi-vadatech_utc017.bin",
     0,
     0,
     {"VadaTech", "UTCA PM", "4451956", "UTC017", "MgtCtrl.bin"},
     {"VadaTech", "UTCA PM", "UTC017", "05.00", "4451956", "", ""},
     {"5D32"},
     1},
    {"frugy-DWC8VM1.bin",
     0,
     0,
     {"Struck Innovative Systeme GmbH", "DRTM-DWC8VM1", "015", "DRTM-DWC8VM1", "v0003"},
     {"Struck Innovative Systeme GmbH", "DRTM-DWC8VM1", "8618-01ML", "v1.1", "015", "", "v0003"},
     {""},
     3},
    {"frugy-damc-fmc25.bin",
     0,
     0,
     {"DESY", "DAMC-FMC25", "0000", "0000", "none"},
     {"DESY", "DAMC-FMC25", "0000", "0000", "0000", "none", "none"},
     {},
     2},
    {"frugy-opalkelly_default_2k.bin", // its record checksum is wrong: the rest is there all the same
     0,
     0,
     {"Opal Kelly Incorporated", "EVB1006", "1135000OKI", "EVB1006", ""},
     {},
     {},
     0},
    {"frutool-basic-all.bin",
     0,
     0,
     {"board-manufacturer", "board-product", "board-serial", "board-part", "board-fileid"},
     {"product-manufacturer", "product-product", "product-part", "product-version", "product-serial",
      "product-asset", "product-fileid"},
     {"product-extra1", "product-extra2", "product-extra3"},
     0},
    {"frutool-checksum-zero.bin", 0, 0, {"", "", "", "", ""}, {}, {}, 0},
    {"frubuilder-fru_full.bin", // two-byte characters are no 8-bit text
     0,
     0,
     {"", "", "SOME_BOARD_SERIALNUMBER ", "SOME_BOARD_PARTNUMBER   ", "0A0B0C"},
     {"", "", "SOME_PRODUCT_PARTNUMBER ", "", "SOME_PRODUCT_SERIALNUMBER   ", "", "0A0B0C"},
     {},
     7},
    {"frubuilder-fru_only_product_info.bin", 0, 0x29000001U, {}, {}, {}, 0}, // ends with its last area
    {"frubuilder-fru_only_product_info.bin",
     8,
     0,
     {},
     {"", "", "SOME_PRODUCT_PARTNUMBER ", "", "SOME_PRODUCT_SERIALNUMBER   ", "", "0A0B0C"},
     {},
     0},
    {"frubuilder-fru_only_chassis_info_custom_fields.bin", 0, 0x29000001U, {}, {}, {}, 0},
    {"frubuilder-fru_only_chassis_info_custom_fields.bin", 8, 0, {}, {}, {}, 0},
};

INSTANTIATE_TEST_SUITE_P(Images, Corpus, testing::ValuesIn(g_astCases), [](const auto &stInfo) {
    std::string strName;
    for (const char *pcName = stInfo.param.pcName; *pcName != '\0'; ++pcName) {
        strName.push_back(isalnum(static_cast<unsigned char>(*pcName)) != 0 ? *pcName : '_');
    }
    return strName + std::to_string(stInfo.param.uiTail);
});

TEST(CorpusChassis, AllFourEncodings)
{
    BYTES vecImage;
    if (!Load("frubuilder-fru_full.bin", vecImage)) {
        GTEST_SKIP() << NO_IMAGES;
    }
    fake::Reset();
    RECORD record;
    ASSERT_EQ(Decode(vecImage, record.Get()), 0U);
    const model::AREA_S stArea = *model::Read(record.Get()).optChassis;
    EXPECT_EQ(stArea.strChassisType, "Pizza Box");
    EXPECT_EQ(stArea.vecFields, (TEXTS{"SOME_CHASSIS_PARTNUMBER ", "SOME_CHASSIS_SERIALNUMBER   "}));
    EXPECT_EQ(stArea.vecCustom, (TEXTS{"010203040506070809", "", "HELLO_WORLD ", "some_english"}));
    EXPECT_EQ(fake::RawMessages().size(), 11U + 3U); // eleven fields of other types, three counts
}

TEST(CorpusChassis, EveryTruncationIsHarmless)
{
    BYTES vecImage;
    if (!Load("frubuilder-fru_full.bin", vecImage)) {
        GTEST_SKIP() << NO_IMAGES;
    }
    const u32 uiBefore = fake::LiveAllocations();
    for (; !vecImage.empty(); vecImage.pop_back()) {
        fake::Reset();
        RECORD record;
        const u32 uiRet = Decode(vecImage, record.Get());
        EXPECT_TRUE(uiRet == 0U || uiRet == 0x29000001U || uiRet == 0x29000002U);
    }
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
}

} // namespace
