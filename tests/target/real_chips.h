// SPDX-License-Identifier: Apache-2.0
// Two EEPROMs of 8 KiB on one bus that the tests may write to, as BMCFRU_TARGET_CHIPS names them:
// "kernel 8 0x54 0x55" (back end, bus, their addresses). Without it every test is skipped.
#ifndef TESTS_TARGET_REAL_CHIPS_H
#define TESTS_TARGET_REAL_CHIPS_H

#include "controller.h"

namespace real {

constexpr u32 CAPACITY = 8192;

// Reads or writes past the library: the driver's file, or transfers of our own.
controller::BYTES ReadChip(u8 ucType, const void *pLocation, u32 uiOffset, u32 uiLength);
void WriteChip(u8 ucType, const void *pLocation, u32 uiOffset, const controller::BYTES &vecBytes);

} // namespace real

#endif
