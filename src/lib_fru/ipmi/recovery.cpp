// SPDX-License-Identifier: Apache-2.0
#include "lib_fru/ipmi/recovery.h"

#include "common/text.h"
#include "lib_fru/device/device_io.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_cache.h"
#include "lib_fru_ipmi.h"

namespace {

// The stored image as a buffer of uiFileSize bytes, or null after its report.
FRU_BUFFER LoadStoredImage(const char *pcPath, u32 *puiFileSize)
{
    const i32 iFileSize = BMC_GetFileSize(pcPath);
    if (iFileSize < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Failed to get file[%s] size[%d]!", pcPath, iFileSize);
        return nullptr;
    }
    const u32 uiFileSize = static_cast<u32>(iFileSize);
    FRU_BUFFER upFile(static_cast<u8 *>(FRU_CALLOC_IN(1U, uiFileSize, "FRU_RecoverFRUData")));
    if (upFile == nullptr) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Failed to calloc memory! Size[%#x]", uiFileSize);
        return nullptr;
    }
    const u32 uiRet = BMC_ReadFile(pcPath, upFile.get(), uiFileSize);
    if (uiRet != 0U) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Read fru bin file:%s failed! Ret:%#x.", pcPath, uiRet);
        return nullptr;
    }
    *puiFileSize = uiFileSize;
    return upFile;
}

bool RestoreDevice(const FRU_DEVICE_INFO_S &stInfo)
{
    u32 uiFileSize = 0;
    const auto stPath = FRU_TextOf(stInfo.acImageFilePath);
    const FRU_BUFFER upFile = LoadStoredImage(stPath.acText, &uiFileSize);
    if (upFile == nullptr) {
        return false;
    }
    // The file's size is taken as it is, whatever the FRU's; only its low 16 bits fit a FRU image.
    const u16 usLength = static_cast<u16>(uiFileSize & 0xFFFFU);
    const i32 iWritten = FRU_WriteFRUDevice(&stInfo, stInfo.usStartOffset, usLength, upFile.get());
    if (iWritten < 0) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Write FRU data to EEPROM failed! Offset[%#x] Size[%#x].",
                stInfo.usStartOffset, uiFileSize);
        return false;
    }
    if (iWritten == FRU_RESULT_NOT_PRESENT) { // a count too, but taken for an absent device, without a word
        return false;
    }
    // A device that took fewer bytes did not refuse: the cached image is whole, and reads go by it. Intended.
    const u32 uiRet = FRU_DB_PutFRUData(stInfo.ucDeviceID, usLength, upFile.get());
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Put FRU data to db failed! Ret:%#x.", uiRet);
        return false;
    }
    return true;
}

} // namespace

u8 FRU_RecoverFRUData(u8 ucDeviceID)
{
    FRU_LOG(FRU_CAT_DATA, BMC_DIAG_INFO, "Start to recover fru data. Cnt[%d] ID[%#x].", 1, ucDeviceID);
    u8 ucCompletionCode = FRU_CC_OK;
    FRU_DEVICE_INFO_S stInfo = {};
    if (FRU_DB_GetFRUDeviceInfo(ucDeviceID, &stInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Fail to find FRU Device ID[%#x]!", ucDeviceID);
        ucCompletionCode = FRU_CC_NOT_PRESENT;
    } else if (!RestoreDevice(stInfo)) {
        FRU_LOG(FRU_CAT_DEVICE, BMC_DIAG_WARNING, "Failed to recover fru! Device ID[%#x]", ucDeviceID);
        ucCompletionCode = FRU_CC_ACCESS_FAILED;
    }
    if (ucCompletionCode != FRU_CC_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_ERROR, "Failed to recover fru data! ID[%#x].", ucDeviceID);
    }
    return ucCompletionCode;
}
