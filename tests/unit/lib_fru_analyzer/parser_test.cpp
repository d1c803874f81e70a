// SPDX-License-Identifier: Apache-2.0
#include "area_case.h"

namespace {

using namespace codec;
using image::AREAS_S;
using image::Image;
using image::Text;

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
    ASSERT_TRUE(record->astMultiRecord[0].pucRecordData != nullptr);
    EXPECT_EQ(memcmp(record->astMultiRecord[0].pucRecordData, "\1\2\3\4\5", 5), 0);
    EXPECT_EQ(record->astMultiRecord[1].ucRecordFormat, 0x82U);
    EXPECT_TRUE(record->astMultiRecord[2].pucRecordData == nullptr);
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

// ---- internal-use area ----

TEST(InternalUseArea, IsOneFieldBehindTheVersion)
{
    for (const BYTES &vecField : {Text("data"), Text(""), Text(std::string(63, 'x'))}) {
        fake::Reset();
        RECORD record;
        AREAS_S stAreas;
        stAreas.vecInternal = image::InternalArea(vecField);
        EXPECT_EQ(Decode(Image(stAreas, 0), record.Get()), 0U);
        EXPECT_EQ(record->stInternalUseArea.ucFormatVersion, 1U);
        EXPECT_EQ(Str(record->stInternalUseArea.pucData), std::string(vecField.begin() + 1, vecField.end()));
        EXPECT_EQ(fake::Messages(), LINES{});
    }
}

TEST(InternalUseArea, NeedsNoEndMark)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode({1, 1, 0, 0, 0, 0, 0, 0xFE, 1, 0xC2U, 'a', 'b'}, record.Get()), 0U);
    EXPECT_EQ(Str(record->stInternalUseArea.pucData), "ab");
}

TEST(InternalUseArea, StartPastTheImageFails)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode({1, 1, 0, 0, 0, 0, 0, 0xFE}, record.Get()), 0x29000001U);
    EXPECT_EQ(Decode({1, 255, 0, 0, 0, 0, 0, 0, 0}, record.Get()), 0x29000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Error InternalUseAreaStartOff(8*1) >= FRU_Size(8)"),
                                       Line(2, "Failed to get InternalUseArea!"),
                                       Line(2, "Error InternalUseAreaStartOff(8*255) >= FRU_Size(9)"),
                                       Line(2, "Failed to get InternalUseArea!")}));
}

TEST(InternalUseArea, AnotherVersionFailsAndIsStored)
{
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode({1, 1, 0, 0, 0, 0, 0, 0xFE, 0x11U, 0xC0U}, record.Get()), 0x29000001U);
    EXPECT_EQ(record->stInternalUseArea.ucFormatVersion, 0x11U);
    EXPECT_TRUE(record->stInternalUseArea.pucData == nullptr);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Error InternalUseArea format version: 0x11"),
                                       Line(2, "Failed to get InternalUseArea!")}));
}

TEST(InternalUseArea, DataPastTheImageFails)
{
    for (const BYTES &vecImage :
         {BYTES{1, 1, 0, 0, 0, 0, 0, 0xFE, 1}, BYTES{1, 1, 0, 0, 0, 0, 0, 0xFE, 1, 0xC2U, 'a'}}) {
        fake::Reset();
        RECORD record;
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        EXPECT_TRUE(record->stInternalUseArea.pucData == nullptr);
        EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Failed to get Data while in InternalUseArea!"),
                                           Line(2, "Failed to get InternalUseArea!")}));
    }
}

TEST(InternalUseArea, OutOfMemoryFails)
{
    fake::Reset();
    RECORD record;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(Decode({1, 1, 0, 0, 0, 0, 0, 0xFE, 1, 0xC2U, 'a', 'b'}, record.Get()), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Error allocating memory for str"),
                                       Line(2, "Failed to get Data while in InternalUseArea!"),
                                       Line(2, "Failed to get InternalUseArea!")}));
}

// ---- rules of all three info areas ----

class InfoArea : public testing::TestWithParam<AREA_CASE_S>
{
  protected:
    void SetUp() override
    {
        fake::Reset();
    }
};

std::string Insert(std::string strText, u32 uiOffset, size_t uiLength)
{
    strText.replace(strText.find("{O}"), 3, std::to_string(uiOffset));
    return strText.replace(strText.find("{L}"), 3, std::to_string(uiLength));
}

std::string Hex(u32 uiValue)
{
    char acText[16];
    (void)snprintf(acText, sizeof(acText), "%#x", uiValue);
    return acText;
}

TEST_P(InfoArea, StartPastTheImageFails)
{
    for (const u8 ucOffset : {u8{1}, u8{2}, u8{255}}) {
        fake::Reset();
        RECORD record;
        BYTES vecImage{1, 0, 0, 0, 0, 0, 0, 0};
        vecImage[GetParam().uiHeaderByte] = ucOffset;
        image::FixHeader(vecImage);
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, Insert(GetParam().strStart, ucOffset, 8)), Closing(GetParam())}));
    }
}

