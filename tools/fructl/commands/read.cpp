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
#include "toolkit/controller/target.h"
#include "toolkit/edit/encode.h"
#include "toolkit/task/image_task.h"

namespace {

struct READ_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
    OUTPUT_OPTION_S stOutput;
};

void RunRead(const SESSION_S &stSession, const READ_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    const bool bOutput = stOptions.stOutput.IsPipe(stSession);
    if (bOutput && isatty(STDOUT_FILENO) == 1) {
        FailUsage("an image is bytes that no terminal shows; accepted: a file, or a pipe behind -o -");
    }
    const IMAGE_READ_S stRead = ReadDevice(stDevice, stOptions.stSource.Chosen());
    const std::vector<u8> &vecBytes = stRead.stImage.vecBytes;
    const std::string &strFile = stOptions.stOutput.strFile;
    if (bOutput) {
        Print(std::string(vecBytes.begin(), vecBytes.end())); // and nothing else
    } else {
        WriteImageFile(strFile, vecBytes);
    }
    stRead.WarnOfDamage(stSession);
    if (stSession.bJson) {
        PrintJson(stRead.ToJson(strFile));
    } else if (!bOutput) {
        Print(Paint(Colour::Green, EscapeText(strFile)) +
              Format(": %zu bytes from the %s of ", vecBytes.size(), SourceName(stRead.stImage.enSource)) +
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
    AddOutputOption(stCommand, pstOptions->stOutput,
                    "the image file to make (*.hex: readable hex); -: standard output")
        .Required();
    AddSourceOption(stCommand, pstOptions->stSource);
    stCommand.Run([&stSession, pstOptions] { RunRead(stSession, *pstOptions); });
}
