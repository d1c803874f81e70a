// SPDX-License-Identifier: Apache-2.0
#include "report/html.h"

#include <stdexcept>

#include "lib_fru_types.h"
#include "toolkit/base/text.h"

std::string HtmlText(const std::string &strBytes)
{
    std::string strOut;
    for (const char cByte : strBytes) {
        const u8 ucByte = static_cast<u8>(cByte);
        switch (cByte) {
        case '&':
            strOut += "&amp;";
            break;
        case '<':
            strOut += "&lt;";
            break;
        case '>':
            strOut += "&gt;";
            break;
        case '"':
            strOut += "&quot;";
            break;
        case '\'':
            strOut += "&#39;";
            break;
        default:
            strOut += ucByte < 0x20U || (ucByte >= 0x7FU && ucByte < 0xA0U)
                          ? Format("\\x%02x", ucByte)
                          : Latin1ToUtf8(std::string_view(&cByte, 1U));
            break;
        }
    }
    return strOut;
}

void HtmlTemplate::Fill(const std::string &strName, const std::string &strHtml)
{
    const std::string strPlace = "{{" + strName + "}}";
    const size_t uiAt = m_strRest.find(strPlace);
    if (uiAt == std::string::npos) {
        throw std::logic_error("the page has no place " + strPlace);
    }
    m_strDone += m_strRest.substr(0U, uiAt) + strHtml;
    m_strRest.erase(0U, uiAt + strPlace.size());
}
