// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/image_file.h"

#include <algorithm>
#include <filesystem>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/image/erased.h"

namespace {

bool IsBlank(char cChar)
{
    return cChar == ' ' || cChar == '\t' || cChar == '\r';
}

// The words of a line, its comment left out.
std::vector<std::string> Words(const std::string &strLine)
{
    std::vector<std::string> vecWords;
    bool bInWord = false;
    for (const char cChar : strLine) {
        if (cChar == '#') {
            break;
        }
        if (IsBlank(cChar)) {
            bInWord = false;
            continue;
        }
        if (!bInWord) {
            vecWords.emplace_back();
        }
        bInWord = true;
        vecWords.back() += cChar;
    }
    return vecWords;
}

void TakeOffset(const std::string &strWord, const std::string &strWhere, std::vector<u8> &vecBytes)
{
    std::string strDigits = strWord.substr(0, strWord.size() - 1U);
    if (strDigits.compare(0, 2, "0x") != 0 && strDigits.compare(0, 2, "0X") != 0) {
        strDigits.insert(0, "0x");
    }
    const std::optional<u32> optOffset = ParseNumber(strDigits, IMAGE_FILE_MAX);
    if (!optOffset.has_value()) {
        FailRefused(strWhere + "'" + EscapeText(strWord) +
                    "' is not an offset; accepted: hex digits and a colon, such as 0040:");
    }
    if (*optOffset < vecBytes.size()) {
        FailRefused(
            strWhere +
            Format("offset 0x%x lies behind the bytes before it, which end at 0x%zx; offsets only grow",
                   *optOffset, vecBytes.size()));
    }
    vecBytes.resize(*optOffset, ERASED); // a gap is erased EEPROM
}

} // namespace

std::vector<u8> ParseHexText(const std::string &strText, const std::string &strName)
{
    std::vector<u8> vecBytes;
    size_t uiLine = 0;
    size_t uiStart = 0;
    while (uiStart < strText.size()) {
        const size_t uiEnd = std::min(strText.find('\n', uiStart), strText.size());
        const std::vector<std::string> vecWords = Words(strText.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 1U;
        uiLine++;
        const std::string strWhere = strName + ":" + std::to_string(uiLine) + ": ";
        for (size_t i = 0; i < vecWords.size(); i++) {
            if (i == 0U && vecWords[i].back() == ':') {
                TakeOffset(vecWords[i], strWhere, vecBytes);
                continue;
            }
            const std::optional<u32> optByte = ParseNumber("0x" + vecWords[i], 0xFFU);
            if (vecWords[i].size() != 2U || !optByte.has_value()) {
                FailRefused(
                    strWhere + "'" + EscapeText(vecWords[i]) +
                    "' is not a byte; accepted: two hex digits, 'OFFSET:' at the line's start, '# comment'");
            }
            vecBytes.push_back(static_cast<u8>(*optByte));
        }
    }
    return vecBytes;
}

// A FRU image begins with a byte that is no text, so what is text through and through is hex.
static bool IsHexText(const std::vector<u8> &vecBytes)
{
    return !vecBytes.empty() && std::all_of(vecBytes.begin(), vecBytes.end(), [](u8 ucByte) {
        return (ucByte >= 0x20U && ucByte < 0x7FU) || ucByte == '\n' || ucByte == '\r' || ucByte == '\t';
    });
}

std::vector<u8> ReadImageFile(const std::string &strPath)
{
    std::vector<u8> vecBytes = ReadNamedFile(strPath);
    if (IsStream(strPath) ? IsHexText(vecBytes) : std::filesystem::path(strPath).extension() == ".hex") {
        return ParseHexText(std::string(vecBytes.begin(), vecBytes.end()), NamedFileTitle(strPath));
    }
    return vecBytes;
}

std::string HexText(const std::vector<u8> &vecBytes)
{
    constexpr size_t LINE = 16U;
    std::string strOut;
    for (size_t i = 0; i < vecBytes.size(); i += LINE) {
        strOut +=
            Format("%04zx: ", i) + HexBytes(vecBytes.data() + i, std::min(LINE, vecBytes.size() - i)) + "\n";
    }
    return strOut;
}
