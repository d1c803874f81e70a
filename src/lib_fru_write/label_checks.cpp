// Which label names a device accepts, and which values a label accepts.
#include <cstdlib>
#include <cstring>

#include "catalogue.h"
#include "label_block.h"
#include "lib_fru_analyzer/chassis_type.h"
#include "lib_fru_labels.h"
#include "lib_fru_write_module.h"
#include "value_forms.h"

namespace {

constexpr u32 g_uiMaxPartNumLen = 63U; // on component type 0, whatever the catalogue says
constexpr u32 g_uiChassisPartNumID = 2U;
constexpr u32 g_uiProductPartNumID = 21U;
constexpr long g_lMaxLanguage = 136L;

// A bound by year alone, coarse on purpose: the last second of 2025 passes, the first of 2026 does not.
const char g_acLastYear[] = "2025";

bool IsChassisType(char *pcValue)
{
    return FRU_FindChassisTypeByDesc(pcValue) != nullptr;
}

bool IsMfgDate(char *pcValue)
{
    return isLabelValueMfgDateNormal(pcValue) == 1;
}

bool IsLanguageCode(char *pcValue)
{
    return FRU_IsDigits(pcValue) && strtol(pcValue, nullptr, 10) <= g_lMaxLanguage;
}

// The caller's text is upper-cased, and stays so when it is refused afterwards.
bool IsMacAddress(char *pcValue)
{
    FRU_ToUpper(pcValue);
    return FRU_IsMacAddress(pcValue);
}

bool IsPrintable(char *pcValue)
{
    return FRU_IsPrintable(pcValue);
}

// What is special about a label's values. A label without a row here is an ordinary text.
struct VALUE_RULE_S
{
    const char *pcName;
    bool bBlankAllowed;
    bool bCustomField; // such a field refuses a value of one character
    bool (*pfnAccept)(char *pcValue);
};

const VALUE_RULE_S g_astRules[] = {
    {"Chassis Type", false, false, IsChassisType},
    {"Chassis Customer Serial Number", false, true, IsPrintable},
    {"Chassis MAC Address", false, true, IsMacAddress},
    {"Chassis MAC Address Count", false, true, IsPrintable},
    {"CLEI Code", false, true, IsPrintable},
    {"Chassis Location Node ID", false, true, IsPrintable},
    {"Language Code", false, false, IsLanguageCode},
    {"Mfg.Date", false, false, IsMfgDate},
    {"Board Top Serial Number", true, true, IsPrintable},
    {"Product Language Code", false, false, IsLanguageCode},
    {"Product Asset Tag", true, false, IsPrintable},
    {"Product Node Type", true, true, IsPrintable},
    {"Product Node PSU", true, true, IsPrintable},
    {"Product Node Network", true, true, IsPrintable},
    {"Product Node Power", true, true, IsPrintable},
};
const VALUE_RULE_S g_stTextRule = {nullptr, false, false, IsPrintable};

const VALUE_RULE_S &RuleOf(const char *pcName)
{
    for (const VALUE_RULE_S &stRule : g_astRules) {
        if (strcmp(stRule.pcName, pcName) == 0) {
            return stRule;
        }
    }
    return g_stTextRule;
}

bool LengthFits(const DIAG_FRU_LABEL_S &stLabel, const char *pcValue, u32 uiComponentType)
{
    const bool bPartNum =
        stLabel.uiLabelID == g_uiChassisPartNumID || stLabel.uiLabelID == g_uiProductPartNumID;
    const size_t uiMaxLen = uiComponentType == 0U && bPartNum ? g_uiMaxPartNumLen : stLabel.uiMaxLen;
    const size_t uiLength = strnlen(pcValue, uiMaxLen + 1U);
    return uiLength >= stLabel.uiMinLen && uiLength <= uiMaxLen;
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

bool IsNormal(const VALUE_RULE_S &stRule, const char *pcName, char *pcValue)
{
    if (strncmp(pcValue, "NONE", 4U) == 0) {
        const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByName(pcName);
        return pstLabel != nullptr && pstLabel->ucNoneAllowed == 1U;
    }
    return stRule.pfnAccept(pcValue);
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
    if (uiLabelID == g_uiLabelNotFound) {
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
    const VALUE_RULE_S &stRule = RuleOf(pcName);
    if (!stRule.bBlankAllowed && IsBlank(pcValue, iValueLen)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Label Value is null.");
        return 0U;
    }
    if (stRule.bCustomField && pcValue[0] != '\0' && pcValue[1] == '\0') {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Write 1 bytes to this area is forbidden!\n");
        return 0U;
    }
    if (!IsNormal(stRule, pcName, pcValue)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "pcValue is not Norm.");
        return 0U;
    }
    return 1U;
}
