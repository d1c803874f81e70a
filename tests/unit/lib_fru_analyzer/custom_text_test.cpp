// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/custom_text.h"

#include "codec_test_helper.h"

namespace {

using namespace codec;
using model::TEXTS;

// ---- joining ----

TEST(AllocCustomField, AppendsAFieldAndALineFeed)
{
    fake::Reset();
    char *pcJoined = FRU_AllocCustomField("one", nullptr);
    EXPECT_EQ(Str(pcJoined), "one\n");
    pcJoined = FRU_AllocCustomField("two", pcJoined);
    EXPECT_EQ(Str(pcJoined), "one\ntwo\n");
    model::Free(pcJoined);
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(AllocCustomField, NullFieldLeavesTheJoinedTextAlone)
{
    fake::Reset();
    char acJoined[] = "one\n";
    EXPECT_EQ(FRU_AllocCustomField(nullptr, acJoined), nullptr);
    EXPECT_EQ(Str(acJoined), "one\n");
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_AllocCustomField", "pucCustomField")});
}

TEST(AllocCustomField, OutOfMemoryForTheFirstField)
{
    fake::Reset();
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_AllocCustomField("one", nullptr), nullptr);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "Malloc buf failed!")});
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(AllocCustomField, OutOfMemoryForAFurtherFieldReleasesTheJoinedText)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    char *pcJoined = FRU_AllocCustomField("one", nullptr);
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_AllocCustomField("two", pcJoined), nullptr);
    fake::Disarm();
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "Realloc buf failed!")});
    EXPECT_EQ(fake::TakeStdout(), "Invalid REALLOC is detectedInvalid REALLOC is detected in # "
                                  "FRU_AllocCustomField lib_fru_analyzer.c\n");
}

// ---- interpretation ----

class CUSTOM
{
  public:
    CUSTOM() : m_stCustom() {}
    ~CUSTOM()
    {
        FRU_ANALYZER_FreeCustomField(&m_stCustom);
    }
    CUSTOM(const CUSTOM &) = delete;
    CUSTOM &operator=(const CUSTOM &) = delete;
    FRU_CUSTOM_FIELD_S *operator->()
    {
        return &m_stCustom;
    }
    FRU_CUSTOM_FIELD_S *Get()
    {
        return &m_stCustom;
    }

  private:
    FRU_CUSTOM_FIELD_S m_stCustom;
};

// A record with these custom fields; an area without any is absent.
void Fill(FRU_DATA_S *pstFRUData, const TEXTS &vecChassis, const TEXTS &vecBoard, const TEXTS &vecProduct)
{
    model::RECORD_S stModel;
    if (!vecChassis.empty()) {
        stModel.optChassis.emplace();
        stModel.optChassis->vecFields = TEXTS(2, "f");
        stModel.optChassis->vecCustom = vecChassis;
    }
    if (!vecBoard.empty()) {
        stModel.optBoard.emplace();
        stModel.optBoard->vecFields = TEXTS(5, "f");
        stModel.optBoard->vecCustom = vecBoard;
    }
    if (!vecProduct.empty()) {
        stModel.optProduct.emplace();
        stModel.optProduct->vecFields = TEXTS(7, "f");
        stModel.optProduct->vecCustom = vecProduct;
    }
    model::Fill(pstFRUData, stModel);
}

std::string ChassisIndex(int i)
{
    return Line(4, "Invalid chassis custom field index[" + std::to_string(i) + "].");
}

std::string BoardIndex(int i)
{
    return Line(4, "Invalid board custom field index[" + std::to_string(i) + "].");
}

TEST(InterpretCustomField, RefusesNull)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(nullptr, custom.Get()), 0x29000008U);
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), nullptr), 0x29000008U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ANALYZER_InterpretCustomField", "pstFRUData"),
                                       Null("FRU_ANALYZER_InterpretCustomField", "pstFRUCustomField")}));
}

