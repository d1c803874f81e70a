// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/custom_list.h"

#include "area_case.h"

namespace {

using namespace codec;
using image::Text;
using image::Texts;

// ---- counting ----

u32 CountFields(const BYTES &vecFields, u8 *pucCount)
{
    return FRU_GetCustomerFieldCount(image::Exact(vecFields).get(), static_cast<u32>(vecFields.size()),
                                     pucCount);
}

TEST(GetCustomerFieldCount, CountsUpToTheEndMark)
{
    const std::pair<BYTES, u8> aCases[] = {
        {{0xC1U}, u8{0}},
        {{0xC0U, 0xC1U}, u8{1}},
        {{0xC2U, 'a', 'b', 0xC1U, 0xFFU}, u8{1}},
        {{0xC2U, 0xC1U, 0xC1U, 0x00U, 0x41U, 'x', 0x81U, 'x', 0xC1U}, u8{4}},
    };
    for (const auto &[vecFields, ucExpected] : aCases) {
        fake::Reset();
        u8 ucCount = 99;
        EXPECT_EQ(CountFields(vecFields, &ucCount), 0U);
        EXPECT_EQ(ucCount, ucExpected);
        EXPECT_EQ(fake::Messages(), LINES{});
    }
}

TEST(GetCustomerFieldCount, FailsWithoutAnEndMark)
{
    for (const BYTES &vecFields :
         {BYTES{0xC0U}, BYTES{0xC1U + 1U, 'a'}, BYTES{0xC0U, 0xFFU}, BYTES{0xC0U, 0xC0U}}) {
        fake::Reset();
        u8 ucCount = 99;
        EXPECT_EQ(CountFields(vecFields, &ucCount), 0x81000001U);
        EXPECT_EQ(fake::Messages(), LINES{Line(4, "Get customer field count failed! Size:0x" +
                                                      std::to_string(vecFields.size()) + ".")});
    }
}

TEST(GetCustomerFieldCount, FailsOnNothing)
{
    fake::Reset();
    u8 ucCount = 99;
    const u8 ucByte = 0xC1U;
    EXPECT_EQ(FRU_GetCustomerFieldCount(&ucByte, 0, &ucCount), 0x81000001U);
    EXPECT_EQ(ucCount, 0U);
    EXPECT_EQ(FRU_GetCustomerFieldCount(nullptr, 5, &ucCount), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, "Get customer field count failed! Size:0."),
                                       Null("FRU_GetCustomerFieldCount", "pucStartBuff")}));
}

TEST(GetCustomerFieldCount, TheCountHasEightBits)
{
    for (const u32 uiFields : {255U, 256U, 257U}) {
        fake::Reset();
        BYTES vecFields(uiFields, 0xC0U);
        vecFields.push_back(0xC1U);
        u8 ucCount = 99;
        EXPECT_EQ(CountFields(vecFields, &ucCount), 0U);
        EXPECT_EQ(ucCount, static_cast<u8>(uiFields));
    }
}

// ---- the ordinary case ----

LINES Numbered(u32 uiCount)
{
    LINES vecTexts;
    for (u32 i = 0; i < uiCount; ++i) {
        vecTexts.push_back("custom " + std::to_string(i));
    }
    return vecTexts;
}

class CustomFields : public testing::TestWithParam<AREA_CASE_S>
{
  protected:
    void SetUp() override
    {
        fake::Reset();
    }
    u32 Left(const BYTES &vecArea) const
    {
        return static_cast<u32>(vecArea.size()) - UsedBefore(GetParam());
    }
};

TEST_P(CustomFields, AreDecodedInOrder)
{
    for (const u32 uiCount : {1U, 4U, 5U, 6U, 40U}) {
        fake::Reset();
        RECORD record;
        const BYTES vecArea = AreaOf(GetParam(), Texts(Numbered(uiCount)));
        EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0U);
        EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecCustom, Numbered(uiCount));
        EXPECT_EQ(fake::Messages(), LINES{CountLine(GetParam().strName, uiCount, Left(vecArea))});
    }
}

TEST_P(CustomFields, NoFieldsMeansNoArray)
{
    RECORD record;
    const BYTES vecArea = AreaOf(GetParam(), {});
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0U);
    EXPECT_FALSE(HasArray(GetParam(), record.Get()));
    EXPECT_EQ(CustomCount(GetParam(), record.Get()), 0U);
    EXPECT_EQ(fake::Messages(), LINES{CountLine(GetParam().strName, 0, Left(vecArea))});
}

