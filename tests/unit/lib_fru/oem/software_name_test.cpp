// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstring>
#include <thread>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "lib_fru/oem/software_name.h"

namespace {

constexpr const char *g_pcPath = "/conf/oempack/bmc/CID_OEM.conf";
constexpr const char *g_pcNoCapability = "0/2 lib_fru.c: Failed to get soft ware name from cap, iRet: "
                                         "0x81000001. so set default value";

// The exported call keeps its name for the life of the process; the rules are tested on stores of their own.
class SoftWareName : public testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
    }

    const char *Ask()
    {
        return FRU_SoftWareNameOf(&m_stStore);
    }

    SOFTWARE_NAME_S m_stStore = FRU_SOFTWARE_NAME_INIT;
};

TEST_F(SoftWareName, CapabilityIsAskedOnce)
{
    fake::Capabilities()["SPECS/SoftwareName"] = "Name";
    const char *pcName = Ask();
    EXPECT_STREQ(pcName, "Name");
    fake::Capabilities()["SPECS/SoftwareName"] = "Other";
    fake::SetHwOemFlag(3);
    EXPECT_EQ(Ask(), pcName);
    EXPECT_STREQ(pcName, "Name");
    EXPECT_EQ(fake::Calls(), std::vector<std::string>{"CAP SPECS SoftwareName 64 -> 0"});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(SoftWareName, LongNamesAreCut)
{
    fake::Capabilities()["SPECS/SoftwareName"] = std::string(100, 'n');
    EXPECT_EQ(Ask(), std::string(63, 'n'));
}

TEST_F(SoftWareName, OemModeReadsTheFileOnce)
{
    fake::SetHwOemFlag(3);
    fake::Capabilities()["SPECS/SoftwareName"] = "Name";
    fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "Brand";
    EXPECT_STREQ(Ask(), "Brand");
    fake::Ini().clear();
    EXPECT_STREQ(Ask(), "Brand");
    EXPECT_EQ(fake::Calls("IniLoadFile").size(), 1U);
    EXPECT_TRUE(fake::Calls("CAP").empty());
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(SoftWareName, OemModeWithoutAFileIsBmcAndKept)
{
    fake::SetHwOemFlag(3);
    EXPECT_STREQ(Ask(), "BMC");
    EXPECT_STREQ(Ask(), "BMC");
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{
                                    std::string("0/4 lib_fru.c: Unable to get oem conf file : ") + g_pcPath});
}

TEST_F(SoftWareName, OfTwoThatComeAtOnceTheFirstIsKept)
{
    fake::SetHwOemFlag(3);
    // Another thread, say, that has its name while this one still looks for the file.
    bool bAsked = false;
    fake::SetLogHook([&](const std::string &) {
        if (!bAsked) {
            bAsked = true;
            fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "First";
            EXPECT_STREQ(Ask(), "First");
        }
    });
    EXPECT_STREQ(Ask(), "First");
    fake::SetLogHook({});
    EXPECT_TRUE(bAsked);
    EXPECT_STREQ(Ask(), "First");
}

TEST_F(SoftWareName, AnEmptyNameIsKeptToo)
{
    fake::SetHwOemFlag(3);
    fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "";
    EXPECT_STREQ(Ask(), "");
    fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = "Brand";
    EXPECT_STREQ(Ask(), "");
}

TEST_F(SoftWareName, TheDefaultIsNotKeptAndNeverChanges)
{
    const char *pcDefault = Ask();
    EXPECT_STREQ(pcDefault, "QBX");
    EXPECT_STREQ(Ask(), "QBX");
    EXPECT_EQ(fake::Messages(), std::vector<std::string>(2, g_pcNoCapability));
    fake::Capabilities()["SPECS/SoftwareName"] = "Name";
    EXPECT_STREQ(Ask(), "Name");
    EXPECT_STREQ(pcDefault, "QBX");
    EXPECT_EQ(fake::Messages().size(), 2U);
    EXPECT_EQ(fake::Calls("CAP").size(), 3U);
}

TEST_F(SoftWareName, ManyThreadsSeeOneWholeNameOrTheDefault)
{
#ifdef __arm__
    GTEST_SKIP() << "user-mode emulation does not start threads on every machine";
#endif
    const std::string strBrand(63, 'b');
    fake::Ini()[g_pcPath]["oem_configure"]["qbx"] = strBrand;
    std::atomic<u32> uiDefaults{0};
    std::atomic<u32> uiWrong{0};
    const auto fnAsk = [&] {
        for (bool bBrand = false; !bBrand;) {
            const char *pcName = Ask();
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
    EXPECT_EQ(Ask(), strBrand);
}

TEST_F(SoftWareName, TheExportedCallKeepsOneStore)
{
    fake::Capabilities()["SPECS/SoftwareName"] = "Name";
    const char *pcName = FRU_GetSoftWareName();
    EXPECT_STREQ(pcName, "Name");
    fake::Capabilities().clear();
    EXPECT_EQ(FRU_GetSoftWareName(), pcName);
    EXPECT_STREQ(pcName, "Name");
    EXPECT_TRUE(fake::Messages().empty());
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
