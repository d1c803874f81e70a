// SPDX-License-Identifier: Apache-2.0
// The back ends by name, and which one a chip has.
#ifndef BMCHOST_EEPROM_REGISTRY_H
#define BMCHOST_EEPROM_REGISTRY_H

#include <memory>
#include <string>

#include "eeprom/backend.h"
#include "eeprom/chip.h"

namespace host {

// Those that are part of this library.
extern const BMCHOST_BACKEND_S g_stKernelBackend;
extern const BMCHOST_BACKEND_S g_stI2cBackend;

// The back end of that name; null with the reason. A loaded one is loaded now.
const BMCHOST_BACKEND_S *FindBackend(const std::string &strName, std::string *pstrWhy);
// "file, i2c, ipmi, kernel", for messages.
std::string BackendNames();

// What the configuration says of a chip.
struct SELECTION_S
{
    const BMCHOST_BACKEND_S *pstBackend; // null: an image file
    std::string strSettings;
    std::string strProblem; // why it cannot be used; nothing else counts then
};
SELECTION_S SelectBackend(const std::string &strChip);
// What is wrong with a chip's settings; empty: nothing.
std::string SettingsProblem(const std::string &strSettings);

// A transfer through a back end: the bytes transferred, or negative with a message.
i32 ReadThrough(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer);
i32 WriteThrough(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer);

} // namespace host

#endif
