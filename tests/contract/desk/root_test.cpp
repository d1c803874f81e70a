// SPDX-License-Identifier: Apache-2.0
// The desk's own: the root directory and paths below it.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "bmc_db.h"
#include "bmc_support.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

class Root : public controller::ContractTest
{
  protected:
    // The resolved path below the root, or "<errno>".
    static std::string Below(const char *pcPath)
    {
        char acPath[PATH_MAX] = "x";
        if (BMCHOST_ResolvePath(pcPath, sizeof(acPath), acPath) != 0U) {
            const int iError = errno;
            EXPECT_STREQ(acPath, "");
            return "<" + std::to_string(iError) + ">";
        }
        const std::string strRoot = BMCHOST_GetRoot();
        EXPECT_EQ(std::string(acPath).substr(0, strRoot.size()), strRoot);
        return std::string(acPath).substr(strRoot.size());
    }

    static std::string Refused(int iError)
    {
        return "<" + std::to_string(iError) + ">";
    }
};

TEST_F(Root, StandsInFrontOfEveryPath)
{
    EXPECT_EQ(Below("/mnt/sdmmc0p4/board"), "/mnt/sdmmc0p4/board");
    EXPECT_EQ(Below("conf/features.json"), "/conf/features.json");
    EXPECT_EQ(Below("//mnt///x/./y/"), "/mnt/x/y");
    EXPECT_EQ(Below("/"), "");
    EXPECT_EQ(Below("/..."), "/...");
}

TEST_F(Root, IsNotLeftThroughParents)
{
    EXPECT_EQ(Below("/mnt/../conf/x"), "/conf/x");
    EXPECT_EQ(Below("/mnt/a/../../conf/x"), "/conf/x");
    for (const char *pcPath :
         {"..", "/..", "/mnt/../..", "/mnt/../../etc/passwd", "../etc", "/./../x", "/a/b/../../../c"}) {
        EXPECT_EQ(Below(pcPath), Refused(EACCES)) << pcPath;
        u8 ucByte = 0;
        EXPECT_NE(BMC_ReadFile(pcPath, &ucByte, 0), 0U) << pcPath;
        EXPECT_NE(BMC_Mkdir(pcPath), 0U) << pcPath;
    }
}

TEST_F(Root, PathsThatAreNoneOrDoNotFitAreRefused)
{
    EXPECT_EQ(Below(nullptr), Refused(EINVAL));
    EXPECT_EQ(Below(""), Refused(EINVAL));
    EXPECT_EQ(Below(std::string(PATH_MAX, 'x').c_str()), Refused(ENAMETOOLONG));
    const std::string strWanted = std::string(BMCHOST_GetRoot()) + "/abc";
    char acPath[PATH_MAX];
    EXPECT_EQ(BMCHOST_ResolvePath("/abc", strWanted.size() + 1U, acPath), 0U);
    EXPECT_EQ(acPath, strWanted);
    EXPECT_NE(BMCHOST_ResolvePath("/abc", strWanted.size(), acPath), 0U);
    EXPECT_STREQ(acPath, "");
    EXPECT_NE(BMCHOST_ResolvePath("/abc", 0, acPath), 0U);
    EXPECT_NE(BMCHOST_ResolvePath("/abc", 10, nullptr), 0U);
}

TEST_F(Root, IsAnAbsolutePathWithoutASlashAtItsEnd)
{
    EXPECT_EQ(BMCHOST_SetRoot("/tmp/some-root///"), 0U);
    EXPECT_STREQ(BMCHOST_GetRoot(), "/tmp/some-root");
    EXPECT_EQ(BMCHOST_SetRoot("relative/root"), 0U);
    EXPECT_EQ(BMCHOST_GetRoot(), (std::filesystem::current_path() / "relative/root").string());
    EXPECT_EQ(BMCHOST_SetRoot("/"), 0U);
    EXPECT_STREQ(BMCHOST_GetRoot(), "/");
    char acPath[16];
    EXPECT_EQ(BMCHOST_ResolvePath("/x", sizeof(acPath), acPath), 0U);
    EXPECT_STREQ(acPath, "/x");
    EXPECT_EQ(BMCHOST_ResolvePath("/", sizeof(acPath), acPath), 0U);
    EXPECT_STREQ(acPath, "/");
}

