#include <atomic>
#include <cstring>
#include <functional>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

constexpr const char *g_pcPath = "/conf/oempack/bmc/CID_OEM.conf";
constexpr const char *g_pcNoCapability = "0/2 lib_fru.c: Failed to get soft ware name from cap, iRet: "
                                         "0x81000001. so set default value";

// The name is kept for the life of the process, so each of these runs in one of its own.
void InChild(const std::function<void()> &fnTest)
{
    fake::Reset();
    (void)fflush(stdout);
    const pid_t iChild = fork();
    ASSERT_GE(iChild, 0);
    if (iChild == 0) {
        fnTest();
        (void)fflush(stdout);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int iStatus = -1;
    ASSERT_EQ(waitpid(iChild, &iStatus, 0), iChild);
    EXPECT_TRUE(WIFEXITED(iStatus) && WEXITSTATUS(iStatus) == 0) << "status " << iStatus;
}

TEST(SoftWareName, CapabilityIsAskedOnce)
{
    InChild([] {
        fake::Capabilities()["SPECS/SoftwareName"] = "Name";
        const char *pcName = FRU_GetSoftWareName();
        EXPECT_STREQ(pcName, "Name");
        fake::Capabilities()["SPECS/SoftwareName"] = "Other";
        fake::SetHwOemFlag(3);
        EXPECT_EQ(FRU_GetSoftWareName(), pcName);
        EXPECT_STREQ(pcName, "Name");
        EXPECT_EQ(fake::Calls(), std::vector<std::string>{"CAP SPECS SoftwareName 64 -> 0"});
        EXPECT_TRUE(fake::Messages().empty());
    });
}

TEST(SoftWareName, LongNamesAreCut)
{
    InChild([] {
        fake::Capabilities()["SPECS/SoftwareName"] = std::string(100, 'n');
        EXPECT_EQ(FRU_GetSoftWareName(), std::string(63, 'n'));
    });
}

TEST(SoftWareName, OemModeReadsTheFileOnce)
{
    InChild([] {
        fake::SetHwOemFlag(3);
        fake::Capabilities()["SPECS/SoftwareName"] = "Name";
        fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "Brand";
        EXPECT_STREQ(FRU_GetSoftWareName(), "Brand");
        fake::Ini().clear();
        EXPECT_STREQ(FRU_GetSoftWareName(), "Brand");
        EXPECT_EQ(fake::Calls("IniLoadFile").size(), 1U);
        EXPECT_TRUE(fake::Calls("CAP").empty());
        EXPECT_TRUE(fake::Messages().empty());
    });
}

TEST(SoftWareName, OemModeWithoutAFileIsBmcAndKept)
{
    InChild([] {
        fake::SetHwOemFlag(3);
        EXPECT_STREQ(FRU_GetSoftWareName(), "BMC");
        EXPECT_STREQ(FRU_GetSoftWareName(), "BMC");
        EXPECT_EQ(fake::Messages(),
                  std::vector<std::string>{std::string("0/4 lib_fru.c: Unable to get oem conf file : ") +
                                           g_pcPath});
    });
}

TEST(SoftWareName, AnEmptyNameIsKeptToo)
{
    InChild([] {
        fake::SetHwOemFlag(3);
        fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "";
        EXPECT_STREQ(FRU_GetSoftWareName(), "");
        fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "Brand";
        EXPECT_STREQ(FRU_GetSoftWareName(), "");
    });
}

TEST(SoftWareName, TheDefaultIsNotKeptAndNeverChanges)
{
    InChild([] {
        const char *pcDefault = FRU_GetSoftWareName();
        EXPECT_STREQ(pcDefault, "QBX");
        EXPECT_STREQ(FRU_GetSoftWareName(), "QBX");
        EXPECT_EQ(fake::Messages(), std::vector<std::string>(2, g_pcNoCapability));
        fake::Capabilities()["SPECS/SoftwareName"] = "Name";
        EXPECT_STREQ(FRU_GetSoftWareName(), "Name");
        EXPECT_STREQ(pcDefault, "QBX");
        EXPECT_EQ(fake::Messages().size(), 2U);
        EXPECT_EQ(fake::Calls("CAP").size(), 3U);
    });
}

TEST(SoftWareName, ManyThreadsSeeOneWholeNameOrTheDefault)
{
    InChild([] {
        const std::string strBrand(63, 'b');
        fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = strBrand;
        std::atomic<u32> uiDefaults{0};
        std::atomic<u32> uiWrong{0};
        const auto fnAsk = [&] {
            for (bool bBrand = false; !bBrand;) {
                const char *pcName = FRU_GetSoftWareName();
                bBrand = strBrand == pcName;
                const bool bDefault = strcmp(pcName, "QBX") == 0;
                uiDefaults += bDefault ? 1U : 0U;
                if (!bBrand && !bDefault) {
                    ++uiWrong;
                    return;
                }
            }
        };
        std::vector<std::thread> vecThreads;
        vecThreads.reserve(4);
        for (int i = 0; i < 4; ++i) {
            vecThreads.emplace_back(fnAsk);
        }
        while (uiDefaults < 20U && uiWrong == 0U) {
            std::this_thread::yield();
        }
        fake::SetHwOemFlag(3);
        for (std::thread &thread : vecThreads) {
            thread.join();
        }
        EXPECT_EQ(uiWrong, 0U);
        EXPECT_EQ(FRU_GetSoftWareName(), strBrand);
    });
}

TEST(HostNamePrefix, NullIsReported)
{
    fake::Reset();
    FRU_GetHostNamePrefix(8, nullptr);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{
                                    fake::NullMessage("lib_fru.c", "FRU_GetHostNamePrefix", "pcHostName")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(HostNamePrefix, CapabilityIsAskedEveryTime)
{
    fake::Reset();
    char acOut[64] = {};
    for (const char *pcPrefix : {"one", "two"}) {
        fake::Capabilities()["HostName/Prefix"] = pcPrefix;
        FRU_GetHostNamePrefix(sizeof(acOut), acOut);
        EXPECT_STREQ(acOut, pcPrefix);
    }
    EXPECT_EQ(fake::Calls(), std::vector<std::string>(2, "CAP HostName Prefix 64 -> 0"));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(HostNamePrefix, OemModeReadsTheFile)
{
    fake::Reset();
    fake::SetHwOemFlag(3);
    fake::Capabilities()["HostName/Prefix"] = "prefix";
    fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "Brand";
    char acOut[64] = {};
    FRU_GetHostNamePrefix(sizeof(acOut), acOut);
    EXPECT_STREQ(acOut, "Brand");
    EXPECT_TRUE(fake::Calls("CAP").empty());
}

TEST(HostNamePrefix, WithoutTheCapabilityIsTheDefault)
{
    fake::Reset();
    char acOut[64] = {};
    FRU_GetHostNamePrefix(sizeof(acOut), acOut);
    EXPECT_STREQ(acOut, "QBX");
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{
                                    "0/2 lib_fru.c: get host name prefix from cap failed.iRet:0x81000001."});
}

TEST(HostNamePrefix, IsCutToTheSize)
{
    fake::Reset();
    fake::Capabilities()["HostName/Prefix"] = "prefix";
    char acOut[8];
    (void)memset(acOut, '?', sizeof(acOut));
    FRU_GetHostNamePrefix(0, acOut);
    EXPECT_EQ(acOut[0], '?');
    FRU_GetHostNamePrefix(4, acOut);
    EXPECT_EQ(std::string(acOut, 5), std::string("pre\0?", 5));
}

} // namespace