TEST(InterpretCustomField, ChassisFieldsFillTwoSlotsAndTheJoinedText)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"A", "B", "C"}, {}, {});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->acChassisCustomField1), "B");
    EXPECT_EQ(Str(custom->acChassisCustomField2), "C");
    EXPECT_EQ(Str(custom->pcChassisCustomFields), "A\\nB\\nC\\n");
    EXPECT_EQ(+custom->uiChassisCustomFieldsLen, 9U);
    EXPECT_TRUE(custom->pcBoardCustomFields == nullptr);
    EXPECT_TRUE(custom->pcProductCustomFields == nullptr);
    EXPECT_EQ(fake::Messages(), LINES{ChassisIndex(0)});
}

TEST(InterpretCustomField, BoardFieldsFillTheFirstSlot)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {}, {"A", "", "it's"}, {});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->acBoardCustomField0), "A");
    EXPECT_EQ(Str(custom->pcBoardCustomFields), "A\\nit\\'s\\n");
    EXPECT_EQ(+custom->uiBoardCustomFieldsLen, 10U);
    EXPECT_EQ(fake::Messages(), LINES{BoardIndex(2)});
}

TEST(InterpretCustomField, ProductFieldsFillNoSlotAndAreNotToldOf)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {}, {}, {"A", "B\\", "C", "D", "E"});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->pcProductCustomFields), "A\\nB\\\\\\nC\\nD\\nE\\n");
    EXPECT_EQ(+custom->uiProductCustomFieldsLen, 17U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(InterpretCustomField, AllAreasAtOnce)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"c0", "c1", "c2", "c3"}, {"b0", "b1"}, {"p0"});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->pcChassisCustomFields), "c0\\nc1\\nc2\\nc3\\n");
    EXPECT_EQ(Str(custom->pcBoardCustomFields), "b0\\nb1\\n");
    EXPECT_EQ(Str(custom->pcProductCustomFields), "p0\\n");
    EXPECT_EQ(fake::Messages(), (LINES{ChassisIndex(0), ChassisIndex(3), BoardIndex(1)}));
}

TEST(InterpretCustomField, SlotsTakeTheTextLiterallyAndCutIt)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    const std::string strLong(70, 'x');
    Fill(record.Get(), {"", "%s%n%d", strLong}, {std::string(63, 'y')}, {});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->acChassisCustomField1), "%s%n%d");
    EXPECT_EQ(Str(custom->acChassisCustomField2), std::string(63, 'x'));
    EXPECT_EQ(Str(custom->acBoardCustomField0), std::string(63, 'y'));
    EXPECT_EQ(Str(custom->pcChassisCustomFields), "%s%n%d\\n" + strLong + "\\n");
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(InterpretCustomField, EmptyFieldsLeaveNothing)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"", ""}, {""}, {"", "", ""});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    const FRU_CUSTOM_FIELD_S stZero{};
    EXPECT_EQ(memcmp(custom.Get(), &stZero, sizeof(stZero)), 0);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(InterpretCustomField, NullFieldsAreSkippedAndANullArrayIsNoFields)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"c0", "c1"}, {"b0"}, {});
    model::Free(record->stChassisInfo.ppucCustomFields[0]);
    record->stChassisInfo.ppucCustomFields[0] = nullptr;
    record->stCommonHeader.ucProductInfoAreaStartOffset = 1U;
    record->stProductInfo.ucCustomFieldCount = 4U;
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_EQ(Str(custom->acChassisCustomField1), "c1");
    EXPECT_EQ(Str(custom->pcChassisCustomFields), "c1\\n");
    EXPECT_TRUE(custom->pcProductCustomFields == nullptr);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(InterpretCustomField, AnAbsentAreaOrACountOfZeroIsSkipped)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"c0"}, {"b0"}, {"p0"});
    record->stCommonHeader.ucChassisInfoAreaStartOffset = 0U;
    record->stCommonHeader.ucProductInfoAreaStartOffset = 0U;
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    EXPECT_TRUE(custom->pcChassisCustomFields == nullptr);
    EXPECT_EQ(Str(custom->pcBoardCustomFields), "b0\\n");
    EXPECT_TRUE(custom->pcProductCustomFields == nullptr);
    EXPECT_EQ(fake::Messages(), LINES{});

    CUSTOM none;
    model::Free(record->stBoardInfo.ppucCustomFields[0]);
    record->stBoardInfo.ppucCustomFields[0] = nullptr;
    record->stBoardInfo.ucCustomFieldCount = 0U;
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), none.Get()), 0U);
    EXPECT_TRUE(none->pcBoardCustomFields == nullptr);
}

