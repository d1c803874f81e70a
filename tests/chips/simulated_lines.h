// SPDX-License-Identifier: Apache-2.0
// Output lines that all processes of a test see, in the place of the machine's.
#ifndef TESTS_CHIPS_SIMULATED_LINES_H
#define TESTS_CHIPS_SIMULATED_LINES_H

#include "bmc_types.h"

namespace chips {

constexpr u32 LINES = 8;

struct SIMULATED_LINES_S
{
    int aiValue[LINES];
    u32 auiSet[LINES]; // how often each was set
    bool abHeld[LINES];
};

// One GPIO chip, "gpiochip0"; the lines are high at first.
SIMULATED_LINES_S &StartLines();
void StopLines();

} // namespace chips

#endif
