// SPDX-License-Identifier: Apache-2.0
// The desk's own: why a call of the database failed.
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "bmc_db.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;
using controller::RealPath;
using SECONDS = std::chrono::duration<double>;

constexpr char g_acDirectory[] = "/var/lib/fru";
constexpr uid_t g_uiNobody = 65534;

u32 Put(u32 uiKey, u32 uiLen, u8 ucFill)
{
    const BYTES vecData(uiLen, ucFill);
    return DB_PutInternal(DB_Open(), uiKey, uiLen, vecData.data(), "database_reason_test.cpp", __LINE__);
}

bool Has(u32 uiKey, u32 uiLen, u8 ucFill)
{
    BYTES vecData(uiLen);
    return DB_Get(DB_Open(), uiKey, uiLen, vecData.data()) == 0U && vecData == BYTES(uiLen, ucFill);
}

BMCHOST_DB_REASON_E Reason()
{
    return BMCHOST_LastDbError(nullptr);
}

std::string ReasonText()
{
    const char *pcText = nullptr;
    (void)BMCHOST_LastDbError(&pcText);
    return pcText;
}

// Changes the file as somebody with a tool does; in a process of its own.
void Sql(const std::string &strSql)
{
    ASSERT_EQ(controller::Await(controller::Spawn([&] {
                  sqlite3 *pstDb = nullptr;
                  const bool bDone =
                      sqlite3_open(RealPath(BMCHOST_DB_FILE).c_str(), &pstDb) == SQLITE_OK &&
                      sqlite3_exec(pstDb, strSql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
                  (void)sqlite3_close(pstDb);
                  return bDone ? 0 : 1;
              })),
              0)
        << strSql;
}

class DatabaseReason : public controller::ContractTest
{};

TEST_F(DatabaseReason, NamesARecordThatIsNotThereOrHasAnotherLength)
{
    ASSERT_EQ(Put(1, 4, 1), 0U);
    EXPECT_FALSE(Has(2, 4, 1));
    EXPECT_EQ(Reason(), BMCHOST_DB_NO_RECORD);
    EXPECT_FALSE(Has(1, 5, 1));
    EXPECT_EQ(Reason(), BMCHOST_DB_NO_RECORD);
    EXPECT_NE(ReasonText().find("has 4 bytes, not 5"), std::string::npos) << ReasonText();
    EXPECT_TRUE(Has(1, 4, 1));
    EXPECT_FALSE(Has(1, 5, 1)); // the same from the second time on
    EXPECT_EQ(Reason(), BMCHOST_DB_NO_RECORD);
}

TEST_F(DatabaseReason, StaysUntilTheNextFailureOfTheThread)
{
    EXPECT_NE(DB_Get(nullptr, 1, 1, nullptr), 0U);
    EXPECT_EQ(Reason(), BMCHOST_DB_MISUSE);
    ASSERT_EQ(Put(1, 4, 1), 0U);
    EXPECT_EQ(Reason(), BMCHOST_DB_MISUSE);
    std::thread([] {
        EXPECT_EQ(Reason(), BMCHOST_DB_NO_FAULT);
        EXPECT_EQ(ReasonText(), "");
    }).join();
}

TEST_F(DatabaseReason, CheckingAnAbsentDatabaseMakesNone)
{
    const char *pcText = nullptr;
    EXPECT_EQ(BMCHOST_CheckDb(&pcText), BMCHOST_DB_ABSENT);
    EXPECT_EQ(std::string(pcText), "the database " + RealPath(BMCHOST_DB_FILE) + " is not there");
    EXPECT_FALSE(std::filesystem::exists(RealPath("/var")));
    ASSERT_NE(DB_Open(), nullptr);
    EXPECT_EQ(BMCHOST_CheckDb(&pcText), BMCHOST_DB_NO_FAULT);
    EXPECT_STREQ(pcText, "");
}

TEST_F(DatabaseReason, AFormerReleasesRootIsRefusedAndLeftAlone)
{
    controller::WriteFile("/var/lib/fru/db/data.mdb", std::string(8192, 'x'));
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(Reason(), BMCHOST_DB_VERSION);
    EXPECT_EQ(ReasonText(),
              "the database " + RealPath("/var/lib/fru/db/data.mdb") +
                  " is not one that this release reads: an earlier release has made it; remove " +
                  RealPath("/var/lib/fru/db") + " and provision the controller anew");
    EXPECT_EQ(BMCHOST_CheckDb(nullptr), BMCHOST_DB_VERSION);
    EXPECT_EQ(controller::FilesIn(g_acDirectory), std::vector<std::string>{"db"});
    std::filesystem::remove_all(RealPath("/var/lib/fru/db"));
    EXPECT_NE(DB_Open(), nullptr);
}

TEST_F(DatabaseReason, AnotherVersionOrProgramIsToldAndLeftAlone)
{
    ASSERT_EQ(Put(1, 4, 1), 0U);
    Sql("PRAGMA user_version=2");
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(Reason(), BMCHOST_DB_VERSION);
    EXPECT_NE(ReasonText().find("it has version 2, not 1"), std::string::npos) << ReasonText();
    Sql("PRAGMA user_version=1; PRAGMA application_id=7");
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(Reason(), BMCHOST_DB_VERSION);
    Sql("PRAGMA application_id=0x42465255; ALTER TABLE record RENAME TO other");
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(Reason(), BMCHOST_DB_DAMAGED);
    Sql("ALTER TABLE other RENAME TO record");
    EXPECT_EQ(DB_Open(), nullptr); // the statement that made it is another one now
    controller::Stop();
    controller::Start();
    ASSERT_EQ(Put(1, 4, 1), 0U);
    Sql("PRAGMA journal_mode=DELETE"); // what can be mended, is
    EXPECT_TRUE(Has(1, 4, 1));
    EXPECT_EQ(Put(1, 4, 2), 0U);
    EXPECT_TRUE(std::filesystem::exists(RealPath("/var/lib/fru/fru.db-wal")));
}

TEST_F(DatabaseReason, WhatIsNoFileOfOursIsRefused)
{
    controller::WriteFile("/victim", "victim");
    std::filesystem::create_directories(RealPath(g_acDirectory));
    std::filesystem::create_symlink(RealPath("/victim"), RealPath(BMCHOST_DB_FILE));
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_NE(ReasonText().find("a symbolic link there is not followed"), std::string::npos) << ReasonText();
    std::filesystem::remove(RealPath(BMCHOST_DB_FILE));
    for (const std::string strEnd : {"-wal", "-shm", "-journal"}) {
        std::filesystem::create_symlink(RealPath("/victim"), RealPath(BMCHOST_DB_FILE + strEnd));
    }
    EXPECT_EQ(Put(1, 4, 1), 0U);
    EXPECT_EQ(controller::ReadFile("/victim"), "victim");
    controller::Stop();
    controller::Start();
    ASSERT_EQ(mkdir(RealPath("/var").c_str(), 0755) + mkdir(RealPath("/var/lib").c_str(), 0755), 0);
    ASSERT_EQ(mkdir(RealPath(g_acDirectory).c_str(), 0755) + mkfifo(RealPath(BMCHOST_DB_FILE).c_str(), 0644),
              0);
    EXPECT_EQ(DB_Open(), nullptr); // and is not waited for
}

// ---- locks ----

// Holds the lock of those who write, as any process that may read can; runs until it is killed.
int HoldWriteLock(int iPipe, short sType)
{
    const int iFd = open(RealPath("/var/lib/fru/fru.db-shm").c_str(), O_RDWR | O_CLOEXEC);
    struct flock stLock = {};
    stLock.l_type = sType;
    stLock.l_whence = SEEK_SET;
    stLock.l_start = 120; // where SQLite has it
    stLock.l_len = 1;
    if (iFd < 0 || fcntl(iFd, F_SETLK, &stLock) != 0 || write(iPipe, "x", 1) != 1) {
        return 1;
    }
    controller::Pause(60000000);
    return 0;
}

class DatabaseLock : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        ASSERT_EQ(Put(1, 4, 1), 0U);
        ASSERT_EQ(pipe(m_aiPipe), 0);
    }

    void StartHolder(short sType = F_WRLCK)
    {
        // The parent's connection ends with fork(), and its index with it: the child opens its own first.
        m_iHolder =
            controller::Spawn([this, sType] { return Has(1, 4, 1) ? HoldWriteLock(m_aiPipe[1], sType) : 1; });
        char cByte = 0;
        ASSERT_EQ(read(m_aiPipe[0], &cByte, 1), 1);
        m_stBegin = std::chrono::steady_clock::now();
    }

    double Passed() const
    {
        return SECONDS(std::chrono::steady_clock::now() - m_stBegin).count();
    }

    int m_aiPipe[2] = {-1, -1};
    pid_t m_iHolder = -1;
    std::chrono::steady_clock::time_point m_stBegin;
};

