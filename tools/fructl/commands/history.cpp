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
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/journal.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/image_write.h"
#include "toolkit/edit/undo.h"
#include "toolkit/image/layout.h"

namespace {

constexpr u32 NUMBER_MAX = 999999U;

struct UNDO_OPTIONS_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strNumber;
    bool bDryRun = false;
};

// In short what an image is.
std::string Verdict(const DEVICE_S &stDevice, const PAST_IMAGE_S &stPast)
{
    const std::optional<Bytes> &optBytes = stDevice.IsDatabaseOnly() ? stPast.optCache : stPast.optEeprom;
    if (!optBytes.has_value()) {
        return "none";
    }
    const IMAGE_LAYOUT_S stLayout = WalkImage(*optBytes, optBytes->size(), stDevice.HasFixedSlots());
    return stLayout.bErased ? "erased" : stLayout.IsSound() ? "good" : "damaged";
}

void RunHistory(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions);
    Table stTable({">NUMBER", "KEPT", "IMAGE", "BEFORE"});
    Json stImages = Json::array();
    for (const PAST_IMAGE_S &stPast : ReadHistory(stSession, stDevice)) {
        stTable.Row(
            {Format("%u", stPast.uiNumber), stPast.strTime, Verdict(stDevice, stPast), stPast.strCommand});
        stImages.push_back({{"number", stPast.uiNumber},
                            {"time", stPast.strTime},
                            {"image", Verdict(stDevice, stPast)},
                            {"command", stPast.strCommand}});
    }
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)}, {"images", stImages}});
    } else if (stImages.empty()) {
        Print(stDevice.Title() + " has not been written yet\n");
    } else {
        Print(stTable.Text());
    }
}

void RunUndo(const SESSION_S &stSession, const UNDO_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    std::optional<u32> optNumber;
    if (!stOptions.strNumber.empty()) {
        optNumber = NumberOption("--to", stOptions.strNumber, NUMBER_MAX);
    }
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const PAST_IMAGE_S stPast = ChoosePast(stDevice, ReadHistory(stSession, stDevice), optNumber);
    const CHANGE_S stChange = PlanUndo(stDevice, stPast);
    const IMAGE_PLAN_S stShown = PlanImage(stDevice, stChange.Home().vecAfter);
    if (optLock.has_value()) {
        WriteUndo(*optLock, stChange);
    }
    if (stSession.bJson) {
        Json stJson = {{"device", DeviceJson(stDevice)}, {"dryRun", stOptions.bDryRun},
                       {"number", stPast.uiNumber},      {"image", Verdict(stDevice, stPast)},
                       {"time", stPast.strTime},         {"command", stPast.strCommand}};
        stJson.update(ImagePlanJson(stShown));
        PrintJson(stJson);
        return;
    }
    Print((stOptions.bDryRun ? "would put back" : Paint(Colour::Green, stDevice.Title()) + " holds") +
          Format(" image %u (%s), as it was on %s before: ", stPast.uiNumber,
                 Verdict(stDevice, stPast).c_str(), stPast.strTime.c_str()) +
          stPast.strCommand + (stOptions.bDryRun ? "; nothing was written\n" : "\n") +
          ImagePlanText(stShown) + (stOptions.bDryRun ? ByteChangesText(stShown.vecBytes) : ""));
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
