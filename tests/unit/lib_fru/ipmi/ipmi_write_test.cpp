// SPDX-License-Identifier: Apache-2.0
// Write FRU Data: device, cache, notices and the operation log, in that order.
#include <gtest/gtest.h>

#include "handler_call.h"
#include "lib_fru/ipmi/ipmi_handlers.h"

namespace {

using device::AreaInfo;
using device::BYTES;
using device::Call;
using device::Line;
using device::LINES;
using device::Null;
using device::ProvideImage;
using device::Response;
using device::RESPONSE_S;
using device::SetInfo;

BYTES WriteRequest(u16 usOffset, const BYTES &vecData)
{
    BYTES vecReq{device::g_ucID, static_cast<u8>(usOffset & 0xFFU), static_cast<u8>(usOffset >> 8U)};
    vecReq.resize(3U + vecData.size());
    std::copy(vecData.begin(), vecData.end(), vecReq.begin() + 3);
    return vecReq;
}

RESPONSE_S Write(u16 usOffset, const BYTES &vecData)
{
    return Call(WriteRequest(usOffset, vecData), 2U, LIB_FRU_WriteFRUData);
}

RESPONSE_S WriteCore(u16 usOffset, const BYTES &vecData)
{
    return Call(WriteRequest(usOffset, vecData), 2U, FRU_WriteFRUData);
}

// ---- Write FRU Data

const std::string g_strNotice = "MRPC 636/0 len=184 timeout=0 -> 0";

TEST(WriteFRUData, DeviceFirstThenCacheThenNotice)
{
    ProvideImage();
    BYTES vecChip = device::Chip();
    BYTES vecCache = device::Cached();
    const BYTES vecData = device::Pattern(5, 0x90);
    std::copy(vecData.begin(), vecData.end(), vecChip.begin() + 0x40 + 12);
    std::copy(vecData.begin(), vecData.end(), vecCache.begin() + 12);
    const RESPONSE_S stRes = WriteCore(12, vecData);
    EXPECT_EQ(stRes.uiLength, 2U);
    EXPECT_EQ(stRes.vecBytes, (BYTES{0, 5}));
    EXPECT_EQ(device::Chip(), vecChip);
    EXPECT_EQ(device::Cached(), vecCache);
    EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810021U, 184), device::Eeprom("write", 0x4C, 5, 5),
                                      device::g_strImageGet, device::DbPut(0x10810221U, 64), g_strNotice}));
    ASSERT_EQ(fake::RpcRequests().size(), 1U);
    EXPECT_EQ(fake::RpcRequests()[0].vecRequest, device::Bytes(device::Info(64)));
    EXPECT_FALSE(fake::RpcRequests()[0].bWantsAnswer);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(WriteFRUData, LastByteOfTheFru)
{
    ProvideImage();
    EXPECT_EQ(Write(63, {0x99}).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(device::Chip()[0x40 + 63], 0x99);
    EXPECT_EQ(device::Chip()[0x40 + 64], device::g_ucOutside);
    EXPECT_EQ(device::Cached()[63], 0x99);
}

TEST(WriteFRUData, RequestsWithoutDataAreTooShort)
{
    for (u32 uiLength = 0; uiLength <= 3U; ++uiLength) {
        ProvideImage();
        fake::Db()[device::g_uiKeyFlag] = {1};
        const BYTES vecReq(uiLength, device::g_ucID);
        const RESPONSE_S stRes = Call(vecReq, 2U, LIB_FRU_WriteFRUData);
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes, Response({0xC7}, 2));
        EXPECT_TRUE(fake::Calls().empty()); // the operate flag is not even looked at
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(WriteFRUData, TheCoreNeverReadsPastAShortRequest)
{
    for (u32 uiLength = 0; uiLength < 3U; ++uiLength) {
        ProvideImage(65535);
        const BYTES vecReq(uiLength, device::g_ucID);
        const RESPONSE_S stRes = Call(vecReq, 2U, FRU_WriteFRUData);
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes, Response({0xC7}, 2));
        EXPECT_TRUE(fake::Calls().empty());
    }
}

TEST(WriteFRUData, TheCoreWritesNothingForARequestOfThreeBytes)
{
    ProvideImage();
    const BYTES vecChip = device::Chip();
    EXPECT_EQ(WriteCore(0, {}).vecBytes, (BYTES{0, 0}));
    EXPECT_EQ(device::Chip(), vecChip);
    EXPECT_EQ(device::Cached(), device::Pattern(64));
}

TEST(WriteFRUData, UnknownDevice)
{
    fake::Reset();
    const RESPONSE_S stRes = WriteCore(0, {1});
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0xCB}, 2));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Fail to find FRU Device:ID:0x21!")});
}

