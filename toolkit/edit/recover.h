// SPDX-License-Identifier: Apache-2.0
// Restoring a device whose image has a damaged header from its stored image.
#ifndef TOOLKIT_EDIT_RECOVER_H
#define TOOLKIT_EDIT_RECOVER_H

#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"

enum class Recovery
{
    Fine, // nothing was written
    Restored
};

// Fails when the device is not in order afterwards, and says why.
Recovery Recover(const RootLock &stLock, const DEVICE_S &stDevice);

#endif
