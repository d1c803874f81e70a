// SPDX-License-Identifier: Apache-2.0
// The desk's own: what a call of the database flushes, writes and leaves open.
#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "bmc_db.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

std::atomic<unsigned> g_uiFlushes{0};
std::atomic<unsigned> g_uiLocks{0};

} // namespace

// Ours come before libc's for the libraries too. This name is given by hand: libc's headers may stand another for it.
extern "C" int CountingFcntl(int iFd, int iCommand, ...) __asm__("fcntl64");
extern "C" int CountingFcntl(int iFd, int iCommand, ...)
{
    va_list vaArguments;
    va_start(vaArguments, iCommand);
    void *pArgument = va_arg(vaArguments, void *); // numbers come the same way
    va_end(vaArguments);
    using FCNTL = int (*)(int, int, ...);
    static const auto pfnNext = reinterpret_cast<FCNTL>(dlsym(RTLD_NEXT, "fcntl64"));
    g_uiLocks += iCommand == F_SETLK || iCommand == F_SETLK64 ? 1U : 0U;
    return pfnNext(iFd, iCommand, pArgument);
}

extern "C" int fdatasync(int iFd)
{
    ++g_uiFlushes;
    return static_cast<int>(syscall(SYS_fdatasync, iFd));
}

extern "C" int fsync(int iFd)
{
    ++g_uiFlushes;
    return static_cast<int>(syscall(SYS_fsync, iFd));
}

