// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "lib_fru_codec.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"
#include "support/record_builder.h"

namespace {

using label::Line;
using label::LINES;
using label::Null;

using SETTER = u32 (*)(u8 *, FRU_DATA_S *);

template <typename T> T At(const FRU_DATA_S &stData, size_t uiOffset)
{
    T tValue;
    (void)memcpy(&tValue, reinterpret_cast<const u8 *>(&stData) + uiOffset, sizeof(tValue));
    return tValue;
}

struct TEXT_ROW_S
{
    const char *pcSetter;
    SETTER pfnSetter;
    size_t uiMember;
};

#define TEXT_ROW(fnName, Member)                                                                             \
    {                                                                                                        \
#fnName, fnName, offsetof(FRU_DATA_S, Member)                                                        \
    }
const TEXT_ROW_S g_astTexts[] = {
    TEXT_ROW(setChassisType, stChassisInfo.pucChassisType),
    TEXT_ROW(setChassisPartNum, stChassisInfo.pucChassisPartNum),
    TEXT_ROW(setChassisSerialNum, stChassisInfo.pucChassisSerialNum),
    TEXT_ROW(setBoardManufacturer, stBoardInfo.pucBoardMfr),
    TEXT_ROW(setBoardProductName, stBoardInfo.pucBoardProductName),
    TEXT_ROW(setBoardSerialNumber, stBoardInfo.pucBoardSerialNum),
    TEXT_ROW(setBoardPartNumber, stBoardInfo.pucBoardPartNum),
    TEXT_ROW(setBoardFRUFileID, stBoardInfo.pucFRUFileID),
    TEXT_ROW(setProductManufacturer, stProductInfo.pucMfrName),
    TEXT_ROW(setProductProductName, stProductInfo.pucProductName),
    TEXT_ROW(setProductSerialNumber, stProductInfo.pucProductSerialNum),
    TEXT_ROW(setProductPartNumber, stProductInfo.pucProductPartNum),
    TEXT_ROW(setProductVersion, stProductInfo.pucProductVersion),
    TEXT_ROW(setProductAssetTag, stProductInfo.pucAssetTag),
    TEXT_ROW(setProductFRUFileID, stProductInfo.pucFRUFileID),
};

struct AREA_S
{
    size_t uiFields;
    size_t uiCount;
    const char *pcName;
};
const AREA_S g_stChassis = {offsetof(FRU_DATA_S, stChassisInfo.ppucCustomFields),
                            offsetof(FRU_DATA_S, stChassisInfo.ucCustomFieldCount), "Chassis"};
const AREA_S g_stBoard = {offsetof(FRU_DATA_S, stBoardInfo.ppucCustomFields),
                          offsetof(FRU_DATA_S, stBoardInfo.ucCustomFieldCount), "Board"};
const AREA_S g_stProduct = {offsetof(FRU_DATA_S, stProductInfo.ppucCustomFields),
                            offsetof(FRU_DATA_S, stProductInfo.ucCustomFieldCount), "Product"};

struct CUSTOM_ROW_S
{
    const char *pcSetter;
    SETTER pfnSetter;
    const AREA_S &stArea;
    u8 ucSlot;
};

const CUSTOM_ROW_S g_astCustoms[] = {
    {"setChassisCustomerSerialNum", setChassisCustomerSerialNum, g_stChassis, 0},
    {"setChassisMACAddress", setChassisMACAddress, g_stChassis, 1},
    {"setChassisMACAddressCount", setChassisMACAddressCount, g_stChassis, 2},
    {"setChassisClEICode", setChassisClEICode, g_stChassis, 3},
    {"setChassisLocationNodeID", setChassisLocationNodeID, g_stChassis, 4},
    {"setBoardTopSerialNumber", setBoardTopSerialNumber, g_stBoard, 0},
    {"setProductNodeType", setProductNodeType, g_stProduct, 0},
    {"setProductNodePSU", setProductNodePSU, g_stProduct, 1},
    {"setProductNodeNetwork", setProductNodeNetwork, g_stProduct, 2},
    {"setProductNodePower", setProductNodePower, g_stProduct, 3},
};

const TEXT_ROW_S g_astLanguages[] = {
    TEXT_ROW(setBoardLanuageCode, stBoardInfo.ucLanguage),
    TEXT_ROW(setProductLanguageCode, stProductInfo.ucLanguage),
};

// A record with every text set and five custom fields in every area.
void Fill(FRU_DATA_S &stData, u8 ucCustomFields = 5U)
{
    (void)memset(&stData, 0, sizeof(stData));
    for (const TEXT_ROW_S &stRow : g_astTexts) {
        u8 *pucText = model::Heap(stRow.pcSetter);
        (void)memcpy(reinterpret_cast<u8 *>(&stData) + stRow.uiMember, &pucText, sizeof(pucText));
    }
    for (const AREA_S *pstArea : {&g_stChassis, &g_stBoard, &g_stProduct}) {
        u8 **ppucFields = static_cast<u8 **>(calloc(ucCustomFields, sizeof(u8 *)));
        for (u8 i = 0; i < ucCustomFields; ++i) {
            ppucFields[i] = model::Heap(pstArea->pcName + std::to_string(i));
        }
        u8 *pucRecord = reinterpret_cast<u8 *>(&stData);
        (void)memcpy(pucRecord + pstArea->uiFields, &ppucFields, sizeof(ppucFields));
        pucRecord[pstArea->uiCount] = ucCustomFields;
    }
}

// A record whose size bytes and other small members are all marked, to see what a setter leaves alone.
void Mark(FRU_DATA_S &stData)
{
    stData.stChassisInfo.ucChassisPartNumLen = 0xA1U;
    stData.stChassisInfo.ucChassisSerialNumLen = 0xA2U;
    stData.stBoardInfo.ucLanguage = 0xA3U;
    stData.stBoardInfo.ucBoardMfrLen = 0xA4U;
    stData.stBoardInfo.ucFRUFileIDLen = 0xA5U;
    stData.stProductInfo.ucLanguage = 0xA6U;
    stData.stProductInfo.ucMfrNameLen = 0xA7U;
    stData.stProductInfo.ucAssetTagLen = 0xA8U;
    stData.stCommonHeader.ucProductInfoAreaStartOffset = 0xA9U;
}

fake::BYTES Image(const FRU_DATA_S &stData)
{
    const u8 *pucData = reinterpret_cast<const u8 *>(&stData);
    return {pucData, pucData + sizeof(stData)};
}

// The record's bytes with one member's made equal in both, so that the comparison is about all the others.
void ExpectOnlyMemberChanged(fake::BYTES vecBefore, const FRU_DATA_S &stAfter, size_t uiMember, size_t uiSize)
{
    const fake::BYTES vecAfter = Image(stAfter);
    std::copy_n(vecAfter.begin() + static_cast<std::ptrdiff_t>(uiMember), uiSize,
                vecBefore.begin() + static_cast<std::ptrdiff_t>(uiMember));
    EXPECT_EQ(vecBefore, vecAfter);
}

TEST(Setters, EveryTextSetterReplacesItsMemberAndNothingElse)
{
    for (const TEXT_ROW_S &stRow : g_astTexts) {
        SCOPED_TRACE(stRow.pcSetter);
        fake::Reset();
        const u32 uiLive = fake::LiveAllocations();
        FRU_DATA_S stData;
        Fill(stData);
        Mark(stData);
        const fake::BYTES vecBefore = Image(stData);
        const u32 uiFilled = fake::LiveAllocations();
        u8 *pucValue = model::Heap("a new value");
        EXPECT_EQ(stRow.pfnSetter(pucValue, &stData), 0U);
        EXPECT_EQ(At<u8 *>(stData, stRow.uiMember), pucValue);
        ExpectOnlyMemberChanged(vecBefore, stData, stRow.uiMember, sizeof(u8 *));
        EXPECT_EQ(fake::LiveAllocations(), uiFilled); // the old text went
        EXPECT_TRUE(fake::Messages().empty());
        FRU_ANALYZER_SafeFree(&stData);
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
    }
}

TEST(Setters, EveryTextSetterFillsAnEmptyMember)
{
    for (const TEXT_ROW_S &stRow : g_astTexts) {
        SCOPED_TRACE(stRow.pcSetter);
        fake::Reset();
        const u32 uiLive = fake::LiveAllocations();
        FRU_DATA_S stData = {};
        EXPECT_EQ(stRow.pfnSetter(model::Heap("first"), &stData), 0U);
        EXPECT_EQ(stRow.pfnSetter(model::Heap("second"), &stData), 0U);
        EXPECT_STREQ(At<char *>(stData, stRow.uiMember), "second");
        EXPECT_EQ(fake::LiveAllocations(), uiLive + 1U);
        FRU_ANALYZER_SafeFree(&stData);
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
    }
}

TEST(Setters, ABufferStoredAgainWhereItIsStaysAlive)
{
    fake::Reset();
    FRU_DATA_S stData;
    Fill(stData);
    EXPECT_EQ(setBoardManufacturer(stData.stBoardInfo.pucBoardMfr, &stData), 0U);
    EXPECT_STREQ(reinterpret_cast<char *>(stData.stBoardInfo.pucBoardMfr), "setBoardManufacturer");
    EXPECT_EQ(setProductNodePSU(stData.stProductInfo.ppucCustomFields[1], &stData), 0U);
    EXPECT_STREQ(reinterpret_cast<char *>(stData.stProductInfo.ppucCustomFields[1]), "Product1");
    FRU_ANALYZER_SafeFree(&stData);
}

TEST(Setters, EveryCustomSetterReplacesItsSlotAndNothingElse)
{
    for (const CUSTOM_ROW_S &stRow : g_astCustoms) {
        SCOPED_TRACE(stRow.pcSetter);
        fake::Reset();
        const u32 uiLive = fake::LiveAllocations();
        FRU_DATA_S stData;
        // Exactly as many slots as are needed.
        Fill(stData, static_cast<u8>(stRow.ucSlot + 1U));
        Mark(stData);
        const fake::BYTES vecBefore = Image(stData);
        const u32 uiFilled = fake::LiveAllocations();
        u8 *pucValue = model::Heap("a new value");
        EXPECT_EQ(stRow.pfnSetter(pucValue, &stData), 0U);
        EXPECT_EQ(Image(stData), vecBefore); // the record itself is as it was, the array is not
        u8 **ppucFields = At<u8 **>(stData, stRow.stArea.uiFields);
        for (u8 i = 0; i <= stRow.ucSlot; ++i) {
            const std::string strField = reinterpret_cast<char *>(ppucFields[i]);
            EXPECT_EQ(strField, i == stRow.ucSlot ? "a new value" : stRow.stArea.pcName + std::to_string(i));
        }
        EXPECT_EQ(ppucFields[stRow.ucSlot], pucValue);
        EXPECT_EQ(fake::LiveAllocations(), uiFilled);
        EXPECT_TRUE(fake::Messages().empty());
        FRU_ANALYZER_SafeFree(&stData);
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
    }
}

TEST(Setters, ACustomSetterFillsAnEmptySlot)
{
    fake::Reset();
    FRU_DATA_S stData = {};
    stData.stBoardInfo.ppucCustomFields = static_cast<u8 **>(calloc(1U, sizeof(u8 *)));
    stData.stBoardInfo.ucCustomFieldCount = 1U;
    u8 *pucValue = model::Heap("top");
    EXPECT_EQ(setBoardTopSerialNumber(pucValue, &stData), 0U);
    EXPECT_EQ(stData.stBoardInfo.ppucCustomFields[0], pucValue);
    FRU_ANALYZER_SafeFree(&stData);
}

TEST(Setters, ACustomSetterNeedsItsSlot)
{
    for (const CUSTOM_ROW_S &stRow : g_astCustoms) {
        for (u8 ucCount = 0; ucCount <= stRow.ucSlot; ++ucCount) {
            SCOPED_TRACE(stRow.pcSetter);
            fake::Reset();
            FRU_DATA_S stData;
            Fill(stData, ucCount == 0U ? u8{1} : ucCount);
            reinterpret_cast<u8 *>(&stData)[stRow.stArea.uiCount] = ucCount;
            const fake::BYTES vecBefore = Image(stData);
            u8 *pucValue = model::Heap("value");
            EXPECT_EQ(stRow.pfnSetter(pucValue, &stData), 0x81000001U);
            EXPECT_EQ(Image(stData), vecBefore);
            EXPECT_STREQ(reinterpret_cast<char *>(At<u8 **>(stData, stRow.stArea.uiFields)[0]),
                         (stRow.stArea.pcName + std::string("0")).c_str());
            const std::string strCount = ucCount == 0U ? "0" : "0x" + std::to_string(ucCount);
            EXPECT_EQ(fake::Messages(), LINES{Line(4U, std::string("Total_") + stRow.stArea.pcName +
                                                           "_CustomField count is " + strCount + "\n")});
            free(pucValue); // still the caller's
            reinterpret_cast<u8 *>(&stData)[stRow.stArea.uiCount] = ucCount == 0U ? u8{1} : ucCount;
            FRU_ANALYZER_SafeFree(&stData);
        }
    }
}

TEST(Setters, ACustomSetterWithoutAnArrayReportsItWhateverTheCount)
{
    for (const CUSTOM_ROW_S &stRow : g_astCustoms) {
        for (const u8 ucCount : {u8{0}, u8{5}}) {
            fake::Reset();
            FRU_DATA_S stData = {};
            reinterpret_cast<u8 *>(&stData)[stRow.stArea.uiCount] = ucCount;
            const fake::BYTES vecBefore = Image(stData);
            u8 *pucValue = model::Heap("value");
            EXPECT_EQ(stRow.pfnSetter(pucValue, &stData), 0x81000002U);
            EXPECT_EQ(Image(stData), vecBefore);
            EXPECT_EQ(fake::Messages(),
                      LINES{Null(stRow.pcSetter, std::string("pstFRUData->st") + stRow.stArea.pcName +
                                                     "Info.ppucCustomFields")});
            free(pucValue);
        }
    }
}

TEST(Setters, ALanguageSetterKeepsTheNumberAndNotTheBuffer)
{
    const std::pair<const char *, u8> astTexts[] = {{"25", 25U},  {"0", 0U},   {"136", 136U}, {"255", 255U},
                                                    {"300", 44U}, {"007", 7U}, {"", 0U},      {"x", 0U}};
    for (const TEXT_ROW_S &stRow : g_astLanguages) {
        for (const auto &[pcText, ucLanguage] : astTexts) {
            SCOPED_TRACE(stRow.pcSetter);
            fake::Reset();
            FRU_DATA_S stData;
            Fill(stData);
            Mark(stData);
            const fake::BYTES vecBefore = Image(stData);
            u8 *pucValue = model::Heap(pcText);
            EXPECT_EQ(stRow.pfnSetter(pucValue, &stData), 0U);
            EXPECT_EQ(At<u8>(stData, stRow.uiMember), ucLanguage) << pcText;
            ExpectOnlyMemberChanged(vecBefore, stData, stRow.uiMember, 1U);
            EXPECT_STREQ(reinterpret_cast<char *>(pucValue), pcText);
            EXPECT_TRUE(fake::Messages().empty());
            free(pucValue);
            FRU_ANALYZER_SafeFree(&stData);
        }
    }
}

TEST(Setters, TheDateSetterStoresThreeBytesAndKeepsNothing)
{
    fake::Reset();
    ASSERT_EQ(setenv("TZ", "UTC", 1), 0);
    tzset();
    FRU_DATA_S stData;
    Fill(stData);
    Mark(stData);
    const fake::BYTES vecBefore = Image(stData);
    u8 *pucValue = model::Heap("1996-01-01 00:01:59");
    EXPECT_EQ(setBoardMfgDate(pucValue, &stData), 0U);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[0], 1U);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[1], 0U);
    EXPECT_EQ(stData.stBoardInfo.aucMfgDateTime[2], 0U);
    ExpectOnlyMemberChanged(vecBefore, stData, offsetof(FRU_DATA_S, stBoardInfo.aucMfgDateTime), 3U);
    EXPECT_TRUE(fake::Messages().empty());
    free(pucValue);
    FRU_ANALYZER_SafeFree(&stData);
}