TEST_F(DatabaseLock, IsWaitedForSoLongAndNoLonger)
{
    StartHolder(F_RDLCK); // which needs no right to write
    EXPECT_TRUE(Has(1, 4, 1));
    EXPECT_EQ(Put(1, 4, 1), 0U); // what is there already needs no lock
    EXPECT_LT(Passed(), 5.0);
    EXPECT_NE(Put(1, 4, 2), 0U);
    EXPECT_GE(Passed(), BMCHOST_DB_WAIT_SECONDS);
    EXPECT_LT(Passed(), BMCHOST_DB_WAIT_SECONDS + 8.0);
    EXPECT_EQ(Reason(), BMCHOST_DB_LOCKED);
    EXPECT_EQ(ReasonText(), "the database " + RealPath(BMCHOST_DB_FILE) +
                                " is kept busy by another process (waited for 10 seconds)");
    EXPECT_TRUE(Has(1, 4, 1));
    controller::Kill(m_iHolder);
    EXPECT_EQ(Put(1, 4, 2), 0U);
}

TEST_F(DatabaseLock, FallsWithItsProcess)
{
    StartHolder();
    std::thread killer([this] {
        controller::Pause(300000);
        controller::Kill(m_iHolder);
    });
    EXPECT_EQ(Put(1, 4, 2), 0U);
    EXPECT_LT(Passed(), 5.0);
    killer.join();
}

