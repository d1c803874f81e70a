// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/encoding.h"

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

} // namespace

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
