// SPDX-License-Identifier: Apache-2.0
// The subcommands. Each lives in its own cmd_*.cpp, which adds it to the command line; the table in
// commands.cpp names them all, in the order in which the help shows them.
#ifndef FRUCTL_COMMANDS_COMMANDS_H
#define FRUCTL_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include "commands/session.h"
#include "toolkit/controller/target.h"

// Adds every command of the table.
void AddCommands(CLI::App &stApp, SESSION_S &stSession);

// A subcommand with its description and, under its options, examples: one a line, each beginning
// with "fructl ".
CLI::App *AddCommand(CLI::App &stParent, const char *pcName, const char *pcWhat, const char *pcExamples);

// DEVICE and --id for commands that work on one device, or with bFiles also on an image file.
void AddTargetOptions(CLI::App *pstCommand, TARGET_OPTIONS_S &stOptions, bool bFiles);

// Each adds one command; they stand in their cmd_*.cpp.
void AddProvisionCommand(CLI::App &stParent, SESSION_S &stSession);
void AddListCommand(CLI::App &stParent, SESSION_S &stSession);
void AddShowCommand(CLI::App &stParent, SESSION_S &stSession);
void AddVerifyCommand(CLI::App &stParent, SESSION_S &stSession);
void AddMapCommand(CLI::App &stParent, SESSION_S &stSession);
void AddRecoverCommand(CLI::App &stParent, SESSION_S &stSession);
void AddLabelCommand(CLI::App &stParent, SESSION_S &stSession);
void AddEncodeCommand(CLI::App &stParent, SESSION_S &stSession);
void AddDiffCommand(CLI::App &stParent, SESSION_S &stSession);
void AddRawCommand(CLI::App &stParent, SESSION_S &stSession);
void AddServeCommand(CLI::App &stParent, SESSION_S &stSession);
void AddClearCommand(CLI::App &stParent, SESSION_S &stSession);
void AddTestResultCommand(CLI::App &stParent, SESSION_S &stSession);
void AddFeaturesCommand(CLI::App &stParent, SESSION_S &stSession);
void AddDateCommand(CLI::App &stParent, SESSION_S &stSession);
void AddMonitorCommand(CLI::App &stParent, SESSION_S &stSession);
void AddMrCommand(CLI::App &stParent, SESSION_S &stSession);
void AddHwCommand(CLI::App &stParent, SESSION_S &stSession);
void AddFieldsCommand(CLI::App &stParent, SESSION_S &stSession);
void AddSnCommand(CLI::App &stParent, SESSION_S &stSession);
void AddPsnCommand(CLI::App &stParent, SESSION_S &stSession);
void AddOemCommand(CLI::App &stParent, SESSION_S &stSession);
void AddHostNameCommand(CLI::App &stParent, SESSION_S &stSession);
void AddHistoryCommand(CLI::App &stParent, SESSION_S &stSession);
void AddUndoCommand(CLI::App &stParent, SESSION_S &stSession);
void AddJournalCommand(CLI::App &stParent, SESSION_S &stSession);
void AddAssembleCommand(CLI::App &stParent, SESSION_S &stSession);

#endif
