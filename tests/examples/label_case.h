// SPDX-License-Identifier: Apache-2.0
// Label writes that the tests cut short, and what is to be there afterwards.
#ifndef TESTS_LABEL_CASE_H
#define TESTS_LABEL_CASE_H

#include "cut_world.h"

namespace cut {

constexpr u8 g_ucFaultMarks =
    FRU_CACHE_FAULT_1 | FRU_CACHE_FAULT_2; // of the cache status when a test begins; nobody's here to change

struct CASE_S
{
    const char *pcName;
    bool bBaseboard;
    const char *pcLabel;
    const char *pcValue;
};

// Longer and shorter than what is there, of its length, and in the last area.
extern const CASE_S g_astCases[4];
extern const CASE_S &g_stRiserCase; // nothing of it goes to a file

label::DEVICE_S DeviceOf(const CASE_S &stCase);
LASTING_S StartOf(const label::DEVICE_S &stDevice);

u32 WritePlainly(const CASE_S &stCase, const label::DEVICE_S &stDevice);
u32 WriteSafely(const CASE_S &stCase, const label::DEVICE_S &stDevice);
u32 Repair();

fake::BYTES ImageOn(const label::DEVICE_S &stDevice, const fake::BYTES &vecChip);

// What is expected of a state: the two whole images, as chips, and who is asked.
struct EXPECTED_S
{
    label::DEVICE_S stDevice;
    fake::BYTES vecOldChip;
    fake::BYTES vecOldCache;
    fake::BYTES vecNewChip;
};
EXPECTED_S Expect(const CASE_S &stCase, const LASTING_S &stStart);

// Old or new, whole, everywhere the same, and nothing left to do. Where the change had not begun the cache
// may be what it was.
bool IsInOrder(const EXPECTED_S &stExpected, const LASTING_S &stLeft);

} // namespace cut

#endif
