// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/image_part.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/erased.h"

namespace {

constexpr size_t BEHIND = 8U; // bytes of 0xff behind a file's, as in a larger EEPROM

} // namespace

LOCATED_S PartFrom(const IMAGE_S &stWhole, u32 uiOffset)
{
    if (uiOffset >= stWhole.uiStored) {
        FailUsage(Format("--offset 0x%x lies behind the image's %zu bytes", uiOffset, stWhole.uiStored));
    }
    LOCATED_S stLocated = {{stWhole.enSource, {}, stWhole.uiStored - uiOffset}, uiOffset};
    std::vector<u8> &vecBytes = stLocated.stImage.vecBytes;
    vecBytes.assign(stWhole.vecBytes.begin() + uiOffset, stWhole.vecBytes.end());
    if (stWhole.enSource == Source::File) {
        vecBytes.resize(stLocated.stImage.uiStored + BEHIND, ERASED);
    }
    return stLocated;
}
