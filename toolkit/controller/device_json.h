// SPDX-License-Identifier: Apache-2.0
// Devices and targets for programs.
#ifndef TOOLKIT_CONTROLLER_DEVICE_JSON_H
#define TOOLKIT_CONTROLLER_DEVICE_JSON_H

#include "toolkit/base/json.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"

// {"id", "name", "componentType", "instance"}
Json DeviceJson(const DEVICE_S &stDevice);

// {"device": ...} or {"file": ...}
Json TargetJson(const TARGET_S &stTarget);

#endif
