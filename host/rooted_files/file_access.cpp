// SPDX-License-Identifier: Apache-2.0
// The library's two file calls on the desk: the controller's root goes in front of the path.
#include "common/file_access.h"

#include <climits>
#include <unistd.h>

#include "bmcfru_host.h"

FILE *FRU_OpenFile(const char *pcPath, const char *pcMode)
{
    return BMCHOST_OpenFile(pcPath, pcMode);
}

bool FRU_FileExists(const char *pcPath)
{
    char acPath[PATH_MAX];
    return BMCHOST_ResolvePath(pcPath, sizeof(acPath), acPath) == 0U && access(acPath, F_OK) == 0;
}
