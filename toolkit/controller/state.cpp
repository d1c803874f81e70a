// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/state.h"

#include "toolkit/controller/source.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

namespace {

CacheState CacheStateOf(const DEVICE_S &stDevice, const std::optional<IMAGE_S> &optImage,
                        const std::optional<IMAGE_S> &optCached)
{
    if (stDevice.IsDatabaseOnly()) {
        return CacheState::Only;
    }
    if (!optCached.has_value()) {
        return CacheState::None;
    }
    if (!IsCacheTrusted(stDevice)) {
        return CacheState::NotTrusted;
    }
    const bool bSame =
        optImage.has_value() && !FirstDifference(*optImage, *optCached, stDevice.HasFixedSlots()).has_value();
    return bSame ? CacheState::Same : CacheState::Differs;
}

} // namespace

const std::vector<const char *> &ImageStateNames()
{
    static const std::vector<const char *> vecNames = {"sound", "damaged", "erased", "unreadable",
                                                       "no record"};
    return vecNames;
}

const std::vector<const char *> &CacheStateNames()
{
    static const std::vector<const char *> vecNames = {"none", "same", "differs", "not trusted", "only"};
    return vecNames;
}

const char *ImageStateName(ImageState enState)
{
    return ImageStateNames()[static_cast<size_t>(enState)];
}

const char *CacheStateName(CacheState enState)
{
    return CacheStateNames()[static_cast<size_t>(enState)];
}

STATE_S StateOf(const DEVICE_S &stDevice)
{
    if (!stDevice.bHasInfo) {
        return {ImageState::NoRecord, CacheState::None};
    }
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    const std::optional<IMAGE_S> optImage =
        stDevice.IsDatabaseOnly() ? optCached : FindSource(stDevice, Source::Eeprom);
    const CacheState enCache = CacheStateOf(stDevice, optImage, optCached);
    if (!optImage.has_value()) {
        return {ImageState::Unreadable, enCache};
    }
    const IMAGE_LAYOUT_S stLayout = LayoutOf(*optImage, stDevice.HasFixedSlots());
    return {stLayout.bErased     ? ImageState::Erased
            : stLayout.IsSound() ? ImageState::Sound
                                 : ImageState::Damaged,
            enCache};
}
