// SPDX-License-Identifier: Apache-2.0
// fructl write: an image file onto a device.
#include "commands/commands.h"
#include "commands/image_plan.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/image_file.h"
#include "toolkit/task/image_task.h"

namespace {

struct WRITE_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strFile;
    bool bForce = false;
    bool bDryRun = false;
};

void Report(const SESSION_S &stSession, const IMAGE_WRITTEN_S &stWritten)
{
    const IMAGE_PLAN_S &stPlan = stWritten.stPlan;
    const std::string strTitle = stPlan.stChange.stDevice.Title();
    if (stSession.bJson) {
        PrintJson(stWritten.ToJson());
    } else if (stPlan.IsUnchanged()) {
        Print(strTitle + " is unchanged: it holds this image already; nothing was written\n");
    } else if (stWritten.bDryRun) {
        Print(strTitle + ": nothing was written; this would be\n" + ImagePlanText(stPlan) +
              ByteChangesText(stPlan.vecBytes));
    } else {
        Print(Paint(Colour::Green, stWritten.strSentence) + "\n" + ImagePlanText(stPlan));
    }
}

void RunWrite(const SESSION_S &stSession, const WRITE_S &stOptions)
{
    // A pipe may take its time: it is read before the controller is.
    if (IsStream(stOptions.strFile)) {
        (void)ReadNamedFile(stOptions.strFile);
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    const std::vector<u8> vecImage = ReadImageFile(stOptions.strFile);
    Report(stSession, WriteDevice(stSession, stDevice, vecImage, stOptions.bDryRun, stOptions.bForce));
}

} // namespace

void AddWriteCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<WRITE_S>();
    const Command stCommand =
        stParent.Add("write", "Write a whole image onto a device; what lies behind it becomes 0xff",
                     "fructl write psu1 psu1.bin --dry-run\nfructl write baseboard baseboard.hex\n"
                     "fructl read psu1 -o - | fructl write psu2 -");
    // Two words: the device and the file, or with --id the file alone.
    const auto pvecWords = std::make_shared<std::vector<std::string>>();
    stCommand
        .AddOption("DEVICE FILE", *pvecWords,
                   "TYPE:INSTANCE or a device's name, none with --id; and the image file (*.hex: "
                   "readable hex; -: standard input)")
        .Words(1, 2)
        .Required();
    stCommand
        .AddOption("--id", pstOptions->stTarget.strDeviceID,
                   "the device by its FRU device ID instead, 0 to 255")
        .Placeholder("N");
    stCommand.AddFlag("--force", pstOptions->bForce, "write an image that is not in order, too");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun,
                      "show the fields and bytes that would change, and write nothing");
    stCommand.Run([&stSession, pstOptions, pvecWords] {
        const bool bByID = !pstOptions->stTarget.strDeviceID.empty();
        if (pvecWords->size() != (bByID ? 1U : 2U)) {
            FailUsage(bByID ? "with --id only the image file is named"
                            : "a device and an image file are to be named");
        }
        pstOptions->stTarget.strTarget = bByID ? "" : pvecWords->front();
        pstOptions->strFile = pvecWords->back();
        RunWrite(stSession, *pstOptions);
    });
}
