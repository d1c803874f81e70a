// SPDX-License-Identifier: Apache-2.0
// The file that mirrors the product serial number of the main FRU, and its copy for the network services.
#ifndef TOOLKIT_CONTROLLER_SERIAL_FILE_H
#define TOOLKIT_CONTROLLER_SERIAL_FILE_H

#include <optional>
#include <string>

#include "lib_fru_types.h"

constexpr const char *SERIAL_FILE = "/mnt/sdmmc0p4/board/ProductSerialNumber";
constexpr const char *SERIAL_COPY = "/var/network/ProductSerialNumber";

// A text or why there is none.
struct SERIAL_TEXT_S
{
    std::string strText; // raw
    u32 uiStatus;
    std::string strWhy;
};

// As the library reads it.
SERIAL_TEXT_S ReadSerialFile();

// Missing or unreadable: for its readers that is the same.
std::optional<std::string> ReadSerialCopy();

// What the file is to mirror: the product area's serial number.
SERIAL_TEXT_S ReadProductSerialNumber();

#endif
