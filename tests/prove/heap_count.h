// SPDX-License-Identifier: Apache-2.0
// How many buffers malloc and its like have given to this program's own objects, the library's among them, that nobody has
// freed yet (linked with --wrap; new and delete are the C++ library's).
#ifndef TESTS_PROVE_HEAP_COUNT_H
#define TESTS_PROVE_HEAP_COUNT_H

#include <cstdint>

namespace prove {

int64_t LiveBuffers();

} // namespace prove

#endif
