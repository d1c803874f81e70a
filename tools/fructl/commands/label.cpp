// SPDX-License-Identifier: Apache-2.0
// fructl label: the named fields of a device, listed, read and written.
#include <cstring>

#include "commands/commands.h"
#include "commands/label_batch.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "terminal/progress.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/label_write.h"
#include "toolkit/edit/labels.h"
#include "toolkit/image/fields.h"
#include "toolkit/task/label_task.h"

namespace {

struct LABEL_OPTIONS_S
{
    // Up to three words one by one: the parser would take a value in brackets apart if they were one list.
    std::string astrWords[3];
    Option astOptions[3];
    std::vector<std::string> vecMore;
    std::string strDeviceID;
    SOURCE_OPTION_S stSource;
    bool bDryRun = false;
    bool bForce = false;
    bool bAll = false;
    LABEL_BATCH_S stBatch;
};

// The device, and the words behind it: with --id none of the words is a device.
DEVICE_S TakeDevice(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions,
                    std::vector<std::string> &vecRest)
{
    for (size_t i = 0; i < std::size(stOptions.astOptions); i++) {
        // An empty word counts: it is an empty value.
        if (stOptions.astOptions[i].IsGiven()) {
            vecRest.push_back(stOptions.astrWords[i]);
        }
    }
    vecRest.insert(vecRest.end(), stOptions.vecMore.begin(), stOptions.vecMore.end());
    TARGET_OPTIONS_S stTarget = {"", stOptions.strDeviceID, ""};
    if (stOptions.strDeviceID.empty() && !vecRest.empty()) {
        stTarget.strTarget = vecRest.front();
        vecRest.erase(vecRest.begin());
    }
    return ResolveDevice(stSession, stTarget);
}

std::string SharedNamesText(const std::vector<LABEL_S> &vecLabels)
{
    std::vector<std::string> vecNames;
    for (const LABEL_S &stLabel : vecLabels) {
        if (stLabel.optPsuField.has_value()) {
            vecNames.push_back(stLabel.strName);
        }
    }
    return vecNames.empty() ? ""
                            : "\n" + Join(vecNames, ", ") +
                                  ": power-supply fields have these names too; here they are the board info "
                                  "area's fields, on power supplies as well.\n";
}

void PrintLabels(const SESSION_S &stSession, const LABEL_LIST_S &stList)
{
    if (stSession.bJson) {
        PrintJson(stList.ToJson());
        return;
    }
    std::vector<const char *> vecHeadings = {"LABEL", "AREA", "LENGTH", "NONE", "ACCEPTS"};
    if (stList.optView.has_value()) {
        vecHeadings.push_back("VALUE");
    }
    Table stTable(vecHeadings);
    const u8 ucType = stList.optDevice.has_value() ? stList.optDevice->stEntry.ucComponentType : 0xFFU;
    for (const LABEL_S &stLabel : stList.vecLabels) {
        std::string strValue;
        Colour enColour = Colour::Cyan;
        if (stList.optView.has_value()) {
            const std::optional<std::string> optValue = LabelValue(*stList.optView, stLabel);
            strValue = !optValue.has_value() ? "(" + WhyNoValue(*stList.optView, stLabel) + ")"
                       : optValue->empty()   ? "-"
                                             : ShownText(*optValue);
            enColour = optValue.has_value() && !optValue->empty() ? Colour::Cyan : Colour::Dim;
        }
        stTable.Row({stLabel.strName, AreaOf(stLabel),
                     Format("%u-%u", stLabel.uiMinLen, MaxLength(stLabel, ucType)),
                     stLabel.bNoneAllowed ? "yes" : "no", AcceptsText(stLabel.enAccepts), strValue},
                    {Colour::None, Colour::Dim, Colour::None, Colour::None, Colour::None, enColour});
    }
    const std::string strHeading = stList.optShown.has_value() ? stList.optShown->HeadingText() : "";
    Print((strHeading.empty() ? "" : stList.optDevice->Title() + strHeading + "\n") + stTable.Text() +
          SharedNamesText(stList.vecLabels));
}

void RunList(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions)
{
    if (!stOptions.astOptions[0].IsGiven() && stOptions.strDeviceID.empty()) {
        PrintLabels(stSession, ListLabels());
        return;
    }
    std::vector<std::string> vecRest;
    const DEVICE_S stDevice = TakeDevice(stSession, stOptions, vecRest);
    if (!vecRest.empty()) {
        FailUsage("'" + EscapeText(vecRest.front()) + "' is one word too many; accepted: one device");
    }
    const LABEL_LIST_S stList = ListLabels(stDevice, stOptions.stSource.Chosen());
    if (stList.vecLabels.empty() && !stSession.bJson) {
        Print(stDevice.Title() +
              Format(" takes no labels: its field flag is %u\n", u32{stDevice.stInfo.ucFieldFlag}));
        return;
    }
    PrintLabels(stSession, stList);
    if (stList.optWhyNot.has_value()) {
        throw Error(*stList.optWhyNot);
    }
    stList.optShown->RequireSame();
}

void RunGet(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions)
{
    std::vector<std::string> vecRest;
    const DEVICE_S stDevice = TakeDevice(stSession, stOptions, vecRest);
    if (vecRest.empty() != stOptions.bAll) {
        FailUsage(vecRest.empty()
                      ? "no label is named; 'fructl label list' tells their names, --all asks for all"
                      : "labels are named, and --all asks for all; accepted: one of them");
    }
    const LABEL_VALUES_S stValues = GetLabels(stDevice, vecRest, stOptions.stSource.Chosen());
    if (stSession.bJson) {
        PrintJson(stValues.ToJson());
    } else {
        std::string strOut;
        for (const auto &[stLabel, strValue] : stValues.vecValues) {
            strOut += (stValues.bOne ? "" : stLabel.strName + "=") + EscapeText(strValue) + "\n";
        }
        Print(strOut);
    }
    stValues.stShown.RequireSame();
}

// "NAME VALUE", or any number of "NAME=VALUE".
std::vector<LABEL_REQUEST_S> ParseRequests(const std::vector<std::string> &vecWords)
{
    if (vecWords.size() == 2U && vecWords[0].find('=') == std::string::npos) {
        return {MakeRequest(FindLabel(vecWords[0]), vecWords[1])};
    }
    if (vecWords.empty()) {
        FailUsage("no label is named; accepted: NAME VALUE, or NAME=VALUE once or several times");
    }
    std::vector<LABEL_REQUEST_S> vecRequests;
    for (const std::string &strWord : vecWords) {
        const size_t uiEquals = strWord.find('=');
        if (uiEquals == std::string::npos) {
            FailUsage("'" + EscapeText(strWord) +
                      "' is not NAME=VALUE; accepted: NAME VALUE, or NAME=VALUE once or several times");
        }
        vecRequests.push_back(
            MakeRequest(FindLabel(strWord.substr(0, uiEquals)), strWord.substr(uiEquals + 1U)));
    }
    return vecRequests;
}

std::string StepsText(const LABEL_PLAN_S &stPlan)
{
    size_t uiWidth = 0;
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        uiWidth = std::max(uiWidth, stStep.stRequest.stLabel.strName.size());
    }
    const auto fnShown = [](const std::optional<std::string> &optText) {
        return !optText.has_value() ? "(none)" : optText->empty() ? "-" : ShownText(*optText);
    };
    std::string strOut;
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        strOut += Format("  %-*s  ", static_cast<int>(uiWidth), stStep.stRequest.stLabel.strName.c_str()) +
                  Paint(Colour::Red, fnShown(stStep.optOld)) + " -> " +
                  Paint(Colour::Green, fnShown(stStep.strNew)) + (stStep.bUnchanged ? "  (unchanged)" : "") +
                  "\n";
    }
    for (const std::string &strNote : stPlan.vecNotes) {
        strOut += "  " + Paint(Colour::Yellow, "note:") + " " + strNote + "\n";
    }
    for (const std::string &strLoss : stPlan.vecLosses) {
        strOut += "  " + Paint(Colour::Red, "lost:") + " " + strLoss + "\n";
    }
    return strOut;
}

