// Decoder and encoder against each other, over generated records.
#include <random>

#include "codec_test_helper.h"

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

// Any length from 0 to 63. A text of one byte is coded as 0xC1, which among custom fields is the end of the
// list.
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

} // namespace
