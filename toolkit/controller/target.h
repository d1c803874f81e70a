// SPDX-License-Identifier: Apache-2.0
// What the user named: a device of the controller or an image file.
#ifndef TOOLKIT_CONTROLLER_TARGET_H
#define TOOLKIT_CONTROLLER_TARGET_H

#include <optional>
#include <string>

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"

struct TARGET_S
{
    std::optional<DEVICE_S> optDevice;
    std::string strFile;

    std::string Title() const;
    bool HasFixedSlots() const;
};

// How the user names it.
struct TARGET_OPTIONS_S
{
    std::string strTarget;    // TYPE:INSTANCE, a name, or a file's path with a slash
    std::string strDeviceID;  // --id
    std::string strFile = {}; // --file

    bool IsNamed() const
    {
        return !strTarget.empty() || !strDeviceID.empty() || !strFile.empty();
    }
};

// The device that MultiRecords are merged into, and that the OEM file is filled from: component type 0,
// instance 0.
constexpr const char *MAIN_FRU = "0x00:0";

// A word without a slash is never a file: where there is no such device, but a file, the failure tells how the
// file is named.
TARGET_S ResolveTarget(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions);
DEVICE_S ResolveDevice(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions);

// A FRU device ID, whether the table names it or not (IPMI requests may).
u8 ResolveDeviceID(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions);

#endif
