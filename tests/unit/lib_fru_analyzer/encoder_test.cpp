// SPDX-License-Identifier: Apache-2.0
#include "encoder_case.h"

namespace {

using namespace codec;
using image::Text;
using model::TEXTS;

constexpr u8 g_ucGuard = 0x5AU;

model::RECORD_S FullModel()
{
    model::RECORD_S stModel;
    stModel.optInternal = "internal";
    for (const AREA_CASE_S &stCase : AreaCases()) {
        AreaIn(stCase, stModel).vecCustom = {"c0", "", "c2"};
    }
    stModel.vecMultiRecord = {{3U, 2U, {1U, 2U, 3U}}, {4U, 0x82U, {9U}}};
    return stModel;
}

// ---- arguments ----

TEST(ConvertToArray, RefusesNull)
{
    fake::Reset();
    RECORD record;
    u8 aucBuf[8];
    EXPECT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), 8, nullptr), -1);
    EXPECT_EQ(FRU_ANALYZER_ConvertToArray(nullptr, 8, aucBuf), -1);
    EXPECT_EQ(FRU_ANALYZER_ConvertToArray(nullptr, 0, nullptr), -1);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ANALYZER_ConvertToArray", "pucBuf"),
                                       Null("FRU_ANALYZER_ConvertToArray", "pstFRUData"),
                                       Null("FRU_ANALYZER_ConvertToArray", "pucBuf")}));
}

TEST(ConvertToArray, RefusesLessThanAHeader)
{
    for (u32 uiLength = 0; uiLength < 8U; ++uiLength) {
        fake::Reset();
        RECORD record;
        BYTES vecBuf(8, g_ucGuard);
        EXPECT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), uiLength, vecBuf.data()), -1);
        EXPECT_EQ(vecBuf, BYTES(8, g_ucGuard));
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(2, "Invalid input length: " +
                                    (uiLength == 0U ? "0" : "0x" + std::to_string(uiLength)))});
    }
}

TEST(ConvertToArray, AnEmptyRecordIsAHeader)
{
    fake::Reset();
    RECORD record;
    record->stCommonHeader.ucFormatVersion = 7U; // the image's version is 1 all the same
    const ENCODED_S stEncoded = Encode(record.Get(), 8);
    EXPECT_EQ(stEncoded.iRet, 8);
    EXPECT_EQ(stEncoded.vecImage, (BYTES{1, 0, 0, 0, 0, 0, 0, 0xFF}));
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertToArray, PadIsCleared)
{
    fake::Reset();
    RECORD record;
    BYTES vecBuf(8, 0U);
    vecBuf[6] = 0x77U;
    EXPECT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), 8, vecBuf.data()), 8);
    EXPECT_EQ(vecBuf[6], 0U);
}

// ---- whole images ----

TEST(ConvertToArray, WritesWhatTheFormatSays)
{
    fake::Reset();
    RECORD record;
    model::Fill(record.Get(), FullModel());
    image::AREAS_S stAreas;
    stAreas.vecInternal = image::InternalArea(Text("internal"));
    for (const AREA_CASE_S &stCase : AreaCases()) {
        stAreas.*stCase.pvecArea = AreaOf(stCase, image::Texts({"c0", "", "c2"}));
    }
    stAreas.vecMultiRecord = image::Record(3U, {1U, 2U, 3U}, false);
    image::operator+=(stAreas.vecMultiRecord, image::Record(4U, {9U}, true));
    const BYTES vecExpected = image::Image(stAreas, 0);
    const ENCODED_S stEncoded = Encode(record.Get(), 512);
    EXPECT_EQ(stEncoded.iRet, static_cast<i32>(vecExpected.size()));
    EXPECT_EQ(stEncoded.vecImage, vecExpected);
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST(ConvertToArray, AllocatesNothingAndLeavesTheRecordAlone)
{
    fake::Reset();
    RECORD record;
    model::Fill(record.Get(), FullModel());
    const std::string strBefore(reinterpret_cast<char *>(record.Get()), sizeof(FRU_DATA_S));
    BYTES vecBuf(512, 0U);
    fake::Arm({fake::KIND_E::ALLOC, 1, true});
    EXPECT_GT(FRU_ANALYZER_ConvertToArray(record.Get(), 512, vecBuf.data()), 0);
    EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
    fake::Disarm();
    EXPECT_EQ(std::string(reinterpret_cast<char *>(record.Get()), sizeof(FRU_DATA_S)), strBefore);
    EXPECT_EQ(model::Read(record.Get()), FullModel());
}

TEST(ConvertToArray, TheBoardAloneStartsAtByte8)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    AreaIn(AreaCases()[1], stModel);
    model::Fill(record.Get(), stModel);
    const ENCODED_S stEncoded = Encode(record.Get(), 256);
    EXPECT_EQ(stEncoded.iRet, 8 + stEncoded.vecImage[9] * 8);
    EXPECT_EQ(BYTES(stEncoded.vecImage.begin(), stEncoded.vecImage.begin() + 7),
              (BYTES{1, 0, 0, 1, 0, 0, 0}));
}

