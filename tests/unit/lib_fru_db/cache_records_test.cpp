// SPDX-License-Identifier: Apache-2.0
// The thirteen cache records: keys, lengths, order of checks, and results that pass through unchanged.
#include <gtest/gtest.h>

#include <cstring>

#include "fake/fake_platform.h"
#include "lib_fru_cache.h"
#include "lib_fru_types.h"

namespace {

using LINES = std::vector<std::string>;

constexpr u8 g_ucFill = 0xA5;

std::string Hex(u32 uiValue)
{
    char acText[16];
    (void)snprintf(acText, sizeof(acText), "%#x", uiValue);
    return acText;
}

// One call of the interface with a buffer for its data: null for a null pointer.
struct RECORD_CALL_S
{
    const char *pcFunction;
    const char *pcPointer; // null: the call has no pointer argument
    u32 uiKey;             // for device 0
    bool bPerDevice;
    u32 uiLength;
    u32 (*fnCall)(u8 ucDeviceID, u8 *pucData);
};

FRU_DEVICE_INFO_S *Info(u8 *pucData)
{
    return reinterpret_cast<FRU_DEVICE_INFO_S *>(pucData);
}

FRU_DEVICE_TBL_S *Table(u8 *pucData)
{
    return reinterpret_cast<FRU_DEVICE_TBL_S *>(pucData);
}

FRU_SDR_S *Sdr(u8 *pucData)
{
    return reinterpret_cast<FRU_SDR_S *>(pucData);
}

const RECORD_CALL_S g_astPuts[] = {
    {"FRU_DB_PutFRUDeviceInfo", "pstFRUDeviceInfo", 0x10810000U, true, 184U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_PutFRUDeviceInfo(ucID, Info(pucData)); }},
    {"FRU_DB_PutFRUSDR", "pstFRUSDR", 0x10810100U, true, 32U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_PutFRUSDR(ucID, Sdr(pucData)); }},
    {"FRU_DB_PutFRUData", "pucFRUBuf", 0x10810200U, true, 100U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_PutFRUData(ucID, 100U, pucData); }},
    {"FRU_DB_PutOperateFlag", nullptr, 0x108103FFU, false, 1U,
     [](u8 /*ucID*/, u8 * /*pucData*/) { return FRU_DB_PutOperateFlag(g_ucFill); }},
    {"FRU_DB_PutFRUDeviceTbl", "pstFRUDeviceTbl", 0x108105FFU, false, 3703U,
     [](u8 /*ucID*/, u8 *pucData) { return FRU_DB_PutFRUDeviceTbl(Table(pucData)); }},
    {"FRU_DB_PutFRUDataCacheStatus", nullptr, 0x10810400U, true, 1U,
     [](u8 ucID, u8 * /*pucData*/) { return FRU_DB_PutFRUDataCacheStatus(ucID, g_ucFill); }},
};

const RECORD_CALL_S g_astGets[] = {
    {"FRU_DB_GetFRUDeviceInfo", "pstFRUDeviceInfo", 0x10810000U, true, 184U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_GetFRUDeviceInfo(ucID, Info(pucData)); }},
    {"FRU_DB_GetFRUSDR", "pstFRUSDR", 0x10810100U, true, 32U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_GetFRUSDR(ucID, Sdr(pucData)); }},
    {"FRU_DB_GetFRUData", "pucFRUBuf", 0x10810200U, true, 100U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_GetFRUData(ucID, 100U, pucData); }},
    {"FRU_DB_GetOperateFlag", "pucOperateFlag", 0x108103FFU, false, 1U,
     [](u8 /*ucID*/, u8 *pucData) { return FRU_DB_GetOperateFlag(pucData); }},
    {"FRU_DB_GetFRUDeviceTbl", "pstFRUDeviceTbl", 0x108105FFU, false, 3703U,
     [](u8 /*ucID*/, u8 *pucData) { return FRU_DB_GetFRUDeviceTbl(Table(pucData)); }},
    {"FRU_DB_GetFRUDataCacheStatus", "pucCacheStatus", 0x10810400U, true, 1U,
     [](u8 ucID, u8 *pucData) { return FRU_DB_GetFRUDataCacheStatus(ucID, pucData); }},
};

const RECORD_CALL_S g_stDelete = {
    "FRU_DB_DelFRUData", nullptr, 0x10810200U, true, 0U, [](u8 ucID, u8 * /*pucData*/) {
        return FRU_DB_DelFRUData(ucID);
    }};

