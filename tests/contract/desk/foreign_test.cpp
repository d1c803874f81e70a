// SPDX-License-Identifier: Apache-2.0
// The desk's own: directories that belong to somebody else.
#include <fcntl.h>
#include <filesystem>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bmc_eeprom.h"
#include "bmc_ini.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "bmc_support.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr uid_t g_uiOther = 65534;

class Foreign : public controller::ContractTest
{
  protected:
    void SetUp() override
    {
        ContractTest::SetUp();
        if (geteuid() != 0U) {
            GTEST_SKIP() << "only root can act as two users";
        }
        controller::LayChip(1, "chip", BYTES(64, 0));
        controller::WriteFile("/conf/x.ini", "[s]\nk = v\n");
        controller::WriteFile("/file", "content");
        ASSERT_EQ(unsetenv("SUDO_UID"), 0);
    }

    void TearDown() override
    {
        BMCHOST_AllowForeignRoot(0);
        (void)unsetenv("SUDO_UID");
        ContractTest::TearDown();
    }

    static void GiveRootToOther()
    {
        ASSERT_EQ(chown(controller::RealPath("").c_str(), g_uiOther, g_uiOther), 0);
    }

    // How many of the writing calls succeed.
    static int Writes()
    {
        u8 ucByte = 7;
        const u8 aucEvent[16] = {3};
        void *hpd = BRIDGE_IniLoadFile("/conf/x.ini");
        int iDone = ReadWriteEEPROM(1, "chip", &ucByte, 0, 1, BMC_EEPROM_WRITE) == 1 ? 1 : 0;
        iDone += OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12) == 0U ? 1 : 0;
        iDone += MRPC_Call(630, 0, 16, aucEvent, 0, nullptr) == 0U ? 1 : 0;
        iDone += BRIDGE_IniSaveFile(hpd, "/conf/x.ini") == 0U ? 1 : 0;
        iDone += BMC_Mkdir("/new") == 0U ? 1 : 0;
        iDone += BMC_CopyFileWithAllMode("/file", "/copy") == 0U ? 1 : 0;
        FILE *pstFile = BMCHOST_OpenFile("/opened", "w");
        iDone += pstFile != nullptr ? 1 : 0;
        if (pstFile != nullptr) {
            (void)fclose(pstFile);
        }
        BRIDGE_IniCloseFile(hpd);
        return iDone;
    }
    static constexpr int g_iWrites = 7;

    // As the other user, who has nothing but his own rights.
    static int AsOther(const std::function<int()> &fnWork)
    {
        return controller::Await(controller::Spawn([&] {
            return setgroups(0, nullptr) == 0 && setresgid(g_uiOther, g_uiOther, g_uiOther) == 0 &&
                           setresuid(g_uiOther, g_uiOther, g_uiOther) == 0
                       ? fnWork()
                       : 125;
        }));
    }
};

TEST_F(Foreign, ARootOfSomebodyElseIsReadButNotWrittenTo)
{
    GiveRootToOther();
    EXPECT_EQ(BMCHOST_IsForeignRoot(), 1U);
    EXPECT_EQ(Writes(), 0);
    EXPECT_NE(controller::Messages().back().find("belongs to user 65534, not to user 0"), std::string::npos);
    u8 ucByte = 7;
    EXPECT_EQ(ReadWriteEEPROM(1, "chip", &ucByte, 0, 1, BMC_EEPROM_READ), 1);
    EXPECT_EQ(ucByte, 0U);
    EXPECT_EQ(controller::FilesIn(""), (std::vector<std::string>{"conf", "eeprom", "file"}));
}

TEST_F(Foreign, ItIsWrittenToWhenThatWasAskedFor)
{
    GiveRootToOther();
    BMCHOST_AllowForeignRoot(1);
    EXPECT_EQ(Writes(), g_iWrites);
    EXPECT_EQ(BMCHOST_IsForeignRoot(), 1U);
    for (const char *pcPath : {"/new", "/copy", "/opened", "/var/log/operate.jsonl", "/var/lock"}) {
        struct stat stStat = {};
        EXPECT_EQ(stat(controller::RealPath(pcPath).c_str(), &stStat), 0) << pcPath;
        EXPECT_EQ(stStat.st_uid, g_uiOther) << pcPath; // its owner can go on working with it
    }
}

TEST_F(Foreign, ItIsWrittenToForTheOneWhoHasCalledSudo)
{
    GiveRootToOther();
    ASSERT_EQ(setenv("SUDO_UID", "65534", 1), 0);
    EXPECT_EQ(BMCHOST_IsForeignRoot(), 0U);
    EXPECT_EQ(Writes(), g_iWrites);
    ASSERT_EQ(setenv("SUDO_UID", "1234", 1), 0);
    EXPECT_EQ(Writes(), 0);
}

TEST_F(Foreign, SudoCountsForRootOnly)
{
    std::filesystem::permissions(controller::RealPath(""), std::filesystem::perms::all);
    ASSERT_EQ(setenv("SUDO_UID", "0", 1), 0);
    EXPECT_EQ(AsOther([] { return Writes() + (BMCHOST_IsForeignRoot() == 1U ? 100 : 0); }), 100);
}

TEST_F(Foreign, LinksOfAnotherUserLeadNowhere)
{
    controller::WriteFile("/victim.bin", std::string(64, 'v'));
    for (const char *pcLink : {"/eeprom/linked.bin", "/conf/linked.ini", "/mnt"}) {
        ASSERT_EQ(symlink(controller::RealPath("/victim.bin").c_str(), controller::RealPath(pcLink).c_str()),
                  0);
        ASSERT_EQ(lchown(controller::RealPath(pcLink).c_str(), g_uiOther, g_uiOther), 0);
    }
    u8 ucByte = 7;
    EXPECT_LT(ReadWriteEEPROM(1, "linked", &ucByte, 0, 1, BMC_EEPROM_WRITE), 0);
    EXPECT_LT(ReadWriteEEPROM(1, "linked", &ucByte, 0, 1, BMC_EEPROM_READ), 0);
    EXPECT_EQ(BRIDGE_IniLoadFile("/conf/linked.ini"), nullptr);
    EXPECT_NE(BMC_CopyFileWithAllMode("/file", "/conf/linked.ini"), 0U);
    EXPECT_NE(BMC_Mkdir("/mnt/sdmmc0p4"), 0U);
    EXPECT_LT(BMC_GetFileSize("/eeprom/linked.bin"), 0);
    EXPECT_EQ(BMCHOST_OpenFile("/eeprom/linked.bin", "w"), nullptr);
    EXPECT_EQ(controller::ReadFile("/victim.bin"), std::string(64, 'v'));
}

TEST_F(Foreign, AReaderWithoutRightsReadsAndHoldsNothingUp)
{
    u8 ucByte = 1;
    ASSERT_EQ(ReadWriteEEPROM(1, "chip", &ucByte, 0, 1, BMC_EEPROM_WRITE), 1);
    std::filesystem::permissions(controller::RealPath(""), static_cast<std::filesystem::perms>(0755));
    EXPECT_EQ(AsOther([] {
                  u8 ucRead = 0;
                  const int iLock =
                      open(controller::RealPath("/var/lock/eeprom-chip.lock").c_str(), O_RDONLY);
                  return iLock < 0 && ReadWriteEEPROM(1, "chip", &ucRead, 0, 1, BMC_EEPROM_READ) == 1 &&
                                 ucRead == 1U
                             ? 0
                             : 1;
              }),
              0);
}

} // namespace
