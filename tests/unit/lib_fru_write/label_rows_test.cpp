// SPDX-License-Identifier: Apache-2.0
// What the library knows of a label beside the exported table, and which of the two decides when a caller has
// changed the table.
#include "lib_fru_write/label_rows.h"

#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "lib_fru_codec.h"

namespace {

using label::Line;
using label::LINES;

// One exported row, put back at the end of a test.
class ChangedRow
{
  public:
    explicit ChangedRow(u32 uiRow) : m_uiRow(uiRow), m_stBefore(g_astDIAG_FruLabel[uiRow]) {}
    ~ChangedRow()
    {
        g_astDIAG_FruLabel[m_uiRow] = m_stBefore;
    }
    ChangedRow(const ChangedRow &) = delete;
    ChangedRow &operator=(const ChangedRow &) = delete;
    DIAG_FRU_LABEL_S *operator->() const
    {
        return &g_astDIAG_FruLabel[m_uiRow];
    }

  private:
    u32 m_uiRow;
    DIAG_FRU_LABEL_S m_stBefore;
};

u32 Valid(const char *pcName, const std::string &strValue, u32 uiComponentType = 1U)
{
    fake::Reset();
    const auto upValue = label::Text(strValue);
    return isLabelValueValid(pcName, upValue.get(), static_cast<i32>(strValue.size()), uiComponentType);
}

FRU_SET_PARA_S Replacement(u32 uiLabelID, const char *pcValue)
{
    FRU_SET_PARA_S stBlock = {};
    stBlock.uiLabelID = uiLabelID;
    (void)strcpy(stBlock.acLabelValue, pcValue);
    stBlock.uiLabelValueLen = static_cast<u32>(strlen(pcValue));
    return stBlock;
}

TEST(LabelRows, OwnKnowledgeAgreesWithTheExportedTable)
{
    for (u32 i = 0; i < FRU_LABEL_ROWS; ++i) {
        const DIAG_FRU_LABEL_S stRow = g_astDIAG_FruLabel[i];
        const FRU_LABEL_S &stLabel = FRU_LabelOfID(stRow.uiLabelID);
        EXPECT_EQ(stLabel.ucLabelID, stRow.uiLabelID);
        EXPECT_STREQ(FRU_NameOfLabel(stLabel), stRow.pcLabelName);
        EXPECT_EQ(stLabel.stTarget.eSets == FRU_SETS_NOTHING, stRow.pfnSetLabel == nullptr);
        EXPECT_EQ(FRU_LabelOfName(stRow.pcLabelName).ucLabelID, FindLabelIDByName(stRow.pcLabelName));
    }
}

TEST(LabelRows, IdsHaveTheirPublicNames)
{
    EXPECT_EQ(FindLabelIDByName("Chassis Type"), u32{FRU_LABEL_CHASSIS_TYPE});
    EXPECT_EQ(FindLabelIDByName("Language Code"), u32{FRU_LABEL_BOARD_LANGUAGE});
    EXPECT_EQ(FindLabelIDByName("Product Language Code"), u32{FRU_LABEL_PRODUCT_LANGUAGE});
    EXPECT_EQ(FindLabelIDByName("Product Serial Number"), u32{FRU_LABEL_PRODUCT_SERIAL_NUMBER});
    EXPECT_EQ(FindLabelIDByName("Product Node Power"), u32{FRU_LABEL_PRODUCT_NODE_POWER});
    EXPECT_EQ(FindLabelIDByName("Hardware FRU Label"), u32{FRU_LABEL_HARDWARE});
    EXPECT_EQ(FRU_GetPsuFieldIDByName("Board Part Number"),
              FRU_LABEL_PSU_PART_NUMBER - FRU_LABEL_PSU_PRODUCT_NAME);
    EXPECT_EQ(FindLabelIDByName("no such label"), FRU_LABEL_NOT_FOUND);
    static_assert(FRU_LABEL_PRODUCT_NODE_POWER == 28 && FRU_LABEL_HARDWARE == 29 &&
                  FRU_LABEL_PSU_PART_NUMBER == 35);
}

TEST(LabelRows, CustomFieldsStandInTheOrderOfTheImage)
{
    u8 aucNext[FRU_AREA_COUNT] = {};
    for (u32 uiID = FRU_LABEL_CHASSIS_TYPE; uiID <= FRU_LABEL_PRODUCT_NODE_POWER; ++uiID) {
        const FRU_TARGET_S stTarget = FRU_LabelOfID(uiID).stTarget;
        if (stTarget.eSets == FRU_SETS_CUSTOM) {
            ASSERT_LT(stTarget.ucPlace, FRU_AREA_COUNT);
            EXPECT_EQ(stTarget.ucSlot, aucNext[stTarget.ucPlace]++) << uiID;
        }
    }
    EXPECT_EQ(aucNext[FRU_AREA_CHASSIS], FRU_CHASSIS_FIXED_SLOTS);
    EXPECT_EQ(aucNext[FRU_AREA_BOARD], 1U);
    EXPECT_EQ(aucNext[FRU_AREA_PRODUCT], FRU_PRODUCT_FIXED_SLOTS);
}

TEST(LabelRows, EveryFieldIsSetByOneLabel)
{
    u32 auiLabels[FRU_FIELD_COUNT] = {};
    for (u32 uiID = FRU_LABEL_CHASSIS_TYPE; uiID <= FRU_LABEL_PRODUCT_NODE_POWER; ++uiID) {
        const FRU_TARGET_S stTarget = FRU_LabelOfID(uiID).stTarget;
        if (stTarget.eSets != FRU_SETS_CUSTOM) {
            const bool bBytes = g_astFruField[stTarget.ucPlace].ucKind == FRU_KIND_BYTES;
            EXPECT_EQ(bBytes, stTarget.eSets != FRU_SETS_TEXT) << uiID;
            ++auiLabels[stTarget.ucPlace];
        }
    }
    for (u32 i = 0; i < FRU_FIELD_COUNT; ++i) {
        EXPECT_EQ(auiLabels[i], 1U) << "field " << i;
    }
}

TEST(LabelRows, ANameThatOnlyTheTableHasIsAnOrdinaryText)
{
    const ChangedRow stRow(FRU_LABEL_CHASSIS_MAC_ADDRESS - 1U);
    stRow->pcLabelName = "Shelf Number";
    EXPECT_EQ(Valid("Shelf Number", "no address"), 1U);
    EXPECT_EQ(Valid("Shelf Number", "    "), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Label Value is null.")});
    EXPECT_EQ(Valid("Shelf Number", "NONE"), 1U); // the row still allows it
    EXPECT_EQ(Valid("Chassis MAC Address", "00A0C9141E3F"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Label Value Size:12 invalid!")});
}

TEST(LabelRows, ANameMovedToAnotherRowKeepsItsRuleAndHasThatRowsLimits)
{
    const ChangedRow stRow(FRU_LABEL_BOARD_FRU_FILE_ID - 1U);
    const ChangedRow stDate(FRU_LABEL_BOARD_MFG_DATE - 1U);
    stDate->pcLabelName = "Old Date";
    stRow->pcLabelName = "Mfg.Date";
    stRow->uiMaxLen = 8U;
    EXPECT_EQ(Valid("Mfg.Date", "2024-1-1"), 1U);
    EXPECT_EQ(Valid("Mfg.Date", "2024-1-x"), 0U);
    EXPECT_EQ(Valid("Mfg.Date", "2024-01-01"), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Label Value Size:10 invalid!")});
}

TEST(LabelRows, ThePartNumbersLimitGoesByTheIdInTheTable)
{
    const ChangedRow stRow(FRU_LABEL_BOARD_PART_NUMBER - 1U);
    EXPECT_EQ(Valid("Board Part Number", std::string(40U, 'p'), 0U), 0U);
    stRow->uiLabelID = FRU_LABEL_PRODUCT_PART_NUMBER;
    EXPECT_EQ(Valid("Board Part Number", std::string(40U, 'p'), 0U), 1U);
    stRow->uiLabelID = 99U;
    EXPECT_EQ(Valid("Board Part Number", std::string(40U, 'p'), 0U), 0U);
}

TEST(LabelRows, AnUnlimitedLengthInTheTableIsNoLimit)
{
    const ChangedRow stRow(FRU_LABEL_BOARD_MANUFACTURER - 1U);
    stRow->uiMaxLen = 0xFFFFFFFFU;
    EXPECT_EQ(Valid("Board Manufacturer", "ACME"), 1U);
    EXPECT_EQ(Valid("Board Manufacturer", std::string(500U, 'm')), 1U);
    EXPECT_EQ(Valid("Board Manufacturer", "A"), 0U); // the shortest is still 2
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Label Value Size:1 invalid!")});
}

// A caller's own setter, with the contract of the text setters.
u8 *g_pucTaken;

u32 TakeOver(u8 *pucLabelValue, FRU_DATA_S * /*pstFRUData*/)
{
    g_pucTaken = pucLabelValue;
    return 0U;
}

TEST(LabelRows, ACallersOwnSetterIsCalledAndOwnsTheValue)
{
    fake::Reset();
    const ChangedRow stRow(FRU_LABEL_BOARD_LANGUAGE - 1U);
    stRow->pfnSetLabel = TakeOver;
    const u32 uiLive = fake::LiveAllocations();
    const FRU_SET_PARA_S stBlock = Replacement(FRU_LABEL_BOARD_LANGUAGE, "25");
    FRU_DATA_S stData = {};
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stData), 0U);
    EXPECT_EQ(fake::LiveAllocations(), uiLive + 1U);
    EXPECT_STREQ(reinterpret_cast<char *>(g_pucTaken), "25");
    EXPECT_EQ(stData.stBoardInfo.ucLanguage, 0U);
    free(g_pucTaken);
    EXPECT_FALSE(FRU_SetterKeepsNothing(TakeOver));
    EXPECT_FALSE(FRU_SetterKeepsNothing(nullptr));
}

TEST(LabelRows, ASetterMovedToAnotherRowKeepsItsOwnership)
{
    fake::Reset();
    const ChangedRow stText(FRU_LABEL_BOARD_LANGUAGE - 1U);
    const ChangedRow stNumber(FRU_LABEL_BOARD_MANUFACTURER - 1U);
    stText->pfnSetLabel = setBoardManufacturer;
    stNumber->pfnSetLabel = setBoardLanuageCode;
    const u32 uiLive = fake::LiveAllocations();
    FRU_DATA_S stData = {};
    FRU_SET_PARA_S stBlock = Replacement(FRU_LABEL_BOARD_MANUFACTURER, "25");
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stData), 0U);
    EXPECT_EQ(stData.stBoardInfo.ucLanguage, 25U);
    EXPECT_EQ(fake::LiveAllocations(), uiLive); // released: a language setter keeps nothing
    stBlock = Replacement(FRU_LABEL_BOARD_LANGUAGE, "Maker");
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stData), 0U);
    EXPECT_EQ(fake::LiveAllocations(), uiLive + 1U); // the record's
    FRU_ANALYZER_SafeFree(&stData);
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
}

} // namespace
