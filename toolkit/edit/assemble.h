// SPDX-License-Identifier: Apache-2.0
// A whole image from texts, into the cache.
#ifndef TOOLKIT_EDIT_ASSEMBLE_H
#define TOOLKIT_EDIT_ASSEMBLE_H

#include <vector>

#include "toolkit/base/name_value.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/change.h"

// The texts that it can be made from.
const std::vector<SETTABLE_S> &AssemblyTexts();

// NAME=VALUE arguments as they will be given to the library: its words for dates. Fails as ParseNameValues() does.
std::vector<NAME_VALUE_S> ParseAssembly(const std::vector<std::string> &vecTexts);

// Fails when a text is refused, or the device. bForce: also one with an EEPROM of its own.
void CheckAssembly(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven, bool bForce);

// Works out the image for checked texts. Fails when it could not be read again.
CHANGE_S PlanAssembly(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven);

// Makes it. Fails when the cache does not hold it afterwards.
void Assemble(const RootLock &stLock, const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven);

#endif
