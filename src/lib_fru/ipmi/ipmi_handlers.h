// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: what the IPMI FRU command handlers share, and the core of Write FRU Data.
//
// The handlers never return a status: a failure is a response of one byte, its completion code.
#ifndef LIB_FRU_IPMI_HANDLERS_H
#define LIB_FRU_IPMI_HANDLERS_H

#include "lib_fru_ipmi.h"

inline u32 FRU_Refuse(u8 *pucRes, u8 ucCompletionCode)
{
    pucRes[0] = ucCompletionCode;
    return FRU_ERROR_RES_LEN;
}

inline u16 FRU_RequestOffset(const u8 *pucReq)
{
    return static_cast<u16>(pucReq[1] | (pucReq[2] << 8U));
}

// The start offset moves the FRU inside the EEPROM; the sum wraps at 64 KiB as the EEPROM's address does.
inline u16 FRU_EepromOffset(const FRU_DEVICE_INFO_S &stInfo, u16 usOffset)
{
    return static_cast<u16>(stInfo.usStartOffset + usOffset);
}

// Writes uiReqLen - 3 bytes from pucReq + 3 to the device, patches its cached image and tells the controller.
// Fills pucRes (2 bytes: completion code, count) and returns the response length: 2, or 1 on an error; null
// pointers give 1 without a completion code.
u32 FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);

#endif
