// SPDX-License-Identifier: Apache-2.0
// Texts made fit for quoting.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include <cstring>

#include "lib_fru_codec.h"

namespace {

// The character that stands for this one behind a backslash; 0: it stands for itself.
char EscapeOf(char cChar)
{
    switch (cChar) {
    case '\'':
    case '\\':
        return cChar;
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    default:
        return '\0';
    }
}

char *Duplicate(const char *pcText)
{
    return static_cast<char *>(FRU_COPY_IN(pcText, strlen(pcText) + 1U, "FRU_ANALYZER_Escape"));
}

} // namespace

char *FRU_ANALYZER_Escape(const char *pcStr)
{
    FRU_REQUIRE(pcStr, nullptr);
    const size_t uiLength = strlen(pcStr);
    if (uiLength == 0U) {
        char *pcEmpty = Duplicate(pcStr);
        if (pcEmpty == nullptr) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Memory allocation failing!");
        }
        return pcEmpty;
    }
    // Every character may need a backslash, and the terminator needs its own.
    const FRU_TEXT upEscaped(static_cast<char *>(FRU_ZALLOC(2U * uiLength + 1U)));
    if (upEscaped == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Memory BkStr allocation failing!");
        return nullptr;
    }
    char *pcOut = upEscaped.get();
    for (const char *pcIn = pcStr; *pcIn != '\0'; ++pcIn) {
        const char cEscape = EscapeOf(*pcIn);
        if (cEscape != '\0') {
            *pcOut++ = '\\';
        }
        *pcOut++ = cEscape != '\0' ? cEscape : *pcIn;
    }
    return Duplicate(upEscaped.get());
}
