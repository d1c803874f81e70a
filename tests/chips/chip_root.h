// SPDX-License-Identifier: Apache-2.0
// A root whose chips are no image files: its configuration, and the messages.
#ifndef TESTS_CHIPS_CHIP_ROOT_H
#define TESTS_CHIPS_CHIP_ROOT_H

#include <nlohmann/json.hpp>
#include <string>

#include "bmc_types.h"

namespace chips {

// The root of the test that runs.
const std::string &Root();

// The chip's name, as the platform has it.
std::string NameOf(u8 ucType, const void *pLocation);

// Puts a chip into the configuration, or other settings in the place of its own.
void Configure(const std::string &strChip, const nlohmann::json &stSettings);

// The last message; empty when there is none.
std::string LastMessage();

// What an adapter does at the begin of a test beyond the root, and at its end.
void StartChips();
void StopChips();

} // namespace chips

#endif
