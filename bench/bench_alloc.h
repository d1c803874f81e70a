// SPDX-License-Identifier: Apache-2.0
// What the library has allocated so far.
#ifndef BENCH_ALLOC_H
#define BENCH_ALLOC_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

uint64_t Allocations();

// From true to false every allocation's size is noted; false returns what was.
std::vector<size_t> RecordSizes(bool bRecord);

} // namespace bench

#endif
