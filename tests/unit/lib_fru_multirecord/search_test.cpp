// SPDX-License-Identifier: Apache-2.0
// Which entry of a table a queued record belongs to.
#include "mr_test_helper.h"

using namespace mr;

namespace {

const BYTES g_vecName = Record(3, 2, DataOf(2, "name"));

class Search : public STORE_TEST
{};

TEST_F(Search, AnEntryWithoutDataBytesHasNoSubType)
{
    FRU_MULTIRECORD_S astTable[FRU_MULTIRECORD_MAX] = {};
    const std::unique_ptr<u8[]> upNone(new u8[0]);
    astTable[0].ucRecordTypeID = 3;
    astTable[0].pucRecordData = upNone.get();
    PutQueued(g_vecName);
    FRU_MR_PLACE_E ePlace = FRU_MR_PLACE_NONE;
    u32 uiIndex = 99;
    EXPECT_EQ(FRU_tellMultiRecordExistFlag(astTable, g_stInnerMRStore.apstRecords[0], &ePlace, &uiIndex), 0U);
    EXPECT_EQ(ePlace, FRU_MR_PLACE_FREE);
    EXPECT_EQ(uiIndex, 1U);
}

TEST_F(Search, AnEntryOfItsSubTypeAloneIsTheSame)
{
    FRU_MULTIRECORD_S astTable[FRU_MULTIRECORD_MAX] = {};
    u8 ucSubType = 2;
    astTable[0].ucRecordTypeID = 3;
    astTable[0].ucRecordLength = 1;
    astTable[0].pucRecordData = &ucSubType;
    PutQueued(g_vecName);
    FRU_MR_PLACE_E ePlace = FRU_MR_PLACE_NONE;
    u32 uiIndex = 99;
    EXPECT_EQ(FRU_tellMultiRecordExistFlag(astTable, g_stInnerMRStore.apstRecords[0], &ePlace, &uiIndex), 0U);
    EXPECT_EQ(ePlace, FRU_MR_PLACE_SAME);
    EXPECT_EQ(uiIndex, 0U);
}

TEST_F(Search, AFullTableHasNoPlaceWhateverTheCallerThought)
{
    const std::unique_ptr<FRU_MULTIRECORD_S[]> upTable(new FRU_MULTIRECORD_S[FRU_MULTIRECORD_MAX]());
    u8 ucSubType = 1;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
        upTable[i].ucRecordTypeID = 3;
        upTable[i].ucRecordLength = 1;
        upTable[i].pucRecordData = &ucSubType;
    }
    PutQueued(g_vecName);
    FRU_MR_PLACE_E ePlace = FRU_MR_PLACE_SAME;
    u32 uiIndex = 99;
    EXPECT_EQ(FRU_tellMultiRecordExistFlag(upTable.get(), g_stInnerMRStore.apstRecords[0], &ePlace, &uiIndex),
              0U);
    EXPECT_EQ(ePlace, FRU_MR_PLACE_NONE);
    EXPECT_EQ(uiIndex, FRU_MULTIRECORD_MAX - 1U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Not enough space to add MultiRecord: ucRecIndex:64.")});
}

} // namespace
