// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/image.h"

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image_file.h"

namespace {

constexpr size_t FILE_PADDING = 8U;

// Up to the end of the last area, when the image is sound; else all.
size_t UsedBytes(const IMAGE_S &stImage, bool bFixedSlots)
{
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stImage, bFixedSlots);
    size_t uiEnd = 0;
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        uiEnd = stSpan.stField.enArea == Area::Unused
                    ? uiEnd
                    : std::max(uiEnd, size_t{stSpan.uiOffset} + stSpan.uiLength);
    }
    return stLayout.IsSound() ? uiEnd : stImage.vecBytes.size();
}

} // namespace

const char *SourceName(Source enSource)
{
    static const char *const apcNames[] = {"EEPROM", "cache", "stored image", "file"};
    return apcNames[static_cast<size_t>(enSource)];
}

IMAGE_LAYOUT_S LayoutOf(const IMAGE_S &stImage, bool bFixedSlots)
{
    return WalkImage(stImage.vecBytes, stImage.uiStored, bFixedSlots);
}

std::optional<size_t> FirstDifference(const IMAGE_S &stLeft, const IMAGE_S &stRight, bool bFixedSlots)
{
    const size_t uiEnd = std::max(UsedBytes(stLeft, bFixedSlots), UsedBytes(stRight, bFixedSlots));
    for (size_t i = 0; i < uiEnd; i++) {
        if (stLeft.vecBytes[i] != stRight.vecBytes[i]) {
            return i;
        }
    }
    return std::nullopt;
}

IMAGE_S FileImage(std::vector<u8> vecBytes)
{
    const size_t uiStored = vecBytes.size();
    vecBytes.resize(uiStored + FILE_PADDING, ERASED);
    return {Source::File, std::move(vecBytes), uiStored};
}

IMAGE_S ReadImage(const std::string &strFile)
{
    const std::vector<u8> vecBytes = ReadImageFile(strFile);
    if (vecBytes.empty()) {
        Fail(ErrorClass::Damaged, "the image file " + NamedFileTitle(strFile) + " is empty");
    }
    return FileImage(vecBytes);
}
