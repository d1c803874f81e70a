// SPDX-License-Identifier: Apache-2.0
// fructl history, undo: the images that a device held before its last writes, and the way back to one.
#include "toolkit/controller/history.h"
#include "commands/commands.h"
#include "commands/image_plan.h"
#include "commands/raw.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/target.h"
#include "toolkit/task/image_task.h"

namespace {

constexpr u32 NUMBER_MAX = 999999U;

struct UNDO_OPTIONS_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strNumber;
    bool bDryRun = false;
};

void RunHistory(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions);
    const std::vector<PAST_IMAGE_S> vecPast = ReadHistory(stSession, stDevice);
    if (stSession.bJson) {
        PrintJson(HistoryJson(stDevice, vecPast));
        return;
    }
    Table stTable({">NUMBER", "KEPT", "IMAGE", "BEFORE"});
    for (const PAST_IMAGE_S &stPast : vecPast) {
        stTable.Row({Format("%u", stPast.uiNumber), stPast.strTime, PastImageName(stDevice, stPast),
                     stPast.strCommand});
    }
    Print(vecPast.empty() ? stDevice.Title() + " has not been written yet\n" : stTable.Text());
}

void RunUndo(const SESSION_S &stSession, const UNDO_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    std::optional<u32> optNumber;
    if (!stOptions.strNumber.empty()) {
        optNumber = NumberOption("--to", stOptions.strNumber, NUMBER_MAX);
    }
    const UNDONE_S stUndone = UndoDevice(stSession, stDevice, optNumber, stOptions.bDryRun);
    if (stSession.bJson) {
        PrintJson(stUndone.ToJson());
        return;
    }
    const PAST_IMAGE_S &stPast = stUndone.stPast;
    Print((stOptions.bDryRun ? "would put back" : Paint(Colour::Green, stDevice.Title()) + " holds") +
          Format(" image %u (%s), as it was on %s before: ", stPast.uiNumber,
                 PastImageName(stDevice, stPast).c_str(), stPast.strTime.c_str()) +
          stPast.strCommand + (stOptions.bDryRun ? "; nothing was written\n" : "\n") +
          ImagePlanText(stUndone.stPlan) +
          (stOptions.bDryRun ? ByteChangesText(stUndone.stPlan.vecBytes) : ""));
}

} // namespace

void AddHistoryCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<TARGET_OPTIONS_S>();
    const Command stCommand =
        stParent.Add("history", "The images that a device held before its last 20 writes",
                     "fructl history baseboard\nfructl history --id 1 --json");
    AddTargetOptions(stCommand, *pstOptions, false);
    stCommand.Run([&stSession, pstOptions] { RunHistory(stSession, *pstOptions); });
}

void AddUndoCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<UNDO_OPTIONS_S>();
    const Command stCommand =
        stParent.Add("undo", "Put back the image that a device held before its last write",
                     "fructl undo baseboard\nfructl undo psu1 --to 3 --dry-run");
    AddTargetOptions(stCommand, pstOptions->stTarget, false);
    stCommand.AddOption("--to", pstOptions->strNumber, "an image by its number in 'fructl history'")
        .Placeholder("N");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun, "say what would be put back, write nothing");
    stCommand.Run([&stSession, pstOptions] { RunUndo(stSession, *pstOptions); });
}
