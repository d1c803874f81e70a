// The three IPMI FRU command handlers: responses, messages, what is asked of cache and device, what is told
// to whom.
#include <gtest/gtest.h>

#include <memory>

#include "fru_device.h"
#include "lib_fru/ipmi_handlers.h"
#include "lib_fru_access.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;

const std::string g_strNoCache = Line(4, 4, "Read FRU Data From DB failed! FRU Name:PSU2 DeviceID:0x21.");
const std::string g_strDbOnly = device::DbGet(0x10810221U, 64);

struct RESPONSE_S
{
    u32 uiLength;
    BYTES vecBytes; // the whole buffer, 0xA5 where nothing was written
};

BYTES Response(const BYTES &vecHead, size_t uiSize)
{
    BYTES vecBytes = vecHead;
    vecBytes.resize(uiSize, 0xA5);
    return vecBytes;
}

// Makes a handler's call with request and response in buffers of exactly their size.
template <typename CALL> RESPONSE_S Call(const BYTES &vecReq, size_t uiResSize, CALL fnCall)
{
    const std::unique_ptr<u8[]> upReq(new u8[vecReq.size()]);
    const std::unique_ptr<u8[]> upRes(new u8[uiResSize]);
    std::copy(vecReq.begin(), vecReq.end(), upReq.get());
    (void)memset(upRes.get(), 0xA5, uiResSize);
    const u32 uiLength = fnCall(upReq.get(), static_cast<u32>(vecReq.size()), upRes.get());
    return {uiLength, BYTES(upRes.get(), upRes.get() + uiResSize)};
}

RESPONSE_S Read(u16 usOffset, u8 ucCount)
{
    const BYTES vecReq{device::g_ucID, static_cast<u8>(usOffset & 0xFFU), static_cast<u8>(usOffset >> 8U),
                       ucCount};
    return Call(vecReq, 2U + ucCount, [](const u8 *pucReq, u32 /*uiLength*/, u8 *pucRes) {
        return LIB_FRU_ReadFRUData(pucReq, 4, pucRes, 0);
    });
}

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

RESPONSE_S AreaInfo(u8 ucDeviceID)
{
    return Call({ucDeviceID}, 4U, LIB_FRU_GetFRUAreaInfo);
}

void SetInfo(const std::function<void(FRU_DEVICE_INFO_S &)> &fnChange, u16 usSize = 64)
{
    FRU_DEVICE_INFO_S stInfo = device::Info(usSize);
    fnChange(stInfo);
    device::PutInfo(stInfo);
}

void ProvideImage(size_t uiSize = 64)
{
    fake::Reset();
    device::Provision(device::Pattern(uiSize));
}

// A device whose EEPROM holds other bytes than the cache: the response shows who answered.
void ProvideDifferentCache()
{
    ProvideImage();
    device::Cached() = device::Pattern(64, 0x80);
}

BYTES Data(const BYTES &vecBytes)
{
    BYTES vecRes{0, static_cast<u8>(vecBytes.size())};
    vecRes.resize(2U + vecBytes.size());
    std::copy(vecBytes.begin(), vecBytes.end(), vecRes.begin() + 2);
    return vecRes;
}

// ---- Get FRU Inventory Area Info

TEST(AreaInfo, SizeAndAccessTypeOfTheRecord)
{
    fake::Reset();
    device::PutInfo(device::Info(0x1234));
    const RESPONSE_S stRes = AreaInfo(0x21);
    EXPECT_EQ(stRes.uiLength, 4U);
    EXPECT_EQ(stRes.vecBytes, (BYTES{0, 0x34, 0x12, 0x01}));
    EXPECT_EQ(device::Calls(),
              (LINES{device::DbPut(device::g_uiKeyFlag, 1), device::DbGet(0x10810021U, 184)}));
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{1});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(AreaInfo, UnknownDeviceOpensTheSequenceAllTheSame)
{
    fake::Reset();
    const RESPONSE_S stRes = AreaInfo(0x99);
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0xCB}, 4));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Fail to find FRU Device ID:0x99!")});
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{1});
}

TEST(AreaInfo, FlagThatCannotBeStoredFailsNothing)
{
    fake::Reset();
    device::PutInfo(device::Info(64));
    fake::Arm({fake::KIND_E::DB, 2, false});
    const RESPONSE_S stRes = AreaInfo(0x21);
    fake::Disarm();
    EXPECT_EQ(stRes.vecBytes, (BYTES{0, 64, 0, 1}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(AreaInfo, NullPointers)
{
    fake::Reset();
    u8 ucByte = 0xA5;
    EXPECT_EQ(LIB_FRU_GetFRUAreaInfo(nullptr, 1, nullptr), 1U);
    EXPECT_EQ(LIB_FRU_GetFRUAreaInfo(nullptr, 1, &ucByte), 1U);
    EXPECT_EQ(LIB_FRU_GetFRUAreaInfo(&ucByte, 1, nullptr), 1U);
    EXPECT_EQ(ucByte, 0xA5);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("LIB_FRU_GetFRUAreaInfo", "pucReq"), Null("LIB_FRU_GetFRUAreaInfo", "pucReq"),
                     Null("LIB_FRU_GetFRUAreaInfo", "pucRes")}));
    EXPECT_TRUE(fake::Calls().empty());
}

