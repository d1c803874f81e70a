// SPDX-License-Identifier: Apache-2.0
#include "codec_test_helper.h"

namespace {

using namespace codec;

// Every byte that is not a pointer, by blanking the pointers of a copy.
std::string PlainBytes(const FRU_DATA_S &stData)
{
    FRU_DATA_S stPlain;
    (void)memcpy(&stPlain, &stData, sizeof(stPlain));
    stPlain.stInternalUseArea.pucData = nullptr;
    stPlain.stChassisInfo.pucChassisType = nullptr;
    stPlain.stChassisInfo.pucChassisPartNum = nullptr;
    stPlain.stChassisInfo.pucChassisSerialNum = nullptr;
    stPlain.stChassisInfo.ppucCustomFields = nullptr;
    stPlain.stBoardInfo.pucBoardMfr = nullptr;
    stPlain.stBoardInfo.pucBoardProductName = nullptr;
    stPlain.stBoardInfo.pucBoardSerialNum = nullptr;
    stPlain.stBoardInfo.pucBoardPartNum = nullptr;
    stPlain.stBoardInfo.pucFRUFileID = nullptr;
    stPlain.stBoardInfo.ppucCustomFields = nullptr;
    stPlain.stProductInfo.pucMfrName = nullptr;
    stPlain.stProductInfo.pucProductName = nullptr;
    stPlain.stProductInfo.pucProductPartNum = nullptr;
    stPlain.stProductInfo.pucProductVersion = nullptr;
    stPlain.stProductInfo.pucProductSerialNum = nullptr;
    stPlain.stProductInfo.pucAssetTag = nullptr;
    stPlain.stProductInfo.pucFRUFileID = nullptr;
    stPlain.stProductInfo.ppucCustomFields = nullptr;
    for (FRU_MULTIRECORD_S &stRecord : stPlain.astMultiRecord) {
        stRecord.pucRecordData = nullptr;
    }
    return {reinterpret_cast<const char *>(&stPlain), sizeof(stPlain)};
}

std::string AllBytes(const FRU_DATA_S &stData)
{
    return {reinterpret_cast<const char *>(&stData), sizeof(stData)};
}

// A record with every pointer set, the MultiRecords' too (the end-of-list bit stands in the first).
void FillEverything(FRU_DATA_S *pstFRUData)
{
    model::RECORD_S stModel;
    stModel.optInternal = "i";
    stModel.optChassis.emplace();
    stModel.optChassis->vecFields = {"a", "b"};
    stModel.optBoard.emplace();
    stModel.optBoard->vecFields = {"a", "b", "c", "d", "e"};
    stModel.optProduct.emplace();
    stModel.optProduct->vecFields = {"a", "b", "c", "d", "e", "f", "g"};
    for (auto *pstArea : {&*stModel.optChassis, &*stModel.optBoard, &*stModel.optProduct}) {
        pstArea->vecCustom = {"x", "y", "z"};
    }
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
        stModel.vecMultiRecord.push_back({1U, static_cast<u8>(i == 0U ? 0x82U : 2U), {1U, 2U}});
    }
    model::Fill(pstFRUData, stModel);
}

TEST(SafeFree, NullIsLoggedAndIgnored)
{
    fake::Reset();
    FRU_ANALYZER_SafeFree(nullptr);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_ANALYZER_SafeFree", "pstFRUData")});
}

TEST(SafeFree, AZeroedRecordStaysZero)
{
    fake::Reset();
    FRU_DATA_S stData{};
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_EQ(AllBytes(stData), std::string(sizeof(stData), '\0'));
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(SafeFree, ReleasesEveryBufferAndChangesOnlyPointers)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    FRU_DATA_S stData;
    FillEverything(&stData);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore + 1U + 3U + 5U + 7U + 3U * 4U + 64U);
    const std::string strPlain = PlainBytes(stData);
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(AllBytes(stData), strPlain); // every pointer is null, nothing else has changed
    EXPECT_EQ(stData.stChassisInfo.ucCustomFieldCount, 3U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(SafeFree, ASecondCallDoesNothing)
{
    fake::Reset();
    FRU_DATA_S stData;
    FillEverything(&stData);
    FRU_ANALYZER_SafeFree(&stData);
    const std::string strOnce = AllBytes(stData);
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_EQ(AllBytes(stData), strOnce);
}

TEST(SafeFree, AnArrayWithACountOfZeroIsReleased)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    FRU_DATA_S stData{};
    u8 **ppucFields = static_cast<u8 **>(calloc(3, sizeof(u8 *)));
    stData.stBoardInfo.ppucCustomFields = ppucFields;
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_TRUE(stData.stBoardInfo.ppucCustomFields == nullptr);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
}

TEST(SafeFree, AMultiRecordAloneIsReleasedWhereverItStands)
{
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
        fake::Reset();
        const u32 uiBefore = fake::LiveAllocations();
        FRU_DATA_S stData{};
        stData.astMultiRecord[i].pucRecordData = model::Heap("data");
        FRU_ANALYZER_SafeFree(&stData);
        EXPECT_TRUE(stData.astMultiRecord[i].pucRecordData == nullptr) << i;
        EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    }
}

TEST(SafeFree, NullFieldsInAnArrayAreSkipped)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    FRU_DATA_S stData{};
    u8 **ppucFields = static_cast<u8 **>(calloc(3, sizeof(u8 *)));
    ppucFields[2] = model::Heap("third");
    stData.stProductInfo.ppucCustomFields = ppucFields;
    stData.stProductInfo.ucCustomFieldCount = 3;
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_TRUE(stData.stProductInfo.ppucCustomFields == nullptr);
    EXPECT_EQ(stData.stProductInfo.ucCustomFieldCount, 3U);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
}

} // namespace
