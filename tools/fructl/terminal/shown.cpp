// SPDX-License-Identifier: Apache-2.0
// Letters beyond ASCII, where the terminal has them.
#include <cstdlib>
#include <unistd.h>

#include "terminal/console.h"
#include "toolkit/base/text.h"

namespace {

// The locale's name tells it; a pipe or a file gets escapes whatever the locale, so that its bytes do not
// depend on it.
bool ShowsUtf8()
{
    if (isatty(OutputFd()) != 1) {
        return false;
    }
    for (const char *pcVariable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *pcValue = getenv(pcVariable);
        if (pcValue != nullptr && pcValue[0] != '\0') {
            const std::string strValue = pcValue;
            return strValue.find("UTF-8") != std::string::npos || strValue.find("utf8") != std::string::npos;
        }
    }
    return false;
}

} // namespace

std::string ShownText(std::string_view strBytes)
{
    if (!ShowsUtf8()) {
        return EscapeText(strBytes);
    }
    std::string strOut;
    for (const char cByte : strBytes) {
        // 0x80 to 0x9f are controls in Latin-1, and 0xad is seen by nobody.
        const u8 ucByte = static_cast<u8>(cByte);
        const bool bLetter = ucByte >= 0xA0U && ucByte != 0xADU;
        strOut += bLetter ? Latin1ToUtf8({&cByte, 1U}) : EscapeText({&cByte, 1U});
    }
    return strOut;
}

std::string ShownUtf8(const std::string &strText)
{
    if (ShowsUtf8()) {
        return strText;
    }
    std::string strOut;
    for (const char cByte : strText) {
        const u8 ucByte = static_cast<u8>(cByte);
        strOut += ucByte < 0x80U ? std::string(1U, cByte) : Format("\\x%02x", ucByte);
    }
    return strOut;
}
