// SPDX-License-Identifier: Apache-2.0
// Updates, merges and destroys of the MultiRecord store on eight threads at once.
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <set>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru_codec.h"
#include "lib_fru_multirecord.h"
#include "lib_fru_multirecord/store_state.h"
#include "locked/locked_platform.h"

namespace {

using BYTES = fake::BYTES;

constexpr u32 g_uiThreads = 8;
constexpr u32 g_uiRounds = 100;
constexpr u32 g_uiFruSize = 256;
constexpr u8 g_ucBus = 1;
constexpr u8 g_ucAddress = 0xA0;
constexpr u32 g_uiFailed = 0xFFFFFFFFU;

template <class STRUCT> BYTES BytesOf(const STRUCT &stStruct)
{
    const auto *pucStruct = reinterpret_cast<const u8 *>(&stStruct);
    return BYTES(pucStruct, pucStruct + sizeof(stStruct));
}

void PutMainFru()
{
    BYTES vecImage = {1, 0, 0, 0, 0, 0, 0, 0xFF};
    vecImage.resize(g_uiFruSize);
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = 1;
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.usSize = g_uiFruSize;
    stInfo.ucEEPROMType = 9;
    stInfo.ucBusNumber = g_ucBus;
    stInfo.ucAddress = g_ucAddress;
    fake::Db()[0x108105FF] = BytesOf(stTable);
    fake::Db()[0x10810000] = BytesOf(stInfo);
    fake::Db()[0x10810200] = vecImage;
    fake::Db()[0x10810400] = BYTES{1};
    fake::Eeprom(g_ucBus, g_ucAddress) = vecImage;
}

u32 Update(u32 uiSeed)
{
    u8 aucValue[16];
    for (u32 i = 0; i < sizeof(aucValue); ++i) {
        aucValue[i] = static_cast<u8>(uiSeed * 31U + i);
    }
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = 3;
    stParam.ucSubType = static_cast<u8>(1U + uiSeed % 7U);
    stParam.uiLength = stParam.ucSubType == 7U ? 16U : 1U + uiSeed % 16U;
    stParam.pucBuf = aucValue;
    return FRU_innerUpdateMultiRecord(&stParam);
}

// One step of one thread: mostly updates, some merges, a destroy now and then.
u32 Step(u32 uiThread, u32 uiRound)
{
    const u32 uiSeed = uiThread * g_uiRounds + uiRound;
    switch ((uiThread + uiRound) % 6U) {
    case 4U:
        return FRU_syncAllMultiRecords();
    case 5U:
        FRU_destroyMultiRecords();
        return 0U;
    default:
        return Update(uiSeed);
    }
}

// Runs all threads through their rounds; they start together, on a store that nobody has initialised. Returns
// how many steps failed.
u32 RunThreads()
{
    std::atomic<bool> bStart{false};
    std::atomic<u32> uiFailures{0};
    std::vector<std::thread> vecThreads;
    for (u32 uiThread = 0; uiThread < g_uiThreads; ++uiThread) {
        vecThreads.emplace_back([&, uiThread] {
            while (!bStart) {
                std::this_thread::yield();
            }
            for (u32 uiRound = 0; uiRound < g_uiRounds; ++uiRound) {
                const u32 uiRet = Step(uiThread, uiRound);
                if (uiRet != 0U) {
                    ++uiFailures;
                }
                if (uiRet != 0U && uiRet != g_uiFailed) {
                    uiFailures += 1000000U; // never a result of these calls
                }
            }
        });
    }
    bStart = true;
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
    return uiFailures;
}

bool IsStoreZero()
{
    const BYTES vecStore = BytesOf(g_stInnerMRStore);
    return vecStore == BYTES(vecStore.size(), 0);
}

void Destroy()
{
    if (g_stInnerMRStore.ucInited == 1U) {
        FRU_destroyMultiRecords();
    }
    EXPECT_TRUE(IsStoreZero());
}

// The records on the device, by sub-type; every one valid, none twice.
std::set<u8> SubTypesOnTheDevice()
{
    std::set<u8> setSubTypes;
    FRU_DATA_S stData = {};
    const BYTES vecChip = fake::Eeprom(g_ucBus, g_ucAddress);
    EXPECT_EQ(FRU_ANALYZER_InterpretFRUData(vecChip.data(), g_uiFruSize, &stData), 0U);
    u32 uiCount = 0;
    EXPECT_EQ(FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(stData.astMultiRecord),
                                       FRU_MR_CHECK_MEMORY, &uiCount),
              0U);
    for (u32 i = 0; i < uiCount; ++i) {
        const u8 *pucData = stData.astMultiRecord[i].pucRecordData;
        EXPECT_TRUE(setSubTypes.insert(pucData[0]).second);
    }
    FRU_ANALYZER_SafeFree(&stData);
    return setSubTypes;
}

