// SPDX-License-Identifier: Apache-2.0
// fructl read: a device's whole image into a file.
#include <unistd.h>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/encode.h"

namespace {

struct READ_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
    std::string strOutput;
    bool bForce = false;
};

// Before the device is read: what cannot be written to, and why.
void CheckOutput(const SESSION_S &stSession, const READ_S &stOptions)
{
    if (!IsStandardOutput(stOptions.strOutput)) {
        const std::string strShown = EscapeText(stOptions.strOutput);
        const PathKind enKind = KindOf(stOptions.strOutput);
        if (enKind == PathKind::Other) {
            FailRefused(strShown + " is no file and stays as it is; accepted: a file's name, or -");
        }
        if (enKind == PathKind::File && !stOptions.bForce) {
            FailRefused(strShown + " is there already; --force replaces it");
        }
        return;
    }
    if (stSession.bJson) {
        FailUsage("-o - and --json both want standard output; accepted: one of them");
    }
    if (isatty(STDOUT_FILENO) == 1) {
        FailUsage("an image is bytes that no terminal shows; accepted: a file, or a pipe behind -o -");
    }
}

void RunRead(const SESSION_S &stSession, const READ_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    CheckOutput(stSession, stOptions);
    const Source enSource = stOptions.stSource.Chosen().value_or(HomeOf(stDevice));
    const IMAGE_S stImage = ReadShown({stDevice, ""}, enSource);
    const VERDICT_S stVerdict = VerdictOn(stImage, stDevice.HasFixedSlots());
    const bool bOutput = IsStandardOutput(stOptions.strOutput);
    if (bOutput) {
        Print(std::string(stImage.vecBytes.begin(), stImage.vecBytes.end())); // and nothing else
    } else {
        WriteImageFile(stOptions.strOutput, stImage.vecBytes);
    }
    if (!stVerdict.IsGood()) {
        stSession.Warn(stDevice.Title() + ": the image is not in order: " + stVerdict.Why());
    }
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)},
                   {"source", SourceName(enSource)},
                   {"file", stOptions.strOutput},
                   {"size", stImage.vecBytes.size()},
                   {"sound", stVerdict.IsGood()}});
    } else if (!bOutput) {
        Print(Paint(Colour::Green, EscapeText(stOptions.strOutput)) +
              Format(": %zu bytes from the %s of ", stImage.vecBytes.size(), SourceName(enSource)) +
              stDevice.Title() + "\n");
    }
}

} // namespace

void AddReadCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<READ_S>();
    const Command stCommand =
        stParent.Add("read", "Read a device's whole image into a file",
                     "fructl read baseboard -o baseboard.bin\nfructl read psu1 -o psu1.hex --source cache\n"
                     "fructl read --id 1 -o - | sha256sum");
    AddTargetOptions(stCommand, pstOptions->stTarget, false);
    stCommand
        .AddOption("-o,--output", pstOptions->strOutput,
                   "the image file to make (*.hex: readable hex); -: standard output")
        .Placeholder("FILE")
        .Required();
    AddSourceOption(stCommand, pstOptions->stSource);
    stCommand.AddFlag("--force", pstOptions->bForce, "replace a file that is there");
    stCommand.Run([&stSession, pstOptions] { RunRead(stSession, *pstOptions); });
}
