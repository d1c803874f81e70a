// SPDX-License-Identifier: Apache-2.0
// NAME=VALUE arguments of commands that set several things at once.
#ifndef TOOLKIT_BASE_NAME_VALUE_H
#define TOOLKIT_BASE_NAME_VALUE_H

#include <string>
#include <vector>

// One thing that can be set: the name that the help shows, and what it is, which is accepted as a name too.
struct SETTABLE_S
{
    const char *pcName;  // "system-name"
    const char *pcTitle; // "System Name"
};

struct NAME_VALUE_S
{
    size_t uiIndex;       // of the row in the table
    std::string strValue; // Latin-1, as a FRU stores it
};

// Case does not count in a name, and blanks, '-' and '_' are the same. Fails as wrong usage for an argument
// without '=', an unknown name, a name that stands twice, and a value that Latin-1 cannot express.
std::vector<NAME_VALUE_S> ParseNameValues(const std::vector<std::string> &vecTexts,
                                          const std::vector<SETTABLE_S> &vecTable);

// "system-url, system-name"
std::string NamesOf(const std::vector<SETTABLE_S> &vecTable);

#endif
