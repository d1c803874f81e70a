// Private to lib_fru: from a component to the record of its device.
#ifndef LIB_FRU_DEVICE_TABLE_H
#define LIB_FRU_DEVICE_TABLE_H

#include "lib_fru_types.h"

// Device ID and information record of a component; *pstInfo is the caller's, cleared to zero before. FRU_OK;
// LIB_FRU_ERR_NO_DEVICE_ID, which is reported; LIB_FRU_ERR_NO_DEVICE, which pfnReportNoRecord reports: every
// caller has its own words for it.
u32 FRU_FindDevice(u8 ucComponentType, u8 ucInstance, u8 *pucDeviceID, FRU_DEVICE_INFO_S *pstInfo,
                   void (*pfnReportNoRecord)(u8 ucDeviceID));

#endif
