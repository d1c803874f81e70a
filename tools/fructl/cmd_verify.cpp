// fructl verify: is every byte of an image as it should be, and if not, what is wrong where.
#include "commands.h"
#include "console.h"
#include "error.h"
#include "hw_block.h"
#include "json_out.h"
#include "record.h"
#include "text.h"

namespace {

// One checked image: a device's EEPROM, a device's cached image or a file.
struct CHECK_S
{
    std::string strTitle;
    JSON stJson;
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
    CHECK_S stCheck = {stTarget.Title(), TargetJson(stTarget), LayoutOf(stImage, stTarget.HasFixedSlots()),
                       "", true};
    if (stImage.strSource == "cache") {
        stCheck.strTitle += ", cached image";
    }
    stCheck.stJson["source"] = stImage.strSource;
    // The library has the last word: what it refuses is not in order, whatever the walk above thinks.
    // It has no word on a hardware block, whose CRC-8 bytes it has computed for the walk.
    if (IsHardwareBlock(stImage.vecBytes, stImage.uiStored)) {
        return stCheck;
    }
    RECORD stRecord;
    ClearDiagnostics();
    const u32 uiRet = DecodeImage(stImage, stTarget.HasFixedSlots(), stRecord);
    if (uiRet != FRU_OK && stCheck.stLayout.IsSound()) {
        stCheck.strFailure = "the library refuses it: " + StatusText(uiRet) + DiagnosticHint();
    }
    return stCheck;
}

CHECK_S Unreadable(const TARGET_S &stTarget, const char *pcSource, const std::string &strWhy)
{
    CHECK_S stCheck = {stTarget.Title(), TargetJson(stTarget), {}, strWhy, false};
    stCheck.stJson["source"] = pcSource;
    return stCheck;
}

// The EEPROM's image, and the cached one where it is served to readers and is another.
void CheckTarget(const TARGET_S &stTarget, std::vector<CHECK_S> &vecChecks)
{
    std::optional<IMAGE_S> optImage;
    try {
        optImage = ReadTarget(stTarget);
        vecChecks.push_back(CheckImage(stTarget, *optImage));
    } catch (const FRUCTL_ERROR &stError) {
        vecChecks.push_back(
            Unreadable(stTarget, stTarget.optDevice.has_value() ? "EEPROM" : "file", stError.what()));
    }
    if (!stTarget.optDevice.has_value() || stTarget.optDevice->IsDatabaseOnly() ||
        !IsCacheTrusted(*stTarget.optDevice)) {
        return;
    }
    const std::optional<IMAGE_S> optCached = ReadCache(*stTarget.optDevice);
    if (!optCached.has_value() || !optImage.has_value()) {
        return;
    }
    const std::optional<size_t> optAt = FirstDifference(*optImage, *optCached, stTarget.HasFixedSlots());
    if (optAt.has_value()) {
        CHECK_S stCheck = CheckImage(stTarget, *optCached);
        stCheck.strFailure =
            Format("%s the EEPROM from byte 0x%04zx on (0x%02x in the EEPROM, 0x%02x cached)",
                   stCheck.stLayout.IsSound() ? "sound in itself, but differs from" : "differs from", *optAt,
                   optImage->vecBytes[*optAt], optCached->vecBytes[*optAt]);
        vecChecks.push_back(stCheck);
    }
}

std::string GoodText(const IMAGE_LAYOUT_S &stLayout)
{
    if (stLayout.vecAreas == std::vector<AREA>{AREA::Hardware}) {
        return AreaName(AREA::Hardware);
    }
    std::vector<std::string> vecParts = {"header"};
    for (const AREA enArea : stLayout.vecAreas) {
        vecParts.push_back(enArea == AREA::MultiRecord ? Count(stLayout.uiMultiRecords, "MultiRecord")
                                                       : AreaKey(enArea));
    }
    return Join(vecParts, ", ");
}

std::string CheckText(const CHECK_S &stCheck)
{
    std::string strOut = stCheck.IsGood() ? Paint(COLOUR::Green, "good  ") : Paint(COLOUR::Red, "WRONG ");
    strOut += " " + Paint(COLOUR::Bold, stCheck.strTitle);
    strOut += stCheck.IsGood() ? ": " + GoodText(stCheck.stLayout) + "\n" : "\n";
    if (!stCheck.strFailure.empty()) {
        strOut += "         " + stCheck.strFailure + "\n";
    }
    for (const FINDING_S &stFinding : stCheck.stLayout.vecFindings) {
        strOut += "         " + FindingText(stFinding) +
                  (stFinding.bWarning ? Paint(COLOUR::Yellow, " (a warning only)") : "") + "\n";
    }
    return strOut;
}

void PrintChecks(const SESSION_S &stSession, const std::vector<CHECK_S> &vecChecks)
{
    JSON stImages = JSON::array();
    for (const CHECK_S &stCheck : vecChecks) {
        if (!stSession.bJson) {
            Print(CheckText(stCheck));
            continue;
        }
        JSON stJson = stCheck.stJson;
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

void RunVerify(const SESSION_S &stSession, const std::vector<std::string> &vecTargets,
               const std::string &strDeviceID)
{
    std::vector<CHECK_S> vecChecks;
    for (const std::string &strTarget : vecTargets) {
        CheckTarget(ResolveTarget(stSession, {strTarget, ""}), vecChecks);
    }
    if (!strDeviceID.empty()) {
        CheckTarget(ResolveTarget(stSession, {"", strDeviceID}), vecChecks);
    }
    if (vecTargets.empty() && strDeviceID.empty()) {
        for (const DEVICE_S &stDevice : LoadDevices(stSession)) {
            CheckTarget({stDevice, ""}, vecChecks);
        }
    }
    PrintChecks(stSession, vecChecks);
    size_t uiWrong = 0;
    for (const CHECK_S &stCheck : vecChecks) {
        uiWrong += stCheck.IsGood() ? 0U : 1U;
    }
    if (uiWrong != 0U) {
        Fail(Format("verify: %zu of %s %s not in order", uiWrong, Count(vecChecks.size(), "image").c_str(),
                    uiWrong == 1U ? "is" : "are"));
    }
}

} // namespace

void AddVerifyCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pvecTargets = std::make_shared<std::vector<std::string>>();
    const auto pstrDeviceID = std::make_shared<std::string>();
    CLI::App *pstCommand = AddCommand(
        stParent, "verify", "Check images byte by byte; exit 1 when anything is wrong",
        "fructl verify\nfructl verify baseboard 0x30:0\nfructl verify dump.bin examples/*.hex --json");
    pstCommand->add_option("DEVICE|FILE", *pvecTargets,
                           "devices or image files; none: all devices, their EEPROMs and the cached images "
                           "that differ from them");
    pstCommand->add_option("--id", *pstrDeviceID, "a device by its FRU device ID, 0 to 255")->type_name("N");
    pstCommand->callback([&stSession, pvecTargets, pstrDeviceID] {
        stSession.fnRun = [&stSession, pvecTargets, pstrDeviceID] {
            RunVerify(stSession, *pvecTargets, *pstrDeviceID);
        };
    });
}
