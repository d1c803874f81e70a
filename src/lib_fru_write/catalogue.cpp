// SPDX-License-Identifier: Apache-2.0
// The label catalogue: which labels there are, and which of them a device accepts.
#include "lib_fru_write/catalogue.h"

#include <cstring>

#include "common/text.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/label_rows.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

// All names, one behind the other, so that the library's own copy of them needs no pointers.
#define FRU_LABEL_NAME(uiID, pcName, ...) pcName "\0"
constexpr char g_acNames[] = FRU_LABELS(FRU_LABEL_NAME, FRU_LABEL_NAME);

// IDs have one gap. Others give a row that is not there.
constexpr u32 RowOfID(u32 uiLabelID)
{
    return uiLabelID <= FRU_LABEL_HARDWARE ? uiLabelID - 1U : uiLabelID - 2U;
}

constexpr const char *NameOfID(u32 uiLabelID)
{
    return FRU_NthText(g_acNames, RowOfID(uiLabelID));
}

} // namespace

// The power-supply rows bear names of board labels on purpose: their own lookup alone gets that far.
#define FRU_STORED_ROW(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnSetLabel)          \
    {uiID, NameOfID(uiID), uiMin, uiMax, ucNone, pfnSetLabel, nullptr},
#define FRU_OTHER_ROW(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial)                                  \
    {uiID, NameOfID(uiID), uiMin, uiMax, ucNone, nullptr, nullptr},
DIAG_FRU_LABEL_S g_astDIAG_FruLabel[] = {FRU_LABELS(FRU_STORED_ROW, FRU_OTHER_ROW)};
static_assert(sizeof(g_astDIAG_FruLabel) / sizeof(g_astDIAG_FruLabel[0]) == FRU_LABEL_ROWS);

u32 g_uiDIAG_FruLabelMaxNum = FRU_LABEL_ROWS;

// Flags 1, 2 and 4 are single areas, 3, 5, 6 and 7 their unions, 8 and 9 special sets.
const DIAG_ELECTRONIC_FIELD_S g_astDIAG_ElectronicField[] = {
    {1U, {1U, 9U, 17U, 29U}, {9U, 9U, 17U, 30U}},   {2U, {1U, 9U, 17U, 29U}, {1U, 17U, 17U, 30U}},
    {3U, {1U, 9U, 17U, 29U}, {9U, 17U, 17U, 30U}},  {4U, {1U, 9U, 17U, 29U}, {1U, 9U, 29U, 30U}},
    {5U, {1U, 9U, 17U, 29U}, {9U, 9U, 29U, 30U}},   {6U, {1U, 9U, 17U, 29U}, {1U, 17U, 29U, 30U}},
    {7U, {1U, 9U, 17U, 29U}, {9U, 17U, 29U, 29U}},  {8U, {1U, 7U, 17U, 29U}, {5U, 17U, 29U, 29U}},
    {9U, {1U, 10U, 18U, 29U}, {1U, 17U, 25U, 29U}},
};
const u32 g_uiDIAG_ElectronicFieldMaxNum =
    sizeof(g_astDIAG_ElectronicField) / sizeof(g_astDIAG_ElectronicField[0]);

namespace {

// What stands in the exported table can change, these rows cannot.
#define FRU_STORED_LABEL(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnSetLabel)        \
    {uiID, eRule, ucSpecial, stTarget},
#define FRU_OTHER_LABEL(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial)                                \
    {uiID, eRule, ucSpecial, {FRU_SETS_NOTHING, 0U, 0U}},
constexpr FRU_LABEL_S g_astLabels[] = {FRU_LABELS(FRU_STORED_LABEL, FRU_OTHER_LABEL)};
constexpr FRU_LABEL_S g_stOrdinaryLabel = {0U, FRU_RULE_TEXT, 0U, {FRU_SETS_NOTHING, 0U, 0U}};

constexpr bool RowsFollowTheirIDs()
{
    for (u32 i = 0; i < FRU_LABEL_ROWS; ++i) {
        if (RowOfID(g_astLabels[i].ucLabelID) != i) {
            return false;
        }
    }
    return true;
}
static_assert(RowsFollowTheirIDs());

constexpr bool KeepsNothing(FRU_TARGET_S stTarget)
{
    return stTarget.eSets == FRU_SETS_LANGUAGE || stTarget.eSets == FRU_SETS_DATE;
}

} // namespace

