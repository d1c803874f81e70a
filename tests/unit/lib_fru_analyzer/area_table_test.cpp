#include "lib_fru_analyzer/area_table.h"

#include "codec_test_helper.h"

namespace {

using namespace codec;

TEST(AreaTable, EveryTextFollowsItsSizeByteInRecordOrder)
{
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        u32 uiEnd = stArea.usVersion;
        for (u32 i = 0; i < stArea.uiFieldCount; ++i) {
            EXPECT_EQ(stArea.pstField[i].usText, stArea.pstField[i].usSize + 1U);
            EXPECT_GT(stArea.pstField[i].usSize, uiEnd);
            uiEnd = stArea.pstField[i].usText + static_cast<u32>(sizeof(void *)) - 1U;
        }
        EXPECT_EQ(stArea.usCustomFields, uiEnd + 1U);
        EXPECT_EQ(stArea.usCustomCount, stArea.usCustomFields + sizeof(void *));
    }
}

TEST(AreaTable, AreasStandInHeaderOrder)
{
    EXPECT_EQ(g_astFruArea[FRU_AREA_CHASSIS].ucHeaderByte, 2U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_CHASSIS].uiFieldCount, 2U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_BOARD].ucHeaderByte, 3U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_BOARD].uiFieldCount, 5U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_PRODUCT].ucHeaderByte, 4U);
    EXPECT_EQ(g_astFruArea[FRU_AREA_PRODUCT].uiFieldCount, 7U);
}

TEST(AreaTable, PointersGoInAndOutAtUnalignedOffsets)
{
    FRU_DATA_S stData{};
    char acText[] = "x";
    for (u32 uiOffset = 1; uiOffset < 9U; ++uiOffset) {
        FRU_StorePointer<char *>(&stData, uiOffset, acText);
        EXPECT_EQ(FRU_LoadPointer<char *>(&stData, uiOffset), acText);
    }
}

} // namespace
