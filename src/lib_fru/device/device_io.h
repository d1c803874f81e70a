// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: FRU bytes from and to the EEPROMs, and one device's cached image and cache status.
//
// Results of type i32 are a byte count or a negative value; the 0x81000000 codes are negative as i32.
#ifndef LIB_FRU_DEVICE_IO_H
#define LIB_FRU_DEVICE_IO_H

#include "lib_fru_ipmi.h"
#include "lib_fru_types.h"

// The cached image could not be read. It is a count as well: Read FRU Data, a recovery and a clear's
// trial read take a transfer of exactly this many bytes for a failure, Write FRU Data does not. Intended.
#define FRU_RESULT_NOT_PRESENT static_cast<i32>(FRU_CC_NOT_PRESENT)

// uiLength bytes from EEPROM offset usOffset (start offset included) into pucBuf. Bytes read;
// FRU_ERR_NULL_POINTER (pucBuf or pstFRUInfo), FRU_ERR_FAILED (EEPROM type), FRU_ERR_OUT_OF_RANGE (bus
// number), or the negative result of the EEPROM call.
i32 FRU_ReadFRUDevice(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, u8 *pucBuf);

// The way back, with the same results; pstFRUInfo is not checked.
i32 FRU_WriteFRUDevice(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, const u8 *pucBuf);

// uiCount bytes from usOffset of the device's cached image. The count; FRU_RESULT_NOT_PRESENT when the cached
// image cannot be read or ends before them; FRU_ERR_NULL_POINTER (pucBuf).
i32 FRU_ResFRUData(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiCount, u8 *pucBuf);

// Puts uiLength bytes at usOffset of the device's cached image. FRU_OK; FRU_ERR_NO_MEMORY (also for a FRU
// size of 0); FRU_ERR_FAILED (image not readable, not writable, or ending before the bytes do).
u32 FRU_WriteFRUDataDB(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, const u8 *pucData);

// A device's cache status byte; FRU_CACHE_UNTRUSTED when it cannot be read, which is reported.
u8 FRU_ReadCacheStatus(u8 ucDeviceID);

#endif
