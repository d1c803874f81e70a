// SPDX-License-Identifier: Apache-2.0
// Bytes that are no FRU image, by their names; and FRU images that begin somewhere in other bytes.
#ifndef TOOLKIT_IMAGE_FOREIGN_H
#define TOOLKIT_IMAGE_FOREIGN_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

// "blank: every byte is 0x00", "the SPD of a DDR4 memory module"; empty: nothing that is known. The first
// uiStored bytes are looked at.
std::string ForeignName(const std::vector<u8> &vecBytes, size_t uiStored);

// Where images begin: a header with a good checksum, and an area behind it that is in order.
std::vector<u32> FindImages(const std::vector<u8> &vecBytes, size_t uiStored);

// Whether one begins with the first byte, as far as its header tells.
bool BeginsWithHeader(const std::vector<u8> &vecBytes, size_t uiStored);

#endif
