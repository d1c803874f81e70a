// SPDX-License-Identifier: Apache-2.0
// A controller's devices and the state of their images.
#ifndef TOOLKIT_TASK_LIST_H
#define TOOLKIT_TASK_LIST_H

#include <vector>

#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/state.h"

struct LISTED_S
{
    DEVICE_S stDevice;
    STATE_S stState;
};

// In the order of the device table.
std::vector<LISTED_S> ListDevices(const CONTROLLER_S &stController);

// {"devices": [...]}
Json ListJson(const std::vector<LISTED_S> &vecListed);

#endif
