// SPDX-License-Identifier: Apache-2.0
// The device that the benchmarks work on.
#ifndef BENCH_DEVICE_H
#define BENCH_DEVICE_H

#include "bmc_types.h"

namespace bench {

// Puts device 0, component 0:0, of uiSize bytes in the database: table, record, cached image and cache
// status; and the same image in the EEPROM.
void Provision(u32 uiSize, u8 ucCacheStatus);

} // namespace bench

#endif
