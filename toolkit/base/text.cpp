// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/text.h"

#include <cstdarg>
#include <cstdio>

std::string Format(const char *pcFormat, ...)
{
    va_list stArgs;
    va_start(stArgs, pcFormat);
    va_list stAgain;
    va_copy(stAgain, stArgs);
    const int iLength = vsnprintf(nullptr, 0, pcFormat, stArgs);
    va_end(stArgs);
    std::string strOut(iLength > 0 ? static_cast<size_t>(iLength) : 0U, '\0');
    if (!strOut.empty()) {
        vsnprintf(strOut.data(), strOut.size() + 1U, pcFormat, stAgain);
    }
    va_end(stAgain);
    return strOut;
}

std::string HexBytes(const u8 *pucBytes, size_t uiLength, const char *pcSeparator)
{
    std::string strOut;
    for (size_t i = 0; i < uiLength; i++) {
        strOut += (i == 0U) ? "" : pcSeparator;
        strOut += Format("%02x", pucBytes[i]);
    }
    return strOut;
}

std::string HexBytes(const std::vector<u8> &vecBytes, const char *pcSeparator)
{
    return HexBytes(vecBytes.data(), vecBytes.size(), pcSeparator);
}

std::string EscapeText(std::string_view strBytes)
{
    std::string strOut;
    for (const char cByte : strBytes) {
        const u8 ucByte = static_cast<u8>(cByte);
        if (ucByte == '\\') {
            strOut += "\\\\";
        } else if (ucByte >= 0x20U && ucByte < 0x7FU) {
            strOut += cByte;
        } else {
            strOut += Format("\\x%02x", ucByte);
        }
    }
    return strOut;
}

std::string PrintableLines(std::string_view strText)
{
    std::string strOut;
    for (const char cByte : strText) {
        const u8 ucByte = static_cast<u8>(cByte);
        const bool bPlain = (ucByte >= 0x20U && ucByte < 0x7FU) || cByte == '\n';
        strOut += bPlain ? std::string(1U, cByte) : Format("\\x%02x", ucByte);
    }
    return strOut;
}

std::string Latin1ToUtf8(std::string_view strBytes)
{
    std::string strOut;
    for (const char cByte : strBytes) {
        const u8 ucByte = static_cast<u8>(cByte);
        if (ucByte < 0x80U) {
            strOut += cByte;
        } else {
            strOut += static_cast<char>(0xC0U | (ucByte >> 6U));
            strOut += static_cast<char>(0x80U | (ucByte & 0x3FU));
        }
    }
    return strOut;
}

std::optional<std::string> Utf8ToLatin1(std::string_view strText)
{
    std::string strOut;
    for (size_t i = 0; i < strText.size(); i++) {
        const u8 ucByte = static_cast<u8>(strText[i]);
        if (ucByte < 0x80U) {
            strOut += strText[i];
            continue;
        }
        const u8 ucNext = i + 1U < strText.size() ? static_cast<u8>(strText[i + 1U]) : 0U;
        if ((ucByte != 0xC2U && ucByte != 0xC3U) || (ucNext & 0xC0U) != 0x80U) {
            return std::nullopt;
        }
        strOut += static_cast<char>((ucByte & 0x03U) << 6U | (ucNext & 0x3FU));
        i++;
    }
    return strOut;
}

std::string Count(size_t uiCount, const char *pcSingular, const char *pcPlural)
{
    const std::string strPlural = (pcPlural != nullptr) ? pcPlural : std::string(pcSingular) + "s";
    return std::to_string(uiCount) + " " + (uiCount == 1U ? pcSingular : strPlural);
}

std::string Join(const std::vector<std::string> &vecTexts, const char *pcSeparator)
{
    std::string strOut;
    for (const std::string &strText : vecTexts) {
        strOut += (&strText == &vecTexts.front()) ? "" : pcSeparator;
        strOut += strText;
    }
    return strOut;
}