TEST(ConvertToArray, TenBytesOfFieldsMakeAnAreaOfSixteen)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    AreaIn(AreaCases()[0], stModel).vecFields = {"abc", "x"}; // 3 + 4 + 2 bytes and the end mark
    model::Fill(record.Get(), stModel);
    const ENCODED_S stEncoded = Encode(record.Get(), 64);
    ASSERT_EQ(stEncoded.iRet, 24);
    const BYTES vecArea(stEncoded.vecImage.begin() + 8, stEncoded.vecImage.end());
    EXPECT_EQ(vecArea[1], 2U);
    EXPECT_EQ(vecArea[9], 0xC1U);
    EXPECT_EQ(BYTES(vecArea.begin() + 10, vecArea.begin() + 15), BYTES(5, 0U));
    EXPECT_EQ(image::ZeroCheckSum(vecArea), 0U);
}

TEST(ConvertToArray, TheFillIsTheBuffersAndIsSummed)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    AreaIn(AreaCases()[0], stModel).vecFields = {"abc", "x"};
    model::Fill(record.Get(), stModel);
    BYTES vecBuf(24, g_ucGuard);
    ASSERT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), 24, vecBuf.data()), 24);
    EXPECT_EQ(BYTES(vecBuf.begin() + 18, vecBuf.begin() + 23), BYTES(5, g_ucGuard));
    EXPECT_EQ(image::ZeroCheckSum(BYTES(vecBuf.begin() + 8, vecBuf.end())), 0U);
}

TEST(ConvertToArray, AreasKeepTheRecordsVersion)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    AreaIn(AreaCases()[2], stModel);
    model::Fill(record.Get(), stModel);
    record->stProductInfo.ucFormatVersion = 0x31U;
    record->stProductInfo.ucAreaLength = 0x99U; // not read
    const ENCODED_S stEncoded = Encode(record.Get(), 128);
    EXPECT_EQ(stEncoded.vecImage[8], 0x31U);
    EXPECT_EQ(stEncoded.vecImage[9] * 8, stEncoded.iRet - 8);
}

TEST(ConvertToArray, NullTextsLeaveNoField)
{
    for (const AREA_CASE_S &stCase : AreaCases()) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        AreaIn(stCase, stModel).vecCustom = {"c0", "c1", "c2"};
        model::Fill(record.Get(), stModel);
        u8 **ppucFields = stCase.uiHeaderByte == 2U   ? record->stChassisInfo.ppucCustomFields
                          : stCase.uiHeaderByte == 3U ? record->stBoardInfo.ppucCustomFields
                                                      : record->stProductInfo.ppucCustomFields;
        model::Free(ppucFields[1]);
        model::Free(ppucFields[2]);
        ppucFields[1] = nullptr;
        ppucFields[2] = nullptr;
        const ENCODED_S stEncoded = Encode(record.Get(), 256);
        EXPECT_EQ(stEncoded.vecImage, ImageOf(stCase, AreaOf(stCase, {Text("c0")}), 0));
    }
}

