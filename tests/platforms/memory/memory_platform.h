// SPDX-License-Identifier: Apache-2.0
// A platform for benchmarks and fuzzers: answers from memory without ceremony, and counts what it was asked.
#ifndef TESTS_MEMORY_PLATFORM_H
#define TESTS_MEMORY_PLATFORM_H

#include <cstdint>
#include <vector>

#include "bmc_types.h"

namespace memory {

struct COUNTS_S
{
    uint64_t ulDbCalls;
    uint64_t ulEepromReadBytes;
    uint64_t ulEepromWrittenBytes;
};

COUNTS_S &Counts();

// The record under a key; put one in by assigning to it.
std::vector<u8> &Record(u32 uiKey);

// The one EEPROM, behind every location.
std::vector<u8> &Eeprom();

// Whether the texts of diagnostic messages are made before they are dropped; false until then.
void FormatMessages(bool bFormat);

} // namespace memory

#endif
