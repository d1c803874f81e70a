#include "codec_test_helper.h"

namespace {

using namespace codec;
using image::AREAS_S;
using image::Field;
using image::Image;
using image::Text;
using image::Texts;

TEST(CheckValidHeader, AcceptsVersion1WithAZeroSum)
{
    fake::Reset();
    const BYTES vecHeader{1, 0, 1, 0, 0, 0, 0, 0xFE};
    EXPECT_EQ(FRU_ANALYZER_CheckValidHeader(image::Exact(vecHeader).get()), 0U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(CheckValidHeader, RefusesNull)
{
    fake::Reset();
    EXPECT_EQ(FRU_ANALYZER_CheckValidHeader(nullptr), 0x29000008U);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_ANALYZER_CheckValidHeader", "pstHeader")});
}

TEST(CheckValidHeader, RefusesAnotherVersionBeforeTheSum)
{
    for (const BYTES &vecHeader : {BYTES{2, 0, 0, 0, 0, 0, 0, 0xFE}, BYTES{2, 0, 0, 0, 0, 0, 0, 0}}) {
        fake::Reset();
        EXPECT_EQ(FRU_ANALYZER_CheckValidHeader(vecHeader.data()), 0x29000002U);
        EXPECT_EQ(fake::Messages(), LINES{Line(4, "Common header format version value:0x2 invalid!")});
    }
}

TEST(CheckValidHeader, RefusesAWrongSumWithItsOwnCode)
{
    fake::Reset();
    const BYTES vecHeader{1, 0, 0, 0, 0, 0, 0, 0xFE};
    EXPECT_EQ(FRU_ANALYZER_CheckValidHeader(vecHeader.data()), 0x29000008U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, "Check zero sum failed!")});
}

TEST(InterpretFRUData, RefusesNullArguments)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(FRU_ANALYZER_InterpretFRUData(nullptr, 8, record.Get()), 0x29000008U);
    const BYTES vecImage = Image({});
    EXPECT_EQ(FRU_ANALYZER_InterpretFRUData(vecImage.data(), 8, nullptr), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_InterpretFRUData(nullptr, 0, nullptr), 0x29000008U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ANALYZER_InterpretFRUData", "pucBuff"),
                                       Null("FRU_ANALYZER_InterpretFRUData", "pstFRUData"),
                                       Null("FRU_ANALYZER_InterpretFRUData", "pucBuff")}));
}

TEST(InterpretFRUData, RefusesLengthZero)
{
    fake::Reset();
    RECORD record;
    const u8 ucByte = 1;
    EXPECT_EQ(FRU_ANALYZER_InterpretFRUData(&ucByte, 0, record.Get()), 0x29000008U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "Invalid input length: 0")});
}

TEST(InterpretFRUData, RefusesLessThanAHeaderAsAnInvalidHeader)
{
    for (size_t uiLength = 1; uiLength < 8U; ++uiLength) {
        fake::Reset();
        RECORD record;
        BYTES vecImage = Image({});
        vecImage.resize(uiLength);
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000002U);
        EXPECT_EQ(fake::Messages(), LINES{Line(2, "Failed to check common header!")});
        EXPECT_EQ(record->stCommonHeader.ucFormatVersion, 0U);
    }
}

TEST(InterpretFRUData, RefusesAnInvalidHeaderAndLeavesTheRecordAlone)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode({2, 0, 0, 0, 0, 0, 0, 0xFE}, record.Get()), 0x29000002U);
    EXPECT_EQ(Decode({1, 0, 0, 0, 0, 0, 0, 0xFE}, record.Get()), 0x29000002U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, "Common header format version value:0x2 invalid!"),
                     Line(2, "Failed to check common header!"), Line(4, "Check zero sum failed!"),
                     Line(2, "Failed to check common header!")}));
    const FRU_DATA_S stZero{};
    EXPECT_EQ(memcmp(record.Get(), &stZero, sizeof(stZero)), 0);
}

TEST(InterpretFRUData, AHeaderWithoutAreasIsAnEmptyRecord)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode({1, 0, 0, 0, 0, 0, 0, 0xFF}, record.Get()), 0U);
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
    EXPECT_EQ(record->stCommonHeader.ucChecksum, 0xFFU);
}

