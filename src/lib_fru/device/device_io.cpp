// SPDX-License-Identifier: Apache-2.0
// The device layer: EEPROM transfers guarded by the device record, and the cached image of one device.
#include "lib_fru/device/device_io.h"

#include <cstring>

#include "bmc_eeprom.h"
#include "common/text.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"

namespace {

// FRU_OK when the record names an EEPROM that can be reached.
u32 CheckLocation(const FRU_DEVICE_INFO_S *pstFRUInfo)
{
    if (pstFRUInfo->ucEEPROMType < FRU_EEPROM_TYPE_MIN || pstFRUInfo->ucEEPROMType > FRU_EEPROM_TYPE_MAX) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Not support eeprom type:%#x!", pstFRUInfo->ucEEPROMType);
        return FRU_ERR_FAILED;
    }
    if (pstFRUInfo->ucBusNumber > FRU_BUS_NUMBER_MAX) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "BusNumber[%d] exceeds!", pstFRUInfo->ucBusNumber);
        return FRU_ERR_OUT_OF_RANGE;
    }
    return FRU_OK;
}

bool IsInside(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength)
{
    return usOffset <= pstFRUInfo->usSize && uiLength <= static_cast<u32>(pstFRUInfo->usSize) - usOffset;
}

u32 FRU_ReadFRUDataFromDB(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiCount, u8 *pucBuf)
{
    u8 *pucReadBuf = static_cast<u8 *>(FRU_ZALLOC(pstFRUInfo->usSize));
    FRU_REQUIRE(pucReadBuf, FRU_ERR_NO_MEMORY);
    const FRU_BUFFER upReadBuf(pucReadBuf);
    const u32 uiRet = FRU_DB_GetFRUData(pstFRUInfo->ucDeviceID, pstFRUInfo->usSize, pucReadBuf);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    if (!IsInside(pstFRUInfo, usOffset, uiCount)) {
        return FRU_ERR_OUT_OF_RANGE;
    }
    (void)memcpy(pucBuf, pucReadBuf + usOffset, uiCount);
    return FRU_OK;
}

} // namespace

i32 FRU_ReadFRUDevice(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, static_cast<i32>(FRU_ERR_NULL_POINTER));
    FRU_REQUIRE(pstFRUInfo, static_cast<i32>(FRU_ERR_NULL_POINTER));
    const u32 uiRet = CheckLocation(pstFRUInfo);
    if (uiRet != FRU_OK) {
        return static_cast<i32>(uiRet);
    }
    const i32 iRet = ReadWriteEEPROM(pstFRUInfo->ucEEPROMType, &pstFRUInfo->ucBusNumber, pucBuf, usOffset,
                                     uiLength, BMC_EEPROM_READ);
    if (iRet < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Fail to read Device ID[%#x] i2c device SwitchLevel[%d] Bus[%d] Addr[%#x] Ret:%#x.",
                pstFRUInfo->ucDeviceID, pstFRUInfo->ucSwitchLevel, pstFRUInfo->ucBusNumber,
                pstFRUInfo->ucAddress, static_cast<u32>(iRet));
    }
    return iRet;
}

i32 FRU_WriteFRUDevice(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, const u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, static_cast<i32>(FRU_ERR_NULL_POINTER));
    const u32 uiRet = CheckLocation(pstFRUInfo);
    if (uiRet != FRU_OK) {
        return static_cast<i32>(uiRet);
    }
    // One call serves both directions, hence its writable pointer; a write leaves the buffer alone.
    const i32 iRet = ReadWriteEEPROM(pstFRUInfo->ucEEPROMType, &pstFRUInfo->ucBusNumber,
                                     const_cast<u8 *>(pucBuf), usOffset, uiLength, BMC_EEPROM_WRITE);
    if (iRet < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING,
                "Fail to write Device ID[%#x] i2c device SwitchLevel[%d] Bus[%d] Addr[%#x].",
                pstFRUInfo->ucDeviceID, pstFRUInfo->ucSwitchLevel, pstFRUInfo->ucBusNumber,
                pstFRUInfo->ucAddress);
    }
    return iRet;
}

i32 LIB_FRU_ReadFromEEPROM(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, static_cast<i32>(FRU_ERR_NULL_POINTER));
    FRU_REQUIRE(pstFRUInfo, static_cast<i32>(FRU_ERR_NULL_POINTER));
    return FRU_ReadFRUDevice(pstFRUInfo, usOffset, uiLength, pucBuf);
}

i32 FRU_ResFRUData(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiCount, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, static_cast<i32>(FRU_ERR_NULL_POINTER));
    if (FRU_ReadFRUDataFromDB(pstFRUInfo, usOffset, uiCount, pucBuf) != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Read FRU Data From DB failed! FRU Name:%s DeviceID:%#x.",
                FRU_TextOf(pstFRUInfo->acFRUName).acText, pstFRUInfo->ucDeviceID);
        return FRU_RESULT_NOT_PRESENT;
    }
    return static_cast<i32>(uiCount);
}

u32 FRU_WriteFRUDataDB(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, const u8 *pucData)
{
    u8 *pucFRUBuf = static_cast<u8 *>(FRU_ZALLOC(pstFRUInfo->usSize));
    FRU_REQUIRE(pucFRUBuf, FRU_ERR_NO_MEMORY);
    const FRU_BUFFER upFRUBuf(pucFRUBuf);
    u32 uiRet = FRU_DB_GetFRUData(pstFRUInfo->ucDeviceID, pstFRUInfo->usSize, pucFRUBuf);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get FRU Data failed! Ret:%#x.", uiRet);
        return FRU_ERR_FAILED;
    }
    if (!IsInside(pstFRUInfo, usOffset, uiLength)) {
        return FRU_ERR_FAILED;
    }
    (void)memcpy(pucFRUBuf + usOffset, pucData, uiLength);
    uiRet = FRU_DB_PutFRUData(pstFRUInfo->ucDeviceID, pstFRUInfo->usSize, pucFRUBuf);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Put FRU Data failed! Ret:%#x.", uiRet);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

u8 FRU_ReadCacheStatus(u8 ucDeviceID)
{
    u8 ucCacheStatus = FRU_CACHE_UNTRUSTED;
    const u32 uiRet = FRU_DB_GetFRUDataCacheStatus(ucDeviceID, &ucCacheStatus);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Get FRU:%#x data cache status failed! Ret:%d.", ucDeviceID,
                static_cast<i32>(uiRet));
        return FRU_CACHE_UNTRUSTED;
    }
    return ucCacheStatus;
}
