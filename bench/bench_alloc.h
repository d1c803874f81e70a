// What the library has allocated so far.
#ifndef BENCH_ALLOC_H
#define BENCH_ALLOC_H

#include <cstdint>

namespace bench {

uint64_t Allocations();

} // namespace bench

#endif
