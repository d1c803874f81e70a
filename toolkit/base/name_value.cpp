// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/name_value.h"

#include <optional>
#include <set>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

std::string Plain(const std::string &strName)
{
    std::string strOut;
    for (const char cChar : strName) {
        const bool bUpper = cChar >= 'A' && cChar <= 'Z';
        strOut += (cChar == ' ' || cChar == '_') ? '-' : bUpper ? static_cast<char>(cChar + 0x20) : cChar;
    }
    return strOut;
}

std::vector<std::string> ListOf(const std::vector<SETTABLE_S> &vecTable)
{
    std::vector<std::string> vecNames;
    for (const SETTABLE_S &stSettable : vecTable) {
        vecNames.emplace_back(stSettable.pcName);
    }
    return vecNames;
}

NAME_VALUE_S ParseOne(const std::string &strText, const std::vector<SETTABLE_S> &vecTable)
{
    const size_t uiEquals = strText.find('=');
    if (uiEquals == std::string::npos) {
        FailUsage("'" + EscapeText(strText) + "' is no NAME=VALUE; accepted names: " + NamesOf(vecTable),
                  ListOf(vecTable));
    }
    const std::string strName = strText.substr(0, uiEquals);
    // What is typed is UTF-8.
    const std::optional<std::string> optValue = Utf8ToLatin1(strText.substr(uiEquals + 1U));
    for (size_t i = 0; i < vecTable.size(); i++) {
        if (Plain(strName) != vecTable[i].pcName && Plain(strName) != Plain(vecTable[i].pcTitle)) {
            continue;
        }
        if (!optValue.has_value()) {
            FailUsage("the value of " + strName +
                      " has characters that a FRU cannot store; accepted: Latin-1");
        }
        return {i, *optValue};
    }
    FailUsage("there is no '" + EscapeText(strName) + "' to set; accepted: " + NamesOf(vecTable),
              ListOf(vecTable));
}

} // namespace

std::vector<NAME_VALUE_S> ParseNameValues(const std::vector<std::string> &vecTexts,
                                          const std::vector<SETTABLE_S> &vecTable)
{
    std::vector<NAME_VALUE_S> vecValues;
    std::set<size_t> setSeen;
    for (const std::string &strText : vecTexts) {
        vecValues.push_back(ParseOne(strText, vecTable));
        if (!setSeen.insert(vecValues.back().uiIndex).second) {
            FailUsage(std::string(vecTable[vecValues.back().uiIndex].pcName) +
                      " is given twice; accepted: each name once");
        }
    }
    return vecValues;
}

std::string NamesOf(const std::vector<SETTABLE_S> &vecTable)
{
    return Join(ListOf(vecTable), ", ");
}
