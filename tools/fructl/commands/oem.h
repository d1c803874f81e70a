// SPDX-License-Identifier: Apache-2.0
// fructl oem: the OEM configuration file.
#ifndef FRUCTL_COMMANDS_OEM_H
#define FRUCTL_COMMANDS_OEM_H

#include "terminal/command_line.h"

#include "commands/session.h"

// Adds "oem sync"; it stands in oem_sync.cpp.
void AddOemSyncCommand(const Command &stOem, SESSION_S &stSession);

#endif