void ExpectFullTexts(RECORD &record)
{
    EXPECT_EQ(record->stInternalUseArea.ucFormatVersion, 1U);
    EXPECT_EQ(Str(record->stInternalUseArea.pucData), "internal");
    const FRU_CHASSIS_INFO_S &stChassis = record->stChassisInfo;
    EXPECT_EQ(stChassis.ucFormatVersion, 1U);
    EXPECT_EQ(stChassis.ucAreaLength, 5U);
    EXPECT_EQ(Str(stChassis.pucChassisType), "Rack Mount Chassis");
    EXPECT_EQ(Str(stChassis.pucChassisPartNum), "CH-PN");
    EXPECT_EQ(stChassis.ucChassisPartNumLen, 6U);
    EXPECT_EQ(Str(stChassis.pucChassisSerialNum), "CH-SN");
    EXPECT_EQ(Strs(stChassis.ppucCustomFields, stChassis.ucCustomFieldCount),
              (LINES{"CH-C0", "CH-C1", "CH-C2"}));
    const FRU_BOARD_INFO_S &stBoard = record->stBoardInfo;
    EXPECT_EQ(stBoard.ucLanguage, 25U);
    EXPECT_EQ(stBoard.aucMfgDateTime[0], 0x40U);
    EXPECT_EQ(stBoard.aucMfgDateTime[1], 0x11U);
    EXPECT_EQ(stBoard.aucMfgDateTime[2], 0xC8U);
    EXPECT_EQ(Str(stBoard.pucBoardMfr), "B-MFR");
    EXPECT_EQ(Str(stBoard.pucBoardProductName), "B-NAME");
    EXPECT_EQ(stBoard.ucBoardProductNameLen, 7U);
    EXPECT_EQ(Str(stBoard.pucBoardSerialNum), "B-SN");
    EXPECT_EQ(Str(stBoard.pucBoardPartNum), "B-PN");
    EXPECT_EQ(Str(stBoard.pucFRUFileID), "B-FILE");
    EXPECT_EQ(Strs(stBoard.ppucCustomFields, stBoard.ucCustomFieldCount), (LINES{"B-C0", "B-C1", "B-C2"}));
    const FRU_PRODUCT_INFO_S &stProduct = record->stProductInfo;
    EXPECT_EQ(stProduct.ucLanguage, 25U);
    EXPECT_EQ(Str(stProduct.pucMfrName), "P-MFR");
    EXPECT_EQ(Str(stProduct.pucProductName), "P-NAME");
    EXPECT_EQ(Str(stProduct.pucProductPartNum), "P-PN");
    EXPECT_EQ(Str(stProduct.pucProductVersion), "P-VER");
    EXPECT_EQ(Str(stProduct.pucProductSerialNum), "P-SN");
    EXPECT_EQ(Str(stProduct.pucAssetTag), "P-TAG");
    EXPECT_EQ(Str(stProduct.pucFRUFileID), "P-FILE");
    EXPECT_EQ(stProduct.ucFRUFileIDLen, 7U);
    EXPECT_EQ(Strs(stProduct.ppucCustomFields, stProduct.ucCustomFieldCount),
              (LINES{"P-C0", "P-C1", "P-C2"}));
    EXPECT_EQ(record->astMultiRecord[0].ucRecordTypeID, 3U);
    EXPECT_EQ(record->astMultiRecord[0].ucRecordLength, 5U);
    ASSERT_NE(record->astMultiRecord[0].pucRecordData, nullptr);
    EXPECT_EQ(memcmp(record->astMultiRecord[0].pucRecordData, "\1\2\3\4\5", 5), 0);
    EXPECT_EQ(record->astMultiRecord[1].ucRecordFormat, 0x82U);
    EXPECT_EQ(record->astMultiRecord[2].pucRecordData, nullptr);
}

TEST(InterpretFRUData, DecodesEveryArea)
{
    fake::Reset();
    RECORD record;
    const BYTES vecImage = image::FullImage();
    ASSERT_EQ(Decode(vecImage, record.Get()), 0U);
    EXPECT_EQ(memcmp(&record->stCommonHeader, vecImage.data(), 8), 0);
    ExpectFullTexts(record);
    EXPECT_EQ(fake::Messages(), (LINES{CountLine("ChassisInfoArea", 3, 25), CountLine("BoardInfoArea", 3, 20),
                                       CountLine("ProductInfoArea", 3, 19)}));
}

} // namespace
