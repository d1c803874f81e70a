// SPDX-License-Identifier: Apache-2.0
// A thread that holds the store and never comes back from a message or a device: nobody waits for it longer
// than the store's own limits.
#include <chrono>
#include <future>

#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr int64_t g_iSecond = 1000000000;
constexpr auto g_tmHung = std::chrono::seconds(1800);

// Runs an update on a thread of its own, which gets no further than the message with this text, until the
// test lets it go.
class STUCK_UPDATE
{
  public:
    explicit STUCK_UPDATE(const std::string &strText)
    {
        fake::SetLogHook([this, strText](const std::string &strMessage) {
            if (std::this_thread::get_id() == m_idThread && strMessage.find(strText) == 0U && !m_bStuck) {
                m_bStuck = true;
                m_promStuck.set_value();
                m_futLetGo.wait();
            }
        });
        m_thread = std::thread([this] {
            m_idThread = std::this_thread::get_id();
            (void)mr::Update(2, "name");
        });
        m_promStuck.get_future().wait();
    }
    STUCK_UPDATE(const STUCK_UPDATE &) = delete;
    STUCK_UPDATE &operator=(const STUCK_UPDATE &) = delete;
    ~STUCK_UPDATE()
    {
        LetGo();
        m_thread.join();
        fake::SetLogHook(nullptr);
    }
    void LetGo()
    {
        if (!m_bLetGo) {
            m_promLetGo.set_value();
        }
        m_bLetGo = true;
    }

  private:
    std::promise<void> m_promStuck;
    std::promise<void> m_promLetGo;
    std::shared_future<void> m_futLetGo = m_promLetGo.get_future();
    std::atomic<std::thread::id> m_idThread{};
    bool m_bStuck = false; // only its own thread looks at it
    bool m_bLetGo = false;
    std::thread m_thread; // last: it uses the others
};

// Whether a call comes back while the other thread is stuck.
bool ComesBack(STUCK_UPDATE &updateStuck, const std::function<void()> &fnCall)
{
    const std::future<void> futCall = std::async(std::launch::async, fnCall);
    const bool bCameBack = futCall.wait_for(g_tmHung) == std::future_status::ready;
    if (!bCameBack) {
        updateStuck.LetGo(); // or the test would hang too
    }
    return bCameBack;
}

class StuckHolder : public STORE_TEST
{
  protected:
    void SetUp() override
    {
        STORE_TEST::SetUp();
        fake::SetPatience(5);
    }
    static std::vector<BYTES> Fill()
    {
        std::vector<BYTES> vecRecords;
        for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
            vecRecords.push_back(Record(3, 2, {static_cast<u8>(0x80U + i), 'x'}));
            PutQueued(vecRecords.back());
        }
        return vecRecords;
    }
};

TEST_F(StuckHolder, InItsLogADestroyTimesOutSaysSoAndLeavesTheStore)
{
    (void)Fill();
    STUCK_UPDATE updateStuck("MultiRecords number exceeds");
    EXPECT_TRUE(ComesBack(updateStuck, [] { FRU_destroyMultiRecords(); }));
    EXPECT_EQ(fake::Messages(),
              MessageLines({"MultiRecords number exceeds: 0x40.", "FRU Inner sem timeout: 0xa",
                            "FRU MultiRecord wait to destroy failed! Ret:0xffff0006."}));
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>{5 * g_iSecond, 10 * g_iSecond}));
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(QueuedCount(), 64U);
}

TEST_F(StuckHolder, InItsLogUpdatesTimeOutAndMergeAllTheSame)
{
    PutMainFru(Image({}));
    const std::vector<BYTES> vecRecords = Fill();
    STUCK_UPDATE updateStuck("MultiRecords number exceeds");
    u32 uiRet = g_uiFailed;
    EXPECT_TRUE(ComesBack(updateStuck, [&uiRet] { uiRet = mr::Update(1, "url"); }));
    EXPECT_EQ(uiRet, 0U);
    EXPECT_EQ(fake::Messages(), MessageLines({"MultiRecords number exceeds: 0x40.",
                                              "FRU Inner sem timeout: 0x5", "FRU Inner sem timeout: 0x5"}));
    EXPECT_EQ(fake::Waits(), (std::vector<int64_t>(3, 5 * g_iSecond)));
    EXPECT_EQ(Chip(), Image(vecRecords));
    EXPECT_EQ(QueuedCount(), 0U);
}

TEST_F(StuckHolder, AmidItsMergeADestroyTimesOutSaysSoAndLeavesTheStore)
{
    // A full table without a place for the record, which the merge tells.
    std::vector<BYTES> vecFull;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
        vecFull.push_back(Record(0xC0, 2, {static_cast<u8>(i), 'x'}));
    }
    PutMainFru(Image(vecFull));
    STUCK_UPDATE updateStuck("Not enough space to add MultiRecord");
    EXPECT_TRUE(ComesBack(updateStuck, [] { FRU_destroyMultiRecords(); }));
    EXPECT_EQ(fake::Messages(), MessageLines({"Not enough space to add MultiRecord: ucRecIndex:64.",
                                              "FRU Inner sem timeout: 0xa",
                                              "FRU MultiRecord wait to destroy failed! Ret:0xffff0006."}));
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(Queued(0), Record(3, 2, DataOf(2, "name")));
}

TEST_F(StuckHolder, AmidItsMergeOthersQueueBehindItAndTheStoreStaysSound)
{
    std::vector<BYTES> vecFull;
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX; ++i) {
        vecFull.push_back(Record(0xC0, 2, {static_cast<u8>(i), 'x'}));
    }
    PutMainFru(Image(vecFull));
    STUCK_UPDATE updateStuck("Not enough space to add MultiRecord");
    // The first merge after a time-out posts, so the next update has the store and queues.
    EXPECT_TRUE(ComesBack(updateStuck, [] {
        EXPECT_EQ(mr::Update(1, "url"), 0U);
        EXPECT_EQ(mr::Update(3, "ping"), 0U);
        FRU_destroyMultiRecords();
    }));
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(Chip(), Image(vecFull));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
}

TEST_F(StuckHolder, InItsFailureToInitialiseNobodyElseWaits)
{
    PutMainFru(Image({}));
    fake::Arm({fake::KIND_E::SEMAPHORE, 1, false});
    STUCK_UPDATE updateStuck("Failed to create sem for FRU MultiRecords");
    EXPECT_TRUE(ComesBack(updateStuck, [] { EXPECT_EQ(mr::Update(1, "url"), 0U); }));
    EXPECT_EQ(Chip(), Image({Record(3, 2, DataOf(1, "url"))}));
}

} // namespace
