// SPDX-License-Identifier: Apache-2.0
// What the real chips of a description hold: they are read, never written, when a controller is made.
#ifndef TOOLKIT_CONTROLLER_PROVISION_HELD_H
#define TOOLKIT_CONTROLLER_PROVISION_HELD_H

#include "toolkit/controller/provision_plan.h"

// Reads every real chip that is to be cached, by the way that the description names; what it holds is the
// device's cached image then. Fails with the first that cannot be read.
void TakeHeldImages(CONTROLLER_PLAN_S &stPlan);

#endif
