// SPDX-License-Identifier: Apache-2.0
// The desk's own: where diagnostic messages go.
#include <atomic>
#include <thread>

#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_ini.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
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

// A message of every part of the platform, each by a call that fails.
const std::vector<std::function<void()>> g_vecComplaints = {
    [] {
        u8 ucByte = 0;
        (void)ReadWriteEEPROM(1, "none", &ucByte, 0, 1, BMC_EEPROM_READ);
    },
    [] {
        u8 ucByte = 0;
        (void)ReadWriteEEPROM(1, "faulty", &ucByte, 0, 1, BMC_EEPROM_WRITE);
    },
    [] { (void)BRIDGE_IniLoadFile("/conf/none.ini"); },
    [] { (void)BRIDGE_IniLoadFile("/conf/bad.ini"); },
    [] { (void)MRPC_Call(1, 2, 0, nullptr, 0, nullptr); },
    [] { (void)BMC_Mkdir("/file/below"); },
    [] { (void)BMC_Mkdir("/../outside"); },
    [] { (void)BMC_CopyFileWithAllMode("/none", "/copy"); },
    [] { (void)OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12); }, // var/log is a file here
    [] {                                                              // too large a record
        const controller::BYTES vecData(65U << 20U);
        (void)DB_PutInternal(DB_Open(), 2, 65U << 20U, vecData.data(), "diag_test.cpp", __LINE__);
    },
};

TEST_F(Diag, NoMessageIsSaidUnderALock)
{
    controller::LayChip(1, "chip", controller::BYTES(64, 0));
    controller::LayChip(1, "faulty", controller::BYTES(64, 0));
    controller::WriteFile("/eeprom/faulty.fault", "absent");
    controller::WriteFile("/conf/bad.ini", "no ini at all\n");
    controller::WriteFile("/conf/good.ini", "[s]\nk = v\n");
    controller::WriteFile("/file", "x");
    controller::WriteFile("/var/log", "x");
    for (size_t i = 0; i < g_vecComplaints.size(); ++i) {
        g_iHanging = 0;
        g_bLetGo = false;
        BMCHOST_SetDiagSink(Hanging, nullptr);
        std::thread hung(g_vecComplaints[i]);
        while (g_iHanging == 0) {
            controller::Pause(1000);
        }
        controller::BYTES vecData(64, static_cast<u8>(i + 1U));
        EXPECT_EQ(ReadWriteEEPROM(1, "chip", vecData.data(), 0, 64, BMC_EEPROM_WRITE), 64) << i;
        EXPECT_EQ(DB_PutInternal(DB_Open(), 1, 64, vecData.data(), "diag_test.cpp", __LINE__), 0U) << i;
        void *hpd = BRIDGE_IniLoadFile("/conf/good.ini");
        EXPECT_NE(hpd, nullptr) << i;
        BRIDGE_IniCloseFile(hpd);
        EXPECT_EQ(BMCHOST_SetRoot(BMCHOST_GetRoot()), 0U) << i;
        EXPECT_EQ(controller::Await(controller::Spawn([] { return DB_Open() != nullptr ? 7 : 1; })), 7) << i;
        g_bLetGo = true;
        hung.join();
    }
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
