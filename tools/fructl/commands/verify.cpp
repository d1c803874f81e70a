// SPDX-License-Identifier: Apache-2.0
// fructl verify: is every byte of an image as it should be, and if not, what is wrong where.
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/foreign.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/layout_json.h"

namespace {

// One checked image: a device's EEPROM, a device's cached image or a file.
struct CHECK_S
{
    std::string strTitle;
    Json stJson;
    IMAGE_LAYOUT_S stLayout;
    std::string strFailure; // not empty: there are no bytes to look at, or the library disagrees
    bool bCheckedLibrary;

    bool IsGood() const
    {
        return strFailure.empty() && stLayout.IsSound();
    }
};

CHECK_S CheckImage(const TARGET_S &stTarget, const IMAGE_S &stImage)
{
    const VERDICT_S stVerdict = VerdictOn(stImage, stTarget.HasFixedSlots());
    CHECK_S stCheck = {stTarget.Title(), TargetJson(stTarget), stVerdict.stLayout, stVerdict.strRefusal,
                       true};
    if (stImage.enSource == Source::Cache) {
        stCheck.strTitle += ", cached image";
    }
    stCheck.stJson["source"] = SourceName(stImage.enSource);
    return stCheck;
}

CHECK_S Unreadable(const TARGET_S &stTarget, Source enSource, const std::string &strWhy)
{
    CHECK_S stCheck = {stTarget.Title(), TargetJson(stTarget), {}, strWhy, false};
    stCheck.stJson["source"] = SourceName(enSource);
    return stCheck;
}

// Where the image does not begin with the first byte, but one does further on.
void TellOfOthers(const IMAGE_S &stImage, CHECK_S &stCheck)
{
    if (stCheck.IsGood() || BeginsWithHeader(stImage.vecBytes, stImage.uiStored)) {
        return;
    }
    const std::vector<u32> vecFound = FindImages(stImage.vecBytes, stImage.uiStored);
    if (!vecFound.empty()) {
        stCheck.strFailure =
            Format("no FRU image begins at byte 0, but one does at byte 0x%04x: --offset 0x%x checks it",
                   vecFound.front(), vecFound.front());
    }
}

// The EEPROM's image, and the cached one where it is served to readers and is another.
void CheckTarget(const TARGET_S &stTarget, std::optional<u32> optOffset, std::vector<CHECK_S> &vecChecks)
{
    std::optional<IMAGE_S> optImage;
    try {
        optImage = ReadTarget(stTarget);
        if (optOffset.has_value()) {
            vecChecks.push_back(CheckImage(stTarget, PartFrom(*optImage, *optOffset).stImage));
            return;
        }
        vecChecks.push_back(CheckImage(stTarget, *optImage));
        TellOfOthers(*optImage, vecChecks.back());
    } catch (const Error &stError) {
        vecChecks.push_back(Unreadable(
            stTarget, stTarget.optDevice.has_value() ? Source::Eeprom : Source::File, stError.what()));
    }
    if (!stTarget.optDevice.has_value() || !optImage.has_value()) {
        return;
    }
    const std::optional<size_t> optAt = CacheDifference(*stTarget.optDevice, *optImage);
    if (optAt.has_value()) {
        const IMAGE_S stCached = ReadSource(*stTarget.optDevice, Source::Cache);
        CHECK_S stCheck = CheckImage(stTarget, stCached);
        stCheck.strFailure =
            Format("%s the EEPROM from byte 0x%04zx on (0x%02x in the EEPROM, 0x%02x cached)",
                   stCheck.stLayout.IsSound() ? "sound in itself, but differs from" : "differs from", *optAt,
                   optImage->vecBytes[*optAt], stCached.vecBytes[*optAt]);
        vecChecks.push_back(stCheck);
    }
}

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
    Json stImages = Json::array();
    for (const CHECK_S &stCheck : vecChecks) {
        if (!stSession.bJson) {
            Print(CheckText(stCheck));
            continue;
        }
        Json stJson = stCheck.stJson;
        stJson.update(FindingsJson(stCheck.stLayout));
        stJson["sound"] = stCheck.IsGood();
        if (!stCheck.strFailure.empty()) {
            stJson["failure"] = stCheck.strFailure;
        }
        stImages.push_back(stJson);
    }
    if (stSession.bJson) {
        PrintJson({{"images", stImages}});
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
        const std::vector<DEVICE_S> vecDevices = LoadDevices(stSession);
        if (vecDevices.empty()) {
            Fail(ErrorClass::NotFound,
                 "the controller in " + stSession.strRoot + " has no devices; nothing was checked");
        }
        for (const DEVICE_S &stDevice : vecDevices) {
            CheckTarget({stDevice, ""}, optOffset, vecChecks);
        }
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
