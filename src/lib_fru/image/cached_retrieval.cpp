// SPDX-License-Identifier: Apache-2.0
// The short read path: the cached image of a component's device, decoded.
#include <cstring>

#include "lib_fru/device/device_table.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"

// Differs from the main path on purpose: it clears the record first, presets nothing, has one code for every
// decoding failure and releases the record then.
u32 LIB_FRU_GetFRUDataFromDB(u8 ucComponentType, u8 ucInstance, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    FRU_DEVICE_INFO_S stInfo = {};
    const auto pfnNoRecord = [](u8 ucID, u32) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Get fru device info failed! DeviceID:%#x.", ucID);
    };
    const u32 uiRet =
        FRU_FindDevice(ucComponentType, ucInstance, &ucDeviceID, &stInfo, FRU_ReportNoDeviceID, pfnNoRecord);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    const FRU_BUFFER upFRUBuf(static_cast<u8 *>(FRU_ZALLOC(stInfo.usSize)));
    if (upFRUBuf == nullptr) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Malloc fru data buf failed! DeviceID:%#x.", ucDeviceID);
        return LIB_FRU_ERR_SIZE;
    }
    if (FRU_DB_GetFRUData(ucDeviceID, stInfo.usSize, upFRUBuf.get()) != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Get fru data buf failed! DeviceID:%#x.", ucDeviceID);
        return LIB_FRU_ERR_READ;
    }
    (void)memset(pstFRUData, 0, sizeof(*pstFRUData));
    if (FRU_ANALYZER_InterpretFRUData(upFRUBuf.get(), stInfo.usSize, pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Interpret fru data failed! DeviceID:%#x.", ucDeviceID);
        FRU_ANALYZER_SafeFree(pstFRUData);
        return LIB_FRU_ERR_DECODE;
    }
    return FRU_OK;
}
