/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, cache: the records kept in the controller's database.
 *
 * Each call opens the database, checks its pointer, makes one database call and returns that call's result as
 * it stands. No handle is kept, nothing is locked, buffers stay the caller's. Results:
 *   0                           the record was stored, copied out or deleted
 *   FRU_ERR_DB_OPEN             the database could not be opened (checked before the pointer)
 *   FRU_ERR_OUT_OF_RANGE        the record's pointer is null
 *   anything else               the database's own code, for example for a record that is not there or has
 *                               another length; a record that is asked for is then left as it was
 * Only null pointers and a missing handle are reported to the diagnostic log; the rest is the caller's to
 * tell.
 *
 * Keys, lengths in bytes (multi-byte members are little-endian):
 *   device information  0x10810000 | device ID   184
 *   SDR                 0x10810100 | device ID   32
 *   image               0x10810200 | device ID   the device's FRU size
 *   operate flag        0x108103FF               1
 *   cache status        0x10810400 | device ID   1
 *   device table        0x108105FF               3703
 * Device ID 0 is valid. The FRU service of the controller fills the records; this library itself writes only
 * the image and the operate flag.
 */
#ifndef LIB_FRU_CACHE_H
#define LIB_FRU_CACHE_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What the FRU service knows of one device (184 bytes). */
u32 FRU_DB_PutFRUDeviceInfo(u8 ucDeviceID, const FRU_DEVICE_INFO_S *pstFRUDeviceInfo);
u32 FRU_DB_GetFRUDeviceInfo(u8 ucDeviceID, FRU_DEVICE_INFO_S *pstFRUDeviceInfo);

/* The device's SDR (32 bytes), not interpreted. */
u32 FRU_DB_PutFRUSDR(u8 ucDeviceID, const FRU_SDR_S *pstFRUSDR);
u32 FRU_DB_GetFRUSDR(u8 ucDeviceID, FRU_SDR_S *pstFRUSDR);

/*
 * The cached image: usLength bytes at pucFRUBuf, as they are on the device from its start offset on (IPMI
 * Platform Management FRU Information Storage Definition, section 8). A get must name the length that was
 * put, which is the size member of the device information; nothing is padded or cut.
 */
u32 FRU_DB_PutFRUData(u8 ucDeviceID, u16 usLength, const u8 *pucFRUBuf);
u32 FRU_DB_GetFRUData(u8 ucDeviceID, u16 usLength, u8 *pucFRUBuf);
u32 FRU_DB_DelFRUData(u8 ucDeviceID);

/* The operate flag: open from Get FRU Inventory Area Info until the next logged Write FRU Data, else idle. */
#define FRU_OPERATE_IDLE 0U
#define FRU_OPERATE_OPEN 1U

u32 FRU_DB_PutOperateFlag(u8 ucOperateFlag);
u32 FRU_DB_GetOperateFlag(u8 *pucOperateFlag);

/* Which device ID belongs to which component and SDR record (3703 bytes). */
u32 FRU_DB_PutFRUDeviceTbl(const FRU_DEVICE_TBL_S *pstFRUDeviceTbl);
u32 FRU_DB_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl);

/* The device's cache status. */
#define FRU_CACHE_TRUSTED 0x00U
#define FRU_CACHE_UNTRUSTED 0x01U /* the cached image is not to be trusted, reads go to the device */
#define FRU_CACHE_FAULT_1 0x02U   /* fault marks, for LIB_FRU_GetTestResult() */
#define FRU_CACHE_FAULT_2 0x04U

u32 FRU_DB_PutFRUDataCacheStatus(u8 ucDeviceID, u8 ucCacheStatus);
u32 FRU_DB_GetFRUDataCacheStatus(u8 ucDeviceID, u8 *pucCacheStatus);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
