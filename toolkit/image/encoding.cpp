// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/encoding.h"

#include <algorithm>

#include "toolkit/base/text.h"

namespace {

std::string BcdText(const u8 *pucData, u32 uiLength)
{
    std::string strOut;
    for (u32 i = 0; i < uiLength; i++) {
        strOut += "0123456789 -.???"[pucData[i] >> 4U];
        strOut += "0123456789 -.???"[pucData[i] & 0x0FU];
    }
    return strOut;
}

std::string SixBitText(const u8 *pucData, u32 uiLength)
{
    std::string strOut;
    for (u32 i = 0; i < uiLength; i += 3U) {
        u32 uiGroup = 0;
        for (u32 j = 0; j < 3U && i + j < uiLength; j++) {
            uiGroup |= static_cast<u32>(pucData[i + j]) << (8U * j);
        }
        for (u32 j = 0; j < 4U; j++) {
            strOut += static_cast<char>(((uiGroup >> (6U * j)) & 0x3FU) + 0x20U);
        }
    }
    return strOut;
}

FIELD_TEXT_S PlainText(const u8 *pucData, u32 uiLength)
{
    const std::string strText(reinterpret_cast<const char *>(pucData), uiLength);
    const bool bWhole = strText.find('\0') == std::string::npos;
    return {strText, {bWhole ? Note::None : Note::ZeroByte}};
}

FIELD_TEXT_S BinaryText(const u8 *pucData, u32 uiLength)
{
    std::string strText;
    for (u32 i = 0; i < uiLength; i++) {
        strText += Format("%02X", pucData[i]);
    }
    return {strText, {Note::Binary}};
}

bool IsEnglish(u8 ucLanguage)
{
    return ucLanguage == 0U || ucLanguage == 25U;
}

bool IsControl(u32 uiCharacter)
{
    return uiCharacter < 0x20U || (uiCharacter >= 0x7FU && uiCharacter < 0xA0U);
}

// No control, and nothing that stands for no character.
bool IsCharacter(u32 uiCharacter)
{
    const bool bHalf = uiCharacter >= 0xD800U && uiCharacter < 0xE000U;
    return !IsControl(uiCharacter) && !bHalf && (uiCharacter & 0xFFFEU) != 0xFFFEU;
}

std::string Utf8Of(u32 uiCharacter)
{
    std::string strOut;
    if (uiCharacter < 0x80U) {
        return std::string(1U, static_cast<char>(uiCharacter));
    }
    const u32 uiMore = uiCharacter < 0x800U ? 1U : uiCharacter < 0x10000U ? 2U : 3U;
    constexpr u32 LEADS[] = {0U, 0xC0U, 0xE0U, 0xF0U};
    strOut += static_cast<char>(LEADS[uiMore] | uiCharacter >> (6U * uiMore));
    for (u32 i = uiMore; i > 0U; i--) {
        strOut += static_cast<char>(0x80U | ((uiCharacter >> (6U * (i - 1U))) & 0x3FU));
    }
    return strOut;
}

} // namespace

std::optional<std::string> UnicodeText(u8 ucTypeLength, u8 ucLanguage, const u8 *pucData, u32 uiLength)
{
    const bool bLetters =
        std::all_of(pucData, pucData + uiLength, [](u8 ucByte) { return !IsControl(ucByte); });
    if (EncodingOf(ucTypeLength) != Encoding::Text || IsEnglish(ucLanguage) || uiLength % 2U != 0U ||
        bLetters) {
        return std::nullopt;
    }
    std::string strOut;
    for (u32 i = 0; i < uiLength; i += 2U) {
        u32 uiCharacter = pucData[i] | static_cast<u32>(pucData[i + 1U]) << 8U;
        if (uiCharacter >= 0xD800U && uiCharacter < 0xDC00U && i + 4U <= uiLength) {
            const u32 uiLow = pucData[i + 2U] | static_cast<u32>(pucData[i + 3U]) << 8U;
            const bool bPair = uiLow >= 0xDC00U && uiLow < 0xE000U;
            uiCharacter = bPair ? 0x10000U + ((uiCharacter & 0x3FFU) << 10U) + (uiLow & 0x3FFU) : uiCharacter;
            i += bPair ? 2U : 0U;
        }
        if (!IsCharacter(uiCharacter)) {
            return std::nullopt;
        }
        strOut += Utf8Of(uiCharacter);
    }
    return strOut;
}

Encoding EncodingOf(u8 ucTypeLength)
{
    return static_cast<Encoding>(ucTypeLength >> 6U);
}

bool operator==(const NOTE_S &stLeft, const NOTE_S &stRight)
{
    return stLeft.enNote == stRight.enNote && stLeft.strDetail == stRight.strDetail;
}

bool operator!=(const NOTE_S &stLeft, const NOTE_S &stRight)
{
    return !(stLeft == stRight);
}

std::string NoteText(const NOTE_S &stNote)
{
    switch (stNote.enNote) {
    case Note::Empty:
        return "empty";
    case Note::Binary:
        return "binary";
    case Note::BcdPlus:
        return "BCD plus " + stNote.strDetail + ", decoded as an empty text";
    case Note::SixBitAscii:
        return "6-bit ASCII";
    case Note::Unicode:
        return "two bytes a character: " + stNote.strDetail;
    case Note::ZeroByte:
        return "readers end it at its first zero byte";
    case Note::OtherDate:
        return stNote.strDetail;
    case Note::OneValue:
        return "all " + stNote.strDetail;
    case Note::DifferentValues:
        return "not in any area";
    default:
        return "";
    }
}

FIELD_TEXT_S FieldText(u8 ucTypeLength, const u8 *pucData, u32 uiLength)
{
    if (uiLength == 0U) {
        return {"", {Note::Empty}};
    }
    switch (EncodingOf(ucTypeLength)) {
    case Encoding::Binary:
        return BinaryText(pucData, uiLength);
    case Encoding::BcdPlus:
        return {"", {Note::BcdPlus, BcdText(pucData, uiLength)}};
    case Encoding::SixBitAscii:
        return {SixBitText(pucData, uiLength), {Note::SixBitAscii}};
    default:
        return PlainText(pucData, uiLength);
    }
}
