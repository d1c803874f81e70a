// SPDX-License-Identifier: Apache-2.0
#include "common/text.h"

#include <cstring>

void FRU_CopyText(char *pcDest, const char *pcMember, size_t uiSize)
{
    const size_t uiLength = strnlen(pcMember, uiSize);
    (void)memcpy(pcDest, pcMember, uiLength);
    pcDest[uiLength] = '\0';
}

bool FRU_IsTerminated(const char *pcMember, size_t uiSize)
{
    return memchr(pcMember, '\0', uiSize) != nullptr;
}
