// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include "toolkit/base/error.h"

namespace {

struct GROUP_S
{
    const char *pcHeading; // what one wants to do
    std::vector<void (*)(const Command &stParent, SESSION_S &stSession)> vecAdd;
};

// In the order of the help.
const std::vector<GROUP_S> &Groups()
{
    static const std::vector<GROUP_S> vecGroups = {
        {"Begin", {AddProvisionCommand}},
        {"Look",
         {AddListCommand, AddShowCommand, AddMapCommand, AddDiffCommand, AddFieldsCommand, AddSnCommand,
          AddPsnCommand, AddScanCommand}},
        {"Check", {AddVerifyCommand, AddLintCommand}},
        {"Edit fields",
         {AddEditCommand, AddLabelCommand, AddMrCommand, AddHwCommand, AddOemCommand, AddHostNameCommand,
          AddAssembleCommand}},
        {"Move whole images", {AddReadCommand, AddWriteCommand, AddEncodeCommand, AddClearCommand}},
        {"Repair and undo",
         {AddRepairCommand, AddTransplantCommand, AddRecoverCommand, AddHistoryCommand, AddUndoCommand,
          AddJournalCommand}},
        {"Watch and serve", {AddMonitorCommand, AddReportCommand, AddMetricsCommand, AddServeCommand}},
        {"Bytes, dates and flags", {AddRawCommand, AddDateCommand, AddTestResultCommand, AddFeaturesCommand}},
        {"Learn", {AddHelpCommand, AddCompletionCommand, AddManualCommand}},
    };
    return vecGroups;
}

} // namespace

void AddCommands(const Command &stTop, SESSION_S &stSession)
{
    for (const GROUP_S &stGroup : Groups()) {
        stTop.Group(stGroup.pcHeading);
        for (const auto pfnAdd : stGroup.vecAdd) {
            pfnAdd(stTop, stSession);
        }
    }
}

void AddTargetOptions(const Command &stCommand, TARGET_OPTIONS_S &stOptions, bool bFiles)
{
    stCommand.AddOption(
        bFiles ? "DEVICE|FILE" : "DEVICE", stOptions.strTarget,
        bFiles ? "TYPE:INSTANCE (such as 0x30:0), a device's name, or an image file's path with a slash "
                 "(*.hex: readable hex; -: standard input)"
               : "TYPE:INSTANCE (such as 0x30:0) or a device's name");
    stCommand.AddOption("--id", stOptions.strDeviceID, "the device by its FRU device ID instead, 0 to 255")
        .Placeholder("N");
    if (bFiles) {
        stCommand.AddOption("--file", stOptions.strFile, "an image file instead, whatever its name")
            .Placeholder("FILE");
    }
}

void AddSourceOption(const Command &stCommand, SOURCE_OPTION_S &stOption)
{
    stCommand
        .AddOption("--source", stOption.strSource,
                   "which image of a device: that in its EEPROM (as without this) or the cached one")
        .OneOf({"eeprom", "cache"})
        .Placeholder("eeprom|cache");
}

std::optional<Source> SOURCE_OPTION_S::Chosen() const
{
    return strSource.empty()      ? std::nullopt
           : strSource == "cache" ? std::optional<Source>(Source::Cache)
                                  : std::optional<Source>(Source::Eeprom);
}

SHOWN_S ReadShown(TARGET_S stTarget, const SOURCE_OPTION_S &stOption)
{
    return TakeShown(stTarget, stOption.Chosen());
}
