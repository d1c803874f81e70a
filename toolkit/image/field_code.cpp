// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/field_code.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr const char *BCD_DIGITS = "0123456789 -.";
constexpr const char *AS_ACCEPTED = "accepted: --as text|6bit|bcd|binary";

struct ENCODING_WORDS_S
{
    const char *pcName;  // of --as
    const char *pcWhat;  // for people
    const char *pcTakes; // what it can hold
};

const ENCODING_WORDS_S &WordsOf(Encoding enEncoding)
{
    static const ENCODING_WORDS_S WORDS[] = {
        {"binary", "binary", "hex digits, two a byte, 0 to 63 bytes"},
        {"bcd", "BCD plus", "0 to 126 of the characters 0 to 9, blank, dash and dot"},
        {"6bit", "6-bit ASCII",
         "0 to 84 characters from blank to underscore: capitals, digits, no small letters"},
        {"text", "8-bit text", "0 to 63 Latin-1 characters"},
    };
    return WORDS[static_cast<size_t>(enEncoding)];
}

std::optional<std::vector<u8>> SixBit(const std::string &strValue)
{
    std::vector<u8> vecData((strValue.size() * 6U + 7U) / 8U);
    for (size_t i = 0; i < strValue.size(); i++) {
        if (strValue[i] < ' ' || strValue[i] > '_') {
            return std::nullopt;
        }
        const u32 uiCode = static_cast<u32>(strValue[i] - ' ') << (i * 6U % 8U);
        vecData[i * 6U / 8U] = static_cast<u8>(vecData[i * 6U / 8U] | uiCode);
        if (uiCode > 0xFFU) {
            vecData[i * 6U / 8U + 1U] = static_cast<u8>(uiCode >> 8U);
        }
    }
    return vecData;
}

// An odd number of digits has a blank behind them.
std::optional<std::vector<u8>> BcdPlus(const std::string &strValue)
{
    const std::string strDigits = BCD_DIGITS;
    std::vector<u8> vecData;
    for (size_t i = 0; i < strValue.size(); i += 2U) {
        const size_t uiHigh = strDigits.find(strValue[i]);
        const size_t uiLow = strDigits.find(i + 1U < strValue.size() ? strValue[i + 1U] : ' ');
        if (uiHigh == std::string::npos || uiLow == std::string::npos) {
            return std::nullopt;
        }
        vecData.push_back(static_cast<u8>(uiHigh << 4U | uiLow));
    }
    return vecData;
}

// How many bytes a character of a text has, and which comes first. Of Latin-1 the other is zero.
enum class Width
{
    One,
    TwoLowFirst,
    TwoHighFirst
};

std::optional<std::vector<u8>> Data(const std::string &strValue, Encoding enEncoding, Width enWidth)
{
    switch (enEncoding) {
    case Encoding::Binary:
        return strValue.empty() ? std::vector<u8>() : ParseHexBytes(strValue);
    case Encoding::BcdPlus:
        return BcdPlus(strValue);
    case Encoding::SixBitAscii:
        return SixBit(strValue);
    default:
        break;
    }
    std::vector<u8> vecData;
    for (const char cChar : strValue) {
        if (enWidth == Width::TwoHighFirst) {
            vecData.push_back(0U);
        }
        vecData.push_back(static_cast<u8>(cChar));
        if (enWidth == Width::TwoLowFirst) {
            vecData.push_back(0U);
        }
    }
    return vecData;
}

Width WidthOf(const std::vector<u8> &vecField)
{
    bool bLowFirst = vecField.size() > 1U && vecField.size() % 2U == 1U;
    bool bHighFirst = bLowFirst;
    for (size_t i = 1U; i < vecField.size(); i += 2U) {
        bHighFirst = bHighFirst && vecField[i] == 0U;
        bLowFirst = bLowFirst && vecField[i + 1U] == 0U;
    }
    return bLowFirst ? Width::TwoLowFirst : bHighFirst ? Width::TwoHighFirst : Width::One;
}

std::string WithoutFilling(std::string strText)
{
    while (!strText.empty() && strText.back() == ' ') {
        strText.pop_back();
    }
    return strText;
}

