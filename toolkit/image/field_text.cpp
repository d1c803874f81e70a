#include "toolkit/image/field_text.h"

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
    return {strText, bWhole ? "" : "readers end it at its first zero byte"};
}

FIELD_TEXT_S BinaryText(const u8 *pucData, u32 uiLength)
{
    std::string strText;
    for (u32 i = 0; i < uiLength; i++) {
        strText += Format("%02X", pucData[i]);
    }
    return {strText, "binary"};
}

} // namespace

FIELD_TEXT_S FieldText(u8 ucTypeLength, const u8 *pucData, u32 uiLength)
{
    if (uiLength == 0U) {
        return {"", "empty"};
    }
    switch (ucTypeLength >> 6U) {
    case 0:
        return BinaryText(pucData, uiLength);
    case 1:
        return {"", "BCD plus " + BcdText(pucData, uiLength) + ", decoded as an empty text"};
    case 2:
        return {SixBitText(pucData, uiLength), "6-bit ASCII"};
    default:
        return PlainText(pucData, uiLength);
    }
}
