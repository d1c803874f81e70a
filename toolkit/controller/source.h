// SPDX-License-Identifier: Apache-2.0
// The one door to a device's images: what its EEPROM, its cached image or its stored image holds now.
#ifndef TOOLKIT_CONTROLLER_SOURCE_H
#define TOOLKIT_CONTROLLER_SOURCE_H

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

// Whole, exactly the FRU's size (a stored image: the file's). Fails with why it cannot be read.
IMAGE_S ReadSource(const DEVICE_S &stDevice, Source enSource);

// The same; nothing when it cannot be read.
std::optional<IMAGE_S> FindSource(const DEVICE_S &stDevice, Source enSource);

// Where a device's image lives first of all: in its EEPROM, or in the cache when it has no other.
Source HomeOf(const DEVICE_S &stDevice);

// A file's image, or a device's from its home.
IMAGE_S ReadTarget(const TARGET_S &stTarget);

// True when reads may be served from the cache.
bool IsCacheTrusted(const DEVICE_S &stDevice);

// Decodes a target as the library's other callers see it: a device through the cache where that is trusted, a
// file's image as it is. A status code of the library.
u32 DecodeStatus(const TARGET_S &stTarget, Record &stRecord);

// The same; fails with what is wrong where.
void DecodeTarget(const TARGET_S &stTarget, Record &stRecord);

#endif
