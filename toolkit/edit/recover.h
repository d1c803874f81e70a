// SPDX-License-Identifier: Apache-2.0
// Mends a device's image: from its stored image, its history, its cached image or a file. A source that is not
// in order itself is never taken.
#ifndef TOOLKIT_EDIT_RECOVER_H
#define TOOLKIT_EDIT_RECOVER_H

#include <optional>
#include <string>

#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/image_write.h"

// What a recovery may be asked to take; anything else is a file.
constexpr const char *FROM_STORED = "stored";
constexpr const char *FROM_HISTORY = "history";
constexpr const char *FROM_CACHE = "cache";

struct RECOVERY_S
{
    std::string strDamage; // what is wrong; empty: nothing, and nothing will be written
    std::string strFrom;   // for programs: one of the above, "eeprom" or the file's name
    std::string strSource; // for people: where the image comes from
    std::optional<IMAGE_PLAN_S> optPlan;
    bool bByLibrary = false; // its own recovery does the same
};

// strFrom: what is to be taken; empty: the first that is in order of stored image, history and cache. An EEPROM
// that is in order while its cached image differs is itself the source. Fails when there is none to take, and
// says why not.
RECOVERY_S PlanRecovery(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                        const std::string &strFrom);

// Fails when the device does not hold the planned image afterwards.
void WriteRecovery(const RootLock &stLock, const DEVICE_S &stDevice, const RECOVERY_S &stRecovery);

#endif
