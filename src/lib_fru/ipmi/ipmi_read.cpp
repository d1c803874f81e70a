// SPDX-License-Identifier: Apache-2.0
// The IPMI commands that ask: Get FRU Inventory Area Info and Read FRU Data.
#include "lib_fru/device/device_io.h"
#include "lib_fru/ipmi/ipmi_handlers.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_cache.h"

namespace {

// From the cache as long as it can be trusted, else from the device.
i32 ReadFRUBytes(const FRU_DEVICE_INFO_S &stInfo, u16 usOffset, u8 ucCount, u8 *pucBuf)
{
    if (stInfo.ucDatabaseOnly != 0U) {
        return FRU_ResFRUData(&stInfo, usOffset, ucCount, pucBuf);
    }
    if ((FRU_ReadCacheStatus(stInfo.ucDeviceID) & FRU_CACHE_UNTRUSTED) == 0U) {
        const i32 iCached = FRU_ResFRUData(&stInfo, usOffset, ucCount, pucBuf);
        if (iCached == static_cast<i32>(ucCount)) {
            return iCached;
        }
    }
    return FRU_ReadFRUDevice(&stInfo, FRU_EepromOffset(stInfo, usOffset), ucCount, pucBuf);
}

} // namespace

u32 LIB_FRU_GetFRUAreaInfo(const u8 *pucReq, u32 uiReqLen, u8 *pucRes)
{
    (void)uiReqLen;
    FRU_REQUIRE(pucReq, FRU_ERROR_RES_LEN);
    FRU_REQUIRE(pucRes, FRU_ERROR_RES_LEN);
    // Whatever follows, an update sequence is open now.
    (void)FRU_DB_PutOperateFlag(FRU_OPERATE_OPEN);
    FRU_DEVICE_INFO_S stInfo = {};
    if (FRU_DB_GetFRUDeviceInfo(pucReq[0], &stInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Fail to find FRU Device ID:%#x!", pucReq[0]);
        return FRU_Refuse(pucRes, FRU_CC_NOT_PRESENT);
    }
    pucRes[0] = FRU_CC_OK;
    pucRes[1] = static_cast<u8>(stInfo.usSize & 0xFFU);
    pucRes[2] = static_cast<u8>(stInfo.usSize >> 8U);
    pucRes[3] = stInfo.ucAccessType;
    return FRU_AREA_INFO_RES_LEN;
}

u32 LIB_FRU_ReadFRUData(const u8 *pucReq, u8 ucReqLen, u8 *pucRes, u32 uiArg)
{
    (void)ucReqLen; // the request always has 4 bytes
    (void)uiArg;
    FRU_REQUIRE(pucReq, FRU_ERROR_RES_LEN);
    FRU_REQUIRE(pucRes, FRU_ERROR_RES_LEN);
    FRU_DEVICE_INFO_S stInfo = {};
    if (FRU_DB_GetFRUDeviceInfo(pucReq[0], &stInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Fail to find FRU Device ID[%#x]!", pucReq[0]);
        return FRU_Refuse(pucRes, FRU_CC_NOT_PRESENT);
    }
    const u16 usOffset = FRU_RequestOffset(pucReq);
    const u8 ucCount = pucReq[3];
    if (stInfo.usSize <= usOffset) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Invalid offset[%#x], exceeds[%#x]!", usOffset,
                stInfo.usSize);
        return FRU_Refuse(pucRes, FRU_CC_OFFSET_EXCEEDS);
    }
    if (ucCount > stInfo.usSize - usOffset) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Invalid read counts[%#x], exceeds[%#x]!", ucCount,
                static_cast<u32>(stInfo.usSize - usOffset));
        return FRU_Refuse(pucRes, FRU_CC_COUNT_EXCEEDS);
    }
    pucRes[0] = FRU_CC_OK;
    const i32 iRet = ReadFRUBytes(stInfo, usOffset, ucCount, &pucRes[FRU_READ_RES_HEADER_LEN]);
    if (iRet < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Fail to read fru data! ID[%#x] Offset[%#x] Size[%d] Ret[%d].", stInfo.ucDeviceID,
                stInfo.usStartOffset, stInfo.usSize, iRet);
        return FRU_Refuse(pucRes, FRU_CC_ACCESS_FAILED);
    }
    // A good read of exactly that many bytes answers the same. Intended.
    if (iRet == FRU_RESULT_NOT_PRESENT) {
        return FRU_Refuse(pucRes, FRU_CC_NOT_PRESENT);
    }
    pucRes[1] = static_cast<u8>(static_cast<u32>(iRet) & 0xFFU);
    if (pucRes[1] != ucCount) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Read length is not equal! ReqLen[%#x] RetLen[%#x] ID[%#x].", ucCount, pucRes[1],
                stInfo.ucDeviceID);
    }
    return pucRes[1] + FRU_READ_RES_HEADER_LEN;
}
