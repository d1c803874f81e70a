// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_multirecord/store.h"
#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr int64_t g_iSecond = 1000000000;

class Store : public STORE_TEST
{};

TEST_F(Store, InitMakesAFreeLock)
{
    EXPECT_EQ(FRU_initMultiRecords(), 0U);
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(g_stInnerMRStore.ucCount, 0U);
    EXPECT_EQ(SemValue(), 1);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(Store, InitAgainChangesNothing)
{
    PutQueued(Record(3, 2, DataOf(2, "name")));
    ASSERT_EQ(FRU_waitInnerSem(5), 0U);
    const u32 uiCalls = fake::Count(fake::KIND_E::SEMAPHORE);
    EXPECT_EQ(FRU_initMultiRecords(), 0U);
    EXPECT_EQ(fake::Count(fake::KIND_E::SEMAPHORE), uiCalls); // no sem_init
    EXPECT_EQ(SemValue(), 0);
    EXPECT_EQ(QueuedCount(), 1U);
    (void)sem_post(&g_stInnerMRStore.stSem);
}

TEST_F(Store, InitWithoutASemaphoreFailsAndCanBeTriedAgain)
{
    fake::Arm({fake::KIND_E::SEMAPHORE, 1, false});
    EXPECT_EQ(FRU_initMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to create sem for FRU MultiRecords")});
    EXPECT_TRUE(IsStoreZero());
    EXPECT_EQ(FRU_initMultiRecords(), 0U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, WaitTakesTheLockUntilWholeSecondsFromNow)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    fake::SetTime(1000, 999999999);
    EXPECT_EQ(FRU_waitInnerSem(5), 0U);
    EXPECT_EQ(SemValue(), 0);
    (void)sem_post(&g_stInnerMRStore.stSem);
    EXPECT_EQ(FRU_waitInnerSem(10), 0U);
    (void)sem_post(&g_stInnerMRStore.stSem);
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{5 * g_iSecond, 10 * g_iSecond}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(Store, WaitWithoutAClockFails)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    fake::Arm({fake::KIND_E::CLOCK, 1, false});
    EXPECT_EQ(FRU_waitInnerSem(5), g_uiFailed);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to get current time!")});
    EXPECT_TRUE(fake::Waits().empty());
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, WaitTimesOutWhileAnotherThreadHoldsTheLock)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    fake::SetPatience(5);
    const HOLDER holder;
    EXPECT_EQ(FRU_waitInnerSem(5), 0xFFFF0006U);
    EXPECT_EQ(FRU_waitInnerSem(10), 0xFFFF0006U);
    EXPECT_EQ(fake::Messages(), MessageLines({"FRU Inner sem timeout: 0x5", "FRU Inner sem timeout: 0xa"}));
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{5 * g_iSecond, 10 * g_iSecond}));
}

TEST_F(Store, WaitGetsTheLockWhenItsHolderPostsInTime)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    HOLDER holder;
    holder.Release();
    EXPECT_EQ(FRU_waitInnerSem(5), 0U);
    EXPECT_TRUE(fake::Messages().empty());
    (void)sem_post(&g_stInnerMRStore.stSem);
}

TEST_F(Store, FreeEmptiesEverySlotInUse)
{
    PutQueued(Record(3, 2, DataOf(2, "name")));
    PutQueued(Record(3, 2, DataOf(1, "url")));
    PutQueued(Record(3, 2, DataOf(3, "ping")));
    std::free(g_stInnerMRStore.apstRecords[1]);
    g_stInnerMRStore.apstRecords[1] = nullptr;
    FRU_freeInnerMultiRecords();
    EXPECT_EQ(QueuedCount(), 0U);
    for (u32 i = 0; i < 3U; ++i) {
        EXPECT_EQ(g_stInnerMRStore.apstRecords[i], nullptr);
    }
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, FreeStaysInsideTheSlotsWhateverTheCountSays)
{
    PutQueued(Record(3, 2, DataOf(2, "name")));
    g_stInnerMRStore.ucCount = 255;
    FRU_freeInnerMultiRecords();
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(g_stInnerMRStore.apstRecords[0], nullptr);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, DestroyOfAStoreNeverInitialisedOnlySaysSo)
{
    FRU_destroyMultiRecords();
    EXPECT_EQ(fake::Messages(), LINES{Message("MultiRecords is not inited!")});
    EXPECT_EQ(fake::Count(fake::KIND_E::CLOCK), 0U);
    EXPECT_EQ(fake::Count(fake::KIND_E::SEMAPHORE), 0U);
    EXPECT_TRUE(IsStoreZero());
}

TEST_F(Store, DestroyFreesAllAndTheStoreCanBeUsedAgain)
{
    for (u32 i = 0; i < 2U; ++i) {
        PutQueued(Record(3, 2, DataOf(2, "name")));
        PutQueued(Record(3, 2, DataOf(1, "url")));
        EXPECT_EQ(QueuedCount(), 2U);
        FRU_destroyMultiRecords();
        EXPECT_TRUE(IsStoreZero());
    }
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{10 * g_iSecond, 10 * g_iSecond}));
}

