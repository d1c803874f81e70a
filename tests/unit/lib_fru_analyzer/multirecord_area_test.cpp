// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/multirecord_area.h"

#include "codec_test_helper.h"

namespace {

using namespace codec;
using image::Record;

BYTES ImageOfRecords(const BYTES &vecArea, size_t uiTail = 8U)
{
    image::AREAS_S stAreas;
    stAreas.vecMultiRecord = vecArea;
    return image::Image(stAreas, uiTail);
}

u32 BuffersHeld(FRU_DATA_S *pstFRUData)
{
    u32 uiHeld = 0;
    for (const FRU_MULTIRECORD_S &stRecord : pstFRUData->astMultiRecord) {
        const u8 *pucData = stRecord.pucRecordData;
        uiHeld += pucData != nullptr ? 1U : 0U;
    }
    return uiHeld;
}

// The parse succeeds, holds no data, and says this.
void ExpectNoRecords(const BYTES &vecImage, const std::string &strMessage, u32 uiSeverity = 2U)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    FRU_DATA_S stData{};
    EXPECT_EQ(Decode(vecImage, &stData), 0U);
    EXPECT_EQ(BuffersHeld(&stData), 0U);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(uiSeverity, strMessage), Line(7, "Failed to get MultiRecordArea!")}));
}

TEST(MultiRecordArea, RecordsAreReadUpToTheEndOfList)
{
    fake::Reset();
    RECORD record;
    BYTES vecArea = Record(0x03U, {9U, 8U, 7U}, false);
    image::operator+=(vecArea, Record(0xC0U, BYTES(255U, 0xA5U), false));
    image::operator+=(vecArea, Record(0x00U, {1U}, true));
    image::operator+=(vecArea, Record(0x55U, {1U}, true)); // behind the end
    EXPECT_EQ(Decode(ImageOfRecords(vecArea), record.Get()), 0U);
    EXPECT_EQ(BuffersHeld(record.Get()), 3U);
    const model::RECORD_S stModel = model::Read(record.Get());
    EXPECT_EQ(stModel.vecMultiRecord[0].vecData, (BYTES{9U, 8U, 7U}));
    EXPECT_EQ(stModel.vecMultiRecord[1].vecData, BYTES(255U, 0xA5U));
    EXPECT_EQ(stModel.vecMultiRecord[2].ucFormat, 0x82U);
    EXPECT_EQ(memcmp(&record->astMultiRecord[1], &vecArea[8], 5), 0); // all five header bytes
    EXPECT_EQ(record->astMultiRecord[3].ucRecordTypeID, 0U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(MultiRecordArea, OnlyTheTopBitOfTheFormatEndsTheList)
{
    for (u32 uiFormat = 0; uiFormat < 0x80U; ++uiFormat) {
        fake::Reset();
        RECORD record;
        BYTES vecArea = Record(0x03U, {9U}, false, static_cast<u8>(uiFormat));
        image::operator+=(vecArea, Record(0x04U, {8U}, true, static_cast<u8>(uiFormat)));
        EXPECT_EQ(Decode(ImageOfRecords(vecArea), record.Get()), 0U);
        EXPECT_EQ(BuffersHeld(record.Get()), 2U) << uiFormat;
    }
}

TEST(MultiRecordArea, MayEndWithTheImage)
{
    fake::Reset();
    RECORD record;
    BYTES vecImage = ImageOfRecords(Record(3U, {1U, 2U}, true), 0);
    vecImage.resize(15);
    EXPECT_EQ(Decode(vecImage, record.Get()), 0U);
    EXPECT_EQ(BuffersHeld(record.Get()), 1U);
}

TEST(MultiRecordArea, StartPastTheImageIsToldOfOnly)
{
    ExpectNoRecords({1, 0, 0, 0, 0, 1, 0, 0xFE}, "Error MultiRecordAreaStartOffset(8*1) >= FRU_Size(8)", 7U);
    BYTES vecImage{1, 0, 0, 0, 0, 255, 0, 0};
    ExpectNoRecords(vecImage, "Error MultiRecordAreaStartOffset(8*255) >= FRU_Size(8)", 7U);
}

TEST(MultiRecordArea, AWrongHeaderChecksumDropsAllRecords)
{
    BYTES vecArea = Record(3U, {1U, 2U}, false);
    BYTES vecBad = Record(3U, {1U, 2U}, true);
    vecBad[4] ^= 1U;
    ExpectNoRecords(ImageOfRecords(image::operator+=(vecArea, vecBad)),
                    "Failed to check zero sum in MultiRecordArea!");
}

TEST(MultiRecordArea, AWrongDataChecksumDropsAllRecords)
{
    BYTES vecArea = Record(3U, {1U, 2U}, false);
    BYTES vecBad = Record(4U, {0x10U, 0x20U}, true);
    vecBad[6] = 0x21U;
    ExpectNoRecords(ImageOfRecords(image::operator+=(vecArea, vecBad)),
                    "MultiRecordData checkSum is invalid (calculate:0xcf record:0xd0)");
}

TEST(MultiRecordArea, HeaderBytesStayAfterAFailure)
{
    fake::Reset();
    RECORD record;
    BYTES vecArea = Record(0x33U, {1U, 2U}, false);
    BYTES vecBad = Record(0x44U, {1U}, true);
    vecBad[5] = 2U;
    EXPECT_EQ(Decode(ImageOfRecords(image::operator+=(vecArea, vecBad)), record.Get()), 0U);
    EXPECT_EQ(record->astMultiRecord[0].ucRecordTypeID, 0x33U);
    EXPECT_EQ(record->astMultiRecord[0].ucRecordLength, 2U);
    EXPECT_EQ(record->astMultiRecord[1].ucRecordTypeID, 0x44U);
}

TEST(MultiRecordArea, ARecordWithoutDataIsRefused)
{
    fake::Reset();
    RECORD record;
    BYTES vecArea = Record(3U, {1U}, false);
    EXPECT_EQ(Decode(ImageOfRecords(image::operator+=(vecArea, Record(4U, {}, true))), record.Get()), 0U);
    EXPECT_EQ(BuffersHeld(record.Get()), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(3, "Invalid MALLOC size (size is 0)is detected"),
                     Line(2, "malloc RecordData failed"), Line(7, "Failed to get MultiRecordArea!")}));
    EXPECT_EQ(fake::TakeStdout(), "Invalid MALLOC size (size is 0)is detected in # FRU_GetMultiRecordArea "
                                  "lib_fru_analyzer.c\n");
}

