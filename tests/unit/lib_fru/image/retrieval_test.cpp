// SPDX-License-Identifier: Apache-2.0
// The main read path: chunks, cache or device, presets, every failure.
#include <gtest/gtest.h>

#include "lib_fru_access.h"
#include "stored_image.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;
using device::OwnMessages;
using device::RECORD;
using device::SetPath;
using device::SweepGet;
using device::TwoAndOneCustomFields;

constexpr u8 g_ucReadOnly = 1;

const std::string g_strReadFailed = Line(5, 4, "Fail to read fru data! ComponentType:0x5 Instance:0x2.");
const std::string g_strCheckFailed = Line(5, 4, "Check and recover fru data failed! Ret:0x81000001.");
const std::string g_strInvalidHeader = Line(5, 2, "Invalid header! Device ID[0x21].");

u32 Get(RECORD &stRecord, u8 ucReadMode = g_ucReadOnly)
{
    return LIB_FRU_GetFRUData(device::g_ucType, device::g_ucInstance, ucReadMode, 0, stRecord.Get());
}

void Provide(const BYTES &vecImage)
{
    fake::Reset();
    device::Provision(vecImage);
}

void ProvideUntrusted(const BYTES &vecImage)
{
    Provide(vecImage);
    device::PutStatus(1);
}

// ---- the main path

TEST(GetFRUData, DecodesTheWholeImage)
{
    Provide(image::FullImage());
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(device::Text(stRecord->stChassisInfo.pucChassisSerialNum), "CH-SN");
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardProductName), "B-NAME");
    EXPECT_EQ(device::Text(stRecord->stProductInfo.pucProductSerialNum), "P-SN");
    EXPECT_EQ(stRecord->stChassisInfo.ucCustomFieldCount, 3U);
    EXPECT_EQ(stRecord->astMultiRecord[1].ucRecordTypeID, 0xC0U);
    EXPECT_TRUE(OwnMessages().empty());
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
    EXPECT_TRUE(fake::Calls("DB_Put").empty());
}

TEST(GetFRUData, EightBytesAloneThenSixteenAtATime)
{
    ProvideUntrusted(device::BoardImage(77));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    LINES vecWanted;
    for (const auto &[uiOffset, uiCount] :
         {std::pair<u32, u32>{0, 8}, {8, 16}, {24, 16}, {40, 16}, {56, 16}, {72, 5}}) {
        vecWanted.push_back(device::Eeprom("read", 0x40 + uiOffset, uiCount, static_cast<i32>(uiCount)));
    }
    EXPECT_EQ(fake::Calls("EEPROM"), vecWanted);
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardMfr), "MFR");
    EXPECT_EQ(fake::Messages(), LINES{device::CountLine("BoardInfoArea", 0, 6)});
}

TEST(GetFRUData, EachChunkChoosesAnewBetweenCacheAndDevice)
{
    Provide(device::BoardImage(56));
    fake::Db().erase(0x10810221U); // the cache is trusted, but there is none: every chunk tries it first
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(fake::Calls("EEPROM").size(), 4U);
    EXPECT_EQ(fake::Calls("DB_Get 0x10810221").size(), 4U);
    EXPECT_EQ(fake::Calls("DB_Get 0x10810421").size(), 4U);
    const std::string strNoCache = Line(4, 4, "Read FRU Data From DB failed! FRU Name:PSU2 DeviceID:0x21.");
    EXPECT_EQ(OwnMessages(), LINES(4, strNoCache));
}

TEST(GetFRUData, TheCachePathFetchesTheImageForEachChunk)
{
    Provide(device::BoardImage(56));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    const std::string strInfo = device::DbGet(0x10810021U, 184);
    const std::string strStatus = device::DbGet(0x10810421U, 1);
    const std::string strImage = device::DbGet(0x10810221U, 56);
    LINES vecWanted = {device::DbGet(device::g_uiKeyTable, 3703), strInfo};
    for (int i = 0; i < 4; ++i) {
        vecWanted.insert(vecWanted.end(), {strInfo, strStatus, strImage});
    }
    EXPECT_EQ(device::Calls(), vecWanted);
}

