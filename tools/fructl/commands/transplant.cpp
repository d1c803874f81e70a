// SPDX-License-Identifier: Apache-2.0
// fructl transplant: the identity of a server from one board to another.
#include "toolkit/edit/transplant.h"
#include "commands/commands.h"
#include "commands/patch_plan.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"

namespace {

struct TRANSPLANT_OPTIONS_S
{
    std::string strFrom;
    std::string strTo;
    PATCH_OPTIONS_S stPatch;
};

PATCH_WORK_S PlanTransplant(const TARGET_S &stFrom, const TARGET_S &stTo, const IMAGE_S &stImage)
{
    const IMAGE_S stOld = ReadTarget(stFrom);
    const std::vector<u8> vecFrom(stOld.vecBytes.begin(),
                                  stOld.vecBytes.begin() + static_cast<std::ptrdiff_t>(stOld.uiStored));
    std::vector<std::string> vecNotes;
    const std::vector<u8> vecBase = BaseOf(stImage, vecNotes);
    TRANSPLANT_S stMade;
    try {
        stMade = Transplant(vecFrom, vecBase, RoomOf(stTo, stImage));
    } catch (const Error &stError) {
        throw Error(stError.Class(), "from " + stFrom.Title() + " to " + stTo.Title() + ": " + stError.what(),
                    stError.Accepted());
    }
    vecNotes.insert(vecNotes.end(), stMade.vecNotes.begin(), stMade.vecNotes.end());
    PATCH_WORK_S stWork = {PlanPatch(stTo, stImage, stMade.vecAfter, vecNotes), {}};
    stWork.vecOperations = {
        {FRU_LABEL_NOT_FOUND, "identity", Join(stMade.vecMoved, ", ") + " of " + stFrom.Title()}};
    stWork.stJson = {{"from", stFrom.Title()}, {"moved", stMade.vecMoved}};
    return stWork;
}

void RunTransplant(const SESSION_S &stSession, const TRANSPLANT_OPTIONS_S &stOptions)
{
    const TARGET_S stFrom = ResolveTarget(stSession, {stOptions.strFrom, ""});
    const TARGET_S stTo = ResolveTarget(stSession, {stOptions.strTo, ""});
    RunPatch(stSession, stTo, stOptions.stPatch,
             [&](const IMAGE_S &stImage) { return PlanTransplant(stFrom, stTo, stImage); });
}

} // namespace

void AddTransplantCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<TRANSPLANT_OPTIONS_S>();
    const Command stCommand = stParent.Add(
        "transplant",
        "Give a new board the identity of its server: chassis and product areas, system name and ID",
        "fructl transplant ./old-board.bin baseboard --dry-run\nfructl transplant ./old-board.bin baseboard");
    stCommand
        .AddOption("FROM", pstOptions->strFrom,
                   "the old board: TYPE:INSTANCE, a device's name or an image file's path")
        .Required();
    stCommand
        .AddOption("TO", pstOptions->strTo,
                   "the new one, whose own board area stays; 'fructl undo' takes it back")
        .Required();
    AddPatchOptions(stCommand, pstOptions->stPatch);
    stCommand.Run([&stSession, pstOptions] { RunTransplant(stSession, *pstOptions); });
}
