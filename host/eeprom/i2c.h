// SPDX-License-Identifier: Apache-2.0
// Raw transfers with an EEPROM over /dev/i2c-N.
#ifndef BMCHOST_EEPROM_I2C_H
#define BMCHOST_EEPROM_I2C_H

#include <string>

#include "bmc_types.h"

namespace host {

// A chip's geometry, as it is declared.
struct I2C_CHIP_S
{
    u32 uiAdapter;
    u32 uiAddress;      // seven bits; where the offset has a part in it, that part is 0
    u32 uiSize;         // a power of two
    u32 uiAddressBytes; // of an offset: 1, the rest of it in the device address, or 2
    u32 uiPage;
    u32 uiWriteTimeMs; // at most so long the chip answers nobody after a page
};

// Checks the settings; throws SettingsError with the member that is missing or wrong.
I2C_CHIP_S ReadI2cChip(const std::string &strSettings);

// Opens the bus; refuses an adapter that cannot do plain transfers, and addresses that a driver holds. Results
// are 0 or an errno value, with the reason in words.
int OpenI2cChip(const I2C_CHIP_S &stChip, int *piFd, std::string *pstrWhy);
int ReadI2cChip(const I2C_CHIP_S &stChip, int iFd, u32 uiOffset, u32 uiLength, u8 *pucBuf,
                std::string *pstrWhy);
// Within one page; returns when the chip answers again.
int WriteI2cPage(const I2C_CHIP_S &stChip, int iFd, u32 uiOffset, u32 uiLength, const u8 *pucBuf,
                 std::string *pstrWhy);

} // namespace host

#endif