TEST_P(InfoArea, AnotherVersionFailsBeforeTheChecksum)
{
    for (const u8 ucVersion : {u8{0}, u8{2}, u8{0x81}}) {
        fake::Reset();
        RECORD record;
        BYTES vecImage = ImageOf(GetParam(), AreaOf(GetParam(), {}));
        vecImage[8] = ucVersion;
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        EXPECT_EQ(*(reinterpret_cast<u8 *>(record.Get()) +
                    (GetParam().uiHeaderByte == 2U   ? offsetof(FRU_DATA_S, stChassisInfo)
                     : GetParam().uiHeaderByte == 3U ? offsetof(FRU_DATA_S, stBoardInfo)
                                                     : offsetof(FRU_DATA_S, stProductInfo))),
                  ucVersion);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, "Error " + GetParam().strName + " format version: " + Hex(ucVersion)),
                         Closing(GetParam())}));
    }
}

TEST_P(InfoArea, EndingWithTheImageIsRefused)
{
    const BYTES vecArea = AreaOf(GetParam(), {});
    {
        RECORD record;
        EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea, 0), record.Get()), 0x29000001U);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, "Error " + GetParam().strName + "Size(" + Hex(vecArea[1]) +
                                     "*8 + 0x1*8) >= FRU_Size(" + Hex(8U + vecArea[1] * 8U) + ")"),
                         Closing(GetParam())}));
    }
    fake::Reset();
    RECORD record;
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea, 1), record.Get()), 0U);
}

TEST_P(InfoArea, ALengthPastTheImageIsRefused)
{
    RECORD record;
    BYTES vecImage = ImageOf(GetParam(), AreaOf(GetParam(), {}));
    vecImage[9] = 0xFFU;
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2, "Error " + GetParam().strName + "Size(0xff*8 + 0x1*8) >= FRU_Size(" +
                                 Hex(static_cast<u32>(vecImage.size())) + ")"),
                     Closing(GetParam())}));
}

TEST_P(InfoArea, AWrongChecksumFails)
{
    RECORD record;
    BYTES vecImage = ImageOf(GetParam(), AreaOf(GetParam(), {}));
    vecImage[8U + vecImage[9] * 8U - 1U] ^= 1U;
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Failed to check zero sum in " + GetParam().strName + "!"),
                                       Closing(GetParam())}));
}

TEST_P(InfoArea, AnImageThatEndsBehindTheVersionFails)
{
    RECORD record;
    BYTES vecImage = ImageOf(GetParam(), {1U});
    vecImage.resize(9);
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, GetParam().strFirstError), Closing(GetParam())}));
}

TEST_P(InfoArea, ALengthOfZeroFailsAtTheCustomFields)
{
    RECORD record;
    BYTES vecArea = AreaOf(GetParam(), {});
    vecArea[1] = 0U;
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0x29000001U);
    EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecFields[0], "F0"); // decoded before, and kept
    EXPECT_EQ(fake::Messages(),
              LINES{Line(2, "Addr has exceeded before customer field in " + GetParam().strName + "!")} +
                  GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

TEST_P(InfoArea, FieldsPastTheAreaButWithinTheImageFailAtTheCustomFields)
{
    RECORD record;
    std::vector<BYTES> vecFields(GetParam().vecFields.size(), Text("long text of a field"));
    BYTES vecArea = image::InfoArea(GetParam().vecFixed, vecFields);
    vecArea[1] = 1U; // the area says 8 bytes
    BYTES vecHead(vecArea.begin(), vecArea.begin() + 8);
    vecArea[2] = static_cast<u8>(vecArea[2] + image::ZeroCheckSum(vecHead));
    if (GetParam().uiHeaderByte == 2U) { // keep the type, move the difference to the text
        vecArea[7] = static_cast<u8>(vecArea[7] + vecArea[2] - 0x17U);
        vecArea[2] = 0x17U;
    }
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0x29000001U);
    EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecFields.back(), "long text of a field");
    EXPECT_EQ(fake::Messages(),
              LINES{Line(2, "Addr has exceeded before customer field in " + GetParam().strName + "!")} +
                  GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

// An area of length 0 needs no checksum, so that every field can be made the one that leaves the image.
TEST_P(InfoArea, AFieldPastTheImageFailsUnderItsName)
{
    for (size_t i = 0; i < GetParam().vecFields.size(); ++i) {
        fake::Reset();
        RECORD record;
        BYTES vecArea{1U, 0U};
        for (const u8 ucByte : GetParam().vecFixed) {
            vecArea.push_back(ucByte);
        }
        vecArea.insert(vecArea.end(), i, 0xC0U);
        vecArea.push_back(0xD4U); // 20 bytes, of which one is there
        vecArea.push_back('x');
        BYTES vecImage = ImageOf(GetParam(), vecArea, 0);
        vecImage.resize(8U + vecArea.size());
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Failed to get " + GetParam().vecFields[i] + " while in " +
                                                       GetParam().strName + "!"),
                                           Closing(GetParam())}));
    }
}

