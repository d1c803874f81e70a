// SPDX-License-Identifier: Apache-2.0
// Putting an image of the history back.
#ifndef TOOLKIT_EDIT_UNDO_H
#define TOOLKIT_EDIT_UNDO_H

#include <optional>

#include "toolkit/controller/history.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/change.h"

// The one of that number; without one, the newest that differs from what the device holds now. Fails when there
// is none.
PAST_IMAGE_S ChoosePast(const DEVICE_S &stDevice, const std::vector<PAST_IMAGE_S> &vecPast,
                        std::optional<u32> optNumber);

// The change that brings it back, EEPROM and cache alike. Fails when it has not the FRU's size.
CHANGE_S PlanUndo(const DEVICE_S &stDevice, const PAST_IMAGE_S &stPast);

void WriteUndo(const RootLock &stLock, const CHANGE_S &stChange);

#endif
