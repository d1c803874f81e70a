// SPDX-License-Identifier: Apache-2.0
// The options that name another machine's management controller instead of a root.
#ifndef FRUCTL_COMMANDS_BMC_H
#define FRUCTL_COMMANDS_BMC_H

#include <string>

#include "commands/session.h"
#include "terminal/command_line.h"

struct BMC_OPTIONS_S
{
    std::string strHost; // empty: none, the controller is in a root
    std::string strUser;
    std::string strPasswordFile;
    std::string strPort;
    std::string strPrivilege;
    std::string strSuite;
    bool bRescan = false;
};

void AddBmcOptions(const Command &stTop, BMC_OPTIONS_S &stOptions);

// Opens the controller that was named, one of the desk or another machine's.
void OpenNamedController(SESSION_S &stSession, const BMC_OPTIONS_S &stOptions);

// Fails for a command that makes sense for a controller on the desk only.
void RequireDesk(const SESSION_S &stSession, const char *pcCommand);

#endif