// ---- failures: each area joins, then escapes in two steps ----

struct FAILURE_S
{
    u32 uiNth;
    u32 uiRet;
    LINES vecMessages;
};

// Two fields an area: allocations 1 and 2 join, 3 escapes, 4 duplicates.
void ExpectFailure(const TEXTS &vecChassis, const TEXTS &vecBoard, const TEXTS &vecProduct,
                   const FAILURE_S &stFailure)
{
    fake::Reset();
    const u32 uiBefore = fake::LiveAllocations();
    {
        RECORD record;
        CUSTOM custom;
        Fill(record.Get(), vecChassis, vecBoard, vecProduct);
        const u32 uiHeld = fake::LiveAllocations();
        fake::Arm({fake::KIND_E::ALLOC, stFailure.uiNth, false});
        EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), stFailure.uiRet);
        fake::Disarm();
        EXPECT_EQ(fake::Messages(), stFailure.vecMessages);
        EXPECT_TRUE(custom->pcProductCustomFields == nullptr);
        if (stFailure.uiRet != 0U) {
            EXPECT_TRUE(custom->pcChassisCustomFields == nullptr);
            EXPECT_TRUE(custom->pcBoardCustomFields == nullptr);
            EXPECT_EQ(fake::LiveAllocations(), uiHeld);
        }
    }
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
}

TEST(InterpretCustomField, ChassisFailures)
{
    const std::string strClosing = Line(2, "Interpret chassis custom field failed! Ret:0x81000001.");
    const std::string strMalloc = Line(2, "Malloc chassis custom field failed! Ret:-2130706431.");
    const std::string strEscape = Line(4, "Escape chassis custom field failed!");
    ExpectFailure({"", "a", "b"}, {}, {},
                  {1, 0x29000006U, {Line(2, "Malloc buf failed!"), strMalloc, strClosing}});
    ExpectFailure({"", "a", "b"}, {}, {},
                  {2, 0x29000006U, {Line(2, "Realloc buf failed!"), strMalloc, strClosing}});
    ExpectFailure({"", "a", "b"}, {}, {},
                  {3, 0x29000006U, {Line(2, "Memory BkStr allocation failing!"), strEscape, strClosing}});
    ExpectFailure({"", "a", "b"}, {}, {}, {4, 0x29000006U, {strEscape, strClosing}});
}

TEST(InterpretCustomField, BoardFailuresReleaseTheChassisText)
{
    const std::string strClosing = Line(2, "Interpret board custom field failed! Ret:0x81000001.");
    const std::string strMalloc = Line(2, "Malloc board custom field failed! Ret:-2130706431.");
    const std::string strEscape = Line(4, "Escape board custom field failed!");
    const TEXTS vecChassis{"", "a"}; // three allocations
    ExpectFailure(vecChassis, {"a", "b"}, {},
                  {4, 0x29000006U, {Line(2, "Malloc buf failed!"), strMalloc, strClosing}});
    ExpectFailure(vecChassis, {"a", "b"}, {},
                  {5, 0x29000006U, {Line(2, "Realloc buf failed!"), strMalloc, strClosing}});
    ExpectFailure(vecChassis, {"a", "b"}, {},
                  {6,
                   0x29000006U,
                   {BoardIndex(1), Line(2, "Memory BkStr allocation failing!"), strEscape, strClosing}});
    ExpectFailure(vecChassis, {"a", "b"}, {}, {7, 0x29000006U, {BoardIndex(1), strEscape, strClosing}});
}