void RunTable(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions)
{
    LABEL_BATCH_S stBatch = stOptions.stBatch;
    const bool bDevice = stOptions.astOptions[0].IsGiven();
    if (stOptions.astOptions[1].IsGiven() || !stOptions.strDeviceID.empty()) {
        FailUsage(
            "with --from the labels stand in the table; accepted: a device for rows that name none, and no more words");
    }
    stBatch.stBatch.strDevice = bDevice ? stOptions.astrWords[0] : "";
    stBatch.stBatch.bForce = stOptions.bForce;
    stBatch.stBatch.bDryRun = stOptions.bDryRun;
    RunLabelBatch(stSession, stBatch);
}

void RunSet(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions)
{
    if (stOptions.stBatch.IsGiven()) {
        RunTable(stSession, stOptions);
        return;
    }
    std::vector<std::string> vecRest;
    const DEVICE_S stDevice = TakeDevice(stSession, stOptions, vecRest);
    const LABELS_SET_S stSet = SetLabels(stSession, stDevice, ParseRequests(vecRest), stOptions.bDryRun,
                                         stOptions.bForce, TerminalProgress());
    const LABEL_PLAN_S &stPlan = stSet.stPlan;
    if (stSession.bJson) {
        PrintJson(stSet.ToJson());
    } else if (stSet.bDryRun) {
        Print(stDevice.Title() + ": nothing was written; this would be\n" + StepsText(stPlan) +
              ByteChangesText(stPlan.vecChanges));
    } else {
        for (const std::string &strSentence : stSet.vecSentences) {
            Print(strSentence.empty() ? "" : Paint(Colour::Green, EscapeText(strSentence)) + "\n");
        }
        Print(stPlan.IsUnchanged() ? stDevice.Title() + " is unchanged; nothing was written\n" : "");
        Print(StepsText(stPlan));
    }
    if (!stSet.strAftermath.empty()) {
        Fail(stSet.strAftermath);
    }
}

