// SPDX-License-Identifier: Apache-2.0
// What the fault matrix is made of: cases, each a call of the library in a small world; the rules by which a call may
// report success although not all of it was done; and what a run of a case with a fault came to.
#ifndef TESTS_PROVE_FAULT_CASE_H
#define TESTS_PROVE_FAULT_CASE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "fake/fake_platform.h"
#include "lib_fru.h"

namespace prove {

using fake::BYTES;

// In what a call that reported success may differ from the same call without a fault.
enum PART_E : u32
{
    PART_CHIP_MIXED = 1U << 0U,  // an EEPROM holds neither what it held nor what it should
    PART_CHIP_OLD = 1U << 1U,    // an EEPROM was not written
    PART_CACHE_APART = 1U << 2U, // a cached image is not its EEPROM's
    PART_RECORD = 1U << 3U,      // another record of the database
    PART_FILE = 1U << 4U,        // the serial number's file or its copy
    PART_INI = 1U << 5U,         // the OEM configuration
    PART_NOTICE = 1U << 6U,      // a notice, an event or a log entry that did not arrive
    PART_OUTPUT = 1U << 7U,      // what the call gave back
    PART_CHIP_OTHER = 1U << 8U,  // an EEPROM holds another whole image
};
constexpr u32 PARTS = 9U;
constexpr u32 PARTS_HALF_WRITTEN = PART_CHIP_MIXED | PART_CACHE_APART;
const char *PartName(u32 uiPart);

constexpr u32 Kind(fake::KIND_E eKind)
{
    return 1U << static_cast<u32>(eKind);
}
constexpr u32 ALLOC = Kind(fake::KIND_E::ALLOC);
constexpr u32 DB = Kind(fake::KIND_E::DB);
constexpr u32 EEPROM = Kind(fake::KIND_E::EEPROM);
constexpr u32 FILES = Kind(fake::KIND_E::FILE_CALL);
constexpr u32 RPC = Kind(fake::KIND_E::RPC);
constexpr u32 OPERATELOG = Kind(fake::KIND_E::OPERATELOG);
constexpr u32 INI = Kind(fake::KIND_E::INI);
constexpr u32 CAPABILITY = Kind(fake::KIND_E::CAPABILITY);
constexpr u32 CLOCK = Kind(fake::KIND_E::CLOCK);
constexpr u32 SEMAPHORE = Kind(fake::KIND_E::SEMAPHORE);

// A failure that the library swallows and means to: after which faults, what may differ then, what its log says of it
// (null: nothing), and why.
struct RULE_S
{
    const char *pcName;
    u32 uiKinds;
    u32 uiParts;
    const char *pcMessage;
    const char *pcReason;
};
const std::vector<RULE_S> &Rules();

using RULE_NAMES = std::vector<const char *>;

// One call in one situation. The world is there when fnSetup runs (it may be null); fnCall is the call, true for success;
// fnOutput tells what it gave back, as text; fnRelease gives back what the call left with its caller.
struct CASE_S
{
    std::string strCall;
    std::string strAbout;
    RULE_NAMES vecRules;
    std::function<void()> fnSetup;
    std::function<bool()> fnCall;
    std::function<std::string()> fnOutput;
    std::function<void()> fnRelease;
    bool bProcessEach = false; // the library keeps what the call found for the process's life
};
using CASES = std::vector<CASE_S>;

void AddCodecCases(CASES &vecCases);
void AddCacheCases(CASES &vecCases);
void AddAccessCases(CASES &vecCases);
void AddWriteCases(CASES &vecCases);
void AddOemCases(CASES &vecCases);
void AddHardwareCases(CASES &vecCases);
void AddDiagnosticsCases(CASES &vecCases);
void AddLabelCases(CASES &vecCases);
void AddSetterCases(CASES &vecCases);
void AddMultiRecordCases(CASES &vecCases);

} // namespace prove

#endif
