// SPDX-License-Identifier: Apache-2.0
// The desk's own: files of the database that are cut, overwritten or garbled, at rest and while they are open. Whatever
// is read, it is told or it is whole, and nobody dies of it.
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bmc_db.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr char g_acLog[] = "/var/lib/fru/fru.db-wal";
constexpr char g_acIndex[] = "/var/lib/fru/fru.db-shm";
constexpr unsigned g_uiLookUs = 20000; // after so long a call has noticed that other files lie there
constexpr u32 g_uiRecords = 24;

u32 LengthOf(u32 uiKey)
{
    return uiKey == 7U ? 60000U : 100U + uiKey * 90U;
}

u32 Put(u32 uiKey, u8 ucFill)
{
    const BYTES vecData(LengthOf(uiKey), ucFill);
    return DB_PutInternal(DB_Open(), uiKey, LengthOf(uiKey), vecData.data(), "database_damage_test.cpp",
                          __LINE__);
}

bool Has(u32 uiKey, u8 ucFill)
{
    BYTES vecData(LengthOf(uiKey));
    return DB_Get(DB_Open(), uiKey, LengthOf(uiKey), vecData.data()) == 0U &&
           vecData == BYTES(LengthOf(uiKey), ucFill);
}

// Every call there is, over all records; the outcome is the file's. Writing waits for the disk.
void UseAll(bool bWrite = true)
{
    BYTES vecData(65536);
    for (u32 uiKey = 0; uiKey < g_uiRecords; ++uiKey) {
        (void)DB_Get(DB_Open(), uiKey, LengthOf(uiKey), vecData.data());
        (void)DB_Get(DB_Open(), uiKey, 1, vecData.data());
    }
    (void)BMCHOST_CheckDb(nullptr);
    const u32 uiKey = 12;
    if (bWrite) {
        (void)Put(7, 9);
        (void)DB_Del(DB_Open(), &uiKey);
        (void)Put(1000, 9);
    }
}

// As a restoring command does it that does not make a new file.
void OverwriteInPlace(const std::string &strPath, const std::string &strContent)
{
    std::ofstream(controller::RealPath(strPath), std::ios::binary | std::ios::trunc) << strContent;
}

std::string Mutated(std::string strBytes, std::mt19937 &random)
{
    constexpr size_t uiPage = 4096;
    const size_t uiAt = random() % strBytes.size();
    const size_t uiPageAt = uiAt / uiPage * uiPage;
    const size_t uiRoom = std::min(uiPage, strBytes.size() - uiPageAt);
    switch (random() % 8U) {
    case 0: // cut
        strBytes.resize(uiAt);
        break;
    case 1: // a page of noise
        for (size_t i = 0; i < uiRoom; ++i) {
            strBytes[uiPageAt + i] = static_cast<char>(random());
        }
        break;
    case 2: // a page of nothing
        memset(&strBytes[uiPageAt], static_cast<int>(random() % 2U * 255U), uiRoom);
        break;
    case 3: // one page in another's place
        memmove(&strBytes[uiPageAt], &strBytes[random() % (strBytes.size() / uiPage) * uiPage], uiRoom);
        break;
    case 4: // the header
        strBytes[random() % 100U] = static_cast<char>(random());
        break;
    case 5: // a page's own header and its first pointers
        strBytes[uiPageAt + random() % std::min<size_t>(uiRoom, 40U)] = static_cast<char>(random());
        break;
    default:
        for (u32 i = 0; i < 1U + random() % 16U; ++i) {
            strBytes[random() % strBytes.size()] = static_cast<char>(random());
        }
        break;
    }
    return strBytes;
}

class DatabaseDamage : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        for (u32 uiKey = 0; uiKey < g_uiRecords; ++uiKey) {
            ASSERT_EQ(Put(uiKey, static_cast<u8>(uiKey)), 0U);
        }
        ASSERT_EQ(controller::Await(controller::Spawn([] { return 0; })), 0); // fork() closes ours
        m_strWhole = controller::ReadFile(BMCHOST_DB_FILE);
        ASSERT_GT(m_strWhole.size(), 80000U);
    }

    // A root with nothing but this database.
    static void Lay(const std::string &strContent)
    {
        std::filesystem::remove_all(controller::RealPath("/var/lib/fru"));
        controller::WriteFile(BMCHOST_DB_FILE, strContent);
    }

    std::string m_strWhole;
};

