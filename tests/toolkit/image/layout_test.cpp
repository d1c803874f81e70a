// SPDX-License-Identifier: Apache-2.0
// Spans and findings of images that point into themselves.
#include "toolkit/image/layout.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "lib_fru.h"
#include "toolkit/image/checksum.h"

namespace {

constexpr u32 AREA_START = FRU_AREA_UNIT;

TEST(Layout, AnInternalUseAreaThatStartsWithAnotherOneEndsWithTheImage)
{
    std::vector<u8> vecImage = {1U, 1U, 0U, 0U, 0U, 1U, 0U, 0U, 1U, 0xC3U, 'A', 'B', 'C', FRU_FIELD_END,
                                0U, 0U};
    vecImage[FRU_COMMON_HEADER_LEN - 1U] = ZeroChecksum(vecImage.data(), FRU_COMMON_HEADER_LEN - 1U);
    const IMAGE_LAYOUT_S stLayout = WalkImage(vecImage, vecImage.size(), false);
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        EXPECT_LE(stSpan.uiOffset, vecImage.size());
        EXPECT_LE(stSpan.uiLength, vecImage.size() - stSpan.uiOffset) << stSpan.uiOffset;
    }
    const auto itOverlap = std::find_if(
        stLayout.vecFindings.begin(), stLayout.vecFindings.end(), [](const FINDING_S &stFinding) {
            return stFinding.strWhat.find("overlaps the") != std::string::npos;
        });
    ASSERT_NE(itOverlap, stLayout.vecFindings.end());
    EXPECT_EQ(itOverlap->uiOffset, AREA_START);
}

} // namespace
