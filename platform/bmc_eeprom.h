/* Platform: EEPROM access.
 *
 * Reads and writes I2C EEPROMs.
 */
#ifndef BMC_EEPROM_H
#define BMC_EEPROM_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

#define BMC_EEPROM_WRITE 1U
#define BMC_EEPROM_READ 2U

/*
 * Transfers uiLength bytes between pucBuf and the chip, from uiOffset on. ucDirection is BMC_EEPROM_READ or
 * BMC_EEPROM_WRITE. For the types 9 to 15 pLocation points to the I2C location bytes (bus, address, switch
 * level and the bytes after them, as a device information record holds them from its byte 158 on); for any
 * other type it is a NUL-terminated device name. Returns the bytes transferred (fewer than uiLength at the
 * chip's end), or a negative value.
 */
i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
