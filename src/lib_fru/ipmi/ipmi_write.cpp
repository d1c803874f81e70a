// SPDX-License-Identifier: Apache-2.0
// The IPMI command that changes: Write FRU Data, to the device, then the cache, the controller's services and
// the operation log.
#include "bmc_hwdesc.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "lib_fru/device/device_io.h"
#include "lib_fru/device/notices.h"
#include "lib_fru/ipmi/ipmi_handlers.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_cache.h"

namespace {

struct OPERATE_LOG_S
{
    char acText[512];
    u8 ucSource;
};

// In OEM mode the feature service is told as well; what it answers is released unread.
void TellFeatureService()
{
    if (HW_LIB_GetOemFlag() != BMC_OEM_MODE) {
        return;
    }
    MRPC_MSG_S *pstRes = nullptr;
    if (MRPC_Call(MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FRU_WRITTEN, 0U, nullptr, 0U, &pstRes) != 0U) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "rpc call failed.");
    }
    MRPC_MsgFree(pstRes);
}

// One entry for each sequence that Get FRU Inventory Area Info opened: the first write logs it and closes it.
// It is closed whatever the log answered: an entry that could not be made is lost, not left to the next one.
void LogOperation(u8 ucDeviceID, bool bSuccess)
{
    u8 ucOperateFlag = 0;
    if (FRU_DB_GetOperateFlag(&ucOperateFlag) != FRU_OK || ucOperateFlag != FRU_OPERATE_OPEN) {
        return;
    }
    OPERATE_LOG_S stLog = {};
    if (bSuccess) {
        (void)BMC_Scnprintf(stLog.acText, sizeof(stLog.acText), "Set FRU successfully, Device ID: %d.",
                            ucDeviceID);
    } else {
        (void)BMC_Scnprintf(stLog.acText, sizeof(stLog.acText), "Failed to set FRU, Device ID: %d.",
                            ucDeviceID);
    }
    stLog.ucSource = FRU_OPERATELOG_SOURCE;
    (void)OPERATELOG_AddLogComm(FRU_OPERATELOG_MODULE,
                                bSuccess ? OPERATELOG_RESULT_SUCCESS : OPERATELOG_RESULT_FAILURE,
                                stLog.acText, 0U, 0U, __LINE__, stLog.ucSource);
    (void)FRU_DB_PutOperateFlag(FRU_OPERATE_IDLE);
}

// The device has the bytes; what follows can no longer fail the command.
void AfterDeviceWrite(const FRU_DEVICE_INFO_S &stInfo, u16 usOffset, u16 usLength, const u8 *pucData)
{
    const u32 uiRet = FRU_WriteFRUDataDB(&stInfo, usOffset, usLength, pucData);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Write FRU data to db failed! DeviceID:%#x Ret:%#x.",
                stInfo.ucDeviceID, uiRet);
    }
    TellFeatureService();
    FRU_NotifyDeviceChanged(&stInfo);
}

} // namespace

u32 FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes)
{
    // The response comes first here, the request in the handlers. Intended.
    FRU_REQUIRE(pucRes, FRU_ERROR_RES_LEN);
    FRU_REQUIRE(pucReq, FRU_ERROR_RES_LEN);
    if (uiReqLen < FRU_WRITE_REQ_HEADER_LEN) { // the header itself would be read past its end
        return FRU_Refuse(pucRes, FRU_CC_REQUEST_LENGTH);
    }
    FRU_DEVICE_INFO_S stInfo = {};
    if (FRU_DB_GetFRUDeviceInfo(pucReq[0], &stInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Fail to find FRU Device:ID:%#x!", pucReq[0]);
        return FRU_Refuse(pucRes, FRU_CC_NOT_PRESENT);
    }
    const u16 usOffset = FRU_RequestOffset(pucReq);
    if (usOffset >= stInfo.usSize) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Invalid offset[%#x], exceeds[%#x]!", usOffset,
                stInfo.usSize);
        return FRU_Refuse(pucRes, FRU_CC_OFFSET_EXCEEDS);
    }
    const u16 usLength = static_cast<u16>(uiReqLen - FRU_WRITE_REQ_HEADER_LEN);
    if (usLength > stInfo.usSize - usOffset) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Invalid write length[%#x], exceeds[%#x]!", usLength,
                static_cast<u32>(stInfo.usSize - usOffset));
        return FRU_Refuse(pucRes, FRU_CC_COUNT_EXCEEDS);
    }
    pucRes[0] = FRU_CC_OK;
    const u8 *pucData = &pucReq[FRU_WRITE_REQ_HEADER_LEN];
    const i32 iRet = FRU_WriteFRUDevice(&stInfo, FRU_EepromOffset(stInfo, usOffset), usLength, pucData);
    if (iRet < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Fail to write FRU Device data, unaccessible, ID:%#x, Ret:%d", stInfo.ucDeviceID, iRet);
        return FRU_Refuse(pucRes, FRU_CC_ACCESS_FAILED);
    }
    pucRes[1] = static_cast<u8>(static_cast<u32>(iRet) & 0xFFU);
    // The answered byte is compared, not the count: 256 bytes well written are told of, too.
    if (pucRes[1] != usLength) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Write ID[%#x] length is not equal, reqLen:%d, retLen:%d, ret:%d.", stInfo.ucDeviceID,
                usLength, pucRes[1], iRet);
    }
    AfterDeviceWrite(stInfo, usOffset, usLength, pucData);
    return FRU_WRITE_RES_LEN;
}

u32 LIB_FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes)
{
    FRU_REQUIRE(pucReq, FRU_ERROR_RES_LEN);
    FRU_REQUIRE(pucRes, FRU_ERROR_RES_LEN);
    if (uiReqLen <= FRU_WRITE_REQ_HEADER_LEN) {
        return FRU_Refuse(pucRes, FRU_CC_REQUEST_LENGTH);
    }
    const u8 ucDeviceID = pucReq[0]; // request and response may be one buffer
    const u32 uiResLen = FRU_WriteFRUData(pucReq, uiReqLen, pucRes);
    LogOperation(ucDeviceID, pucRes[0] == FRU_CC_OK);
    return uiResLen;
}
