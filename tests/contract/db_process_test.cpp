// SPDX-License-Identifier: Apache-2.0
// Database: many processes at once, and processes that are killed.
#include <algorithm>
#include <csignal>
#include <cstring>
#include <optional>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "bmc_db.h"
#include "controller.h"

namespace {

using controller::Await;
using controller::BYTES;
using controller::Kill;
using controller::Spawn;

constexpr u32 g_uiImageLen = 2048;
constexpr u32 g_uiKey = 0x10810205U;

u32 Put(u32 uiKey, u32 uiLen, u8 ucFill)
{
    const BYTES vecData(uiLen, ucFill);
    return DB_PutInternal(DB_Open(), uiKey, uiLen, vecData.data(), "db_process_test.cpp", __LINE__);
}

// The byte that the whole record consists of; nothing when it is missing or made of several.
std::optional<u8> Fill(u32 uiKey, u32 uiLen)
{
    BYTES vecData(uiLen);
    if (DB_Get(DB_Open(), uiKey, uiLen, vecData.data()) != 0U ||
        std::count(vecData.begin(), vecData.end(), vecData[0]) != static_cast<std::ptrdiff_t>(uiLen)) {
        return std::nullopt;
    }
    return vecData[0];
}

class DatabaseProcesses : public controller::ContractTest
{};

TEST_F(DatabaseProcesses, SeeEachOthersRecords)
{
    ASSERT_EQ(Put(g_uiKey, g_uiImageLen, 1), 0U);
    const pid_t iPid = Spawn(
        [] { return Fill(g_uiKey, g_uiImageLen) == u8{1} && Put(g_uiKey, g_uiImageLen, 2) == 0U ? 0 : 1; });
    EXPECT_EQ(Await(iPid), 0);
    EXPECT_EQ(Fill(g_uiKey, g_uiImageLen), u8{2});
}

TEST_F(DatabaseProcesses, AChildMayUseItsParentsHandle)
{
    void *pDb = DB_Open();
    ASSERT_EQ(Put(g_uiKey, 1, 1), 0U);
    const pid_t iPid = Spawn([pDb] {
        u8 ucData = 0;
        const u8 ucNew = 2;
        return DB_Get(pDb, g_uiKey, 1, &ucData) == 0U && ucData == 1U &&
                       DB_PutInternal(pDb, g_uiKey, 1, &ucNew, "db_process_test.cpp", 1) == 0U
                   ? 0
                   : 1;
    });
    EXPECT_EQ(Await(iPid), 0);
    u8 ucData = 0;
    EXPECT_EQ(DB_Get(pDb, g_uiKey, 1, &ucData), 0U);
    EXPECT_EQ(ucData, 2U);
    EXPECT_EQ(DB_Open(), pDb);
}

TEST_F(DatabaseProcesses, MayCreateTheDatabaseAtTheSameTime)
{
    std::vector<pid_t> vecPids;
    for (u32 uiChild = 0; uiChild < 6U; ++uiChild) {
        vecPids.push_back(Spawn([uiChild] {
            return Put(uiChild, 64, static_cast<u8>(uiChild)) == 0U &&
                           Fill(uiChild, 64) == static_cast<u8>(uiChild)
                       ? 0
                       : 1;
        }));
    }
    for (const pid_t iPid : vecPids) {
        EXPECT_EQ(Await(iPid), 0);
    }
    for (u32 uiChild = 0; uiChild < 6U; ++uiChild) {
        EXPECT_EQ(Fill(uiChild, 64), static_cast<u8>(uiChild));
    }
}

// Writes 150 times, other records beside it, so that pages are freed and used again under the readers.
int WriteBusily(u32 uiWriter)
{
    for (u32 i = 0; i < 150U; ++i) {
        if (Put(g_uiKey, g_uiImageLen, static_cast<u8>(i)) != 0U ||
            Put(100U + uiWriter, 1U + i * 13U, 1) != 0U) {
            return 1;
        }
    }
    return 0;
}

TEST_F(DatabaseProcesses, ReadersSeeWholeRecordsWhileTwoWrite)
{
    ASSERT_EQ(Put(g_uiKey, g_uiImageLen, 0), 0U);
    const pid_t iReader = Spawn([] {
        while (Fill(g_uiKey, g_uiImageLen)) {
        }
        return 1;
    });
    const pid_t iWriter = Spawn([] {
        const pid_t iOther = Spawn([] { return WriteBusily(1); });
        return WriteBusily(0) + Await(iOther);
    });
    u32 uiReads = 0;
    int iStatus = 0;
    while (waitpid(iWriter, &iStatus, WNOHANG) == 0) {
        ASSERT_TRUE(Fill(g_uiKey, g_uiImageLen)) << uiReads;
        ++uiReads;
    }
    EXPECT_EQ(iStatus, 0);
    EXPECT_GT(uiReads, 20U);
    Kill(iReader); // it still reads: it has seen nothing torn
    EXPECT_EQ(Fill(g_uiKey, g_uiImageLen), u8{149});
}

// A reader that is stopped in the middle of its copy is where a careless database gives half of the old
// record and half of the new one.
TEST_F(DatabaseProcesses, AReaderHeldUpInTheMiddleSeesAWholeRecord)
{
    constexpr u32 uiLen = 65000;
    ASSERT_EQ(Put(g_uiKey, uiLen, 0), 0U);
    const pid_t iWriter = Spawn([] {
        for (u8 ucFill = 1; Put(g_uiKey, uiLen, ucFill) == 0U; ++ucFill) {
        }
        return 1;
    });
    const pid_t iReader = Spawn([] {
        BYTES vecData(uiLen);
        void *pDb = DB_Open();
        while (DB_Get(pDb, g_uiKey, uiLen, vecData.data()) == 0U &&
               memcmp(vecData.data(), vecData.data() + 1, uiLen - 1U) == 0) {
        }
        return 1;
    });
    std::mt19937 random(3);
    for (u32 i = 0; i < 150U; ++i) {
        controller::Pause(static_cast<unsigned>(200U + random() % 500U));
        ASSERT_EQ(kill(iReader, SIGSTOP), 0);
        controller::Pause(3000);
        ASSERT_EQ(kill(iReader, SIGCONT), 0);
    }
    Kill(iReader); // both still run: nothing torn, nothing refused
    Kill(iWriter);
}

// Writes rounds of two records until it is killed, and tells each finished put through the pipe.
int WriteUntilKilled(int iPipe, u8 ucFirst)
{
    for (u32 uiCount = 0;; ++uiCount) {
        const u8 ucFill = static_cast<u8>(ucFirst + uiCount);
        if (Put(g_uiKey, g_uiImageLen, ucFill) != 0U || write(iPipe, &ucFill, 1) != 1 ||
            Put(g_uiKey + 1U, 1U + ucFill, ucFill) != 0U) {
            return 1;
        }
    }
}

// The last fill that the killed writer had told of.
std::optional<u8> LastTold(int iPipe)
{
    BYTES vecTold(4096);
    std::optional<u8> optLast;
    ssize_t iRead = 0;
    while ((iRead = read(iPipe, vecTold.data(), vecTold.size())) > 0) {
        optLast = vecTold[static_cast<size_t>(iRead) - 1U];
    }
    return optLast;
}

TEST_F(DatabaseProcesses, AKilledWriterLosesItsLastPutAtMost)
{
    std::mt19937 random(20240501);
    u8 ucBefore = 0;
    for (u32 uiRound = 0; uiRound < 200U; ++uiRound) {
        ASSERT_EQ(Put(g_uiKey, g_uiImageLen, ucBefore), 0U);
        ASSERT_EQ(Put(g_uiKey + 1U, 1U + ucBefore, ucBefore), 0U);
        int aiPipe[2];
        ASSERT_EQ(pipe(aiPipe), 0);
        const pid_t iPid = Spawn([&] { return WriteUntilKilled(aiPipe[1], static_cast<u8>(ucBefore + 1U)); });
        ASSERT_EQ(close(aiPipe[1]), 0);
        // A quarter dies while it opens, the others somewhere among their first puts.
        controller::Pause(static_cast<unsigned>(random() % (uiRound % 4U == 0U ? 2000U : 12000U)));
        Kill(iPid);
        const u8 ucTold = LastTold(aiPipe[0]).value_or(ucBefore);
        ASSERT_EQ(close(aiPipe[0]), 0);

        const std::optional<u8> optFill = Fill(g_uiKey, g_uiImageLen);
        ASSERT_TRUE(optFill) << "round " << uiRound;
        ASSERT_TRUE(*optFill == ucTold || *optFill == static_cast<u8>(ucTold + 1U))
            << "round " << uiRound << ": told " << +ucTold << ", found " << +*optFill;
        // The second record is that of this round or the last one, each of its own length.
        const u8 ucLast = static_cast<u8>(*optFill - 1U);
        ASSERT_TRUE(Fill(g_uiKey + 1U, 1U + *optFill) == *optFill ||
                    Fill(g_uiKey + 1U, 1U + ucLast) == ucLast)
            << "round " << uiRound;
        ucBefore = *optFill;
    }
    // Nobody holds anything back: a process that comes new writes at once.
    const pid_t iPid = Spawn([] { return Put(g_uiKey, g_uiImageLen, 77) == 0U ? 0 : 1; });
    EXPECT_EQ(Await(iPid), 0);
    EXPECT_EQ(Fill(g_uiKey, g_uiImageLen), u8{77});
}

TEST_F(DatabaseProcesses, ADatabaseWhoseCreatorWasKilledOpens)
{
    std::mt19937 random(7);
    for (u32 uiRound = 0; uiRound < 40U; ++uiRound) {
        controller::Stop();
        controller::Start();
        const pid_t iPid = Spawn([] {
            (void)Put(1, 1, 1);
            (void)pause(); // until it is killed
            return 0;
        });
        controller::Pause(static_cast<unsigned>(random() % 3000U));
        Kill(iPid);
        ASSERT_NE(DB_Open(), nullptr) << "round " << uiRound;
        ASSERT_EQ(Put(2, 64, 2), 0U) << "round " << uiRound;
        ASSERT_EQ(Fill(2, 64), u8{2}) << "round " << uiRound;
    }
}

} // namespace
