// SPDX-License-Identifier: Apache-2.0
// The identity of a server from one board's image to another's: what is the server's goes over, what is the
// board's stays.
#ifndef TOOLKIT_EDIT_TRANSPLANT_H
#define TOOLKIT_EDIT_TRANSPLANT_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/image_parts.h"

struct TRANSPLANT_S
{
    std::vector<u8> vecAfter;
    std::vector<std::string> vecMoved; // "chassis info area", "System Unique ID"
    std::vector<std::string> vecNotes; // what the one has and the other not
};

// Chassis and product areas as they are, byte for byte, and of the MultiRecords the system's name and unique ID.
// What the new board says of them is replaced; what only it says stays. Fails when the old one says nothing of
// the server, or when what it says is damaged.
TRANSPLANT_S Transplant(const std::vector<u8> &vecFrom, const std::vector<u8> &vecTo, const ROOM_S &stRoom);

#endif
