// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: from a component to the record of its device.
#ifndef LIB_FRU_DEVICE_TABLE_H
#define LIB_FRU_DEVICE_TABLE_H

#include "lib_fru_types.h"

typedef void (*FRU_REPORT_NO_ID)(u32 uiComponentType, u32 uiInstance);
typedef void (*FRU_REPORT_NO_RECORD)(u8 ucDeviceID, u32 uiRet); // uiRet: the cache's answer

// Device ID and information record of a component; the record is the caller's, changed by the cache alone.
// Numbers above 255 name no component. FRU_OK; LIB_FRU_ERR_NO_DEVICE_ID; LIB_FRU_ERR_NO_DEVICE. Each of the
// two has its report, for callers have their own words for them.
u32 FRU_FindDevice(u32 uiComponentType, u32 uiInstance, u8 *pucDeviceID, FRU_DEVICE_INFO_S *pstInfo,
                   FRU_REPORT_NO_ID pfnReportNoID, FRU_REPORT_NO_RECORD pfnReportNoRecord);

// The first report of the image rooms.
void FRU_ReportNoDeviceID(u32 uiComponentType, u32 uiInstance);

#endif
