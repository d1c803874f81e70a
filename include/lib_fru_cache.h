/* libbmcfru, cache: the records kept in the controller's database. */
#ifndef LIB_FRU_CACHE_H
#define LIB_FRU_CACHE_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 FRU_DB_PutFRUDeviceInfo(u8 ucDeviceID, const FRU_DEVICE_INFO_S *pstFRUDeviceInfo);
u32 FRU_DB_GetFRUDeviceInfo(u8 ucDeviceID, FRU_DEVICE_INFO_S *pstFRUDeviceInfo);
u32 FRU_DB_PutFRUSDR(u8 ucDeviceID, const FRU_SDR_S *pstFRUSDR);
u32 FRU_DB_GetFRUSDR(u8 ucDeviceID, FRU_SDR_S *pstFRUSDR);
u32 FRU_DB_PutFRUData(u8 ucDeviceID, u16 usLength, const u8 *pucFRUBuf);
u32 FRU_DB_GetFRUData(u8 ucDeviceID, u16 usLength, u8 *pucFRUBuf);
u32 FRU_DB_DelFRUData(u8 ucDeviceID);
u32 FRU_DB_PutOperateFlag(u8 ucOperateFlag);
u32 FRU_DB_GetOperateFlag(u8 *pucOperateFlag);
u32 FRU_DB_PutFRUDeviceTbl(const FRU_DEVICE_TBL_S *pstFRUDeviceTbl);
u32 FRU_DB_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl);
u32 FRU_DB_PutFRUDataCacheStatus(u8 ucDeviceID, u8 ucCacheStatus);
u32 FRU_DB_GetFRUDataCacheStatus(u8 ucDeviceID, u8 *pucCacheStatus);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
