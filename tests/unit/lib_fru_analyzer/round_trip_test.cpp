// SPDX-License-Identifier: Apache-2.0
// Decoder and encoder against each other, over generated records.
#include <random>

#include "codec_test_helper.h"
#include "lib_fru_analyzer/fields.h"

namespace {

using namespace codec;

constexpr u32 g_uiCapacity = 0x10000U;

std::string SomeText(std::mt19937 &generator, size_t uiLength)
{
    std::string strText;
    for (size_t i = 0; i < uiLength; ++i) {
        strText.push_back(static_cast<char>(1U + generator() % 255U)); // every byte but NUL
    }
    return strText;
}

// Any length from 0 to 63. A text of one byte is coded as 0xC1, which among custom fields is the end
// of the list.
std::string SomeField(std::mt19937 &generator, bool bCustom)
{
    const size_t uiLength = generator() % 64U;
    return SomeText(generator, bCustom && uiLength == 1U ? 2U : uiLength);
}

model::AREA_S SomeArea(std::mt19937 &generator, size_t uiFields, size_t uiMaxCustom)
{
    model::AREA_S stArea;
    for (size_t i = 0; i < uiFields; ++i) {
        stArea.vecFields.push_back(SomeField(generator, false));
    }
    for (size_t i = generator() % (uiMaxCustom + 1U); i > 0; --i) {
        stArea.vecCustom.push_back(SomeField(generator, true));
    }
    return stArea;
}

// One record with the areas that the bits of uiAreas name.
model::RECORD_S SomeRecord(std::mt19937 &generator, u32 uiAreas)
{
    static const char *const g_apcTypes[] = {"Unspecified", "LapTop", "Rack Mount Chassis",
                                             "Blade Enclosure"};
    model::RECORD_S stRecord;
    if ((uiAreas & 1U) != 0U) {
        stRecord.optInternal = SomeField(generator, false);
    }
    if ((uiAreas & 2U) != 0U) {
        stRecord.optChassis = SomeArea(generator, 2U, 8U);
        stRecord.optChassis->strChassisType = g_apcTypes[generator() % 4U];
    }
    if ((uiAreas & 4U) != 0U) {
        stRecord.optBoard = SomeArea(generator, 5U, 8U);
        stRecord.optBoard->ucLanguage = static_cast<u8>(generator());
        for (u8 &ucByte : stRecord.optBoard->aucDate) {
            ucByte = static_cast<u8>(generator());
        }
    }
    if ((uiAreas & 8U) != 0U) {
        stRecord.optProduct = SomeArea(generator, 7U, 8U);
        stRecord.optProduct->ucLanguage = static_cast<u8>(generator());
    }
    if ((uiAreas & 16U) != 0U) {
        const size_t uiCount = 1U + generator() % 64U;
        for (size_t i = 0; i < uiCount; ++i) {
            std::vector<u8> vecData(1U + generator() % 24U);
            for (u8 &ucByte : vecData) {
                ucByte = static_cast<u8>(generator());
            }
            stRecord.vecMultiRecord.push_back(
                {static_cast<u8>(generator()), static_cast<u8>(i + 1U == uiCount ? 0x82U : 0x02U), vecData});
        }
    }
    return stRecord;
}

// Encodes, decodes with room behind the image, encodes again.
void ExpectRoundTrip(const model::RECORD_S &stModel)
{
    RECORD source;
    model::Fill(source.Get(), stModel);
    BYTES vecImage(g_uiCapacity, 0U);
    const i32 iLength = FRU_ANALYZER_ConvertToArray(source.Get(), g_uiCapacity, vecImage.data());
    ASSERT_GE(iLength, 8);
    EXPECT_EQ(iLength % 8, 0);
    vecImage.resize(static_cast<size_t>(iLength) + 1U, 0xFFU);

    RECORD decoded;
    ASSERT_EQ(Decode(vecImage, decoded.Get()), 0U);
    EXPECT_EQ(model::Read(decoded.Get()), stModel);

    vecImage.pop_back();
    BYTES vecAgain(g_uiCapacity, 0U);
    ASSERT_EQ(FRU_ANALYZER_ConvertToArray(decoded.Get(), g_uiCapacity, vecAgain.data()), iLength);
    vecAgain.resize(static_cast<size_t>(iLength));
    EXPECT_EQ(vecAgain, vecImage);
}

TEST(RoundTrip, EveryCombinationOfAreas)
{
    std::mt19937 generator(20240601U);
    for (u32 uiAreas = 0; uiAreas < 32U; ++uiAreas) {
        for (int i = 0; i < 20; ++i) {
            SCOPED_TRACE("areas " + std::to_string(uiAreas) + ", try " + std::to_string(i));
            fake::Reset();
            ExpectRoundTrip(SomeRecord(generator, uiAreas));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

// One record with every area, each text of the given length; the one byte of a custom field that would read
// as the end mark is left out.
TEST(RoundTrip, EveryTextLength)
{
    std::mt19937 generator(63U);
    for (size_t uiLength = 0; uiLength < 64U; ++uiLength) {
        SCOPED_TRACE(uiLength);
        fake::Reset();
        model::RECORD_S stModel = SomeRecord(generator, 31U);
        stModel.optInternal = SomeText(generator, uiLength);
        for (auto *pstArea : {&*stModel.optChassis, &*stModel.optBoard, &*stModel.optProduct}) {
            for (std::string &strField : pstArea->vecFields) {
                strField = SomeText(generator, uiLength);
            }
            pstArea->vecCustom.assign(uiLength == 1U ? 0U : 3U, SomeText(generator, uiLength));
        }
        ExpectRoundTrip(stModel);
    }
}

TEST(RoundTrip, EveryCountOfCustomFields)
{
    std::mt19937 generator(255U);
    for (u32 uiCount = 0; uiCount < 256U; uiCount += uiCount < 10U ? 1U : 35U) {
        SCOPED_TRACE(uiCount);
        fake::Reset();
        model::RECORD_S stModel = SomeRecord(generator, 14U);
        for (auto *pstArea : {&*stModel.optChassis, &*stModel.optBoard, &*stModel.optProduct}) {
            pstArea->vecCustom.assign(uiCount, uiCount % 2U == 0U ? "" : "ab");
        }
        ExpectRoundTrip(stModel);
    }
}

TEST(RoundTrip, EveryCountOfMultiRecords)
{
    std::mt19937 generator(64U);
    for (size_t uiCount = 1; uiCount <= 64U; ++uiCount) {
        SCOPED_TRACE(uiCount);
        fake::Reset();
        model::RECORD_S stModel = SomeRecord(generator, 4U);
        for (size_t i = 0; i < uiCount; ++i) {
            stModel.vecMultiRecord.push_back({static_cast<u8>(i),
                                              static_cast<u8>(i + 1U == uiCount ? 0x82U : 0x02U),
                                              BYTES(1U + i % 9U, 7U)});
        }
        ExpectRoundTrip(stModel);
    }
}

TEST(RoundTrip, EveryChassisType)
{
    std::mt19937 generator(30U);
    for (u32 uiCode = 0; uiCode < FRU_CHASSIS_TYPE_COUNT; ++uiCode) {
        fake::Reset();
        model::RECORD_S stModel = SomeRecord(generator, 2U);
        stModel.optChassis->strChassisType = FRU_FindChassisDesc(uiCode);
        ExpectRoundTrip(stModel);
    }
}

// Fields of the other types come back as 8-bit texts.
TEST(RoundTrip, OtherFieldTypesBecomeEightBitTexts)
{
    fake::Reset();
    RECORD record;
    image::AREAS_S stAreas;
    stAreas.vecBoard =
        image::BoardArea(0U, {0U, 0U, 0U},
                         {image::Field(0U, {0x01U, 0xABU}), image::Field(1U, {0x12U}),
                          image::Field(2U, {0x29U, 0xDCU, 0xA6U}), image::Text("text"), image::Text("")});
    ASSERT_EQ(Decode(image::Image(stAreas), record.Get()), 0U);
    stAreas.vecBoard = image::BoardArea(0U, {0U, 0U, 0U}, image::Texts({"01AB", "", "IPMI", "text", ""}));
    BYTES vecImage(256, 0U);
    const i32 iLength = FRU_ANALYZER_ConvertToArray(record.Get(), 256, vecImage.data());
    ASSERT_GT(iLength, 0);
    vecImage.resize(static_cast<size_t>(iLength));
    EXPECT_EQ(vecImage, image::Image(stAreas, 0));
}

// A custom field of one byte is coded as the end mark: the list ends there when it is read again.
TEST(RoundTrip, ACustomFieldOfOneByteEndsTheList)
{
    fake::Reset();
    RECORD source;
    RECORD decoded;
    model::RECORD_S stModel;
    stModel.optChassis.emplace();
    stModel.optChassis->strChassisType = "Tower";
    stModel.optChassis->vecFields = {"1", "2"}; // no harm among the fixed fields
    stModel.optChassis->vecCustom = {"first", "x", "third"};
    model::Fill(source.Get(), stModel);
    BYTES vecImage(64, 0U);
    ASSERT_GT(FRU_ANALYZER_ConvertToArray(source.Get(), 64, vecImage.data()), 0);
    ASSERT_EQ(Decode(vecImage, decoded.Get()), 0U);
    const model::AREA_S stArea = *model::Read(decoded.Get()).optChassis;
    EXPECT_EQ(stArea.vecFields, (LINES{"1", "2"}));
    EXPECT_EQ(stArea.vecCustom, LINES{"first"});
}

// What stands behind the header in the image belongs to another area.
TEST(AbsentAreas, StayAsTheCallerLeftThem)
{
    fake::Reset();
    RECORD record;
    image::AREAS_S stAreas;
    stAreas.vecBoard = image::BoardArea(25, {1, 2, 3}, image::Texts({"M", "N", "S", "P", "F"}));
    EXPECT_EQ(Decode(image::Image(stAreas), record.Get()), 0U);
    EXPECT_EQ(record->stInternalUseArea.ucFormatVersion, 0U);
    EXPECT_EQ(record->stChassisInfo.ucFormatVersion, 0U);
    EXPECT_EQ(record->stProductInfo.ucFormatVersion, 0U);
}

} // namespace
