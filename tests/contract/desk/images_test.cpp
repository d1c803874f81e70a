// SPDX-License-Identifier: Apache-2.0
// The desk's own: EEPROMs as image files.
#include <chrono>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr u8 g_aucLocation[3] = {1, 0xA0, 0};

class Images : public controller::ContractTest
{
  protected:
    static std::string PathOf(u8 ucType, const void *pLocation)
    {
        char acPath[PATH_MAX] = "x";
        if (BMCHOST_GetEepromPath(ucType, pLocation, sizeof(acPath), acPath) != 0U) {
            EXPECT_STREQ(acPath, "");
            return "<refused>";
        }
        return std::string(acPath).substr(std::string(BMCHOST_GetRoot()).size());
    }

    static i32 Read(u32 uiLength)
    {
        BYTES vecBuf(uiLength);
        return ReadWriteEEPROM(9, g_aucLocation, vecBuf.data(), 0, uiLength, BMC_EEPROM_READ);
    }

    static i32 Write(u32 uiOffset, BYTES vecData)
    {
        return ReadWriteEEPROM(9, g_aucLocation, vecData.data(), uiOffset, static_cast<u32>(vecData.size()),
                               BMC_EEPROM_WRITE);
    }
};

TEST_F(Images, AreNamedAfterTheirLocation)
{
    const u8 aucSwitch[3] = {15, 0x50, 2};
    const u8 aucLow[3] = {0, 0x0A, 255};
    EXPECT_EQ(PathOf(9, g_aucLocation), "/eeprom/bus1-addr0xa0.bin");
    EXPECT_EQ(PathOf(15, aucSwitch), "/eeprom/bus15-addr0x50-switch2.bin");
    EXPECT_EQ(PathOf(12, aucLow), "/eeprom/bus0-addr0x0a-switch255.bin");
    EXPECT_EQ(PathOf(8, "baseboard"), "/eeprom/baseboard.bin");
    EXPECT_EQ(PathOf(16, "psu 1.old"), "/eeprom/psu 1.old.bin");
}

TEST_F(Images, NamesThatCouldLeadElsewhereAreRefused)
{
    controller::WriteFile("/secret.bin", "secret");
    controller::WriteFile("/eeprom/.bin", "hidden");
    for (const char *pcName : {"", ".", "..", "../secret", "a/b", "/a", "a\\b", ".hidden", "a\nb", "a\x7F"}) {
        EXPECT_EQ(PathOf(1, pcName), "<refused>") << pcName;
        u8 ucByte = 0;
        EXPECT_LT(ReadWriteEEPROM(1, pcName, &ucByte, 0, 1, BMC_EEPROM_READ), 0) << pcName;
        EXPECT_LT(ReadWriteEEPROM(1, pcName, &ucByte, 0, 1, BMC_EEPROM_WRITE), 0) << pcName;
    }
    EXPECT_EQ(PathOf(9, nullptr), "<refused>");
    EXPECT_EQ(PathOf(1, nullptr), "<refused>");
    EXPECT_LT(ReadWriteEEPROM(1, std::string(300, 'x').c_str(), nullptr, 0, 0, BMC_EEPROM_READ), 0);
    EXPECT_EQ(controller::ReadFile("/secret.bin"), "secret");
}

TEST_F(Images, PathsThatDoNotFitAreRefused)
{
    const std::string strPath = std::string(BMCHOST_GetRoot()) + "/eeprom/bus1-addr0xa0.bin";
    char acPath[PATH_MAX];
    EXPECT_EQ(BMCHOST_GetEepromPath(9, g_aucLocation, strPath.size() + 1U, acPath), 0U);
    EXPECT_EQ(acPath, strPath);
    EXPECT_NE(BMCHOST_GetEepromPath(9, g_aucLocation, strPath.size(), acPath), 0U);
    EXPECT_NE(BMCHOST_GetEepromPath(9, g_aucLocation, 0, acPath), 0U);
    EXPECT_NE(BMCHOST_GetEepromPath(9, g_aucLocation, 10, nullptr), 0U);
}

TEST_F(Images, ThatAreNoRegularFilesAreNoChips)
{
    std::filesystem::create_directories(controller::RealPath("/eeprom/bus1-addr0xa0.bin"));
    EXPECT_LT(Read(1), 0);
    EXPECT_LT(Write(0, BYTES(1, 1)), 0);
    std::filesystem::remove(controller::RealPath("/eeprom/bus1-addr0xa0.bin"));
    ASSERT_EQ(mkfifo(controller::RealPath("/eeprom/bus1-addr0xa0.bin").c_str(), 0644), 0);
    EXPECT_LT(Read(1), 0); // and nobody waits for its other end
    EXPECT_LT(Write(0, BYTES(1, 1)), 0);
}

