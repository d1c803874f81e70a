// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace {

constexpr u32 g_uiTableKey = 0x108105FFU;
constexpr u32 g_uiStatusKey = 0x10810400U;

void PutTable(u8 ucCount, const std::vector<u8> &vecDeviceIDs)
{
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = ucCount;
    for (size_t i = 0; i < vecDeviceIDs.size(); ++i) {
        stTable.astEntry[i].ucDeviceID = vecDeviceIDs[i];
    }
    const u8 *pucTable = reinterpret_cast<const u8 *>(&stTable);
    fake::Db()[g_uiTableKey].assign(pucTable, pucTable + sizeof(stTable));
}

void PutStatus(u8 ucDeviceID, u8 ucStatus)
{
    fake::Db()[g_uiStatusKey | ucDeviceID] = {ucStatus};
}

TEST(TestResult, NullIsReported)
{
    fake::Reset();
    LIB_FRU_GetTestResult(nullptr);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "LIB_FRU_GetTestResult", "pucTestResultByte")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(TestResult, WithoutATableTheByteStays)
{
    fake::Reset();
    u8 ucResult = 0x5A;
    LIB_FRU_GetTestResult(&ucResult);
    EXPECT_EQ(ucResult, 0x5AU);
    EXPECT_EQ(fake::Messages(), (std::vector<std::string>{"0/4 lib_fru.c: Get fru device tbl failed!",
                                                          "0/4 lib_fru.c: Fail to find fru device tbl!"}));
}

TEST(TestResult, WithoutDevicesTheByteStays)
{
    fake::Reset();
    PutTable(0, {7});
    PutStatus(7, 0xFF);
    u8 ucResult = 0x5A;
    LIB_FRU_GetTestResult(&ucResult);
    EXPECT_EQ(ucResult, 0x5AU);
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::Calls("DB_Get"), std::vector<std::string>{"DB_Get 0x108105ff 3703 -> 0"});
}

TEST(TestResult, FaultMarksOfAnyDeviceSetTheirBits)
{
    struct CASE_S
    {
        u8 ucFirst;
        u8 ucLast;
        u8 ucBefore;
        u8 ucAfter;
    };
    for (const CASE_S &stCase : {CASE_S{0x00, 0x00, 0x00, 0x00},
                                 {0x01, 0x01, 0x00, 0x00},
                                 {0x02, 0x00, 0x00, 0x20},
                                 {0x00, 0x02, 0x00, 0x20},
                                 {0x04, 0x00, 0x00, 0x04},
                                 {0x00, 0x04, 0x00, 0x04},
                                 {0x02, 0x04, 0x00, 0x24},
                                 {0x06, 0x00, 0x00, 0x24},
                                 {0xF9, 0xF9, 0x00, 0x00},
                                 {0x00, 0x00, 0xFF, 0xFF},
                                 {0x02, 0x00, 0x81, 0xA1},
                                 {0x04, 0x00, 0x81, 0x85}}) {
        fake::Reset();
        PutTable(3, {0, 9, 255});
        PutStatus(0, stCase.ucFirst);
        PutStatus(9, 0);
        PutStatus(255, stCase.ucLast);
        u8 ucResult = stCase.ucBefore;
        LIB_FRU_GetTestResult(&ucResult);
        EXPECT_EQ(ucResult, stCase.ucAfter);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(TestResult, UnreadableStatusSetsNothingAndIsReported)
{
    fake::Reset();
    PutTable(2, {0x10, 0x11});
    PutStatus(0x11, 0x02);
    u8 ucResult = 0;
    LIB_FRU_GetTestResult(&ucResult);
    EXPECT_EQ(ucResult, 0x20U);
    EXPECT_EQ(
        fake::Messages(),
        std::vector<std::string>{"4/4 lib_fru.c: Get FRU:0x10 data cache status failed! Ret:-2130706431."});
}

TEST(TestResult, CountAboveTheTableEndsWithTheTable)
{
    fake::Reset();
    PutTable(255, std::vector<u8>(100, 5));
    PutStatus(5, 0);
    PutStatus(0, 0x06);
    u8 ucResult = 0;
    LIB_FRU_GetTestResult(&ucResult);
    EXPECT_EQ(ucResult, 0U);
    EXPECT_EQ(fake::Calls("DB_Get 0x10810405").size(), 100U);
    EXPECT_EQ(fake::Calls("DB_Get").size(), 101U);
}

TEST(TestResult, AnyFailureKeepsTheOtherBits)
{
    u8 ucResult = 0;
    fake::Sweep(
        [&] {
            PutTable(2, {1, 2});
            PutStatus(1, 0x02);
            PutStatus(2, 0x04);
            ucResult = 0x41;
        },
        [&] { LIB_FRU_GetTestResult(&ucResult); },
        [&](const fake::FAULT_S *pstFault) {
            EXPECT_EQ(ucResult & ~0x24U, 0x41U);
            EXPECT_EQ(ucResult == 0x65U, pstFault == nullptr);
            EXPECT_EQ(fake::Messages().empty(), pstFault == nullptr);
        });
}

} // namespace
