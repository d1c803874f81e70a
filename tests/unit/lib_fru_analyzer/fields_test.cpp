// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/fields.h"

#include "codec_test_helper.h"
#include "lib_fru_analyzer/area_texts.h"

namespace {

using namespace codec;

// A member of a packed record by value: a reference to it would be unaligned.
u8 *Copied(u8 *pucMember)
{
    return pucMember;
}

u32 CountOfTexts(const FRU_AREA_S &stArea)
{
    u32 uiCount = 0;
    for (u32 i = stArea.ucFirstField; i < stArea.ucEndField; ++i) {
        uiCount += g_astFruField[i].ucKind == FRU_KIND_TEXT ? 1U : 0U;
    }
    return uiCount;
}

TEST(Fields, EveryTextFollowsItsSizeByteInRecordOrder)
{
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        u32 uiEnd = stArea.usVersion;
        for (u32 i = stArea.ucFirstField; i < stArea.ucEndField; ++i) {
            const FRU_FIELD_S &stField = g_astFruField[i];
            if (stField.ucKind == FRU_KIND_BYTES) {
                uiEnd = stField.usMember + stField.ucBytes - 1U;
                continue;
            }
            if (stField.ucKind == FRU_KIND_TEXT) {
                EXPECT_EQ(stField.usMember, stField.usSize + 1U);
                EXPECT_GT(stField.usSize, uiEnd);
            }
            EXPECT_GT(stField.usMember, uiEnd);
            uiEnd = stField.usMember + static_cast<u32>(sizeof(void *)) - 1U;
        }
        EXPECT_EQ(stArea.stCustom.usFields, uiEnd + 1U);
        EXPECT_EQ(stArea.stCustom.usCount, stArea.stCustom.usFields + sizeof(void *));
    }
}

TEST(Fields, AreasStandInHeaderOrder)
{
    EXPECT_EQ(g_astFruArea[FRU_AREA_CHASSIS].ucPlace, 2U);
    EXPECT_EQ(CountOfTexts(g_astFruArea[FRU_AREA_CHASSIS]), 2U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_BOARD].ucPlace, 3U);
    EXPECT_EQ(CountOfTexts(g_astFruArea[FRU_AREA_BOARD]), 5U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_PRODUCT].ucPlace, 4U);
    EXPECT_EQ(CountOfTexts(g_astFruArea[FRU_AREA_PRODUCT]), 7U);
}

TEST(Fields, EveryFieldBelongsToOneArea)
{
    u32 uiNext = 0;
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        EXPECT_EQ(stArea.ucFirstField, uiNext);
        uiNext = stArea.ucEndField;
    }
    EXPECT_EQ(uiNext, static_cast<u32>(FRU_FIELD_COUNT));
}

TEST(Fields, EveryFieldHasItsMessages)
{
    for (u32 i = 0; i < FRU_FIELD_COUNT; ++i) {
        EXPECT_EQ(FRU_DecodeTextOf(i)[0] == '\0', g_astFruField[i].ucKind == FRU_KIND_BYTES) << i;
        EXPECT_NE(FRU_EncodeTextOf(i)[0], '\0') << i;
    }
    // The first, one behind fields without a text, and the last.
    EXPECT_STREQ(FRU_DecodeTextOf(FRU_FIELD_CHASSIS_TYPE),
                 "Failed to get chassis type desc in ChassisInfoArea!");
    EXPECT_STREQ(FRU_DecodeTextOf(FRU_FIELD_PRODUCT_MANUFACTURER),
                 "Failed to get MfrName while in ProductInfoArea!");
    EXPECT_STREQ(FRU_EncodeTextOf(FRU_FIELD_PRODUCT_FILE_ID),
                 "Error FRUFileID while converting ProductInfoArea.");
}

TEST(Fields, PointersGoInAndOutAtUnalignedOffsets)
{
    FRU_DATA_S stData{};
    char acText[] = "x";
    for (u32 uiOffset = 1; uiOffset < 9U; ++uiOffset) {
        FRU_StorePointer<char *>(&stData, uiOffset, acText);
        EXPECT_EQ(FRU_LoadPointer<char *>(&stData, uiOffset), acText);
    }
}

TEST(Fields, IdsNameTheMembers)
{
    FRU_DATA_S stData{};
    u8 ucText = 0;
    FRU_StoreFieldText(&stData, FRU_FIELD_PRODUCT_SERIAL, &ucText);
    EXPECT_EQ(Copied(stData.stProductInfo.pucProductSerialNum), &ucText);
    EXPECT_EQ(FRU_FieldText(&stData, FRU_FIELD_PRODUCT_SERIAL), &ucText);
    *FRU_FieldSize(&stData, FRU_FIELD_BOARD_FILE_ID) = 7U;
    EXPECT_EQ(stData.stBoardInfo.ucFRUFileIDLen, 7U);
    FRU_FieldBytes(&stData, FRU_FIELD_BOARD_MFG_DATE)[2] = 9U;
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[2], 9U);
}

TEST(Fields, ReplacedTextIsFreedUnlessItIsTheSame)
{
    FRU_DATA_S stData{};
    u8 *pucFirst = static_cast<u8 *>(malloc(2U));
    u8 *pucSecond = static_cast<u8 *>(malloc(2U));
    FRU_ReplaceFieldText(&stData, FRU_FIELD_CHASSIS_PART, pucFirst);
    FRU_ReplaceFieldText(&stData, FRU_FIELD_CHASSIS_PART, pucFirst);
    EXPECT_EQ(fake::LiveAllocations(), 2U);
    FRU_ReplaceFieldText(&stData, FRU_FIELD_CHASSIS_PART, pucSecond);
    EXPECT_EQ(fake::LiveAllocations(), 1U);
    EXPECT_EQ(Copied(stData.stChassisInfo.pucChassisPartNum), pucSecond);
    FRU_ReplaceFieldText(&stData, FRU_FIELD_CHASSIS_PART, nullptr);
    EXPECT_EQ(fake::LiveAllocations(), 0U);
    EXPECT_EQ(Copied(stData.stChassisInfo.pucChassisPartNum), nullptr);
}

} // namespace
