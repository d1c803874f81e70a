/* libbmcfru, access: device table, device I/O, IPMI handlers, retrieval, array write and clear. */
#ifndef LIB_FRU_ACCESS_H
#define LIB_FRU_ACCESS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 LIB_FRU_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl);
u32 LIB_FRU_GetDeviceID(u8 ucComponentType, u8 ucInstance, u8 *pucDeviceID);
u32 LIB_FRU_GetFRUDeviceInfo(u8 ucComponentType, u8 ucInstance, FRU_DEVICE_INFO_S *pstFRUDeviceInfo);
u32 LIB_FRU_GetSDRByRecordID(u16 usRecordID, FRU_SDR_S *pstFRUSDR);
u32 LIB_FRU_GetFRUTotalNum(u8 *pucFRUTotalNum);
i32 LIB_FRU_ReadFromEEPROM(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, u8 *pucBuf);
u32 LIB_FRU_GetFRUAreaInfo(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);
u32 LIB_FRU_ReadFRUData(const u8 *pucReq, u8 ucReqLen, u8 *pucRes, u32 uiArg);
u32 LIB_FRU_WriteFRUData(const u8 *pucReq, u32 uiReqLen, u8 *pucRes);
u32 LIB_FRU_GetFRUDataFromEEPROM(u32 uiTotalLen, FRU_READ_REQ_S *pstFRUReadReq, u32 uiReqLen, u8 *pucFRUBuf,
                                 u32 uiArg);
u32 LIB_FRU_GetFRUData(u8 ucComponentType, u8 ucInstance, u8 ucReadMode, u8 ucArg, FRU_DATA_S *pstFRUData);
u32 LIB_FRU_GetFRUDataFromDB(u8 ucComponentType, u8 ucInstance, FRU_DATA_S *pstFRUData);
u32 LIB_FRU_WriteArrayFRUData(u8 ucComponentType, u8 ucInstance, const FRU_DATA_S *pstFRUData, u32 uiArg);
u32 LIB_FRU_OEM_WriteArrayFRUData(u8 ucDeviceID, u32 uiFRUSize, const FRU_DATA_S *pstFRUData);
u32 LIB_FRU_ClearFRUElectronicLabel(FRU_CLEAR_PARA_S *pstFRUClearPara);
void FRU_AddClearFRULog(i32 iResult, FRU_CLEAR_PARA_S *pstFRUClearPara);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