TEST(Setters, TheDateSetterPassesTheConvertersFailureOn)
{
    fake::Reset();
    FRU_DATA_S stData = {};
    stData.stBoardInfo.aucMfgDateTime[1] = 0x55U;
    const fake::BYTES vecBefore = Image(stData);
    u8 *pucValue = model::Heap("2023/05/07");
    EXPECT_EQ(setBoardMfgDate(pucValue, &stData), 0x81000001U);
    EXPECT_EQ(Image(stData), vecBefore);
    EXPECT_EQ(fake::Messages(), LINES{"0/4 lib_fru.c: Sscanf failed! Ret:0x1."});
    free(pucValue);
}

TEST(Setters, EverySetterReportsItsNullArgumentsTheValueFirst)
{
    std::vector<std::pair<const char *, SETTER>> vecSetters{{"setBoardMfgDate", setBoardMfgDate}};
    for (const TEXT_ROW_S &stRow : g_astTexts) {
        vecSetters.emplace_back(stRow.pcSetter, stRow.pfnSetter);
    }
    for (const TEXT_ROW_S &stRow : g_astLanguages) {
        vecSetters.emplace_back(stRow.pcSetter, stRow.pfnSetter);
    }
    for (const CUSTOM_ROW_S &stRow : g_astCustoms) {
        vecSetters.emplace_back(stRow.pcSetter, stRow.pfnSetter);
    }
    ASSERT_EQ(vecSetters.size(), 28U);
    for (const auto &[pcSetter, pfnSetter] : vecSetters) {
        fake::Reset();
        FRU_DATA_S stData;
        Fill(stData);
        const fake::BYTES vecBefore = Image(stData);
        u8 *pucValue = model::Heap("value");
        EXPECT_EQ(pfnSetter(nullptr, nullptr), 0x81000002U);
        EXPECT_EQ(pfnSetter(nullptr, &stData), 0x81000002U);
        EXPECT_EQ(pfnSetter(pucValue, nullptr), 0x81000002U);
        EXPECT_EQ(fake::Messages(), (LINES{Null(pcSetter, "pucLabelValue"), Null(pcSetter, "pucLabelValue"),
                                           Null(pcSetter, "pstFRUData")}));
        EXPECT_EQ(Image(stData), vecBefore);
        free(pucValue);
        FRU_ANALYZER_SafeFree(&stData);
    }
}

TEST(Setters, OnlyLanguageAndDateSettersKeepNothing)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        const u32 uiLabelID = g_astDIAG_FruLabel[i].uiLabelID;
        EXPECT_EQ(FRU_SetterKeepsNothing(g_astDIAG_FruLabel[i].pfnSetLabel),
                  uiLabelID == 9U || uiLabelID == 10U || uiLabelID == 17U)
            << uiLabelID;
    }
}

} // namespace