// ---- Read FRU Data

TEST(ReadFRUData, TrustedCacheAnswersAlone)
{
    ProvideDifferentCache();
    const RESPONSE_S stRes = Read(10, 20);
    EXPECT_EQ(stRes.uiLength, 22U);
    EXPECT_EQ(stRes.vecBytes, Data(device::Part(device::Pattern(64, 0x80), 10, 20)));
    EXPECT_EQ(device::Calls(),
              (LINES{device::DbGet(0x10810021U, 184), device::DbGet(0x10810421U, 1), g_strDbOnly}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(ReadFRUData, UntrustedCacheIsNotAsked)
{
    for (const u8 ucStatus : {u8{1}, u8{3}, u8{0xFF}}) {
        ProvideDifferentCache();
        device::PutStatus(ucStatus);
        const RESPONSE_S stRes = Read(10, 20);
        EXPECT_EQ(stRes.uiLength, 22U);
        EXPECT_EQ(stRes.vecBytes, Data(device::Part(device::Pattern(64), 10, 20)));
        EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810021U, 184), device::DbGet(0x10810421U, 1),
                                          device::Eeprom("read", 0x4A, 20, 20)}));
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ReadFRUData, FaultMarksDoNotUntrustTheCache)
{
    ProvideDifferentCache();
    device::PutStatus(0xFE);
    EXPECT_EQ(Read(0, 4).vecBytes, Data(device::Part(device::Pattern(64, 0x80), 0, 4)));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(ReadFRUData, UnreadableCacheStatusGoesToTheDevice)
{
    ProvideDifferentCache();
    fake::Db().erase(0x10810421U);
    EXPECT_EQ(Read(0, 4).vecBytes, Data(device::Part(device::Pattern(64), 0, 4)));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Get FRU:0x21 data cache status failed! Ret:-2130706431.")});
}

TEST(ReadFRUData, MissingCachedImageGoesToTheDevice)
{
    ProvideImage();
    fake::Db().erase(0x10810221U);
    EXPECT_EQ(Read(60, 4).vecBytes, Data(device::Part(device::Pattern(64), 60, 4)));
    EXPECT_EQ(fake::Messages(), LINES{g_strNoCache});
    EXPECT_EQ(fake::Calls("EEPROM"), LINES{device::Eeprom("read", 0x7C, 4, 4)});
}

TEST(ReadFRUData, DatabaseOnlyDeviceIsNeverTouched)
{
    for (const u8 ucFlag : {u8{1}, u8{0x80}}) {
        ProvideDifferentCache();
        SetInfo([&](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucDatabaseOnly = ucFlag; });
        device::PutStatus(1); // not even looked at
        EXPECT_EQ(Read(0, 64).vecBytes, Data(device::Pattern(64, 0x80)));
        EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810021U, 184), g_strDbOnly}));
        fake::Db().erase(0x10810221U);
        const RESPONSE_S stRes = Read(0, 64);
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes, Response({0xCB}, 66));
        EXPECT_EQ(fake::Messages(), LINES{g_strNoCache});
        EXPECT_TRUE(fake::Calls("EEPROM").empty());
    }
}

TEST(ReadFRUData, UnknownDevice)
{
    fake::Reset();
    const RESPONSE_S stRes = Read(0, 8);
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0xCB}, 10));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Fail to find FRU Device ID[0x21]!")});
}

TEST(ReadFRUData, OffsetAtOrBeyondTheSize)
{
    for (const u16 usOffset : {u16{64}, u16{65}, u16{0xFFFF}}) {
        ProvideImage();
        const RESPONSE_S stRes = Read(usOffset, 1);
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes, Response({0xCC}, 3));
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(4, 4, "Invalid offset[" + device::Hex(usOffset) + "], exceeds[0x40]!")});
        EXPECT_EQ(device::Calls(), LINES{device::DbGet(0x10810021U, 184)});
    }
}

TEST(ReadFRUData, AnEmptyFruHasNoOffset)
{
    ProvideImage();
    SetInfo([](FRU_DEVICE_INFO_S & /*stInfo*/) {}, 0);
    EXPECT_EQ(Read(0, 0).vecBytes, Response({0xCC}, 2));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Invalid offset[0], exceeds[0]!")});
}

