/*
 * Platform: EEPROM access.
 *
 * Reads and writes I2C EEPROMs. May be called from any thread and process at once: a read is one transfer,
 * and a write is one transfer for each page of the chip (on the desk 32 bytes), so that a read sees whole
 * pages, though perhaps only some of the pages of a write that is going on.
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
 * level and the bytes after them, as a device information record holds them from its byte 158 on; three are
 * read); for any other type it is a NUL-terminated device name.
 *
 * Returns the bytes transferred: uiLength, or fewer at the chip's end (0 beyond it); nothing wraps round. The
 * bytes after them in pucBuf, or in the chip, stay as they were. Negative: no such chip, a write to a
 * protected one, a transfer that failed, a null pLocation, a null pucBuf with uiLength above 0, or another
 * direction. What is returned as written is in the chip for good. A write that fails, or whose process is
 * killed, leaves the pages ahead of that moment written, the others as they were, and no page half done.
 */
i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
