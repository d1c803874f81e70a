// SPDX-License-Identifier: Apache-2.0
// FRU devices of the controller.
#ifndef TOOLKIT_CONTROLLER_DEVICE_H
#define TOOLKIT_CONTROLLER_DEVICE_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"

// A device of the device table, with what the controller knows of it.
struct DEVICE_S
{
    FRU_DEVICE_TBL_ENTRY_S stEntry;
    FRU_DEVICE_INFO_S stInfo;
    bool bHasInfo; // false: the table names it, but there is no record for its ID
    std::string strName;

    std::string Component() const; // "0x03:0"
    std::string Title() const;     // "psu1 (0x03:0)"
    std::string ImagePath() const; // of the stored image that restores it
    bool HasFixedSlots() const;    // a baseboard, read with preset custom-field counts
    bool IsDatabaseOnly() const;
};

// All devices in table order. Fails when there is no device table.
std::vector<DEVICE_S> LoadDevices(const CONTROLLER_S &stController);

#endif
