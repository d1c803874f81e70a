/* libbmcfru, diagnostics: dumps, test result, feature list, events, dates. */
#ifndef LIB_FRU_DIAGNOSTICS_H
#define LIB_FRU_DIAGNOSTICS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

void FRU_DebugBuf(const u8 *pucBuf, u16 usLength);
void FRU_DebugData(const FRU_DATA_S *pstFRUData);
void FRU_DebugHWData(const FRU_HW_DATA_S *pstHWData);
void LIB_FRU_GetTestResult(u8 *pucTestResultByte);
u32 LIB_FRU_GetFeatureInfoList(void);
u32 LIB_FRU_UpdateFeatureInfo(const FRU_FEATURE_UPDATE_S *pstUpdateFRUFeatureInfo);
u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent);
u32 LIB_FRU_CaclMfgDateTime(const char *pcMfgDate, FRU_DATA_S *pstFRUData);
u32 LIB_FRU_FormatMfgDate(const u8 *pucMfgDate, u32 uiArg, char *pcFormatMfgDate);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
