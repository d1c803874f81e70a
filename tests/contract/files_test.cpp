// SPDX-License-Identifier: Apache-2.0
// Support library: files and directories.
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "bmc_support.h"
#include "controller.h"

namespace {

using controller::ReadFile;
using controller::RealPath;
using controller::WriteFile;

class Files : public controller::ContractTest
{
  protected:
    static unsigned Mode(const std::string &strPath)
    {
        struct stat stStat = {};
        EXPECT_EQ(stat(RealPath(strPath).c_str(), &stStat), 0) << strPath;
        return stStat.st_mode & 07777U;
    }
};

TEST_F(Files, SizeOfAFile)
{
    WriteFile("/data/image.bin", std::string(2048, 'x'));
    WriteFile("/data/empty", "");
    EXPECT_EQ(BMC_GetFileSize("/data/image.bin"), 2048);
    EXPECT_EQ(BMC_GetFileSize("/data/empty"), 0);
    EXPECT_LT(BMC_GetFileSize("/data/none"), 0);
    EXPECT_LT(BMC_GetFileSize("/data"), 0);
    EXPECT_LT(BMC_GetFileSize("/data/image.bin/none"), 0);
}

TEST_F(Files, AFileBeyondThirtyOneBitsHasNoSize)
{
    WriteFile("/data/large", "");
    std::error_code error;
    std::filesystem::resize_file(RealPath("/data/large"), uintmax_t{1} << 31U, error);
    if (error) {
        GTEST_SKIP() << "no sparse file of that size here: " << error.message();
    }
    EXPECT_LT(BMC_GetFileSize("/data/large"), 0);
    u8 ucByte = 9;
    EXPECT_EQ(BMC_ReadFile("/data/large", &ucByte, 1), 0U);
    EXPECT_EQ(ucByte, 0U);
}

TEST_F(Files, ReadsFromTheStartExactlyWhatIsAskedFor)
{
    WriteFile("/data/image.bin", "0123456789");
    u8 aucBuf[12] = {};
    EXPECT_EQ(BMC_ReadFile("/data/image.bin", aucBuf, 10), 0U);
    EXPECT_EQ(std::string(aucBuf, aucBuf + 10), "0123456789");
    aucBuf[4] = 'x';
    EXPECT_EQ(BMC_ReadFile("/data/image.bin", aucBuf, 4), 0U);
    EXPECT_EQ(aucBuf[4], 'x');
    EXPECT_NE(BMC_ReadFile("/data/image.bin", aucBuf, 11), 0U);
    EXPECT_NE(BMC_ReadFile("/data/none", aucBuf, 1), 0U);
    EXPECT_NE(BMC_ReadFile("/data", aucBuf, 1), 0U);
}

TEST_F(Files, MakesDirectoriesWithTheirParents)
{
    EXPECT_EQ(BMC_Mkdir("/mnt/sdmmc0p4/board"), 0U);
    EXPECT_TRUE(std::filesystem::is_directory(RealPath("/mnt/sdmmc0p4/board")));
    EXPECT_EQ(Mode("/mnt/sdmmc0p4/board") & 0700U, 0700U);
    EXPECT_EQ(BMC_Mkdir("/mnt/sdmmc0p4/board"), 0U);
    EXPECT_EQ(BMC_Mkdir("/mnt/sdmmc0p4/other/"), 0U);
    WriteFile("/mnt/file", "x");
    EXPECT_NE(BMC_Mkdir("/mnt/file"), 0U);
    EXPECT_NE(BMC_Mkdir("/mnt/file/below"), 0U);
    EXPECT_EQ(ReadFile("/mnt/file"), "x");
}

TEST_F(Files, TellsUsableDirectories)
{
    EXPECT_NE(BMC_CheckDirVaildStatus("/mnt/board"), 1U);
    ASSERT_EQ(BMC_Mkdir("/mnt/board"), 0U);
    EXPECT_EQ(BMC_CheckDirVaildStatus("/mnt/board"), 1U);
    WriteFile("/mnt/file", "x");
    EXPECT_NE(BMC_CheckDirVaildStatus("/mnt/file"), 1U);
    if (geteuid() != 0U) { // for the superuser every directory can be written to
        ASSERT_EQ(chmod(RealPath("/mnt/board").c_str(), 0555), 0);
        EXPECT_NE(BMC_CheckDirVaildStatus("/mnt/board"), 1U);
        ASSERT_EQ(chmod(RealPath("/mnt/board").c_str(), 0755), 0);
    }
}

TEST_F(Files, CopiesContentAndPermissionBits)
{
    ASSERT_EQ(BMC_Mkdir("/var/network"), 0U);
    for (const unsigned uiMode : {0644U, 0600U, 0755U, 0444U, 04711U, 06755U}) {
        WriteFile("/mnt/sn-" + std::to_string(uiMode), "2102311XDK10M2000123", uiMode);
        EXPECT_EQ(BMC_CopyFileWithAllMode(("/mnt/sn-" + std::to_string(uiMode)).c_str(), "/var/network/sn"),
                  0U);
        EXPECT_EQ(ReadFile("/var/network/sn"), "2102311XDK10M2000123");
        EXPECT_EQ(Mode("/var/network/sn"), uiMode & 0777U); // set-ID bits never travel
    }
    EXPECT_EQ(controller::FilesIn("/var/network"), std::vector<std::string>{"sn"});
}

TEST_F(Files, ACopyReplacesTheWholeFile)
{
    ASSERT_EQ(BMC_Mkdir("/var/network"), 0U);
    WriteFile("/mnt/long", std::string(100000, 'l'));
    WriteFile("/mnt/short", "s");
    WriteFile("/mnt/empty", "");
    for (const char *pcSource : {"/mnt/long", "/mnt/short", "/mnt/empty", "/mnt/long"}) {
        EXPECT_EQ(BMC_CopyFileWithAllMode(pcSource, "/var/network/sn"), 0U);
        EXPECT_EQ(ReadFile("/var/network/sn"), ReadFile(pcSource));
    }
    EXPECT_EQ(BMC_CopyFileWithAllMode("/var/network/sn", "/var/network/sn"), 0U);
    EXPECT_EQ(ReadFile("/var/network/sn"), ReadFile("/mnt/long"));
}

TEST_F(Files, ACopyThatFailsLeavesTheDestination)
{
    WriteFile("/var/network/sn", "old", 0640);
    ASSERT_EQ(BMC_Mkdir("/var/network/dir"), 0U);
    WriteFile("/mnt/sn", "new");
    EXPECT_NE(BMC_CopyFileWithAllMode("/mnt/none", "/var/network/sn"), 0U);
    EXPECT_NE(BMC_CopyFileWithAllMode("/mnt", "/var/network/sn"), 0U);
    EXPECT_NE(BMC_CopyFileWithAllMode("/mnt/sn", "/var/network/dir"), 0U);
    EXPECT_NE(BMC_CopyFileWithAllMode("/mnt/sn", "/var/none/sn"), 0U);
    EXPECT_EQ(ReadFile("/var/network/sn"), "old");
    EXPECT_EQ(Mode("/var/network/sn"), 0640U);
    EXPECT_EQ(controller::FilesIn("/var/network"), (std::vector<std::string>{"dir", "sn"}));
    EXPECT_FALSE(std::filesystem::exists(RealPath("/var/none")));
}

TEST_F(Files, AReaderNeverSeesPartOfACopy)
{
    ASSERT_EQ(BMC_Mkdir("/var/network"), 0U);
    WriteFile("/mnt/a", std::string(20000, 'a'));
    WriteFile("/mnt/b", std::string(30000, 'b'));
    ASSERT_EQ(BMC_CopyFileWithAllMode("/mnt/a", "/var/network/sn"), 0U);
    const pid_t iPid = controller::Spawn([] {
        while (BMC_CopyFileWithAllMode("/mnt/b", "/var/network/sn") == 0U &&
               BMC_CopyFileWithAllMode("/mnt/a", "/var/network/sn") == 0U) {
        }
        return 1;
    });
    for (u32 i = 0; i < 300U; ++i) {
        const std::string strRead = ReadFile("/var/network/sn");
        ASSERT_TRUE(strRead == std::string(20000, 'a') || strRead == std::string(30000, 'b'))
            << strRead.size();
    }
    controller::Kill(iPid);
}

} // namespace