const DIAG_FRU_LABEL_S *FRU_FindLabelByName(const char *pcName)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (strcmp(g_astDIAG_FruLabel[i].pcLabelName, pcName) == 0) {
            return &g_astDIAG_FruLabel[i];
        }
    }
    return nullptr;
}

const DIAG_FRU_LABEL_S *FRU_FindLabelByID(u32 uiLabelID)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (g_astDIAG_FruLabel[i].uiLabelID == uiLabelID) {
            return &g_astDIAG_FruLabel[i];
        }
    }
    return nullptr;
}

const FRU_LABEL_S &FRU_LabelOfName(const char *pcName)
{
    const char *pcOwn = g_acNames;
    for (const FRU_LABEL_S &stLabel : g_astLabels) {
        if (strcmp(pcOwn, pcName) == 0) {
            return stLabel;
        }
        pcOwn += strlen(pcOwn) + 1U;
    }
    return g_stOrdinaryLabel;
}

const FRU_LABEL_S &FRU_LabelOfID(u32 uiLabelID)
{
    for (const FRU_LABEL_S &stLabel : g_astLabels) {
        if (stLabel.ucLabelID == uiLabelID) {
            return stLabel;
        }
    }
    return g_stOrdinaryLabel;
}

const char *FRU_NameOfLabel(const FRU_LABEL_S &stLabel)
{
    return NameOfID(stLabel.ucLabelID);
}

// Only the rows of such setters are left of this when it is compiled.
#define FRU_OR_STORED(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnRow)                \
    || (KeepsNothing(stTarget) && pfnSetLabel == (pfnRow))
#define FRU_OR_NOTHING(...)
bool FRU_SetterKeepsNothing(FRU_SETTER pfnSetLabel)
{
    return false FRU_LABELS(FRU_OR_STORED, FRU_OR_NOTHING);
}

u32 FindLabelIDByName(const char *pcLableName)
{
    FRU_REQUIRE(pcLableName, FRU_ERR_NULL_POINTER);
    const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByName(pcLableName);
    return pstLabel == nullptr ? FRU_LABEL_NOT_FOUND : pstLabel->uiLabelID;
}

u32 FRU_GetPsuFieldIDByName(const char *pcLableName)
{
    FRU_REQUIRE(pcLableName, FRU_LABEL_NOT_FOUND);
    // The board label of the same name comes first: a match does not end the walk, a power-supply ID does.
    u32 uiFoundID = FRU_LABEL_NOT_FOUND;
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (strcmp(g_astDIAG_FruLabel[i].pcLabelName, pcLableName) == 0) {
            uiFoundID = g_astDIAG_FruLabel[i].uiLabelID;
        }
        if (uiFoundID != FRU_LABEL_NOT_FOUND && uiFoundID >= FRU_LABEL_PSU_PRODUCT_NAME) {
            const u8 ucFieldID = static_cast<u8>(uiFoundID - FRU_LABEL_PSU_PRODUCT_NAME);
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "FindLabelName Success!, FieldID:%d\n", ucFieldID);
            return ucFieldID;
        }
    }
    return FRU_LABEL_NOT_FOUND;
}

u32 ConfirmElectroniclabelField(DIAG_ELECTRONIC_FIELD_S *pstElectronicField)
{
    FRU_REQUIRE(pstElectronicField, FRU_ERR_NULL_POINTER);
    for (const DIAG_ELECTRONIC_FIELD_S &stRow : g_astDIAG_ElectronicField) {
        if (stRow.ucFieldFlag == pstElectronicField->ucFieldFlag) {
            (void)memcpy(pstElectronicField->aucStartID, stRow.aucStartID, sizeof(stRow.aucStartID));
            (void)memcpy(pstElectronicField->aucEndID, stRow.aucEndID, sizeof(stRow.aucEndID));
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FieldFlag %d is not available!\n",
            pstElectronicField->ucFieldFlag);
    return FRU_ERR_FAILED;
}
