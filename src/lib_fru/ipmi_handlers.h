// Private to lib_fru: the core of the Write FRU Data handler and what goes with it.
#ifndef LIB_FRU_IPMI_HANDLERS_H
#define LIB_FRU_IPMI_HANDLERS_H

#include "lib_fru_types.h"

// Completion codes (IPMI 2.0, table 5-2; 0x81 is the command's own).
#define FRU_CC_OK 0x00U
#define FRU_CC_ACCESS_FAILED 0x81U
#define FRU_CC_REQUEST_LENGTH 0xC7U
#define FRU_CC_COUNT_EXCEEDS 0xC9U
#define FRU_CC_NOT_PRESENT 0xCBU
#define FRU_CC_OFFSET_EXCEEDS 0xCCU

#define FRU_WRITE_REQ_HEADER_LEN 3U // device ID, offset low byte, offset high byte

// Log source of everything that this library has to say to the operation log.
#define FRU_OPERATELOG_SOURCE 12U

// Writes uiReqLen - 3 bytes from pucReq + 3 to the device, patches its cached image and tells the controller.
// Fills pucRes (2 bytes: completion code, count) and returns the response length: 2, or 1 on an error; null
// pointers give 1 without a completion code.
u32 FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);

// Tells the controller's services that a FRU changed. Nobody waits for them and their answer is nobody's
// business.
void FRU_NotifyDeviceChanged(const FRU_DEVICE_INFO_S *pstFRUInfo);

#endif
