// SPDX-License-Identifier: Apache-2.0
// Device table lookups: who wins, how far a scan goes, which code and message each failure has.
#include <gtest/gtest.h>

#include "fru_device.h"
#include "lib_fru_access.h"

namespace {

using device::Line;
using device::LINES;
using device::Null;

const std::string g_strNoTable = Line(0, 4, "Get fru device tbl failed!");

TEST(DeviceTable, WholeTableIsCopiedOut)
{
    fake::Reset();
    const FRU_DEVICE_TBL_S stTable = device::Table({{1, 2, 3, 4}, {5, 6, 7, 8}});
    device::PutTable(stTable);
    FRU_DEVICE_TBL_S stOut = {};
    EXPECT_EQ(LIB_FRU_GetFRUDeviceTbl(&stOut), 0U);
    EXPECT_EQ(device::Bytes(stOut), device::Bytes(stTable));
    EXPECT_EQ(device::Calls(), LINES{device::DbGet(device::g_uiKeyTable, 3703U)});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceTable, MissingTableIsReportedAndLeavesTheBufferAlone)
{
    fake::Reset();
    FRU_DEVICE_TBL_S stOut;
    (void)memset(&stOut, 0xA5, sizeof(stOut));
    EXPECT_EQ(LIB_FRU_GetFRUDeviceTbl(&stOut), 0x29000004U);
    EXPECT_EQ(device::Bytes(stOut), device::BYTES(sizeof(stOut), 0xA5));
    EXPECT_EQ(fake::Messages(), LINES{g_strNoTable});
}

TEST(DeviceTable, NullPointersAreReportedBeforeAnyWork)
{
    struct CASE_S
    {
        const char *pcFunction;
        const char *pcPointer;
        u32 uiResult;
        u32 (*fnCall)();
    };
    const CASE_S astCases[] = {
        {"LIB_FRU_GetFRUDeviceTbl", "pstFRUDeviceTbl", 0x29002408U,
         [] { return LIB_FRU_GetFRUDeviceTbl(nullptr); }},
        {"LIB_FRU_GetDeviceID", "pucDeviceID", 0x81000002U,
         [] { return LIB_FRU_GetDeviceID(1, 2, nullptr); }},
        {"LIB_FRU_GetFRUDeviceInfo", "pstFRUDeviceInfo", 0x29002408U,
         [] { return LIB_FRU_GetFRUDeviceInfo(1, 2, nullptr); }},
        {"LIB_FRU_GetSDRByRecordID", "pstFRUSDR", 0x29002408U,
         [] { return LIB_FRU_GetSDRByRecordID(1, nullptr); }},
        {"LIB_FRU_GetFRUTotalNum", "pucFRUTotalNum", 0x29002408U,
         [] { return LIB_FRU_GetFRUTotalNum(nullptr); }},
    };
    for (const CASE_S &stCase : astCases) {
        SCOPED_TRACE(stCase.pcFunction);
        fake::Reset();
        EXPECT_EQ(stCase.fnCall(), stCase.uiResult);
        EXPECT_EQ(fake::Messages(), LINES{Null(stCase.pcFunction, stCase.pcPointer)});
        EXPECT_TRUE(fake::Calls().empty());
    }
}

TEST(DeviceTable, DeviceIDNeedsTypeAndInstance)
{
    fake::Reset();
    device::PutTable(device::Table({{10, 1, 0, 0}, {11, 2, 1, 0}, {12, 1, 1, 0}, {0, 3, 0, 0}}));
    u8 ucID = 0xFF;
    EXPECT_EQ(LIB_FRU_GetDeviceID(1, 1, &ucID), 0U);
    EXPECT_EQ(ucID, 12U);
    EXPECT_EQ(LIB_FRU_GetDeviceID(3, 0, &ucID), 0U);
    EXPECT_EQ(ucID, 0U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceTable, TheFirstOfTwoEqualComponentsWins)
{
    fake::Reset();
    device::PutTable(device::Table({{10, 1, 1, 0}, {20, 1, 1, 0}}));
    u8 ucID = 0;
    EXPECT_EQ(LIB_FRU_GetDeviceID(1, 1, &ucID), 0U);
    EXPECT_EQ(ucID, 10U);
}

TEST(DeviceTable, UnknownComponentLeavesTheDeviceIDAlone)
{
    fake::Reset();
    device::PutTable(device::Table({{10, 1, 1, 0}}));
    u8 ucID = 0xA5;
    EXPECT_EQ(LIB_FRU_GetDeviceID(0x1F, 200, &ucID), 0x81000001U);
    EXPECT_EQ(ucID, 0xA5U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(5, 4, "Fail to find Component[0x1f] Instance[200] fru device id!")});
}

TEST(DeviceTable, EmptyTableHasNoComponents)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    u8 ucID = 0xA5;
    // All entries read as component 0, instance 0, device 0; none of them counts.
    EXPECT_EQ(LIB_FRU_GetDeviceID(0, 0, &ucID), 0x81000001U);
    EXPECT_EQ(ucID, 0xA5U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Fail to find Component[0] Instance[0] fru device id!")});
}

TEST(DeviceTable, EntriesBeyondTheCountAreNotSeen)
{
    fake::Reset();
    FRU_DEVICE_TBL_S stTable = device::Table({{10, 1, 1, 5}, {20, 2, 2, 6}});
    stTable.ucCount = 1;
    device::PutTable(stTable);
    u8 ucID = 0;
    FRU_SDR_S stSdr = {};
    EXPECT_EQ(LIB_FRU_GetDeviceID(2, 2, &ucID), 0x81000001U);
    EXPECT_EQ(LIB_FRU_GetSDRByRecordID(6, &stSdr), 0x29000008U);
}

TEST(DeviceTable, DeviceIDWithoutATableFailsWithBothMessages)
{
    fake::Reset();
    u8 ucID = 0xA5;
    EXPECT_EQ(LIB_FRU_GetDeviceID(1, 1, &ucID), 0x81000001U);
    EXPECT_EQ(ucID, 0xA5U);
    EXPECT_EQ(fake::Messages(), (LINES{g_strNoTable, Line(5, 4, "Fail to find fru device tbl!")}));
}

TEST(DeviceTable, CountAboveTheTablesRoomNeverLeavesTheRecord)
{
    fake::Reset();
    std::vector<device::ENTRY_S> vecEntries(100, {1, 1, 1, 1});
    vecEntries[99] = {99, 9, 9, 0x9999};
    FRU_DEVICE_TBL_S stTable = device::Table(vecEntries);
    for (const u8 ucCount : {u8{101}, u8{255}}) {
        stTable.ucCount = ucCount;
        device::PutTable(stTable);
        fake::Db()[device::g_uiKeySdr | 99U] = device::BYTES(32, 0x33);
        u8 ucID = 0;
        EXPECT_EQ(LIB_FRU_GetDeviceID(9, 9, &ucID), 0U);
        EXPECT_EQ(ucID, 99U);
        EXPECT_EQ(LIB_FRU_GetDeviceID(8, 8, &ucID), 0x81000001U);
        FRU_SDR_S stSdr = {};
        EXPECT_EQ(LIB_FRU_GetSDRByRecordID(0x9999, &stSdr), 0U);
        EXPECT_EQ(LIB_FRU_GetSDRByRecordID(0x8888, &stSdr), 0x29000008U);
        u8 ucTotal = 0;
        EXPECT_EQ(LIB_FRU_GetFRUTotalNum(&ucTotal), 0U);
        EXPECT_EQ(ucTotal, ucCount);
    }
}

TEST(DeviceTable, DeviceInfoComesWhole)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(256);
    device::PutInfo(stInfo);
    device::PutTable(device::Table({{device::g_ucID, 5, 2, 0}}));
    FRU_DEVICE_INFO_S stOut = {};
    EXPECT_EQ(LIB_FRU_GetFRUDeviceInfo(5, 2, &stOut), 0U);
    EXPECT_EQ(device::Bytes(stOut), device::Bytes(stInfo));
    EXPECT_EQ(device::Calls(),
              (LINES{device::DbGet(device::g_uiKeyTable, 3703), device::DbGet(0x10810021U, 184)}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceTable, DeviceInfoOfAnUnknownComponent)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    FRU_DEVICE_INFO_S stOut = {};
    EXPECT_EQ(LIB_FRU_GetFRUDeviceInfo(0x12, 0x13, &stOut), 0x29000003U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(5, 4, "Fail to find Component[0x12] Instance[19] fru device id!"),
                     Line(0, 4, "Fail to find ComponentType:0x12 Instance:0x13 Device ID!")}));
}

