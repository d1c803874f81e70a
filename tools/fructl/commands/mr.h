// SPDX-License-Identifier: Apache-2.0
// fructl mr: the MultiRecords of FRU images.
#ifndef FRUCTL_COMMANDS_MR_H
#define FRUCTL_COMMANDS_MR_H

#include "terminal/command_line.h"

#include "commands/session.h"

// Adds "mr add"; it stands in mr_add.cpp.
void AddMrAddCommand(const Command &stMr, SESSION_S &stSession);

#endif