std::vector<RECORD_CALL_S> AllCalls()
{
    std::vector<RECORD_CALL_S> vecCalls(std::begin(g_astPuts), std::end(g_astPuts));
    vecCalls.insert(vecCalls.end(), std::begin(g_astGets), std::end(g_astGets));
    vecCalls.push_back(g_stDelete);
    return vecCalls;
}

u32 Key(const RECORD_CALL_S &stCall, u8 ucDeviceID)
{
    return stCall.bPerDevice ? stCall.uiKey | ucDeviceID : stCall.uiKey;
}

TEST(CacheRecords, PutStoresTheRecordUnderItsKey)
{
    for (const RECORD_CALL_S &stCall : g_astPuts) {
        SCOPED_TRACE(stCall.pcFunction);
        for (const u8 ucID : {u8{0}, u8{7}, u8{255}}) {
            fake::Reset();
            fake::BYTES vecData(stCall.uiLength, g_ucFill);
            EXPECT_EQ(stCall.fnCall(ucID, vecData.data()), 0U);
            const u32 uiKey = Key(stCall, ucID);
            EXPECT_EQ(fake::Calls(),
                      (LINES{"DB_Open", "DB_Put " + Hex(uiKey) + " " + std::to_string(stCall.uiLength) +
                                            " lib_fru_db.c -> 0"}));
            ASSERT_EQ(fake::Db().size(), 1U);
            EXPECT_EQ(fake::Db().at(uiKey), vecData);
            EXPECT_TRUE(fake::Messages().empty());
        }
    }
}

TEST(CacheRecords, GetCopiesTheRecordOut)
{
    for (const RECORD_CALL_S &stCall : g_astGets) {
        SCOPED_TRACE(stCall.pcFunction);
        for (const u8 ucID : {u8{0}, u8{7}, u8{255}}) {
            fake::Reset();
            const u32 uiKey = Key(stCall, ucID);
            fake::Db()[uiKey] = fake::BYTES(stCall.uiLength, g_ucFill);
            fake::BYTES vecData(stCall.uiLength, 0);
            EXPECT_EQ(stCall.fnCall(ucID, vecData.data()), 0U);
            EXPECT_EQ(vecData, fake::BYTES(stCall.uiLength, g_ucFill));
            EXPECT_EQ(fake::Calls(), (LINES{"DB_Open", "DB_Get " + Hex(uiKey) + " " +
                                                           std::to_string(stCall.uiLength) + " -> 0"}));
            EXPECT_TRUE(fake::Messages().empty());
        }
    }
}

