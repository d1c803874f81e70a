// SPDX-License-Identifier: Apache-2.0
// Mending checksums, and nothing else.
#ifndef TOOLKIT_EDIT_REPAIR_H
#define TOOLKIT_EDIT_REPAIR_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

struct REPAIR_S
{
    std::vector<u8> vecAfter;
    std::vector<std::string> vecMended; // whose checksum: "common header", "board info area", "record 3"
    std::vector<std::string> vecLeft; // wrong too, but of what it guards more than the checksum seems damaged
};

// A checksum is made anew only where what it guards reads as it should: then it alone can be wrong.
REPAIR_S RepairChecksums(const std::vector<u8> &vecImage);

#endif
