// SPDX-License-Identifier: Apache-2.0
// Which label names a device accepts, and which values a label accepts.
#include <cstdlib>
#include <cstring>

#include "lib_fru_access.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"
#include "lib_fru_write/label_block.h"
#include "lib_fru_write/lib_fru_write_module.h"
#include "lib_fru_write/value_forms.h"

namespace {

constexpr long g_lMaxLanguage = 136L;

// A bound by year alone, coarse on purpose: the last second of 2025 passes, the first of 2026 does not.
const char g_acLastYear[] = "2025";

bool IsAccepted(FRU_RULE_ID eRule, char *pcValue)
{
    switch (eRule) {
    case FRU_RULE_CHASSIS_TYPE:
        return FRU_FindChassisCode(pcValue) != FRU_CHASSIS_TYPE_COUNT;
    case FRU_RULE_DATE:
        return isLabelValueMfgDateNormal(pcValue) == 1;
    case FRU_RULE_LANGUAGE:
        return FRU_IsDigits(pcValue) && strtol(pcValue, nullptr, 10) <= g_lMaxLanguage;
    case FRU_RULE_MAC_ADDRESS:
        // The caller's text is upper-cased, and stays so when it is refused afterwards.
        FRU_ToUpper(pcValue);
        return FRU_IsMacAddress(pcValue);
    default:
        return FRU_IsPrintable(pcValue);
    }
}

bool LengthFits(const DIAG_FRU_LABEL_S &stLabel, const char *pcValue, u32 uiComponentType)
{
    const bool bLong = uiComponentType == FRU_COMPONENT_BASEBOARD &&
                       (FRU_LabelOfID(stLabel.uiLabelID).ucSpecial & FRU_LONG_PART_NUMBER) != 0U;
    const size_t uiMaxLen = bLong ? FRU_FIELD_MAX_TEXT : stLabel.uiMaxLen;
    // The largest limit that a caller can set has no successor.
    const size_t uiLength = strnlen(pcValue, uiMaxLen);
    return uiLength >= stLabel.uiMinLen && pcValue[uiLength] == '\0';
}

// Goes by the caller's count; the terminator is no white space, so the walk never passes it.
bool IsBlank(const char *pcValue, i32 iValueLen)
{
    for (i32 i = 0; i < iValueLen; ++i) {
        if (!FRU_IsSpace(pcValue[i])) {
            return false;
        }
    }
    return true;
}

bool IsNone(const char *pcValue)
{
    return strncmp(pcValue, "NONE", 4U) == 0;
}

} // namespace

u32 isLabelNameValid(const FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE(pstFRUSetPara, 0U);
    DIAG_ELECTRONIC_FIELD_S stField = {};
    stField.ucFieldFlag = pstFRUSetPara->ucFieldFlag;
    if (ConfirmElectroniclabelField(&stField) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Confirm Electronic label Field failed!");
        return 0U;
    }
    const u32 uiLabelID = FRU_LabelIDOfBlock(pstFRUSetPara);
    if (uiLabelID == FRU_LABEL_NOT_FOUND) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Find Electronic label Name Failed! LabelId:%#x\n",
                uiLabelID);
        return 0U;
    }
    const u8 ucLabelID = static_cast<u8>(uiLabelID);
    for (u32 i = 0; i < sizeof(stField.aucStartID); ++i) {
        if (ucLabelID >= stField.aucStartID[i] && ucLabelID < stField.aucEndID[i]) {
            return 1U;
        }
    }
    return 0U;
}

i32 isLabelValueMfgDateNormal(const char *pcValue)
{
    FRU_REQUIRE(pcValue, 0);
    const u32 uiForms = FRU_DateForms(pcValue);
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO,
            "After Correct, bRetNotFill:%d, bRetNotFillExt:%d, bRetFill:%d, bRetFillExt:%d",
            (uiForms & FRU_DATE_BARE) != 0U, (uiForms & FRU_DATE_BARE_TIME) != 0U,
            (uiForms & FRU_DATE_FILLED) != 0U, (uiForms & FRU_DATE_FILLED_TIME) != 0U);
    // Any form begins with the four digits of the year.
    return uiForms != 0U && strncmp(pcValue, g_acLastYear, sizeof(g_acLastYear) - 1U) <= 0 ? 1 : 0;
}

u32 isLabelValueValid(const char *pcName, char *pcValue, i32 iValueLen, u32 uiComponentType)
{
    FRU_REQUIRE(pcName, 0U);
    FRU_REQUIRE(pcValue, 0U);
    // The measured length decides; the message shows the caller's, and an unknown name is a bad size too.
    const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByName(pcName);
    if (pstLabel == nullptr || !LengthFits(*pstLabel, pcValue, uiComponentType)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Label Value Size:%d invalid!", iValueLen);
        return 0U;
    }
    const FRU_LABEL_S &stOwn = FRU_LabelOfName(pcName);
    if ((stOwn.ucSpecial & FRU_BLANK_ALLOWED) == 0U && IsBlank(pcValue, iValueLen)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Label Value is null.");
        return 0U;
    }
    if (stOwn.stTarget.eSets == FRU_SETS_CUSTOM && pcValue[0] != '\0' && pcValue[1] == '\0') {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Write 1 bytes to this area is forbidden!\n");
        return 0U;
    }
    const bool bAccepted = IsNone(pcValue) ? pstLabel->ucNoneAllowed == 1U : IsAccepted(stOwn.eRule, pcValue);
    if (!bAccepted) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "pcValue is not Norm.");
        return 0U;
    }
    return 1U;
}
