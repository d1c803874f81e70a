// SPDX-License-Identifier: Apache-2.0
// Hardware blocks of devices and files.
#ifndef TOOLKIT_CONTROLLER_HARDWARE_H
#define TOOLKIT_CONTROLLER_HARDWARE_H

#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/hardware_block.h"

// Fail when there is none.
HW_BLOCK_S ReadDeviceBlock(const DEVICE_S &stDevice);
HW_BLOCK_S ReadBlock(const TARGET_S &stTarget);

#endif
