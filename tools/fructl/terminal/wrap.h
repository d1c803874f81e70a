// SPDX-License-Identifier: Apache-2.0
// Text in lines that fit: how wide a terminal is and a text will be, and where it is broken.
#ifndef FRUCTL_TERMINAL_WRAP_H
#define FRUCTL_TERMINAL_WRAP_H

#include <string>
#include <vector>

// Columns of the terminal on standard output, or what COLUMNS says; 0: it is no terminal, lines may be as
// long as they like.
size_t TerminalWidth();

// Columns that a text of UTF-8 fills; colours do not count.
size_t DisplayWidth(const std::string &strText);

// The text in lines of at most so many columns, broken at blanks, and inside a word only where that is longer
// than a line. With a width of 0: as it is.
std::vector<std::string> WrapText(const std::string &strText, size_t uiWidth);

#endif
