/* libbmcfru, hardware: hardware FRU block on devices, serial numbers. */
#ifndef LIB_FRU_HARDWARE_H
#define LIB_FRU_HARDWARE_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 LIB_FRU_GetHWFRUData(u32 uiArg, u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWFRU);
u32 LIB_FRU_WriteHWFRUBinToDevice(u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWData);
u32 LIB_FRU_GetBaseboardFRUDataByI2C(u32 uiComponentType, FRU_DATA_S *pstFRUData);
u32 LIB_FRU_GetBaseboardChassisSN(u32 uiSize, char *pucChassisSN);
u32 LIB_FRU_GetBaseboardProductSN(u32 uiSize, char *pucProductSN);
u32 LIB_FRU_GetMainBoardSN(u32 uiSize, char *pucBoardSN);
u32 LIB_FRU_GetBmcCardSN(u32 uiSize, char *pucBoardSN);
u32 LIB_FRU_GetBaseboardProductSNByI2C(u32 uiSize, char *pucProductSN);
u32 LIB_FRU_GetMainBoardSNByI2C(u32 uiSize, char *pucBoardSN);
u32 LIB_FRU_GetBmcCardSNByI2C(u32 uiSize, char *pucBoardSN);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