TEST(CacheRecords, DeleteRemovesTheImageOfThatDeviceOnly)
{
    fake::Reset();
    fake::Db()[0x10810200U] = {1};
    fake::Db()[0x10810203U] = {2};
    EXPECT_EQ(FRU_DB_DelFRUData(3U), 0U);
    EXPECT_EQ(fake::Calls(), (LINES{"DB_Open", "DB_Del 0x10810203 -> 0"}));
    EXPECT_EQ(fake::Db().size(), 1U);
    EXPECT_EQ(FRU_DB_DelFRUData(0U), 0U);
    EXPECT_TRUE(fake::Db().empty());
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(CacheRecords, NullPointerIsOutOfRangeAndReported)
{
    for (const RECORD_CALL_S &stCall : AllCalls()) {
        if (stCall.pcPointer == nullptr) {
            continue;
        }
        SCOPED_TRACE(stCall.pcFunction);
        fake::Reset();
        EXPECT_EQ(stCall.fnCall(3U, nullptr), FRU_ERR_OUT_OF_RANGE);
        EXPECT_EQ(fake::Messages(),
                  LINES{fake::NullMessage("lib_fru_db.c", stCall.pcFunction, stCall.pcPointer)});
        EXPECT_EQ(fake::Calls(), LINES{"DB_Open"});
    }
}

TEST(CacheRecords, MissingHandleComesBeforeTheNullPointer)
{
    for (const RECORD_CALL_S &stCall : AllCalls()) {
        SCOPED_TRACE(stCall.pcFunction);
        for (const bool bNull : {false, true}) {
            fake::Reset();
            fake::BYTES vecData(stCall.uiLength + 1U, g_ucFill);
            fake::Arm({fake::KIND_E::DB, 1U, false});
            EXPECT_EQ(stCall.fnCall(3U, bNull ? nullptr : vecData.data()), FRU_ERR_DB_OPEN);
            fake::Disarm();
            EXPECT_EQ(fake::Messages(), LINES{fake::NullMessage("lib_fru_db.c", stCall.pcFunction, "pDb")});
            EXPECT_EQ(fake::Calls(), LINES{"DB_Open -> null"});
            EXPECT_EQ(vecData, fake::BYTES(stCall.uiLength + 1U, g_ucFill));
        }
    }
}

TEST(CacheRecords, TheDatabasesOwnResultComesBackUnlogged)
{
    for (const RECORD_CALL_S &stCall : AllCalls()) {
        SCOPED_TRACE(stCall.pcFunction);
        fake::Reset();
        fake::BYTES vecData(stCall.uiLength + 1U, g_ucFill);
        fake::Db()[Key(stCall, 3U)] = fake::BYTES(stCall.uiLength, 0x11);
        fake::Arm({fake::KIND_E::DB, 2U, false});
        EXPECT_EQ(stCall.fnCall(3U, vecData.data()), 0x81000001U);
        fake::Disarm();
        EXPECT_EQ(fake::Calls().size(), 2U);
        EXPECT_TRUE(fake::Messages().empty());
        EXPECT_EQ(vecData, fake::BYTES(stCall.uiLength + 1U, g_ucFill));
        EXPECT_EQ(fake::Db().at(Key(stCall, 3U)), fake::BYTES(stCall.uiLength, 0x11));
    }
}

TEST(CacheRecords, NullReportCarriesTheLineOnce)
{
    fake::Reset();
    EXPECT_EQ(FRU_DB_GetOperateFlag(nullptr), FRU_ERR_OUT_OF_RANGE);
    ASSERT_EQ(fake::RawMessages().size(), 1U);
    const fake::MESSAGE_S &stMessage = fake::RawMessages()[0];
    EXPECT_GT(stMessage.uiLine, 0U);
    EXPECT_EQ(stMessage.strFormat, "Pointer pucOperateFlag is Null, File:%s Func:%s Line:%d");
    EXPECT_EQ(stMessage.strText.substr(stMessage.strText.rfind(':') + 1U), std::to_string(stMessage.uiLine));
}

TEST(CacheRecords, ImageOfAnotherLengthIsTheDatabasesDecision)
{
    fake::Reset();
    fake::Db()[0x10810205U] = fake::BYTES(16, 0x22);
    fake::BYTES vecData(32, g_ucFill);
    for (const u16 usLength : {u16{15}, u16{17}, u16{32}, u16{0}}) {
        EXPECT_NE(FRU_DB_GetFRUData(5U, usLength, vecData.data()), 0U);
        EXPECT_EQ(vecData, fake::BYTES(32, g_ucFill));
    }
    EXPECT_EQ(FRU_DB_GetFRUData(5U, 16U, vecData.data()), 0U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(CacheRecords, ImageLengthsAreTakenAsGiven)
{
    for (const u16 usLength : {u16{0}, u16{1}, u16{65535}}) {
        fake::Reset();
        const fake::BYTES vecData(usLength + 1U, g_ucFill);
        EXPECT_EQ(FRU_DB_PutFRUData(1U, usLength, vecData.data()), 0U);
        EXPECT_EQ(fake::Db().at(0x10810201U).size(), usLength);
    }
}

TEST(CacheRecords, MissingRecordsAreTheDatabasesFailureAndLeaveTheBufferAlone)
{
    for (const RECORD_CALL_S &stCall : g_astGets) {
        SCOPED_TRACE(stCall.pcFunction);
        fake::Reset();
        fake::BYTES vecData(stCall.uiLength, g_ucFill);
        EXPECT_EQ(stCall.fnCall(9U, vecData.data()), 0x81000001U);
        EXPECT_EQ(vecData, fake::BYTES(stCall.uiLength, g_ucFill));
        EXPECT_TRUE(fake::Messages().empty());
    }
    fake::Reset();
    EXPECT_EQ(FRU_DB_DelFRUData(9U), 0x81000001U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(CacheRecords, NoHandleIsKeptBetweenCalls)
{
    fake::Reset();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(FRU_DB_PutOperateFlag(static_cast<u8>(i)), 0U);
    }
    EXPECT_EQ(fake::Calls("DB_Open").size(), 3U);
    EXPECT_EQ(fake::Db().at(0x108103FFU), fake::BYTES{2});
}

} // namespace
