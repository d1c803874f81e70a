// SPDX-License-Identifier: Apache-2.0
// The desk's own: where diagnostic messages go.
#include <atomic>
#include <thread>

#include "bmc_eeprom.h"
#include "bmc_support.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

std::vector<std::string> g_vecSeen;

void Sink(const BMCHOST_DIAG_S *pstDiag, void *pContext)
{
    g_vecSeen.push_back(std::to_string(pstDiag->uiModule) + " " + std::to_string(pstDiag->uiCategory) + " " +
                        std::to_string(pstDiag->uiSeverity) + " " + std::to_string(pstDiag->uiLine) + " " +
                        pstDiag->pcFile + " " + pstDiag->pcFormat + " " + pstDiag->pcText + " " +
                        static_cast<const char *>(pContext));
}

class Diag : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        g_vecSeen.clear();
    }

    int m_iStatus = -1;
};

TEST_F(Diag, ASinkGetsEverythingThatWasSaid)
{
    BMCHOST_SetDiagSink(Sink, const_cast<char *>("context"));
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 77, "lib_fru.c", "ID:%#x", 18U);
    EXPECT_EQ(g_vecSeen, std::vector<std::string>{"24 5 4 77 lib_fru.c ID:%#x ID:0x12 context"});
}

TEST_F(Diag, WithoutASinkMessagesGoNowhere)
{
    BMCHOST_SetDiagSink(Sink, const_cast<char *>("context"));
    BMCHOST_SetDiagSink(nullptr, nullptr);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 77, "lib_fru.c", "text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(g_vecSeen.empty());
}

void Talkative(const BMCHOST_DIAG_S *pstDiag, void *pContext)
{
    Sink(pstDiag, pContext);
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 78, "lib_fru.c", "from the sink");
    BMCHOST_SetDiagSink(Sink, pContext);
}

TEST_F(Diag, WhatASinkLogsIsDroppedAndItMayReplaceItself)
{
    BMCHOST_SetDiagSink(Talkative, const_cast<char *>("c"));
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 77, "lib_fru.c", "one");
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 77, "lib_fru.c", "two");
    EXPECT_EQ(g_vecSeen,
              (std::vector<std::string>{"24 5 4 77 lib_fru.c one one c", "24 5 4 77 lib_fru.c two two c"}));
}

TEST_F(Diag, AChildForkedFromASinkLogsOn)
{
    BMCHOST_SetDiagSink(
        [](const BMCHOST_DIAG_S *, void *pContext) {
            const pid_t iPid = controller::Spawn([] {
                BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 78, "lib_fru.c", "dropped, but no standstill");
                return 3;
            });
            *static_cast<int *>(pContext) = controller::Await(iPid);
        },
        &m_iStatus);
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 77, "lib_fru.c", "one");
    EXPECT_EQ(m_iStatus, 3);
}

std::atomic<int> g_iHanging;
std::atomic<bool> g_bLetGo;

// Hangs on the first message until it is let go.
void Hanging(const BMCHOST_DIAG_S *, void *)
{
    if (++g_iHanging == 1) {
        while (!g_bLetGo) {
            controller::Pause(1000);
        }
    }
}

TEST_F(Diag, ASinkThatHangsHoldsUpItsOwnThreadOnly)
{
    g_iHanging = 0;
    g_bLetGo = false;
    controller::LayChip(1, "chip", controller::BYTES(64, 0));
    BMCHOST_SetDiagSink(Hanging, nullptr);
    std::thread hung([] { BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 1, "lib_fru.c", "hangs"); });
    while (g_iHanging == 0) {
        controller::Pause(1000);
    }
    BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 2, "lib_fru.c", "goes on");
    EXPECT_EQ(g_iHanging, 2);
    controller::BYTES vecData(64, 1);
    EXPECT_EQ(ReadWriteEEPROM(1, "chip", vecData.data(), 0, 64, BMC_EEPROM_WRITE), 64);
    const pid_t iPid = controller::Spawn([] { // nor does it hold up a child, which may take another sink
        BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 2, "lib_fru.c", "in the child");
        BMCHOST_SetDiagSink(nullptr, nullptr);
        return 7;
    });
    EXPECT_EQ(controller::Await(iPid), 7);
    g_bLetGo = true;
    hung.join();
}

TEST_F(Diag, AFormerSinkHasEndedWhenAnotherIsSet)
{
    g_iHanging = 0;
    g_bLetGo = false;
    BMCHOST_SetDiagSink(Hanging, nullptr);
    std::atomic<bool> bEnded = false;
    std::thread hung([&] {
        BMC_DiagLogOut(24, 5, BMC_DIAG_WARNING, 1, "lib_fru.c", "hangs");
        bEnded = true;
    });
    while (g_iHanging == 0) {
        controller::Pause(1000);
    }
    std::atomic<bool> bSet = false;
    std::thread setter([&] {
        BMCHOST_SetDiagSink(nullptr, nullptr);
        bSet = true;
    });
    controller::Pause(50000);
    EXPECT_FALSE(bSet);
    g_bLetGo = true;
    setter.join();
    hung.join();
    EXPECT_TRUE(bEnded);
}

TEST_F(Diag, TheSyslogSinkTakesAnySeverity)
{
    BMCHOST_SetDiagSink(BMCHOST_DiagToSyslog, nullptr);
    BMC_DiagLogOut(24, 5, BMC_DIAG_DEBUG, 77, "lib_fru.c", "%s", "to syslog %s");
    BMC_DiagLogOut(24, 5, 99, 77, "lib_fru.c", "text");
}

} // namespace
