// SPDX-License-Identifier: Apache-2.0
// fructl recover: restores a device whose image has a damaged header from its stored image.
#include <sys/stat.h>

#include "commands/commands.h"
#include "commands/image_plan.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/file.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/task/image_task.h"

namespace {

struct RECOVER_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strFrom;
    bool bDryRun = false;
};

void Report(const SESSION_S &stSession, const RECOVERED_S &stRecovered)
{
    if (stSession.bJson) {
        PrintJson(stRecovered.ToJson());
        return;
    }
    Print(Paint(Colour::Green, stRecovered.stDevice.Title()) + " " + stRecovered.Line() + "\n");
    const std::optional<IMAGE_PLAN_S> &optPlan = stRecovered.stRecovery.optPlan;
    if (stRecovered.bDryRun && optPlan.has_value()) {
        Print(ImagePlanText(*optPlan) + ByteChangesText(optPlan->vecBytes));
    }
}

void RunRecover(const SESSION_S &stSession, const RECOVER_S &stOptions)
{
    if (IsStream(stOptions.strFrom)) {
        (void)ReadNamedFile(stOptions.strFrom); // it may take its time: before the controller is locked
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    Report(stSession, RecoverDevice(stSession, stDevice, stOptions.strFrom, stOptions.bDryRun));
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
