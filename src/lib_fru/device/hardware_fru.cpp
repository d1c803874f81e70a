// SPDX-License-Identifier: Apache-2.0
// The 32-byte hardware FRU block of a device, read and written.
#include "lib_fru/device/device_io.h"
#include "lib_fru/device/device_table.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_codec.h"
#include "lib_fru_hardware.h"

namespace {

constexpr u16 g_usBlockOffset = 0U; // in the EEPROM, whatever the device's start offset

// The read and the write report the same failures in different words. Intended.
u32 FindToRead(u32 uiComponentType, u32 uiInstance, u8 *pucDeviceID, FRU_DEVICE_INFO_S *pstInfo)
{
    return FRU_FindDevice(
        uiComponentType, uiInstance, pucDeviceID, pstInfo,
        [](u32 uiType, u32 uiNumber) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to find ComponentType:%#x,Instance:%#x!", uiType,
                    uiNumber);
        },
        [](u8, u32 uiRet) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Error get HW FRU Info! Ret:%#x.", uiRet);
        });
}

u32 FindToWrite(u32 uiComponentType, u32 uiInstance, u8 *pucDeviceID, FRU_DEVICE_INFO_S *pstInfo)
{
    return FRU_FindDevice(
        uiComponentType, uiInstance, pucDeviceID, pstInfo,
        [](u32 uiType, u32 uiNumber) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING,
                    "Fail to find ComponentType:%#x Instance:%#x DeviceID!", uiType, uiNumber);
        },
        [](u8, u32 uiRet) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get FRU Device Info failed! Ret:%#x.", uiRet);
        });
}

} // namespace

u32 LIB_FRU_GetHWFRUData(u32 /*uiArg*/, u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWFRU)
{
    FRU_REQUIRE(pstHWFRU, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    FRU_DEVICE_INFO_S stInfo = {};
    u32 uiRet = FindToRead(uiComponentType, uiInstance, &ucDeviceID, &stInfo);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    u8 aucBlock[FRU_HW_DATA_LEN] = {};
    const i32 iCount = FRU_ReadFRUDevice(&stInfo, g_usBlockOffset, sizeof(aucBlock), aucBlock);
    // The device's own size is what the count must reach: a device of another size holds no such block.
    if (iCount != stInfo.usSize) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Read hw info failed! Ret:%#x.", static_cast<u32>(iCount));
        return LIB_FRU_ERR_NO_DEVICE;
    }
    uiRet = FRU_ANALYZER_InterpretALLHwFRUData(aucBlock, static_cast<u32>(iCount), pstHWFRU);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Interpret ALL Hw FRU Data failed! Ret:%#x.", uiRet);
        return LIB_FRU_ERR_NO_DEVICE;
    }
    return FRU_OK;
}

u32 LIB_FRU_WriteHWFRUBinToDevice(u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWData)
{
    FRU_REQUIRE(pstHWData, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    FRU_DEVICE_INFO_S stInfo = {};
    u32 uiRet = FindToWrite(uiComponentType, uiInstance, &ucDeviceID, &stInfo);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    u8 aucBlock[FRU_HW_DATA_LEN] = {};
    uiRet = FRU_ANALYZER_ConvertToHwArray(pstHWData, sizeof(aucBlock), aucBlock);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Convert ID:%#x to hw array failed! Ret:%#x.", ucDeviceID,
                uiRet);
        return LIB_FRU_ERR_ENCODE;
    }
    const i32 iCount = FRU_WriteFRUDevice(&stInfo, g_usBlockOffset, sizeof(aucBlock), aucBlock);
    if (iCount != static_cast<i32>(sizeof(aucBlock))) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING,
                "Write FRUbin to eeprom failed! WriteLen:%d, CountWritten:%d",
                static_cast<int>(sizeof(aucBlock)), iCount);
        return LIB_FRU_ERR_SIZE;
    }
    return FRU_OK;
}
