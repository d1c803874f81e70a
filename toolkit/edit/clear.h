// SPDX-License-Identifier: Apache-2.0
// Erasing a device.
#ifndef TOOLKIT_EDIT_CLEAR_H
#define TOOLKIT_EDIT_CLEAR_H

#include <string>

#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/progress.h"

// Every byte 0xff, in EEPROM and cache; records it in the operation log and gives the sentence that stands
// there.
std::string ClearDevice(const RootLock &stLock, const DEVICE_S &stDevice, ProgressView *pstView);

#endif
