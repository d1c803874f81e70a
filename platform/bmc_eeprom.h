/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: EEPROM access.
 *
 * Reads and writes I2C EEPROMs. May be called from any thread and process at once: a read is one transfer,
 * and a write is one transfer for each page of the chip (on the desk 32 bytes), so that a read sees whole
 * pages, though perhaps only some of the pages of a write that is going on. Who else may be on the wire (a
 * second master, another process, the chip's other users behind a switch) is the platform's to keep out for
 * so long: it selects the switch level, transfers and lets go as one step. Not for signal handlers.
 *
 * What the platform must know
 *   Type        The record's type byte, 9 to 15, is passed through. That it says "I2C" is all that the
 *               caller knows of it: bytes of address (one below 2 KiB, else two, as a rule), page size and
 *               capacity follow from the type where a platform has given its types such a meaning, else
 *               from the location or the chip itself. A wrong page size makes a write wrap round inside a
 *               page.
 *   Location    Byte 0 is the bus, 0 to 15. Byte 1 is the chip's address as the record's author wrote it:
 *               on the desk it names a file only; a driver that wants the seven bits of the wire must know
 *               whether the records of its product carry them (0x50) or eight with the direction bit in
 *               front (0xA0). Byte 2 is the switch level: the channel of the bus switch that the chip lies
 *               behind, 0 for none.
 *   Offsets     Offset and length stay below 65,536 for the records that there are: the caller counts in 16
 *               bits.
 *
 * What happens in trouble
 *   - After a page the chip answers nobody in its write cycle (5 ms, as a rule). The platform waits for it,
 *     before the next page and before it returns.
 *   - A power cut, or a bus that is lost, in a write cycle leaves that page as anything: old, new or
 *     neither. The pages ahead of it are new, those behind it old. The caller finds that by the checksums.
 *   - A chip whose write protection is switched on acknowledges a write and stays as it was. The platform
 *     need not notice, and libbmcfru does not read back: who has to be sure reads after the write.
 *   - A transfer that breaks off is negative, however many bytes had been through, for it cannot be told
 *     which. An error is never a positive number. 203 is never a count to libbmcfru: it takes that result for
 *     the completion code 0xCB, a FRU that is not there, whatever was asked for. A platform returns the true
 *     count all the same; callers ask for other lengths.
 *   - A missing acknowledgement (a chip that is busy) may be tried again by the platform, within its bound;
 *     after a negative result the caller may do the whole transfer again: it is the same bytes at the same
 *     place. Callers here do not try again by themselves.
 *   - Each call ends: on the desk after 5 seconds for a chip that another process does not let go. A
 *     platform's bound is its own; 100 ms for a read and 10 ms for a page are usual, with a second for a
 *     bus to come free.
 *   - A page that holds the bytes already may be skipped, and is on the desk: it saves the chip and time.
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
 * Returns the bytes transferred: uiLength, or fewer at the chip's end (0 beyond it); nothing wraps round.
 * The bytes after them in pucBuf, or in the chip, stay as they were. Negative: no such chip, a write to a
 * protected one, a transfer that failed, a null pLocation, a null pucBuf with uiLength above 0, or another
 * direction. What is returned as written is in the chip and stays there without power (on the desk: flushed
 * to the disk). A write that fails, or whose process is killed, leaves the pages ahead of that moment
 * written, the others as they were, and no page half done; see above for a cut.
 */
i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
