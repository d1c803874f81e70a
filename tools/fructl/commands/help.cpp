// SPDX-License-Identifier: Apache-2.0
// fructl help: what --help prints, and the pages of the manual made of the same.
#include "terminal/help.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "terminal/manual.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"

namespace {

const COMMAND_DOC_S &FindCommand(const COMMAND_DOC_S &stTop, const std::vector<std::string> &vecWords)
{
    const COMMAND_DOC_S *pstDoc = &stTop;
    for (const std::string &strWord : vecWords) {
        const std::vector<std::string> vecNames = pstDoc->CommandNames();
        const COMMAND_DOC_S *pstNext = pstDoc->Find(strWord);
        if (pstNext == nullptr) {
            FailUsage("there is no command '" + EscapeText(strWord) + "'" +
                          (pstDoc == &stTop ? "" : " of '" + pstDoc->Path() + "'") +
                          DidYouMean(strWord, vecNames) + "; accepted: " +
                          (vecNames.empty() ? "nothing behind " + pstDoc->strName : Join(vecNames, ", ")),
                      vecNames);
        }
        pstDoc = pstNext;
    }
    return *pstDoc;
}

Json OptionJson(const OPTION_DOC_S &stOption)
{
    return {{"names", stOption.vecNames},
            {"value", stOption.bWord || stOption.strPlaceholder.empty() ? Json(nullptr)
                                                                        : Json(stOption.strPlaceholder)},
            {"required", stOption.bRequired},
            {"repeated", stOption.bList},
            {"accepted", stOption.vecAccepted},
            {"text", stOption.strWhat}};
}

Json CommandJson(const COMMAND_DOC_S &stDoc)
{
    Json stJson = {{"command", stDoc.Path()}, {"text", stDoc.strWhat}, {"usage", stDoc.Synopsis()}};
    stJson["group"] = stDoc.strGroup;
    stJson["words"] = Json::array();
    stJson["options"] = Json::array();
    for (const OPTION_DOC_S &stOption : stDoc.listOptions) {
        stJson[stOption.bWord ? "words" : "options"].push_back(OptionJson(stOption));
    }
    stJson["examples"] = ExampleLines(stDoc);
    stJson["commands"] = Json::array();
    for (const COMMAND_DOC_S &stCommand : stDoc.listCommands) {
        if (!stCommand.bHidden) {
            stJson["commands"].push_back(CommandJson(stCommand));
        }
    }
    return stJson;
}

void WritePage(const std::string &strFolder, const COMMAND_DOC_S &stDoc, const std::string &strDate)
{
    const std::string strPage = ManualPage(stDoc, strDate, "fructl " FRUCTL_VERSION);
    WriteFileBytes(strFolder + "/" + ManualName(stDoc) + ".1", {strPage.begin(), strPage.end()});
}

struct MANUAL_S
{
    std::string strFolder;
    std::string strDate;
};

} // namespace

void AddHelpCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pvecWords = std::make_shared<std::vector<std::string>>();
    const Command stCommand = stParent.Add("help", "Tell what a command does and takes, as its --help does",
                                           "fructl help\nfructl help label set\nfructl help map --json");
    stCommand.AddOption("COMMAND", *pvecWords, "the command, and one of its own behind it")
        .CompletedBy(Completes::Commands);
    stCommand.Run([&stSession, stParent, pvecWords] {
        const COMMAND_DOC_S &stDoc = FindCommand(stParent.Doc(), *pvecWords);
        if (stSession.bJson) {
            PrintJson(CommandJson(stDoc));
        } else {
            Print(HelpText(stDoc));
        }
    });
}

void AddManualCommand(const Command &stParent, SESSION_S &stSession)
{
    (void)stSession;
    const auto pstOptions = std::make_shared<MANUAL_S>();
    const Command stCommand =
        stParent.Add("manual", "Write the pages of the manual", "fructl manual build/man");
    stCommand.Hide();
    stCommand.AddOption("DIR", pstOptions->strFolder, "where to").Required();
    stCommand.AddOption("--date", pstOptions->strDate, "of the pages").Placeholder("DATE");
    stCommand.Run([stParent, pstOptions] {
        WritePage(pstOptions->strFolder, stParent.Doc(), pstOptions->strDate);
        for (const COMMAND_DOC_S &stDoc : stParent.Doc().listCommands) {
            if (!stDoc.bHidden) {
                WritePage(pstOptions->strFolder, stDoc, pstOptions->strDate);
            }
        }
    });
}
