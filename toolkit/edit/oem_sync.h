// SPDX-License-Identifier: Apache-2.0
// The main FRU's texts into the OEM configuration file.
#ifndef TOOLKIT_EDIT_OEM_SYNC_H
#define TOOLKIT_EDIT_OEM_SYNC_H

#include <string>
#include <vector>

#include "toolkit/controller/device.h"
#include "toolkit/controller/oem_conf.h"
#include "toolkit/controller/root_lock.h"

// A key that the library replaces when the file has a value for it.
struct OEM_CHANGE_S
{
    const OEM_TEXT_S *pstText;
    std::string strOld;
    std::string strNew;
};

std::vector<OEM_CHANGE_S> PlanOemSync(const DEVICE_S &stDevice);

// Fails when the file does not hold the new texts afterwards.
void SyncOemConf(const RootLock &stLock, const std::vector<OEM_CHANGE_S> &vecChanges);

#endif
