// SPDX-License-Identifier: Apache-2.0
// Texts in HTML.
#ifndef FRUCTL_REPORT_HTML_H
#define FRUCTL_REPORT_HTML_H

#include <string>

// Bytes of a device as text and as an attribute's value: Latin-1 in UTF-8, with nothing that is markup, and
// with \xNN for control characters.
std::string HtmlText(const std::string &strBytes);

// pcTemplate with "{{NAME}}" filled in; what is filled in is not looked at again.
class HtmlTemplate
{
  public:
    explicit HtmlTemplate(const char *pcTemplate) : m_strRest(pcTemplate) {}
    // The places stand in the order in which they are filled.
    void Fill(const std::string &strName, const std::string &strHtml);
    std::string Html() const
    {
        return m_strDone + m_strRest;
    }

  private:
    std::string m_strDone;
    std::string m_strRest;
};

#endif
