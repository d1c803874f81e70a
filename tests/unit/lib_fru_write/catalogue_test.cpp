// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <set>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"

namespace {

using label::Line;
using label::LINES;
using label::Null;
using label::Text;

struct ROW_S
{
    u32 uiLabelID;
    const char *pcLabelName;
    u32 uiMinLen;
    u32 uiMaxLen;
    u8 ucNoneAllowed;
    u32 (*pfnSetLabel)(u8 *, FRU_DATA_S *);
};

const ROW_S g_astRows[] = {
    {1, "Chassis Type", 2, 21, 0, setChassisType},
    {2, "Chassis Part Number", 2, 63, 0, setChassisPartNum},
    {3, "Chassis Serial Number", 2, 63, 0, setChassisSerialNum},
    {4, "Chassis Customer Serial Number", 2, 20, 0, setChassisCustomerSerialNum},
    {5, "Chassis MAC Address", 4, 12, 1, setChassisMACAddress},
    {6, "Chassis MAC Address Count", 2, 10, 1, setChassisMACAddressCount},
    {7, "CLEI Code", 2, 63, 1, setChassisClEICode},
    {8, "Chassis Location Node ID", 0, 20, 1, setChassisLocationNodeID},
    {9, "Language Code", 1, 3, 0, setBoardLanuageCode},
    {10, "Mfg.Date", 8, 19, 0, setBoardMfgDate},
    {11, "Board Manufacturer", 2, 63, 0, setBoardManufacturer},
    {12, "Board Product Name", 2, 63, 0, setBoardProductName},
    {13, "Board Serial Number", 2, 63, 0, setBoardSerialNumber},
    {14, "Board Part Number", 2, 15, 0, setBoardPartNumber},
    {15, "FRU File ID", 2, 63, 0, setBoardFRUFileID},
    {16, "Board Top Serial Number", 0, 20, 1, setBoardTopSerialNumber},
    {17, "Product Language Code", 1, 3, 0, setProductLanguageCode},
    {18, "Product Manufacturer", 2, 63, 0, setProductManufacturer},
    {19, "Product Product Name", 2, 63, 0, setProductProductName},
    {20, "Product Serial Number", 2, 63, 0, setProductSerialNumber},
    {21, "Product Part Number", 2, 63, 0, setProductPartNumber},
    {22, "Product Version", 2, 63, 0, setProductVersion},
    {23, "Product Asset Tag", 0, 63, 0, setProductAssetTag},
    {24, "Product FRU File ID", 2, 63, 0, setProductFRUFileID},
    {25, "Product Node Type", 0, 63, 1, setProductNodeType},
    {26, "Product Node PSU", 0, 63, 1, setProductNodePSU},
    {27, "Product Node Network", 0, 63, 1, setProductNodeNetwork},
    {28, "Product Node Power", 0, 63, 1, setProductNodePower},
    {29, "Hardware FRU Label", 1, 31, 0, nullptr},
    {31, "Board Product Name", 1, 47, 0, nullptr},
    {32, "Board Serial Number", 1, 47, 0, nullptr},
    {33, "Mfg.Date", 1, 47, 0, nullptr},
    {34, "Board Manufacturer", 1, 47, 0, nullptr},
    {35, "Board Part Number", 1, 21, 0, nullptr},
};

// Empties the catalogue as far as lookups are concerned, for the life of a test.
struct EMPTY_CATALOGUE_S
{
    EMPTY_CATALOGUE_S()
    {
        g_uiDIAG_FruLabelMaxNum = 0U;
    }
    ~EMPTY_CATALOGUE_S()
    {
        g_uiDIAG_FruLabelMaxNum = 34U;
    }
    EMPTY_CATALOGUE_S(const EMPTY_CATALOGUE_S &) = delete;
    EMPTY_CATALOGUE_S &operator=(const EMPTY_CATALOGUE_S &) = delete;
};

TEST(Catalogue, HasThirtyFourRowsInThisOrder)
{
    ASSERT_EQ(g_uiDIAG_FruLabelMaxNum, 34U);
    ASSERT_EQ(std::size(g_astRows), 34U);
    for (u32 i = 0; i < 34U; ++i) {
        const ROW_S &stRow = g_astRows[i];
        SCOPED_TRACE(stRow.pcLabelName);
        const DIAG_FRU_LABEL_S stLabel = g_astDIAG_FruLabel[i];
        EXPECT_EQ(u32{stLabel.uiLabelID}, stRow.uiLabelID);
        EXPECT_STREQ(static_cast<const char *>(stLabel.pcLabelName), stRow.pcLabelName);
        EXPECT_EQ(u32{stLabel.uiMinLen}, stRow.uiMinLen);
        EXPECT_EQ(u32{stLabel.uiMaxLen}, stRow.uiMaxLen);
        EXPECT_EQ(stLabel.ucNoneAllowed, stRow.ucNoneAllowed);
        const bool bSameSetter = stLabel.pfnSetLabel == stRow.pfnSetLabel;
        EXPECT_TRUE(bSameSetter);
        const bool bReservedIsNull = stLabel.pfnReserved == nullptr;
        EXPECT_TRUE(bReservedIsNull);
    }
}

TEST(Catalogue, RowsArePackedBackToBack)
{
    constexpr size_t uiRow = 4U + sizeof(void *) + 4U + 4U + 1U + 2U * sizeof(void *);
    const u8 *pucTable = reinterpret_cast<const u8 *>(g_astDIAG_FruLabel);
    for (u32 i = 0; i < 34U; ++i) {
        const u8 *pucRow = pucTable + i * uiRow;
        const char *pcName = nullptr;
        u32 uiLabelID = 0;
        u32 uiMaxLen = 0;
        (void)memcpy(&uiLabelID, pucRow, 4U);
        (void)memcpy(&pcName, pucRow + 4U, sizeof(pcName));
        (void)memcpy(&uiMaxLen, pucRow + 8U + sizeof(void *), 4U);
        EXPECT_EQ(uiLabelID, g_astRows[i].uiLabelID);
        EXPECT_STREQ(pcName, g_astRows[i].pcLabelName);
        EXPECT_EQ(uiMaxLen, g_astRows[i].uiMaxLen);
        EXPECT_EQ(pucRow[12U + sizeof(void *)], g_astRows[i].ucNoneAllowed);
    }
}

TEST(Catalogue, NameLookupFindsTheFirstRow)
{
    for (const ROW_S &stRow : g_astRows) {
        fake::Reset();
        u32 uiExpected = stRow.uiLabelID;
        for (const ROW_S &stEarlier : g_astRows) {
            if (strcmp(stEarlier.pcLabelName, stRow.pcLabelName) == 0) {
                uiExpected = stEarlier.uiLabelID;
                break;
            }
        }
        EXPECT_LE(uiExpected, 29U);
        EXPECT_EQ(FindLabelIDByName(Text(stRow.pcLabelName).get()), uiExpected) << stRow.pcLabelName;
        EXPECT_TRUE(fake::Messages().empty());
    }
    EXPECT_EQ(FindLabelIDByName("Board Part Number"), 14U);
}

TEST(Catalogue, NameLookupComparesWholeNamesAndCase)
{
    fake::Reset();
    for (const char *pcName : {"", "board part number", "Board Part Numbe", "Board Part Number ",
                               " Board Part Number", "Product", "Mfg.Date\n", "Serial Number"}) {
        EXPECT_EQ(FindLabelIDByName(Text(pcName).get()), 36U) << pcName;
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(Catalogue, NameLookupReportsANullName)
{
    fake::Reset();
    EXPECT_EQ(FindLabelIDByName(nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{Null("FindLabelIDByName", "pcLableName")});
}

TEST(Catalogue, EveryLookupFailsInAnEmptyTable)
{
    const EMPTY_CATALOGUE_S stEmpty;
    fake::Reset();
    EXPECT_EQ(FindLabelIDByName("Chassis Type"), 36U);
    EXPECT_EQ(FRU_GetPsuFieldIDByName("Board Product Name"), 36U);
    EXPECT_EQ(FRU_FindLabelByID(1U), nullptr);
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(FindLabelIDByName(nullptr), 0x81000002U);
    EXPECT_EQ(FRU_GetPsuFieldIDByName(nullptr), 36U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FindLabelIDByName", "pcLableName"),
                                       Null("FRU_GetPsuFieldIDByName", "pcLableName")}));
}

TEST(Catalogue, TheRowCountBoundsEveryWalk)
{
    g_uiDIAG_FruLabelMaxNum = 29U;
    EXPECT_EQ(FRU_GetPsuFieldIDByName("Board Product Name"), 36U);
    EXPECT_EQ(FindLabelIDByName("Hardware FRU Label"), 29U);
    g_uiDIAG_FruLabelMaxNum = 28U;
    EXPECT_EQ(FindLabelIDByName("Hardware FRU Label"), 36U);
    g_uiDIAG_FruLabelMaxNum = 34U;
}

TEST(Catalogue, PsuLookupGivesTheFieldIndex)
{
    const std::pair<const char *, u32> astFields[] = {{"Board Product Name", 0U},
                                                      {"Board Serial Number", 1U},
                                                      {"Mfg.Date", 2U},
                                                      {"Board Manufacturer", 3U},
                                                      {"Board Part Number", 4U}};
    for (const auto &[pcName, uiField] : astFields) {
        fake::Reset();
        EXPECT_EQ(FRU_GetPsuFieldIDByName(Text(pcName).get()), uiField);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(6U, "FindLabelName Success!, FieldID:" + std::to_string(uiField) + "\n")});
    }
}

