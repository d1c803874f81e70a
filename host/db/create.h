// SPDX-License-Identifier: Apache-2.0
// A new database file.
#ifndef BMCHOST_DB_CREATE_H
#define BMCHOST_DB_CREATE_H

#include "db/fault.h"
#include "files/files.h"

namespace db {

constexpr int g_iApplicationId = 0x42465255; // "BFRU"; file(1) and others tell by it what the file is
constexpr int g_iVersion = 1;
constexpr char g_acSchema[] = "CREATE TABLE record (key INTEGER PRIMARY KEY, data BLOB NOT NULL) STRICT";

// The directory part of a path that has one.
std::string DirectoryOf(const std::string &strPath);

// Makes the file, empty, unless it is there when its turn comes.
FAULT_S CreateFile(const files::PLACE_S &stPlace);

} // namespace db

#endif
