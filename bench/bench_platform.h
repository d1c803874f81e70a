// The platform of the benchmarks: answers from memory without ceremony, and counts what it was asked.
#ifndef BENCH_PLATFORM_H
#define BENCH_PLATFORM_H

#include <cstdint>
#include <vector>

#include "bmc_types.h"

namespace bench {

struct COUNTS_S
{
    uint64_t ulAllocations;
    uint64_t ulDbCalls;
    uint64_t ulEepromReadBytes;
    uint64_t ulEepromWrittenBytes;
};

COUNTS_S &Counts();

// The record under a key; put one in by assigning to it.
std::vector<u8> &Record(u32 uiKey);

// The one EEPROM, behind every location.
std::vector<u8> &Eeprom();

} // namespace bench

#endif
