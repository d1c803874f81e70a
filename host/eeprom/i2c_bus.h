// SPDX-License-Identifier: Apache-2.0
// The bus as raw transfers see it: the system calls of /dev/i2c-N, and the clock. Tests put a simulated bus with
// simulated chips in their place.
#ifndef BMCHOST_EEPROM_I2C_BUS_H
#define BMCHOST_EEPROM_I2C_BUS_H

#include "bmc_types.h"

namespace host {

// As open(2), ioctl(2) and close(2): negative with errno set.
struct I2C_BUS_S
{
    int (*pfnOpen)(const char *pcPath);
    int (*pfnControl)(int iFd, unsigned long uiRequest, void *pArgument);
    void (*pfnClose)(int iFd);
    u32 (*pfnNowUs)(); // runs on, and wraps round
    void (*pfnWaitUs)(u32 uiMicroseconds);
};

// Null: the machine's own, as at the start. Not while a transfer runs.
void SetI2cBus(const I2C_BUS_S *pstBus);
const I2C_BUS_S &I2cBus();

// Of an open bus. Results are 0 or an errno value.
int RequireI2cFunctions(int iFd, bool *pbEnough);
// EBUSY: a driver of the kernel holds the address. It is asked for with I2C_SLAVE, never I2C_SLAVE_FORCE.
int ClaimI2cAddress(int iFd, u32 uiAddress);

} // namespace host

#endif
