// SPDX-License-Identifier: Apache-2.0
// Values made for each row of a table: "{SKU}-{counter:05}".
#ifndef TOOLKIT_EDIT_TEMPLATE_TEXT_H
#define TOOLKIT_EDIT_TEMPLATE_TEXT_H

#include <functional>
#include <string>
#include <vector>

constexpr const char *TEMPLATE_COUNTER = "counter";

// One name in braces, with the width that digits are filled up to with zeros.
struct TEMPLATE_NAME_S
{
    std::string strName;
    unsigned uiWidth = 0;
};

// The text with what the names stand for; two braces stand for one. Fails for a brace that is not closed and for a
// width that is none.
std::string FillTemplate(const std::string &strTemplate,
                         const std::function<std::string(const TEMPLATE_NAME_S &stName)> &fnValue);

// The names that it uses.
std::vector<std::string> TemplateNames(const std::string &strTemplate);

#endif
