// SPDX-License-Identifier: Apache-2.0
// fructl oem: the OEM configuration file.
#ifndef FRUCTL_COMMANDS_OEM_H
#define FRUCTL_COMMANDS_OEM_H

#include <CLI/CLI.hpp>

#include "commands/session.h"

// Adds "oem sync"; it stands in oem_sync.cpp.
void AddOemSyncCommand(CLI::App &stOem, SESSION_S &stSession);

#endif