TEST(ConvertToArray, NullAreaTextsLeaveNoFieldEither)
{
    fake::Reset();
    RECORD record;
    record->stCommonHeader.ucBoardInfoAreaStartOffset = 1U;
    record->stBoardInfo.ucFormatVersion = 1U;
    const ENCODED_S stEncoded = Encode(record.Get(), 16);
    EXPECT_EQ(stEncoded.iRet, 16);
    EXPECT_EQ(BYTES(stEncoded.vecImage.begin() + 8, stEncoded.vecImage.end()),
              (BYTES{1, 1, 0, 0, 0, 0, 0xC1U, 0x3DU}));
}

TEST(ConvertToArray, AnEmptyTextIsAnEmptyField)
{
    for (const AREA_CASE_S &stCase : AreaCases()) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        AreaIn(stCase, stModel).vecCustom = {"", "c1", ""};
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 256).vecImage,
                  ImageOf(stCase, AreaOf(stCase, {{0xC0U}, Text("c1"), {0xC0U}}), 0));
    }
}

TEST(ConvertToArray, ANullArrayIsNoFieldsWhateverTheCount)
{
    for (const AREA_CASE_S &stCase : AreaCases()) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        AreaIn(stCase, stModel);
        model::Fill(record.Get(), stModel);
        PresetCount(stCase, record.Get(), 5U);
        EXPECT_EQ(Encode(record.Get(), 256).vecImage, ImageOf(stCase, AreaOf(stCase, {}), 0));
    }
}

// ---- internal-use area ----

TEST(ConvertInternalUseArea, IsFilledUpToAWholeUnit)
{
    for (size_t uiText = 0; uiText < 64U; ++uiText) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        stModel.optInternal = std::string(uiText, 'i');
        AreaIn(AreaCases()[1], stModel);
        model::Fill(record.Get(), stModel);
        image::AREAS_S stAreas;
        stAreas.vecInternal = image::InternalArea(Text(*stModel.optInternal));
        stAreas.vecBoard = AreaOf(AreaCases()[1], {});
        EXPECT_EQ(Encode(record.Get(), 256).vecImage, image::Image(stAreas, 0));
    }
}

TEST(ConvertInternalUseArea, ClearsItsFillItself)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    stModel.optInternal = "i";
    model::Fill(record.Get(), stModel);
    BYTES vecBuf(16, g_ucGuard);
    EXPECT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), 16, vecBuf.data()), 16);
    EXPECT_EQ(BYTES(vecBuf.begin() + 8, vecBuf.end()), (BYTES{1, 0xC1U, 'i', 0xC1U, 0, 0, 0, 0}));
}

TEST(ConvertInternalUseArea, ABufferTooSmallFailsWhereItEnds)
{
    const struct
    {
        u32 uiLength;
        std::string strExceeds;
        std::string strError;
    } astCases[] = {
        {8, "0x1, 0", "Error FormatVersion while converting InternalUseArea."},
        {9, "0x4, 0", "Error Data while converting InternalUseArea."},
        {12, "0x4, 0x3", "Error Data while converting InternalUseArea."},
        {13, "0x1, 0", "Error EndChar while converting InternalUseArea."},
        {14, "0x2, 0", "Error EndChar while converting InternalUseArea."},
        {15, "0x2, 0x1", "Error EndChar while converting InternalUseArea."},
    };
    for (const auto &stCase : astCases) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        stModel.optInternal = "abc";
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), stCase.uiLength).iRet, -1);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, "FRU data exceeds[" + stCase.strExceeds + "]"), Line(2, stCase.strError),
                         Line(2, "Failed to convert InternalUseArea")}));
    }
}

TEST(ConvertInternalUseArea, NullDataLeavesTheEndMark)
{
    fake::Reset();
    RECORD record;
    record->stCommonHeader.ucInternalUseAreaStartOffset = 1U;
    record->stInternalUseArea.ucFormatVersion = 1U;
    EXPECT_EQ(Encode(record.Get(), 16).vecImage,
              (BYTES{1, 1, 0, 0, 0, 0, 0, 0xFE, 1, 0xC1U, 0, 0, 0, 0, 0, 0}));
}

