// SPDX-License-Identifier: Apache-2.0
// fructl verify: is every byte of an image as it should be, and if not, what is wrong where.
#include "toolkit/task/verify.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/layout.h"

namespace {

std::string GoodText(const IMAGE_LAYOUT_S &stLayout)
{
    if (stLayout.vecAreas == std::vector<Area>{Area::Hardware}) {
        return AreaName(Area::Hardware);
    }
    std::vector<std::string> vecParts = {"header"};
    for (const Area enArea : stLayout.vecAreas) {
        vecParts.push_back(enArea == Area::MultiRecord ? Count(stLayout.uiMultiRecords, "MultiRecord")
                                                       : AreaKey(enArea));
    }
    return Join(vecParts, ", ");
}

std::string CheckText(const CHECK_S &stCheck)
{
    std::string strOut = stCheck.IsGood() ? Paint(Colour::Green, "good  ") : Paint(Colour::Red, "WRONG ");
    strOut += " " + Paint(Colour::Bold, stCheck.strTitle);
    strOut += stCheck.IsGood() ? ": " + GoodText(stCheck.stLayout) + "\n" : "\n";
    if (!stCheck.strFailure.empty()) {
        strOut += "         " + stCheck.strFailure + "\n";
    }
    for (const FINDING_S &stFinding : stCheck.stLayout.vecFindings) {
        strOut += "         " + FindingText(stFinding) +
                  (stFinding.bWarning ? Paint(Colour::Yellow, " (a warning only)") : "") + "\n";
    }
    return strOut;
}

void PrintChecks(const SESSION_S &stSession, const std::vector<CHECK_S> &vecChecks)
{
    if (stSession.bJson) {
        PrintJson(ChecksJson(vecChecks));
        return;
    }
    for (const CHECK_S &stCheck : vecChecks) {
        Print(CheckText(stCheck));
    }
}

struct VERIFY_S
{
    std::vector<std::string> vecTargets;
    std::vector<std::string> vecFiles;
    std::string strDeviceID;
    OFFSET_OPTION_S stOffset;
};

void RunVerify(SESSION_S &stSession, const VERIFY_S &stOptions)
{
    const std::optional<u32> optOffset = stOptions.stOffset.Chosen();
    std::vector<CHECK_S> vecChecks;
    for (const std::string &strTarget : stOptions.vecTargets) {
        CheckTarget(ResolveTarget(stSession, {strTarget, "", ""}), optOffset, vecChecks);
    }
    for (const std::string &strFile : stOptions.vecFiles) {
        CheckTarget(ResolveTarget(stSession, {"", "", strFile}), optOffset, vecChecks);
    }
    if (!stOptions.strDeviceID.empty()) {
        CheckTarget(ResolveTarget(stSession, {"", stOptions.strDeviceID, ""}), optOffset, vecChecks);
    }
    if (vecChecks.empty()) {
        CheckDevices(stSession, optOffset, vecChecks);
    }
    PrintChecks(stSession, vecChecks);
    size_t uiWrong = 0;
    for (const CHECK_S &stCheck : vecChecks) {
        uiWrong += stCheck.IsGood() ? 0U : 1U;
    }
    if (uiWrong != 0U) {
        stSession.optFailure = ExitCode::Failed; // the check's answer, whatever was found
        Fail(ErrorClass::Damaged,
             Format("verify: %zu of %s %s not in order", uiWrong, Count(vecChecks.size(), "image").c_str(),
                    uiWrong == 1U ? "is" : "are"));
    }
}

} // namespace

void AddVerifyCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<VERIFY_S>();
    const Command stCommand = stParent.Add(
        "verify", "Check images byte by byte; exit 1 when anything is wrong",
        "fructl verify\nfructl verify baseboard 0x30:0\nfructl verify ./dump.bin examples/*.hex --json");
    stCommand.AddOption("DEVICE|FILE", pstOptions->vecTargets,
                        "devices or image files; none: all devices, their EEPROMs and the cached images "
                        "that differ from them");
    stCommand.AddOption("--file", pstOptions->vecFiles, "image files, whatever their names")
        .Placeholder("FILE");
    stCommand.AddOption("--id", pstOptions->strDeviceID, "a device by its FRU device ID, 0 to 255")
        .Placeholder("N");
    AddOffsetOption(stCommand, pstOptions->stOffset);
    stCommand.Run([&stSession, pstOptions] { RunVerify(stSession, *pstOptions); });
}