TEST_P(InfoArea, OutOfMemoryFailsUnderTheFieldsName)
{
    const BYTES vecImage = ImageOf(GetParam(), AreaOf(GetParam(), {}));
    const u32 uiBefore = GetParam().uiHeaderByte == 2U ? 1U : 0U; // the chassis type's text
    for (u32 i = 0; i < GetParam().vecFields.size(); ++i) {
        fake::Reset();
        RECORD record;
        fake::Arm({fake::KIND_E::ALLOC, uiBefore + i + 1U, false});
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        fake::Disarm();
        EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Error allocating memory for str"),
                                           Line(2, "Failed to get " + GetParam().vecFields[i] + " while in " +
                                                       GetParam().strName + "!"),
                                           Closing(GetParam())}));
        const model::AREA_S stArea = ReadArea(GetParam(), record.Get());
        for (u32 j = 0; j < stArea.vecFields.size(); ++j) {
            EXPECT_EQ(stArea.vecFields[j], j < i ? "F" + std::to_string(j) : "(null)");
        }
    }
}

TEST_P(InfoArea, NothingButTheFixedFieldsAndTheEndMark)
{
    RECORD record;
    ASSERT_EQ(Decode(ImageOf(GetParam(), AreaOf(GetParam(), {})), record.Get()), 0U);
    const model::AREA_S stArea = ReadArea(GetParam(), record.Get());
    for (u32 j = 0; j < stArea.vecFields.size(); ++j) {
        EXPECT_EQ(stArea.vecFields[j], "F" + std::to_string(j));
    }
    EXPECT_FALSE(HasArray(GetParam(), record.Get()));
    EXPECT_EQ(CustomCount(GetParam(), record.Get()), 0U);
}

TEST_P(InfoArea, AFailureKeepsWhatEarlierAreasHold)
{
    if (GetParam().uiHeaderByte == 2U) {
        return;
    }
    RECORD record;
    AREAS_S stAreas = image::FullAreas();
    (stAreas.*GetParam().pvecArea)[0] = 9U;
    EXPECT_EQ(Decode(Image(stAreas), record.Get()), 0x29000001U);
    EXPECT_EQ(Str(record->stInternalUseArea.pucData), "internal");
    EXPECT_EQ(Str(record->stChassisInfo.pucChassisPartNum), "CH-PN");
    EXPECT_TRUE(record->astMultiRecord[0].pucRecordData == nullptr); // not reached
}

INSTANTIATE_TEST_SUITE_P(Areas, InfoArea, testing::ValuesIn(AreaCases()),
                         [](const auto &stInfo) { return stInfo.param.strName; });

// ---- chassis type ----

TEST(ChassisInfoArea, EveryTypeCodeHasItsText)
{
    for (u8 ucType = 0; ucType < 0x1EU; ++ucType) {
        fake::Reset();
        RECORD record;
        AREAS_S stAreas;
        stAreas.vecChassis = image::ChassisArea(ucType, {Text("PN"), Text("SN")});
        EXPECT_EQ(Decode(Image(stAreas), record.Get()), 0U);
        EXPECT_NE(Str(record->stChassisInfo.pucChassisType), "(null)");
        EXPECT_EQ(fake::Messages(), LINES{CountLine("ChassisInfoArea", 0, 7)});
        if (ucType == 0x12U) {
            EXPECT_EQ(Str(record->stChassisInfo.pucChassisType), "Expansion Chassis");
        }
    }
}

TEST(ChassisInfoArea, AnUnknownTypeFails)
{
    for (const u32 uiType : {0x1EU, 0x80U, 0xFFU}) {
        fake::Reset();
        RECORD record;
        AREAS_S stAreas;
        stAreas.vecChassis = image::ChassisArea(static_cast<u8>(uiType), {Text("PN"), Text("SN")});
        EXPECT_EQ(Decode(Image(stAreas), record.Get()), 0x29000001U);
        EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Failed to find related chassis type:" + Hex(uiType)),
                                           Line(2, "Failed to get chassis type desc in ChassisInfoArea!"),
                                           Line(2, "Failed to get ChassisInfoArea!")}));
    }
}

TEST(ChassisInfoArea, OutOfMemoryForTheTypeFails)
{
    fake::Reset();
    RECORD record;
    AREAS_S stAreas;
    stAreas.vecChassis = image::ChassisArea(1U, {Text("PN"), Text("SN")});
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(Decode(Image(stAreas), record.Get()), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "Failed to calloc memory!"),
                                       Line(2, "Failed to get chassis type desc in ChassisInfoArea!"),
                                       Line(2, "Failed to get ChassisInfoArea!")}));
}

} // namespace
