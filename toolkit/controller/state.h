// SPDX-License-Identifier: Apache-2.0
// In what state a device's images are.
#ifndef TOOLKIT_CONTROLLER_STATE_H
#define TOOLKIT_CONTROLLER_STATE_H

#include <vector>

#include "toolkit/controller/device.h"

enum class ImageState
{
    Sound,
    Damaged,
    Erased,
    Unreadable,
    NoRecord // the device table names the device, but there is no record of it
};

enum class CacheState
{
    None,
    Same,
    Differs,
    NotTrusted,
    Only // the device has no other image
};

// "sound", "not trusted"; and all of them.
const char *ImageStateName(ImageState enState);
const char *CacheStateName(CacheState enState);
const std::vector<const char *> &ImageStateNames();
const std::vector<const char *> &CacheStateNames();

struct STATE_S
{
    ImageState enImage;
    CacheState enCache;
};
STATE_S StateOf(const DEVICE_S &stDevice);

#endif
