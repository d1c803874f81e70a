// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: restores a damaged device from its stored image.
#ifndef LIB_FRU_RECOVERY_H
#define LIB_FRU_RECOVERY_H

#include "lib_fru_types.h"

// Writes the stored image file of the device to the device and its cached image. Returns a completion
// code: FRU_CC_OK, FRU_CC_NOT_PRESENT (no device record) or FRU_CC_ACCESS_FAILED (anything else);
// failures are reported.
u8 FRU_RecoverFRUData(u8 ucDeviceID);

#endif
