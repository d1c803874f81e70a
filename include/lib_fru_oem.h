/* libbmcfru, oem: OEM configuration. */
#ifndef LIB_FRU_OEM_H
#define LIB_FRU_OEM_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

void FRU_GetOEMConfBeforeDeal(FRU_OEM_CONF_S *pstOemConf);
void FRU_GetOEMConf(FRU_OEM_CONF_S *pstOemConf);
void FRU_SetOEMConf(void);
void FRU_ReplaceOemConf(void *hpd, const char *pcStr1, const char *pcCurrent, const char *pcKey);
u32 LIB_FRU_GetCopyRight(i32 iType, char *pcCopyRight);
u32 LIB_FRU_CheckOEMFromPackage(u32 uiFlag, char *pcCheckResult);
u32 FRU_GetProductManufacturer(u32 uiSize, char *pcProductManufacturer);
const char *FRU_GetSoftWareName(void);
void FRU_GetHostNamePrefix(u32 uiSize, char *pcHostName);
u32 FRU_CheckCharaIsLegal(char *pcValue);
u32 LIB_FRU_GetBmcLogoFlag(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
