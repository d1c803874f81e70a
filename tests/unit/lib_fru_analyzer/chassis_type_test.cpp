// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/fields.h"

#include "codec_test_helper.h"

namespace {

using namespace codec;

const LINES g_vecTexts{"Unspecified",
                       "Other",
                       "Unknown",
                       "Desktop",
                       "Low Profile Desktop",
                       "Pizza Box",
                       "Mini Tower",
                       "Tower",
                       "Portable",
                       "LapTop",
                       "Notebook",
                       "Hand Held",
                       "Docking Station",
                       "All in One",
                       "Sub Notebook",
                       "Space-saving",
                       "Lunch Box",
                       "Main Server Chassis",
                       "Expansion Chassis",
                       "SubChassis",
                       "Bus Expansion Chassis",
                       "Peripheral Chassis",
                       "RAID Chassis",
                       "Rack Mount Chassis",
                       "Sealed-case PC",
                       "Multi-system Chassis",
                       "CompactPCI",
                       "AdvancedTCA",
                       "Blade",
                       "Blade Enclosure"};

TEST(ChassisType, CodesArePositionsAndTextsAreThese)
{
    ASSERT_EQ(g_vecTexts.size(), FRU_CHASSIS_TYPE_COUNT);
    for (u32 i = 0; i < FRU_CHASSIS_TYPE_COUNT; ++i) {
        EXPECT_STREQ(FRU_FindChassisDesc(i), g_vecTexts[i].c_str());
        EXPECT_EQ(FRU_FindChassisCode(g_vecTexts[i].c_str()), i);
    }
}

TEST(ChassisType, TextsArePaddedWithZeros)
{
    for (u32 uiCode = 0; uiCode < FRU_CHASSIS_TYPE_COUNT; ++uiCode) {
        image::AREAS_S stAreas;
        stAreas.vecChassis = image::ChassisArea(static_cast<u8>(uiCode), image::Texts({"PN", "SN"}));
        RECORD record;
        ASSERT_EQ(Decode(image::Image(stAreas), record.Get()), FRU_OK);
        const char *pcType = record->stChassisInfo.pucChassisType;
        for (size_t i = g_vecTexts[uiCode].size(); i < FRU_CHASSIS_TYPE_DESC_LEN; ++i) {
            EXPECT_EQ(pcType[i], '\0');
        }
    }
}

TEST(ChassisType, UnknownCodesAndTextsAreNotFound)
{
    for (const u32 uiCode : {30U, 255U, 256U, 0xFFFFFFFFU}) {
        EXPECT_EQ(FRU_FindChassisDesc(uiCode), nullptr);
    }
    for (const char *pcDesc : {"", "rack mount chassis", "Rack Mount Chassis ", "Rack Mount", "Laptop"}) {
        EXPECT_EQ(FRU_FindChassisCode(pcDesc), FRU_CHASSIS_TYPE_COUNT);
    }
}

} // namespace