TEST(StoreThreads, UpdatesMergesAndDestroysTakeTurns)
{
    fake::Reset();
    const u32 uiLive = fake::LiveAllocations();
    PutMainFru();
    fake::SetPatience(30000); // a slow machine is no time-out
    (void)TakeMostAtTheDevice();
    EXPECT_EQ(RunThreads(), 0U);
    EXPECT_EQ(TakeMostAtTheDevice(), 1U);
    // Only a destroy that found the store destroyed already has something to say.
    for (const std::string &strMessage : fake::Messages()) {
        EXPECT_EQ(strMessage, "0/2 lib_fru_multirecord.c: MultiRecords is not inited!");
    }
    EXPECT_FALSE(SubTypesOnTheDevice().empty());
    Destroy();
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
}

TEST(StoreThreads, AfterTimeOutsTheStoreIsStillSound)
{
    fake::Reset();
    const u32 uiLive = fake::LiveAllocations();
    PutMainFru();
    fake::SetPatience(0); // whoever does not get the lock at once goes on without it
    EXPECT_LT(RunThreads(), 1000000U);
    Destroy();
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
    // And works as ever.
    fake::Reset();
    PutMainFru();
    for (u32 uiSeed = 0; uiSeed < 7U; ++uiSeed) {
        EXPECT_EQ(Update(uiSeed), 0U);
    }
    EXPECT_EQ(SubTypesOnTheDevice().size(), 7U);
    EXPECT_TRUE(fake::Messages().size() == 0U);
    Destroy();
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
}

// Standard output as a pipe that is full and that nobody reads, until it is drained.
class FULL_PIPE
{
  public:
    FULL_PIPE()
    {
        (void)fflush(stdout);
        (void)setvbuf(stdout, nullptr, _IONBF, 0);
        m_iSaved = dup(STDOUT_FILENO);
        EXPECT_EQ(pipe2(m_aiPipe, O_NONBLOCK), 0);
        while (write(m_aiPipe[1], "x", 1) == 1) {
        }
        (void)fcntl(m_aiPipe[1], F_SETFL, 0);
        (void)dup2(m_aiPipe[1], STDOUT_FILENO);
    }
    FULL_PIPE(const FULL_PIPE &) = delete;
    FULL_PIPE &operator=(const FULL_PIPE &) = delete;
    ~FULL_PIPE()
    {
        (void)dup2(m_iSaved, STDOUT_FILENO);
        (void)setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
        (void)close(m_aiPipe[0]);
        (void)close(m_aiPipe[1]);
        (void)close(m_iSaved);
    }
    void Drain()
    {
        char acBytes[4096];
        while (read(m_aiPipe[0], acBytes, sizeof(acBytes)) > 0) {
        }
    }

  private:
    int m_aiPipe[2] = {-1, -1};
    int m_iSaved = -1;
};

// Whether some thread is inside a print, which with a full pipe is where it stays.
bool IsSomebodyPrinting()
{
    if (ftrylockfile(stdout) != 0) {
        return true;
    }
    funlockfile(stdout);
    return false;
}

TEST(StoreThreads, AHolderStuckInItsOutputLeavesADestroyItsTenSeconds)
{
    fake::Reset();
    const u32 uiLive = fake::LiveAllocations();
    PutMainFru();
    fake::SetPatience(20);
    u32 uiQueued = 0;
    bool bCameBack = false;
    {
        FULL_PIPE pipeStdout;
        std::thread threadHolder([] { (void)Update(1); });
        while (!IsSomebodyPrinting()) {
            std::this_thread::yield();
        }
        std::future<void> futDestroy = std::async(std::launch::async, FRU_destroyMultiRecords);
        bCameBack = futDestroy.wait_for(std::chrono::seconds(1800)) == std::future_status::ready;
        uiQueued = FRU_countInnerMultiRecords();
        pipeStdout.Drain();
        threadHolder.join();
        futDestroy.wait();
    }
    EXPECT_TRUE(bCameBack);
    EXPECT_EQ(g_stInnerMRStore.ucInited, 1U);
    EXPECT_EQ(uiQueued, 1U); // what the holder was merging is still queued
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{
                  "0/2 lib_fru_multirecord.c: FRU Inner sem timeout: 0xa",
                  "0/2 lib_fru_multirecord.c: FRU MultiRecord wait to destroy failed! Ret:0xffff0006."}));
    EXPECT_EQ(SubTypesOnTheDevice(), std::set<u8>{2}); // and it came through in the end
    Destroy();
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
}

} // namespace
