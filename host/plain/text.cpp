// SPDX-License-Identifier: Apache-2.0
// Bounded text, and numbers in text.
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "plain/plain.h"

namespace host {

std::optional<u32> ToNumber(const char *pcText, u32 uiMax)
{
    const bool bHex = pcText[0] == '0' && (pcText[1] == 'x' || pcText[1] == 'X');
    const char *pcDigits = bHex ? pcText + 2 : pcText;
    const char *pcAllowed = bHex ? "0123456789abcdefABCDEF" : "0123456789";
    if (*pcDigits == '\0' || pcDigits[strspn(pcDigits, pcAllowed)] != '\0') {
        return std::nullopt; // strtoull() alone would take blanks, signs and what follows
    }
    errno = 0;
    const unsigned long long ullValue = strtoull(pcDigits, nullptr, bHex ? 16 : 10);
    return errno == 0 && ullValue <= uiMax ? std::optional<u32>(static_cast<u32>(ullValue)) : std::nullopt;
}

} // namespace host

extern "C" {

i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...)
{
    if (pcBuf == nullptr || uiSize == 0U) {
        return 0;
    }
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    const int iWanted = vsnprintf(pcBuf, uiSize, pcFormat, vaArgs);
    va_end(vaArgs);
    if (iWanted < 0) {
        *pcBuf = '\0';
        return 0;
    }
    return static_cast<u32>(iWanted) < uiSize ? iWanted : static_cast<i32>(uiSize - 1U);
}

u32 BMC_Strlcpy(char *pcDest, const char *pcSrc, u32 uiSize)
{
    const size_t uiLength = pcSrc == nullptr ? 0U : strlen(pcSrc);
    if (uiSize != 0U) {
        const size_t uiCopied = uiLength < uiSize ? uiLength : uiSize - 1U;
        if (uiCopied != 0U) {
            (void)memcpy(pcDest, pcSrc, uiCopied);
        }
        pcDest[uiCopied] = '\0';
    }
    return static_cast<u32>(uiLength);
}

u32 BMC_Strlcat(char *pcDest, const char *pcSrc, u32 uiCount)
{
    const size_t uiLength = strlen(pcDest);
    const size_t uiAdded = pcSrc == nullptr ? 0U : strnlen(pcSrc, uiCount);
    if (uiAdded != 0U) {
        (void)memcpy(pcDest + uiLength, pcSrc, uiAdded);
    }
    pcDest[uiLength + uiAdded] = '\0';
    return static_cast<u32>(uiLength + uiAdded);
}

} // extern "C"
