// SPDX-License-Identifier: Apache-2.0
// A description's images onto real chips, which making a controller leaves alone.
#ifndef TOOLKIT_EDIT_PROVISION_IMAGES_H
#define TOOLKIT_EDIT_PROVISION_IMAGES_H

#include <string>
#include <vector>

#include "toolkit/controller/provision_plan.h"
#include "toolkit/controller/root_lock.h"

// Fails when an image that would be written is not in order.
void RequireSoundImages(const CONTROLLER_PLAN_S &stPlan);

// Writes each real chip whose description names an image, one after the other, as 'fructl write' does: journalled, read
// back, what it held before kept in its history. The names of those that held something else. Fails with the
// first that cannot be written; those before it are written.
std::vector<std::string> WriteChipImages(const RootLock &stLock, const CONTROLLER_PLAN_S &stPlan);

#endif
