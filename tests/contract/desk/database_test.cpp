// SPDX-License-Identifier: Apache-2.0
// The desk's own: the database's files, and what damages them.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

#include "bmc_db.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr char g_acData[] = BMCHOST_DB_FILE;
constexpr char g_acDirectory[] = "/var/lib/fru";

constexpr unsigned g_uiLookUs = 20000; // after so long a call has noticed that other files lie there

u32 Put(u32 uiKey, u32 uiLen, u8 ucFill)
{
    const BYTES vecData(uiLen, ucFill);
    return DB_PutInternal(DB_Open(), uiKey, uiLen, vecData.data(), "database_test.cpp", __LINE__);
}

bool Has(u32 uiKey, u32 uiLen, u8 ucFill)
{
    BYTES vecData(uiLen);
    return DB_Get(DB_Open(), uiKey, uiLen, vecData.data()) == 0U && vecData == BYTES(uiLen, ucFill);
}

class DatabaseFiles : public controller::ContractTest
{};

TEST_F(DatabaseFiles, LieInTheRoot)
{
    ASSERT_NE(DB_Open(), nullptr);
    EXPECT_EQ(controller::FilesIn(g_acDirectory),
              (std::vector<std::string>{"fru.db", "fru.db-shm", "fru.db-wal"}));
}

TEST_F(DatabaseFiles, ThatAreNoneGiveNoHandleUntilTheyAreGone)
{
    controller::WriteFile(g_acData, std::string(20000, 'x'));
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(controller::ReadFile(g_acData), std::string(20000, 'x')); // evidence is not touched
    std::filesystem::remove(controller::RealPath(g_acData));
    EXPECT_NE(DB_Open(), nullptr);
    EXPECT_EQ(Put(1, 4, 1), 0U);
}

TEST_F(DatabaseFiles, CutShortGiveNoHandleAndNoCrash)
{
    ASSERT_EQ(Put(1, 60000, 1), 0U);
    // In place or as another file: nothing of it is mapped. A child's connection is its own.
    for (const bool bInPlace : {false, true}) {
        const pid_t iPid = controller::Spawn([bInPlace] {
            const std::string strWhole = controller::ReadFile(g_acData);
            for (const size_t uiCut : {size_t{40960}, size_t{8192}, size_t{4096}, size_t{100}, size_t{0}}) {
                if (!bInPlace) {
                    std::filesystem::remove(controller::RealPath(g_acData));
                }
                controller::WriteFile(g_acData, strWhole.substr(0, uiCut));
                if (DB_Open() != nullptr) {
                    return 1;
                }
                if (BMCHOST_LastDbError(nullptr) != BMCHOST_DB_DAMAGED) {
                    return 2;
                }
            }
            controller::WriteFile(g_acData, strWhole);
            return Has(1, 60000, 1) ? 0 : 3;
        });
        EXPECT_EQ(controller::Await(iPid), 0) << bInPlace;
    }
}

TEST_F(DatabaseFiles, LaidAnewAreOpenedAnew)
{
    void *pDb = DB_Open();
    ASSERT_EQ(Put(1, 4, 1), 0U);
    std::filesystem::remove_all(controller::RealPath(g_acDirectory));
    controller::Pause(g_uiLookUs);
    EXPECT_FALSE(Has(1, 4, 1));
    EXPECT_EQ(DB_Open(), pDb);
    EXPECT_EQ(Put(1, 4, 2), 0U);
    EXPECT_TRUE(Has(1, 4, 2));
}

