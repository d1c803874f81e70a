// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_THREAD_LOCKED_PLATFORM_H
#define TESTS_THREAD_LOCKED_PLATFORM_H

#include "bmc_types.h"

// The most threads that were inside the device at once since the last call.
u32 TakeMostAtTheDevice();

#endif
