// SPDX-License-Identifier: Apache-2.0
// The sums that an image guards its areas with.
#ifndef TOOLKIT_IMAGE_CHECKSUM_H
#define TOOLKIT_IMAGE_CHECKSUM_H

#include <numeric>

#include "lib_fru_types.h"

// 0 over an area that is good.
inline u8 ByteSum(const u8 *pucBytes, size_t uiLength)
{
    return static_cast<u8>(std::accumulate(pucBytes, pucBytes + uiLength, 0U));
}

// The byte that makes the sum 0.
inline u8 ZeroChecksum(const u8 *pucBytes, size_t uiLength)
{
    return static_cast<u8>(0U - ByteSum(pucBytes, uiLength));
}

#endif