TEST_F(DatabaseDamage, RandomAtRestKillsNobody)
{
    std::mt19937 random(600);
    u32 uiTold = 0;
    for (u32 uiRound = 0; uiRound < 600U; ++uiRound) {
        Lay(Mutated(m_strWhole, random));
        const int iStatus = controller::Await(controller::Spawn([uiRound] {
            UseAll(uiRound % 3U == 0U);
            return BMCHOST_CheckDb(nullptr) == BMCHOST_DB_NO_FAULT ? 0 : 1;
        }));
        ASSERT_GE(iStatus, 0) << "killed in round " << uiRound;
        uiTold += static_cast<u32>(iStatus);
    }
    EXPECT_GT(uiTold, 150U); // of the rest, most changed nothing but bytes inside a record
}

TEST_F(DatabaseDamage, RandomWhileOpenKillsNobody)
{
    std::mt19937 random(601);
    const char *const apcFiles[] = {BMCHOST_DB_FILE, BMCHOST_DB_FILE, g_acLog, g_acIndex};
    for (u32 uiRound = 0; uiRound < 120U; ++uiRound) {
        Lay(m_strWhole);
        const std::string strFile = apcFiles[uiRound % 4U];
        const u32 uiSeed = static_cast<u32>(random());
        const int iStatus = controller::Await(controller::Spawn([&] {
            std::mt19937 own(uiSeed);
            if (!Has(3, 3) || Put(5, 50) != 0U) {
                return 1;
            }
            OverwriteInPlace(strFile + ".tmp", Mutated(controller::ReadFile(strFile), own));
            // Another process does it, for the files' locks belong to a whole process.
            const std::string strCopy =
                "cat '" + controller::RealPath(strFile) + ".tmp' > '" + controller::RealPath(strFile) + "'";
            if (system(strCopy.c_str()) != 0) { // NOLINT(cert-env33-c): our own words
                return 2;
            }
            controller::Pause(g_uiLookUs);
            UseAll();
            return 0;
        }));
        ASSERT_EQ(iStatus, 0) << "round " << uiRound << ", " << strFile;
    }
}

TEST_F(DatabaseDamage, FilesCutWhileTheyAreOpenKillNobody)
{
    for (const std::string strFile : {BMCHOST_DB_FILE, g_acLog, g_acIndex}) {
        for (const off_t iLength : {off_t{0}, off_t{100}, off_t{4096}, off_t{8192}}) {
            Lay(m_strWhole);
            const int iStatus = controller::Await(controller::Spawn([&] {
                if (!Has(3, 3) || Put(5, 50) != 0U || !Has(5, 50)) {
                    return 1;
                }
                if (truncate(controller::RealPath(strFile).c_str(), iLength) != 0) {
                    return 2;
                }
                controller::Pause(g_uiLookUs);
                UseAll();
                return 0;
            }));
            EXPECT_EQ(iStatus, 0) << strFile << " cut to " << iLength;
        }
    }
}

// Reads until somebody writes into the pipe's other end: the rounds that gave the record, all others fail.
int ReadUntilTold(int iPipe)
{
    u32 uiRead = 0;
    BYTES vecData(LengthOf(3));
    for (char cByte = 0; read(iPipe, &cByte, 1) < 0;) {
        void *pDb = DB_Open();
        if (pDb != nullptr && DB_Get(pDb, 3, LengthOf(3), vecData.data()) == 0U) {
            if (vecData != BYTES(LengthOf(3), 3)) {
                return 1;
            }
            ++uiRead;
        }
    }
    return uiRead > 100U && Has(3, 3) ? 0 : 2;
}