TEST(DeviceTable, DeviceWithoutARecordDoesNotExist)
{
    fake::Reset();
    device::PutTable(device::Table({{0x21, 5, 2, 0}}));
    FRU_DEVICE_INFO_S stOut;
    (void)memset(&stOut, 0xA5, sizeof(stOut));
    EXPECT_EQ(LIB_FRU_GetFRUDeviceInfo(5, 2, &stOut), 0x29000004U);
    EXPECT_EQ(device::Bytes(stOut), device::BYTES(sizeof(stOut), 0xA5));
    EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "FRU ID[0x21] does not exist!")});
}

TEST(DeviceTable, SdrOfTheFirstEntryWithTheRecordID)
{
    fake::Reset();
    device::PutTable(device::Table({{1, 1, 0, 0x0102}, {2, 1, 1, 0x0201}, {3, 1, 2, 0x0201}}));
    fake::Db()[device::g_uiKeySdr | 2U] = device::Pattern(32);
    FRU_SDR_S stSdr = {};
    EXPECT_EQ(LIB_FRU_GetSDRByRecordID(0x0201, &stSdr), 0U);
    EXPECT_EQ(device::Bytes(stSdr), device::Pattern(32));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceTable, UnknownRecordIDAndEmptyTableFailAlike)
{
    for (const bool bEmpty : {false, true}) {
        fake::Reset();
        device::PutTable(bEmpty ? device::Table({}) : device::Table({{1, 1, 1, 7}}));
        FRU_SDR_S stSdr;
        (void)memset(&stSdr, 0xA5, sizeof(stSdr));
        EXPECT_EQ(LIB_FRU_GetSDRByRecordID(0xBEEF, &stSdr), 0x29000008U);
        EXPECT_EQ(device::Bytes(stSdr), device::BYTES(32, 0xA5));
        EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "Get fru device id by record id[0xbeef] failed!")});
    }
}

