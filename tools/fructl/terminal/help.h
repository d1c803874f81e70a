// SPDX-License-Identifier: Apache-2.0
// A command's help, as wide as the terminal.
#ifndef FRUCTL_TERMINAL_HELP_H
#define FRUCTL_TERMINAL_HELP_H

#include <string>

#include "terminal/command_doc.h"

std::string HelpText(const COMMAND_DOC_S &stDoc);

// Of an example the command, and what it does where that stands behind it.
std::pair<std::string, std::string> SplitExample(const std::string &strLine);
std::vector<std::string> ExampleLines(const COMMAND_DOC_S &stDoc);

#endif
