// SPDX-License-Identifier: Apache-2.0
#include "sdr_repository.h"

#include <ctime>
#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "test_root.h"

namespace {

using fake::BYTES;

constexpr u32 ROOM = 36U;
constexpr u32 KEY_SDR = 0x10810100U;
constexpr u8 INFO = 0x20U;
constexpr u8 ALLOCATION = 0x21U;
constexpr u8 RESERVE = 0x22U;
constexpr u8 GET = 0x23U;

class SdrRepository : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        AddDevice(1U, "board", 256U, 0U);
        AddDevice(2U, "psu1", 256U, 0U);
        PutTable({{1U, 0x00U, 0U, 5U}, {2U, 0x03U, 1U, 7U}});
    }

    BYTES Ask(u8 ucCommand, const BYTES &vecRequest = {}, u32 uiRoom = ROOM)
    {
        const std::unique_ptr<u8[]> upReq(new u8[vecRequest.size()]);
        const std::unique_ptr<u8[]> upRes(new u8[uiRoom]);
        std::copy(vecRequest.begin(), vecRequest.end(), upReq.get());
        const u32 uiResLen = m_stRepository.Answer(ucCommand, upReq.get(),
                                                   static_cast<u32>(vecRequest.size()), uiRoom, upRes.get());
        EXPECT_LE(uiResLen, uiRoom);
        return BYTES(upRes.get(), upRes.get() + std::min(uiResLen, uiRoom));
    }

    SDR_REPOSITORY m_stRepository;
};

std::vector<u16> RecordIds()
{
    std::vector<u16> vecIds;
    for (const SDR_S &stSdr : ListSdrs()) {
        EXPECT_EQ(stSdr.vecBytes[0] | stSdr.vecBytes[1] << 8, stSdr.usRecordID);
        EXPECT_EQ(stSdr.vecBytes[4] + 5U, stSdr.vecBytes.size());
        vecIds.push_back(stSdr.usRecordID);
    }
    return vecIds;
}

TEST_F(SdrRepository, LocatorIsMadeFromTheDeviceRecord)
{
    const std::vector<SDR_S> vecSdrs = ListSdrs();
    ASSERT_EQ(vecSdrs.size(), 2U);
    EXPECT_EQ(vecSdrs[0].vecBytes, (BYTES{5, 0, 0x51, 0x11, 16,   0x20, 1,   0x80, 0,   0,  0x10,
                                          0, 7, 0,    0,    0xC5, 'b',  'o', 'a',  'r', 'd'}));
    EXPECT_EQ(vecSdrs[1].vecBytes,
              (BYTES{7, 0, 0x51, 0x11, 15, 0x20, 2, 0x80, 0, 0, 0x10, 0, 0, 1, 0, 0xC4, 'p', 's', 'u', '1'}));
}

TEST_F(SdrRepository, NameIsAlwaysAPrintableIdString)
{
    AddDevice(1U, "", 256U, 0U);
    AddDevice(2U, "x", 256U, 0U);
    AddDevice(3U, "sixteen letters!", 256U, 0U);
    AddDevice(4U, "a\x01\xFFz", 256U, 0U);
    PutTable({{1U, 0U, 0U, 1U}, {2U, 0U, 0U, 2U}, {3U, 0U, 0U, 3U}, {4U, 0U, 0U, 4U}});
    std::vector<std::string> vecNames;
    for (const SDR_S &stSdr : ListSdrs()) {
        EXPECT_EQ(stSdr.vecBytes[15], 0xC0U | (stSdr.vecBytes.size() - 16U));
        vecNames.emplace_back(stSdr.vecBytes.begin() + 16, stSdr.vecBytes.end());
    }
    EXPECT_EQ(vecNames, (std::vector<std::string>{"FRU 1", "x ", "sixteen letters!", "a??z"}));
}

TEST_F(SdrRepository, EachDeviceIsAnEntityOfItsOwn)
{
    AddDevice(3U, "card", 256U, 0U);
    AddDevice(4U, "fan", 256U, 0U);
    AddDevice(5U, "far", 256U, 0U);
    PutTable({{1U, 0x00U, 0U, 1U},
              {2U, 0x03U, 1U, 2U},
              {3U, 0x30U, 0U, 3U},
              {4U, 0x04U, 1U, 4U},
              {5U, 0x05U, 200U, 5U}});
    std::vector<std::pair<u32, u32>> vecEntities;
    for (const SDR_S &stSdr : ListSdrs()) {
        vecEntities.emplace_back(stSdr.vecBytes[12], stSdr.vecBytes[13]);
    }
    EXPECT_EQ(vecEntities,
              (std::vector<std::pair<u32, u32>>{{7U, 0U}, {0U, 1U}, {6U, 0U}, {0U, 0U}, {0U, 2U}}));
}