TEST_F(Images, MayBeLinksToDevicesElsewhere)
{
    controller::WriteFile("/elsewhere", std::string(64, 'e'));
    std::filesystem::create_directories(controller::RealPath("/eeprom"));
    std::filesystem::create_symlink(controller::RealPath("/elsewhere"),
                                    controller::RealPath("/eeprom/bus1-addr0xa0.bin"));
    EXPECT_EQ(Write(0, BYTES(4, 'n')), 4);
    EXPECT_EQ(controller::ReadFile("/elsewhere"), "nnnn" + std::string(60, 'e'));
}

TEST_F(Images, AnEmptyImageIsAChipWithoutBytes)
{
    controller::LayChip(9, g_aucLocation, {});
    EXPECT_EQ(Read(8), 0);
    EXPECT_EQ(Write(0, BYTES(8, 1)), 0);
    EXPECT_TRUE(controller::ChipContent(9, g_aucLocation).empty());
}

std::vector<std::string> g_vecSteps;

void Step(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext)
{
    g_vecSteps.push_back(std::string(pstProgress->pcChip) + " " + std::to_string(pstProgress->uiOffset) +
                         " " + std::to_string(pstProgress->uiDone) + "/" +
                         std::to_string(pstProgress->uiTotal) + static_cast<const char *>(pContext));
    u8 ucByte = 0; // no lock is held: the callback may use the chip
    EXPECT_EQ(ReadWriteEEPROM(9, g_aucLocation, &ucByte, 0, 1, BMC_EEPROM_READ), 1);
}

TEST_F(Images, TellHowAWriteGoesOn)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0xFF));
    BMCHOST_SetEepromProgress(Step, const_cast<char *>("!"));
    g_vecSteps.clear();
    EXPECT_EQ(Write(40, BYTES(80, 1)), 80);
    EXPECT_EQ(g_vecSteps, (std::vector<std::string>{"bus1-addr0xa0 40 24/80!", "bus1-addr0xa0 64 56/80!",
                                                    "bus1-addr0xa0 96 80/80!"}));
    g_vecSteps.clear();
    EXPECT_EQ(Write(250, BYTES(80, 1)), 6);
    EXPECT_EQ(g_vecSteps, std::vector<std::string>{"bus1-addr0xa0 250 6/6!"});
    g_vecSteps.clear();
    EXPECT_EQ(Read(8), 8);
    BMCHOST_SetEepromProgress(nullptr, nullptr);
    EXPECT_EQ(Write(0, BYTES(80, 1)), 80);
    EXPECT_TRUE(g_vecSteps.empty());
}

TEST_F(Images, TakeTheTimeOfAWriteCycle)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0xFF));
    BMCHOST_SetEepromWriteDelayUs(5000);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Write(0, BYTES(128, 1)), 128);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::microseconds(4 * 5000));
    BMCHOST_SetEepromWriteDelayUs(0);
}

TEST_F(Images, AFailingPageFailsTheWriteAndKeepsThePagesAhead)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0));
    const pid_t iPid = controller::Spawn([] {
        const struct rlimit stLimit = {80, 80}; // the third page can be written in part only
        (void)signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &stLimit) == 0 && Write(0, BYTES(256, 7)) < 0 ? 0 : 1;
    });
    EXPECT_EQ(controller::Await(iPid), 0);
    const BYTES vecChip = controller::ChipContent(9, g_aucLocation);
    ASSERT_EQ(vecChip.size(), 256U);
    EXPECT_EQ(BYTES(vecChip.begin(), vecChip.begin() + 64), BYTES(64, 7));
    EXPECT_EQ(BYTES(vecChip.begin() + 64, vecChip.end()), BYTES(192, 0));
}

TEST_F(Images, PagesThatHoldTheBytesAlreadyAreSkipped)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0xFF));
    BMCHOST_SetEepromWriteDelayUs(200000);
    BYTES vecData(256, 0xFF);
    vecData[100] = 1;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Write(0, vecData), 256);
    const auto took = std::chrono::steady_clock::now() - begin;
    BMCHOST_SetEepromWriteDelayUs(0);
    EXPECT_GE(took, std::chrono::milliseconds(200)); // the one page that differs
    EXPECT_LT(took, std::chrono::milliseconds(1000));
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), vecData);
}

TEST_F(Images, AChildForkedInATransferDoesNotKeepTheChipLockedWhenItsParentIsKilled)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0xFF));
    ASSERT_EQ(Write(0, BYTES(1, 0)), 1); // the lock file is there
    int aiPipe[2];
    ASSERT_EQ(pipe(aiPipe), 0);
    const pid_t iParent = controller::Spawn([&] {
        BMCHOST_SetEepromWriteDelayUs(20000000); // the page's lock is held all the time
        std::thread([] { (void)Write(0, BYTES(32, 7)); }).detach();
        controller::Pause(200000);
        const pid_t iChild = controller::Spawn([] {
            controller::Pause(20000000);
            return 0;
        });
        (void)!write(aiPipe[1], &iChild, sizeof(iChild));
        controller::Pause(20000000);
        return 0;
    });
    pid_t iChild = 0;
    ASSERT_EQ(read(aiPipe[0], &iChild, sizeof(iChild)), static_cast<ssize_t>(sizeof(iChild)));
    controller::Kill(iParent);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Read(8), 8);
    EXPECT_EQ(Write(64, BYTES(8, 1)), 8);
    EXPECT_LT(std::chrono::steady_clock::now() - begin,
              std::chrono::seconds(20)); // as long as the child lives
    (void)kill(iChild, SIGKILL);
    (void)close(aiPipe[0]);
    (void)close(aiPipe[1]);
}