TEST_P(CustomFields, OfOtherTypesAreToldOf)
{
    RECORD record;
    const BYTES vecArea = AreaOf(GetParam(), {image::Field(0U, {0xABU}), Text("")});
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0U);
    EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecCustom, (LINES{"AB", ""}));
    EXPECT_EQ(fake::Messages(), (LINES{CountLine(GetParam().strName, 2, Left(vecArea)),
                                       Line(4, "Not default type format:0x1")}));
}

TEST_P(CustomFields, TheEndMarkMayBeTheChecksumByte)
{
    // Fill text until the area's checksum happens to be 0xC1 and no other end mark is there.
    RECORD record;
    std::vector<BYTES> vecFields(GetParam().vecFields.size(), Text(""));
    BYTES vecArea = image::InfoArea(GetParam().vecFixed, vecFields);
    vecArea.resize(vecArea.size() + 8U);
    vecArea[1] = static_cast<u8>(vecArea.size() / 8U);
    const size_t uiUsed = 2U + GetParam().vecFixed.size() + GetParam().vecFields.size();
    const size_t uiText = vecArea.size() - 2U - uiUsed;
    vecArea[uiUsed] = static_cast<u8>(0xC0U | uiText);
    vecArea[uiUsed + 1U] = 0U;
    vecArea.back() = 0xC1U;
    for (size_t i = 2; i <= uiText; ++i) {
        vecArea[uiUsed + i] = ' ';
    }
    vecArea[uiUsed + 1U] = image::ZeroCheckSum(vecArea);
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0U);
    EXPECT_EQ(CustomCount(GetParam(), record.Get()), 1U);
}

TEST_P(CustomFields, WithoutAnEndMarkInTheAreaFail)
{
    RECORD record;
    std::vector<BYTES> vecFields(GetParam().vecFields.size(), Text("field"));
    BYTES vecArea = image::InfoArea(GetParam().vecFixed, vecFields);
    vecArea.resize(vecArea.size() + 8U);
    vecArea[1] = static_cast<u8>(vecArea.size() / 8U);
    const u32 uiUsed = static_cast<u32>(2U + GetParam().vecFixed.size() + 6U * GetParam().vecFields.size());
    const u32 uiLeft = static_cast<u32>(vecArea.size()) - uiUsed;
    vecArea[uiUsed] = 0xC0U; // where the end mark was
    vecArea[uiUsed + 1U] = 0xFEU;
    image::FixCheckSum(vecArea);
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0x29000001U);
    EXPECT_FALSE(HasArray(GetParam(), record.Get()));
    char acSize[16];
    (void)snprintf(acSize, sizeof(acSize), "%#x", uiLeft);
    EXPECT_EQ(
        fake::Messages(),
        LINES({Line(4, std::string("Get customer field count failed! Size:") + acSize + "."),
               Line(2, GetParam().strCalc + " to calc CustomField count in " + GetParam().strName + "!")}) +
            GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

TEST_P(CustomFields, ATextThatReachesTheAreasEndLeavesNoRoom)
{
    RECORD record;
    // Fixed fields fill the area to its last byte, checksum included: nothing is left for custom fields.
    std::vector<BYTES> vecFields(GetParam().vecFields.size(), Text(""));
    const size_t uiHead = 2U + GetParam().vecFixed.size() + GetParam().vecFields.size() - 1U;
    vecFields.back() = Text(std::string(32U - uiHead - 1U, ' '));
    BYTES vecArea{1U, 4U};
    image::operator+=(vecArea, GetParam().vecFixed);
    for (const BYTES &vecField : vecFields) {
        image::operator+=(vecArea, vecField);
    }
    ASSERT_EQ(vecArea.size(), 32U);
    image::FixCheckSum(vecArea);
    EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0x29000001U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(2, "Addr has exceeded before customer field in " + GetParam().strName + "!")} +
                  GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

TEST_P(CustomFields, MoreThan255WrapTheCount)
{
    for (const u32 uiFields : {255U, 256U, 258U}) {
        fake::Reset();
        RECORD record;
        const BYTES vecArea = AreaOf(GetParam(), std::vector<BYTES>(uiFields, Text("")));
        EXPECT_EQ(Decode(ImageOf(GetParam(), vecArea), record.Get()), 0U);
        EXPECT_EQ(CustomCount(GetParam(), record.Get()), static_cast<u8>(uiFields));
        EXPECT_EQ(HasArray(GetParam(), record.Get()), uiFields != 256U);
        EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecCustom, LINES(uiFields % 256U, ""));
    }
}

