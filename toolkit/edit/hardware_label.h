// SPDX-License-Identifier: Apache-2.0
// Writing what can be set in a hardware block.
#ifndef TOOLKIT_EDIT_HARDWARE_LABEL_H
#define TOOLKIT_EDIT_HARDWARE_LABEL_H

#include <string>

#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/image/hardware_block.h"

// Writes the label and records it in the operation log; the sentence that stands there. Fails when the EEPROM
// does not hold it afterwards.
std::string WriteHardwareLabel(const RootLock &stLock, const DEVICE_S &stDevice,
                               const HardwareLabel &aucLabel);

#endif