TEST(GetFRUData, AFruOfExactlyTheHeader)
{
    Provide(device::BareHeader());
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(stRecord->stCommonHeader.ucFormatVersion, 1U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(GetFRUData, AFruBelowTheHeaderCannotBeRead)
{
    for (const u8 ucSize : {u8{1}, u8{7}}) {
        Provide(BYTES(ucSize, 1));
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord, 2), 0x29000001U);
        EXPECT_EQ(
            fake::Messages(),
            (LINES{Line(4, 4, "Invalid read counts[0x8], exceeds[" + device::Hex(ucSize) + "]!"),
                   Line(5, 2, "Fail to read fru data! CompletionCode[0xc9], Size[0xa.0]"), g_strReadFailed}));
        EXPECT_TRUE(stRecord.IsEmpty());
    }
}

TEST(GetFRUData, AnotherDevicesHeaderIsHeldWhateverTheFrusSize)
{
    // The record at this device's key names another device as its own, and that one is larger.
    constexpr u8 ucOther = 0x33;
    for (const u16 usSize : {u16{1}, u16{7}}) {
        Provide(image::FullImage());
        const BYTES vecImage = image::FullImage();
        device::PutInfo(device::Info(static_cast<u16>(vecImage.size()), ucOther));
        fake::Db()[device::g_uiKeyImage | ucOther] = vecImage;
        fake::Db()[device::g_uiKeyStatus | ucOther] = {0};
        fake::Db()[device::g_uiKeyInfo | device::g_ucID] = device::Bytes(device::Info(usSize, ucOther));
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord), 0x29000002U);
        EXPECT_EQ(fake::Messages(), (LINES{"0/2 lib_fru_analyzer.c: Failed to check common header!",
                                           Line(5, 2, "Fail to interpret fru data! Ret:0x29000002.")}));
        EXPECT_TRUE(stRecord.IsEmpty());
    }
}

TEST(GetFRUData, TheLargestFru)
{
    BYTES vecImage = device::BoardImage(65535);
    ProvideUntrusted(vecImage);
    FRU_DEVICE_INFO_S stInfo = device::Info(65535);
    stInfo.usStartOffset = 0;
    device::PutInfo(stInfo);
    device::Chip() = vecImage;
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(fake::Calls("EEPROM").size(), 1U + (65535U - 8U + 15U) / 16U);
}

TEST(GetFRUData, AnEmptyFruReportsItsSize)
{
    Provide({});
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000008U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 2, "Fail to calloc memory of TotalBuf, size:0.")});
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid CALLOC size (size or nmemb is 0 )is detected"
              "Invalid CALLOC size (size or nmemb is 0)is detected in # LIB_FRU_GetFRUData lib_fru.c\n");
    EXPECT_TRUE(stRecord.IsEmpty());
}

TEST(GetFRUData, OutOfMemory)
{
    const LINES vecWanted = {Line(5, 2, "Fail to calloc memory of TotalBuf, size:0x40."),
                             Line(5, 2, "Fail to calloc memory of ResBuf, size=0x42")};
    for (u32 i = 0; i < 2U; ++i) {
        Provide(device::BoardImage());
        RECORD stRecord;
        fake::Arm({fake::KIND_E::ALLOC, i + 1U, false});
        EXPECT_EQ(Get(stRecord), 0x29000008U);
        fake::Disarm();
        EXPECT_EQ(fake::Messages(), LINES{vecWanted[i]});
        EXPECT_EQ(fake::TakeStdout(), "");
        EXPECT_TRUE(stRecord.IsEmpty());
    }
}

TEST(GetFRUData, NullRecord)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_GetFRUData(1, 1, 1, 0, nullptr), 0x29002408U);
    EXPECT_EQ(fake::Messages(), LINES{Null("LIB_FRU_GetFRUData", "pstFRUData")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(GetFRUData, UnknownComponent)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000003U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(5, 4, "Fail to find Component[0x5] Instance[2] fru device id!"),
                                       Line(5, 4, "Fail to find ComponentType:0x5,Instance:0x2!")}));
}

