// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/placeholder.h"

#include <algorithm>
#include <cstddef>

namespace {

// In small letters, letters and digits alone: however it is punctuated.
constexpr const char *const TEXTS[] = {
    "tobefilledbyoem",
    "tobefilledbymanufacturer",
    "filledbyoem",
    "tobefilled",
    "tobedetermined",
    "tobedefined",
    "defaultstring",
    "defaultserialnumber",
    "notspecified",
    "notapplicable",
    "notavailable",
    "notset",
    "notprovided",
    "notdefined",
    "unspecified",
    "undefined",
    "unknown",
    "unassigned",
    "invalid",
    "placeholder",
    "dummy",
    "none",
    "null",
    "nil",
    "empty",
    "blank",
    "tbd",
    "tba",
    "todo",
    "na",
    "oem",
    "default",
    "example",
    "changeme",
    "systemmanufacturer",
    "systemproductname",
    "systemserialnumber",
    "systemversion",
    "systemsku",
    "baseboardserialnumber",
    "baseboardmanufacturer",
    "baseboardproductname",
    "boardserialnumber",
    "boardmanufacturer",
    "boardproductname",
    "boardpartnumber",
    "chassisserialnumber",
    "chassispartnumber",
    "chassismanufacturer",
    "productserialnumber",
    "productpartnumber",
    "productname",
    "productmanufacturer",
    "manufacturer",
    "serialnumber",
    "serialno",
    "serial",
    "partnumber",
    "partno",
    "assettag",
    "noassettag",
    "noassetinformation",
    "noserialnumber",
    "noserial",
    "customerserialnumber",
    "assettagnumber",
};
constexpr size_t RUN = 4U; // so many of one character are no number any more

std::string Plain(const std::string &strText)
{
    std::string strPlain;
    for (const char cChar : strText) {
        if (cChar >= 'A' && cChar <= 'Z') {
            strPlain += static_cast<char>(cChar - 'A' + 'a');
        } else if ((cChar >= 'a' && cChar <= 'z') || (cChar >= '0' && cChar <= '9')) {
            strPlain += cChar;
        }
    }
    return strPlain;
}

// 123456..., 0123456..., of six digits and more, beyond 9 on with 0.
bool CountsUp(const std::string &strText)
{
    constexpr size_t SHORTEST = 6U;
    if (strText.size() < SHORTEST || (strText[0] != '0' && strText[0] != '1')) {
        return false;
    }
    for (size_t i = 1U; i < strText.size(); i++) {
        if (strText[i] != (strText[i - 1U] == '9' ? '0' : strText[i - 1U] + 1)) {
            return false;
        }
    }
    return true;
}

bool IsBlank(char cChar)
{
    return cChar == ' ' || cChar == '\t' || cChar == '\r' || cChar == '\n';
}

} // namespace

std::string WhyPlaceholder(const std::string &strText, TextKind enKind)
{
    if (strText.empty()) {
        return "";
    }
    if (std::all_of(strText.begin(), strText.end(), IsBlank)) {
        return "it is blank";
    }
    const std::string strPlain = Plain(strText);
    if (strPlain.empty()) {
        return "it has neither letters nor digits";
    }
    if (std::find(std::begin(TEXTS), std::end(TEXTS), strPlain) != std::end(TEXTS)) {
        return "it is what a maker leaves to be filled in";
    }
    const bool bOneCharacter =
        strPlain.size() >= RUN && strPlain.find_first_not_of(strPlain[0]) == std::string::npos;
    if (bOneCharacter) {
        return "it is one character again and again";
    }
    const bool bCounts = enKind == TextKind::Number && CountsUp(strPlain);
    return bCounts ? "it only counts up" : "";
}

std::string WhyBlanks(const std::string &strText, TextKind enKind)
{
    if (strText.empty() || std::all_of(strText.begin(), strText.end(), IsBlank)) {
        return "";
    }
    const bool bFront = IsBlank(strText.front());
    const bool bBehind = IsBlank(strText.back());
    if (bFront || bBehind) {
        return bFront && bBehind ? "it begins and ends with a blank"
               : bFront          ? "it begins with a blank"
                                 : "it ends with a blank";
    }
    if (enKind == TextKind::Number) {
        return std::any_of(strText.begin(), strText.end(), IsBlank) ? "it has a blank inside" : "";
    }
    for (size_t i = 1U; i < strText.size(); i++) {
        if (IsBlank(strText[i]) && (IsBlank(strText[i - 1U]) || strText[i] != ' ')) {
            return "it has two blanks in a row, or one that is none";
        }
    }
    return "";
}
