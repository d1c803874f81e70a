// SPDX-License-Identifier: Apache-2.0
// What is asked of one image of a sweep: decoder and encoder, the walk and the lenient reader, and the ways from a device.
#ifndef TESTS_PROVE_IMAGE_CHECKS_H
#define TESTS_PROVE_IMAGE_CHECKS_H

#include <vector>

#include "lib_fru_types.h"

namespace prove {

struct VERDICT_S
{
    bool bAccepted = false;         // the decoder takes it
    const char *pcBroken = nullptr; // a promise that was broken
};

// vecImage is all that there is of it; a device has eight erased bytes behind. bFixedSlots: read as a baseboard's.
VERDICT_S CheckImage(const std::vector<u8> &vecImage, bool bFixedSlots);

} // namespace prove

#endif
