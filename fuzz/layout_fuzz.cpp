// SPDX-License-Identifier: Apache-2.0
// Fuzzes the layout walker: no image that the library refuses is told to be sound, every byte is told of exactly where it
// is, and no finding points outside. Input: how, image.
#include "fuzz.h"
#include "toolkit/image/hardware_block.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout_json.h"
#include "toolkit/image/record.h"

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiHow = stInput.Byte();
    fuzz::BYTES vecBytes = stInput.Rest();
    if (vecBytes.empty()) {
        return 0;
    }
    if ((uiHow & 1U) != 0U) {
        fuzz::Seal(vecBytes);
    }
    const bool bFixedSlots = (uiHow & 2U) != 0U;
    const size_t uiStored = vecBytes.size();
    const IMAGE_S stImage =
        (uiHow & 4U) != 0U ? IMAGE_S{Source::Eeprom, vecBytes, uiStored} : FileImage(vecBytes);
    const bool bPass = (uiHow & 8U) != 0U;
    const IMAGE_LAYOUT_S stLayout = bPass ? WalkImage(stImage.vecBytes, uiStored, bFixedSlots, Damage::Passed)
                                          : LayoutOf(stImage, bFixedSlots);
    u32 uiBefore = 0;
    fuzz::BYTES vecTold(uiStored);
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        fuzz::Require(stSpan.uiOffset >= uiBefore && size_t{stSpan.uiOffset} + stSpan.uiLength <= uiStored);
        std::fill_n(vecTold.begin() + stSpan.uiOffset, stSpan.uiLength, u8{1});
        uiBefore = stSpan.uiOffset;
    }
    fuzz::Require(std::find(vecTold.begin(), vecTold.end(), 0U) == vecTold.end());
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        fuzz::Require(stFinding.uiOffset <= uiStored && !FindingText(stFinding).empty());
    }
    Record stRecord;
    fuzz::Require(IsHardwareBlock(stImage.vecBytes, uiStored) || !stLayout.IsSound() ||
                  DecodeImage(stImage, bFixedSlots, stRecord) == FRU_OK);
    return 0;
}
