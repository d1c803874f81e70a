// SPDX-License-Identifier: Apache-2.0
#include "fru_requests.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "fake/fake_platform.h"
#include "test_root.h"

namespace {

using fake::BYTES;

constexpr u32 ROOM = 36U; // what ipmi_sim gives

class FruRequests : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        m_strRoot = MakeTestRoot();
        AddDevice(1U, "board", 512U, 0U);
        PutTable({{1U, 0U, 0U, 1U}});
    }
    std::string m_strRoot;
};

// Request and response lie in heap buffers of exact size, so that a byte too far is found.
BYTES Ask(u8 ucCommand, const BYTES &vecRequest, u32 uiRoom = ROOM)
{
    const std::unique_ptr<u8[]> upReq(new u8[vecRequest.size()]);
    const std::unique_ptr<u8[]> upRes(new u8[uiRoom]);
    std::copy(vecRequest.begin(), vecRequest.end(), upReq.get());
    const u32 uiResLen =
        AnswerFruRequest(ucCommand, upReq.get(), static_cast<u32>(vecRequest.size()), uiRoom, upRes.get());
    EXPECT_LE(uiResLen, uiRoom);
    return BYTES(upRes.get(), upRes.get() + std::min(uiResLen, uiRoom));
}

BYTES WriteRequest(u16 usOffset, size_t uiCount)
{
    BYTES vecRequest = {1U, static_cast<u8>(usOffset & 0xFFU), static_cast<u8>(usOffset >> 8U)};
    vecRequest.resize(3U + uiCount, 0x5AU);
    return vecRequest;
}

TEST_F(FruRequests, AreaInfoIsTheHandlersAnswer)
{
    EXPECT_EQ(Ask(0x10U, {1U}), (BYTES{0x00U, 0x00U, 0x02U, 0x00U}));
    EXPECT_EQ(Ask(0x10U, {9U}), BYTES{0xCBU});
}

TEST_F(FruRequests, ReadIsTheHandlersAnswer)
{
    EXPECT_EQ(Ask(0x11U, {1U, 0x10U, 0x00U, 0x03U}), (BYTES{0x00U, 0x03U, 0x10U, 0x11U, 0x12U}));
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x02U, 0x01U}), BYTES{0xCCU});
    EXPECT_EQ(Ask(0x11U, {1U, 0xFFU, 0x01U, 0x02U}), BYTES{0xC9U});
    EXPECT_EQ(Ask(0x11U, {9U, 0x00U, 0x00U, 0x01U}), BYTES{0xCBU});
}

TEST_F(FruRequests, WriteIsTheHandlersAnswer)
{
    EXPECT_EQ(Ask(0x12U, {1U, 0x04U, 0x00U, 0xAAU, 0xBBU}), (BYTES{0x00U, 0x02U}));
    EXPECT_EQ(fake::Eeprom(1U, 1U)[4], 0xAAU);
    EXPECT_EQ(fake::Eeprom(1U, 1U)[5], 0xBBU);
    EXPECT_EQ(fake::Db()[0x10810201U][5], 0xBBU);
    EXPECT_EQ(Ask(0x12U, {9U, 0x00U, 0x00U, 0x01U}), BYTES{0xCBU});
    EXPECT_EQ(Ask(0x12U, {1U, 0x00U, 0x02U, 0x01U}), BYTES{0xCCU});
}

TEST_F(FruRequests, DeviceThatDoesNotAnswerIs81)
{
    fake::Arm({fake::KIND_E::EEPROM, 1U, true});
    EXPECT_EQ(Ask(0x12U, {1U, 0x00U, 0x00U, 0x01U}), BYTES{0x81U});
    fake::Db().erase(0x10810201U);
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, 0x01U}), BYTES{0x81U});
    fake::Disarm();
}

TEST_F(FruRequests, ShortRequestNeverReachesAHandler)
{
    const std::vector<std::pair<u8, size_t>> vecNeeded = {{0x10U, 1U}, {0x11U, 4U}, {0x12U, 4U}};
    for (const auto &[ucCommand, uiNeeded] : vecNeeded) {
        for (size_t uiLength = 0U; uiLength < uiNeeded; ++uiLength) {
            EXPECT_EQ(Ask(ucCommand, BYTES(uiLength, 1U)), BYTES{0xC7U}) << int(ucCommand) << " " << uiLength;
        }
    }
    EXPECT_TRUE(fake::Calls().empty());
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(FruRequests, BytesBehindTheCommandsOwnAreIgnored)
{
    EXPECT_EQ(Ask(0x10U, {1U, 0xFFU, 0xFFU}), (BYTES{0x00U, 0x00U, 0x02U, 0x00U}));
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, 0x01U, 0xFFU}), (BYTES{0x00U, 0x01U, 0x00U}));
}