TEST(WriteFRUData, OffsetAtOrBeyondTheSize)
{
    for (const u16 usOffset : {u16{64}, u16{0xFFFF}}) {
        ProvideImage();
        const RESPONSE_S stRes = WriteCore(usOffset, {1});
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes, Response({0xCC}, 2));
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(4, 4, "Invalid offset[" + device::Hex(usOffset) + "], exceeds[0x40]!")});
        EXPECT_EQ(device::Calls(), LINES{device::DbGet(0x10810021U, 184)});
    }
}

TEST(WriteFRUData, LengthMayReachTheEndAndNotPassIt)
{
    ProvideImage();
    EXPECT_EQ(WriteCore(0, BYTES(64, 0x10)).vecBytes, (BYTES{0, 64}));
    const BYTES vecChip = device::Chip();
    const RESPONSE_S stRes = WriteCore(60, BYTES(5, 0x11));
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0xC9}, 2));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Invalid write length[0x5], exceeds[0x4]!")});
    EXPECT_EQ(device::Chip(), vecChip);
}

TEST(WriteFRUData, TheLengthCountsIn16Bits)
{
    ProvideImage();
    const BYTES vecData(0x10000U + 2U, 0x44);
    EXPECT_EQ(WriteCore(0, vecData).vecBytes, (BYTES{0, 2}));
    EXPECT_EQ(fake::Calls("EEPROM"), LINES{device::Eeprom("write", 0x40, 2, 2)});
}

TEST(WriteFRUData, UnreachableDeviceLeavesTheCacheAlone)
{
    ProvideImage();
    fake::SetEepromResult(1, -9);
    const RESPONSE_S stRes = WriteCore(0, {1, 2});
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0x81}, 2));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4, "Fail to write Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2]."),
                     Line(4, 4, "Fail to write FRU Device data, unaccessible, ID:0x21, Ret:-9")}));
    EXPECT_EQ(device::Cached(), device::Pattern(64));
    EXPECT_TRUE(fake::RpcRequests().empty());
}

TEST(WriteFRUData, BusNumberBeyondTheRange)
{
    ProvideImage();
    SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucBusNumber = 16; });
    EXPECT_EQ(WriteCore(0, {1}).vecBytes, Response({0x81}, 2));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4, "BusNumber[16] exceeds!"),
                     Line(4, 4, "Fail to write FRU Device data, unaccessible, ID:0x21, Ret:-2130706429")}));
}

TEST(WriteFRUData, ShortWriteIsReportedAndGoesOn)
{
    ProvideImage();
    fake::SetEepromResult(1, 3);
    EXPECT_EQ(WriteCore(8, {1, 2, 3, 4}).vecBytes, (BYTES{0, 3}));
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Write ID[0x21] length is not equal, reqLen:4, retLen:3, ret:3.")});
    EXPECT_EQ(device::Part(device::Cached(), 8, 4), (BYTES{1, 2, 3, 4}));
    EXPECT_EQ(fake::RpcRequests().size(), 1U);
}

TEST(WriteFRUData, OnlyTheLowByteOfTheCountIsReturned)
{
    ProvideImage(600);
    EXPECT_EQ(WriteCore(0, BYTES(257, 7)).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Write ID[0x21] length is not equal, reqLen:257, retLen:1, ret:257.")});
}

TEST(WriteFRUData, AMissingCachedImageFailsNothing)
{
    ProvideImage();
    fake::Db().erase(0x10810221U);
    EXPECT_EQ(WriteCore(0, {1}).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(0, 4, "Get FRU Data failed! Ret:0x81000001."),
                     Line(4, 4, "Write FRU data to db failed! DeviceID:0x21 Ret:0x81000001.")}));
    EXPECT_EQ(fake::Db().count(0x10810221U), 0U);
    EXPECT_EQ(fake::RpcRequests().size(), 1U);
}

TEST(WriteFRUData, ACacheThatCannotBePatchedFailsNothing)
{
    ProvideImage();
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    const u8 aucReq[4] = {device::g_ucID, 0, 0, 0x77};
    u8 aucRes[2] = {};
    EXPECT_EQ(FRU_WriteFRUData(aucReq, 4, aucRes), 2U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_WriteFRUDataDB", "pucFRUBuf"),
                     Line(4, 4, "Write FRU data to db failed! DeviceID:0x21 Ret:0x81000004.")}));
    EXPECT_EQ(device::Chip()[0x40], 0x77);
    EXPECT_EQ(device::Cached(), device::Pattern(64));
}

