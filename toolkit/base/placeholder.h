// SPDX-License-Identifier: Apache-2.0
// Texts that stand in a field and say nothing of the device: what a maker left to be filled in, zeros, blanks.
#ifndef TOOLKIT_BASE_PLACEHOLDER_H
#define TOOLKIT_BASE_PLACEHOLDER_H

#include <string>

// What a text is meant to be: a number may be "0000" nowhere, a word may say what a number may not.
enum class TextKind
{
    Word,  // a maker's or a product's name
    Number // a serial number, a part number, an asset tag
};

// Why the text is a placeholder ("it is one character again and again"); empty when it is none. An empty text
// is none.
std::string WhyPlaceholder(const std::string &strText, TextKind enKind);

// What is wrong with the blanks of a text: "it begins with a blank"; empty when nothing is. Within a number any
// blank is wrong, within a word two in a row.
std::string WhyBlanks(const std::string &strText, TextKind enKind);

#endif