TEST_F(FruRequests, ReadThatDoesNotFitTheTransportIsCA)
{
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, ROOM - 2U}).size(), ROOM);
    fake::Reset();
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, ROOM - 1U}), BYTES{0xCAU});
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, 0xFFU}), BYTES{0xCAU});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(FruRequests, LargestReadFitsWhereTheTransportHasRoom)
{
    const BYTES vecAnswer = Ask(0x11U, {1U, 0x00U, 0x00U, 0xFFU}, 257U);
    ASSERT_EQ(vecAnswer.size(), 257U);
    EXPECT_EQ(vecAnswer[256], 0xFEU);
}

TEST_F(FruRequests, NarrowTransportsAreRefusedOrGetNothing)
{
    EXPECT_EQ(Ask(0x10U, {1U}, 3U), BYTES{0xCAU});
    EXPECT_EQ(Ask(0x12U, {1U, 0U, 0U, 1U}, 1U), BYTES{0xCAU});
    EXPECT_EQ(Ask(0x11U, {1U, 0U, 0U, 0U}, 1U), BYTES{0xCAU});
    EXPECT_EQ(Ask(0x10U, {1U}, 0U), BYTES{});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(FruRequests, WriteOfMoreThanTheResponseCanCountIsC8)
{
    EXPECT_EQ(Ask(0x12U, WriteRequest(0U, 255U)), (BYTES{0x00U, 0xFFU}));
    const BYTES vecBefore = fake::Eeprom(1U, 1U);
    EXPECT_EQ(Ask(0x12U, WriteRequest(0U, 256U)), BYTES{0xC8U});
    EXPECT_EQ(Ask(0x12U, WriteRequest(0U, 0x10000U)), BYTES{0xC8U}); // its 16-bit count would read as 0
    EXPECT_EQ(fake::Eeprom(1U, 1U), vecBefore);
}

TEST_F(FruRequests, DeviceThatReturnsMoreThanAskedNeverOverrunsTheResponse)
{
    fake::Db()[0x10810401U] = {1U}; // read the chip
    fake::SetEepromResult(1U, 200);
    EXPECT_EQ(Ask(0x11U, {1U, 0x00U, 0x00U, 0x04U}), BYTES{0xCAU});
}

TEST_F(FruRequests, OtherCommandsAreC1)
{
    EXPECT_EQ(Ask(0x13U, {1U}), BYTES{0xC1U});
    EXPECT_EQ(Ask(0x0FU, {}), BYTES{0xC1U});
}

TEST_F(FruRequests, WriteWhileAnotherProgramWritesIsBusyAndChangesNothing)
{
    EXPECT_EQ(Ask(0x12U, {1U, 0U, 0U, 1U}), (BYTES{0x00U, 0x01U}));
    const int iFd = open((m_strRoot + "/var/lock/fructl.lock").c_str(), O_RDWR);
    ASSERT_GE(iFd, 0);
    ASSERT_EQ(flock(iFd, LOCK_EX), 0);
    EXPECT_EQ(Ask(0x12U, {1U, 0U, 0U, 9U}), BYTES{0xC0U});
    EXPECT_EQ(fake::Eeprom(1U, 1U)[0], 1U);
    EXPECT_EQ(Ask(0x11U, {1U, 0U, 0U, 1U}), (BYTES{0x00U, 0x01U, 0x01U})); // reads do not wait
    close(iFd);
    EXPECT_EQ(Ask(0x12U, {1U, 0U, 0U, 9U}), (BYTES{0x00U, 0x01U}));
}

TEST_F(FruRequests, SequenceOfAreaInfoAndWritesIsOneLogEntry)
{
    Ask(0x10U, {1U});
    Ask(0x12U, {1U, 0U, 0U, 1U});
    Ask(0x12U, {1U, 1U, 0U, 1U});
    Ask(0x12U, {1U, 2U, 0U, 1U});
    EXPECT_EQ(fake::Calls("OPERATELOG"),
              std::vector<std::string>{"OPERATELOG 17 99 [Set FRU successfully, Device ID: 1.] 0 0 12 -> 0"});
}

} // namespace