TEST(MultiRecordArea, OutOfMemoryDropsAllRecords)
{
    fake::Reset();
    RECORD record;
    BYTES vecArea = Record(3U, {1U}, false);
    const BYTES vecImage = ImageOfRecords(image::operator+=(vecArea, Record(4U, {2U}, true)));
    fake::Arm({fake::KIND_E::ALLOC, 2, false});
    EXPECT_EQ(Decode(vecImage, record.Get()), 0U);
    fake::Disarm();
    EXPECT_EQ(BuffersHeld(record.Get()), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2, "malloc RecordData failed"), Line(7, "Failed to get MultiRecordArea!")}));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(MultiRecordArea, ARecordPastTheImageFailsAsItsChecksumsWould)
{
    BYTES vecArea = Record(3U, {1U, 2U, 3U, 4U, 5U}, false);
    image::operator+=(vecArea, Record(3U, {1U, 2U, 3U, 4U, 5U}, true));
    const BYTES vecWhole = ImageOfRecords(vecArea, 0);
    for (size_t uiLength = 9U; uiLength < 28U; ++uiLength) { // the second record ends at byte 28
        SCOPED_TRACE(uiLength);
        ExpectNoRecords(BYTES(vecWhole.begin(), vecWhole.begin() + static_cast<long>(uiLength)),
                        "Failed to check zero sum in MultiRecordArea!");
    }
}

TEST(MultiRecordArea, SixtyFourRecordsFit)
{
    fake::Reset();
    RECORD record;
    BYTES vecArea;
    for (u32 i = 0; i < 64U; ++i) {
        image::operator+=(vecArea, Record(static_cast<u8>(i), {static_cast<u8>(i)}, i == 63U));
    }
    EXPECT_EQ(Decode(ImageOfRecords(vecArea), record.Get()), 0U);
    EXPECT_EQ(BuffersHeld(record.Get()), 64U);
    EXPECT_EQ(record->astMultiRecord[63].pucRecordData[0], 63U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(MultiRecordArea, A65thRecordIsNotRead)
{
    BYTES vecArea;
    for (u32 i = 0; i < 65U; ++i) {
        image::operator+=(vecArea, Record(static_cast<u8>(i), {static_cast<u8>(i)}, i == 64U));
    }
    ExpectNoRecords(ImageOfRecords(vecArea), "EEPROM MultiRecord Count is out of space");
}

TEST(MultiRecordArea, SixtyFourRecordsWithoutAnEndAreTooMany)
{
    BYTES vecArea;
    for (u32 i = 0; i < 64U; ++i) {
        image::operator+=(vecArea, Record(1U, {1U}, false));
    }
    ExpectNoRecords(ImageOfRecords(vecArea, 0), "EEPROM MultiRecord Count is out of space");
}

TEST(MultiRecordArea, DamageLeavesTheInfoAreasAlone)
{
    fake::Reset();
    RECORD record;
    image::AREAS_S stAreas = image::FullAreas();
    stAreas.vecMultiRecord[5] ^= 0xFFU;
    EXPECT_EQ(Decode(image::Image(stAreas), record.Get()), 0U);
    EXPECT_EQ(Str(record->stProductInfo.pucProductSerialNum), "P-SN");
    EXPECT_EQ(BuffersHeld(record.Get()), 0U);
}

} // namespace
