// SPDX-License-Identifier: Apache-2.0
// Files read whole, and written whole or not at all.
#ifndef TOOLKIT_BASE_FILE_H
#define TOOLKIT_BASE_FILE_H

#include <functional>
#include <string>
#include <vector>

#include "files/files.h"
#include "lib_fru_types.h"

// Nothing larger is a FRU image: offsets and lengths in an image reach little beyond 4 KiB.
constexpr size_t IMAGE_FILE_MAX = 1024U * 1024U;

// A file's bytes as they are. Fails when it is missing, unreadable or longer than IMAGE_FILE_MAX.
std::vector<u8> ReadFileBytes(const files::PLACE_S &stPlace);

// Writes a file whole or not at all (a new file takes the old one's place and has its permission bits).
// fnCheck is given the new file's path before that and may fail; then the old file stays.
void WriteFileBytes(const files::PLACE_S &stPlace, const std::vector<u8> &vecBytes,
                    const std::function<void(const std::string &strNew)> &fnCheck = {});

// mkdir -p for the directory that the path's file lies in.
void MakeParentDirectory(const files::PLACE_S &stPlace);

#endif
