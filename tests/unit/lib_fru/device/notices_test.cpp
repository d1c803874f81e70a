// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

TEST(Event, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(FRU_UpdateEventWithStruct(nullptr), FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "FRU_UpdateEventWithStruct", "pstUpdateEvent")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(Event, PassesItsSixteenBytesAndTheResultAsTheyStand)
{
    for (const u32 uiResult : {0U, 1U, 0x81000001U, 0xFFFFFFFFU}) {
        fake::Reset();
        fake::SetRpcAnswer(630, 0, uiResult);
        FRU_EVENT_S stEvent = {};
        stEvent.uiKind = FRU_EVENT_KIND_LABEL;
        stEvent.ucComponentType = 0x30;
        stEvent.ucInstance = 2;
        stEvent.uiLabelID = 21;
        EXPECT_EQ(FRU_UpdateEventWithStruct(&stEvent), uiResult);
        EXPECT_TRUE(fake::Messages().empty());
        ASSERT_EQ(fake::RpcRequests().size(), 1U);
        EXPECT_EQ(fake::RpcRequests()[0].uiService, 630U);
        EXPECT_EQ(fake::RpcRequests()[0].uiMethod, 0U);
        EXPECT_EQ(fake::RpcRequests()[0].uiTimeoutMs, 0U);
        EXPECT_FALSE(fake::RpcRequests()[0].bWantsAnswer);
        EXPECT_EQ(fake::RpcRequests()[0].vecRequest,
                  (fake::BYTES{3, 0, 0, 0, 0x30, 2, 0, 0, 21, 0, 0, 0, 0, 0, 0, 0}));
    }
}

} // namespace