TEST(InterpretCustomField, AProductAppendFailureIsNoFailure)
{
    const std::string strMalloc = Line(2, "Malloc product custom field failed! Ret:-2130706431.");
    const TEXTS vecChassis{"", "a"};
    ExpectFailure(vecChassis, {}, {"a", "b"}, {4, 0U, {Line(2, "Malloc buf failed!"), strMalloc}});
    ExpectFailure(vecChassis, {}, {"a", "b"}, {5, 0U, {Line(2, "Realloc buf failed!"), strMalloc}});
}

TEST(InterpretCustomField, AProductAppendFailureKeepsTheOtherTexts)
{
    fake::Reset();
    RECORD record;
    CUSTOM custom;
    Fill(record.Get(), {"", "a"}, {}, {"p"});
    fake::Arm({fake::KIND_E::ALLOC, 4, false});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), custom.Get()), 0U);
    fake::Disarm();
    EXPECT_EQ(Str(custom->pcChassisCustomFields), "a\\n");
}

TEST(InterpretCustomField, AProductEscapeFailureIsOne)
{
    const std::string strClosing = Line(2, "Interpret product custom field failed! Ret:0x81000001.");
    const std::string strEscape = Line(4, "Escape product custom field failed!");
    ExpectFailure({"", "a"}, {}, {"a", "b"},
                  {6, 0x29000006U, {Line(2, "Memory BkStr allocation failing!"), strEscape, strClosing}});
    ExpectFailure({"", "a"}, {}, {"a", "b"}, {7, 0x29000006U, {strEscape, strClosing}});
}

TEST(InterpretCustomField, AnyFailureLeavesNothingBehind)
{
    FRU_DATA_S stData;
    FRU_CUSTOM_FIELD_S stCustom;
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            Fill(&stData, {"a", "b", "c"}, {"d'", "e"}, {"f", "\n", "h"});
            stCustom = FRU_CUSTOM_FIELD_S{};
        },
        [&] { uiRet = FRU_ANALYZER_InterpretCustomField(&stData, &stCustom); },
        [&](const fake::FAULT_S *pstFault) {
            EXPECT_TRUE(uiRet == 0U || uiRet == 0x29000006U);
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, 0U);
                EXPECT_EQ(Str(stCustom.pcProductCustomFields), "f\\n\\n\\nh\\n");
            }
            FRU_ANALYZER_FreeCustomField(&stCustom);
            FRU_ANALYZER_SafeFree(&stData);
        });
}

// ---- release ----

TEST(FreeCustomField, NullIsLoggedAndIgnored)
{
    fake::Reset();
    FRU_ANALYZER_FreeCustomField(nullptr);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_ANALYZER_FreeCustomField", "pstCustomField")});
}

TEST(FreeCustomField, ChangesOnlyPointers)
{
    fake::Reset();
    RECORD record;
    FRU_CUSTOM_FIELD_S stCustom{};
    FRU_ANALYZER_FreeCustomField(&stCustom);
    const FRU_CUSTOM_FIELD_S stZero{};
    EXPECT_EQ(memcmp(&stCustom, &stZero, sizeof(stZero)), 0);
    Fill(record.Get(), {"A", "B"}, {"C"}, {"D"});
    EXPECT_EQ(FRU_ANALYZER_InterpretCustomField(record.Get(), &stCustom), 0U);
    const u32 uiHeld = fake::LiveAllocations();
    FRU_ANALYZER_FreeCustomField(&stCustom);
    FRU_ANALYZER_FreeCustomField(&stCustom);
    EXPECT_EQ(fake::LiveAllocations(), uiHeld - 3U);
    EXPECT_TRUE(stCustom.pcChassisCustomFields == nullptr);
    EXPECT_TRUE(stCustom.pcBoardCustomFields == nullptr);
    EXPECT_TRUE(stCustom.pcProductCustomFields == nullptr);
    EXPECT_EQ(+stCustom.uiChassisCustomFieldsLen, 6U);
    EXPECT_EQ(Str(stCustom.acBoardCustomField0), "C");
}

} // namespace