TEST(GetFRUData, DeviceWithoutARecord)
{
    Provide(device::BoardImage());
    fake::Db().erase(0x10810021U);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000004U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Fail to find FRU Device ID[0x21] device info!")});
}

TEST(GetFRUData, UnreachableDevice)
{
    ProvideUntrusted(device::BoardImage());
    fake::SetEepromResult(1, -2);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord, 2), 0x29000001U);
    EXPECT_EQ(
        OwnMessages(),
        (LINES{Line(4, 4,
                    "Fail to read Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2] "
                    "Ret:0xfffffffe."),
               Line(4, 4, "Fail to read fru data! ID[0x21] Offset[0x40] Size[64] Ret[-2]."),
               Line(5, 2, "Fail to read fru data! CompletionCode[0x81], Size[0xa.0]"), g_strReadFailed}));
    EXPECT_TRUE(stRecord.IsEmpty());
}

TEST(GetFRUData, AShortChunkFailsTheRead)
{
    ProvideUntrusted(device::BoardImage());
    fake::SetEepromResult(2, 15);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord, 2), 0x29000001U);
    EXPECT_EQ(
        OwnMessages(),
        (LINES{Line(4, 4, "Read length is not equal! ReqLen[0x10] RetLen[0xf] ID[0x21]."),
               Line(5, 2, "Fail to read fru data! CompletionCode[0], Size[0x12.0xf]"), g_strReadFailed}));
}

TEST(GetFRUData, AChunkAfterTheHeaderIsNotRecovered)
{
    ProvideUntrusted(device::BoardImage());
    fake::WriteFile(device::g_acStoredPath, device::BoardImage());
    fake::SetEepromResult(3, -1);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord, 2), 0x29000001U);
    EXPECT_EQ(
        OwnMessages(),
        (LINES{Line(4, 4,
                    "Fail to read Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2] "
                    "Ret:0xffffffff."),
               Line(4, 4, "Fail to read fru data! ID[0x21] Offset[0x40] Size[64] Ret[-1]."),
               Line(5, 2, "Fail to read fru data! CompletionCode[0x81], Size[0x12.0x10]"), g_strReadFailed}));
    EXPECT_TRUE(fake::Calls("BMC_GetFileSize").empty());
}

TEST(GetFRUData, AnInvalidHeaderInAnyOtherModeIsNotRecovered)
{
    for (const u8 ucMode : {u8{0}, u8{1}, u8{3}, u8{255}}) {
        BYTES vecImage = device::BoardImage();
        vecImage[7] ^= 1U;
        ProvideUntrusted(vecImage);
        fake::WriteFile(device::g_acStoredPath, device::BoardImage());
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord, ucMode), 0x29000001U);
        EXPECT_EQ(OwnMessages(), (LINES{g_strInvalidHeader, g_strCheckFailed, g_strReadFailed}));
        EXPECT_EQ(device::Chip(), device::ChipWith(vecImage));
        EXPECT_EQ(device::Cached(), vecImage);
        EXPECT_TRUE(stRecord.IsEmpty());
        EXPECT_EQ(fake::Calls("EEPROM").size(), 1U);
    }
}

TEST(GetFRUData, ADecodingFailureKeepsTheParsersCodeAndTheRecord)
{
    BYTES vecImage = image::FullImage();
    vecImage[vecImage[4] * 8U] = 9; // the product area's version
    Provide(vecImage);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(), LINES{Line(5, 2, "Fail to interpret fru data! Ret:0x29000001.")});
    // Areas before it stay decoded; they are the caller's to release.
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardMfr), "B-MFR");
}

TEST(GetFRUData, TheRecordIsNotCleared)
{
    Provide(device::BoardImage());
    RECORD stRecord;
    stRecord->stProductInfo.ucLanguage = 77;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(stRecord->stProductInfo.ucLanguage, 77U);
}

