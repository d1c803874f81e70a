// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/template_text.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr unsigned WIDTH_MAX = 63U; // no field is longer

TEMPLATE_NAME_S NameOf(const std::string &strInside, const std::string &strTemplate)
{
    const size_t uiColon = strInside.rfind(':');
    const std::string strWidth = uiColon == std::string::npos ? "" : strInside.substr(uiColon + 1U);
    if (uiColon == std::string::npos) {
        return {strInside, 0U};
    }
    const std::optional<u32> optWidth = strWidth.size() > 1U && strWidth[0] == '0'
                                            ? ParseNumber(strWidth.substr(1U), WIDTH_MAX)
                                            : std::nullopt;
    if (!optWidth.has_value()) {
        FailUsage("the template '" + EscapeText(strTemplate) + "' has '" + EscapeText(strInside) +
                  "'; accepted: {NAME}, or {NAME:05} for digits filled up to five with zeros");
    }
    return {strInside.substr(0, uiColon), *optWidth};
}

} // namespace

std::string FillTemplate(const std::string &strTemplate,
                         const std::function<std::string(const TEMPLATE_NAME_S &stName)> &fnValue)
{
    std::string strOut;
    for (size_t i = 0; i < strTemplate.size(); i++) {
        const char cChar = strTemplate[i];
        const bool bDoubled = i + 1U < strTemplate.size() && strTemplate[i + 1U] == cChar;
        if ((cChar == '{' || cChar == '}') && bDoubled) {
            strOut += cChar;
            i++;
            continue;
        }
        if (cChar != '{') {
            strOut += cChar;
            continue;
        }
        const size_t uiEnd = strTemplate.find('}', i);
        if (uiEnd == std::string::npos) {
            FailUsage("the template '" + EscapeText(strTemplate) +
                      "' has a brace that is not closed; accepted: {NAME}, or {{ for a brace");
        }
        const TEMPLATE_NAME_S stName = NameOf(strTemplate.substr(i + 1U, uiEnd - i - 1U), strTemplate);
        const std::string strValue = fnValue(stName);
        strOut += std::string(stName.uiWidth > strValue.size() ? stName.uiWidth - strValue.size() : 0U, '0') +
                  strValue;
        i = uiEnd;
    }
    return strOut;
}

std::vector<std::string> TemplateNames(const std::string &strTemplate)
{
    std::vector<std::string> vecNames;
    (void)FillTemplate(strTemplate, [&vecNames](const TEMPLATE_NAME_S &stName) {
        vecNames.push_back(stName.strName);
        return std::string();
    });
    return vecNames;
}