TEST(WriteFRUData, TheDeviceIsWrittenWhateverTheCacheStatus)
{
    ProvideImage();
    device::PutStatus(1);
    SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucDatabaseOnly = 1; });
    EXPECT_EQ(WriteCore(0, {0x55}).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(device::Chip()[0x40], 0x55);
    EXPECT_EQ(device::Cached()[0], 0x55);
}

TEST(WriteFRUData, OemModeAsksOneMoreService)
{
    for (const u32 uiFlag : {0U, 1U, 2U, 4U, 3U}) {
        ProvideImage();
        fake::SetHwOemFlag(uiFlag);
        fake::SetRpcAnswer(29, 5, 0, {"some", "answer"});
        EXPECT_EQ(WriteCore(0, {1}).uiLength, 2U);
        EXPECT_EQ(fake::Calls("MRPC"),
                  uiFlag == 3U ? (LINES{"MRPC 29/5 len=0 timeout=0 -> 0", "MRPC_MsgFree", g_strNotice})
                               : LINES{g_strNotice});
        EXPECT_EQ(fake::RpcRequests()[0].bWantsAnswer, uiFlag == 3U);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(WriteFRUData, OemServiceThatFailsIsReportedAndReleased)
{
    ProvideImage();
    fake::SetHwOemFlag(3);
    fake::SetRpcAnswer(29, 5, 0x12345678);
    EXPECT_EQ(WriteCore(0, {1}).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(fake::Calls("MRPC"),
              (LINES{"MRPC 29/5 len=0 timeout=0 -> 0x12345678", "MRPC_MsgFree null", g_strNotice}));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "rpc call failed.")});
}

TEST(WriteFRUData, ANoticeThatFailsIsNobodysBusiness)
{
    ProvideImage();
    fake::SetRpcAnswer(636, 0, 1);
    EXPECT_EQ(WriteCore(0, {1}).vecBytes, (BYTES{0, 1}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(WriteFRUData, NullPointersOfTheCore)
{
    fake::Reset();
    u8 aucBytes[4] = {0xA5, 0xA5, 0xA5, 0xA5};
    EXPECT_EQ(FRU_WriteFRUData(nullptr, 4, nullptr), 1U);
    EXPECT_EQ(FRU_WriteFRUData(aucBytes, 4, nullptr), 1U);
    EXPECT_EQ(FRU_WriteFRUData(nullptr, 4, aucBytes), 1U);
    EXPECT_EQ(aucBytes[0], 0xA5);
    // The response comes first here, unlike in the handler.
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_WriteFRUData", "pucRes"), Null("FRU_WriteFRUData", "pucRes"),
                                       Null("FRU_WriteFRUData", "pucReq")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(WriteFRUData, NullPointersOfTheHandler)
{
    fake::Reset();
    u8 aucBytes[4] = {0xA5, 0xA5, 0xA5, 0xA5};
    EXPECT_EQ(LIB_FRU_WriteFRUData(nullptr, 0, nullptr), 1U);
    EXPECT_EQ(LIB_FRU_WriteFRUData(nullptr, 0, aucBytes), 1U);
    EXPECT_EQ(LIB_FRU_WriteFRUData(aucBytes, 0, nullptr), 1U);
    EXPECT_EQ(aucBytes[0], 0xA5);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("LIB_FRU_WriteFRUData", "pucReq"), Null("LIB_FRU_WriteFRUData", "pucReq"),
                     Null("LIB_FRU_WriteFRUData", "pucRes")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(WriteFRUData, RequestAndResponseMayBeOneBuffer)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    u8 aucBoth[5] = {device::g_ucID, 4, 0, 0x61, 0x62};
    EXPECT_EQ(LIB_FRU_WriteFRUData(aucBoth, 5, aucBoth), 2U);
    EXPECT_EQ(aucBoth[0], 0U);
    EXPECT_EQ(device::Part(device::Cached(), 4, 2), (BYTES{0x61, 0x62}));
    EXPECT_EQ(fake::Calls("OPERATELOG"),
              LINES{"OPERATELOG 17 99 [Set FRU successfully, Device ID: 33.] 0 0 12 -> 0"});
}

// ---- operation log

TEST(OperateFlag, OneEntryForEachSequence)
{
    ProvideImage();
    (void)AreaInfo(device::g_ucID);
    EXPECT_EQ(Write(0, {1}).uiLength, 2U);
    EXPECT_EQ(fake::Calls("OPERATELOG"),
              LINES{"OPERATELOG 17 99 [Set FRU successfully, Device ID: 33.] 0 0 12 -> 0"});
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{0});
    EXPECT_EQ(Write(1, {2}).uiLength, 2U);
    EXPECT_EQ(fake::Calls("OPERATELOG").size(), 1U);
}

TEST(OperateFlag, TheFlagIsReadAfterTheWriteAndPutBackAfterTheEntry)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    EXPECT_EQ(Write(0, {1}).uiLength, 2U);
    EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810021U, 184), device::Eeprom("write", 0x40, 1, 1),
                                      device::g_strImageGet, device::DbPut(0x10810221U, 64), g_strNotice,
                                      device::DbGet(device::g_uiKeyFlag, 1),
                                      "OPERATELOG 17 99 [Set FRU successfully, Device ID: 33.] 0 0 12 -> 0",
                                      device::DbPut(device::g_uiKeyFlag, 1)}));
}

