// SPDX-License-Identifier: Apache-2.0
// The main read path: the whole image of a component's device, chunk by chunk, with recovery, decoded.
#include <cstring>

#include "common/text.h"
#include "lib_fru/device/device_io.h"
#include "lib_fru/device/device_table.h"
#include "lib_fru/ipmi/recovery.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"
#include "lib_fru_ipmi.h"

namespace {

constexpr u32 g_uiChunkMax = 16U; // after the header, which is read alone

// One read of a whole image.
struct READ_S
{
    FRU_READ_REQ_S stRequest;
    u32 uiPosition; // of the next byte in the image
    u32 uiMissing;
};

READ_S BeginRead(const FRU_DEVICE_INFO_S &stInfo)
{
    return {{stInfo.ucDeviceID, 0U, FRU_COMMON_HEADER_LEN}, 0U, stInfo.usSize};
}

// Reads one chunk into pucResBuf, through the handler, which chooses between cache and device for each.
bool ReadChunk(const FRU_READ_REQ_S &stRequest, u8 ucArg, u8 *pucResBuf)
{
    (void)LIB_FRU_ReadFRUData(reinterpret_cast<const u8 *>(&stRequest), static_cast<u8>(sizeof(stRequest)),
                              pucResBuf, ucArg);
    if (pucResBuf[0] != FRU_CC_OK || pucResBuf[1] != stRequest.ucCount) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Fail to read fru data! CompletionCode[%#x], Size[%#x.%#x]",
                pucResBuf[0], stRequest.ucCount + FRU_READ_RES_HEADER_LEN, pucResBuf[1]);
        return false;
    }
    return true;
}

// An invalid header: one recovery for each call, and only in the mode that allows it.
bool Recover(u8 ucDeviceID, u8 ucReadMode, bool *pbRecovered)
{
    FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Invalid header! Device ID[%#x].", ucDeviceID);
    if (ucReadMode == FRU_READ_MODE_RECOVER && !*pbRecovered && FRU_RecoverFRUData(ucDeviceID) == FRU_CC_OK) {
        *pbRecovered = true;
        return true;
    }
    FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Check and recover fru data failed! Ret:%#x.", FRU_ERR_FAILED);
    return false;
}

// Fills pucImage (at least a header's room) from the device; pucResBuf holds as much and 2 bytes.
bool ReadImage(const FRU_DEVICE_INFO_S &stInfo, u8 ucReadMode, u8 ucArg, u8 *pucResBuf, u8 *pucImage)
{
    READ_S stRead = BeginRead(stInfo);
    bool bRecovered = false;
    for (;;) {
        if (!ReadChunk(stRead.stRequest, ucArg, pucResBuf)) {
            return false;
        }
        const u8 *pucData = &pucResBuf[FRU_READ_RES_HEADER_LEN];
        if (stRead.stRequest.usOffset == 0U && FRU_ANALYZER_CheckValidHeader(pucData) != FRU_OK) {
            if (!Recover(stInfo.ucDeviceID, ucReadMode, &bRecovered)) {
                return false;
            }
            stRead = BeginRead(stInfo);
            continue;
        }
        const u32 uiCount = stRead.stRequest.ucCount;
        (void)memcpy(pucImage + stRead.uiPosition, pucData, uiCount);
        stRead.uiPosition += uiCount;
        stRead.stRequest.usOffset = static_cast<u16>(stRead.stRequest.usOffset + uiCount);
        if (uiCount >= stRead.uiMissing) {
            return true;
        }
        stRead.uiMissing -= uiCount;
        stRead.stRequest.ucCount =
            static_cast<u8>(stRead.uiMissing < g_uiChunkMax ? stRead.uiMissing : g_uiChunkMax);
    }
}

// A baseboard's areas always carry the same number of custom fields; its stored image tells that it is one.
void PresetCustomFields(const FRU_DEVICE_INFO_S &stInfo, FRU_DATA_S *pstFRUData)
{
    const auto stPath = FRU_TextOf(stInfo.acImageFilePath);
    if (strstr(stPath.acText, "BaseBoard.bin") != nullptr || strstr(stPath.acText, "MBP.bin") != nullptr) {
        pstFRUData->stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
        pstFRUData->stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
    }
}

// Bytes of an image buffer. The header is asked for whole: where the record names another device as its own,
// that device may answer it whatever this FRU's size.
u32 ImageRoom(u32 uiSize)
{
    return uiSize != 0U && uiSize < FRU_COMMON_HEADER_LEN ? FRU_COMMON_HEADER_LEN : uiSize;
}

// The record keeps what its caller left in it, apart from the presets, and is not released after a failure.
u32 ReadAndDecode(const FRU_DEVICE_INFO_S &stInfo, u8 ucComponentType, u8 ucInstance, u8 ucReadMode, u8 ucArg,
                  FRU_DATA_S *pstFRUData)
{
    const u32 uiSize = stInfo.usSize;
    const u32 uiRoom = ImageRoom(uiSize);
    const FRU_BUFFER upTotalBuf(static_cast<u8 *>(FRU_CALLOC_IN(1U, uiRoom, "LIB_FRU_GetFRUData")));
    if (upTotalBuf == nullptr) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Fail to calloc memory of TotalBuf, size:%#x.", uiSize);
        return LIB_FRU_ERR_SIZE;
    }
    const FRU_BUFFER upResBuf(static_cast<u8 *>(FRU_CALLOC(1U, uiRoom + FRU_READ_RES_HEADER_LEN)));
    if (upResBuf == nullptr) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Fail to calloc memory of ResBuf, size=%#x",
                uiSize + FRU_READ_RES_HEADER_LEN);
        return LIB_FRU_ERR_SIZE;
    }
    if (!ReadImage(stInfo, ucReadMode, ucArg, upResBuf.get(), upTotalBuf.get())) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to read fru data! ComponentType:%#x Instance:%#x.",
                ucComponentType, ucInstance);
        return LIB_FRU_ERR_READ;
    }
    PresetCustomFields(stInfo, pstFRUData);
    const u32 uiRet = FRU_ANALYZER_InterpretFRUData(upTotalBuf.get(), uiSize, pstFRUData);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Fail to interpret fru data! Ret:%#x.", uiRet);
    }
    return uiRet;
}

} // namespace

u32 LIB_FRU_GetFRUData(u8 ucComponentType, u8 ucInstance, u8 ucReadMode, u8 ucArg, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    FRU_DEVICE_INFO_S stInfo = {};
    const auto pfnNoRecord = [](u8 ucID, u32) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to find FRU Device ID[%#x] device info!", ucID);
    };
    const u32 uiRet =
        FRU_FindDevice(ucComponentType, ucInstance, &ucDeviceID, &stInfo, FRU_ReportNoDeviceID, pfnNoRecord);
    if (uiRet != FRU_OK) {
        return uiRet;
    }
    return ReadAndDecode(stInfo, ucComponentType, ucInstance, ucReadMode, ucArg, pstFRUData);
}
