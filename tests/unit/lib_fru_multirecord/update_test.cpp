// SPDX-License-Identifier: Apache-2.0
#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr int64_t g_iSecond = 1000000000;
constexpr char g_acSyncFailed[] = "Sync All MultiRecords failed! Ret:0xffffffff.";

// What a merge logs when the main FRU is in no device table.
LINES NoFru()
{
    return {"0/4 lib_fru.c: Get fru device tbl failed!", "5/4 lib_fru.c: Fail to find fru device tbl!",
            "5/4 lib_fru.c: Fail to find ComponentType:0,Instance:0!",
            Message("Failed to get fru data! Ret:0x29000003.")};
}

LINES Join(const std::vector<LINES> &vecParts)
{
    LINES vecLines;
    for (const LINES &vecPart : vecParts) {
        vecLines.insert(vecLines.end(), vecPart.begin(), vecPart.end());
    }
    return vecLines;
}

class Update_ : public STORE_TEST
{
  protected:
    // Queues a record while the merge fails, and forgets what that logged and printed.
    static void QueueOnly(u8 ucSubType, const std::string &strValue)
    {
        const u32 uiCount = QueuedCount();
        ASSERT_EQ(mr::Update(ucSubType, strValue), g_uiFailed);
        ASSERT_EQ(QueuedCount(), uiCount + 1U);
        fake::Reset();
    }
    // Makes the store hold this many records, none of a sub-type that an update can have.
    static void Fill(u32 uiCount)
    {
        for (u32 i = 0; i < uiCount; ++i) {
            PutQueued(Record(3, 2, {static_cast<u8>(0x80U + i), 'x'}));
        }
        ASSERT_EQ(QueuedCount(), uiCount);
    }
};

TEST_F(Update_, GoesThroughTheStoreIntoTheFru)
{
    PutMainFru(Image({}));
    fake::SetTime(1000, 1);
    EXPECT_EQ(mr::Update(2, "name"), 0U);
    const BYTES vecImage = Image({Record(3, 2, DataOf(2, "name"))});
    EXPECT_EQ(Chip(), vecImage);
    EXPECT_EQ(fake::Db()[0x10810200], vecImage);
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(SemValue(), 1);
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{5 * g_iSecond, 5 * g_iSecond}));
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 0");
    EXPECT_EQ(fake::Calls("EEPROM write").size(), 1U);
}