TEST_F(SdrRepository, TheTimeIsThatOfTheStamps)
{
    const auto Number = [](const BYTES &vecBytes, size_t uiAt) {
        return static_cast<u32>(vecBytes[uiAt]) | static_cast<u32>(vecBytes[uiAt + 1U]) << 8U |
               static_cast<u32>(vecBytes[uiAt + 2U]) << 16U | static_cast<u32>(vecBytes[uiAt + 3U]) << 24U;
    };
    const u32 uiBefore = static_cast<u32>(time(nullptr));
    const u32 uiStamp = Number(Ask(INFO), 6U);
    const BYTES vecTime = Ask(0x28U);
    ASSERT_EQ(vecTime.size(), 5U);
    EXPECT_EQ(vecTime[0], 0U);
    EXPECT_GE(Number(vecTime, 1U), uiStamp);
    EXPECT_GE(Number(vecTime, 1U), uiBefore);
    EXPECT_LE(Number(vecTime, 1U), uiBefore + 60U);
    EXPECT_EQ(Ask(0x29U, {0, 0, 0, 0}), BYTES{0xC1U});
}

TEST_F(SdrRepository, LocatorInTheCacheIsServedAsItIs)
{
    BYTES vecSdr = {0x34, 0x12, 0x51, 0x11, 14, 0x20, 2,   0x80, 0,  0,
                    0x10, 0,    0x0A, 3,    0,  0xC3, 'P', 'S',  'U'};
    vecSdr.resize(32U, 0xEEU);
    fake::Db()[KEY_SDR | 2U] = vecSdr;
    BYTES vecExpected(vecSdr.begin(), vecSdr.begin() + 19);
    vecExpected[0] = 7U; // the table says under which record ID
    vecExpected[1] = 0U;
    EXPECT_EQ(ListSdrs()[1].vecBytes, vecExpected);
}

TEST_F(SdrRepository, AnythingElseInTheCacheIsReplaced)
{
    const BYTES vecMade = ListSdrs()[1].vecBytes;
    BYTES vecGood = {7, 0, 0x51, 0x11, 14, 0x20, 2, 0x80, 0, 0, 0x10, 0, 0x0A, 3, 0, 0xC3, 'P', 'S', 'U'};
    vecGood.resize(32U);
    // Version, type, too long, too short for its name, another device.
    const std::vector<std::pair<size_t, u8>> vecFaults = {
        {2U, 0x50U}, {3U, 0x12U}, {4U, 28U}, {4U, 13U}, {6U, 1U}};
    for (const auto &[uiIndex, ucValue] : vecFaults) {
        fake::Db()[KEY_SDR | 2U] = vecGood;
        fake::Db()[KEY_SDR | 2U][uiIndex] = ucValue;
        EXPECT_EQ(ListSdrs()[1].vecBytes, vecMade) << uiIndex;
    }
    fake::Db()[KEY_SDR | 2U] = BYTES(32U, 0U);
    EXPECT_EQ(ListSdrs()[1].vecBytes, vecMade);
}

TEST_F(SdrRepository, RecordIdsAreTheTablesWhereTheyCanBe)
{
    AddDevice(3U, "c", 256U, 0U);
    AddDevice(4U, "d", 256U, 0U);
    AddDevice(5U, "e", 256U, 0U);
    PutTable({{1U, 0U, 0U, 0U}, {2U, 0U, 1U, 2U}, {3U, 0U, 2U, 0xFFFFU}, {4U, 0U, 3U, 2U}, {5U, 0U, 4U, 1U}});
    EXPECT_EQ(RecordIds(), (std::vector<u16>{3U, 2U, 4U, 5U, 1U}));
}

TEST_F(SdrRepository, EntryWithoutADeviceRecordIsLeftOut)
{
    PutTable({{9U, 0U, 0U, 1U}, {2U, 0x03U, 1U, 7U}});
    EXPECT_EQ(RecordIds(), std::vector<u16>{7U});
}

TEST_F(SdrRepository, CountBeyondTheTableIsCut)
{
    fake::Db()[0x108105FFU][0] = 255U;
    EXPECT_EQ(ListSdrs().size(), 2U); // behind the two, entries of device 0, which has no record
}

