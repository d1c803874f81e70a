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
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/label_write.h"
#include "toolkit/edit/labels.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/record.h"

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

const char *AreaOf(const LABEL_S &stLabel)
{
    return stLabel.IsStored() ? AreaKey(stLabel.stField.enArea) : "hardware";
}

Json LabelJson(const LABEL_S &stLabel, u32 uiMaxLen)
{
    Json stJson = {{"id", stLabel.uiID},
                   {"name", stLabel.strName},
                   {"area", AreaOf(stLabel)},
                   {"field", stLabel.IsStored() ? Json(FieldName(stLabel.stField)) : Json(nullptr)},
                   {"minLength", stLabel.uiMinLen},
                   {"maxLength", uiMaxLen},
                   {"noneAllowed", stLabel.bNoneAllowed},
                   {"accepts", AcceptsText(stLabel.enAccepts)}};
    stJson["powerSupplyField"] = stLabel.optPsuField.has_value() ? Json(*stLabel.optPsuField) : Json(nullptr);
    return stJson;
}

// null: the image has no such field, or its date is unspecified.
Json ValueJson(const LABEL_S &stLabel, const std::optional<std::string> &optValue)
{
    const bool bUnspecified = stLabel.enAccepts == Accepts::Date && optValue == MFG_DATE_UNSPECIFIED;
    return optValue.has_value() && !bUnspecified ? Json(Latin1ToUtf8(*optValue)) : Json(nullptr);
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

void PrintLabels(const SESSION_S &stSession, const std::optional<DEVICE_S> &optDevice,
                 const std::vector<LABEL_S> &vecLabels, const std::optional<RECORD_VIEW_S> &optView,
                 const SHOWN_S *pstShown)
{
    std::vector<const char *> vecHeadings = {"LABEL", "AREA", "LENGTH", "NONE", "ACCEPTS"};
    if (optView.has_value()) {
        vecHeadings.push_back("VALUE");
    }
    Table stTable(vecHeadings);
    Json stList = Json::array();
    const u8 ucType = optDevice.has_value() ? optDevice->stEntry.ucComponentType : 0xFFU;
    for (const LABEL_S &stLabel : vecLabels) {
        const u32 uiMaxLen = MaxLength(stLabel, ucType);
        Json stJson = LabelJson(stLabel, uiMaxLen);
        std::string strValue;
        Colour enColour = Colour::Cyan;
        if (optView.has_value()) {
            const std::optional<std::string> optValue = LabelValue(*optView, stLabel);
            stJson["value"] = ValueJson(stLabel, optValue);
            strValue = !optValue.has_value() ? "(" + WhyNoValue(*optView, stLabel) + ")"
                       : optValue->empty()   ? "-"
                                             : ShownText(*optValue);
            enColour = optValue.has_value() && !optValue->empty() ? Colour::Cyan : Colour::Dim;
        }
        stList.push_back(stJson);
        stTable.Row({stLabel.strName, AreaOf(stLabel), Format("%u-%u", stLabel.uiMinLen, uiMaxLen),
                     stLabel.bNoneAllowed ? "yes" : "no", AcceptsText(stLabel.enAccepts), strValue},
                    {Colour::None, Colour::Dim, Colour::None, Colour::None, Colour::None, enColour});
    }
    if (!stSession.bJson) {
        const std::string strHeading = pstShown == nullptr ? "" : pstShown->HeadingText();
        Print((strHeading.empty() ? "" : optDevice->Title() + strHeading + "\n") + stTable.Text() +
              SharedNamesText(vecLabels));
        return;
    }
    Json stJson = Json::object();
    if (optDevice.has_value()) {
        stJson = {{"device", DeviceJson(*optDevice)}, {"fieldFlag", optDevice->stInfo.ucFieldFlag}};
    }
    if (pstShown != nullptr) {
        stJson.update(pstShown->SourceJson());
    }
    stJson["labels"] = stList;
    PrintJson(stJson);
}

void RunList(const SESSION_S &stSession, const LABEL_OPTIONS_S &stOptions)
{
    if (!stOptions.astOptions[0].IsGiven() && stOptions.strDeviceID.empty()) {
        PrintLabels(stSession, std::nullopt, Labels(), std::nullopt, nullptr);
        return;
    }
    std::vector<std::string> vecRest;
    const DEVICE_S stDevice = TakeDevice(stSession, stOptions, vecRest);
    if (!vecRest.empty()) {
        FailUsage("'" + EscapeText(vecRest.front()) + "' is one word too many; accepted: one device");
    }
    std::vector<LABEL_S> vecAccepted;
    for (const LABEL_S &stLabel : Labels()) {
        if (IsAccepted(stDevice, stLabel)) {
            vecAccepted.push_back(stLabel);
        }
    }
    if (vecAccepted.empty() && !stSession.bJson) {
        Print(stDevice.Title() +
              Format(" takes no labels: its field flag is %u\n", u32{stDevice.stInfo.ucFieldFlag}));
        return;
    }
    Record stRecord;
    SHOWN_S stShown;
    try {
        stShown = ReadShown({stDevice, ""}, stOptions.stSource);
        DecodeShown(stShown.stTarget, stShown.stImage, stRecord);
    } catch (const Error &) {
        PrintLabels(stSession, stDevice, vecAccepted, std::nullopt, nullptr);
        throw; // the names are known all the same, the values are not
    }
    PrintLabels(stSession, stDevice, vecAccepted, ViewRecord(*stRecord.Data()), &stShown);
    stShown.RequireSame();
}

// The labels that are asked for: those named, or with --all those that the device takes and its image has.
std::vector<LABEL_S> AskedLabels(const DEVICE_S &stDevice, const RECORD_VIEW_S &stView,
                                 const std::vector<std::string> &vecNames)
{
    std::vector<LABEL_S> vecAsked;
    for (const std::string &strName : vecNames) {
        vecAsked.push_back(FindLabel(strName));
        const LABEL_S &stLabel = vecAsked.back();
        if (!stLabel.IsStored()) {
            FailRefused(
                "the label '" + stLabel.strName +
                "' is kept in the hardware FRU block, not in the FRU image; 'fructl hw show' reads it");
        }
        if (!LabelValue(stView, stLabel).has_value()) {
            FailRefused(stDevice.Title() + " has no '" + stLabel.strName + "': its image has " +
                        WhyNoValue(stView, stLabel));
        }
    }
    for (const LABEL_S &stLabel : Labels()) {
        if (vecNames.empty() && IsAccepted(stDevice, stLabel) && LabelValue(stView, stLabel).has_value()) {
            vecAsked.push_back(stLabel);
        }
    }
    return vecAsked;
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
    for (const std::string &strName : vecRest) {
        (void)FindLabel(strName); // before anything is read
    }
    const SHOWN_S stShown = ReadShown({stDevice, ""}, stOptions.stSource);
    Record stRecord;
    DecodeShown(stShown.stTarget, stShown.stImage, stRecord);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    const bool bOne = vecRest.size() == 1U;
    Json stList = Json::array();
    std::string strOut;
    for (const LABEL_S &stLabel : AskedLabels(stDevice, stView, vecRest)) {
        const std::string strValue = LabelValue(stView, stLabel).value_or("");
        stList.push_back(LabelJson(stLabel, MaxLength(stLabel, stDevice.stEntry.ucComponentType)));
        stList.back()["value"] = ValueJson(stLabel, strValue);
        strOut += (bOne ? "" : stLabel.strName + "=") + EscapeText(strValue) + "\n";
    }
    if (stSession.bJson) {
        Json stJson = {{"device", DeviceJson(stDevice)}};
        stJson.update(stShown.SourceJson());
        stJson.update(bOne ? stList.front() : Json{{"labels", stList}});
        PrintJson(stJson);
    } else {
        Print(strOut);
    }
    stShown.RequireSame();
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

Json PlanJson(const DEVICE_S &stDevice, const LABEL_PLAN_S &stPlan, bool bDryRun,
              const std::vector<std::string> &vecSentences)
{
    Json stLabels = Json::array();
    for (size_t i = 0; i < stPlan.vecSteps.size(); i++) {
        const LABEL_STEP_S &stStep = stPlan.vecSteps[i];
        const LABEL_S &stLabel = stStep.stRequest.stLabel;
        Json stJson = {{"id", stLabel.uiID},
                       {"name", stLabel.strName},
                       {"old", ValueJson(stLabel, stStep.optOld)},
                       {"new", ValueJson(stLabel, stStep.strNew)},
                       {"unchanged", stStep.bUnchanged}};
        if (!bDryRun && !stStep.bUnchanged) {
            stJson["operationLog"] = Latin1ToUtf8(vecSentences[i]);
        }
        stLabels.push_back(stJson);
    }
    return {{"device", DeviceJson(stDevice)},
            {"dryRun", bDryRun},
            {"labels", stLabels},
            {"bytes", ByteChangesJson(stPlan.vecChanges)},
            {"notes", stPlan.vecNotes},
            {"losses", stPlan.vecLosses}};
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
    const std::vector<LABEL_REQUEST_S> vecRequests = ParseRequests(vecRest);
    CheckRequests(stDevice, vecRequests);
    RequireNoPlaceholders(vecRequests, stOptions.bForce);
    if (stOptions.bDryRun) {
        const LABEL_PLAN_S stPlan = PlanLabels(stDevice, vecRequests);
        if (stSession.bJson) {
            PrintJson(PlanJson(stDevice, stPlan, true, {}));
        } else {
            Print(stDevice.Title() + ": nothing was written; this would be\n" + StepsText(stPlan) +
                  ByteChangesText(stPlan.vecChanges));
        }
        return;
    }
    const RootLock stLock(stSession);
    const LABEL_PLAN_S stPlan = PlanLabels(stDevice, vecRequests);
    if (!stPlan.vecLosses.empty() && !stOptions.bForce) {
        FailRefused("refused, for the library writes the whole image of " + stDevice.Title() +
                    " anew and would lose: " + Join(stPlan.vecLosses, "; ") +
                    "; 'fructl edit' changes one field and keeps all this; --dry-run shows every byte, "
                    "--force writes");
    }
    std::string strAftermath;
    const std::vector<std::string> vecSentences =
        WriteLabels(stLock, stDevice, stPlan, strAftermath, TerminalProgress());
    if (stSession.bJson) {
        PrintJson(PlanJson(stDevice, stPlan, false, vecSentences));
    } else {
        for (const std::string &strSentence : vecSentences) {
            Print(strSentence.empty() ? "" : Paint(Colour::Green, EscapeText(strSentence)) + "\n");
        }
        Print(stPlan.IsUnchanged() ? stDevice.Title() + " is unchanged; nothing was written\n" : "");
        Print(StepsText(stPlan));
    }
    if (!strAftermath.empty()) {
        Fail(strAftermath);
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