std::optional<u32> ParseNumber(std::string_view strText, u32 uiMax)
{
    const bool bHex = strText.size() > 2U && strText[0] == '0' && (strText[1] == 'x' || strText[1] == 'X');
    const std::string_view strDigits = bHex ? strText.substr(2) : strText;
    if (strDigits.empty()) {
        return std::nullopt;
    }
    const unsigned long long ulBase = bHex ? 16U : 10U;
    unsigned long long ulValue = 0;
    for (const char cDigit : strDigits) {
        unsigned long long ulDigit = ulBase;
        if (cDigit >= '0' && cDigit <= '9') {
            ulDigit = static_cast<unsigned long long>(cDigit - '0');
        } else if (cDigit >= 'a' && cDigit <= 'f') {
            ulDigit = static_cast<unsigned long long>(cDigit - 'a') + 10U;
        } else if (cDigit >= 'A' && cDigit <= 'F') {
            ulDigit = static_cast<unsigned long long>(cDigit - 'A') + 10U;
        }
        if (ulDigit >= ulBase) {
            return std::nullopt;
        }
        ulValue = ulValue * ulBase + ulDigit;
        if (ulValue > uiMax) {
            return std::nullopt;
        }
    }
    return static_cast<u32>(ulValue);
}

std::optional<std::vector<u8>> ParseHexBytes(std::string_view strText)
{
    std::vector<u8> vecBytes;
    for (size_t i = 0; i < strText.size();) {
        if (strText[i] == ' ') {
            i++;
            continue;
        }
        const std::string strByte = "0x" + std::string(strText.substr(i, 2U));
        const std::optional<u32> optByte = ParseNumber(strByte, 0xFFU);
        if (strByte.size() != 4U || !optByte.has_value()) {
            return std::nullopt;
        }
        vecBytes.push_back(static_cast<u8>(*optByte));
        i += 2U;
    }
    return vecBytes;
}

std::string StatusText(u32 uiStatus)
{
    static const struct
    {
        u32 uiStatus;
        const char *pcMeaning;
    } astMeanings[] = {
        {FRU_OK, "success"},
        {FRU_ERR_FAILED, "operation failed"},
        {FRU_ERR_NULL_POINTER, "null pointer"},
        {FRU_ERR_OUT_OF_RANGE, "argument out of range"},
        {FRU_ERR_NO_MEMORY, "out of memory"},
        {FRU_ERR_DB_OPEN, "the database could not be opened"},
        {FRU_ERR_FILE_OPEN, "the serial-number file could not be opened"},
        {FRU_ERR_FILE_MISSING, "there is no serial-number file"},
        {FRU_ERR_HW_NAMESPACE, "no hardware description"},
        {FRU_ERR_HW_XML, "the hardware description could not be loaded"},
        {FRU_ERR_HW_NO_OBJECT, "the hardware description has no such component"},
        {FRU_ERR_FILE_EMPTY, "the serial-number file is empty"},
        {FRU_ERR_MR_TIMEOUT, "the MultiRecord store stayed locked"},
        {LIB_FRU_ERR_READ, "the image could not be read or an area not decoded"},
        {LIB_FRU_ERR_HEADER, "the common header is invalid"},
        {LIB_FRU_ERR_NO_DEVICE_ID, "no device has this component type and instance"},
        {LIB_FRU_ERR_NO_DEVICE, "no device table or no device information"},
        {LIB_FRU_ERR_LABEL, "the label is unknown, its value not valid, or it was not written"},
        {LIB_FRU_ERR_DECODE, "the image could not be decoded"},
        {LIB_FRU_ERR_ENCODE, "the record could not be encoded"},
        {LIB_FRU_ERR_SIZE, "bad size or out of memory"},
        {LIB_FRU_ERR_FEATURE, "the feature update failed"},
        {LIB_FRU_ERR_NULL_POINTER, "null pointer"},
    };
    for (const auto &stMeaning : astMeanings) {
        if (stMeaning.uiStatus == uiStatus) {
            return Format("0x%08x (%s)", uiStatus, stMeaning.pcMeaning);
        }
    }
    return Format("0x%08x", uiStatus);
}
