// The 32-byte hardware FRU block of a device, read and written.
#include "lib_fru/device/device_io.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"
#include "lib_fru_hardware.h"

namespace {

constexpr u16 g_usBlockOffset = 0U; // in the EEPROM, whatever the device's start offset
constexpr u32 g_uiByteMax = 0xFFU;

// The device ID of a component. The device table holds bytes, so a wider number is no component of it; cut to
// a byte it would name another component's device.
u32 DeviceIDOf(u32 uiComponentType, u32 uiInstance, u8 *pucDeviceID)
{
    if (uiComponentType > g_uiByteMax || uiInstance > g_uiByteMax) {
        return FRU_ERR_FAILED;
    }
    return LIB_FRU_GetDeviceID(static_cast<u8>(uiComponentType), static_cast<u8>(uiInstance), pucDeviceID);
}

} // namespace

u32 LIB_FRU_GetHWFRUData(u32 /*uiArg*/, u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWFRU)
{
    FRU_REQUIRE(pstHWFRU, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    if (DeviceIDOf(uiComponentType, uiInstance, &ucDeviceID) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to find ComponentType:%#x,Instance:%#x!",
                uiComponentType, uiInstance);
        return LIB_FRU_ERR_NO_DEVICE_ID;
    }
    FRU_DEVICE_INFO_S stInfo = {};
    u32 uiRet = FRU_DB_GetFRUDeviceInfo(ucDeviceID, &stInfo);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Error get HW FRU Info! Ret:%#x.", uiRet);
        return LIB_FRU_ERR_NO_DEVICE;
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
    if (DeviceIDOf(uiComponentType, uiInstance, &ucDeviceID) != FRU_OK) {
        // Worded otherwise than in the read. Intended.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to find ComponentType:%#x Instance:%#x DeviceID!",
                uiComponentType, uiInstance);
        return LIB_FRU_ERR_NO_DEVICE_ID;
    }
    FRU_DEVICE_INFO_S stInfo = {};
    u32 uiRet = FRU_DB_GetFRUDeviceInfo(ucDeviceID, &stInfo);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get FRU Device Info failed! Ret:%#x.", uiRet);
        return LIB_FRU_ERR_NO_DEVICE;
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
