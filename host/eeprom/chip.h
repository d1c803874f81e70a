// SPDX-License-Identifier: Apache-2.0
// One chip on the desk: an image file, whose length is the capacity and whose write bits are the
// write-protect pin, and perhaps a file beside it with the fault that it is to show.
#ifndef BMCHOST_EEPROM_CHIP_H
#define BMCHOST_EEPROM_CHIP_H

#include <string>

#include "support/host.h"

namespace host {

constexpr i32 g_iNoTransfer = -1;

struct TRANSFER_S
{
    const std::string &strChip; // the image's file name without ".bin"
    u8 *pucBuf;
    u32 uiOffset;
    u32 uiLength;
    void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext);
    void *pContext;
    u32 uiDelayUs; // of a write cycle
};

// The bytes transferred, or negative with a message.
i32 ReadChip(const TRANSFER_S &stTransfer);
i32 WriteChip(const TRANSFER_S &stTransfer);

void WaitUs(u32 uiMicroseconds);

// ---- faults ----

enum class Fault
{
    None,
    Absent,   // nobody answers
    Busy,     // the next uiValue transfers are not answered
    Stuck,    // the bus hangs for uiValue milliseconds, then the transfer fails
    Torn,     // power goes in the write cycle of the page that holds uiValue
    Protected // a write is acknowledged, and the bytes stay
};

struct FAULT_S
{
    Fault enFault;
    u32 uiValue;
    bool bValue; // false: none was given
};

// What the chip's fault file says; no file, no fault. A file that says nothing known counts as none, with a
// message.
FAULT_S ReadFault(const std::string &strChip);
// A fault that shows itself once has done so.
void EndFault(const std::string &strChip);
// True when a transfer fails by this fault before a byte has moved; with a message.
bool FailsByFault(const std::string &strChip, const FAULT_S &stFault);

} // namespace host

#endif
