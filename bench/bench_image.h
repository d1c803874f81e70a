// SPDX-License-Identifier: Apache-2.0
// The image that the benchmarks work on: all areas, seven MultiRecords, texts of everyday length.
#ifndef BENCH_IMAGE_H
#define BENCH_IMAGE_H

#include <vector>

#include "bmc_types.h"

namespace bench {

struct IMAGE_S
{
    std::vector<u8> vecBytes;  // the image alone, without what follows it in an EEPROM
    std::vector<u32> vecTexts; // the buffer size of every text and record in it
};

IMAGE_S FullImage();

// FullImage() at the start of uiSize bytes of 0xFF.
std::vector<u8> InEeprom(const IMAGE_S &stImage, u32 uiSize);

} // namespace bench

#endif
