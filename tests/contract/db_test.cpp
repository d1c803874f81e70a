// SPDX-License-Identifier: Apache-2.0
// Database: what one process sees.
#include <algorithm>
#include <ctime>
#include <thread>
#include <utility>

#include "bmc_db.h"
#include "controller.h"

namespace {

using controller::BYTES;

class Database : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        m_pDb = DB_Open();
        ASSERT_NE(m_pDb, nullptr);
    }

    u32 Put(u32 uiKey, const BYTES &vecData)
    {
        return DB_PutInternal(m_pDb, uiKey, static_cast<u32>(vecData.size()), vecData.data(), "db_test.cpp",
                              __LINE__);
    }

    // The record when it has that length, else "untouched" 0x5A bytes.
    std::pair<bool, BYTES> Get(u32 uiKey, u32 uiLen)
    {
        BYTES vecData(uiLen, 0x5A);
        const u32 uiResult = DB_Get(m_pDb, uiKey, uiLen, vecData.data());
        return {uiResult == 0U, vecData};
    }

    void *m_pDb = nullptr;
};

TEST_F(Database, OpensWithOneHandleForTheProcess)
{
    EXPECT_EQ(DB_Open(), m_pDb);
    EXPECT_EQ(DB_Open(), m_pDb);
}

TEST_F(Database, GivesBackWhatWasPut)
{
    const BYTES vecRecord = {0, 1, 0xFF, 0, 7};
    ASSERT_EQ(Put(0x10810000U, vecRecord), 0U);
    EXPECT_EQ(Get(0x10810000U, 5), std::make_pair(true, vecRecord));
}

TEST_F(Database, KeepsRecordsOfDifferentKeysApart)
{
    const u32 auiKeys[] = {0U, 1U, 0x108103FFU, 0x108105FFU, 0x10810463U, 0xFFFFFFFFU};
    for (const u32 uiKey : auiKeys) {
        ASSERT_EQ(Put(uiKey, BYTES(4, static_cast<u8>(uiKey))), 0U);
    }
    for (const u32 uiKey : auiKeys) {
        EXPECT_EQ(Get(uiKey, 4), std::make_pair(true, BYTES(4, static_cast<u8>(uiKey)))) << uiKey;
    }
}

TEST_F(Database, AnotherLengthIsAFailureAndTouchesNothing)
{
    ASSERT_EQ(Put(7, BYTES(184, 1)), 0U);
    for (const u32 uiLen : {0U, 1U, 183U, 185U, 3703U}) {
        EXPECT_EQ(Get(7, uiLen), std::make_pair(false, BYTES(uiLen, 0x5A))) << uiLen;
    }
}

TEST_F(Database, AMissingKeyIsAFailureAndTouchesNothing)
{
    EXPECT_EQ(Get(8, 16), std::make_pair(false, BYTES(16, 0x5A)));
}

TEST_F(Database, APutReplacesWhateverLengthWasThere)
{
    for (const u32 uiLen : {256U, 2048U, 1U, 65535U, 0U, 32U}) {
        ASSERT_EQ(Put(9, BYTES(uiLen, static_cast<u8>(uiLen + 1U))), 0U);
        EXPECT_EQ(Get(9, uiLen), std::make_pair(true, BYTES(uiLen, static_cast<u8>(uiLen + 1U)))) << uiLen;
    }
    EXPECT_FALSE(Get(9, 65535).first);
}

TEST_F(Database, ARecordOfLengthZeroIsARecord)
{
    ASSERT_EQ(DB_PutInternal(m_pDb, 10, 0, nullptr, "db_test.cpp", 1), 0U);
    EXPECT_EQ(DB_Get(m_pDb, 10, 0, nullptr), 0U);
    EXPECT_NE(DB_Get(m_pDb, 11, 0, nullptr), 0U);
}

TEST_F(Database, HoldsTheLargestRecordsOfAllDevices)
{
    BYTES vecImage(65535);
    for (u32 i = 0; i < vecImage.size(); ++i) {
        vecImage[i] = static_cast<u8>(i * 31U);
    }
    for (u32 uiRound = 0; uiRound < 2U; ++uiRound) {
        for (u32 uiID = 0; uiID < 256U; uiID += uiID < 8U ? 1U : 31U) {
            vecImage[0] = static_cast<u8>(uiID + uiRound);
            ASSERT_EQ(Put(0x10810200U | uiID, vecImage), 0U) << uiID;
        }
    }
    vecImage[0] = 4U + 1U;
    EXPECT_EQ(Get(0x10810204U, 65535), std::make_pair(true, vecImage));
}

