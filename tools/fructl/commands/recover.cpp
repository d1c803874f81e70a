// SPDX-License-Identifier: Apache-2.0
// fructl recover: restores a device whose image has a damaged header from its stored image.
#include <sys/stat.h>

#include "commands/commands.h"
#include "commands/image_plan.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/recover.h"

namespace {

struct RECOVER_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strFrom;
    bool bDryRun = false;
};

// The one line, behind the device's title.
std::string Line(const RECOVERY_S &stRecovery, bool bDryRun)
{
    if (stRecovery.strDamage.empty()) {
        return "was fine; nothing was written";
    }
    return bDryRun ? "is damaged: " + stRecovery.strDamage +
                         "; nothing was written; it would be restored from " + stRecovery.strSource
                   : "was damaged and is restored from " + stRecovery.strSource;
}

void Report(const SESSION_S &stSession, const DEVICE_S &stDevice, const RECOVERY_S &stRecovery, bool bDryRun)
{
    const std::string strLine = Line(stRecovery, bDryRun);
    if (!stSession.bJson) {
        Print(Paint(Colour::Green, stDevice.Title()) + " " + strLine + "\n");
        if (bDryRun && stRecovery.optPlan.has_value()) {
            Print(ImagePlanText(*stRecovery.optPlan) + ByteChangesText(stRecovery.optPlan->vecBytes));
        }
        return;
    }
    Json stJson = {{"device", DeviceJson(stDevice)},
                   {"outcome", stRecovery.strDamage.empty() ? "fine"
                               : bDryRun                    ? "damaged"
                                                            : "restored"},
                   {"storedImage", stDevice.ImagePath()},
                   {"text", strLine}};
    if (stRecovery.optPlan.has_value()) {
        stJson.update({{"dryRun", bDryRun}, {"damage", stRecovery.strDamage}, {"from", stRecovery.strFrom}});
        stJson.update(ImagePlanJson(*stRecovery.optPlan));
    }
    PrintJson(stJson);
}

void RunRecover(const SESSION_S &stSession, const RECOVER_S &stOptions)
{
    if (IsStream(stOptions.strFrom)) {
        (void)ReadNamedFile(stOptions.strFrom); // it may take its time: before the controller is locked
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const RECOVERY_S stRecovery = PlanRecovery(stSession, stDevice, stOptions.strFrom);
    if (optLock.has_value() && stRecovery.optPlan.has_value()) {
        WriteRecovery(*optLock, stDevice, stRecovery);
    }
    Report(stSession, stDevice, stRecovery, stOptions.bDryRun);
}

} // namespace

void AddRecoverCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<RECOVER_S>();
    const Command stCommand = stParent.Add(
        "recover", "Restore a device that is damaged or erased, or whose cached image differs",
        "fructl recover baseboard\nfructl recover psu1 --dry-run\nfructl recover psu1 --from history\n"
        "fructl recover --id 1 --from ./psu1.bin --json");
    AddTargetOptions(stCommand, pstOptions->stTarget, false);
    stCommand
        .AddOption(
            "--from", pstOptions->strFrom,
            "stored, history, cache or an image file (-: standard input); without it the first of the three that is in "
            "order")
        .Placeholder("SOURCE");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun,
                      "tell what would be taken and what would change, and write nothing");
    stCommand.Run([&stSession, pstOptions] { RunRecover(stSession, *pstOptions); });
}