bool SaysAlready(const std::vector<u8> &vecOld, Encoding enOld, const std::string &strValue)
{
    const std::string strOld = FieldValue(vecOld);
    if (enOld == Encoding::Binary && !strOld.empty()) {
        const std::optional<std::vector<u8>> optBytes = ParseHexBytes(strValue);
        return optBytes == std::vector<u8>(vecOld.begin() + 1, vecOld.end());
    }
    // Both fill a group with blanks.
    const bool bFills = enOld == Encoding::SixBitAscii || enOld == Encoding::BcdPlus;
    return strOld == strValue || (bFills && WithoutFilling(strOld) == WithoutFilling(strValue));
}

} // namespace

const std::vector<std::string> &EncodingNames()
{
    static const std::vector<std::string> vecNames = {"text", "6bit", "bcd", "binary"};
    return vecNames;
}

std::optional<Encoding> EncodingByName(const std::string &strName)
{
    for (const Encoding enEncoding :
         {Encoding::Text, Encoding::SixBitAscii, Encoding::BcdPlus, Encoding::Binary}) {
        if (strName == WordsOf(enEncoding).pcName) {
            return enEncoding;
        }
    }
    return std::nullopt;
}

std::string FieldValue(const std::vector<u8> &vecField)
{
    const u32 uiLength = static_cast<u32>(vecField.size() - 1U);
    const FIELD_TEXT_S stText = FieldText(vecField[0], vecField.data() + 1, uiLength);
    return stText.stNote.enNote == Note::BcdPlus ? stText.stNote.strDetail : stText.strText;
}

std::vector<u8> FieldBytes(const std::vector<u8> &vecOld, const std::string &strValue,
                           const FIELD_STYLE_S &stStyle)
{
    const Encoding enOld = EncodingOf(vecOld[0]);
    const bool bOldEmpty = vecOld.size() == 1U;
    if ((!stStyle.optAs.has_value() || stStyle.optAs == enOld) && SaysAlready(vecOld, enOld, strValue)) {
        return vecOld;
    }
    // An empty field has a type, too, but that of an empty binary field says nothing of what is to come.
    Encoding enEncoding =
        stStyle.optAs.value_or(bOldEmpty && enOld == Encoding::Binary ? Encoding::Text : enOld);
    const Width enWidth = stStyle.bWide && enOld == Encoding::Text ? WidthOf(vecOld) : Width::One;
    std::optional<std::vector<u8>> optData = Data(strValue, enEncoding, enWidth);
    if (!optData.has_value() && bOldEmpty && !stStyle.optAs.has_value()) {
        enEncoding = Encoding::Text;
        optData = Data(strValue, enEncoding, Width::One);
    }
    const ENCODING_WORDS_S &stWords = WordsOf(enEncoding);
    const std::string strTakes = std::string(", which takes ") + stWords.pcTakes;
    if (!optData.has_value() || optData->size() > FRU_FIELD_MAX_TEXT) {
        FailRefused("'" + EscapeText(strValue) + "' does not fit " +
                        (stStyle.optAs.has_value() ? std::string(stWords.pcWhat)
                                                   : std::string("the field's encoding, ") + stWords.pcWhat) +
                        strTakes + "; " + AS_ACCEPTED,
                    EncodingNames());
    }
    if (enEncoding == Encoding::Text && strValue.find('\0') != std::string::npos) {
        FailRefused("the value holds a NUL, where every reader ends the text; --as binary takes any byte");
    }
    const u8 ucTypeLength = static_cast<u8>(static_cast<u32>(enEncoding) << 6U | optData->size());
    if (stStyle.bListed && ucTypeLength == FRU_FIELD_END) {
        FailRefused(
            "'" + EscapeText(strValue) +
            "' as 8-bit text has the length byte 0xc1, the mark that ends the fields; accepted: no or two "
            "characters and more, or --as 6bit|bcd|binary");
    }
    std::vector<u8> vecField = {ucTypeLength};
    vecField.insert(vecField.end(), optData->begin(), optData->end());
    return vecField;
}
