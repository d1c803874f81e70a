// SPDX-License-Identifier: Apache-2.0
// Whole-image writes: chunks, what reaches device and cache, and the failures that only the log knows.
#include <gtest/gtest.h>

#include "lib_fru/image/array_write.h"
#include "lib_fru_access.h"
#include "stored_image.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;
using device::RECORD;

constexpr char g_acNotice[] = "MRPC 636/0 len=184 timeout=0 -> 0";

// A device of uiSize bytes, all 0x3C, whose cache holds the same.
void ProvideBlank(size_t uiSize)
{
    device::Provision(BYTES(uiSize, 0x3C));
}

void Start(size_t uiSize)
{
    fake::Reset();
    ProvideBlank(uiSize);
}

void Decode(const BYTES &vecImage, RECORD &stRecord)
{
    ASSERT_EQ(
        FRU_ANALYZER_InterpretFRUData(vecImage.data(), static_cast<u32>(vecImage.size()), stRecord.Get()),
        0U);
}

u32 Write(RECORD &stRecord)
{
    return LIB_FRU_WriteArrayFRUData(device::g_ucType, device::g_ucInstance, stRecord.Get(), 0);
}

u32 OemWrite(RECORD &stRecord, u32 uiSize)
{
    return LIB_FRU_OEM_WriteArrayFRUData(device::g_ucID, uiSize, stRecord.Get());
}

// The image and what was there before behind it.
BYTES Over(const BYTES &vecOld, const BYTES &vecImage)
{
    BYTES vecNew = vecOld;
    std::copy(vecImage.begin(), vecImage.end(), vecNew.begin());
    return vecNew;
}

BYTES ZeroFilled(BYTES vecImage, size_t uiSize)
{
    vecImage.resize(uiSize, 0);
    return vecImage;
}

// Every area, in three chunks.
image::AREAS_S LongAreas()
{
    image::AREAS_S stAreas = image::FullAreas();
    stAreas.vecBoard = image::BoardArea(
        25U, {1U, 2U, 3U}, image::Texts({"B-MFR", std::string(60, 'n'), "B-SN", "B-PN", "B-FILE", "B-C0"}));
    return stAreas;
}

// A record of it; messages of its decoding are forgotten.
struct FULL_S
{
    FULL_S() : vecImage(image::Image(LongAreas(), 0))
    {
        fake::Reset();
        Decode(image::Image(LongAreas()), stRecord);
    }
    BYTES vecImage; // as the encoder must make it
    RECORD stRecord;
};

