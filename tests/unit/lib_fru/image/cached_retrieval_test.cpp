// SPDX-License-Identifier: Apache-2.0
// The short read path: the cached image alone, and how it differs from the main one.
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

u32 GetFromDB(RECORD &stRecord)
{
    return LIB_FRU_GetFRUDataFromDB(device::g_ucType, device::g_ucInstance, stRecord.Get());
}

void Provide(const BYTES &vecImage)
{
    fake::Reset();
    device::Provision(vecImage);
}

TEST(GetFRUDataFromDB, DecodesTheCachedImageAlone)
{
    Provide(device::BoardImage());
    device::PutStatus(1); // not looked at
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0U);
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardProductName), "NAME");
    EXPECT_EQ(device::Calls(), (LINES{device::DbGet(device::g_uiKeyTable, 3703),
                                      device::DbGet(0x10810021U, 184), device::DbGet(0x10810221U, 64)}));
    EXPECT_TRUE(OwnMessages().empty());
}

TEST(GetFRUDataFromDB, TheRecordIsClearedFirstAndNothingPreset)
{
    const BYTES vecImage = TwoAndOneCustomFields();
    Provide(vecImage);
    SetPath("BaseBoard.bin", static_cast<u16>(vecImage.size()));
    RECORD stRecord;
    stRecord->stChassisInfo.ucCustomFieldCount = 5;
    stRecord->stBoardInfo.ucLanguage = 77;
    EXPECT_EQ(GetFromDB(stRecord), 0U);
    EXPECT_EQ(stRecord->stChassisInfo.ucCustomFieldCount, 2U);
    EXPECT_EQ(stRecord->stProductInfo.ucCustomFieldCount, 1U);
    EXPECT_EQ(stRecord->stBoardInfo.ucLanguage, 0U);
}

TEST(GetFRUDataFromDB, ADecodingFailureReleasesTheRecord)
{
    BYTES vecImage = image::FullImage();
    vecImage[vecImage[4] * 8U] = 9;
    Provide(vecImage);
    const u32 uiBefore = fake::LiveAllocations();
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000006U);
    EXPECT_EQ(OwnMessages(), LINES{Line(5, 4, "Interpret fru data failed! DeviceID:0x21.")});
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardMfr), "(null)");
}

TEST(GetFRUDataFromDB, AnInvalidHeaderIsADecodingFailure)
{
    Provide(BYTES(64, 0xFF));
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000006U);
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(GetFRUDataFromDB, AFruBelowTheHeaderIsADecodingFailure)
{
    for (const u8 ucSize : {u8{1}, u8{7}}) {
        Provide(BYTES(ucSize, 1));
        RECORD stRecord;
        EXPECT_EQ(GetFromDB(stRecord), 0x29000006U);
    }
}

TEST(GetFRUDataFromDB, NoCachedImage)
{
    Provide(device::BoardImage());
    fake::Db().erase(0x10810221U);
    RECORD stRecord;
    stRecord->stBoardInfo.ucLanguage = 77;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000001U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Get fru data buf failed! DeviceID:0x21.")});
    EXPECT_EQ(stRecord->stBoardInfo.ucLanguage, 77U); // cleared only once there is an image
}

TEST(GetFRUDataFromDB, AnEmptyFruReportsItsSize)
{
    Provide({});
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000008U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(0, 3, "Invalid MALLOC size (size is 0)is detected"),
                                       Line(5, 4, "Malloc fru data buf failed! DeviceID:0x21.")}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid MALLOC size (size is 0)is detected in # LIB_FRU_GetFRUDataFromDB lib_fru.c\n");
}

TEST(GetFRUDataFromDB, OutOfMemory)
{
    Provide(device::BoardImage());
    RECORD stRecord;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(GetFromDB(stRecord), 0x29000008U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Malloc fru data buf failed! DeviceID:0x21.")});
}

TEST(GetFRUDataFromDB, NullRecord)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_GetFRUDataFromDB(1, 1, nullptr), 0x29002408U);
    EXPECT_EQ(fake::Messages(), LINES{Null("LIB_FRU_GetFRUDataFromDB", "pstFRUData")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(GetFRUDataFromDB, UnknownComponent)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000003U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(5, 4, "Fail to find Component[0x5] Instance[2] fru device id!"),
                                       Line(5, 4, "Fail to find ComponentType:0x5,Instance:0x2!")}));
}

TEST(GetFRUDataFromDB, DeviceWithoutARecord)
{
    Provide(device::BoardImage());
    fake::Db().erase(0x10810021U);
    RECORD stRecord;
    EXPECT_EQ(GetFromDB(stRecord), 0x29000004U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Get fru device info failed! DeviceID:0x21.")});
}

TEST(GetFRUDataFromDB, Sweep)
{
    SweepGet([] { device::Provision(image::FullImage()); }, GetFromDB,
             {0x29000001U, 0x29000003U, 0x29000004U, 0x29000006U, 0x29000008U});
}

} // namespace
