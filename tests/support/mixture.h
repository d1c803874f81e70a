// SPDX-License-Identifier: Apache-2.0
// What a write that stops halfway may leave behind.
#ifndef TESTS_SUPPORT_MIXTURE_H
#define TESTS_SUPPORT_MIXTURE_H

#include <algorithm>
#include <vector>

#include "bmc_types.h"

namespace image {

// Whether every byte stands at its place in one of these images.
inline bool IsMixtureOf(const std::vector<u8> &vecBytes, const std::vector<std::vector<u8>> &vecImages)
{
    for (size_t i = 0; i < vecBytes.size(); ++i) {
        if (std::none_of(vecImages.begin(), vecImages.end(), [&](const std::vector<u8> &vecImage) {
                return i < vecImage.size() && vecImage[i] == vecBytes[i];
            })) {
            return false;
        }
    }
    return true;
}

} // namespace image

#endif
