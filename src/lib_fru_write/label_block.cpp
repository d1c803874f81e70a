// SPDX-License-Identifier: Apache-2.0
// The request block of the label writes: its bounded texts, its outputs, and the sentences for
// the operation log.
#include "lib_fru_write/label_block.h"

#include <cstring>

#include "common/text.h"
#include "lib_fru_access.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

// One sentence for the failures of both label writes.
void FillFailure(FRU_SET_PARA_S *pstFRUSetPara)
{
    (void)BMC_Scnprintf(pstFRUSetPara->acOperateLog, sizeof(pstFRUSetPara->acOperateLog),
                        "Failed to set %s FRU.", FRU_TextOf(pstFRUSetPara->acFRUName).acText);
}

} // namespace

u32 FRU_LabelIDOfBlock(const FRU_SET_PARA_S *pstFRUSetPara)
{
    const char *pcName = pstFRUSetPara->acLabelName;
    return FRU_IsTerminated(pcName, sizeof(pstFRUSetPara->acLabelName)) ? FindLabelIDByName(pcName)
                                                                        : FRU_LABEL_NOT_FOUND;
}

u32 FRU_FetchBlockDevice(FRU_SET_PARA_S *pstFRUSetPara, FRU_DEVICE_INFO_S *pstFRUInfo)
{
    (void)memset(pstFRUInfo, 0, sizeof(*pstFRUInfo));
    const u8 ucType = pstFRUSetPara->ucComponentType;
    const u8 ucInstance = pstFRUSetPara->ucInstance;
    if (LIB_FRU_GetFRUDeviceInfo(ucType, ucInstance, pstFRUInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "ComponentType[%#x] Instance[%d] FRU NAME does not exist!",
                ucType, ucInstance);
        return LIB_FRU_ERR_NO_DEVICE;
    }
    FRU_CopyText(pstFRUSetPara->acFRUName, pstFRUInfo->acFRUName, sizeof(pstFRUSetPara->acFRUName) - 1U);
    pstFRUSetPara->ucOperateLogType = FRU_OPERATELOG_SOURCE;
    return FRU_OK;
}

u32 FRU_ResolveBlockLabel(FRU_SET_PARA_S *pstFRUSetPara)
{
    const u32 uiLabelID = FRU_LabelIDOfBlock(pstFRUSetPara);
    if (uiLabelID == FRU_LABEL_NOT_FOUND) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Find Label ID by name[%s] failed!",
                FRU_TextOf(pstFRUSetPara->acLabelName).acText);
        return FRU_ERR_FAILED;
    }
    pstFRUSetPara->uiLabelID = uiLabelID;
    return FRU_OK;
}

void FRU_AddComOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUSetPara);
    if (iResult != FRU_OPERATELOG_SUCCEEDED) {
        FillFailure(pstFRUSetPara);
        return;
    }
    // The FRU name stands twice, in the sentence's head and before the label.
    const auto stFRUName = FRU_TextOf(pstFRUSetPara->acFRUName);
    (void)BMC_Scnprintf(pstFRUSetPara->acOperateLog, sizeof(pstFRUSetPara->acOperateLog),
                        "Set %s FRU successfully, %s %s: %s.", stFRUName.acText, stFRUName.acText,
                        FRU_TextOf(pstFRUSetPara->acLabelName).acText,
                        FRU_TextOf(pstFRUSetPara->acLabelValue).acText);
}

void FRU_AddHWOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUSetPara);
    if (iResult != FRU_OPERATELOG_SUCCEEDED) {
        FillFailure(pstFRUSetPara);
        return;
    }
    (void)BMC_Scnprintf(pstFRUSetPara->acOperateLog, sizeof(pstFRUSetPara->acOperateLog),
                        "Set %s %s successfully.", FRU_TextOf(pstFRUSetPara->acFRUName).acText,
                        FRU_TextOf(pstFRUSetPara->acLabelName).acText);
}
