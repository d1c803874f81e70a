// SPDX-License-Identifier: Apache-2.0
// One run of fructl: the options that all commands share, and the controller it works on.
#ifndef FRUCTL_COMMANDS_SESSION_H
#define FRUCTL_COMMANDS_SESSION_H

#include "toolkit/controller/controller.h"
#include "toolkit/task/failure.h"

struct SESSION_S : CONTROLLER_S
{
    bool bVerbose = false;
    bool bJson = false;
    std::string strColour;                // as --color says
    ExitCode enExitCode = ExitCode::Done; // of a command that did not fail
    std::optional<ExitCode> optFailure;   // of one that does, whatever the failure's own code
};

#endif
