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

// What the user names as a file to be read: a file as above, "-" for standard input, a pipe or a character device,
// also by a name such as /dev/fd/63. What comes from a stream is read once and kept, for it cannot be read again.
constexpr const char *STANDARD_INPUT = "-";
std::vector<u8> ReadNamedFile(const std::string &strPath);
// Whether it is no file that can be sought in: nothing in its name tells what it holds.
bool IsStream(const std::string &strPath);
// "standard input", or the path, safe to print.
std::string NamedFileTitle(const std::string &strPath);

// Writes a file whole or not at all: a new one takes the old one's place, or that of what a link of ours leads
// to, and has its permission bits. fnCheck is given the new file's path before that and may fail; then the old
// file stays. A pipe or a character device that the user himself has named (a place without a base) is never
// replaced: the bytes go into it, unchecked. Anything else that is no regular file is refused.
void WriteFileBytes(const files::PLACE_S &stPlace, const std::vector<u8> &vecBytes,
                    const std::function<void(const std::string &strNew)> &fnCheck = {});

enum class PathKind
{
    Absent,
    File,
    Stream, // a pipe or a character device
    Other
};
PathKind KindOf(const files::PLACE_S &stPlace);

// mkdir -p for the directory that the path's file lies in.
void MakeParentDirectory(const files::PLACE_S &stPlace);

#endif
