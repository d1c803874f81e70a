// SPDX-License-Identifier: Apache-2.0
// Plays a case with every fault that it can meet, in a process of its own, and counts what came of it.
#ifndef TESTS_PROVE_FAULT_RUN_H
#define TESTS_PROVE_FAULT_RUN_H

#include <string>
#include <vector>

#include "prove/fault_case.h"

namespace prove {

constexpr u32 RULES_MAX = 64U;
constexpr u32 HOWS = 4U;

// Of one case, or of all of a call's. Plain: it lies in memory that processes share.
struct TALLY_S
{
    u32 uiScenarios;
    u32 uiInjected[fake::g_iKinds][HOWS][2]; // once, from then on
    u32 uiLeaks;                             // runs that left buffers behind
    u32 uiCrashes;
    u32 uiRefused;     // runs that told of a failure
    u32 uiRefusedHalf; // of these, those that left a half-written state
    u32 uiHalfWritten; // runs that reported success on a half-written state
    u32 uiIncomplete;  // runs that reported success and lack something else
    u32 uiUnexplained; // of both, those that no rule names
    u32 uiRuleMet[RULES_MAX];
    u32 uiPartsMet[RULES_MAX]; // PART_E bits that a rule has explained
};

void Add(TALLY_S &stSum, const TALLY_S &stOne);

struct RUN_S
{
    TALLY_S stTally;
    std::vector<std::string> vecProblems; // whatever makes the whole fail, one line each
};

// Every uiStride-th fault.
RUN_S RunCase(const CASE_S &stCase, u32 uiStride);

} // namespace prove

#endif
