// SPDX-License-Identifier: Apache-2.0
// What the platform's plain calls (text, sums, time) share. Nothing here needs a root, a file or a lock: the desk, the
// test platforms, the benchmarks and the fuzzers link the same objects.
#ifndef BMCHOST_PLAIN_PLAIN_H
#define BMCHOST_PLAIN_PLAIN_H

#include <optional>

#include "bmc_support.h"

namespace host {

constexpr u32 g_uiFailed = 0x81000001U;

// The whole text as a number of at most uiMax, decimal or 0x and hexadecimal; no blanks, no signs.
std::optional<u32> ToNumber(const char *pcText, u32 uiMax);

} // namespace host

#endif