TEST(ReadFRUData, CountMayReachTheEndAndNotPassIt)
{
    ProvideImage();
    EXPECT_EQ(Read(60, 4).uiLength, 6U);
    EXPECT_TRUE(fake::Messages().empty());
    const RESPONSE_S stRes = Read(60, 5);
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes, Response({0xC9}, 7));
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Invalid read counts[0x5], exceeds[0x4]!")});
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(ReadFRUData, CountOfNothing)
{
    for (const u8 ucStatus : {u8{0}, u8{1}}) {
        ProvideImage();
        device::PutStatus(ucStatus);
        const RESPONSE_S stRes = Read(63, 0);
        EXPECT_EQ(stRes.uiLength, 2U);
        EXPECT_EQ(stRes.vecBytes, (BYTES{0, 0}));
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ReadFRUData, TheLargestCount)
{
    ProvideImage(300);
    device::PutStatus(1);
    const RESPONSE_S stRes = Read(45, 255);
    EXPECT_EQ(stRes.uiLength, 257U);
    EXPECT_EQ(stRes.vecBytes, Data(device::Part(device::Pattern(300), 45, 255)));
}

TEST(ReadFRUData, UnreachableDevice)
{
    ProvideImage();
    device::PutStatus(1);
    fake::SetEepromResult(1, -5);
    const RESPONSE_S stRes = Read(8, 4);
    EXPECT_EQ(stRes.uiLength, 1U);
    EXPECT_EQ(stRes.vecBytes[0], 0x81);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4,
                          "Fail to read Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2] "
                          "Ret:0xfffffffb."),
                     Line(4, 4, "Fail to read fru data! ID[0x21] Offset[0x40] Size[64] Ret[-5].")}));
}

TEST(ReadFRUData, RecordsThatNoEepromCallCanServe)
{
    ProvideImage();
    device::PutStatus(1);
    SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucBusNumber = 16; });
    EXPECT_EQ(Read(8, 4).vecBytes, Response({0x81}, 6));
    SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucEEPROMType = 0; });
    EXPECT_EQ(Read(8, 4).vecBytes, Response({0x81}, 6));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4, "BusNumber[16] exceeds!"),
                     Line(4, 4, "Fail to read fru data! ID[0x21] Offset[0x40] Size[64] Ret[-2130706429]."),
                     Line(0, 4, "Not support eeprom type:0!"),
                     Line(4, 4, "Fail to read fru data! ID[0x21] Offset[0x40] Size[64] Ret[-2130706431].")}));
}

TEST(ReadFRUData, AGoodReadOf203BytesReadsAsNotPresent)
{
    for (const u8 ucStatus : {u8{0}, u8{1}}) {
        ProvideImage(256);
        device::PutStatus(ucStatus);
        const RESPONSE_S stRes = Read(0, 203);
        EXPECT_EQ(stRes.uiLength, 1U);
        EXPECT_EQ(stRes.vecBytes[0], 0xCB);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ReadFRUData, AMissingCacheAndACountOf203DoNotReachTheDevice)
{
    ProvideImage(256);
    fake::Db().erase(0x10810221U);
    EXPECT_EQ(Read(0, 203).vecBytes[0], 0xCB);
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(ReadFRUData, ShortReadIsReportedAndSucceeds)
{
    ProvideImage();
    device::PutStatus(1);
    device::Chip().resize(0x40 + 10);
    const RESPONSE_S stRes = Read(0, 16);
    EXPECT_EQ(stRes.uiLength, 12U);
    EXPECT_EQ(stRes.vecBytes[0], 0U);
    EXPECT_EQ(stRes.vecBytes[1], 10U);
    EXPECT_EQ(device::Part(stRes.vecBytes, 2, 10), device::Pattern(10));
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Read length is not equal! ReqLen[0x10] RetLen[0xa] ID[0x21].")});
}

TEST(ReadFRUData, TheStartOffsetWrapsAt64KiB)
{
    ProvideImage(300);
    device::PutStatus(1);
    SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.usStartOffset = 0xFFF0; }, 300);
    device::Chip() = device::Pattern(64);
    EXPECT_EQ(Read(0x20, 4).vecBytes, Data(device::Part(device::Pattern(64), 0x10, 4)));
    EXPECT_EQ(fake::Calls("EEPROM"), LINES{device::Eeprom("read", 0x10, 4, 4)});
}

TEST(ReadFRUData, LengthAndFourthArgumentAreNotLookedAt)
{
    for (const u8 ucLength : {u8{0}, u8{3}, u8{255}}) {
        ProvideImage();
        const u8 aucReq[4] = {device::g_ucID, 0, 0, 4};
        u8 aucRes[6];
        EXPECT_EQ(LIB_FRU_ReadFRUData(aucReq, ucLength, aucRes, 0xFFFFFFFFU), 6U);
    }
}

