/* libbmcfru, codec: image bytes <-> decoded record, hardware block, custom fields. */
#ifndef LIB_FRU_CODEC_H
#define LIB_FRU_CODEC_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 FRU_ANALYZER_CheckValidHeader(const u8 *pstHeader);
u32 FRU_ANALYZER_InterpretFRUData(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData);
i32 FRU_ANALYZER_ConvertToArray(const FRU_DATA_S *pstFRUData, u32 uiLength, u8 *pucBuf);
void FRU_ANALYZER_SafeFree(FRU_DATA_S *pstFRUData);
u32 FRU_ANALYZER_InterpretALLHwFRUData(const u8 *pucBuff, u32 uiSize, FRU_HW_DATA_S *pstFruHwData);
u32 FRU_ANALYZER_ConvertToHwArray(FRU_HW_DATA_S *pstHwData, u32 uiSize, u8 *pucBuf);
u32 FRU_ANALYZER_InterpretCustomField(const FRU_DATA_S *pstFRUData, FRU_CUSTOM_FIELD_S *pstFRUCustomField);
void FRU_ANALYZER_FreeCustomField(FRU_CUSTOM_FIELD_S *pstCustomField);
char *FRU_ANALYZER_Escape(const char *pcStr);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
