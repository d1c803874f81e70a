// SPDX-License-Identifier: Apache-2.0
// Output lines of the machine, by libgpiod (its version 1, libgpiod.so.2), which is loaded when the first line is asked
// for: a machine without it lacks write-protect lines and nothing else. Tests put lines of their own in their place.
#ifndef BMCHOST_EEPROM_GPIO_H
#define BMCHOST_EEPROM_GPIO_H

#include <string>

#include "bmc_types.h"

namespace host {

struct GPIO_S
{
    // Takes the line as an output with this value. 0, or an errno value with the reason.
    int (*pfnRequest)(const char *pcChip, u32 uiLine, int iValue, void **ppLine, std::string *pstrWhy);
    int (*pfnSet)(void *pLine, int iValue);
    void (*pfnRelease)(void *pLine);
};

// Null: the machine's own, as at the start. Not while a transfer runs.
void SetGpio(const GPIO_S *pstGpio);
const GPIO_S &Gpio();

} // namespace host

#endif