TEST(ArrayWrite, DeviceGetsTheImageAndTheCacheItsZeroFilledForm)
{
    FULL_S stFull;
    const size_t uiLength = stFull.vecImage.size();
    ASSERT_GT(uiLength, 254U);
    ASSERT_LT(uiLength, 300U);
    Start(300);
    EXPECT_EQ(Write(stFull.stRecord), 0U);
    EXPECT_EQ(device::Chip(), device::ChipWith(Over(BYTES(300, 0x3C), stFull.vecImage)));
    EXPECT_EQ(device::Cached(), ZeroFilled(stFull.vecImage, 300));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(ArrayWrite, ChunksOf127Bytes)
{
    FULL_S stFull;
    const u32 uiLast = static_cast<u32>(stFull.vecImage.size()) - 254U;
    Start(300);
    EXPECT_EQ(Write(stFull.stRecord), 0U);
    EXPECT_EQ(fake::Calls("EEPROM"),
              (LINES{device::Eeprom("write", 0x40, 127, 127), device::Eeprom("write", 0x40 + 127, 127, 127),
                     device::Eeprom("write", 0x40 + 254, uiLast, static_cast<i32>(uiLast))}));
    // Each chunk patches the cache and tells of the change; the whole image is stored last.
    EXPECT_EQ(fake::Calls("DB_Put"), LINES(4, device::DbPut(0x10810221U, 300)));
    EXPECT_EQ(fake::Calls("MRPC"), LINES(3, g_acNotice));
    EXPECT_EQ(fake::Calls().back(), device::DbPut(0x10810221U, 300));
}

TEST(ArrayWrite, WhatWasWrittenReadsBack)
{
    FULL_S stFull;
    Start(300);
    EXPECT_EQ(Write(stFull.stRecord), 0U);
    for (const u8 ucStatus : {u8{0}, u8{1}}) {
        device::PutStatus(ucStatus);
        RECORD stRead;
        EXPECT_EQ(LIB_FRU_GetFRUData(device::g_ucType, device::g_ucInstance, 1, 0, stRead.Get()), 0U);
        EXPECT_EQ(device::Text(stRead->stProductInfo.pucProductSerialNum), "P-SN");
        EXPECT_EQ(stRead->astMultiRecord[0].ucRecordLength, 5U);
    }
}

TEST(ArrayWrite, SmallestFru)
{
    RECORD stRecord; // no areas: the image is its header
    Start(8);
    EXPECT_EQ(Write(stRecord), 0U);
    EXPECT_EQ(device::Chip(), device::ChipWith(device::BareHeader()));
    EXPECT_EQ(device::Cached(), device::BareHeader());
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(ArrayWrite, FruBelowTheHeaderIsRefused)
{
    for (const u16 usSize : {u16{0}, u16{7}}) {
        Start(8);
        device::PutInfo(device::Info(usSize));
        RECORD stRecord;
        EXPECT_EQ(Write(stRecord), 0x29000008U);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(5, 2, "Invalid fru size: id=0x21, size=" + device::Hex(usSize))});
        EXPECT_TRUE(fake::Calls("EEPROM").empty());
        EXPECT_EQ(fake::TakeStdout(), "");
    }
}

TEST(ArrayWrite, NullRecord)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_WriteArrayFRUData(1, 1, nullptr, 0), 0x29002408U);
    EXPECT_EQ(LIB_FRU_OEM_WriteArrayFRUData(1, 7, nullptr), 0x29002408U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("LIB_FRU_WriteArrayFRUData", "pstFRUData"),
                                       Null("LIB_FRU_OEM_WriteArrayFRUData", "pstFRUData")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(ArrayWrite, UnknownComponent)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    RECORD stRecord;
    EXPECT_EQ(Write(stRecord), 0x29000003U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(5, 4, "Fail to find Component[0x5] Instance[2] fru device id!"),
                                       Line(5, 4, "Fail to find ComponentType:0x5,Instance:0x2!")}));
}

TEST(ArrayWrite, DeviceWithoutARecord)
{
    Start(64);
    fake::Db().erase(0x10810021U);
    RECORD stRecord;
    EXPECT_EQ(Write(stRecord), 0x29000004U);
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Fail to find FRU Device:ID=0x21!")});
}

TEST(ArrayWrite, OutOfMemory)
{
    Start(64);
    RECORD stRecord;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(Write(stRecord), 0x29000008U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 2, "Failed to calloc memory! DeviceID:0x21.")});
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(ArrayWrite, ARecordThatCannotBeEncodedWritesNothing)
{
    FULL_S stFull;
    Start(64); // too small
    EXPECT_EQ(Write(stFull.stRecord), 0x29000007U);
    EXPECT_EQ(fake::Messages().back(), Line(5, 2, "Failed to convert FRU data to array!"));
    EXPECT_EQ(device::Chip(), device::ChipWith(BYTES(64, 0x3C)));
    EXPECT_EQ(device::Cached(), BYTES(64, 0x3C));
    EXPECT_TRUE(fake::RpcRequests().empty());
}

TEST(ArrayWrite, AChunkThatTheDeviceRefusesStopsTheWriteAndReturnsSuccess)
{
    FULL_S stFull;
    Start(300);
    fake::SetEepromResult(2, -4);
    EXPECT_EQ(Write(stFull.stRecord), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4, "Fail to write Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2]."),
                     Line(4, 4, "Fail to write FRU Device data, unaccessible, ID:0x21, Ret:-4"),
                     Line(5, 2, "Fail to write FRU DATA to eeprom: CC:0x81!")}));
    EXPECT_EQ(fake::Calls("EEPROM").size(), 2U);
    // The first chunk is in the cache, the whole image is not.
    EXPECT_EQ(device::Cached(), Over(BYTES(300, 0x3C), device::Part(stFull.vecImage, 0, 127)));
}

