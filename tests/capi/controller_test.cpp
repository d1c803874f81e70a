// SPDX-License-Identifier: Apache-2.0
// Handles of controllers: a worker each, which answers, dies and is replaced.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "bmcfru_tool.h"

namespace {

class CapiController : public testing::Test
{
  protected:
    void SetUp() override
    {
        char acRoot[] = "/tmp/bmcfru-capi-XXXXXX";
        ASSERT_NE(mkdtemp(acRoot), nullptr);
        m_strRoot = acRoot;
        BMCFRU_TOOL_ANSWER_S *pstWhy = nullptr;
        m_pstController = BMCFRU_TOOL_Open(acRoot, "test", 100U, 0U, &pstWhy);
        EXPECT_NE(m_pstController, nullptr) << BMCFRU_TOOL_Json(pstWhy);
        BMCFRU_TOOL_FreeAnswer(pstWhy);
    }
    void TearDown() override
    {
        BMCFRU_TOOL_Close(m_pstController);
        (void)rmdir(m_strRoot.c_str());
    }
    // The exit code and the JSON, in one text.
    std::string Call(const char *pcCall, const char *pcArguments)
    {
        BMCFRU_TOOL_ANSWER_S *pstAnswer = BMCFRU_TOOL_Call(m_pstController, pcCall, pcArguments, nullptr, 0U);
        const std::string strText =
            std::to_string(BMCFRU_TOOL_ExitCode(pstAnswer)) + " " + BMCFRU_TOOL_Json(pstAnswer);
        BMCFRU_TOOL_FreeAnswer(pstAnswer);
        return strText;
    }

    std::string m_strRoot;
    BMCFRU_TOOL_CONTROLLER_S *m_pstController = nullptr;
};

} // namespace

TEST_F(CapiController, TheCatalogueNeedsNoController)
{
    const std::string strText = Call("labelList", nullptr);
    EXPECT_EQ(strText.compare(0, 13, "0 {\"labels\":["), 0) << strText.substr(0, 200);
}

TEST_F(CapiController, WhatThereIsNotIsToldInItsClass)
{
    EXPECT_EQ(Call("list", "{}").compare(0, 46, "4 {\"error\":{\"code\":\"not-found\",\"exitCode\":4,\"m"),
              0);
    EXPECT_EQ(Call("lst", "{}").compare(0, 2, "2 "), 0);
    EXPECT_EQ(Call("show", "{\"devise\":\"psu1\"}").compare(0, 2, "3 "), 0);
    EXPECT_EQ(Call("show", "{").compare(0, 2, "3 "), 0);
    EXPECT_EQ(Call("show", "{}").compare(0, 2, "3 "), 0);
}

TEST_F(CapiController, AWorkerThatIsKilledCostsOneCall)
{
    const int iWorker = BMCFRU_TOOL_WorkerPid(m_pstController);
    ASSERT_GT(iWorker, 0);
    ASSERT_EQ(kill(iWorker, SIGKILL), 0);
    const std::string strText = Call("labelList", nullptr);
    EXPECT_EQ(strText.compare(0, 2, "1 "), 0);
    EXPECT_NE(strText.find("signal 9"), std::string::npos) << strText;
    EXPECT_EQ(Call("labelList", nullptr).compare(0, 2, "0 "), 0);
    EXPECT_NE(BMCFRU_TOOL_WorkerPid(m_pstController), iWorker);
}

TEST_F(CapiController, TheWorkerIsGoneBehindClose)
{
    const int iWorker = BMCFRU_TOOL_WorkerPid(m_pstController);
    BMCFRU_TOOL_Close(m_pstController);
    m_pstController = nullptr;
    EXPECT_NE(kill(iWorker, 0), 0);
}
