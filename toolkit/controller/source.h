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

// What a reader shows of a target: a file's image, or a device's from the source that was chosen; none: from
// its home. Fails with why it cannot be read, and where there is another.
IMAGE_S ReadShown(const TARGET_S &stTarget, std::optional<Source> optSource);

// Decodes it; fails with what is wrong where.
void DecodeShown(const TARGET_S &stTarget, const IMAGE_S &stImage, Record &stRecord);

// That the EEPROM of a device and the cached image, which is served to others, are not the same; nothing when
// they are, and where there is only one of them.
std::optional<std::string> WhySourcesDiffer(const TARGET_S &stTarget);

// Decodes a target as the library's other callers see it: a device through the cache where that is trusted, a
// file's image as it is. A status code of the library.
u32 DecodeStatus(const TARGET_S &stTarget, Record &stRecord);

// The same; fails with what is wrong where.
void DecodeTarget(const TARGET_S &stTarget, Record &stRecord);

#endif