TEST_F(Database, DeletesARecordOnce)
{
    const u32 uiKey = 12;
    ASSERT_EQ(Put(uiKey, BYTES(2048, 3)), 0U);
    EXPECT_EQ(DB_Del(m_pDb, &uiKey), 0U);
    EXPECT_FALSE(Get(uiKey, 2048).first);
    EXPECT_NE(DB_Del(m_pDb, &uiKey), 0U);
    EXPECT_EQ(uiKey, 12U);
    ASSERT_EQ(Put(uiKey, BYTES(8, 4)), 0U);
    EXPECT_TRUE(Get(uiKey, 8).first);
}

TEST_F(Database, RefusesNullDataAndForeignHandles)
{
    ASSERT_EQ(Put(13, BYTES(4, 1)), 0U);
    u8 aucData[4] = {9, 9, 9, 9};
    const u32 uiKey = 13;
    EXPECT_NE(DB_Get(m_pDb, 13, 4, nullptr), 0U);
    EXPECT_NE(DB_PutInternal(m_pDb, 13, 4, nullptr, "db_test.cpp", 1), 0U);
    EXPECT_NE(DB_Del(m_pDb, nullptr), 0U);
    EXPECT_NE(DB_Get(nullptr, 13, 4, aucData), 0U);
    EXPECT_NE(DB_PutInternal(nullptr, 13, 4, aucData, "db_test.cpp", 1), 0U);
    EXPECT_NE(DB_Del(nullptr, &uiKey), 0U);
    EXPECT_EQ(aucData[0], 9U);
    EXPECT_EQ(Get(13, 4), std::make_pair(true, BYTES(4, 1)));
}

TEST_F(Database, TakesAPutWithoutAFileName)
{
    const u8 ucData = 1;
    EXPECT_EQ(DB_PutInternal(m_pDb, 14, 1, &ucData, nullptr, 0), 0U);
}

TEST_F(Database, ServesThreadsAtOnce)
{
    ASSERT_EQ(Put(15, BYTES(2048, 0)), 0U);
    std::vector<std::thread> vecThreads;
    std::vector<u32> vecTorn(4);
    for (u32 uiThread = 0; uiThread < 4U; ++uiThread) {
        vecThreads.emplace_back([this, uiThread, &vecTorn] {
            for (u32 i = 0; i < 50U; ++i) {
                const bool bPut = uiThread != 0U || Put(15, BYTES(2048, static_cast<u8>(i))) == 0U;
                const auto [bFound, vecData] = Get(15, 2048);
                const bool bWhole = std::count(vecData.begin(), vecData.end(), vecData[0]) == 2048;
                vecTorn[uiThread] += bPut && bFound && bWhole ? 0U : 1U;
            }
        });
    }
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
    EXPECT_EQ(vecTorn, std::vector<u32>(4, 0U));
    EXPECT_EQ(Get(15, 2048), std::make_pair(true, BYTES(2048, 49)));
}

TEST_F(Database, OpeningAgainIsCheap)
{
    const std::clock_t iBegin = std::clock(); // of this process: a busy machine does not count
    for (u32 i = 0; i < 2000U; ++i) {
        ASSERT_EQ(DB_Open(), m_pDb);
    }
    const double dSeconds = static_cast<double>(std::clock() - iBegin) / CLOCKS_PER_SEC;
    EXPECT_LT(dSeconds, 2.0); // a real opening each time would take far longer
}

class DatabasePlace : public controller::ContractTest
{};

TEST_F(DatabasePlace, IsMadeByTheFirstOpening)
{
    void *pDb = DB_Open();
    ASSERT_NE(pDb, nullptr);
    u8 ucData = 0;
    EXPECT_NE(DB_Get(pDb, 1, 1, &ucData), 0U);
    EXPECT_EQ(controller::Messages(), std::vector<std::string>());
}

TEST_F(DatabasePlace, ThatCannotBeMadeGivesNoHandle)
{
    controller::SpoilDatabasePlace();
    EXPECT_EQ(DB_Open(), nullptr);
    EXPECT_EQ(controller::Messages().size(), 1U);
    EXPECT_EQ(DB_Open(), nullptr);
}

} // namespace
