#include "lib_fru_analyzer/chassis_type.h"

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
    static_assert(sizeof(FRU_ChassisTypeTable) == 30U * 68U);
    for (u32 i = 0; i < FRU_CHASSIS_TYPE_COUNT; ++i) {
        EXPECT_EQ(FRU_ChassisTypeTable[i].uiCode, i);
        EXPECT_EQ(std::string(FRU_ChassisTypeTable[i].acDesc), g_vecTexts[i]);
        EXPECT_EQ(FRU_FindChassisTypeByCode(i), &FRU_ChassisTypeTable[i]);
        EXPECT_EQ(FRU_FindChassisTypeByDesc(g_vecTexts[i].c_str()), &FRU_ChassisTypeTable[i]);
    }
}

TEST(ChassisType, TextsArePaddedWithZeros)
{
    for (const FRU_CHASSIS_TYPE_S &stType : FRU_ChassisTypeTable) {
        for (size_t i = strlen(stType.acDesc); i < sizeof(stType.acDesc); ++i) {
            EXPECT_EQ(stType.acDesc[i], '\0');
        }
    }
}

TEST(ChassisType, UnknownCodesAndTextsAreNotFound)
{
    for (const u32 uiCode : {30U, 255U, 256U, 0xFFFFFFFFU}) {
        EXPECT_EQ(FRU_FindChassisTypeByCode(uiCode), nullptr);
    }
    for (const char *pcDesc : {"", "rack mount chassis", "Rack Mount Chassis ", "Rack Mount", "Laptop"}) {
        EXPECT_EQ(FRU_FindChassisTypeByDesc(pcDesc), nullptr);
    }
}

} // namespace
