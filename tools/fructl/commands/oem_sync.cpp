// SPDX-License-Identifier: Apache-2.0
// fructl oem sync: the FRU's texts into the OEM configuration file.
#include <cstring>

#include "commands/commands.h"
#include "commands/oem.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/oem_sync.h"

namespace {

void Report(const SESSION_S &stSession, bool bDryRun, const std::vector<OEM_CHANGE_S> &vecChanges)
{
    Table stTable({"KEY", "OLD", "NEW"});
    Json stChanges = Json::array();
    for (const OEM_CHANGE_S &stChange : vecChanges) {
        stTable.Row(
            {stChange.pstText->pcKey, EscapeText(stChange.strOld),
             stChange.strNew.empty() ? "(empty: from now on it stays so)" : EscapeText(stChange.strNew)});
        stChanges.push_back({{"key", stChange.pstText->pcKey},
                             {"old", Latin1ToUtf8(stChange.strOld)},
                             {"new", Latin1ToUtf8(stChange.strNew)}});
    }
    if (stSession.bJson) {
        PrintJson({{"dryRun", bDryRun}, {"changes", stChanges}});
        return;
    }
    if (vecChanges.empty()) {
        Print("the OEM file's values are the FRU's already (keys without a value are never filled)\n");
        return;
    }
    Print(stTable.Text());
    Print(bDryRun ? "nothing was written\n"
                  : Paint(Colour::Green, "Done") + ": " + Count(vecChanges.size(), "key") + " replaced\n");
}

void RunSync(const SESSION_S &stSession, bool bDryRun)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, {MAIN_FRU, ""});
    std::optional<RootLock> optLock;
    if (!bDryRun) {
        optLock.emplace(stSession);
    }
    const std::vector<OEM_CHANGE_S> vecChanges = PlanOemSync(stDevice);
    if (!bDryRun) {
        SyncOemConf(*optLock, vecChanges);
    }
    Report(stSession, bDryRun, vecChanges);
}

} // namespace

void AddOemSyncCommand(const Command &stOem, SESSION_S &stSession)
{
    const auto pbDryRun = std::make_shared<bool>(false);
    const Command stCommand =
        stOem.Add("sync", "Replace the values in the OEM file by those of the main FRU (0x00:0)",
                  "fructl oem sync --dry-run\nfructl oem sync");
    stCommand.AddFlag("-n,--dry-run", *pbDryRun, "say what would change, write nothing");
    stCommand.Run([&stSession, pbDryRun] { RunSync(stSession, *pbDryRun); });
}