// ---- presets

TEST(GetFRUData, ABaseboardsCustomFieldsHaveFixedSlots)
{
    const BYTES vecImage = TwoAndOneCustomFields();
    const std::string strLong(115, 'x'); // the name ends with the member, without a NUL
    for (const std::string &strPath : {std::string("/opt/fru/BaseBoard.bin"), std::string("/opt/fru/MBP.bin"),
                                       std::string("MBP.bin.old"), strLong + "BaseBoard.bin"}) {
        Provide(vecImage);
        SetPath(strPath, static_cast<u16>(vecImage.size()));
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord), 0U);
        EXPECT_EQ(stRecord->stChassisInfo.ucCustomFieldCount, 5U);
        EXPECT_EQ(stRecord->stProductInfo.ucCustomFieldCount, 4U);
        u8 **ppucChassis = stRecord->stChassisInfo.ppucCustomFields;
        EXPECT_EQ(device::Text(ppucChassis[1]), "C1");
        EXPECT_EQ(device::Text(ppucChassis[4]), "");
    }
}

TEST(GetFRUData, OtherDevicesHaveTheFieldsThatTheyHave)
{
    const BYTES vecImage = TwoAndOneCustomFields();
    for (const std::string &strPath : {std::string("/opt/fru/psu.bin"), std::string("/opt/fru/baseboard.bin"),
                                       std::string("/opt/BaseBoard"), std::string(),
                                       std::string(121, 'x') + "MBP.bin", std::string(128, 'x')}) {
        Provide(vecImage);
        SetPath(strPath, static_cast<u16>(vecImage.size()));
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord), 0U);
        const bool bPreset = strPath.find("MBP.bin") != std::string::npos;
        EXPECT_EQ(stRecord->stChassisInfo.ucCustomFieldCount, bPreset ? 5U : 2U);
        EXPECT_EQ(stRecord->stProductInfo.ucCustomFieldCount, bPreset ? 4U : 1U);
    }
}

TEST(GetFRUData, PresetsWaitForTheWholeImage)
{
    ProvideUntrusted(TwoAndOneCustomFields());
    SetPath("BaseBoard.bin", static_cast<u16>(TwoAndOneCustomFields().size()));
    fake::SetEepromResult(2, -1);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_TRUE(stRecord.IsEmpty());
}

TEST(GetFRUData, ACallersOwnPresetsAreKept)
{
    Provide(TwoAndOneCustomFields());
    RECORD stRecord;
    stRecord->stChassisInfo.ucCustomFieldCount = 5;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(stRecord->stChassisInfo.ucCustomFieldCount, 5U);
    EXPECT_EQ(stRecord->stProductInfo.ucCustomFieldCount, 1U);
}

// ---- sweeps

const std::vector<u32> g_vecGetResults = {0x29000001U, 0x29000003U, 0x29000004U, 0x29000008U};

TEST(GetFRUData, SweepOverTheCachePath)
{
    SweepGet([] { device::Provision(image::FullImage()); }, [](RECORD &stRecord) { return Get(stRecord, 2); },
             g_vecGetResults);
}

TEST(GetFRUData, SweepOverTheDevicePath)
{
    SweepGet(
        [] {
            device::Provision(image::FullImage());
            device::PutStatus(1);
        },
        [](RECORD &stRecord) { return Get(stRecord, 2); }, g_vecGetResults);
}

TEST(GetFRUData, SweepOverTheDatabaseOnlyPath)
{
    SweepGet(
        [] {
            device::Provision(image::FullImage());
            FRU_DEVICE_INFO_S stInfo = device::Info(static_cast<u16>(image::FullImage().size()));
            stInfo.ucDatabaseOnly = 1;
            device::PutInfo(stInfo);
        },
        [](RECORD &stRecord) { return Get(stRecord, 2); }, g_vecGetResults);
}

} // namespace