TEST_F(Store, DestroyThatTimesOutLeavesTheStoreIntact)
{
    PutQueued(Record(3, 2, DataOf(2, "name")));
    fake::SetPatience(5);
    {
        const HOLDER holder;
        FRU_destroyMultiRecords();
        EXPECT_EQ(fake::Messages(),
                  MessageLines({"FRU Inner sem timeout: 0xa",
                                "FRU MultiRecord wait to destroy failed! Ret:0xffff0006."}));
        EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
        EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "name")));
    }
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, DestroyWithoutAClockLeavesTheStoreIntact)
{
    PutQueued(Record(3, 2, DataOf(2, "name")));
    fake::Arm({fake::KIND_E::CLOCK, 1, false});
    FRU_destroyMultiRecords();
    EXPECT_EQ(fake::Messages(), MessageLines({"Failed to get current time!",
                                              "FRU MultiRecord wait to destroy failed! Ret:0xffffffff."}));
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, DestroyLeavesTheLockToThoseWhoStillWaitOnIt)
{
    ASSERT_EQ(FRU_joinInnerStore(), 0U); // as a user that is about to wait
    PutQueued(Record(3, 2, DataOf(2, "name")));
    FRU_destroyMultiRecords();
    EXPECT_EQ(g_stInnerMRStore.ucInited, 0U);
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(g_stInnerMRStore.apstRecords[0], nullptr);
    // The waiting user gets the lock and initialises the store anew, without another semaphore.
    const u32 uiClocks = fake::Count(fake::KIND_E::CLOCK);
    const u32 uiSemaphores = fake::Count(fake::KIND_E::SEMAPHORE);
    EXPECT_EQ(FRU_waitInnerSem(5), 0U);
    EXPECT_EQ(FRU_initMultiRecords(), 0U);
    EXPECT_EQ(fake::Count(fake::KIND_E::CLOCK), uiClocks + 1U);
    EXPECT_EQ(fake::Count(fake::KIND_E::SEMAPHORE), uiSemaphores + 1U); // sem_timedwait
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    (void)sem_post(&g_stInnerMRStore.stSem);
    FRU_quitInnerStore();
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Store, TheLastUserOfADestroyedStoreTakesItsLockAway)
{
    ASSERT_EQ(FRU_joinInnerStore(), 0U);
    FRU_destroyMultiRecords();
    EXPECT_EQ(SemValue(), 1);
    FRU_destroyMultiRecords(); // destroyed already, its lock or not
    EXPECT_EQ(fake::Messages(), LINES{Message("MultiRecords is not inited!")});
    FRU_quitInnerStore();
    EXPECT_TRUE(IsStoreZero());
}

// ---- records

TEST_F(Store, ACopyOfAnEmptyStoreIsEmptyAndNoFailure)
{
    ASSERT_EQ(FRU_initMultiRecords(), 0U);
    FRU_INNER_MR_COPY_S stCopy = {};
    EXPECT_TRUE(FRU_copyInnerMultiRecords(&stCopy));
    EXPECT_EQ(stCopy.uiCount, 0U);
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_F(Store, ARecordPutAfterADestroyStaysWhenItsUserLeaves)
{
    ASSERT_EQ(FRU_joinInnerStore(), 0U); // as a user that waits
    FRU_destroyMultiRecords();
    const BYTES vecRecord = Record(3, 2, DataOf(2, "nam"));
    EXPECT_EQ(FRU_putInnerMultiRecord(reinterpret_cast<const FRU_INNER_MR_S *>(vecRecord.data())),
              FRU_MR_PUT_QUEUED);
    FRU_quitInnerStore();
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    ASSERT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(Queued(0), vecRecord);
}

TEST_F(Store, ARecordQueuedAlreadyIsNoFailureAndAFullStoreIsOne)
{
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX - 1U; ++i) {
        PutQueued(Record(3, 2, {static_cast<u8>(0x80U + i), 'x'}));
    }
    const BYTES vecRecord = Record(3, 2, DataOf(2, "nam"));
    const auto *pstRecord = reinterpret_cast<const FRU_INNER_MR_S *>(vecRecord.data());
    EXPECT_EQ(FRU_queryAndUpdateInnerMultiRecord(
                  reinterpret_cast<const FRU_INNER_MR_S *>(Record(3, 2, {0x80U, 'x'}).data())),
              0U);
    EXPECT_EQ(FRU_queryAndUpdateInnerMultiRecord(pstRecord), 0U);
    EXPECT_EQ(FRU_queryAndUpdateInnerMultiRecord(pstRecord), g_uiFailed);
    EXPECT_EQ(QueuedCount(), FRU_MULTIRECORD_MAX);
}

} // namespace
