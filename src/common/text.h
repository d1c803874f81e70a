// SPDX-License-Identifier: Apache-2.0
// Texts in members of fixed size, which come from the database or from other processes: one that fills its
// member has no NUL. And the library's own, one behind the other.
#ifndef FRU_COMMON_TEXT_H
#define FRU_COMMON_TEXT_H

#include "lib_fru_types.h"

// At most uiSize characters of the member, and a NUL: pcDest holds uiSize + 1.
void FRU_CopyText(char *pcDest, const char *pcMember, size_t uiSize);

// Whether the member holds a NUL; nothing beyond uiSize is read.
bool FRU_IsTerminated(const char *pcMember, size_t uiSize);

// The text number uiIndex, from 0 on, of those that lie one behind the other.
constexpr const char *FRU_NthText(const char *pcTexts, u32 uiIndex)
{
    for (; uiIndex != 0U; --uiIndex) {
        while (*pcTexts++ != '\0') {
        }
    }
    return pcTexts;
}

// How many there are when each has its own NUL in the literal; the literal brings one more.
template <size_t uiSize> constexpr u32 FRU_CountTexts(const char (&acTexts)[uiSize])
{
    u32 uiCount = 0;
    for (size_t i = 0; i + 1U < uiSize; ++i) {
        uiCount += acTexts[i] == '\0' ? 1U : 0U;
    }
    return uiCount;
}

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
