// SPDX-License-Identifier: Apache-2.0
// Inside the room: a name in an open directory, which nobody can swap under us.
#ifndef BMCFRU_FILES_DIRECTORY_H
#define BMCFRU_FILES_DIRECTORY_H

#include <vector>

#include "files/files.h"

namespace files {

struct SPOT_S
{
    std::string strBase; // empty for a plain path
    Fd stDirectory;      // O_PATH
    std::string strName;
};

// Opens the directory that the last component lies in.
int FindDirectory(const PLACE_S &stPlace, SPOT_S *pstSpot);
// Goes on to where the name leads while it is a link of ours.
int FollowLinks(SPOT_S *pstSpot);
int OpenAt(SPOT_S *pstSpot, int iFlags, Links enLinks, Fd *pstFd, struct stat *pstStat, mode_t uiMode);
// A file that root makes in somebody's directory, or anywhere below his base, belongs to him, as if he had made
// it himself.
void GiveToOwnerOf(const std::string &strBase, const Fd &stDirectory, const Fd &stFile);
// The path's components; EACCES for one that climbs.
int Split(const std::string &strPath, std::vector<std::string> *pvecParts);
// Flushes an O_PATH directory.
int FlushDirectory(const Fd &stDirectory);

} // namespace files

#endif
