// SPDX-License-Identifier: Apache-2.0
// What holds for the walk through any image: every byte is told of exactly where it is, no finding points outside, and no
// image that the library refuses is told to be sound. Each answers null, or the promise that was broken.
#ifndef TESTS_SUPPORT_LAYOUT_PROMISES_H
#define TESTS_SUPPORT_LAYOUT_PROMISES_H

#include <algorithm>
#include <vector>

#include "toolkit/image/hardware_block.h"
#include "toolkit/image/image.h"
#include "toolkit/image/lenient.h"
#include "toolkit/image/record.h"

namespace promise {

inline const char *TellsOfEveryByte(const IMAGE_LAYOUT_S &stLayout, size_t uiStored)
{
    u32 uiBefore = 0;
    std::vector<u8> vecTold(uiStored);
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        if (stSpan.uiOffset < uiBefore || size_t{stSpan.uiOffset} + stSpan.uiLength > uiStored) {
            return "spans are in order and inside the image";
        }
        std::fill_n(vecTold.begin() + stSpan.uiOffset, stSpan.uiLength, u8{1});
        uiBefore = stSpan.uiOffset;
    }
    return std::find(vecTold.begin(), vecTold.end(), 0U) == vecTold.end() ? nullptr : "every byte is told of";
}

inline const char *FindsInside(const IMAGE_LAYOUT_S &stLayout, size_t uiStored)
{
    const bool bInside = std::all_of(
        stLayout.vecFindings.begin(), stLayout.vecFindings.end(), [&](const FINDING_S &stFinding) {
            return stFinding.uiOffset <= uiStored && !FindingText(stFinding).empty();
        });
    return bInside ? nullptr : "findings are inside the image, and in words";
}

// What is told to be sound the library decodes.
inline const char *SoundIsDecoded(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout, bool bFixedSlots)
{
    if (!stLayout.IsSound() || IsHardwareBlock(stImage.vecBytes, stImage.uiStored)) {
        return nullptr;
    }
    Record stRecord;
    return DecodeImage(stImage, bFixedSlots, stRecord) == FRU_OK ? nullptr : "a sound image is decoded";
}

// What is still read of an image is inside it and counted; of a sound one nothing is in doubt.
inline const char *ReadsLeniently(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout, bool bFixedSlots)
{
    const LENIENT_VIEW_S stView = ViewLeniently(stImage, bFixedSlots);
    size_t uiFields = 0;
    for (const LENIENT_AREA_S &stArea : stView.vecAreas) {
        for (const LENIENT_FIELD_S &stField : stArea.vecFields) {
            uiFields++;
            if (stField.uiOffset >= stImage.uiStored) {
                return "what is still read is inside the image";
            }
        }
    }
    if (uiFields != stView.uiGood + stView.uiDoubtful) {
        return "every field that is still read is good or doubtful";
    }
    return stLayout.IsSound() && (stView.uiDoubtful != 0U || !stView.vecRemarks.empty())
               ? "nothing of a sound image is in doubt"
               : nullptr;
}

} // namespace promise

#endif