TEST_F(Update_, EverySubTypeEndsInTheFruInTheOrderOfTheUpdates)
{
    PutMainFru(Image({}));
    std::vector<BYTES> vecRecords;
    for (u8 ucSubType = 6; ucSubType >= 1; --ucSubType) {
        EXPECT_EQ(mr::Update(ucSubType, "v"), 0U);
        vecRecords.push_back(Record(3, 2, DataOf(ucSubType, "v")));
    }
    const BYTES vecGuid = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    EXPECT_EQ(mr::Update(7, vecGuid), 0U);
    vecRecords.push_back(Record(3, 2, {7, 12, 13, 14, 15, 10, 11, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(Chip(), Image(vecRecords));
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST_F(Update_, TheParameterStaysTheCallers)
{
    PutMainFru(Image({}));
    u8 aucValue[4] = {'n', 'a', 'm', 'e'};
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = 3;
    stParam.ucSubType = 2;
    stParam.uiLength = 4;
    stParam.pucBuf = aucValue;
    EXPECT_EQ(FRU_innerUpdateMultiRecord(&stParam), 0U);
    u8 *pucBuf = stParam.pucBuf;
    EXPECT_EQ(pucBuf, aucValue);
    EXPECT_EQ(aucValue[0], 'n');
}

TEST_F(Update_, NullArguments)
{
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = 3;
    stParam.ucSubType = 2;
    stParam.uiLength = 4;
    EXPECT_EQ(FRU_innerUpdateMultiRecord(nullptr), 0x81000002U);
    EXPECT_EQ(FRU_innerUpdateMultiRecord(&stParam), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_innerUpdateMultiRecord", "pstDestParam"),
                                       Null("FRU_innerUpdateMultiRecord", "pstDestParam->pucBuf")}));
    EXPECT_EQ(g_stInnerMRStore.ucInited, 0U);
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Update_, AnEmptyValueIsRefusedAndNothingIsMerged)
{
    QueueOnly(1, "url");
    EXPECT_EQ(mr::Update(2, ""), g_uiFailed);
    EXPECT_EQ(mr::Update(9, BYTES{}, 9), g_uiFailed); // before type and sub-type
    EXPECT_EQ(fake::Messages(), MessageLines({"Illegal field param!", "Illegal field param!"}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_TRUE(fake::Waits().empty());
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Update_, ARecordThatCannotBeBuiltIsRefusedAndNothingIsMerged)
{
    QueueOnly(1, "url");
    EXPECT_EQ(mr::Update(2, BYTES(4, 'x'), 1), g_uiFailed);
    EXPECT_EQ(mr::Update(0, BYTES(4, 'x')), g_uiFailed);
    EXPECT_EQ(mr::Update(8, BYTES(4, 'x')), g_uiFailed);
    EXPECT_EQ(mr::Update(2, BYTES(257, 'x')), g_uiFailed);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    const char *const pcLast = "Failed to generate one record!";
    EXPECT_EQ(fake::Messages(),
              MessageLines({"Unknown MultiRecord type: 0x1", pcLast, "Unknown MultiRecord SubType: 0", pcLast,
                            "Unknown MultiRecord SubType: 0x8", pcLast, "Invalid length! exceeds: 0x101.",
                            pcLast, "Fail to distribute memory!", pcLast}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_TRUE(fake::Waits().empty());
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Update_, ARecordStaysQueuedWhenTheMergeFails)
{
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    EXPECT_EQ(fake::Messages(), Join({NoFru(), {Message(g_acSyncFailed)}}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "name")));
    EXPECT_EQ(SemValue(), 1);
    // The next update takes it along.
    PutMainFru(Image({}));
    EXPECT_EQ(mr::Update(1, "url"), 0U);
    EXPECT_EQ(Chip(), Image({Record(3, 2, DataOf(2, "name")), Record(3, 2, DataOf(1, "url"))}));
    EXPECT_EQ(QueuedCount(), 0U);
}

TEST_F(Update_, TheSameRecordTwiceIsQueuedOnce)
{
    QueueOnly(2, "name");
    const FRU_INNER_MR_S *pstBefore = g_stInnerMRStore.apstRecords[0];
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    EXPECT_EQ(fake::TakeStdout(), "Inner MultiRecord is equal: typeID:0x3");
    EXPECT_EQ(fake::Messages(), Join({NoFru(), {Message(g_acSyncFailed)}}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(g_stInnerMRStore.apstRecords[0], pstBefore);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Update_, ARecordOfAQueuedSubTypeReplacesIt)
{
    QueueOnly(1, "url");
    QueueOnly(2, "name");
    QueueOnly(3, "ping");
    // As long, shorter, longer within the rounding, much longer.
    for (const std::string &strValue :
         {std::string("eman"), std::string("n"), std::string("na"), std::string(200, 'x')}) {
        fake::Reset();
        EXPECT_EQ(mr::Update(2, strValue), g_uiFailed);
        EXPECT_EQ(QueuedCount(), 3U);
        EXPECT_EQ(Queued(0), Record(3, 2, DataOf(1, "url")));
        EXPECT_EQ(Queued(1), Record(3, 2, DataOf(2, strValue)));
        EXPECT_EQ(Queued(2), Record(3, 2, DataOf(3, "ping")));
        EXPECT_EQ(fake::TakeStdout(), "");
        EXPECT_EQ(fake::Messages(), Join({NoFru(), {Message(g_acSyncFailed)}}));
    }
}

TEST_F(Update_, SameLengthButOtherBytesIsAnotherRecord)
{
    QueueOnly(2, "name");
    EXPECT_EQ(mr::Update(2, "namf"), g_uiFailed);
    EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "namf")));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_F(Update_, AReplacementWithoutMemoryKeepsWhatIsQueued)
{
    QueueOnly(2, "n");
    fake::Arm({fake::KIND_E::ALLOC, 2, false});
    EXPECT_EQ(mr::Update(2, std::string(100, 'x')), g_uiFailed);
    EXPECT_EQ(fake::Messages(),
              Join({MessageLines({"Fail to distribute memory!", "Failed to do query and update!"}),
                    NoFru(),
                    {Message(g_acSyncFailed)}}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "n")));
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Update_, ANewRecordWithoutMemoryIsOnlyLogged)
{
    PutMainFru(Image({}));
    fake::Arm({fake::KIND_E::ALLOC, 2, false});
    EXPECT_EQ(mr::Update(2, "name"), 0U); // the merge had nothing to do
    EXPECT_EQ(fake::Messages(),
              MessageLines({"Fail to distribute memory!", "Failed to do query and update!"}));
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(fake::Calls(), LINES{});
    EXPECT_EQ(Chip(), Image({}));
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Update_, TheSixtyFourthRecordIsQueued)
{
    Fill(63);
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    EXPECT_EQ(QueuedCount(), 64U);
    EXPECT_EQ(Queued(63), Record(3, 2, DataOf(2, "name")));
}

TEST_F(Update_, TheSixtyFifthIsRefusedAndTheRestIsMergedAllTheSame)
{
    PutMainFru(Image({}));
    Fill(64);
    EXPECT_EQ(mr::Update(2, "name"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Message("MultiRecords number exceeds: 0x40.")});
    std::vector<BYTES> vecRecords;
    for (u32 i = 0; i < 64U; ++i) {
        vecRecords.push_back(Record(3, 2, {static_cast<u8>(0x80U + i), 'x'}));
    }
    EXPECT_EQ(Chip(), Image(vecRecords));
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 63");
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Update_, AFullStoreRefusesEvenAReplacement)
{
    Fill(63);
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    fake::Reset();
    EXPECT_EQ(mr::Update(2, "eman"), g_uiFailed);
    EXPECT_EQ(fake::Messages(),
              Join({{Message("MultiRecords number exceeds: 0x40.")}, NoFru(), {Message(g_acSyncFailed)}}));
    EXPECT_EQ(Queued(63), Record(3, 2, DataOf(2, "name")));
}

TEST_F(Update_, ATimeOutIsOnlyLoggedAndTheMergeRunsAllTheSame)
{
    PutMainFru(Image({}));
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    fake::SetPatience(5);
    {
        const HOLDER holder;
        EXPECT_EQ(mr::Update(2, "name"), 0U); // not queued, and nothing to merge
        EXPECT_EQ(fake::Messages(),
                  MessageLines({"FRU Inner sem timeout: 0x5", "FRU Inner sem timeout: 0x5"}));
        EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{5 * g_iSecond, 5 * g_iSecond}));
        EXPECT_EQ(QueuedCount(), 0U);
        EXPECT_EQ(fake::Calls(), LINES{});
        EXPECT_EQ(SemValue(), 1); // the update posted nothing, the merge did as a holder would
    }
    EXPECT_EQ(SemValue(), 2); // and the holder
}

TEST_F(Update_, WithoutASemaphoreTheMergeFailsToo)
{
    fake::Arm({fake::KIND_E::SEMAPHORE, 1, true});
    EXPECT_EQ(mr::Update(2, "name"), g_uiFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"Failed to create sem for FRU MultiRecords",
                                              "Failed to create sem for FRU MultiRecords", g_acSyncFailed}));
    EXPECT_TRUE(IsStoreZero());
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Update_, TheMergeAloneDecidesTheResult)
{
    PutMainFru(Image({}));
    fake::Arm({fake::KIND_E::SEMAPHORE, 1, false}); // the update's sem_init
    EXPECT_EQ(mr::Update(2, "name"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to create sem for FRU MultiRecords")});
    fake::Reset();
    PutMainFru(Image({}));
    fake::Arm({fake::KIND_E::CLOCK, 1, false}); // the update's clock_gettime
    EXPECT_EQ(mr::Update(2, "name"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to get current time!")});
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(SemValue(), 1);
    EXPECT_EQ(Chip(), Image({}));
}

TEST_F(Update_, AStoreDestroyedWhileTheUpdateWaitsIsInitialisedAnew)
{
    ASSERT_EQ(FRU_joinInnerStore(),
              0U); // keeps the lock alive through the destroy, as the waiting update does
    std::thread thread;
    {
        HOLDER holder;
        thread = std::thread([] { (void)mr::Update(2, "name"); });
        while (fake::Waits().empty()) {
            std::this_thread::yield();
        }
        g_stInnerMRStore.ucInited = 0U; // what a destroy leaves, as long as others wait
    }
    thread.join();
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "name")));
    FRU_quitInnerStore();
}

// ---- lengths whose length byte wraps: the interface takes them

TEST_F(Update_, A255ByteValueCanNeverBeAdded)
{
    PutMainFru(Image({}));
    const LINES vecFailure = {"0/3 lib_fru_multirecord.c: Invalid MALLOC size (size is 0)is detected",
                              Message("Failed to distribute memory"),
                              Message("Fail to add MultiRecord! index:0."),
                              Message("Failed to sync FRU MultiRecords data!")};
    EXPECT_EQ(mr::Update(2, BYTES(255, 'x')), g_uiFailed);
    EXPECT_EQ(fake::Messages(), Join({vecFailure, {Message(g_acSyncFailed)}}));
    EXPECT_EQ(fake::TakeStdout(), "Invalid MALLOC size (size is 0)is detected in # FRU_addSingleMultiRecord "
                                  "lib_fru_multirecord.c\n");
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(Queued(0)[2], 0U);
    EXPECT_EQ(Chip(), Image({}));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    FRU_destroyMultiRecords(); // the way out
    EXPECT_EQ(mr::Update(2, BYTES(254, 'x')), 0U);
    EXPECT_EQ(Chip(), Image({Record(3, 2, DataOf(2, std::string(254, 'x')))}));
}

TEST_F(Update_, A256ByteValueHasLengthOneAndTheChecksumOfAll)
{
    PutMainFru(Image({}));
    EXPECT_EQ(mr::Update(2, BYTES(256, 1)), 0U); // 256 ones sum to 0: the checksum fits the one byte kept
    EXPECT_EQ(Chip(), Image({Record(3, 2, {2})}));
    EXPECT_EQ(mr::Update(1, BYTES(256, 0)), 0U);
    EXPECT_EQ(Chip(), Image({Record(3, 2, {2}), Record(3, 2, {1})}));
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST_F(Update_, A256ByteValueWhoseChecksumDoesNotFitFailsTheFirstMerge)
{
    PutMainFru(Image({}));
    BYTES vecValue(256, 0);
    vecValue[255] = 1;
    EXPECT_EQ(mr::Update(2, vecValue), g_uiFailed);
    EXPECT_EQ(fake::Messages(),
              MessageLines({"FRU MultiRecord[Memory] record_data sum check err[0]: 0xfd to 0xfe",
                            "Failed to find the end of MultiRecords[Memory]: Count:0.",
                            "Invalid FRU MultiRecord format", "Failed to sync FRU MultiRecords data!",
                            g_acSyncFailed}));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(QueuedCount(), 1U);
}

// ---- search in the store

FRU_INNER_MR_BUFFER InnerOf(const BYTES &vecRecord)
{
    auto *pucRecord = static_cast<u8 *>(std::malloc(vecRecord.size()));
    std::copy(vecRecord.begin(), vecRecord.end(), pucRecord);
    return FRU_INNER_MR_BUFFER(reinterpret_cast<FRU_INNER_MR_S *>(pucRecord));
}

TEST_F(Update_, AQueuedRecordOfAnotherTypeIsPassedOver)
{
    PutQueued(Record(0xC0, 2, DataOf(2, "name")));
    const auto upRecord = InnerOf(Record(3, 2, DataOf(2, "name")));
    EXPECT_EQ(FRU_queryAndUpdateInnerMultiRecord(upRecord.get()), 0U);
    EXPECT_EQ(QueuedCount(), 2U);
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_F(Update_, TwoRecordsOfTheSameUnknownTypeCannotBeCompared)
{
    PutQueued(Record(0xC0, 2, DataOf(2, "name")));
    const auto upRecord = InnerOf(Record(0xC0, 2, DataOf(1, "url")));
    EXPECT_EQ(FRU_queryAndUpdateInnerMultiRecord(upRecord.get()), g_uiFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"Unknown ucRecordTypeID: 0xc0.", "Fail to query inner record!",
                                              "Failed to do query and update!"}));
    EXPECT_EQ(QueuedCount(), 1U);
}

TEST_F(Update_, AnEmptySlotIsPassedOver)
{
    PutQueued(Record(3, 2, DataOf(1, "url")));
    PutQueued(Record(3, 2, DataOf(2, "name")));
    std::free(g_stInnerMRStore.apstRecords[0]);
    g_stInnerMRStore.apstRecords[0] = nullptr;
    EXPECT_EQ(mr::Update(2, "eman"), g_uiFailed);
    EXPECT_EQ(QueuedCount(), 2U);
    EXPECT_EQ(Queued(1), Record(3, 2, DataOf(2, "eman")));
}

} // namespace
