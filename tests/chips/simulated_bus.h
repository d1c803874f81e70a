// SPDX-License-Identifier: Apache-2.0
// An I2C adapter with EEPROMs as they are: the pointer wraps round inside a page, nobody answers in the write cycle,
// arbitration gets lost, a protected chip acknowledges and stays. All processes of a test see the same bus.
#ifndef TESTS_CHIPS_SIMULATED_BUS_H
#define TESTS_CHIPS_SIMULATED_BUS_H

#include <vector>

#include "bmc_types.h"

namespace chips {

struct SIMULATED_CHIP_S
{
    u32 uiAdapter;
    u32 uiAddress;
    u32 uiAddressBytes; // that the chip takes, whatever it is told to be
    u32 uiPage;
    u32 uiWriteTimeUs;
    u32 uiSize;
    u8 aucBytes[0x10000];

    u32 uiArbitrationLost; // so many transfers are lost from now on
    bool bAbsent;
    bool bProtected;     // acknowledges, and stays
    bool bRefusesWrites; // protected too, and acknowledges no data
    bool bHasDriver;     // of the kernel
    bool bHangs;         // the bus
    u32 uiLongestRead;   // of this adapter; 0: any
    u32 uiWrites;        // pages that were written
    u32 uiRefused;       // transfers that nobody answered
    u32 uiPointer;
    u32 uiBusyUntilUs;
    // A page on its way into the cells: it is finished, whoever is killed meanwhile.
    u32 uiPendingAt;
    u32 uiPendingLength;
    u8 aucPending[256];
};

// A bus without chips, in the place of the machine's; until Stop.
void StartBus();
void StopBus();

// Adds a chip, or replaces the one at that place.
SIMULATED_CHIP_S &LaySimulated(u32 uiAdapter, u32 uiAddress, u32 uiAddressBytes, u32 uiPage,
                               const std::vector<u8> &vecContent);
SIMULATED_CHIP_S *FindSimulated(u32 uiAdapter, u32 uiAddress);
std::vector<u8> ContentOf(SIMULATED_CHIP_S &stChip);

// What this bus can: false takes I2C_FUNC_I2C away.
void SetPlainTransfers(bool bPlain);
// Open descriptors; none is to be left.
u32 OpenCount();
// I2C_SLAVE_FORCE was asked for.
bool WasForced();

} // namespace chips

#endif
