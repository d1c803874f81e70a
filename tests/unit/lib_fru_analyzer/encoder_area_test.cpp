// SPDX-License-Identifier: Apache-2.0
// The encoder's rules of the info areas.
#include "encoder_case.h"

namespace {

using namespace codec;
using model::TEXTS;

// ---- rules of all three info areas ----

class EncodedArea : public testing::TestWithParam<AREA_CASE_S>
{
  protected:
    std::string Failed() const
    {
        return Line(2, "Failed to createFRUBin of " + GetParam().strName);
    }
    std::string Relocate(u32 uiSize) const
    {
        char acText[16];
        (void)snprintf(acText, sizeof(acText), "%#x", uiSize);
        return Line(2, "Error relocate address while converting " + GetParam().strName + ":length=" + acText);
    }
};

// Where each byte of the area comes from, as the message of the write that a buffer ending there refuses.
struct STEP_S
{
    u32 uiSize;
    std::string strError;
};

std::vector<STEP_S> StepsOf(const AREA_CASE_S &stCase, const TEXTS &vecCustom)
{
    std::vector<STEP_S> vecSteps{{1U, "FormatVersion"}, {1U, "Length"}};
    if (stCase.uiHeaderByte == 2U) {
        vecSteps.push_back({1U, "ChassisType"});
    } else {
        vecSteps.push_back({1U, "Language"});
    }
    if (stCase.uiHeaderByte == 3U) {
        vecSteps.push_back({3U, "MfgDateTime"});
    }
    for (const std::string &strField : stCase.vecFields) {
        vecSteps.push_back({3U, strField});
    }
    for (size_t i = 0; i < vecCustom.size(); ++i) {
        vecSteps.push_back({static_cast<u32>(vecCustom[i].size()) + 1U,
                            "CustomFields[index=" + (i == 0U ? "0" : "0x" + std::to_string(i)) + "]"});
    }
    vecSteps.push_back({1U, "EndChar"});
    return vecSteps;
}

TEST_P(EncodedArea, ABufferTooSmallFailsWhereItEnds)
{
    const TEXTS vecCustom{"c0", "", "custom two"};
    const std::vector<STEP_S> vecSteps = StepsOf(GetParam(), vecCustom);
    const BYTES vecWhole = AreaOf(GetParam(), image::Texts(vecCustom));
    model::RECORD_S stModel;
    AreaIn(GetParam(), stModel).vecCustom = vecCustom;
    for (u32 uiRoom = 0; uiRoom < vecWhole.size(); ++uiRoom) {
        SCOPED_TRACE(uiRoom);
        fake::Reset();
        RECORD record;
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 8U + uiRoom).iRet, -1);
        u32 uiAt = 0;
        size_t i = 0;
        while (i < vecSteps.size() && uiAt + vecSteps[i].uiSize <= uiRoom) {
            uiAt += vecSteps[i++].uiSize;
        }
        LINES vecExpected;
        if (i < vecSteps.size()) {
            char acText[64];
            (void)snprintf(acText, sizeof(acText), "FRU data exceeds[%#x, %#x]", vecSteps[i].uiSize,
                           uiRoom - uiAt);
            vecExpected = {Line(2, acText), Line(2, "Error " + vecSteps[i].strError + " while converting " +
                                                        GetParam().strName + ".")};
        } else {
            vecExpected = {Relocate(static_cast<u32>(vecWhole.size()))};
        }
        vecExpected.push_back(Failed());
        EXPECT_EQ(fake::Messages(), vecExpected);
    }
    RECORD record;
    model::Fill(record.Get(), stModel);
    EXPECT_EQ(Encode(record.Get(), static_cast<u32>(8U + vecWhole.size())).vecImage,
              ImageOf(GetParam(), vecWhole, 0));
}

TEST_P(EncodedArea, ATextThatTheFormatCannotHoldIsRefused)
{
    for (size_t i = 0; i <= GetParam().vecFields.size(); ++i) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        model::AREA_S &stArea = AreaIn(GetParam(), stModel);
        stArea.vecCustom = {"c0", "c1"};
        const bool bCustom = i == GetParam().vecFields.size();
        (bCustom ? stArea.vecCustom[1] : stArea.vecFields[i]) = std::string(64, 'x');
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 2048).iRet, -1);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, "FRU data exceeds[0x41, 0x40]"),
                         Line(2, "Error " + (bCustom ? "CustomFields[index=0x1]" : GetParam().vecFields[i]) +
                                     " while converting " + GetParam().strName + "."),
                         Failed()}));
    }
}