TEST(ArrayWrite, AShortChunkGoesOn)
{
    FULL_S stFull;
    Start(300);
    fake::SetEepromResult(1, 126);
    EXPECT_EQ(Write(stFull.stRecord), 0U);
    EXPECT_EQ(fake::Calls("EEPROM").size(), 3U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "Write ID[0x21] length is not equal, reqLen:127, retLen:126, ret:126.")});
    EXPECT_EQ(device::Cached(), ZeroFilled(stFull.vecImage, 300));
}

TEST(ArrayWrite, ACacheThatCannotBeStoredIsReportedAndReturnsSuccess)
{
    RECORD stRecord;
    Start(8);
    // Table and record; for the chunk record, image and its put; then the whole image: the 12th.
    fake::Arm({fake::KIND_E::DB, 12, false});
    EXPECT_EQ(Write(stRecord), 0U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 4, "Put FRU data to db failed! Ret:0x81000001.")});
    EXPECT_EQ(device::Chip(), device::ChipWith(device::BareHeader()));
}

TEST(ArrayWrite, AMissingCachedImageIsStoredAtTheEnd)
{
    RECORD stRecord;
    Start(8);
    fake::Db().erase(0x10810221U);
    EXPECT_EQ(Write(stRecord), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(0, 4, "Get FRU Data failed! Ret:0x81000001."),
                     Line(4, 4, "Write FRU data to db failed! DeviceID:0x21 Ret:0x81000001.")}));
    EXPECT_EQ(device::Cached(), device::BareHeader());
}

// ---- the caller's own device and size

TEST(OemArrayWrite, WritesWithoutTheTable)
{
    FULL_S stFull;
    Start(300);
    fake::Db().erase(device::g_uiKeyTable);
    EXPECT_EQ(OemWrite(stFull.stRecord, 300), 0U);
    EXPECT_EQ(device::Chip(), device::ChipWith(Over(BYTES(300, 0x3C), stFull.vecImage)));
    EXPECT_EQ(device::Cached(), ZeroFilled(stFull.vecImage, 300));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(OemArrayWrite, SizesBelowTheHeaderAreRefused)
{
    for (const u32 uiSize : {0U, 7U}) {
        Start(64);
        RECORD stRecord;
        EXPECT_EQ(OemWrite(stRecord, uiSize), 0x29000008U);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(5, 2, "Invalid fru size: id=0x21, size=" + device::Hex(uiSize))});
        EXPECT_TRUE(fake::Calls().empty());
    }
}

TEST(OemArrayWrite, OutOfMemoryAndEncodingFailures)
{
    FULL_S stFull;
    Start(300);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(OemWrite(stFull.stRecord, 300), 0x29000008U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(5, 2, "Failed to calloc memory! DeviceID:0x21.")});
    EXPECT_EQ(OemWrite(stFull.stRecord, 100), 0x29000007U);
    EXPECT_EQ(fake::Messages().back(), Line(5, 2, "Failed to convert FRU data to array!"));
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST(OemArrayWrite, AnImageLongerThanTheDevicesFruStopsAtTheHandler)
{
    FULL_S stFull;
    Start(200);
    EXPECT_EQ(OemWrite(stFull.stRecord, 300), 0U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, 4, "Invalid write length[0x7f], exceeds[0x49]!"),
                                       Line(5, 2, "Fail to write FRU DATA to eeprom: CC:0xc9!")}));
    EXPECT_EQ(device::Chip(),
              device::ChipWith(Over(BYTES(200, 0x3C), device::Part(stFull.vecImage, 0, 127))));
    EXPECT_EQ(fake::Calls("DB_Put").size(), 1U);
}

TEST(OemArrayWrite, TheCachedImageHasTheLow16BitsOfTheSize)
{
    RECORD stRecord;
    Start(64);
    EXPECT_EQ(OemWrite(stRecord, 0x10000U + 20U), 0U);
    EXPECT_EQ(device::Cached(), ZeroFilled(device::BareHeader(), 20));
}