// ---- chassis type ----

TEST(GetChassisAreaTypeValue, AnUnknownTextFails)
{
    for (const std::string &strType : TEXTS{"rack mount chassis", "", "Blade%s"}) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        AreaIn(AreaCases()[0], stModel).strChassisType = strType;
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 64).iRet, -1);
        EXPECT_EQ(fake::Messages(), (LINES{Line(4, "Get chassis area type desc:" + strType + " failed!"),
                                           Line(2, "Error chassis type while converting ChassisInfoArea."),
                                           Line(2, "Failed to createFRUBin of ChassisInfoArea")}));
    }
}

TEST(GetChassisAreaTypeValue, NullFails)
{
    fake::Reset();
    RECORD record;
    record->stCommonHeader.ucChassisInfoAreaStartOffset = 1U;
    EXPECT_EQ(Encode(record.Get(), 64).iRet, -1);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_GetChassisAreaTypeValue", "pcDesc"),
                                       Line(2, "Error chassis type while converting ChassisInfoArea."),
                                       Line(2, "Failed to createFRUBin of ChassisInfoArea")}));
}

// ---- MultiRecord area ----

const std::string g_strMultiFailed = Line(2, "Failed to createFRUBin of ProductInfoArea! Ret:0xffffffff.");

TEST(ConvertMultiRecordArea, CopiesHeadersAsTheyAre)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    stModel.vecMultiRecord = {{3U, 2U, {1U, 2U, 3U}}, {4U, 0x82U, {9U, 8U}}, {5U, 0x82U, {7U}}};
    model::Fill(record.Get(), stModel);
    record->astMultiRecord[0].ucRecordChecksum = 0x77U;
    record->astMultiRecord[0].ucHeaderChecksum = 0x88U;
    const ENCODED_S stEncoded = Encode(record.Get(), 64);
    ASSERT_EQ(stEncoded.iRet, 8 + 16); // 8 + 7 bytes, and nothing of the third
    EXPECT_EQ(stEncoded.vecImage[5], 1U);
    EXPECT_EQ(BYTES(stEncoded.vecImage.begin() + 8, stEncoded.vecImage.begin() + 16),
              (BYTES{3U, 2U, 3U, 0x77U, 0x88U, 1U, 2U, 3U}));
    EXPECT_EQ(stEncoded.vecImage.back(), 0U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertMultiRecordArea, NullDataFails)
{
    fake::Reset();
    RECORD record;
    record->stCommonHeader.ucMultiRecordAreaStartOffset = 1U;
    EXPECT_EQ(Encode(record.Get(), 64).iRet, -1);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_WriteFRUDataByLength", "pucData"), Line(2, "write MultiRecordData failed!"),
                     Line(2, "Convert Multi Record Area failed!"), g_strMultiFailed}));
}

TEST(ConvertMultiRecordArea, SixtyFourRecordsWithoutAnEndFail)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    stModel.vecMultiRecord.assign(64U, {1U, 2U, {1U}});
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), 4096).iRet, -1);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2, "MultiRecord out of range space"), g_strMultiFailed}));
}

TEST(ConvertMultiRecordArea, SixtyFourRecordsFit)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    stModel.vecMultiRecord.assign(64U, {1U, 2U, {1U, 2U, 3U}});
    stModel.vecMultiRecord.back().ucFormat = 0x82U;
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), 4096).iRet, 8 + 512);
}

