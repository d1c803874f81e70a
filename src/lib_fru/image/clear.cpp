// SPDX-License-Identifier: Apache-2.0
// Erases a component's FRU device: every byte 0xFF, on the device and in the cache.
#include <cstring>

#include "common/text.h"
#include "lib_fru/device/device_io.h"
#include "lib_fru/device/notices.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_events.h"
#include "lib_fru_ipmi.h"
#include "lib_fru_labels.h"

namespace {

constexpr int g_iErased = 0xFF;

// Proves that the device answers with its whole size before anything is erased; what it answers is discarded.
bool ProveReadable(const FRU_DEVICE_INFO_S &stInfo, u8 *pucBuf)
{
    const u32 uiSize = stInfo.usSize;
    (void)memset(pucBuf, g_iErased, uiSize);
    const i32 iRead = FRU_ReadFRUDevice(&stInfo, stInfo.usStartOffset, uiSize, pucBuf);
    if (iRead < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Failed to read FRU Device data! Unaccessible: ID[%#x] StartOffset[%#x] MaxSize[%#x].",
                stInfo.ucDeviceID, stInfo.usStartOffset, uiSize);
        return false;
    }
    // Taken for an absent device even when it is the FRU's size. Intended.
    if (iRead == FRU_RESULT_NOT_PRESENT) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "FRU is not present, fru device not found! CC[%#x] CountToRead[%#x] CountReturn[%#x].",
                FRU_RESULT_NOT_PRESENT, uiSize + FRU_READ_RES_HEADER_LEN, FRU_RESULT_NOT_PRESENT);
        return false;
    }
    if (static_cast<u32>(iRead) != uiSize) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "FRU CountToRead != CountReturn, CountToRead[%#x] CountReturned[%#x].", uiSize,
                static_cast<u32>(iRead));
        return false;
    }
    return true;
}

bool EraseDevice(const FRU_DEVICE_INFO_S &stInfo, u8 *pucBuf)
{
    const u32 uiSize = stInfo.usSize;
    (void)memset(pucBuf, g_iErased, uiSize);
    const i32 iWritten = FRU_WriteFRUDevice(&stInfo, stInfo.usStartOffset, uiSize, pucBuf);
    if (iWritten < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Failed to write FRU Device data! Unaccessible: ID[%#x] length[%#x].", stInfo.ucDeviceID,
                uiSize);
        return false;
    }
    if (static_cast<u32>(iWritten) != uiSize) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "FRU write CountToRead != CountReturned, CountToRead[%#x] CountReturned[%#x].", uiSize,
                static_cast<u32>(iWritten));
        return false;
    }
    return true;
}

// The baseboard's product serial number has a mirror in a file, and the controller's services follow its FRU.
void ClearBaseboardTraces(const FRU_DEVICE_INFO_S &stInfo)
{
    // As long as any label value.
    const char acNoSerialNumber[sizeof(FRU_SET_PARA_S::acLabelValue)] = {};
    const u32 uiRet = FRU_UpdateProductSN(acNoSerialNumber, sizeof(acNoSerialNumber));
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Clear Baseboard product SN failed! Ret:%#x.", uiRet);
    }
    FRU_NotifyDeviceChanged(&stInfo);
}

// The device is erased; what follows can no longer fail the clear.
void AfterErase(const FRU_DEVICE_INFO_S &stInfo, const u8 *pucBuf, const FRU_CLEAR_PARA_S &stPara)
{
    const u32 uiRet = FRU_DB_PutFRUData(stInfo.ucDeviceID, stInfo.usSize, pucBuf);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Put FRU data buf to db failed! Ret:%#x.", uiRet);
    }
    if (stInfo.ucDeviceID == FRU_DEVICE_ID_BASEBOARD) {
        ClearBaseboardTraces(stInfo);
    }
    FRU_EVENT_S stEvent = {};
    stEvent.uiKind = FRU_EVENT_KIND_CLEAR;
    stEvent.ucComponentType = stPara.ucComponentType;
    stEvent.ucInstance = stPara.ucInstance;
    (void)FRU_UpdateEventWithStruct(&stEvent);
}

} // namespace

u32 LIB_FRU_ClearFRUElectronicLabel(FRU_CLEAR_PARA_S *pstFRUClearPara)
{
    FRU_REQUIRE(pstFRUClearPara, LIB_FRU_ERR_NULL_POINTER);
    FRU_DEVICE_INFO_S stInfo = {};
    if (LIB_FRU_GetFRUDeviceInfo(pstFRUClearPara->ucComponentType, pstFRUClearPara->ucInstance, &stInfo) !=
        FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "ComponentType[%#x] Instance[%d] FRU NAME does not exist!",
                pstFRUClearPara->ucComponentType, pstFRUClearPara->ucInstance);
        return LIB_FRU_ERR_NO_DEVICE;
    }
    FRU_CopyText(pstFRUClearPara->acFRUName, stInfo.acFRUName, sizeof(pstFRUClearPara->acFRUName) - 1U);
    pstFRUClearPara->ucOperateLogType = FRU_OPERATELOG_SOURCE;
    FRU_AddClearFRULog(FRU_OPERATELOG_FAILED, pstFRUClearPara);
    const FRU_BUFFER upBuf(static_cast<u8 *>(FRU_CALLOC(1U, stInfo.usSize)));
    if (upBuf == nullptr) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Failed to calloc memory of ResBuf! Size[%#x].",
                stInfo.usSize);
        return LIB_FRU_ERR_SIZE;
    }
    if (!ProveReadable(stInfo, upBuf.get())) {
        return LIB_FRU_ERR_NO_DEVICE;
    }
    if (!EraseDevice(stInfo, upBuf.get())) {
        return LIB_FRU_ERR_LABEL;
    }
    AfterErase(stInfo, upBuf.get(), *pstFRUClearPara);
    FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_INFO, "Clear FRU data successfully! FRUDeviceID:%#x.",
            stInfo.ucDeviceID);
    FRU_AddClearFRULog(FRU_OPERATELOG_SUCCEEDED, pstFRUClearPara);
    return FRU_OK;
}

void FRU_AddClearFRULog(i32 iResult, FRU_CLEAR_PARA_S *pstFRUClearPara)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUClearPara);
    const auto stName = FRU_TextOf(pstFRUClearPara->acFRUName);
    if (iResult == FRU_OPERATELOG_SUCCEEDED) {
        (void)BMC_Scnprintf(pstFRUClearPara->acOperateLog, sizeof(pstFRUClearPara->acOperateLog),
                            "Cleared %s FRU successfully.", stName.acText);
    } else {
        (void)BMC_Scnprintf(pstFRUClearPara->acOperateLog, sizeof(pstFRUClearPara->acOperateLog),
                            "Failed to clear %s FRU.", stName.acText);
    }
}