TEST(OemArrayWrite, UnknownDevice)
{
    fake::Reset();
    RECORD stRecord;
    EXPECT_EQ(OemWrite(stRecord, 64), 0U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, 4, "Fail to find FRU Device:ID:0x21!"),
                                       Line(5, 2, "Fail to write FRU DATA to eeprom: CC:0xcb!")}));
    EXPECT_TRUE(fake::Db().empty());
}

// ---- chunks

TEST(ImageChunks, TheChunkThatWouldCrossTheEndIsNotWritten)
{
    Start(200);
    const BYTES vecImage = device::Pattern(254);
    EXPECT_FALSE(FRU_WriteImageChunks(device::g_ucID, 200, 254, vecImage.data()));
    EXPECT_EQ(fake::Calls("EEPROM"), LINES{device::Eeprom("write", 0x40, 127, 127)});
    EXPECT_EQ(device::Cached(), Over(BYTES(200, 0x3C), device::Part(vecImage, 0, 127)));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(ImageChunks, AChunkMayEndWithTheFru)
{
    Start(200);
    const BYTES vecImage = device::Pattern(200);
    EXPECT_TRUE(FRU_WriteImageChunks(device::g_ucID, 200, 200, vecImage.data()));
    EXPECT_EQ(device::Chip(), device::ChipWith(vecImage));
}

TEST(ImageChunks, NothingToWriteIsSuccess)
{
    Start(64);
    EXPECT_TRUE(FRU_WriteImageChunks(device::g_ucID, 64, 0, nullptr));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(ImageChunks, OffsetsHaveTwoBytes)
{
    Start(700);
    const BYTES vecImage = device::Pattern(700);
    EXPECT_TRUE(FRU_WriteImageChunks(device::g_ucID, 700, 700, vecImage.data()));
    EXPECT_EQ(device::Chip(), device::ChipWith(vecImage));
    EXPECT_EQ(fake::Calls("EEPROM").size(), 6U);
}

// ---- sweeps

void SweepWrite(u32 (*fnWrite)(RECORD &), u32 uiOnceFailed)
{
    FULL_S stFull;
    u32 uiRet = 0;
    const BYTES vecBlank(300, 0x3C);
    const BYTES vecDone = Over(vecBlank, stFull.vecImage);
    fake::Sweep([] { ProvideBlank(300); }, [&] { uiRet = fnWrite(stFull.stRecord); },
                [&](const fake::FAULT_S *pstFault) {
                    if (pstFault == nullptr) {
                        EXPECT_EQ(uiRet, 0U);
                        EXPECT_EQ(device::Chip(), device::ChipWith(vecDone));
                    }
                    EXPECT_TRUE(uiRet == 0U || uiRet == 0x29000008U || uiRet == 0x29000003U ||
                                uiRet == uiOnceFailed);
                    if (uiRet != 0U) {
                        EXPECT_EQ(device::Chip(), device::ChipWith(vecBlank));
                        EXPECT_EQ(device::Cached(), vecBlank);
                        EXPECT_FALSE(fake::Messages().empty());
                    }
                    // Each byte of the device is the old or the new one, and nothing around the FRU moved.
                    for (size_t i = 0; i < 300U; ++i) {
                        const u8 ucByte = device::Chip()[0x40 + i];
                        EXPECT_TRUE(ucByte == 0x3C || ucByte == vecDone[i]);
                    }
                    BYTES vecAround = device::Chip();
                    std::copy(vecBlank.begin(), vecBlank.end(), vecAround.begin() + 0x40);
                    EXPECT_EQ(vecAround, device::ChipWith(vecBlank));
                    EXPECT_EQ(device::Cached().size(), 300U);
                });
}

TEST(ArrayWrite, Sweep)
{
    SweepWrite([](RECORD &stRecord) { return Write(stRecord); }, 0x29000004U);
}

TEST(OemArrayWrite, Sweep)
{
    SweepWrite([](RECORD &stRecord) { return OemWrite(stRecord, 300); }, 0x29000008U);
}

} // namespace