TEST(ReadFRUData, NullPointersWriteNothing)
{
    fake::Reset();
    u8 aucReq[4] = {};
    u8 ucRes = 0xA5;
    EXPECT_EQ(LIB_FRU_ReadFRUData(nullptr, 4, nullptr, 0), 1U);
    EXPECT_EQ(LIB_FRU_ReadFRUData(nullptr, 4, &ucRes, 0), 1U);
    EXPECT_EQ(LIB_FRU_ReadFRUData(aucReq, 4, nullptr, 0), 1U);
    EXPECT_EQ(ucRes, 0xA5);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("LIB_FRU_ReadFRUData", "pucReq"), Null("LIB_FRU_ReadFRUData", "pucReq"),
                     Null("LIB_FRU_ReadFRUData", "pucRes")}));
    EXPECT_TRUE(fake::Calls().empty());
}

void SweepRead(const std::function<void()> &fnSetup)
{
    RESPONSE_S stRes = {};
    BYTES vecChip;
    BYTES vecCache;
    fake::Sweep(
        [&] {
            fnSetup();
            vecChip = device::Chip();
            vecCache = device::Cached();
        },
        [&] { stRes = Read(4, 32); },
        [&](const fake::FAULT_S *pstFault) {
            EXPECT_EQ(device::Chip(), vecChip);
            EXPECT_EQ(device::Cached(), vecCache);
            EXPECT_TRUE(fake::Calls("EEPROM write").empty());
            EXPECT_TRUE(fake::Calls("DB_Put").empty());
            const u8 ucCompletionCode = stRes.vecBytes[0];
            if (ucCompletionCode == 0U) {
                EXPECT_EQ(stRes.uiLength, stRes.vecBytes[1] + 2U);
                EXPECT_EQ(device::Part(stRes.vecBytes, 2, stRes.vecBytes[1]),
                          device::Part(device::Pattern(64), 4, stRes.vecBytes[1]));
            } else {
                EXPECT_NE(pstFault, nullptr);
                EXPECT_EQ(stRes.uiLength, 1U);
                EXPECT_TRUE(ucCompletionCode == 0x81U || ucCompletionCode == 0xCBU);
                EXPECT_FALSE(fake::Messages().empty());
            }
        });
}

// The response lives in buffers of the test; they are given back before the sweep counts.
TEST(ReadFRUData, SweepOverTheCachePath)
{
    SweepRead([] { device::Provision(device::Pattern(64)); });
}

TEST(ReadFRUData, SweepOverTheDevicePath)
{
    SweepRead([] {
        device::Provision(device::Pattern(64));
        device::PutStatus(1);
    });
}

TEST(ReadFRUData, SweepOverTheDatabaseOnlyPath)
{
    SweepRead([] {
        device::Provision(device::Pattern(64));
        SetInfo([](FRU_DEVICE_INFO_S &stInfo) { stInfo.ucDatabaseOnly = 1; });
    });
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
                                      g_strDbOnly, device::DbPut(0x10810221U, 64), g_strNotice}));
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
    EXPECT_EQ(device::Calls(),
              (LINES{device::DbGet(0x10810021U, 184), device::Eeprom("write", 0x40, 1, 1), g_strDbOnly,
                     device::DbPut(0x10810221U, 64), g_strNotice, device::DbGet(device::g_uiKeyFlag, 1),
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

TEST(OperateFlag, ASequenceWhoseEntryFailedStaysOpen)
{
    ProvideImage();
    fake::Db()[device::g_uiKeyFlag] = {1};
    fake::Arm({fake::KIND_E::OPERATELOG, 1, false});
    EXPECT_EQ(Write(0, {1}).vecBytes, (BYTES{0, 1}));
    fake::Disarm();
    EXPECT_EQ(fake::Db().at(device::g_uiKeyFlag), BYTES{1});
    EXPECT_EQ(Write(0, {1}).vecBytes, (BYTES{0, 1}));
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

TEST(AreaInfo, Sweep)
{
    RESPONSE_S stRes = {};
    fake::Sweep([] { device::Provision(device::Pattern(64)); }, [&] { stRes = AreaInfo(device::g_ucID); },
                [&](const fake::FAULT_S * /*pstFault*/) {
                    EXPECT_TRUE((stRes.uiLength == 4U && stRes.vecBytes == (BYTES{0, 64, 0, 1})) ||
                                (stRes.uiLength == 1U && stRes.vecBytes == Response({0xCB}, 4)));
                });
}

} // namespace
