// SPDX-License-Identifier: Apache-2.0
// fructl repair: checksums, and nothing else.
#include "toolkit/edit/repair.h"
#include "commands/commands.h"
#include "commands/patch_plan.h"
#include "terminal/console.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/foreign.h"
#include "toolkit/image/hardware_block.h"

namespace {

struct REPAIR_OPTIONS_S
{
    TARGET_OPTIONS_S stTarget;
    PATCH_OPTIONS_S stPatch;
};

PATCH_WORK_S PlanRepair(const TARGET_S &stTarget, const IMAGE_S &stImage, std::vector<std::string> &vecLeft)
{
    const std::string strForeign = ForeignName(stImage.vecBytes, stImage.uiStored);
    if (!strForeign.empty()) {
        Fail(ErrorClass::Damaged, stTarget.Title() + " holds nothing to mend: " + strForeign);
    }
    if (IsHardwareBlock(stImage.vecBytes, stImage.uiStored)) {
        FailRefused(stTarget.Title() + " holds no FRU image but a hardware block; 'fructl hw show' shows it");
    }
    const std::vector<u8> vecBefore(stImage.vecBytes.begin(),
                                    stImage.vecBytes.begin() + static_cast<std::ptrdiff_t>(stImage.uiStored));
    REPAIR_S stRepair;
    try {
        stRepair = RepairChecksums(vecBefore);
    } catch (const Error &stError) {
        throw Error(stError.Class(), stTarget.Title() + ": " + stError.what());
    }
    std::vector<std::string> vecNotes;
    for (const std::string &strMended : stRepair.vecMended) {
        vecNotes.push_back("checksum of the " + strMended + " made anew");
    }
    vecLeft = stRepair.vecLeft;
    PATCH_WORK_S stWork = {PlanPatch(stTarget, stImage, stRepair.vecAfter, vecNotes, true), {}};
    stWork.vecOperations = {{FRU_LABEL_NOT_FOUND, "checksums", Join(stRepair.vecMended, ", ")}};
    stWork.stJson = {{"mended", stRepair.vecMended}, {"left", stRepair.vecLeft}};
    return stWork;
}

void RunRepair(const SESSION_S &stSession, const REPAIR_OPTIONS_S &stOptions)
{
    const TARGET_S stTarget = ResolveTarget(stSession, stOptions.stTarget);
    std::vector<std::string> vecLeft;
    bool bSound = true;
    RunPatch(stSession, stTarget, stOptions.stPatch, [&](const IMAGE_S &stImage) {
        PATCH_WORK_S stWork = PlanRepair(stTarget, stImage, vecLeft);
        bSound = stWork.stPatch.bSound;
        return stWork;
    });
    if (!vecLeft.empty() || !bSound) {
        Fail(ErrorClass::Damaged, stTarget.Title() + " is not in order all the same" +
                                      (vecLeft.empty() ? "" : ": " + Join(vecLeft, "; ")) +
                                      "; 'fructl verify' tells all, 'fructl show --lenient' what is left");
    }
}

} // namespace

void AddRepairCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<REPAIR_OPTIONS_S>();
    const Command stCommand = stParent.Add(
        "repair", "Mend wrong checksums of an image, and nothing else",
        "fructl repair psu1 --dry-run\nfructl repair psu1\nfructl repair ./dump.bin -o ./mended.bin");
    AddTargetOptions(stCommand, pstOptions->stTarget, true);
    AddPatchOptions(stCommand, pstOptions->stPatch);
    stCommand.Run([&stSession, pstOptions] { RunRepair(stSession, *pstOptions); });
}
