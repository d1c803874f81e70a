// SPDX-License-Identifier: Apache-2.0
// Making a controller from its description, as its FRU service would.
#ifndef TOOLKIT_CONTROLLER_PROVISION_H
#define TOOLKIT_CONTROLLER_PROVISION_H

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/provision_plan.h"
#include "toolkit/controller/root_lock.h"

// The FRU device IDs that the controller has so far; empty when there is no controller.
std::vector<u8> ExistingIDs(const CONTROLLER_S &stController);

// Where the device's EEPROM lies.
std::string EepromPath(const DEVICE_PLAN_S &stDevice);

// Puts the new controller in the place of the one that is there, whose devices vecOldIDs are; nothing of that
// stays. Files that are no controller's are left alone, and so are journals of what happened. Until all of the new
// one is on the disk the old one is as it was; from then on the new one is finished, whatever comes.
void Provision(const RootLock &stLock, const CONTROLLER_PLAN_S &stPlan, const std::vector<u8> &vecOldIDs);

#endif
