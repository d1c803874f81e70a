// SPDX-License-Identifier: Apache-2.0
// What is made at its first use, used first by eight threads at once.
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru/oem/software_name.h"
#include "lib_fru_multirecord.h"
#include "lib_fru_multirecord/store_state.h"

namespace {

constexpr u32 THREADS = 8;
constexpr u32 ROUNDS = 50;

void AtOnce(const std::function<void()> &fnUse)
{
    std::vector<std::thread> vecThreads;
    for (u32 i = 0; i < THREADS; ++i) {
        vecThreads.emplace_back(fnUse);
    }
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
}

TEST(FirstUse, TheStoreGetsOneLock)
{
    for (u32 i = 0; i < ROUNDS; ++i) {
        fake::Reset();
        AtOnce([] { EXPECT_EQ(FRU_initMultiRecords(), 0U); });
        int iValue = -1;
        (void)sem_getvalue(&g_stInnerMRStore.stSem, &iValue);
        EXPECT_EQ(iValue, 1);
        FRU_destroyMultiRecords();
    }
}

TEST(FirstUse, TheSoftwareNameIsWrittenOnce)
{
    for (u32 i = 0; i < ROUNDS; ++i) {
        fake::Reset();
        fake::Capabilities()["SPECS/SoftwareName"] = "Name";
        SOFTWARE_NAME_S stStore = FRU_SOFTWARE_NAME_INIT;
        AtOnce([&] { EXPECT_EQ(std::string(FRU_SoftWareNameOf(&stStore)), "Name"); });
    }
}

} // namespace
