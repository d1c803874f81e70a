// SPDX-License-Identifier: Apache-2.0
// An image that says nothing yet: what an erased device needs before a label can be written to it.
#ifndef TOOLKIT_EDIT_BLANK_H
#define TOOLKIT_EDIT_BLANK_H

#include <optional>

#include "toolkit/edit/change.h"

// The change that lays an image with an empty area for each label that the device takes. Nothing when the device
// is not erased, or when its labels can be read all the same.
std::optional<CHANGE_S> PlanBlank(const DEVICE_S &stDevice);

// In words: which image comes first, and why.
std::string BlankNote(const CHANGE_S &stBlank);

#endif
