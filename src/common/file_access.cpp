// SPDX-License-Identifier: Apache-2.0
#include "common/file_access.h"

#include <unistd.h>

FILE *FRU_OpenFile(const char *pcPath, const char *pcMode)
{
    return fopen(pcPath, pcMode);
}

bool FRU_FileExists(const char *pcPath)
{
    return access(pcPath, F_OK) == 0;
}
