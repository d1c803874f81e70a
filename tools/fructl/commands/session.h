// SPDX-License-Identifier: Apache-2.0
// One run of fructl: the options that all commands share, and the controller it works on.
#ifndef FRUCTL_COMMANDS_SESSION_H
#define FRUCTL_COMMANDS_SESSION_H

#include <functional>

#include "toolkit/controller/controller.h"

enum class ExitCode
{
    Done = 0,
    Failed = 1,
    Different = 1, // of 'diff', which tells trouble by 2
    Usage = 2
};

struct SESSION_S : CONTROLLER_S
{
    bool bVerbose = false;
    bool bJson = false;
    std::function<void()> fnRun;          // set by the command that was named
    ExitCode enExitCode = ExitCode::Done; // of a command that did not fail
};

#endif