TEST(Catalogue, PsuLookupGivesNothingForEveryOtherName)
{
    fake::Reset();
    const std::set<std::string> setFields{"Board Product Name", "Board Serial Number", "Mfg.Date",
                                          "Board Manufacturer", "Board Part Number"};
    for (const ROW_S &stRow : g_astRows) {
        if (setFields.count(stRow.pcLabelName) == 0U) {
            EXPECT_EQ(FRU_GetPsuFieldIDByName(stRow.pcLabelName), 36U) << stRow.pcLabelName;
        }
    }
    EXPECT_EQ(FRU_GetPsuFieldIDByName(""), 36U);
    EXPECT_EQ(FRU_GetPsuFieldIDByName("no such label"), 36U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(Catalogue, PsuLookupReportsANullName)
{
    fake::Reset();
    EXPECT_EQ(FRU_GetPsuFieldIDByName(nullptr), 36U);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_GetPsuFieldIDByName", "pcLableName")});
}

TEST(Catalogue, IdLookupFindsEveryRowAndNoOther)
{
    for (const ROW_S &stRow : g_astRows) {
        const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByID(stRow.uiLabelID);
        ASSERT_NE(pstLabel, nullptr);
        EXPECT_STREQ(static_cast<const char *>(pstLabel->pcLabelName), stRow.pcLabelName);
    }
    for (const u32 uiLabelID : {0U, 30U, 36U, 0xFFFFFFFFU}) {
        EXPECT_EQ(FRU_FindLabelByID(uiLabelID), nullptr);
    }
}

struct FIELD_ROW_S
{
    u8 ucFieldFlag;
    u8 aucStartID[4];
    u8 aucEndID[4];
    std::set<u32> setAllowed;
};

std::set<u32> Range(u32 uiFirst, u32 uiLast)
{
    std::set<u32> setIDs;
    for (u32 i = uiFirst; i <= uiLast; ++i) {
        setIDs.insert(i);
    }
    return setIDs;
}

std::set<u32> operator+(std::set<u32> setLeft, const std::set<u32> &setRight)
{
    setLeft.insert(setRight.begin(), setRight.end());
    return setLeft;
}

std::vector<FIELD_ROW_S> FieldRows()
{
    const std::set<u32> setChassis = Range(1, 8);
    const std::set<u32> setBoard = Range(9, 16);
    const std::set<u32> setProduct = Range(17, 28);
    const std::set<u32> setHardware = {29};
    return {
        {1, {1, 9, 17, 29}, {9, 9, 17, 30}, setChassis + setHardware},
        {2, {1, 9, 17, 29}, {1, 17, 17, 30}, setBoard + setHardware},
        {3, {1, 9, 17, 29}, {9, 17, 17, 30}, setChassis + setBoard + setHardware},
        {4, {1, 9, 17, 29}, {1, 9, 29, 30}, setProduct + setHardware},
        {5, {1, 9, 17, 29}, {9, 9, 29, 30}, setChassis + setProduct + setHardware},
        {6, {1, 9, 17, 29}, {1, 17, 29, 30}, setBoard + setProduct + setHardware},
        {7, {1, 9, 17, 29}, {9, 17, 29, 29}, Range(1, 28)},
        {8, {1, 7, 17, 29}, {5, 17, 29, 29}, Range(1, 4) + Range(7, 28)},
        {9, {1, 10, 18, 29}, {1, 17, 25, 29}, Range(10, 16) + Range(18, 24)},
    };
}

TEST(FieldTable, HasNineRowsInThisOrder)
{
    ASSERT_EQ(g_uiDIAG_ElectronicFieldMaxNum, 9U);
    const std::vector<FIELD_ROW_S> vecRows = FieldRows();
    ASSERT_EQ(vecRows.size(), 9U);
    for (u32 i = 0; i < 9U; ++i) {
        const DIAG_ELECTRONIC_FIELD_S &stField = g_astDIAG_ElectronicField[i];
        EXPECT_EQ(stField.ucFieldFlag, vecRows[i].ucFieldFlag);
        EXPECT_EQ(memcmp(stField.aucStartID, vecRows[i].aucStartID, 4U), 0) << i;
        EXPECT_EQ(memcmp(stField.aucEndID, vecRows[i].aucEndID, 4U), 0) << i;
    }
}

TEST(FieldTable, ConfirmFillsTheRangesOfAKnownFlag)
{
    for (const FIELD_ROW_S &stRow : FieldRows()) {
        fake::Reset();
        DIAG_ELECTRONIC_FIELD_S stField = {};
        stField.ucFieldFlag = stRow.ucFieldFlag;
        EXPECT_EQ(ConfirmElectroniclabelField(&stField), 0U);
        EXPECT_EQ(stField.ucFieldFlag, stRow.ucFieldFlag);
        EXPECT_EQ(memcmp(stField.aucStartID, stRow.aucStartID, 4U), 0);
        EXPECT_EQ(memcmp(stField.aucEndID, stRow.aucEndID, 4U), 0);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(FieldTable, ConfirmRefusesAnUnknownFlagAndLeavesTheRecord)
{
    for (const u32 uiFlag : {0U, 10U, 128U, 255U}) {
        fake::Reset();
        DIAG_ELECTRONIC_FIELD_S stField = {static_cast<u8>(uiFlag), {1, 2, 3, 4}, {5, 6, 7, 8}};
        const DIAG_ELECTRONIC_FIELD_S stBefore = stField;
        EXPECT_EQ(ConfirmElectroniclabelField(&stField), 0x81000001U);
        EXPECT_EQ(memcmp(&stField, &stBefore, sizeof(stField)), 0);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(2U, "FieldFlag " + std::to_string(uiFlag) + " is not available!\n")});
    }
}

TEST(FieldTable, ConfirmReportsANullRecord)
{
    fake::Reset();
    EXPECT_EQ(ConfirmElectroniclabelField(nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{Null("ConfirmElectroniclabelField", "pstElectronicField")});
}

TEST(FieldTable, EveryFlagAllowsExactlyItsLabels)
{
    for (const FIELD_ROW_S &stRow : FieldRows()) {
        for (const ROW_S &stLabel : g_astRows) {
            if (stLabel.uiLabelID > 29U) {
                continue; // their names are judged by the board label of the same name
            }
            fake::Reset();
            FRU_SET_PARA_S stBlock = {};
            stBlock.ucFieldFlag = stRow.ucFieldFlag;
            (void)strcpy(stBlock.acLabelName, stLabel.pcLabelName);
            EXPECT_EQ(isLabelNameValid(&stBlock), stRow.setAllowed.count(stLabel.uiLabelID))
                << "flag " << u32{stRow.ucFieldFlag} << ", " << stLabel.pcLabelName;
            EXPECT_TRUE(fake::Messages().empty());
        }
    }
}

} // namespace
