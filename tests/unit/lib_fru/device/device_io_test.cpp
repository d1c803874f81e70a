// SPDX-License-Identifier: Apache-2.0
// The device layer: what reaches the EEPROM, and the cached image of one device.
#include <gtest/gtest.h>

#include <memory>

#include "common/text.h"
#include "fru_device.h"
#include "lib_fru/device/device_io.h"
#include "lib_fru_access.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;

constexpr i32 g_iNull = static_cast<i32>(0x81000002U);
constexpr i32 g_iFailed = static_cast<i32>(0x81000001U);
constexpr i32 g_iRange = static_cast<i32>(0x81000003U);

const std::string g_strNoCache = Line(4, 4, "Read FRU Data From DB failed! FRU Name:PSU2 DeviceID:0x21.");
const std::string g_strZeroSize = Line(0, 3, "Invalid MALLOC size (size is 0)is detected");

// A buffer of exactly that size.
struct EXACT_S
{
    explicit EXACT_S(size_t uiSize) : upBytes(new u8[uiSize]), uiCount(uiSize)
    {
        (void)memset(upBytes.get(), 0xA5, uiSize);
    }
    BYTES Copy() const
    {
        return BYTES(upBytes.get(), upBytes.get() + uiCount);
    }
    std::unique_ptr<u8[]> upBytes;
    size_t uiCount;
};

// ---- EEPROM

TEST(DeviceIo, ReadTakesTheOffsetAsGiven)
{
    fake::Reset();
    const BYTES vecImage = device::Pattern(64);
    device::Chip() = device::ChipWith(vecImage);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXACT_S stBuf(16);
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, device::g_usStart + 8U, 16, stBuf.upBytes.get()), 16);
    EXPECT_EQ(stBuf.Copy(), device::Part(vecImage, 8, 16));
    EXPECT_EQ(fake::Calls(), LINES{device::Eeprom("read", 0x48, 16, 16)});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceIo, WriteChangesThoseBytesOnly)
{
    fake::Reset();
    const BYTES vecImage = device::Pattern(64);
    device::Chip() = device::ChipWith(vecImage);
    BYTES vecWanted = device::Chip();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const BYTES vecData = device::Pattern(5, 0x90);
    std::copy(vecData.begin(), vecData.end(), vecWanted.begin() + 0x45);
    EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 0x45, 5, vecData.data()), 5);
    EXPECT_EQ(device::Chip(), vecWanted);
    EXPECT_EQ(fake::Calls(), LINES{device::Eeprom("write", 0x45, 5, 5)});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceIo, NullPointersOfTheRead)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(FRU_ReadFRUDevice(nullptr, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(FRU_ReadFRUDevice(nullptr, 0, 1, &ucByte), g_iNull);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_ReadFRUDevice", "pucBuf"), Null("FRU_ReadFRUDevice", "pucBuf"),
                     Null("FRU_ReadFRUDevice", "pstFRUInfo")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, NullBufferOfTheWrite)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(FRU_WriteFRUDevice(nullptr, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_WriteFRUDevice", "pucBuf"), Null("FRU_WriteFRUDevice", "pucBuf")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, NullPointersOfTheExportedRead)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    u8 ucByte = 0;
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(&stInfo, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(nullptr, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(nullptr, 0, 1, &ucByte), g_iNull);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("LIB_FRU_ReadFromEEPROM", "pucBuf"), Null("LIB_FRU_ReadFromEEPROM", "pucBuf"),
                     Null("LIB_FRU_ReadFromEEPROM", "pstFRUInfo")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, TheExportedReadIsTheDeviceRead)
{
    fake::Reset();
    device::Chip() = device::ChipWith(device::Pattern(64));
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXACT_S stBuf(64);
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(&stInfo, 0x40, 64, stBuf.upBytes.get()), 64);
    EXPECT_EQ(stBuf.Copy(), device::Pattern(64));
    stInfo.ucEEPROMType = 8;
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(&stInfo, 0x40, 64, stBuf.upBytes.get()), g_iFailed);
    stInfo.ucEEPROMType = 9;
    stInfo.ucBusNumber = 200;
    EXPECT_EQ(LIB_FRU_ReadFromEEPROM(&stInfo, 0x40, 64, stBuf.upBytes.get()), g_iRange);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(0, 4, "Not support eeprom type:0x8!"), Line(4, 4, "BusNumber[200] exceeds!")}));
}

TEST(DeviceIo, EepromTypes9To15Only)
{
    for (u32 uiType = 0; uiType < 256U; ++uiType) {
        fake::Reset();
        device::Chip() = device::ChipWith(device::Pattern(64));
        const BYTES vecChip = device::Chip();
        FRU_DEVICE_INFO_S stInfo = device::Info(64);
        stInfo.ucEEPROMType = static_cast<u8>(uiType);
        u8 ucByte = 0xEE;
        const bool bSupported = uiType >= 9U && uiType <= 15U;
        EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 0, 1, &ucByte), bSupported ? 1 : g_iFailed);
        EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 0, 1, &ucByte), bSupported ? 1 : g_iFailed);
        const std::string strLine = Line(0, 4, "Not support eeprom type:" + device::Hex(uiType) + "!");
        EXPECT_EQ(fake::Messages(), bSupported ? LINES{} : (LINES{strLine, strLine}));
        EXPECT_EQ(fake::Calls().size(), bSupported ? 2U : 0U);
        EXPECT_EQ(device::Chip(), vecChip);
    }
}

