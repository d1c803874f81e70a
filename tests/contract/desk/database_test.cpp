// The desk's own: the database's files, and what damages them.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>

#include "bmc_db.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr char g_acData[] = BMCHOST_DB_DIR "/data.mdb";

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
    EXPECT_EQ(controller::FilesIn(BMCHOST_DB_DIR), std::vector<std::string>{"data.mdb"});
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
    const pid_t iPid = controller::Spawn([] {
        const std::string strWhole = controller::ReadFile(g_acData);
        for (const size_t uiCut : {size_t{40960}, size_t{8192}, size_t{4096}, size_t{100}}) {
            // A new file, for the old one is mapped.
            std::filesystem::remove(controller::RealPath(g_acData));
            controller::WriteFile(g_acData, strWhole.substr(0, uiCut));
            if (DB_Open() != nullptr) {
                return 1;
            }
        }
        return 0;
    });
    EXPECT_EQ(controller::Await(iPid), 0);
}

TEST_F(DatabaseFiles, LaidAnewAreOpenedAnew)
{
    void *pDb = DB_Open();
    ASSERT_EQ(Put(1, 4, 1), 0U);
    std::filesystem::remove_all(controller::RealPath(BMCHOST_DB_DIR));
    EXPECT_FALSE(Has(1, 4, 1));
    EXPECT_EQ(DB_Open(), pDb);
    EXPECT_EQ(Put(1, 4, 2), 0U);
    EXPECT_TRUE(Has(1, 4, 2));
}

TEST_F(DatabaseFiles, ARestOfAnUnfinishedCreationDoesNotHinder)
{
    controller::WriteFile(BMCHOST_DB_DIR "/data.mdb.new", std::string(4096, 'x'));
    ASSERT_NE(DB_Open(), nullptr);
    EXPECT_EQ(Put(1, 4, 1), 0U);
    EXPECT_EQ(controller::FilesIn(BMCHOST_DB_DIR), std::vector<std::string>{"data.mdb"});
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
        if (Put(2, uiLen, 2) == 0U || Has(2, uiLen, 2) || !Has(1, 2048, 1)) {
            return 2;
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
    ASSERT_GT(uiKey, 30U);
    EXPECT_TRUE(Has(0, 1000000, 0));
    EXPECT_TRUE(Has(uiKey - 1U, 1000000, static_cast<u8>(uiKey - 1U)));
    const u32 uiFirst = 0;
    EXPECT_EQ(DB_Del(DB_Open(), &uiFirst), 0U);
    EXPECT_EQ(Put(1000, 2048, 5), 0U);
    EXPECT_TRUE(Has(1000, 2048, 5));
}

} // namespace
