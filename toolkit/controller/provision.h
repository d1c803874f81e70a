// SPDX-License-Identifier: Apache-2.0
// Making a controller from its description, as its FRU service would.
#ifndef TOOLKIT_CONTROLLER_PROVISION_H
#define TOOLKIT_CONTROLLER_PROVISION_H

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/provision_plan.h"

// The FRU device IDs that the controller has so far; empty when there is no controller.
std::vector<u8> ExistingIDs(const CONTROLLER_S &stController);

// Where the device's EEPROM lies.
std::string EepromPath(const DEVICE_PLAN_S &stDevice);

// Writes every file and record. vecOldIDs are the devices that were there before.
void Provision(const CONTROLLER_PLAN_S &stPlan, const std::vector<u8> &vecOldIDs);

#endif