TEST(DeviceIo, BusNumbers0To15Only)
{
    for (const u8 ucBus : {u8{0}, u8{15}, u8{16}, u8{255}}) {
        fake::Reset();
        fake::Eeprom(ucBus, device::g_ucAddress) = BYTES(16, 0x11);
        FRU_DEVICE_INFO_S stInfo = device::Info(16);
        stInfo.ucBusNumber = ucBus;
        u8 ucByte = 0x22;
        const bool bValid = ucBus <= 15U;
        EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 0, 1, &ucByte), bValid ? 1 : g_iRange);
        EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 0, 1, &ucByte), bValid ? 1 : g_iRange);
        const std::string strLine = Line(4, 4, "BusNumber[" + std::to_string(ucBus) + "] exceeds!");
        EXPECT_EQ(fake::Messages(), bValid ? LINES{} : (LINES{strLine, strLine}));
        EXPECT_EQ(fake::Eeprom(ucBus, device::g_ucAddress)[0], bValid ? 0x22 : 0x11);
    }
}

TEST(DeviceIo, TheTypeComesBeforeTheBus)
{
    fake::Reset();
    FRU_DEVICE_INFO_S stInfo = device::Info(16);
    stInfo.ucBusNumber = 16;
    stInfo.ucEEPROMType = 16;
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 0, 1, &ucByte), g_iFailed);
    EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "Not support eeprom type:0x10!")});
}

TEST(DeviceIo, NegativeResultsAreReportedAndPassedOn)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    device::Chip() = device::ChipWith(device::Pattern(64));
    fake::SetEepromResult(1, -7);
    fake::SetEepromResult(2, -8);
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 0, 1, &ucByte), -7);
    EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 0, 1, &ucByte), -8);
    EXPECT_EQ(
        fake::Messages(),
        (LINES{Line(4, 4,
                    "Fail to read Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2] "
                    "Ret:0xfffffff9."),
               Line(4, 4, "Fail to write Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2].")}));
}

TEST(DeviceIo, ShortResultsAreTheCallersToJudge)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    device::Chip() = BYTES(10, 0x33);
    EXACT_S stBuf(16);
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 4, 16, stBuf.upBytes.get()), 6);
    EXPECT_EQ(FRU_WriteFRUDevice(&stInfo, 4, 16, stBuf.upBytes.get()), 6);
    EXPECT_EQ(FRU_ReadFRUDevice(&stInfo, 40, 16, stBuf.upBytes.get()), 0);
    EXPECT_TRUE(fake::Messages().empty());
}

// ---- cached image

TEST(DeviceIo, CachedReadCopiesFromTheOffset)
{
    fake::Reset();
    const BYTES vecImage = device::Pattern(64);
    device::Cached() = vecImage;
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXACT_S stBuf(20);
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 44, 20, stBuf.upBytes.get()), 20);
    EXPECT_EQ(stBuf.Copy(), device::Part(vecImage, 44, 20));
    EXPECT_EQ(device::Calls(), LINES{device::DbGet(0x10810221U, 64)});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceIo, CachedReadOfNothing)
{
    fake::Reset();
    device::Cached() = device::Pattern(64);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    u8 ucByte = 0xA5;
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 64, 0, &ucByte), 0);
    EXPECT_EQ(ucByte, 0xA5);
}

TEST(DeviceIo, CachedReadWithoutABuffer)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 0, 1, nullptr), g_iNull);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_ResFRUData", "pucBuf")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, CachedReadNeverLeavesTheImage)
{
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    for (const auto &[usOffset, uiCount] :
         {std::pair<u16, u32>{0, 65}, {63, 2}, {64, 1}, {65, 0}, {65535, 255}, {10, 0xFFFFFFFFU}}) {
        fake::Reset();
        device::Cached() = device::Pattern(64);
        EXACT_S stBuf(255);
        EXPECT_EQ(FRU_ResFRUData(&stInfo, usOffset, uiCount, stBuf.upBytes.get()), 203);
        EXPECT_EQ(stBuf.Copy(), BYTES(255, 0xA5));
        EXPECT_EQ(fake::Messages(), LINES{g_strNoCache});
    }
}

TEST(DeviceIo, CachedReadOfAMissingImageIs203)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    device::Cached() = device::Pattern(63); // another length is no image
    u8 ucByte = 0xA5;
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 0, 1, &ucByte), 203);
    EXPECT_EQ(ucByte, 0xA5);
    EXPECT_EQ(fake::Messages(), LINES{g_strNoCache});
}

