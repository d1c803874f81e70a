// SPDX-License-Identifier: Apache-2.0
// Capability store, RPC and operation log.
#include <cstring>

#include "bmc_capability.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "controller.h"

namespace {

class Capability : public controller::ContractTest
{};

TEST_F(Capability, GivesTheText)
{
    controller::SetCapability("SPECS", "SoftwareName", "Desk Manager");
    char acOut[64] = "x";
    EXPECT_EQ(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", sizeof(acOut), acOut), 0U);
    EXPECT_STREQ(acOut, "Desk Manager");
}

TEST_F(Capability, CutsTheTextToTheBuffer)
{
    controller::SetCapability("SPECS", "SoftwareName", "Desk Manager");
    char acOut[6] = "xxxxx";
    EXPECT_EQ(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", 5, acOut), 0U);
    EXPECT_STREQ(acOut, "Desk");
    EXPECT_EQ(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", 1, acOut), 0U);
    EXPECT_STREQ(acOut, "");
}

TEST_F(Capability, MissingOnesFailAndTouchNothing)
{
    char acOut[8] = "kept";
    EXPECT_NE(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", 8, acOut), 0U); // no store
    controller::SetCapability("SPECS", "SoftwareName", "Name");
    EXPECT_NE(CAP_GetCommonCapabilityWithName("SPECS", "Other", 8, acOut), 0U);
    EXPECT_NE(CAP_GetCommonCapabilityWithName("HostName", "SoftwareName", 8, acOut), 0U);
    EXPECT_NE(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", 0, acOut), 0U);
    EXPECT_NE(CAP_GetCommonCapabilityWithName(nullptr, "SoftwareName", 8, acOut), 0U);
    EXPECT_NE(CAP_GetCommonCapabilityWithName("SPECS", nullptr, 8, acOut), 0U);
    EXPECT_NE(CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", 8, nullptr), 0U);
    EXPECT_STREQ(acOut, "kept");
}

class Rpc : public controller::ContractTest
{};

// A pointer that an answer must replace.
MRPC_MSG_S *Stale()
{
    static MRPC_MSG_S stStale = {0, nullptr};
    return &stStale;
}

TEST_F(Rpc, ListsTheFeatures)
{
    controller::SetFeatureList({"success", "no such feature", "success"});
    MRPC_MSG_S *pstRes = Stale();
    ASSERT_EQ(MRPC_Call(29, 3, 0, nullptr, 2000, &pstRes), 0U);
    ASSERT_NE(pstRes, nullptr);
    ASSERT_EQ(pstRes->uiCount, 3U);
    EXPECT_STREQ(pstRes->ppcText[0], "success");
    EXPECT_STREQ(pstRes->ppcText[1], "no such feature");
    EXPECT_STREQ(pstRes->ppcText[2], "success");
    MRPC_MsgFree(pstRes);
    EXPECT_EQ(MRPC_Call(29, 3, 0, nullptr, 2000, nullptr), 0U);
}

TEST_F(Rpc, AnEmptyFeatureListIsAnAnswerWithoutTexts)
{
    for (const bool bSet : {false, true}) {
        if (bSet) {
            controller::SetFeatureList({});
        }
        MRPC_MSG_S *pstRes = Stale();
        ASSERT_EQ(MRPC_Call(29, 3, 0, nullptr, 2000, &pstRes), 0U);
        ASSERT_NE(pstRes, nullptr);
        EXPECT_EQ(pstRes->uiCount, 0U);
        MRPC_MsgFree(pstRes);
    }
}

TEST_F(Rpc, TakesTheCallsOfTheFruLibrary)
{
    const u8 aucRequest[1334] = {};
    const std::pair<std::pair<u32, u32>, u32> astCalls[] = {{{29, 4}, 1334}, {{630, 0}, 16}, {{636, 0}, 184}};
    for (const auto &[stWhere, uiLength] : astCalls) {
        EXPECT_EQ(MRPC_Call(stWhere.first, stWhere.second, uiLength, aucRequest, 0, nullptr), 0U);
        MRPC_MSG_S *pstRes = Stale();
        EXPECT_EQ(MRPC_Call(stWhere.first, stWhere.second, uiLength, aucRequest, 10000, &pstRes), 0U);
        EXPECT_EQ(pstRes, nullptr);
        EXPECT_NE(MRPC_Call(stWhere.first, stWhere.second, uiLength - 1U, aucRequest, 0, nullptr), 0U);
        EXPECT_NE(MRPC_Call(stWhere.first, stWhere.second, uiLength, nullptr, 0, nullptr), 0U);
        EXPECT_NE(MRPC_Call(stWhere.first, stWhere.second, 0, nullptr, 0, nullptr), 0U);
    }
    MRPC_MSG_S *pstRes = Stale();
    EXPECT_EQ(MRPC_Call(29, 5, 0, nullptr, 0, &pstRes), 0U);
    MRPC_MsgFree(pstRes);
}

TEST_F(Rpc, UnknownServicesAndMethodsFailWithoutAnAnswer)
{
    for (const auto &[uiService, uiMethod] :
         {std::pair<u32, u32>{28, 3}, {29, 2}, {29, 6}, {630, 1}, {636, 1}}) {
        MRPC_MSG_S *pstRes = Stale();
        EXPECT_NE(MRPC_Call(uiService, uiMethod, 0, nullptr, 0, &pstRes), 0U);
        EXPECT_EQ(pstRes, nullptr);
        EXPECT_NE(MRPC_Call(uiService, uiMethod, 0, nullptr, 0, nullptr), 0U);
    }
}

TEST_F(Rpc, FreesNothing)
{
    MRPC_MsgFree(nullptr);
}

class OperateLog : public controller::ContractTest
{};

TEST_F(OperateLog, TakesEntries)
{
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 99, "Set FRU successfully, Device ID: 0.", 0, 0, 1, 12), 0U);
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 67, "", 0xFFFFFFFFU, 1, 2, 255), 0U);
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 67, nullptr, 0, 0, 3, 0), 0U);
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 67, "100% \"quoted\"\n\xFF", 0, 0, 4, 0), 0U);
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 67, std::string(511, 'x').c_str(), 0, 0, 5, 12), 0U);
}

} // namespace