TEST_F(Root, ThatIsNoneIsRefusedAndChangesNothing)
{
    const std::string strBefore = BMCHOST_GetRoot();
    EXPECT_NE(BMCHOST_SetRoot(nullptr), 0U);
    EXPECT_NE(BMCHOST_SetRoot(""), 0U);
    EXPECT_NE(BMCHOST_SetRoot(std::string(PATH_MAX, 'x').c_str()), 0U);
    EXPECT_EQ(BMCHOST_GetRoot(), strBefore);
}

// The default is taken once in a process, so each case has its own.
int DefaultRootIs(const char *pcWanted)
{
    return std::string(BMCHOST_GetRoot()) == pcWanted ? 0 : 1;
}

TEST(RootDefault, ComesFromTheEnvironment)
{
    // This process has not asked yet only when the test runs alone, so the children start the program anew.
    const std::string strProgram =
        BMCFRU_EMULATOR " " + std::filesystem::read_symlink("/proc/self/exe").string();
    const char *pcCase = getenv("BMCFRU_ROOT_CASE");
    if (pcCase != nullptr) {
        EXPECT_EQ(DefaultRootIs(pcCase), 0) << BMCHOST_GetRoot();
        return;
    }
    const char *const apcCases[][2] = {
        {"FRUCTL_ROOT=/tmp/from-env HOME=/home/x", "/tmp/from-env"},
        {"FRUCTL_ROOT= HOME=/home/x", "/home/x/.local/state/fructl"},
        {"-u FRUCTL_ROOT HOME=/home/x", "/home/x/.local/state/fructl"},
    };
    for (const auto &apcCase : apcCases) {
        const std::string strCommand = std::string("env ") + apcCase[0] + " BMCFRU_ROOT_CASE=" + apcCase[1] +
                                       " " + strProgram + " --gtest_filter=RootDefault.* >/dev/null";
        EXPECT_EQ(system(strCommand.c_str()), 0) << strCommand; // NOLINT(cert-env33-c): our own program
    }
}

TEST_F(Root, AnotherRootIsAnotherController)
{
    const std::string strFirst = BMCHOST_GetRoot();
    const u8 ucOne = 1;
    const u8 ucTwo = 2;
    void *pDb = DB_Open();
    ASSERT_EQ(DB_PutInternal(pDb, 1, 1, &ucOne, "root_test.cpp", 1), 0U);
    ASSERT_EQ(BMCHOST_SetRoot((strFirst + "/second").c_str()), 0U);
    u8 ucData = 0;
    EXPECT_NE(DB_Get(pDb, 1, 1, &ucData), 0U);
    ASSERT_EQ(DB_PutInternal(DB_Open(), 1, 1, &ucTwo, "root_test.cpp", 1), 0U);
    ASSERT_EQ(BMCHOST_SetRoot(strFirst.c_str()), 0U);
    EXPECT_EQ(DB_Get(DB_Open(), 1, 1, &ucData), 0U);
    EXPECT_EQ(ucData, 1U);
}

TEST_F(Root, WhatKilledProcessesLeftGoesWithTheFirstWrite)
{
    const std::vector<std::string> vecDirectories = {"/conf",
                                                     "/conf/hw/ProductPath",
                                                     "/conf/oempack/bmc",
                                                     "/eeprom",
                                                     "/mnt/sdmmc0p2",
                                                     "/mnt/sdmmc0p4/board",
                                                     "/usr/upgrade/fru",
                                                     "/var/lib/fru",
                                                     "/var/lock",
                                                     "/var/log",
                                                     "/var/network"};
    for (const std::string &strDirectory : vecDirectories) {
        controller::WriteFile(strDirectory + "/.bmcfru-0123", "left");
        const struct timespec astTimes[2] = {{1000000, 0}, {1000000, 0}};
        ASSERT_EQ(
            utimensat(AT_FDCWD, controller::RealPath(strDirectory + "/.bmcfru-0123").c_str(), astTimes, 0),
            0);
    }
    EXPECT_LT(BMC_GetFileSize("/eeprom/none"), 0); // reading tidies nothing
    EXPECT_TRUE(std::filesystem::exists(controller::RealPath("/eeprom/.bmcfru-0123")));
    EXPECT_EQ(BMC_Mkdir("/new"), 0U);
    for (const std::string &strDirectory : vecDirectories) {
        EXPECT_FALSE(std::filesystem::exists(controller::RealPath(strDirectory + "/.bmcfru-0123")))
            << strDirectory;
    }
}

} // namespace
