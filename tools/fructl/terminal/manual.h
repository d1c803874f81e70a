// SPDX-License-Identifier: Apache-2.0
// Pages of the manual, from the texts of the help.
#ifndef FRUCTL_TERMINAL_MANUAL_H
#define FRUCTL_TERMINAL_MANUAL_H

#include <string>

#include "terminal/command_doc.h"

// The page of fructl itself, or of one of its commands with those below it, for section 1. strDate is its
// date, strVersion stands in its foot.
std::string ManualPage(const COMMAND_DOC_S &stDoc, const std::string &strDate, const std::string &strVersion);

// "fructl-label".
std::string ManualName(const COMMAND_DOC_S &stDoc);

#endif
