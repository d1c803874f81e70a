// SPDX-License-Identifier: Apache-2.0
// Whether an image is in order: what 'verify' says, and what every command goes by that takes or mends one.
#ifndef TOOLKIT_CONTROLLER_VERDICT_H
#define TOOLKIT_CONTROLLER_VERDICT_H

#include <optional>
#include <string>

#include "toolkit/controller/device.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

struct VERDICT_S
{
    IMAGE_LAYOUT_S stLayout;
    std::string strRefusal; // why the library refuses it though its layout is sound; empty: it does not

    bool IsGood() const
    {
        return strRefusal.empty() && stLayout.IsSound();
    }
    std::string Why() const; // the first thing that is wrong; empty: nothing
};

// By its layout and, but for a hardware block, by the library's decoder.
VERDICT_S VerdictOn(const IMAGE_S &stImage, bool bFixedSlots);

// Where the cached image, that readers are served, differs from the EEPROM's; nothing when they say the same, or
// when readers are not served from the cache or have no other place.
std::optional<size_t> CacheDifference(const DEVICE_S &stDevice, const IMAGE_S &stEeprom);

#endif
