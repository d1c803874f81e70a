// SPDX-License-Identifier: Apache-2.0
#include "toolkit/capi/calls.h"

#include <cstring>

#include "toolkit/base/json_node.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/encode.h"
#include "toolkit/task/image_task.h"
#include "toolkit/task/label_task.h"
#include "toolkit/task/list.h"
#include "toolkit/task/shown.h"
#include "toolkit/task/verify.h"

namespace {

constexpr const char *TITLE = "the arguments";
constexpr size_t NAME_MAX_LEN = 255U;
constexpr size_t TEXT_MAX_LEN = 4096U;
constexpr u32 NUMBER_MAX = 999999U;

// A call under way: where it works, what it was given, and what it answers.
struct CALL_S
{
    const CONTROLLER_S &stController;
    const JsonNode &stArguments;
    const std::vector<u8> &vecBytes;
    capi::RESULT_S &stResult;

    bool Has(const char *pcName) const
    {
        return stArguments.Has(pcName);
    }
    bool Flag(const char *pcName) const
    {
        return stArguments.Flag(pcName, false);
    }
    DEVICE_S Device() const
    {
        if (!Has("device")) {
            stArguments.RefuseMember("device", "is missing", {"a name", "TYPE:INSTANCE", "a FRU device ID"});
        }
        if (stArguments.Member("device").Value().is_number()) {
            return ResolveDevice(stController,
                                 {"", std::to_string(stArguments.Number("device", 0U, 255U)), ""});
        }
        return ResolveDevice(stController, {stArguments.Text("device", 1U, NAME_MAX_LEN), "", ""});
    }
    std::optional<Source> ChosenSource() const
    {
        if (!Has("source")) {
            return std::nullopt;
        }
        const std::string strSource = stArguments.Text("source", 0U, NAME_MAX_LEN);
        if (strSource != "eeprom" && strSource != "cache") {
            stArguments.RefuseMember("source", "is '" + EscapeText(strSource) + "'", {"eeprom", "cache"});
        }
        return strSource == "cache" ? Source::Cache : Source::Eeprom;
    }
    SHOWN_S Shown() const
    {
        return TakeShown({Device(), ""}, ChosenSource());
    }
};

void List(const CALL_S &stCall)
{
    stCall.stResult.stDocument = ListJson(ListDevices(stCall.stController));
}

void Show(const CALL_S &stCall)
{
    const SHOWN_S stShown = stCall.Shown();
    Record stRecord;
    DecodeShown(stShown.stTarget, stShown.stImage, stRecord);
    stCall.stResult.stDocument = ShownJson(stShown, 0U, ViewRecord(*stRecord.Data()));
    stShown.RequireSame();
}

void Lenient(const CALL_S &stCall)
{
    const SHOWN_S stShown = stCall.Shown();
    stCall.stResult.stDocument =
        LenientShownJson(stShown, 0U, TakeLenient(stShown.stTarget, stShown.stImage));
    stShown.RequireSame();
}

void Map(const CALL_S &stCall)
{
    const TARGET_S stTarget = {stCall.Device(), ""};
    stCall.stResult.stDocument = MapShownJson(stTarget, ReadShown(stTarget, stCall.ChosenSource()));
}

void LabelList(const CALL_S &stCall)
{
    const LABEL_LIST_S stList =
        stCall.Has("device") ? ListLabels(stCall.Device(), stCall.ChosenSource()) : ListLabels();
    stCall.stResult.stDocument = stList.ToJson();
    if (stList.optWhyNot.has_value()) {
        throw Error(*stList.optWhyNot);
    }
    if (stList.optShown.has_value()) {
        stList.optShown->RequireSame();
    }
}

void LabelGet(const CALL_S &stCall)
{
    const DEVICE_S stDevice = stCall.Device();
    std::vector<std::string> vecNames;
    if (stCall.Has("names")) {
        for (const JsonNode &stName : stCall.stArguments.Elements("names")) {
            if (!stName.Value().is_string()) {
                stName.Refuse("is no text", {"the name of a label"});
            }
            vecNames.push_back(stName.Value().get<std::string>());
        }
        if (vecNames.empty()) {
            stCall.stArguments.RefuseMember("names", "is empty", {"names of labels", "no such member: all"});
        }
    }
    const LABEL_VALUES_S stValues = GetLabels(stDevice, vecNames, stCall.ChosenSource());
    stCall.stResult.stDocument = stValues.ToJson();
    stValues.stShown.RequireSame();
}

void LabelSet(const CALL_S &stCall)
{
    const DEVICE_S stDevice = stCall.Device();
    std::vector<LABEL_REQUEST_S> vecRequests;
    if (stCall.Has("labels")) {
        for (const JsonNode &stPair : stCall.stArguments.Elements("labels")) {
            const nlohmann::json &stValue = stPair.Value();
            if (!stValue.is_array() || stValue.size() != 2U || !stValue[0].is_string() ||
                !stValue[1].is_string()) {
                stPair.Refuse("is no pair of texts", {"[name, value]"});
            }
            vecRequests.push_back(
                MakeRequest(FindLabel(stValue[0].get<std::string>()), stValue[1].get<std::string>()));
        }
    }
    if (vecRequests.empty()) {
        stCall.stArguments.RefuseMember("labels", "names no label", {"a list of [name, value]"});
    }
    const LABELS_SET_S stSet = SetLabels(stCall.stController, stDevice, vecRequests, stCall.Flag("dryRun"),
                                         stCall.Flag("force"), nullptr);
    stCall.stResult.stDocument = stSet.ToJson();
    if (!stSet.strAftermath.empty()) {
        Fail(stSet.strAftermath);
    }
}

void Read(const CALL_S &stCall)
{
    const IMAGE_READ_S stRead = ReadDevice(stCall.Device(), stCall.ChosenSource());
    stRead.WarnOfDamage(stCall.stController);
    stCall.stResult.stDocument = stRead.ToJson("");
    stCall.stResult.vecBytes = stRead.stImage.vecBytes;
}

void Write(const CALL_S &stCall)
{
    stCall.stResult.stDocument = WriteDevice(stCall.stController, stCall.Device(), stCall.vecBytes,
                                             stCall.Flag("dryRun"), stCall.Flag("force"))
                                     .ToJson();
}

void Recover(const CALL_S &stCall)
{
    const DEVICE_S stDevice = stCall.Device();
    const std::string strFrom = stCall.Has("from") ? stCall.stArguments.Text("from", 1U, TEXT_MAX_LEN) : "";
    const bool bNamed = strFrom == FROM_STORED || strFrom == FROM_HISTORY || strFrom == FROM_CACHE;
    // The worker's standard input and folder are nobody's.
    if (!strFrom.empty() && !bNamed && strFrom[0] != '/') {
        stCall.stArguments.RefuseMember("from", "is '" + EscapeText(strFrom) + "'",
                                        {FROM_STORED, FROM_HISTORY, FROM_CACHE, "a file's absolute path"});
    }
    stCall.stResult.stDocument =
        RecoverDevice(stCall.stController, stDevice, strFrom, stCall.Flag("dryRun")).ToJson();
}

void History(const CALL_S &stCall)
{
    const DEVICE_S stDevice = stCall.Device();
    stCall.stResult.stDocument = HistoryJson(stDevice, ReadHistory(stCall.stController, stDevice));
}

void Undo(const CALL_S &stCall)
{
    const DEVICE_S stDevice = stCall.Device();
    std::optional<u32> optNumber;
    if (stCall.Has("to")) {
        optNumber = stCall.stArguments.Number("to", 0U, NUMBER_MAX);
    }
    stCall.stResult.stDocument =
        UndoDevice(stCall.stController, stDevice, optNumber, stCall.Flag("dryRun")).ToJson();
}

void Verify(const CALL_S &stCall)
{
    std::vector<CHECK_S> vecChecks;
    if (stCall.Has("device")) {
        CheckTarget({stCall.Device(), ""}, std::nullopt, vecChecks);
    } else {
        CheckDevices(stCall.stController, std::nullopt, vecChecks);
    }
    stCall.stResult.stDocument = ChecksJson(vecChecks);
}

struct CALL_ROW_S
{
    const char *pcName;
    std::vector<const char *> vecArguments;
    void (*pfnMake)(const CALL_S &stCall);
};

const std::vector<CALL_ROW_S> &Rows()
{
    static const std::vector<CALL_ROW_S> vecRows = {
        {"list", {}, List},
        {"show", {"device", "source"}, Show},
        {"lenient", {"device", "source"}, Lenient},
        {"map", {"device", "source"}, Map},
        {"labelList", {"device", "source"}, LabelList},
        {"labelGet", {"device", "names", "source"}, LabelGet},
        {"labelSet", {"device", "labels", "dryRun", "force"}, LabelSet},
        {"read", {"device", "source"}, Read},
        {"write", {"device", "dryRun", "force"}, Write},
        {"recover", {"device", "from", "dryRun"}, Recover},
        {"history", {"device"}, History},
        {"undo", {"device", "to", "dryRun"}, Undo},
        {"verify", {"device"}, Verify},
    };
    return vecRows;
}

const CALL_ROW_S &FindRow(const std::string &strCall)
{
    std::vector<std::string> vecNames;
    for (const CALL_ROW_S &stRow : Rows()) {
        if (strCall == stRow.pcName) {
            return stRow;
        }
        vecNames.emplace_back(stRow.pcName);
    }
    FailUsage("there is no call '" + EscapeText(strCall) + "'" + DidYouMean(strCall, vecNames), vecNames);
}

} // namespace

namespace capi {

void MakeCall(CONTROLLER_S &stController, const std::string &strCall, const std::string &strArguments,
              const std::vector<u8> &vecBytes, RESULT_S &stResult)
{
    const CALL_ROW_S &stRow = FindRow(strCall);
    const nlohmann::json stParsed =
        strArguments.empty() ? nlohmann::json::object() : ParseJsonDocument(strArguments, TITLE);
    const JsonNode stArguments(stParsed, TITLE, "");
    stArguments.RequireObject(stRow.vecArguments);
    stController.strCommandLine += ": " + strCall;
    if (stArguments.Has("device")) {
        stController.strCommandLine += " " + EscapeText(Text(stParsed["device"]));
    }
    stRow.pfnMake({stController, stArguments, vecBytes, stResult});
}

} // namespace capi