TEST_F(DatabaseFiles, ARestOfAnUnfinishedCreationDoesNotHinder)
{
    const std::string strTemp = "/var/lib/fru/.bmcfru-0123456789abcdef01234567";
    controller::WriteFile(strTemp, std::string(4096, 'x'));
    std::filesystem::last_write_time(controller::RealPath(strTemp),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    controller::WriteFile("/var/lib/fru/other", "not ours");
    ASSERT_NE(DB_Open(), nullptr);
    EXPECT_EQ(Put(1, 4, 1), 0U);
    EXPECT_EQ(controller::FilesIn(g_acDirectory),
              (std::vector<std::string>{"fru.db", "fru.db-shm", "fru.db-wal", "other"}));
}

TEST_F(DatabaseFiles, ALogWhoseFileIsGoneIsNotRead)
{
    ASSERT_EQ(Put(1, 4, 1), 0U);
    const std::string strLog = controller::ReadFile("/var/lib/fru/fru.db-wal");
    ASSERT_FALSE(strLog.empty());
    EXPECT_EQ(controller::Await(controller::Spawn([&] {
                  std::filesystem::remove_all(controller::RealPath(g_acDirectory));
                  controller::WriteFile("/var/lib/fru/fru.db-wal", strLog);
                  return DB_Open() != nullptr && !Has(1, 4, 1) ? 0 : 1;
              })),
              0);
}

// After the last process that had it open there is one file, to be copied and laid back.
TEST_F(DatabaseFiles, AreOneFileAtRest)
{
    ASSERT_EQ(Put(1, 4, 1), 0U);
    ASSERT_EQ(controller::Await(controller::Spawn([] { return 0; })), 0); // fork() closes ours
    EXPECT_EQ(controller::FilesIn(g_acDirectory), std::vector<std::string>{"fru.db"});
    EXPECT_TRUE(Has(1, 4, 1));
}

// Puts a record three times where the disk takes no byte beyond uiLimit: 0 when each fails and harms nothing.
int PutWithinLimit(rlim_t uiLimit, u32 uiLen)
{
    const struct rlimit stLimit = {uiLimit, uiLimit};
    (void)signal(SIGXFSZ, SIG_IGN);
    if (setrlimit(RLIMIT_FSIZE, &stLimit) != 0) {
        return 1;
    }
    for (u32 uiRound = 0; uiRound < 3U; ++uiRound) {
        if (Put(2, uiLen, 2) == 0U || BMCHOST_LastDbError(nullptr) != BMCHOST_DB_FULL) {
            return 2;
        }
        if (Has(2, uiLen, 2) || !Has(1, 2048, 1)) {
            return 3;
        }
    }
    return 0;
}

TEST_F(DatabaseFiles, AFullDiskFailsThePutAndKeepsTheRecords)
{
    ASSERT_EQ(Put(1, 2048, 1), 0U);
    const auto uiSize = static_cast<rlim_t>(std::filesystem::file_size(controller::RealPath(g_acData)));
    // The file cannot grow; then even the pages that it has room for cannot be written.
    EXPECT_EQ(controller::Await(controller::Spawn([&] { return PutWithinLimit(uiSize, 3000000); })), 0);
    EXPECT_EQ(controller::Await(controller::Spawn([] { return PutWithinLimit(20000, 60000); })), 0);
    // Room for the log's index, but not for the record in the log.
    EXPECT_EQ(controller::Await(controller::Spawn([] { return PutWithinLimit(40000, 60000); })), 0);
    EXPECT_TRUE(Has(1, 2048, 1));
    EXPECT_EQ(Put(2, 3000000, 2), 0U);
    EXPECT_TRUE(Has(2, 3000000, 2));
}

TEST_F(DatabaseFiles, AFullDatabaseFailsThePutAndKeepsTheRecords)
{
    u32 uiKey = 0;
    while (uiKey < 100U && Put(uiKey, 1000000, static_cast<u8>(uiKey)) == 0U) {
        ++uiKey;
    }
    ASSERT_LT(uiKey, 100U);
    EXPECT_EQ(BMCHOST_LastDbError(nullptr), BMCHOST_DB_FULL);
    ASSERT_GT(uiKey, 30U);
    EXPECT_TRUE(Has(0, 1000000, 0));
    EXPECT_TRUE(Has(uiKey - 1U, 1000000, static_cast<u8>(uiKey - 1U)));
    const u32 uiFirst = 0;
    EXPECT_EQ(DB_Del(DB_Open(), &uiFirst), 0U);
    EXPECT_EQ(Put(1000, 2048, 5), 0U);
    EXPECT_TRUE(Has(1000, 2048, 5));
}

// Whoever may read the file must be able to read its log, whoever has made that.
TEST_F(DatabaseFiles, HaveTheFilesModeWhateverTheUmask)
{
    const mode_t uiBefore = umask(077);
    const u32 uiResult = Put(1, 4, 1);
    umask(uiBefore);
    ASSERT_EQ(uiResult, 0U);
    for (const char *pcEnd : {"", "-wal", "-shm"}) {
        struct stat stStat = {};
        EXPECT_EQ(stat(controller::RealPath(std::string(BMCHOST_DB_FILE) + pcEnd).c_str(), &stStat), 0)
            << pcEnd;
        EXPECT_EQ(stStat.st_mode & 07777U, 0644U) << pcEnd;
    }
}

} // namespace
