// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: what the controller's services are told of a device.
#ifndef LIB_FRU_DEVICE_NOTICES_H
#define LIB_FRU_DEVICE_NOTICES_H

#include "lib_fru_types.h"

// Tells the controller's services that a FRU changed. Nobody waits for them or looks at their answer.
void FRU_NotifyDeviceChanged(const FRU_DEVICE_INFO_S *pstFRUInfo);

#endif