TEST_F(Images, ALockThatNobodyLetsGoEndsTheWriteInTime)
{
    controller::LayChip(9, g_aucLocation, BYTES(256, 0xFF));
    ASSERT_EQ(Write(0, BYTES(1, 0)), 1); // the lock file is there
    int aiPipe[2];
    ASSERT_EQ(pipe(aiPipe), 0);
    const pid_t iHolder = controller::Spawn([&aiPipe] {
        const std::string strLock = controller::RealPath("/var/lock/eeprom-bus1-addr0xa0.lock");
        const int iFd = open(strLock.c_str(), O_RDWR | O_CLOEXEC);
        const bool bHeld = iFd >= 0 && flock(iFd, LOCK_EX) == 0 && write(aiPipe[1], "x", 1) == 1;
        return bHeld ? pause() : 1;
    });
    char cByte = 0;
    ASSERT_EQ(read(aiPipe[0], &cByte, 1), 1);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_LT(Write(64, BYTES(8, 1)), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_NE(controller::Messages().back().find("another process holds the lock"), std::string::npos);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation)[64], 0xFFU);
    controller::Kill(iHolder);
    EXPECT_EQ(Write(64, BYTES(8, 1)), 8);
    (void)close(aiPipe[0]);
    (void)close(aiPipe[1]);
}

class Faults : public Images
{
  protected:
    static void Show(const std::string &strFault)
    {
        controller::LayChip(9, g_aucLocation, BYTES(128, 0x11));
        controller::WriteFile("/eeprom/bus1-addr0xa0.fault", strFault);
    }

    static bool IsShown()
    {
        return std::filesystem::exists(controller::RealPath("/eeprom/bus1-addr0xa0.fault"));
    }
};

TEST_F(Faults, AnAbsentChipAnswersNobody)
{
    Show("absent\n");
    EXPECT_LT(Read(8), 0);
    EXPECT_LT(Write(0, BYTES(8, 1)), 0);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), BYTES(128, 0x11));
    EXPECT_TRUE(IsShown());
}

TEST_F(Faults, ABusyChipAnswersAfterAWhile)
{
    Show("busy 3");
    EXPECT_LT(Read(8), 0);
    EXPECT_LT(Write(0, BYTES(8, 1)), 0);
    EXPECT_LT(Read(8), 0);
    EXPECT_FALSE(IsShown());
    EXPECT_EQ(Read(8), 8);
    Show("busy");
    EXPECT_LT(Read(8), 0);
    EXPECT_EQ(Read(8), 8);
}

TEST_F(Faults, AHungBusTakesItsTime)
{
    Show("stuck 50");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_LT(Read(8), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
    EXPECT_TRUE(IsShown());
}

TEST_F(Faults, ATornPageIsHalfNewAndTheWriteFailsOnce)
{
    Show("torn 40");
    EXPECT_LT(Write(0, BYTES(128, 0x22)), 0);
    const BYTES vecChip = controller::ChipContent(9, g_aucLocation);
    EXPECT_EQ(BYTES(vecChip.begin(), vecChip.begin() + 48), BYTES(48, 0x22)); // a page and a half
    EXPECT_NE(BYTES(vecChip.begin() + 48, vecChip.begin() + 64), BYTES(16, 0x22));
    EXPECT_EQ(BYTES(vecChip.begin() + 64, vecChip.end()), BYTES(64, 0x11));
    EXPECT_FALSE(IsShown());
    EXPECT_EQ(Write(0, BYTES(128, 0x22)), 128);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), BYTES(128, 0x22));
    Show("torn"); // whichever page comes next
    EXPECT_LT(Write(32, BYTES(64, 0x22)), 0);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation)[32], 0x22U);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation)[64], 0x11U);
}

TEST_F(Faults, AProtectedChipAcknowledgesAndStaysAsItWas)
{
    Show("protected");
    EXPECT_EQ(Write(0, BYTES(128, 0x22)), 128);
    EXPECT_EQ(Read(8), 8);
    EXPECT_EQ(controller::ChipContent(9, g_aucLocation), BYTES(128, 0x11));
}

TEST_F(Faults, AWordThatIsNoneIsToldAndCountsAsNoFault)
{
    for (const char *pcFault : {"", "melted", "busy x", "absent 3", "busy 3 4"}) {
        Show(pcFault);
        const size_t uiBefore = controller::Messages().size();
        EXPECT_EQ(Read(8), 8) << pcFault;
        EXPECT_EQ(controller::Messages().size(), uiBefore + 1U) << pcFault;
    }
}

} // namespace