TEST_F(DatabaseLock, OfOthersHoldsUpNoReaderOfThisProcess)
{
    StartHolder();
    std::thread writer([] { EXPECT_EQ(Put(1, 4, 2), 0U); });
    controller::Pause(100000);
    for (u32 i = 0; i < 50U; ++i) {
        EXPECT_TRUE(Has(1, 4, 1));
    }
    EXPECT_EQ(controller::Await(controller::Spawn([] { return Has(1, 4, 1) ? 0 : 1; })), 0); // nor its forks
    EXPECT_LT(Passed(), 5.0);
    controller::Kill(m_iHolder);
    writer.join();
    EXPECT_TRUE(Has(1, 4, 2));
}

// Another user may open the directory, and so lock it.
TEST_F(DatabaseLock, OfADirectoryKeepsNobodyOut)
{
    m_iHolder = controller::Spawn([this] {
        const int iFd = open(RealPath(g_acDirectory).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (iFd < 0 || flock(iFd, LOCK_EX) != 0 || write(m_aiPipe[1], "x", 1) != 1) {
            return 1;
        }
        controller::Pause(60000000);
        return 0;
    });
    char cByte = 0;
    ASSERT_EQ(read(m_aiPipe[0], &cByte, 1), 1);
    m_stBegin = std::chrono::steady_clock::now();
    EXPECT_EQ(Put(1, 4, 2), 0U);
    ASSERT_EQ(controller::Await(controller::Spawn([] { return 0; })), 0); // fork() closes ours
    std::filesystem::remove(RealPath(BMCHOST_DB_FILE));
    EXPECT_EQ(Put(1, 4, 3), 0U); // nor from making a new one
    EXPECT_LT(Passed(), 5.0);
    controller::Kill(m_iHolder);
}

// ---- other users, and no right to write ----

// As a user who owns nothing here; what the test itself may not become is left out.
int AsNobody(const std::function<int()> &fnWork)
{
    return controller::Await(controller::Spawn([&] {
        if (geteuid() == 0U && (setgid(g_uiNobody) != 0 || setuid(g_uiNobody) != 0)) {
            return 99;
        }
        return fnWork();
    }));
}

class DatabaseRights : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        ASSERT_EQ(chmod(RealPath("/").c_str(), 0755), 0);
        ASSERT_EQ(Put(1, 2048, 1), 0U);
        if (geteuid() != 0U) { // then nobody but the owner is at hand
            m_bOwner = true;
        }
    }
    void TearDown() override
    {
        Open(true);
        ContractTest::TearDown();
    }

    // Without rights for anybody to change the directory or the file.
    void Open(bool bWritable) const
    {
        if (m_bOwner) {
            (void)chmod(RealPath(g_acDirectory).c_str(), bWritable ? 0755 : 0555);
            (void)chmod(RealPath(BMCHOST_DB_FILE).c_str(), bWritable ? 0644 : 0444);
        }
    }

    static int ReadsAndMayNotWrite()
    {
        if (DB_Open() == nullptr || !Has(1, 2048, 1)) {
            return 1;
        }
        const u32 uiKey = 1;
        if (Put(1, 2048, 2) == 0U || Reason() != BMCHOST_DB_NO_RIGHTS) {
            return 2;
        }
        if (DB_Del(DB_Open(), &uiKey) == 0U || Reason() != BMCHOST_DB_NO_RIGHTS) {
            return 3;
        }
        return Has(1, 2048, 1) && BMCHOST_CheckDb(nullptr) == BMCHOST_DB_NO_FAULT ? 0 : 4;
    }

    bool m_bOwner = false;
};