u32 FixedAllocations(const AREA_CASE_S &stCase)
{
    return static_cast<u32>(stCase.vecFields.size()) + (stCase.uiHeaderByte == 2U ? 1U : 0U);
}

TEST_P(CustomFields, OutOfMemoryForTheArrayFails)
{
    RECORD record;
    const BYTES vecArea = AreaOf(GetParam(), Texts({"aa", "bb"}));
    const BYTES vecImage = ImageOf(GetParam(), vecArea);
    fake::Arm({fake::KIND_E::ALLOC, FixedAllocations(GetParam()) + 1U, false});
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    fake::Disarm();
    EXPECT_FALSE(HasArray(GetParam(), record.Get()));
    EXPECT_EQ(fake::Messages(),
              LINES({CountLine(GetParam().strName, 2, Left(vecArea)),
                     Line(2, "Fail to calloc CustomField memory in " + GetParam().strName + "!")}) +
                  GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

TEST_P(CustomFields, OutOfMemoryForAFieldFailsUnderItsIndex)
{
    RECORD record;
    const BYTES vecArea = AreaOf(GetParam(), Texts({"aa", "bb", "cc"}));
    const BYTES vecImage = ImageOf(GetParam(), vecArea);
    fake::Arm({fake::KIND_E::ALLOC, FixedAllocations(GetParam()) + 3U, false});
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(ReadArea(GetParam(), record.Get()).vecCustom, (LINES{"aa", "(null)", "(null)"}));
    EXPECT_EQ(
        fake::Messages(),
        LINES({CountLine(GetParam().strName, 3, Left(vecArea)), Line(2, "Error allocating memory for str"),
               Line(2, "Fail to get CustomField index[0x1] while in " + GetParam().strName + "!")}) +
            GetParam().vecCustomRet + GetParam().vecCustomClosing + LINES{Closing(GetParam())});
}

INSTANTIATE_TEST_SUITE_P(Areas, CustomFields, testing::ValuesIn(AreaCases()),
                         [](const auto &stInfo) { return stInfo.param.strName; });

// ---- fixed slots ----

class FixedSlots : public testing::TestWithParam<u32>
{
  protected:
    const AREA_CASE_S &m_stArea = AreaCases()[GetParam()];
    const u8 m_ucSlots = GetParam() == 0U ? u8{5} : u8{4};

    u32 DecodeWith(u32 uiFields, u8 ucPreset, FRU_DATA_S *pstFRUData)
    {
        fake::Reset();
        PresetCount(m_stArea, pstFRUData, ucPreset);
        return Decode(ImageOf(m_stArea, AreaOf(m_stArea, Texts(Numbered(uiFields)))), pstFRUData);
    }
};

TEST_P(FixedSlots, FewerFieldsAreFilledUpWithEmptyOnes)
{
    for (u32 uiFields = 0; uiFields <= m_ucSlots; ++uiFields) {
        RECORD record;
        EXPECT_EQ(DecodeWith(uiFields, m_ucSlots, record.Get()), 0U);
        LINES vecExpected = Numbered(uiFields);
        vecExpected.resize(m_ucSlots, "");
        EXPECT_EQ(ReadArea(m_stArea, record.Get()).vecCustom, vecExpected);
        EXPECT_EQ(CustomCount(m_stArea, record.Get()), m_ucSlots);
        EXPECT_EQ(fake::Messages().size(), 1U);
    }
}

TEST_P(FixedSlots, MoreFieldsThanSlotsFailTheArea)
{
    for (const u32 uiFields : {m_ucSlots + 1U, m_ucSlots + 2U, 30U}) {
        RECORD record;
        const u32 uiBefore = fake::LiveAllocations();
        EXPECT_EQ(DecodeWith(uiFields, m_ucSlots, record.Get()), 0x29000001U);
        EXPECT_EQ(fake::LiveAllocations(), uiBefore + FixedAllocations(m_stArea)); // the texts before them
        EXPECT_FALSE(HasArray(m_stArea, record.Get()));
        EXPECT_EQ(CustomCount(m_stArea, record.Get()), uiFields);
        const LINES vecMessages = fake::Messages();
        ASSERT_EQ(vecMessages.size(), 3U);
        EXPECT_EQ(vecMessages[1],
                  Line(2, "CustomField is ovr than calloc, customfield= " + std::to_string(uiFields) + "!"));
        EXPECT_EQ(vecMessages[2], Closing(m_stArea));
    }
}

TEST_P(FixedSlots, AnotherPresetIsTheOrdinaryCase)
{
    for (const u32 uiPreset : {1U, 3U, 6U, 255U}) {
        RECORD record;
        EXPECT_EQ(DecodeWith(2, static_cast<u8>(uiPreset), record.Get()), 0U);
        EXPECT_EQ(ReadArea(m_stArea, record.Get()).vecCustom, Numbered(2));
    }
}

TEST_P(FixedSlots, OutOfMemoryFailsUnderTheSlotsIndex)
{
    // Array, then two fields, then the empty ones.
    for (u32 i = 0; i < m_ucSlots; ++i) {
        fake::Reset();
        RECORD record;
        PresetCount(m_stArea, record.Get(), m_ucSlots);
        const BYTES vecArea = AreaOf(m_stArea, Texts(Numbered(2)));
        const BYTES vecImage = ImageOf(m_stArea, vecArea);
        fake::Arm({fake::KIND_E::ALLOC, FixedAllocations(m_stArea) + 2U + i, false});
        EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
        fake::Disarm();
        EXPECT_EQ(CustomCount(m_stArea, record.Get()), i < 2U ? 2U : m_ucSlots);
        EXPECT_EQ(
            fake::Messages(),
            LINES({CountLine(m_stArea.strName, 2, static_cast<u32>(vecArea.size()) - UsedBefore(m_stArea)),
                   Line(2, i < 2U ? "Error allocating memory for str"
                                  : "Error allocating memory for str, Len:0x8"),
                   Line(2, "Fail to get CustomField index[" + (i == 0U ? "0" : "0x" + std::to_string(i)) +
                               "] while in " + m_stArea.strName + "!")}) +
                m_stArea.vecCustomRet + LINES{Closing(m_stArea)});
    }
}

TEST_P(FixedSlots, OutOfMemoryForTheArrayFails)
{
    fake::Reset();
    RECORD record;
    PresetCount(m_stArea, record.Get(), m_ucSlots);
    const BYTES vecImage = ImageOf(m_stArea, AreaOf(m_stArea, {}));
    fake::Arm({fake::KIND_E::ALLOC, FixedAllocations(m_stArea) + 1U, false});
    EXPECT_EQ(Decode(vecImage, record.Get()), 0x29000001U);
    fake::Disarm();
    EXPECT_FALSE(HasArray(m_stArea, record.Get()));
    const LINES vecMessages = fake::Messages();
    ASSERT_EQ(vecMessages.size(), 3U);
    EXPECT_EQ(vecMessages[1], Line(2, "Fail to calloc CustomField memory in " + m_stArea.strName + "!"));
}

INSTANTIATE_TEST_SUITE_P(Areas, FixedSlots, testing::Values(0U, 2U),
                         [](const auto &stInfo) { return AreaCases()[stInfo.param].strName; });

TEST(FixedSlotsOfBoth, PresetCountsPadChassisAndProduct)
{
    fake::Reset();
    RECORD record;
    record->stChassisInfo.ucCustomFieldCount = 5;
    record->stProductInfo.ucCustomFieldCount = 4;
    image::AREAS_S stAreas;
    stAreas.vecChassis = AreaOf(AreaCases()[0], Texts({"c0", "c1"}));
    stAreas.vecProduct = AreaOf(AreaCases()[2], Texts({"p0"}));
    EXPECT_EQ(Decode(image::Image(stAreas), record.Get()), 0U);
    EXPECT_EQ(ReadArea(AreaCases()[0], record.Get()).vecCustom, (LINES{"c0", "c1", "", "", ""}));
    EXPECT_EQ(ReadArea(AreaCases()[2], record.Get()).vecCustom, (LINES{"p0", "", "", ""}));
}

TEST(FixedSlotsOfBoth, TheBoardHasNone)
{
    for (const u8 ucPreset : {u8{4}, u8{5}}) {
        fake::Reset();
        RECORD record;
        record->stBoardInfo.ucCustomFieldCount = ucPreset;
        EXPECT_EQ(Decode(ImageOf(AreaCases()[1], AreaOf(AreaCases()[1], Texts({"b0"}))), record.Get()), 0U);
        EXPECT_EQ(ReadArea(AreaCases()[1], record.Get()).vecCustom, LINES{"b0"});
    }
}

} // namespace
