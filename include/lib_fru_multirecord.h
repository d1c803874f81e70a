/* libbmcfru, multirecord: the MultiRecord store and its merge. */
#ifndef LIB_FRU_MULTIRECORD_H
#define LIB_FRU_MULTIRECORD_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 FRU_checkAllMultiRecords(const u8 *pucBuf, u32 uiCheckType, u32 *puiOutCount);
void FRU_destroyMultiRecords(void);
u32 FRU_innerUpdateMultiRecord(const FRU_MR_PARAM_S *pstDestParam);
u32 FRU_syncAllMultiRecords(void);
void FRU_ConvertGUIDToStandardOrder(const u8 *pstSrcBuf, u8 *pstDestBuf);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
