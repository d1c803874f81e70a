// SPDX-License-Identifier: Apache-2.0
// The bytes of one image, and where they come from.
#ifndef TOOLKIT_IMAGE_IMAGE_H
#define TOOLKIT_IMAGE_IMAGE_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/layout.h"

enum class Source
{
    Eeprom,
    Cache,
    Stored, // the file on the controller that restores a damaged EEPROM
    File
};

// "EEPROM", "cache", "stored image" or "file".
const char *SourceName(Source enSource);

struct IMAGE_S
{
    Source enSource;
    std::vector<u8> vecBytes;
    size_t uiStored; // bytes that are really there; after them a file has 8 bytes of 0xFF, as a larger EEPROM
                     // would
};

IMAGE_LAYOUT_S LayoutOf(const IMAGE_S &stImage, bool bFixedSlots);

// The first byte in which two images of one FRU differ. Bytes behind the last area of sound images do not
// count: there the library fills the cached image with zeros, and leaves the EEPROM as it was.
std::optional<size_t> FirstDifference(const IMAGE_S &stLeft, const IMAGE_S &stRight, bool bFixedSlots);

// A file's bytes as an image: with what would stand behind them in a larger EEPROM.
IMAGE_S FileImage(std::vector<u8> vecBytes);

// A file's image.
IMAGE_S ReadImage(const std::string &strFile);

#endif