TEST(DeviceIo, CachedReadOfAnEmptyFruReportsTheSize)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(0);
    u8 ucByte = 0xA5;
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 0, 0, &ucByte), 203);
    EXPECT_EQ(fake::Messages(),
              (LINES{g_strZeroSize, Null("FRU_ReadFRUDataFromDB", "pucReadBuf"), g_strNoCache}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid MALLOC size (size is 0)is detected in # FRU_ReadFRUDataFromDB lib_fru.c\n");
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, CachedReadWithoutMemory)
{
    fake::Reset();
    device::Cached() = device::Pattern(64);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    u8 ucByte = 0xA5;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 0, 1, &ucByte), 203);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ReadFRUDataFromDB", "pucReadBuf"), g_strNoCache}));
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(DeviceIo, AFruNameWithoutItsNulEndsWithItsMember)
{
    fake::Reset();
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    (void)memset(stInfo.acFRUName, 'N', sizeof(stInfo.acFRUName));
    u8 ucByte = 0;
    EXPECT_EQ(FRU_ResFRUData(&stInfo, 0, 1, &ucByte), 203);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Read FRU Data From DB failed! FRU Name:NNNNNNNNNNNNNNNN DeviceID:0x21.")});
}

TEST(DeviceIo, TextsOfADeviceRecordAreBounded)
{
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    EXPECT_STREQ(FRU_TextOf(stInfo.acFRUName).acText, "PSU2");
    EXPECT_STREQ(FRU_TextOf(stInfo.acImageFilePath).acText, "/opt/fru/psu.bin");
    (void)memset(stInfo.acFRUName, 'N', sizeof(stInfo.acFRUName));
    (void)memset(stInfo.acImageFilePath, 'P', sizeof(stInfo.acImageFilePath));
    EXPECT_EQ(std::string(FRU_TextOf(stInfo.acFRUName).acText), std::string(16, 'N'));
    EXPECT_EQ(std::string(FRU_TextOf(stInfo.acImageFilePath).acText), std::string(128, 'P'));
}

// ---- patching the cached image

TEST(DeviceIo, PatchChangesThoseBytesOfTheCachedImage)
{
    fake::Reset();
    BYTES vecWanted = device::Pattern(64);
    device::Cached() = vecWanted;
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const BYTES vecData = {1, 2, 3};
    std::copy(vecData.begin(), vecData.end(), vecWanted.begin() + 61);
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 61, 3, vecData.data()), 0U);
    EXPECT_EQ(device::Cached(), vecWanted);
    EXPECT_EQ(device::Calls(), (LINES{device::DbGet(0x10810221U, 64), device::DbPut(0x10810221U, 64)}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceIo, PatchOfAnEmptyFruReportsTheSize)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(0);
    const u8 ucByte = 1;
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 0, 1, &ucByte), 0x81000004U);
    EXPECT_EQ(fake::Messages(), (LINES{g_strZeroSize, Null("FRU_WriteFRUDataDB", "pucFRUBuf")}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid MALLOC size (size is 0)is detected in # FRU_WriteFRUDataDB lib_fru.c\n");
}

TEST(DeviceIo, PatchWithoutMemory)
{
    fake::Reset();
    device::Cached() = device::Pattern(64);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const u8 ucByte = 1;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 0, 1, &ucByte), 0x81000004U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_WriteFRUDataDB", "pucFRUBuf")});
    EXPECT_EQ(device::Cached(), device::Pattern(64));
}

TEST(DeviceIo, PatchOfAMissingImageIsNotMadeUp)
{
    fake::Reset();
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const u8 ucByte = 1;
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 0, 1, &ucByte), 0x81000001U);
    EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "Get FRU Data failed! Ret:0x81000001.")});
    EXPECT_TRUE(fake::Db().empty());
}

TEST(DeviceIo, PatchThatCannotBeStored)
{
    fake::Reset();
    device::Cached() = device::Pattern(64);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const u8 ucByte = 1;
    fake::Arm({fake::KIND_E::DB, 4, false});
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 0, 1, &ucByte), 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(0, 4, "Put FRU Data failed! Ret:0x81000001.")});
    EXPECT_EQ(device::Cached(), device::Pattern(64));
}

TEST(DeviceIo, PatchNeverLeavesTheImage)
{
    fake::Reset();
    device::Cached() = device::Pattern(64);
    const FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const BYTES vecData(65, 9);
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 0, 65, vecData.data()), 0x81000001U);
    EXPECT_EQ(FRU_WriteFRUDataDB(&stInfo, 64, 1, vecData.data()), 0x81000001U);
    EXPECT_EQ(device::Cached(), device::Pattern(64));
}

// ---- cache status

TEST(DeviceIo, CacheStatusIsTheByteOfTheDevice)
{
    fake::Reset();
    device::PutStatus(0x06);
    EXPECT_EQ(FRU_ReadCacheStatus(device::g_ucID), 0x06);
    EXPECT_EQ(device::Calls(), LINES{device::DbGet(0x10810421U, 1)});
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(DeviceIo, UnreadableCacheStatusIsUntrusted)
{
    fake::Reset();
    EXPECT_EQ(FRU_ReadCacheStatus(0x21), 1U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Get FRU:0x21 data cache status failed! Ret:-2130706431.")});
}

} // namespace
