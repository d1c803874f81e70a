// The label catalogue: which labels there are, and which of them a device accepts.
#include "catalogue.h"

#include <cstring>

#include "label_rows.h"
#include "lib_fru_labels.h"
#include "lib_fru_write_module.h"

// The power-supply rows bear names of board labels on purpose: their own lookup alone gets that far.
#define FRU_STORED_ROW(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnSetLabel)          \
    {uiID, pcName, uiMin, uiMax, ucNone, pfnSetLabel, nullptr},
#define FRU_OTHER_ROW(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial)                                  \
    {uiID, pcName, uiMin, uiMax, ucNone, nullptr, nullptr},
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
const u32 g_uiDIAG_ElectronicFieldMaxNum = 9U;

namespace {

constexpr u32 g_uiFieldRows = 9U; // the lookup's own bound, whatever the exported count says
static_assert(sizeof(g_astDIAG_ElectronicField) / sizeof(g_astDIAG_ElectronicField[0]) == g_uiFieldRows);

// What stands in the exported table can change; names, IDs and setters are therefore here again.
#define FRU_STORED_LABEL(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnSetLabel)        \
    {pcName, pfnSetLabel, uiID, eRule, ucSpecial, stTarget},
#define FRU_OTHER_LABEL(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial)                                \
    {pcName, nullptr, uiID, eRule, ucSpecial, {FRU_SETS_NOTHING, 0U, 0U}},
const FRU_LABEL_S g_astLabels[] = {FRU_LABELS(FRU_STORED_LABEL, FRU_OTHER_LABEL)};
const FRU_LABEL_S g_stOrdinaryLabel = {nullptr, nullptr, 0U, FRU_RULE_TEXT, 0U, {FRU_SETS_NOTHING, 0U, 0U}};

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
    for (const FRU_LABEL_S &stLabel : g_astLabels) {
        if (strcmp(stLabel.pcName, pcName) == 0) {
            return stLabel;
        }
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

bool FRU_SetterKeepsNothing(FRU_SETTER pfnSetLabel)
{
    for (const FRU_LABEL_S &stLabel : g_astLabels) {
        if (pfnSetLabel != nullptr && stLabel.pfnSetLabel == pfnSetLabel) {
            return stLabel.stTarget.eSets == FRU_SETS_LANGUAGE || stLabel.stTarget.eSets == FRU_SETS_DATE;
        }
    }
    return false;
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
    for (u32 i = 0; i < g_uiFieldRows; ++i) {
        const DIAG_ELECTRONIC_FIELD_S &stRow = g_astDIAG_ElectronicField[i];
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
