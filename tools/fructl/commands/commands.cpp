// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include "toolkit/base/error.h"

namespace {

// One a line, in the order of the help, with what a group of them is about.
constexpr void (*COMMANDS[])(CLI::App &stParent, SESSION_S &stSession) = {
    AddProvisionCommand,  // made once
    AddListCommand,       // read
    AddShowCommand,       //
    AddVerifyCommand,     //
    AddMapCommand,        //
    AddDiffCommand,       //
    AddFieldsCommand,     //
    AddSnCommand,         //
    AddPsnCommand,        //
    AddLabelCommand,      // written
    AddEncodeCommand,     //
    AddReadCommand,       //
    AddWriteCommand,      //
    AddClearCommand,      //
    AddRecoverCommand,    //
    AddHistoryCommand,    //
    AddUndoCommand,       //
    AddJournalCommand,    //
    AddMrCommand,         // read and written
    AddHwCommand,         //
    AddOemCommand,        //
    AddAssembleCommand,   //
    AddRawCommand,        // bytes
    AddDateCommand,       //
    AddTestResultCommand, // the controller as a whole
    AddFeaturesCommand,   //
    AddHostNameCommand,   //
    AddMonitorCommand,    //
    AddServeCommand,      //
};

} // namespace

void AddCommands(CLI::App &stApp, SESSION_S &stSession)
{
    for (const auto pfnAdd : COMMANDS) {
        pfnAdd(stApp, stSession);
    }
}

CLI::App *AddCommand(CLI::App &stParent, const char *pcName, const char *pcWhat, const char *pcExamples)
{
    CLI::App *pstCommand = stParent.add_subcommand(pcName, pcWhat);
    std::string strFooter = "Examples:\n  ";
    for (const char *pcChar = pcExamples; *pcChar != '\0'; pcChar++) {
        strFooter += *pcChar;
        strFooter += (*pcChar == '\n') ? "  " : "";
    }
    pstCommand->footer(strFooter + "\n");
    // Lets --json and its like stand behind the command as well.
    pstCommand->fallthrough();
    return pstCommand;
}

void AddTargetOptions(CLI::App *pstCommand, TARGET_OPTIONS_S &stOptions, bool bFiles)
{
    pstCommand->add_option(
        bFiles ? "DEVICE|FILE" : "DEVICE", stOptions.strTarget,
        bFiles ? "TYPE:INSTANCE (such as 0x30:0), a device's name, or an image file's path with a slash "
                 "(*.hex: readable hex)"
               : "TYPE:INSTANCE (such as 0x30:0) or a device's name");
    pstCommand->add_option("--id", stOptions.strDeviceID, "the device by its FRU device ID instead, 0 to 255")
        ->type_name("N");
    if (bFiles) {
        pstCommand->add_option("--file", stOptions.strFile, "an image file instead, whatever its name")
            ->type_name("FILE");
    }
}

void AddSourceOption(CLI::App *pstCommand, SOURCE_OPTION_S &stOption)
{
    pstCommand
        ->add_option("--source", stOption.strSource,
                     "which image of a device: that in its EEPROM (as without this) or the cached one")
        ->check(CLI::IsMember({"eeprom", "cache"}))
        ->type_name("eeprom|cache");
}

std::optional<Source> SOURCE_OPTION_S::Chosen() const
{
    return strSource.empty()      ? std::nullopt
           : strSource == "cache" ? std::optional<Source>(Source::Cache)
                                  : std::optional<Source>(Source::Eeprom);
}

SHOWN_S ReadShown(TARGET_S stTarget, const SOURCE_OPTION_S &stOption)
{
    SHOWN_S stShown = {stTarget, ReadShown(stTarget, stOption.Chosen()), std::nullopt};
    stShown.optDiffer = WhySourcesDiffer(stTarget);
    return stShown;
}

Json SHOWN_S::SourceJson() const
{
    Json stJson = {{"source", SourceName(stImage.enSource)}};
    if (stTarget.optDevice.has_value()) {
        stJson["sourcesDiffer"] = optDiffer.has_value();
    }
    return stJson;
}

std::string SHOWN_S::HeadingText() const
{
    return stImage.enSource == Source::Cache ? ", cached image" : "";
}

void SHOWN_S::RequireSame() const
{
    if (optDiffer.has_value()) {
        Fail(ErrorClass::Damaged, *optDiffer);
    }
}
