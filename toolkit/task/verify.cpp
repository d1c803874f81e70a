// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/verify.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/image/foreign.h"
#include "toolkit/image/image_part.h"
#include "toolkit/image/layout_json.h"

namespace {

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

} // namespace

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

void CheckDevices(const CONTROLLER_S &stController, std::optional<u32> optOffset,
                  std::vector<CHECK_S> &vecChecks)
{
    const std::vector<DEVICE_S> vecDevices = LoadDevices(stController);
    if (vecDevices.empty()) {
        Fail(ErrorClass::NotFound,
             "the controller in " + stController.strRoot + " has no devices; nothing was checked");
    }
    for (const DEVICE_S &stDevice : vecDevices) {
        CheckTarget({stDevice, ""}, optOffset, vecChecks);
    }
}

Json ChecksJson(const std::vector<CHECK_S> &vecChecks)
{
    Json stImages = Json::array();
    for (const CHECK_S &stCheck : vecChecks) {
        Json stJson = stCheck.stJson;
        stJson.update(FindingsJson(stCheck.stLayout));
        stJson["sound"] = stCheck.IsGood();
        if (!stCheck.strFailure.empty()) {
            stJson["failure"] = stCheck.strFailure;
        }
        stImages.push_back(stJson);
    }
    return {{"images", stImages}};
}
