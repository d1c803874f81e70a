// SPDX-License-Identifier: Apache-2.0
// What the tests under many threads need of a platform: a controller without devices, and chips with contents.
#ifndef TESTS_THREAD_CHIPS_H
#define TESTS_THREAD_CHIPS_H

#include <vector>

#include "lib_fru_types.h"

namespace chips {

void Start();
void Stop();
void Put(const FRU_DEVICE_INFO_S &stInfo, const std::vector<u8> &vecImage);

} // namespace chips

#endif