TEST_P(EncodedArea, TheLengthByteDoesNotWrap)
{
    // Custom fields of 64 bytes: 2040 bytes are the most, whatever room there is.
    model::RECORD_S stModel;
    model::AREA_S &stArea = AreaIn(GetParam(), stModel);
    stArea.vecCustom.assign(31U, std::string(63, 'x'));
    const u32 uiHead = UsedBefore(GetParam()) + 31U * 64U;
    stArea.vecCustom.push_back(std::string(2040U - 2U - uiHead - 1U, 'y'));
    {
        fake::Reset();
        RECORD record;
        model::Fill(record.Get(), stModel);
        const ENCODED_S stEncoded = Encode(record.Get(), 4096);
        EXPECT_EQ(stEncoded.iRet, 2048);
        EXPECT_EQ(stEncoded.vecImage[9], 0xFFU);
        EXPECT_EQ(fake::Messages(), LINES{});
    }
    stArea.vecCustom.back() += 'y';
    for (const u32 uiCount : {1U, 200U}) {
        fake::Reset();
        RECORD record;
        stArea.vecCustom.resize(stArea.vecCustom.size() + (uiCount - 1U), std::string(63, 'z'));
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 0x8000).iRet, -1);
        EXPECT_EQ(fake::Messages(), (LINES{Relocate(uiCount == 1U ? 2048U : 2048U + 199U * 64U), Failed()}));
    }
}

INSTANTIATE_TEST_SUITE_P(Areas, EncodedArea, testing::ValuesIn(AreaCases()),
                         [](const auto &stInfo) { return stInfo.param.strName; });

TEST(ConvertToArray, TheOffsetByteDoesNotWrap)
{
    // The chassis area ends at byte 2048, one unit beyond what an offset byte can say.
    for (const size_t i : {size_t{1}, size_t{2}}) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        Stretch(AreaCases()[0], stModel);
        AreaIn(AreaCases()[i], stModel);
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 8192).iRet, -1);
        const u32 uiSize = static_cast<u32>(AreaOf(AreaCases()[i], {}).size());
        EXPECT_EQ(fake::Messages(),
                  (LINES{Line(2, "Error relocate address while converting " + AreaCases()[i].strName +
                                     ":length=0x" + (uiSize == 24U ? "18" : "20")),
                         Line(2, "Failed to createFRUBin of " + AreaCases()[i].strName)}));
    }
}

TEST(ConvertToArray, AnAreaMayStartAtByte2040)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    Stretch(AreaCases()[0], stModel);
    stModel.optChassis->vecCustom.back().resize(stModel.optChassis->vecCustom.back().size() - 8U);
    AreaIn(AreaCases()[1], stModel);
    model::Fill(record.Get(), stModel);
    const ENCODED_S stEncoded = Encode(record.Get(), 8192);
    ASSERT_GT(stEncoded.iRet, 2040);
    EXPECT_EQ(stEncoded.vecImage[3], 255U);
    EXPECT_EQ(stEncoded.vecImage[2040], 1U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertToArray, MultiRecordsMayStartAtByte2040)
{
    fake::Reset();
    RECORD record;
    model::RECORD_S stModel;
    Stretch(AreaCases()[0], stModel);
    stModel.optChassis->vecCustom.back().resize(stModel.optChassis->vecCustom.back().size() - 8U);
    stModel.vecMultiRecord = {{4U, 0x82U, {9U}}};
    model::Fill(record.Get(), stModel);
    const ENCODED_S stEncoded = Encode(record.Get(), 8192);
    ASSERT_EQ(stEncoded.iRet, 2048);
    EXPECT_EQ(stEncoded.vecImage[5], 255U);
    EXPECT_EQ(stEncoded.vecImage[2040], 4U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(ConvertToArray, OnlyTheTopBitOfAMultiRecordsFormatEndsTheList)
{
    for (u32 uiFormat = 0; uiFormat < 0x80U; ++uiFormat) {
        fake::Reset();
        RECORD record;
        model::RECORD_S stModel;
        stModel.vecMultiRecord = {{3U, static_cast<u8>(uiFormat), {1U, 2U, 3U}},
                                  {4U, static_cast<u8>(0x80U | uiFormat), {9U, 8U, 7U}}};
        model::Fill(record.Get(), stModel);
        EXPECT_EQ(Encode(record.Get(), 64).iRet, 8 + 16) << uiFormat;
    }
}

TEST(ConvertToArray, TheHeadersChecksumHoldsWhateverTheBufferHeld)
{
    fake::Reset();
    RECORD record;
    for (u32 i = 0; i < 8U; ++i) {
        BYTES vecBuf(8, 0U);
        vecBuf[i] = 0x5AU;
        EXPECT_EQ(FRU_ANALYZER_ConvertToArray(record.Get(), 8, vecBuf.data()), 8);
        EXPECT_EQ(image::ZeroCheckSum(vecBuf), 0U) << i;
    }
}

} // namespace