struct WORD_S
{
    const char *pcName;
    const char *pcWhat;
};

Command AddVerb(const Command &stLabel, const char *pcName, const char *pcWhat, const char *pcExamples,
                const std::vector<WORD_S> &vecWords, LABEL_OPTIONS_S &stOptions)
{
    const Command stCommand = stLabel.Add(pcName, pcWhat, pcExamples);
    for (size_t i = 0; i < vecWords.size(); i++) {
        stOptions.astOptions[i] =
            stCommand.AddOption(vecWords[i].pcName, stOptions.astrWords[i], vecWords[i].pcWhat);
        if (strcmp(vecWords[i].pcName, "NAME") == 0) {
            stOptions.astOptions[i].CompletedBy(Completes::Labels);
        }
    }
    stCommand.AddOption("--id", stOptions.strDeviceID, "the device by its FRU device ID, 0 to 255")
        .Placeholder("N");
    return stCommand;
}

} // namespace

void AddLabelCommand(const Command &stParent, SESSION_S &stSession)
{
    const WORD_S stDevice = {"DEVICE", "TYPE:INSTANCE (such as 0x30:0) or a device's name; none with --id"};
    const Command stLabel =
        stParent.Add("label", "List, read and write the named fields of a device",
                     "fructl label list psu1\nfructl label get baseboard \"Product Serial Number\"\n"
                     "fructl label set baseboard \"Product Serial Number\" LH22024170042");
    stLabel.RequireCommand();
    const auto pstList = std::make_shared<LABEL_OPTIONS_S>();
    const Command stListCommand = AddVerb(
        stLabel, "list", "The labels that a device takes, their limits and values; without one, all labels",
        "fructl label list\nfructl label list baseboard\nfructl label list --id 1 --json", {stDevice},
        *pstList);
    AddSourceOption(stListCommand, pstList->stSource);
    stListCommand.AddSection(
        "Columns", "",
        {{"LABEL", "its name, as 'label get' and 'label set' take it"},
         {"AREA", "where its field is: an area of the image, or the hardware block"},
         {"LENGTH", "how many characters a value may have, on this device"},
         {"NONE", "whether the value NONE is accepted, which stands for an absent text"},
         {"ACCEPTS", "what kind of value"},
         {"VALUE", "what the image has; -: an empty text; in brackets: why there is none"}});
    stListCommand.Run([&stSession, pstList] { RunList(stSession, *pstList); });
    const auto pstGet = std::make_shared<LABEL_OPTIONS_S>();
    const Command stGetCommand = AddVerb(
        stLabel, "get", "One label's value, or several as NAME=VALUE",
        "fructl label get baseboard \"Board Serial Number\"\nfructl label get --id 1 Mfg.Date\n"
        "fructl label get psu1 \"Product Serial Number\" Mfg.Date\nfructl label get psu1 --all",
        {stDevice, {"NAME", "the label's name, as 'fructl label list' tells it; and more of them"}}, *pstGet);
    stGetCommand.AddOption("MORE", pstGet->vecMore, "more names");
    stGetCommand.AddFlag("--all", pstGet->bAll, "every label that the device takes and its image has");
    AddSourceOption(stGetCommand, pstGet->stSource);
    stGetCommand.Run([&stSession, pstGet] { RunGet(stSession, *pstGet); });
    const auto pstSet = std::make_shared<LABEL_OPTIONS_S>();
    const Command stSetCommand = AddVerb(
        stLabel, "set", "Write labels; all are checked before the first is written",
        "fructl label set baseboard \"Product Serial Number\" LH22024170042\n"
        "fructl label set psu1 \"Product Asset Tag=RACK7\" \"Board Part Number=LHPS800-A2\" --dry-run\n"
        "fructl label set --from examples/labels.csv --dry-run\n"
        "fructl label set --from examples/labels.csv --results done.csv --keep-going",
        {stDevice,
         {"NAME", "the label's name; or NAME=VALUE, and more of them behind it"},
         {"VALUE", "its value, when NAME has none"}},
        *pstSet);
    stSetCommand.AddOption("MORE", pstSet->vecMore, "NAME=VALUE");
    stSetCommand.AddFlag("-n,--dry-run", pstSet->bDryRun,
                         "show old and new and the bytes that would change, and write nothing");
    stSetCommand.AddFlag(
        "--force", pstSet->bForce,
        "write even when something beside the labels would be lost, and placeholders and doubles");
    AddLabelBatchOptions(stSetCommand, pstSet->stBatch);
    stSetCommand.Run([&stSession, pstSet] { RunSet(stSession, *pstSet); });
}
