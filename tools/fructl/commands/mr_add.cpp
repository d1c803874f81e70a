// SPDX-License-Identifier: Apache-2.0
// fructl mr add: Management Access records into the main FRU.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "commands/commands.h"
#include "commands/mr.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "terminal/progress.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/name_value.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/multirecord_add.h"
#include "toolkit/image/multirecord.h"

namespace {

struct ADD_S
{
    std::vector<std::string> vecTexts;
    bool bDryRun = false;
    bool bForce = false;
};

const char *ActionWord(RecordAction enAction, bool bDryRun)
{
    switch (enAction) {
    case RecordAction::Add:
        return bDryRun ? "add" : "added";
    case RecordAction::Replace:
        return bDryRun ? "replace" : "replaced";
    default:
        return bDryRun ? "keep" : "kept";
    }
}

std::string Says(const std::vector<u8> &vecData)
{
    return vecData.empty() ? ""
                           : MultiRecordText(FRU_MR_TYPE_MANAGEMENT_ACCESS, vecData.data(),
                                             static_cast<u8>(vecData.size()));
}

Json PlanJson(const ADD_S &stOptions, const DEVICE_S &stDevice, const RECORD_PLAN_S &stPlan)
{
    Json stRecords = Json::array();
    size_t uiWrites = 0;
    for (const WANTED_RECORD_S &stWanted : stPlan.vecWanted) {
        uiWrites += stWanted.enAction == RecordAction::Keep ? 0U : 1U;
        Json stJson = {{"name", stWanted.Row().pcName},
                       {"subType", stWanted.ucSubType},
                       {"action", ActionWord(stWanted.enAction, stOptions.bDryRun)},
                       {"text", Latin1ToUtf8(Says(stWanted.vecData))},
                       {"data", HexBytes(stWanted.vecData)}};
        if (stWanted.enAction == RecordAction::Replace) {
            stJson["oldText"] = Latin1ToUtf8(Says(stWanted.vecOld));
        }
        stRecords.push_back(stJson);
    }
    return {{"device", DeviceJson(stDevice)},
            {"dryRun", stOptions.bDryRun},
            {"writes", uiWrites},
            {"records", stRecords},
            {"notes", stPlan.stRewrite.vecNotes},
            {"losses", stPlan.stRewrite.vecLosses}};
}

std::string PlanText(const ADD_S &stOptions, const RECORD_PLAN_S &stPlan)
{
    Table stTable({"RECORD", "", "SAYS", "SAID"});
    size_t uiWrites = 0;
    for (const WANTED_RECORD_S &stWanted : stPlan.vecWanted) {
        uiWrites += stWanted.enAction == RecordAction::Keep ? 0U : 1U;
        stTable.Row({stWanted.Row().pcTitle, ActionWord(stWanted.enAction, stOptions.bDryRun),
                     EscapeText(Says(stWanted.vecData)),
                     stWanted.enAction == RecordAction::Replace ? EscapeText(Says(stWanted.vecOld)) : ""});
    }
    std::string strOut = stTable.Text();
    for (const std::string &strNote : stPlan.stRewrite.vecNotes) {
        strOut += Paint(Colour::Yellow, "note") + ": " + strNote + "\n";
    }
    for (const std::string &strLoss : stPlan.stRewrite.vecLosses) {
        strOut += Paint(Colour::Red, "lost") + ": " + strLoss + "\n";
    }
    const std::string strWrites = Count(uiWrites, "device write");
    return strOut + (stOptions.bDryRun
                         ? "nothing was written; without --dry-run: " + strWrites + "\n"
                         : Paint(Colour::Green, "Done") + ": " + strWrites + ", read back and right\n");
}

void RunAdd(const SESSION_S &stSession, const ADD_S &stOptions)
{
    std::vector<WANTED_RECORD_S> vecWanted;
    for (const NAME_VALUE_S &stGiven : ParseNameValues(stOptions.vecTexts, AccessRecords())) {
        vecWanted.push_back(WantedRecord(stGiven));
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, {MAIN_FRU, ""});
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    RECORD_PLAN_S stPlan = PlanAccessRecords(stDevice, vecWanted);
    if (!stOptions.bDryRun && !stOptions.bForce && !stPlan.stRewrite.vecLosses.empty()) {
        FailRefused("refused, for the library writes the whole image of " + stDevice.Title() +
                    " anew and would lose: " + Join(stPlan.stRewrite.vecLosses, "; ") + "; --force writes");
    }
    if (!stOptions.bDryRun) {
        WriteAccessRecords(*optLock, stDevice, stPlan, TerminalProgress());
    }
    if (stSession.bJson) {
        PrintJson(PlanJson(stOptions, stDevice, stPlan));
    } else {
        Print(PlanText(stOptions, stPlan));
    }
}

} // namespace

void AddMrAddCommand(const Command &stMr, SESSION_S &stSession)
{
    const auto pstAdd = std::make_shared<ADD_S>();
    const Command stCommand =
        stMr.Add("add", "Add Management Access records to the main FRU (0x00:0), or replace them there",
                 "fructl mr add system-name=rack7-u12 system-url=https://rack7-u12.example\n"
                 "fructl mr add system-guid=1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f --dry-run");
    stCommand
        .AddOption("NAME=VALUE", pstAdd->vecTexts,
                   "each name once: " + NamesOf(AccessRecords()) +
                       "; a text of 1 to 254 characters or a GUID")
        .Required();
    stCommand.AddFlag("-n,--dry-run", pstAdd->bDryRun, "say what would be added or replaced, write nothing");
    stCommand.AddFlag("--force", pstAdd->bForce,
                      "write even when something beside the records would be lost");
    stCommand.Run([&stSession, pstAdd] { RunAdd(stSession, *pstAdd); });
}
