// SPDX-License-Identifier: Apache-2.0
// How a whole image's write is shown, for every command that makes one.
#ifndef FRUCTL_COMMANDS_IMAGE_PLAN_H
#define FRUCTL_COMMANDS_IMAGE_PLAN_H

#include <string>

#include "toolkit/edit/image_write.h"

// The fields that change, old and new, and the notes.
std::string ImagePlanText(const IMAGE_PLAN_S &stPlan);

#endif