TEST_F(DatabaseRights, AUserWhoMayOnlyReadReads)
{
    Open(false);
    EXPECT_EQ(AsNobody(ReadsAndMayNotWrite), 0);
    EXPECT_EQ(controller::FilesIn(g_acDirectory), std::vector<std::string>{"fru.db"});
}

TEST_F(DatabaseRights, AUserWhoMayOnlyReadSeesWhatAWriterPuts)
{
    if (m_bOwner) {
        GTEST_SKIP() << "needs two users";
    }
    int aiToChild[2];
    int aiToParent[2];
    ASSERT_EQ(pipe(aiToChild) + pipe(aiToParent), 0);
    const pid_t iReader = controller::Spawn([&] {
        char cByte = 0;
        if (setgid(g_uiNobody) != 0 || setuid(g_uiNobody) != 0 || !Has(1, 2048, 1)) {
            return 1;
        }
        for (u8 ucFill = 2; ucFill < 12U; ++ucFill) {
            if (write(aiToParent[1], "x", 1) != 1 || read(aiToChild[0], &cByte, 1) != 1) {
                return 2;
            }
            if (!Has(1, 2048, ucFill)) {
                return 3;
            }
        }
        return 0;
    });
    char cByte = 0;
    for (u8 ucFill = 2; ucFill < 12U; ++ucFill) {
        ASSERT_EQ(read(aiToParent[0], &cByte, 1), 1);
        ASSERT_EQ(Put(1, 2048, ucFill), 0U);
        if (ucFill == 6U) { // closed: everything goes into the file, and the log is gone
            ASSERT_EQ(controller::Await(controller::Spawn([] { return 0; })), 0);
        }
        ASSERT_EQ(write(aiToChild[1], "x", 1), 1);
    }
    EXPECT_EQ(controller::Await(iReader), 0);
}

TEST_F(DatabaseRights, AUserWhoMayOnlyReadReadsWhatAKilledWriterLeft)
{
    if (m_bOwner) {
        GTEST_SKIP() << "needs two users";
    }
    EXPECT_EQ(controller::Await(controller::Spawn([] {
                  return Put(1, 2048, 1) + Put(2, 8, 8) == 0U ? 0 : 1; // _exit() closes nothing
              })),
              0);
    ASSERT_EQ(controller::FilesIn(g_acDirectory).size(), 3U);
    EXPECT_EQ(AsNobody([] { return Has(2, 8, 8) ? ReadsAndMayNotWrite() : 9; }), 0);
}

TEST_F(DatabaseRights, AUserWhoMayNotReadIsTold)
{
    if (m_bOwner) {
        GTEST_SKIP() << "needs two users";
    }
    ASSERT_EQ(chmod(RealPath(BMCHOST_DB_FILE).c_str(), 0600), 0);
    EXPECT_EQ(AsNobody([] { return DB_Open() == nullptr && Reason() == BMCHOST_DB_NO_RIGHTS ? 0 : 1; }), 0);
}

TEST_F(DatabaseRights, NobodyWithoutThemMakesADatabase)
{
    if (m_bOwner) {
        GTEST_SKIP() << "needs two users";
    }
    std::filesystem::remove_all(RealPath("/var"));
    EXPECT_EQ(AsNobody([] { return DB_Open() == nullptr && Reason() == BMCHOST_DB_NO_RIGHTS ? 0 : 1; }), 0);
}

} // namespace
