// SPDX-License-Identifier: Apache-2.0
// fructl read: a device's whole image into a file.
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/encode.h"

namespace {

constexpr const char *STANDARD_OUTPUT = "-";

struct READ_S
{
    TARGET_OPTIONS_S stTarget;
    std::string strSource;
    std::string strOutput;
    bool bForce = false;
};

// Before the device is read: what must not be written to, and why.
void CheckOutput(const SESSION_S &stSession, const READ_S &stOptions)
{
    const std::string strShown = EscapeText(stOptions.strOutput);
    if (stOptions.strOutput == STANDARD_OUTPUT) {
        if (stSession.bJson) {
            FailUsage("-o - and --json both want standard output; accepted: one of them");
        }
        if (isatty(STDOUT_FILENO) == 1) {
            FailUsage(
                "an image is bytes that a terminal cannot show; accepted: a file, or a pipe behind -o -");
        }
        return;
    }
    struct stat stStat = {};
    if (lstat(stOptions.strOutput.c_str(), &stStat) != 0) {
        return;
    }
    if (!S_ISREG(stStat.st_mode)) {
        Fail(strShown + " is no regular file and stays as it is; accepted: a file's name, or - for standard "
                        "output");
    }
    if (!stOptions.bForce) {
        Fail(strShown + " is there already; --force replaces it");
    }
}

void RunRead(const SESSION_S &stSession, const READ_S &stOptions)
{
    CheckOutput(stSession, stOptions);
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    const Source enSource = stOptions.strSource.empty()      ? HomeOf(stDevice)
                            : stOptions.strSource == "cache" ? Source::Cache
                                                             : Source::Eeprom;
    if (enSource == Source::Eeprom && stDevice.IsDatabaseOnly()) {
        Fail(stDevice.Title() + " is served from the cache only and has no EEPROM; accepted: --source cache");
    }
    const IMAGE_S stImage = ReadSource(stDevice, enSource);
    const VERDICT_S stVerdict = VerdictOn(stImage, stDevice.HasFixedSlots());
    if (stOptions.strOutput == STANDARD_OUTPUT) {
        Print(std::string(stImage.vecBytes.begin(), stImage.vecBytes.end()));
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
    } else if (stOptions.strOutput != STANDARD_OUTPUT) {
        Print(Paint(Colour::Green, EscapeText(stOptions.strOutput)) +
              Format(": %zu bytes from the %s of ", stImage.vecBytes.size(), SourceName(enSource)) +
              stDevice.Title() + "\n");
    }
}

} // namespace

void AddReadCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<READ_S>();
    CLI::App *pstCommand =
        AddCommand(stParent, "read", "Read a device's whole image into a file",
                   "fructl read baseboard -o baseboard.bin\nfructl read psu1 -o psu1.hex --source cache\n"
                   "fructl read --id 1 -o - | sha256sum");
    AddTargetOptions(pstCommand, pstOptions->stTarget, false);
    pstCommand
        ->add_option("-o,--output", pstOptions->strOutput,
                     "the image file to make (*.hex: readable hex); -: standard output")
        ->type_name("FILE")
        ->required();
    pstCommand
        ->add_option("--source", pstOptions->strSource,
                     "eeprom or cache; without it the EEPROM, or the cache where the device has no other")
        ->check(CLI::IsMember({"eeprom", "cache"}))
        ->type_name("SOURCE");
    pstCommand->add_flag("--force", pstOptions->bForce, "replace a file that is there");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunRead(stSession, *pstOptions); };
    });
}
