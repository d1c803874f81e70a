// SPDX-License-Identifier: Apache-2.0
// The subcommands. Each lives in its own cmd_*.cpp, which adds it to the command line; the table in
// commands.cpp names them all, in the order in which the help shows them.
#ifndef FRUCTL_COMMANDS_COMMANDS_H
#define FRUCTL_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include "commands/session.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"

// Adds every command of the table.
void AddCommands(CLI::App &stApp, SESSION_S &stSession);

// A subcommand with its description and, under its options, examples: one a line, each beginning
// with "fructl ".
CLI::App *AddCommand(CLI::App &stParent, const char *pcName, const char *pcWhat, const char *pcExamples);

// DEVICE and --id for commands that work on one device, or with bFiles also on an image file, with --file.
void AddTargetOptions(CLI::App *pstCommand, TARGET_OPTIONS_S &stOptions, bool bFiles);

// Which of a device's images a command shows; none: that of its EEPROM, where it has one.
struct SOURCE_OPTION_S
{
    std::string strSource;

    std::optional<Source> Chosen() const;
};
void AddSourceOption(CLI::App *pstCommand, SOURCE_OPTION_S &stOption);

// The image that was chosen, and what a command adds to what it shows of it.
struct SHOWN_S
{
    TARGET_S stTarget;
    IMAGE_S stImage;
    std::optional<std::string> optDiffer; // the device's other image is another one

    Json SourceJson() const; // {"source"}, with "sourcesDiffer" where a device has two images
    // ", cached image" where it is no EEPROM's, for headings.
    std::string HeadingText() const;
    // Fails as damage when the two images differ; asked when everything is printed.
    void RequireSame() const;
};
SHOWN_S ReadShown(TARGET_S stTarget, const SOURCE_OPTION_S &stOption);

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
void AddReadCommand(CLI::App &stParent, SESSION_S &stSession);
void AddWriteCommand(CLI::App &stParent, SESSION_S &stSession);
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
