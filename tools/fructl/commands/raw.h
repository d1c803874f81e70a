// SPDX-License-Identifier: Apache-2.0
// IPMI requests to the library's handlers, byte for byte.
#ifndef FRUCTL_COMMANDS_RAW_H
#define FRUCTL_COMMANDS_RAW_H

#include <string>
#include <vector>

#include "commands/session.h"
#include "lib_fru_types.h"

// Prints request, response and completion code. Fails (after printing, with strHint) when the code is not 0.
void ReportExchange(const SESSION_S &stSession, const char *pcCommand, const std::vector<u8> &vecRequest,
                    const std::vector<u8> &vecResponse, const std::string &strHint);

// A number option of a raw command; fails as wrong usage when it is none or above uiMax.
u32 NumberOption(const char *pcOption, const std::string &strText, u32 uiMax);

#endif