TEST(OperateFlag, AFailedWriteIsLoggedAsOneAndClosesTheSequence)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    EXPECT_EQ(Write(64, {1}).vecBytes, Response({0xCC}, 2));
    EXPECT_EQ(fake::Calls("OPERATELOG"),
              LINES{"OPERATELOG 17 67 [Failed to set FRU, Device ID: 33.] 0 0 12 -> 0"});
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{0});
}

TEST(OperateFlag, OnlyOneMeansOpen)
{
    for (const u8 ucFlag : {u8{0}, u8{2}, u8{0xFF}}) {
        ProvideImage();
        fake::Db()[device::g_uiKeyFlag] = {ucFlag};
        EXPECT_EQ(Write(0, {1}).uiLength, 2U);
        EXPECT_TRUE(fake::Calls("OPERATELOG").empty());
        EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{ucFlag});
    }
}

TEST(OperateFlag, AnUnreadableFlagLogsNothing)
{
    ProvideImage();
    EXPECT_EQ(Write(0, {1}).vecBytes, (BYTES{0, 1}));
    EXPECT_TRUE(fake::Calls("OPERATELOG").empty());
    EXPECT_EQ(fake::Db().count(device::g_uiKeyFlag), 0U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(OperateFlag, ASequenceIsClosedWhateverTheLogAnswers)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    fake::Arm({fake::KIND_E::OPERATELOG, 1, false});
    EXPECT_EQ(Write(0, {1}).vecBytes, (BYTES{0, 1}));
    fake::Disarm();
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{0});
    EXPECT_EQ(fake::Calls("OPERATELOG").size(), 1U);
    // The entry is lost: the next write belongs to no sequence and makes none.
    EXPECT_EQ(Write(0, {1}).vecBytes, (BYTES{0, 1}));
    EXPECT_EQ(fake::Calls("OPERATELOG").size(), 1U);
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{0});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(OperateFlag, TheCoreLeavesItAlone)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    EXPECT_EQ(WriteCore(0, {1}).uiLength, 2U);
    EXPECT_TRUE(fake::Calls("OPERATELOG").empty());
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{1});
}

TEST(WriteFRUData, Sweep)
{
    RESPONSE_S stRes = {};
    BYTES vecOldChip;
    BYTES vecNewChip;
    BYTES vecOldCache;
    BYTES vecNewCache;
    const BYTES vecData = device::Pattern(8, 0x91);
    fake::Sweep(
        [&] {
            device::Provision(device::Pattern(64));
            fake::Db()[device::g_uiKeyFlag] = {1};
            fake::SetHwOemFlag(3);
            vecOldChip = vecNewChip = device::Chip();
            vecOldCache = vecNewCache = device::Cached();
            std::copy(vecData.begin(), vecData.end(), vecNewChip.begin() + 0x40 + 16);
            std::copy(vecData.begin(), vecData.end(), vecNewCache.begin() + 16);
        },
        [&] { stRes = Write(16, vecData); },
        [&](const fake::FAULT_S *pstFault) {
            const bool bSuccess = stRes.vecBytes[0] == 0U;
            EXPECT_EQ(stRes.uiLength, bSuccess ? 2U : 1U);
            if (!bSuccess) {
                EXPECT_NE(pstFault, nullptr);
                EXPECT_TRUE(stRes.vecBytes[0] == 0x81U || stRes.vecBytes[0] == 0xCBU);
                EXPECT_EQ(device::Chip(), vecOldChip);
                EXPECT_EQ(device::Cached(), vecOldCache);
            } else if (pstFault == nullptr || pstFault->eHow != fake::HOW_E::SHORT) {
                EXPECT_EQ(device::Chip(), vecNewChip);
            }
            EXPECT_TRUE(device::Cached() == vecOldCache || device::Cached() == vecNewCache);
            EXPECT_LE(fake::Calls("OPERATELOG").size(), 1U);
        });
}

} // namespace