TEST_F(DatabaseDamage, AnIndexThatIsCutInTheMiddleOfReadingKillsNobody)
{
    Lay(m_strWhole);
    int aiPipe[2];
    ASSERT_EQ(pipe2(aiPipe, O_NONBLOCK), 0);
    pid_t aiReaders[2];
    for (pid_t &iReader : aiReaders) {
        iReader = controller::Spawn([&aiPipe] { return ReadUntilTold(aiPipe[0]); });
    }
    std::mt19937 random(602);
    for (u32 uiRound = 0; uiRound < 400U; ++uiRound) {
        controller::Pause(static_cast<unsigned>(random() % 3000U));
        (void)!truncate(controller::RealPath(g_acIndex).c_str(), random() % 2U == 0U ? 0 : 4096);
    }
    ASSERT_EQ(write(aiPipe[1], "xx", 2), 2);
    for (const pid_t iReader : aiReaders) {
        EXPECT_EQ(controller::Await(iReader), 0);
    }
    (void)close(aiPipe[0]);
    (void)close(aiPipe[1]);
}

// The children are the first here to use a database.
class DatabaseSignal : public controller::ContractTest
{};

TEST_F(DatabaseSignal, OfTheProgramsOwnIsStillTheProgramsOwn)
{
    const auto fnTouch = [] {
        const std::string strFile = controller::RealPath("/own");
        const int iFd = open(strFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        volatile char *pcMapped = static_cast<char *>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, iFd, 0));
        return *pcMapped + 0; // behind the end of the file
    };
    EXPECT_EQ(controller::Await(controller::Spawn([&] {
                  (void)signal(SIGBUS, [](int) { _exit(77); });
                  return Put(3, 3) == 0U && Has(3, 3) ? fnTouch() : 1;
              })),
              77);
    int iStatus = 0;
    const pid_t iPid = controller::Spawn([&] {
        (void)signal(SIGBUS, SIG_DFL);
        return Put(3, 3) == 0U && Has(3, 3) ? fnTouch() : 1;
    });
    ASSERT_EQ(waitpid(iPid, &iStatus, 0), iPid);
    EXPECT_TRUE(WIFSIGNALED(iStatus) && WTERMSIG(iStatus) == SIGBUS) << iStatus;
}

TEST_F(DatabaseDamage, ACutFileIsToldByAProcessThatHasItOpen)
{
    EXPECT_EQ(controller::Await(controller::Spawn([] {
                  if (!Has(3, 3) || truncate(controller::RealPath(BMCHOST_DB_FILE).c_str(), 8192) != 0) {
                      return 1;
                  }
                  controller::Pause(g_uiLookUs);
                  if (Has(3, 3) || DB_Open() != nullptr) {
                      return 2;
                  }
                  const char *pcText = nullptr;
                  const bool bTold = BMCHOST_LastDbError(&pcText) == BMCHOST_DB_DAMAGED &&
                                     strstr(pcText, controller::RealPath(BMCHOST_DB_FILE).c_str()) != nullptr;
                  return bTold ? 0 : 3;
              })),
              0);
}

TEST_F(DatabaseDamage, AFileRestoredInPlaceIsReadByAProcessThatHasItOpen)
{
    EXPECT_EQ(controller::Await(controller::Spawn([this] {
                  const std::string strBefore = m_strWhole;
                  if (Put(3, 77) != 0U || !Has(3, 77)) {
                      return 1;
                  }
                  // Closed once, so that all is in the file, and opened again.
                  if (controller::Await(controller::Spawn([] { return 0; })) != 0 || !Has(3, 77)) {
                      return 2;
                  }
                  OverwriteInPlace(BMCHOST_DB_FILE, strBefore);
                  controller::Pause(g_uiLookUs);
                  return Has(3, 3) && BMCHOST_CheckDb(nullptr) == BMCHOST_DB_NO_FAULT ? 0 : 3;
              })),
              0);
}

TEST_F(DatabaseDamage, DamageIsFoundByTheCheckWhereverItLies)
{
    std::string strBytes = m_strWhole;
    memset(&strBytes[strBytes.size() / 8192U * 4096U], 0x5A, 4096); // a page in the middle
    Lay(strBytes);
    const char *pcText = nullptr;
    EXPECT_EQ(BMCHOST_CheckDb(&pcText), BMCHOST_DB_DAMAGED);
    EXPECT_NE(std::string(pcText).find("is damaged: "), std::string::npos) << pcText;
    EXPECT_EQ(controller::ReadFile(BMCHOST_DB_FILE), strBytes); // evidence is not touched
}

} // namespace
