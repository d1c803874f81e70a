/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, IPMI: the handlers of the three FRU inventory commands.
 *
 * Request bytes in, response bytes out, multi-byte fields little-endian (IPMI 2.0, section 34). They return
 * the length of the response, which is 1 (the completion code alone) on an error; null pointers return 1 as
 * well and write nothing. Nothing is locked; every failure is reported to the diagnostic log.
 */
#ifndef LIB_FRU_IPMI_H
#define LIB_FRU_IPMI_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Completion codes (IPMI 2.0, table 5-2; FRU_CC_ACCESS_FAILED is the commands' own). */
#define FRU_CC_OK 0x00U
#define FRU_CC_ACCESS_FAILED 0x81U  /* the device could not be accessed */
#define FRU_CC_REQUEST_LENGTH 0xC7U /* request too short */
#define FRU_CC_COUNT_EXCEEDS 0xC9U  /* count beyond the end of the FRU */
#define FRU_CC_NOT_PRESENT 0xCBU    /* no such device, or no cached image where only the cache may serve */
#define FRU_CC_OFFSET_EXCEEDS 0xCCU /* offset beyond the end of the FRU */

/* Lengths in bytes. */
#define FRU_ERROR_RES_LEN 1U        /* an error's response: the completion code alone */
#define FRU_AREA_INFO_REQ_LEN 1U    /* device ID */
#define FRU_AREA_INFO_RES_LEN 4U    /* completion code, FRU size (2 bytes), access type */
#define FRU_READ_REQ_LEN 4U         /* FRU_READ_REQ_S */
#define FRU_READ_RES_HEADER_LEN 2U  /* completion code, count; data follow */
#define FRU_READ_COUNT_MAX 255U     /* what the count byte can ask for */
#define FRU_WRITE_REQ_HEADER_LEN 3U /* device ID, offset (2 bytes); data follow */
#define FRU_WRITE_RES_LEN 2U        /* completion code, count */

/*
 * Get FRU Inventory Area Info (section 34.1). Request: device ID (1 byte; uiReqLen is not looked at).
 * Response (4 bytes): completion code, FRU size, access type. Opens an update sequence: the operate flag
 * becomes 1, also when the device does not exist.
 */
u32 LIB_FRU_GetFRUAreaInfo(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);

/*
 * Read FRU Data (section 34.2). Request: FRU_READ_REQ_S, always 4 bytes (ucReqLen and uiArg are not looked
 * at). Response (2 bytes and the data; pucRes holds 2 bytes and the requested count, so at most 257):
 * completion code, count returned, data. The cached image answers when the device is database-only or when
 * its cache can be trusted and read; else the device does. A read of exactly 203 bytes answers
 * FRU_CC_NOT_PRESENT.
 */
u32 LIB_FRU_ReadFRUData(const u8 *pucReq, u8 ucReqLen, u8 *pucRes, u32 uiArg);

/*
 * Write FRU Data (section 34.3). Request (uiReqLen bytes): device ID, offset (2 bytes), data. Response (2
 * bytes): completion code, count written. The device is written first; then its cached image is patched and
 * the controller's services are told, neither of which can fail the command. The first write after Get FRU
 * Inventory Area Info makes one entry in the operation log, of a success or a failure, and closes the
 * sequence, also when the entry could not be made.
 */
u32 LIB_FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
