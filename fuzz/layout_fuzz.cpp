// SPDX-License-Identifier: Apache-2.0
// Fuzzes the layout walker: no image that the library refuses is told to be sound, every byte is told of exactly where it
// is, and no finding points outside. Input: how, image.
#include "fuzz.h"
#include "support/layout_promises.h"

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
    for (const char *pcBroken :
         {promise::TellsOfEveryByte(stLayout, uiStored), promise::FindsInside(stLayout, uiStored),
          promise::SoundIsDecoded(stImage, stLayout, bFixedSlots),
          promise::ReadsLeniently(stImage, stLayout, bFixedSlots)}) {
        fuzz::Require(pcBroken == nullptr);
    }
    return 0;
}
