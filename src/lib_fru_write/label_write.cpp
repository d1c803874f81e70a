// SPDX-License-Identifier: Apache-2.0
// Writing one electronic label: read the whole image, change one field, write the whole image back.
#include <cstring>

#include "common/text.h"
#include "lib_fru_access.h"
#include "lib_fru_codec.h"
#include "lib_fru_events.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/label_block.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

// One step after the other; each failure is told with the step's own result.
u32 ReadChangeWrite(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData)
{
    u32 uiResult = FRU_GetElectronicLabel(pstFRUSetPara, pstFRUData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Get ElectronicLabel failed! Ret:%#x.", uiResult);
        return uiResult;
    }
    uiResult = FRU_ReplaceElectronicLabel(pstFRUSetPara, pstFRUData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Replace ElectronicLabel failed! Ret:%#x.", uiResult);
        return uiResult;
    }
    uiResult = static_cast<u32>(FRU_SetElectronicLabel(pstFRUSetPara, pstFRUData));
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Set ElectronicLabel failed! Ret:%#x.", uiResult);
    }
    return uiResult;
}

void LogRequest(const FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO,
            "ComponentType[%#x] Instance[%d] LabelName[%s] LabelValue[%s:%d] LabelID[%d].",
            pstFRUSetPara->ucComponentType, pstFRUSetPara->ucInstance, pstFRUSetPara->acLabelName,
            FRU_TextOf(pstFRUSetPara->acLabelValue).acText, static_cast<i32>(pstFRUSetPara->uiLabelValueLen),
            static_cast<i32>(pstFRUSetPara->uiLabelID));
}

} // namespace

u32 LIB_FRU_WriteElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE(pstFRUSetPara, LIB_FRU_ERR_NULL_POINTER);
    pstFRUSetPara->uiLabelValueLen =
        static_cast<u32>(strnlen(pstFRUSetPara->acLabelValue, sizeof(pstFRUSetPara->acLabelValue)));
    FRU_DEVICE_INFO_S stFRUInfo;
    if (FRU_FetchBlockDevice(pstFRUSetPara, &stFRUInfo) != FRU_OK) {
        return LIB_FRU_ERR_NO_DEVICE;
    }
    pstFRUSetPara->ucFieldFlag = stFRUInfo.ucFieldFlag;
    FRU_AddComOperateLog(FRU_OPERATELOG_FAILED, pstFRUSetPara);
    if (FRU_ResolveBlockLabel(pstFRUSetPara) != FRU_OK) {
        return LIB_FRU_ERR_LABEL;
    }
    LogRequest(pstFRUSetPara);
    u32 uiResult = FRU_CheckElectronicLabel(pstFRUSetPara);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Check ElectronicLabel failed! Ret:%#x.", uiResult);
        return LIB_FRU_ERR_LABEL;
    }
    FRU_DATA_S stFRUData = {};
    uiResult = ReadChangeWrite(pstFRUSetPara, &stFRUData);
    FRU_ANALYZER_SafeFree(&stFRUData);
    if (uiResult != FRU_OK) {
        return LIB_FRU_ERR_LABEL;
    }
    FRU_AddComOperateLog(FRU_OPERATELOG_SUCCEEDED, pstFRUSetPara);
    if (pstFRUSetPara->ucComponentType == FRU_COMPONENT_BASEBOARD) {
        FRU_UpdateFRUInfo(pstFRUSetPara->uiLabelID, pstFRUSetPara->acLabelValue,
                          pstFRUSetPara->uiLabelValueLen);
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "Write Electronic Label successfully!");
    FRU_EVENT_S stEvent = {};
    stEvent.uiKind = FRU_EVENT_KIND_LABEL;
    stEvent.ucComponentType = pstFRUSetPara->ucComponentType;
    stEvent.ucInstance = pstFRUSetPara->ucInstance;
    stEvent.uiLabelID = pstFRUSetPara->uiLabelID;
    (void)FRU_UpdateEventWithStruct(&stEvent);
    return FRU_OK;
}