namespace {

using controller::BYTES;

u32 Put(u32 uiKey, u32 uiLen, u8 ucFill)
{
    const BYTES vecData(uiLen, ucFill);
    return DB_PutInternal(DB_Open(), uiKey, uiLen, vecData.data(), "database_cost_test.cpp", __LINE__);
}

bool Has(u32 uiKey, u32 uiLen, u8 ucFill)
{
    BYTES vecData(uiLen);
    return DB_Get(DB_Open(), uiKey, uiLen, vecData.data()) == 0U && vecData == BYTES(uiLen, ucFill);
}

// Size and time of the last write of the file and its log.
std::vector<long long> Written()
{
    std::vector<long long> vecFacts;
    for (const char *pcEnd : {"", "-wal"}) {
        struct stat stStat = {};
        EXPECT_EQ(stat((controller::RealPath(BMCHOST_DB_FILE) + pcEnd).c_str(), &stStat), 0) << pcEnd;
        vecFacts.push_back(stStat.st_size);
        vecFacts.push_back(stStat.st_mtim.tv_sec * 1000000000LL + stStat.st_mtim.tv_nsec);
    }
    return vecFacts;
}

class DatabaseCost : public controller::ContractTest
{};

TEST_F(DatabaseCost, EveryPutThatChangesSomethingIsFlushed)
{
    ASSERT_EQ(Put(1, 2048, 1), 0U);
    for (u8 ucFill = 2; ucFill < 12U; ++ucFill) {
        const unsigned uiBefore = g_uiFlushes;
        ASSERT_EQ(Put(1, 2048, ucFill), 0U);
        EXPECT_EQ(g_uiFlushes - uiBefore, 1U);
    }
}

TEST_F(DatabaseCost, APutOfWhatIsThereWritesAndFlushesNothing)
{
    ASSERT_EQ(Put(1, 2048, 1), 0U);
    ASSERT_EQ(Put(2, 0, 1), 0U);
    const std::vector<long long> vecWritten = Written();
    controller::Pause(20000); // a write would have another time
    const unsigned uiFlushes = g_uiFlushes;
    for (u32 i = 0; i < 100U; ++i) {
        ASSERT_EQ(Put(1, 2048, 1), 0U);
        ASSERT_EQ(Put(2, 0, 1), 0U);
    }
    EXPECT_EQ(Written(), vecWritten);
    EXPECT_EQ(g_uiFlushes, uiFlushes);
    ASSERT_EQ(Put(1, 2047, 1), 0U); // shorter is something else
    EXPECT_GT(g_uiFlushes, uiFlushes);
    EXPECT_NE(Written(), vecWritten);
    EXPECT_TRUE(Has(1, 2047, 1));
}

// A writer that was killed before its flush leaves bytes that the next power cut may take.
TEST_F(DatabaseCost, APutOfWhatAKilledWriterLeftIsFlushedOnce)
{
    ASSERT_EQ(controller::Await(controller::Spawn([] { return Put(1, 2048, 1) == 0U ? 0 : 1; })), 0);
    ASSERT_TRUE(Has(1, 2048, 1));
    const unsigned uiFlushes = g_uiFlushes;
    ASSERT_EQ(Put(1, 2048, 1), 0U);
    EXPECT_EQ(g_uiFlushes, uiFlushes + 1U);
    ASSERT_EQ(Put(1, 2048, 1), 0U);
    EXPECT_EQ(g_uiFlushes, uiFlushes + 1U);
}

TEST_F(DatabaseCost, NoDescriptorReachesAnExecutedProgram)
{
    ASSERT_EQ(Put(1, 4, 1), 0U);
    // Started without fork()'s handlers, which close the database.
    FILE *pstPipe = popen("ls -l /proc/self/fd", "r"); // NOLINT(cert-env33-c): our own words
    ASSERT_NE(pstPipe, nullptr);
    std::string strList;
    char acLine[512];
    while (fgets(acLine, sizeof(acLine), pstPipe) != nullptr) {
        strList += acLine;
    }
    EXPECT_EQ(pclose(pstPipe), 0);
    EXPECT_NE(strList.find("pipe:"), std::string::npos) << strList;
    EXPECT_EQ(strList.find("fru.db"), std::string::npos) << strList;
    EXPECT_TRUE(Has(1, 4, 1));
}

// One label write asks a thousand times for a handful of records.
TEST_F(DatabaseCost, AnUnchangedRecordIsReadAgainWithoutALock)
{
    ASSERT_EQ(Put(1, 2048, 0), 0U);
    const unsigned uiNone = g_uiLocks;
    ASSERT_TRUE(Has(1, 2048, 0));
    const unsigned uiFirst = g_uiLocks;
    EXPECT_GT(uiFirst, uiNone);
    for (u32 i = 0; i < 1000U; ++i) {
        ASSERT_TRUE(Has(1, 2048, 0));
    }
    EXPECT_EQ(g_uiLocks, uiFirst);
    ASSERT_EQ(Put(2, 4, 0), 0U);
    const unsigned uiPut = g_uiLocks;
    ASSERT_TRUE(Has(1, 2048, 0));
    EXPECT_GT(g_uiLocks, uiPut); // after any commit
}

TEST_F(DatabaseCost, APutThatHasReturnedIsSeenThoughTheRecordWasInMemory)
{
    ASSERT_EQ(Put(1, 2048, 0), 0U);
    int aiToChild[2];
    int aiToParent[2];
    ASSERT_EQ(pipe(aiToChild) + pipe(aiToParent), 0);
    const pid_t iWriter = controller::Spawn([&] {
        char cByte = 0;
        for (u8 ucFill = 1; ucFill < 200U; ++ucFill) {
            if (read(aiToChild[0], &cByte, 1) != 1 || Put(1, 2048, ucFill) != 0U ||
                write(aiToParent[1], "x", 1) != 1) {
                return 1;
            }
        }
        return 0;
    });
    for (u8 ucFill = 1; ucFill < 200U; ++ucFill) {
        char cByte = 0;
        ASSERT_TRUE(Has(1, 2048, static_cast<u8>(ucFill - 1U)));
        ASSERT_TRUE(Has(1, 2048, static_cast<u8>(ucFill - 1U)));
        ASSERT_EQ(write(aiToChild[1], "x", 1), 1);
        ASSERT_EQ(read(aiToParent[0], &cByte, 1), 1);
        ASSERT_TRUE(Has(1, 2048, ucFill)) << "after a put that had returned";
    }
    EXPECT_EQ(controller::Await(iWriter), 0);
}

} // namespace