TEST(ConvertMultiRecordArea, ABufferTooSmallFailsWhereItEnds)
{
    model::RECORD_S stModel;
    stModel.vecMultiRecord = {{3U, 2U, {1U, 2U, 3U}}, {4U, 0x82U, {9U}}}; // 8 and 6 bytes
    for (u32 uiRoom = 0; uiRoom <= 16U; ++uiRoom) {
        SCOPED_TRACE(uiRoom);
        fake::Reset();
        RECORD record;
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 8U + uiRoom).iRet, -1); // 16 bytes of room are not enough either
        const bool bHeader = uiRoom < 5U || (uiRoom >= 8U && uiRoom < 13U);
        const u32 uiAt = uiRoom < 5U ? 0U : uiRoom < 8U ? 5U : uiRoom < 13U ? 8U : 13U;
        LINES vecExpected;
        if (uiRoom < 14U) {
            char acText[64];
            (void)snprintf(acText, sizeof(acText), "FRU data exceeds[%#x, %#x]",
                           bHeader ? 5U : (uiAt == 5U ? 3U : 1U), uiRoom - uiAt);
            vecExpected = {
                Line(2, acText),
                Line(2, bHeader ? "write MultiRecordHeader failed!" : "write MultiRecordData failed!"),
                Line(2, "Convert Multi Record Area failed!")};
        } else {
            vecExpected = {Line(2, "Error relocate address while converting ProductInfoArea:length=0x10")};
        }
        vecExpected.push_back(g_strMultiFailed);
        EXPECT_EQ(fake::Messages(), vecExpected);
    }
    RECORD record;
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), 8U + 17U).iRet, 8 + 16);
}

// Only the size is cut: the bytes behind it are written, and lie beyond the image.
TEST(ConvertMultiRecordArea, SizesAreCutToElevenBits)
{
    struct CASE_S
    {
        size_t uiLast; // data bytes of the last record
        i32 iRet;
    };
    // 7 * 255 + 5 + 250 is 2040, the most that the size's bits hold.
    for (const CASE_S &stCase : {CASE_S{250U, 8 + 2040}, {251U, 8 + 0}, {255U, 8 + 0}}) {
        SCOPED_TRACE(stCase.uiLast);
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        stModel.vecMultiRecord.assign(8U, {1U, 2U, BYTES(250U, 1U)});
        stModel.vecMultiRecord.back() = {1U, 0x82U, BYTES(stCase.uiLast, 1U)};
        model::Fill(record.Get(), stModel);
        const auto stEncoded = Encode(record.Get(), 8192);
        EXPECT_EQ(stEncoded.iRet, stCase.iRet);
        EXPECT_EQ(stEncoded.vecImage[5], 1U);
        EXPECT_EQ(fake::Messages(), LINES{});
    }
}

TEST(ConvertMultiRecordArea, ACutSizeGrowsAgainFromZero)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    stModel.vecMultiRecord.assign(10U, {1U, 2U, BYTES(250U, 1U)});
    stModel.vecMultiRecord.back() = {1U, 0x82U, BYTES(3U, 1U)};
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), 8192).iRet, 8 + 256); // 9 * 255 + 8 are 2303, rounded up 2304
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertMultiRecordArea, AStartBeyond2040IsRefused)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    Stretch(AreaCases()[1], stModel);
    stModel.vecMultiRecord = {{4U, 0x82U, {9U}}};
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), 8192).iRet, -1);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(2, "Error relocate address while converting ProductInfoArea:length=0x8"),
                     g_strMultiFailed}));
}

// ---- bounds ----

TEST(ConvertToArray, NothingIsWrittenPastTheBufferAtAnySize)
{
    RECORD record;
    model::RECORD_S stModel = FullModel();
    model::Fill(record.Get(), stModel);
    model::Free(record->stBoardInfo.pucFRUFileID); // null texts write a byte, too
    record->stBoardInfo.pucFRUFileID = nullptr;
    const i32 iWhole = Encode(record.Get(), 512).iRet;
    ASSERT_GT(iWhole, 0);
    for (u32 uiLength = 0; uiLength <= static_cast<u32>(iWhole) + 2U; ++uiLength) {
        fake::Reset();
        BYTES vecBuf(uiLength + 64U, g_ucGuard);
        (void)memset(vecBuf.data(), 0, uiLength);
        const i32 iRet = FRU_ANALYZER_ConvertToArray(record.Get(), uiLength, vecBuf.data());
        EXPECT_EQ(iRet, uiLength > static_cast<u32>(iWhole) ? iWhole : -1);
        EXPECT_EQ(BYTES(vecBuf.begin() + static_cast<long>(uiLength), vecBuf.end()), BYTES(64U, g_ucGuard));
    }
}

} // namespace
