// SPDX-License-Identifier: Apache-2.0
// Texts in members of fixed size. They come from the database or from other processes, and one that fills its
// member has no NUL.
#ifndef FRU_COMMON_TEXT_H
#define FRU_COMMON_TEXT_H

#include "lib_fru_types.h"

// At most uiSize characters of the member, and a NUL: pcDest holds uiSize + 1.
void FRU_CopyText(char *pcDest, const char *pcMember, size_t uiSize);

// Whether the member holds a NUL; nothing beyond uiSize is read.
bool FRU_IsTerminated(const char *pcMember, size_t uiSize);

template <size_t uiSize> struct FRU_TEXT_OF_S
{
    char acText[uiSize + 1U];
};

// A member as a text that can be printed, whatever is behind it.
template <size_t uiSize> FRU_TEXT_OF_S<uiSize> FRU_TextOf(const char (&acMember)[uiSize])
{
    FRU_TEXT_OF_S<uiSize> stText;
    FRU_CopyText(stText.acText, acMember, uiSize);
    return stText;
}

#endif
