// SPDX-License-Identifier: Apache-2.0
// Get FRU Inventory Area Info and Read FRU Data: responses, messages, what is asked of cache and device.
#include <gtest/gtest.h>

#include "handler_call.h"

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

const std::string g_strNoCache = Line(4, 4, "Read FRU Data From DB failed! FRU Name:PSU2 DeviceID:0x21.");

RESPONSE_S Read(u16 usOffset, u8 ucCount)
{
    const BYTES vecReq{device::g_ucID, static_cast<u8>(usOffset & 0xFFU), static_cast<u8>(usOffset >> 8U),
                       ucCount};
    return Call(vecReq, 2U + ucCount, [](const u8 *pucReq, u32 /*uiLength*/, u8 *pucRes) {
        return LIB_FRU_ReadFRUData(pucReq, 4, pucRes, 0);
    });
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
              (LINES{device::DbGet(0x10810021U, 184), device::DbGet(0x10810421U, 1), device::g_strImageGet}));
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
        EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810021U, 184), device::g_strImageGet}));
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
