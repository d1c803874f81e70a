// SPDX-License-Identifier: Apache-2.0
// Writes a whole record: encoded, to the device in chunks, then as the cached image.
#include "lib_fru/image/array_write.h"

#include <cstring>

#include "lib_fru/device/device_table.h"
#include "lib_fru/ipmi/ipmi_handlers.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"

namespace {

constexpr u32 g_uiChunkMax = 127U;

// A failed chunk and an image that could not be cached are in the log alone: the result is 0. Intended.
u32 WriteArray(u8 ucDeviceID, u32 uiFRUSize, const FRU_DATA_S *pstFRUData)
{
    if (uiFRUSize < FRU_COMMON_HEADER_LEN) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Invalid fru size: id=%#x, size=%#x", ucDeviceID, uiFRUSize);
        return LIB_FRU_ERR_SIZE;
    }
    const FRU_BUFFER upBuf(static_cast<u8 *>(FRU_CALLOC(1U, uiFRUSize)));
    if (upBuf == nullptr) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Failed to calloc memory! DeviceID:%#x.", ucDeviceID);
        return LIB_FRU_ERR_SIZE;
    }
    const i32 iLength = FRU_ANALYZER_ConvertToArray(pstFRUData, uiFRUSize, upBuf.get());
    if (iLength < 0) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Failed to convert FRU data to array!");
        return LIB_FRU_ERR_ENCODE;
    }
    if (!FRU_WriteImageChunks(ucDeviceID, uiFRUSize, static_cast<u32>(iLength), upBuf.get())) {
        return FRU_OK;
    }
    const u32 uiRet = FRU_DB_PutFRUData(ucDeviceID, static_cast<u16>(uiFRUSize & 0xFFFFU), upBuf.get());
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Put FRU data to db failed! Ret:%#x.", uiRet);
    }
    return FRU_OK;
}

} // namespace

bool FRU_WriteImageChunks(u8 ucDeviceID, u32 uiFRUSize, u32 uiLength, const u8 *pucBuf)
{
    u8 aucReq[FRU_WRITE_REQ_HEADER_LEN + g_uiChunkMax];
    u32 uiPosition = 0;
    while (uiPosition < uiLength) {
        const u32 uiLeft = uiLength - uiPosition;
        const u32 uiChunk = uiLeft < g_uiChunkMax ? uiLeft : g_uiChunkMax;
        if (uiFRUSize - uiPosition < uiChunk) {
            return false;
        }
        aucReq[0] = ucDeviceID;
        aucReq[1] = static_cast<u8>(uiPosition & 0xFFU);
        aucReq[2] = static_cast<u8>((uiPosition >> 8U) & 0xFFU);
        (void)memcpy(&aucReq[FRU_WRITE_REQ_HEADER_LEN], pucBuf + uiPosition, uiChunk);
        u8 aucRes[FRU_WRITE_RES_LEN] = {};
        (void)FRU_WriteFRUData(aucReq, uiChunk + FRU_WRITE_REQ_HEADER_LEN, aucRes);
        if (aucRes[0] != FRU_CC_OK) {
            FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Fail to write FRU DATA to eeprom: CC:%#x!", aucRes[0]);
            return false;
        }
        uiPosition += uiChunk;
    }
    return true;
}

u32 LIB_FRU_WriteArrayFRUData(u8 ucComponentType, u8 ucInstance, const FRU_DATA_S *pstFRUData, u32 uiArg)
{
    (void)uiArg;
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    FRU_DEVICE_INFO_S stInfo = {};
    const auto pfnNoRecord = [](u8 ucID, u32) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to find FRU Device:ID=%#x!", ucID);
    };
    const u32 uiRet =
        FRU_FindDevice(ucComponentType, ucInstance, &ucDeviceID, &stInfo, FRU_ReportNoDeviceID, pfnNoRecord);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    return WriteArray(stInfo.ucDeviceID, stInfo.usSize, pstFRUData);
}

u32 LIB_FRU_OEM_WriteArrayFRUData(u8 ucDeviceID, u32 uiFRUSize, const FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_NULL_POINTER);
    return WriteArray(ucDeviceID, uiFRUSize, pstFRUData);
}
