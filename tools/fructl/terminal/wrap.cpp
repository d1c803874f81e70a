// SPDX-License-Identifier: Apache-2.0
#include "terminal/wrap.h"

#include <cstdlib>
#include <sys/ioctl.h>

#include "terminal/console.h"
#include "toolkit/base/text.h"

namespace {

constexpr u32 WIDTH_MAX = 10000U;

// Characters that fill two columns: those of East Asia.
bool IsWide(u32 uiCharacter)
{
    constexpr struct
    {
        u32 uiFirst;
        u32 uiLast;
    } WIDE[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFE30, 0xFE6F},
                {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
    for (const auto &stRange : WIDE) {
        if (uiCharacter >= stRange.uiFirst && uiCharacter <= stRange.uiLast) {
            return true;
        }
    }
    return false;
}

// One character of UTF-8, or one sequence that colours.
struct STEP_S
{
    size_t uiBytes;
    size_t uiColumns;
};

STEP_S StepAt(const std::string &strText, size_t i)
{
    if (strText[i] == '\x1b') {
        const size_t uiEnd = strText.find('m', i);
        return {uiEnd == std::string::npos ? strText.size() - i : uiEnd + 1U - i, 0U};
    }
    const u8 ucLead = static_cast<u8>(strText[i]);
    const size_t uiBytes = ucLead < 0xC0U ? 1U : ucLead < 0xE0U ? 2U : ucLead < 0xF0U ? 3U : 4U;
    u32 uiCharacter = uiBytes == 1U ? ucLead : ucLead & (0xFFU >> (uiBytes + 1U));
    for (size_t j = 1U; j < uiBytes && i + j < strText.size(); j++) {
        uiCharacter = uiCharacter << 6U | (static_cast<u8>(strText[i + j]) & 0x3FU);
    }
    return {std::min(uiBytes, strText.size() - i), IsWide(uiCharacter) ? 2U : 1U};
}

} // namespace

size_t TerminalWidth()
{
    const char *pcColumns = getenv("COLUMNS");
    const std::optional<u32> optColumns = ParseNumber(pcColumns == nullptr ? "" : pcColumns, WIDTH_MAX);
    if (optColumns.value_or(0U) != 0U) {
        return *optColumns;
    }
    winsize stSize = {};
    return ioctl(OutputFd(), TIOCGWINSZ, &stSize) == 0 ? stSize.ws_col : 0U;
}

size_t DisplayWidth(const std::string &strText)
{
    size_t uiColumns = 0;
    for (size_t i = 0; i < strText.size();) {
        const STEP_S stStep = StepAt(strText, i);
        uiColumns += stStep.uiColumns;
        i += stStep.uiBytes;
    }
    return uiColumns;
}

std::vector<std::string> WrapText(const std::string &strText, size_t uiWidth)
{
    std::vector<std::string> vecLines;
    std::string strLine;
    size_t uiColumns = 0;
    size_t uiBlank = std::string::npos; // the last one in the line
    for (size_t i = 0; i < strText.size();) {
        const STEP_S stStep = StepAt(strText, i);
        if (uiWidth != 0U && uiColumns + stStep.uiColumns > uiWidth && !strLine.empty()) {
            std::string strRest;
            if (strText[i] != ' ' && uiBlank != std::string::npos) {
                strRest = strLine.substr(uiBlank + 1U);
                strLine.erase(uiBlank);
            }
            vecLines.push_back(strLine);
            strLine = strRest;
            uiColumns = DisplayWidth(strLine);
            uiBlank = std::string::npos;
            if (strText[i] == ' ') {
                i++;
                continue;
            }
        }
        uiBlank = strText[i] == ' ' && !strLine.empty() ? strLine.size() : uiBlank;
        strLine += strText.substr(i, stStep.uiBytes);
        uiColumns += stStep.uiColumns;
        i += stStep.uiBytes;
    }
    vecLines.push_back(strLine);
    return vecLines;
}
