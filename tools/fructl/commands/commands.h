// SPDX-License-Identifier: Apache-2.0
// The subcommands. Each lives in its own file, which adds it to the command line; the table in
// commands.cpp names them all, in the order in which the help shows them.
#ifndef FRUCTL_COMMANDS_COMMANDS_H
#define FRUCTL_COMMANDS_COMMANDS_H

#include "commands/session.h"
#include "terminal/command_line.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/image_part.h"
#include "toolkit/task/shown.h"

// Adds every command of the table.
void AddCommands(const Command &stTop, SESSION_S &stSession);

// DEVICE and --id for commands that work on one device, or with bFiles also on an image file, with --file.
void AddTargetOptions(const Command &stCommand, TARGET_OPTIONS_S &stOptions, bool bFiles);

// Which of a device's images a command shows; none: that of its EEPROM, where it has one.
struct SOURCE_OPTION_S
{
    std::string strSource;

    std::optional<Source> Chosen() const;
};
void AddSourceOption(const Command &stCommand, SOURCE_OPTION_S &stOption);

// The image of a target that was chosen.
SHOWN_S ReadShown(TARGET_S stTarget, const SOURCE_OPTION_S &stOption);

// The file that a command makes.
struct OUTPUT_OPTION_S
{
    std::string strFile;
    bool bForce = false;

    // Whether it is standard output, asked before anything is read. Fails where that is for JSON already, for a file
    // that is there, and for what is no file.
    bool IsPipe(const SESSION_S &stSession) const;
};
// -o and --force.
Option AddOutputOption(const Command &stCommand, OUTPUT_OPTION_S &stOption, const std::string &strHelp);

// Where in a file or a device an image begins.
struct OFFSET_OPTION_S
{
    std::string strOffset;

    std::optional<u32> Chosen() const;
};
void AddOffsetOption(const Command &stCommand, OFFSET_OPTION_S &stOption);

// The image that begins there. Without an offset and where none begins at the first byte of a file, the first one
// that stands in it, which is told.
LOCATED_S LocateImage(const SESSION_S &stSession, const TARGET_S &stTarget, const IMAGE_S &stWhole,
                      const OFFSET_OPTION_S &stOption);

// Each adds one command; they stand in their file.
void AddProvisionCommand(const Command &stParent, SESSION_S &stSession);
void AddScanCommand(const Command &stParent, SESSION_S &stSession);
void AddLintCommand(const Command &stParent, SESSION_S &stSession);
void AddListCommand(const Command &stParent, SESSION_S &stSession);
void AddShowCommand(const Command &stParent, SESSION_S &stSession);
void AddVerifyCommand(const Command &stParent, SESSION_S &stSession);
void AddMapCommand(const Command &stParent, SESSION_S &stSession);
void AddRepairCommand(const Command &stParent, SESSION_S &stSession);
void AddTransplantCommand(const Command &stParent, SESSION_S &stSession);
void AddRecoverCommand(const Command &stParent, SESSION_S &stSession);
void AddLabelCommand(const Command &stParent, SESSION_S &stSession);
void AddEditCommand(const Command &stParent, SESSION_S &stSession);
void AddEncodeCommand(const Command &stParent, SESSION_S &stSession);
void AddDiffCommand(const Command &stParent, SESSION_S &stSession);
void AddRawCommand(const Command &stParent, SESSION_S &stSession);
void AddServeCommand(const Command &stParent, SESSION_S &stSession);
void AddReadCommand(const Command &stParent, SESSION_S &stSession);
void AddWriteCommand(const Command &stParent, SESSION_S &stSession);
void AddClearCommand(const Command &stParent, SESSION_S &stSession);
void AddTestResultCommand(const Command &stParent, SESSION_S &stSession);
void AddReportCommand(const Command &stParent, SESSION_S &stSession);
void AddMetricsCommand(const Command &stParent, SESSION_S &stSession);
void AddFeaturesCommand(const Command &stParent, SESSION_S &stSession);
void AddDateCommand(const Command &stParent, SESSION_S &stSession);
void AddMonitorCommand(const Command &stParent, SESSION_S &stSession);
void AddMrCommand(const Command &stParent, SESSION_S &stSession);
void AddHwCommand(const Command &stParent, SESSION_S &stSession);
void AddFieldsCommand(const Command &stParent, SESSION_S &stSession);
void AddSnCommand(const Command &stParent, SESSION_S &stSession);
void AddPsnCommand(const Command &stParent, SESSION_S &stSession);
void AddOemCommand(const Command &stParent, SESSION_S &stSession);
void AddHostNameCommand(const Command &stParent, SESSION_S &stSession);
void AddHistoryCommand(const Command &stParent, SESSION_S &stSession);
void AddUndoCommand(const Command &stParent, SESSION_S &stSession);
void AddJournalCommand(const Command &stParent, SESSION_S &stSession);
void AddAssembleCommand(const Command &stParent, SESSION_S &stSession);
void AddHelpCommand(const Command &stParent, SESSION_S &stSession);
void AddCompletionCommand(const Command &stParent, SESSION_S &stSession);
void AddManualCommand(const Command &stParent, SESSION_S &stSession); // not in the help

#endif
