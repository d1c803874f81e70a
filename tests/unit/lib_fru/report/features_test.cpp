// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

TEST(FeatureList, AnswerWithoutItemsPrintsNothing)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_GetFeatureInfoList(), FRU_OK);
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(), (std::vector<std::string>{"MRPC 29/3 len=0 timeout=2000 -> 0", "MRPC_MsgFree"}));
    ASSERT_EQ(fake::RpcRequests().size(), 1U);
    EXPECT_TRUE(fake::RpcRequests()[0].bWantsAnswer);
}

TEST(FeatureList, EachItemGivesItsSentenceWithoutALineEnd)
{
    fake::Reset();
    fake::SetRpcAnswer(29, 3, 0, {"success", "Success", "", "success ", "success"});
    EXPECT_EQ(LIB_FRU_GetFeatureInfoList(), FRU_OK);
    EXPECT_EQ(
        fake::TakeStdout(),
        "Get fru feature info list successfully."
        "Get fru feature info list failed!Get fru feature info list failed!Get fru feature info list failed!"
        "Get fru feature info list successfully.");
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls("MRPC_MsgFree"), std::vector<std::string>{"MRPC_MsgFree"});
}

TEST(FeatureList, FailureIsPrintedNotLogged)
{
    fake::Reset();
    fake::SetRpcAnswer(29, 3, 0x1234U, {"success"});
    EXPECT_EQ(LIB_FRU_GetFeatureInfoList(), FRU_ERR_FAILED);
    EXPECT_EQ(fake::TakeStdout(), "Fail to get fru feature info list, Ret:0x1234.");
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(),
              (std::vector<std::string>{"MRPC 29/3 len=0 timeout=2000 -> 0x1234", "MRPC_MsgFree null"}));
}

TEST(FeatureUpdate, NullIsReported)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_UpdateFeatureInfo(nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "LIB_FRU_UpdateFeatureInfo", "pstUpdateFRUFeatureInfo")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(FeatureUpdate, PassesTheBlockWhole)
{
    fake::Reset();
    FRU_FEATURE_UPDATE_S stUpdate = {};
    for (u32 i = 0; i < sizeof(stUpdate.aucData); ++i) {
        stUpdate.aucData[i] = static_cast<u8>(i * 7U);
    }
    EXPECT_EQ(LIB_FRU_UpdateFeatureInfo(&stUpdate), FRU_OK);
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls(), std::vector<std::string>{"MRPC 29/4 len=1334 timeout=10000 -> 0"});
    ASSERT_EQ(fake::RpcRequests().size(), 1U);
    EXPECT_FALSE(fake::RpcRequests()[0].bWantsAnswer);
    ASSERT_EQ(fake::RpcRequests()[0].vecRequest.size(), 1334U);
    EXPECT_EQ(memcmp(fake::RpcRequests()[0].vecRequest.data(), &stUpdate, 1334), 0);
}

TEST(FeatureUpdate, FailureIsReported)
{
    fake::Reset();
    fake::SetRpcAnswer(29, 4, 0xBEEFU);
    const FRU_FEATURE_UPDATE_S stUpdate = {};
    EXPECT_EQ(LIB_FRU_UpdateFeatureInfo(&stUpdate), LIB_FRU_ERR_FEATURE);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"5/4 lib_fru.c: Fail to update fru feature info! Ret:0xbeef."});
    EXPECT_EQ(fake::TakeStdout(), "");
}

} // namespace