TEST(DeviceTable, SdrWithoutATable)
{
    fake::Reset();
    FRU_SDR_S stSdr = {};
    EXPECT_EQ(LIB_FRU_GetSDRByRecordID(7, &stSdr), 0x29000004U);
    EXPECT_EQ(fake::Messages(), (LINES{g_strNoTable, g_strNoTable}));
}

TEST(DeviceTable, DeviceWithoutAnSdr)
{
    fake::Reset();
    device::PutTable(device::Table({{0x31, 1, 1, 7}}));
    FRU_SDR_S stSdr;
    (void)memset(&stSdr, 0xA5, sizeof(stSdr));
    EXPECT_EQ(LIB_FRU_GetSDRByRecordID(7, &stSdr), 0x29000001U);
    EXPECT_EQ(device::Bytes(stSdr), device::BYTES(32, 0xA5));
    EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "Get fru device id[0x31] sdr info failed!")});
}

TEST(DeviceTable, TotalNumber)
{
    fake::Reset();
    device::PutTable(device::Table({{1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}}));
    u8 ucTotal = 0xA5;
    EXPECT_EQ(LIB_FRU_GetFRUTotalNum(&ucTotal), 0U);
    EXPECT_EQ(ucTotal, 3U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceTable, NoTableReadsAsZeroDevicesWithSuccess)
{
    fake::Reset();
    u8 ucTotal = 0xA5;
    EXPECT_EQ(LIB_FRU_GetFRUTotalNum(&ucTotal), 0U);
    EXPECT_EQ(ucTotal, 0U);
    EXPECT_EQ(fake::Messages(), LINES{g_strNoTable});
}

TEST(DeviceTable, NothingIsKeptBetweenCalls)
{
    fake::Reset();
    device::PutTable(device::Table({{1, 1, 1, 1}}));
    u8 ucID = 0;
    EXPECT_EQ(LIB_FRU_GetDeviceID(1, 1, &ucID), 0U);
    device::PutTable(device::Table({{2, 1, 1, 1}}));
    EXPECT_EQ(LIB_FRU_GetDeviceID(1, 1, &ucID), 0U);
    EXPECT_EQ(ucID, 2U);
}

TEST(DeviceTable, SweepOfTheDeviceInfoLookup)
{
    FRU_DEVICE_INFO_S stOut = {};
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            device::Provision(device::Pattern(64));
            (void)memset(&stOut, 0xA5, sizeof(stOut));
        },
        [&] { uiRet = LIB_FRU_GetFRUDeviceInfo(device::g_ucType, device::g_ucInstance, &stOut); },
        [&](const fake::FAULT_S *pstFault) {
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, 0U);
                EXPECT_EQ(stOut.ucDeviceID, device::g_ucID);
            } else {
                EXPECT_TRUE(uiRet == 0x29000003U || uiRet == 0x29000004U);
                EXPECT_EQ(device::Bytes(stOut), device::BYTES(sizeof(stOut), 0xA5));
            }
        });
}

TEST(DeviceTable, SweepOfTheSdrLookup)
{
    FRU_SDR_S stOut = {};
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            device::PutTable(device::Table({{1, 1, 1, 7}}));
            fake::Db()[device::g_uiKeySdr | 1U] = device::Pattern(32);
            (void)memset(&stOut, 0xA5, sizeof(stOut));
        },
        [&] { uiRet = LIB_FRU_GetSDRByRecordID(7, &stOut); },
        [&](const fake::FAULT_S *pstFault) {
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, 0U);
            } else {
                EXPECT_TRUE(uiRet == 0x29000004U || uiRet == 0x29000001U);
                EXPECT_EQ(device::Bytes(stOut), device::BYTES(32, 0xA5));
            }
        });
}

} // namespace