TEST_F(SdrRepository, NoTableIsAnEmptyRepository)
{
    fake::Db().erase(0x108105FFU);
    const BYTES vecInfo = Ask(INFO);
    ASSERT_EQ(vecInfo.size(), 15U);
    EXPECT_EQ(vecInfo[2], 0U);
    EXPECT_EQ(Ask(GET, {0, 0, 0, 0, 0, 0xFF}), BYTES{0xCBU});
    EXPECT_EQ(Ask(GET, {0, 0, 0xFF, 0xFF, 0, 0xFF}), BYTES{0xCBU});
}

TEST_F(SdrRepository, InfoTellsCountAndWhatIsSupported)
{
    const BYTES vecInfo = Ask(INFO);
    ASSERT_EQ(vecInfo.size(), 15U);
    EXPECT_EQ(BYTES(vecInfo.begin(), vecInfo.begin() + 6), (BYTES{0x00, 0x51, 2, 0, 0, 0}));
    EXPECT_EQ(vecInfo[14], 0x03U);
    EXPECT_EQ(Ask(ALLOCATION), (BYTES{0x00, 2, 0, 32, 0, 0, 0, 0, 0, 1}));
}

TEST_F(SdrRepository, WalkVisitsEveryRecordAndEnds)
{
    const std::vector<SDR_S> vecSdrs = ListSdrs();
    BYTES vecFirst = {0x00, 7, 0};
    vecFirst.insert(vecFirst.end(), vecSdrs[0].vecBytes.begin(), vecSdrs[0].vecBytes.end());
    EXPECT_EQ(Ask(GET, {0, 0, 0, 0, 0, 0xFF}), vecFirst);
    EXPECT_EQ(Ask(GET, {0, 0, 5, 0, 0, 0xFF}), vecFirst);
    BYTES vecLast = {0x00, 0xFF, 0xFF};
    vecLast.insert(vecLast.end(), vecSdrs[1].vecBytes.begin(), vecSdrs[1].vecBytes.end());
    EXPECT_EQ(Ask(GET, {0, 0, 7, 0, 0, 0xFF}), vecLast);
    EXPECT_EQ(Ask(GET, {0, 0, 0xFF, 0xFF, 0, 0xFF}), vecLast);
    EXPECT_EQ(Ask(GET, {0, 0, 6, 0, 0, 0xFF}), BYTES{0xCBU});
}

TEST_F(SdrRepository, PiecesNeedTheReservation)
{
    EXPECT_EQ(Ask(GET, {0, 0, 5, 0, 5, 4}), BYTES{0xC5U});
    const BYTES vecReservation = Ask(RESERVE);
    ASSERT_EQ(vecReservation, (BYTES{0x00, 1, 0}));
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 5, 4}), (BYTES{0x00, 7, 0, 0x20, 1, 0x80, 0}));
    EXPECT_EQ(Ask(GET, {2, 0, 5, 0, 5, 4}), BYTES{0xC5U});
    EXPECT_EQ(Ask(RESERVE), (BYTES{0x00, 2, 0}));
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 5, 4}), BYTES{0xC5U});
}

TEST_F(SdrRepository, ChangeCancelsTheReservationAndMovesTheTimeStamp)
{
    const BYTES vecBefore = Ask(INFO);
    Ask(RESERVE);
    EXPECT_EQ(Ask(INFO), vecBefore);
    AddDevice(2U, "psu2", 256U, 0U);
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 5, 4}), BYTES{0xC5U});
    const BYTES vecAfter = Ask(INFO);
    EXPECT_NE(vecAfter, vecBefore);
    EXPECT_EQ(vecAfter[2], 2U);
}

TEST_F(SdrRepository, RangesAndRoomAreChecked)
{
    Ask(RESERVE);
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 20, 1}), (BYTES{0x00, 7, 0, 'd'}));
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 20, 2}), BYTES{0xC9U});
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 21, 1}), BYTES{0xC9U});
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 0, 0xFF}, 23U), BYTES{0xCAU});
    EXPECT_EQ(Ask(GET, {1, 0, 5, 0, 0, 0xFF}, 24U).size(), 24U);
    EXPECT_EQ(Ask(INFO, {}, 14U), BYTES{0xCAU});
    EXPECT_EQ(Ask(INFO, {}, 0U), BYTES{});
}

TEST_F(SdrRepository, ShortAndWritingRequestsAreRefused)
{
    for (size_t uiLength = 0U; uiLength < 6U; ++uiLength) {
        EXPECT_EQ(Ask(GET, BYTES(uiLength, 0U)), BYTES{0xC7U}) << uiLength;
    }
    for (const u8 ucCommand : BYTES{0x24U, 0x25U, 0x26U, 0x27U}) {
        EXPECT_EQ(Ask(ucCommand, BYTES(8U, 0U)), BYTES{0xC1U});
    }
}

} // namespace
