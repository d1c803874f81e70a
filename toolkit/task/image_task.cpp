// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/image_task.h"

#include "toolkit/base/error.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/journal.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/undo.h"
#include "toolkit/image/differences_json.h"
#include "toolkit/image/layout.h"

namespace {

// Of a task that writes; one that only plans takes none.
void LockUnless(bool bDryRun, const CONTROLLER_S &stController, std::optional<RootLock> &optLock)
{
    if (!bDryRun) {
        optLock.emplace(stController);
    }
}

} // namespace

Json ImagePlanJson(const IMAGE_PLAN_S &stPlan)
{
    return {{"unchanged", stPlan.IsUnchanged()},
            {"sound", stPlan.stVerdict.IsGood()},
            {"fields", FieldChangesJson(stPlan.vecFields, "old", "new")},
            {"bytes", ByteChangesJson(stPlan.vecBytes)},
            {"notes", stPlan.vecNotes}};
}

Json IMAGE_READ_S::ToJson(const std::string &strFile) const
{
    Json stJson = {{"device", DeviceJson(stDevice)}, {"source", SourceName(stImage.enSource)}};
    if (!strFile.empty()) {
        stJson["file"] = strFile;
    }
    stJson["size"] = stImage.vecBytes.size();
    stJson["sound"] = stVerdict.IsGood();
    return stJson;
}

void IMAGE_READ_S::WarnOfDamage(const CONTROLLER_S &stController) const
{
    if (!stVerdict.IsGood()) {
        stController.Warn(stDevice.Title() + ": the image is not in order: " + stVerdict.Why());
    }
}

IMAGE_READ_S ReadDevice(const DEVICE_S &stDevice, std::optional<Source> optSource)
{
    const IMAGE_S stImage = ReadShown({stDevice, ""}, optSource.value_or(HomeOf(stDevice)));
    return {stDevice, stImage, VerdictOn(stImage, stDevice.HasFixedSlots())};
}

Json IMAGE_WRITTEN_S::ToJson() const
{
    Json stJson = {{"device", DeviceJson(stPlan.stChange.stDevice)}, {"dryRun", bDryRun}};
    stJson.update(ImagePlanJson(stPlan));
    if (!strSentence.empty()) {
        stJson["operationLog"] = strSentence;
    }
    return stJson;
}

IMAGE_WRITTEN_S WriteDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                            const std::vector<u8> &vecImage, bool bDryRun, bool bForce)
{
    std::optional<RootLock> optLock;
    LockUnless(bDryRun, stController, optLock);
    IMAGE_WRITTEN_S stWritten = {PlanImage(stDevice, vecImage), bDryRun, ""};
    const IMAGE_PLAN_S &stPlan = stWritten.stPlan;
    if (!stPlan.stVerdict.IsGood()) {
        const std::string strWhy = "the image is not in order: " + stPlan.stVerdict.Why();
        if (!bForce) {
            Fail(ErrorClass::Damaged,
                 "refused, for " + strWhy + "; --force writes it to " + stDevice.Title() + " all the same");
        }
        stController.Warn(strWhy);
    }
    if (optLock.has_value() && !stPlan.IsUnchanged()) {
        stWritten.strSentence = WriteImage(*optLock, stPlan, "written");
    }
    return stWritten;
}

std::string RECOVERED_S::Line() const
{
    if (stRecovery.strDamage.empty()) {
        return "was fine; nothing was written";
    }
    return bDryRun ? "is damaged: " + stRecovery.strDamage +
                         "; nothing was written; it would be restored from " + stRecovery.strSource
                   : "was damaged and is restored from " + stRecovery.strSource;
}

Json RECOVERED_S::ToJson() const
{
    Json stJson = {{"device", DeviceJson(stDevice)},
                   {"outcome", stRecovery.strDamage.empty() ? "fine"
                               : bDryRun                    ? "damaged"
                                                            : "restored"},
                   {"storedImage", stDevice.ImagePath()},
                   {"text", Line()}};
    if (stRecovery.optPlan.has_value()) {
        stJson.update({{"dryRun", bDryRun}, {"damage", stRecovery.strDamage}, {"from", stRecovery.strFrom}});
        stJson.update(ImagePlanJson(*stRecovery.optPlan));
    }
    return stJson;
}

RECOVERED_S RecoverDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                          const std::string &strFrom, bool bDryRun)
{
    std::optional<RootLock> optLock;
    LockUnless(bDryRun, stController, optLock);
    RECOVERED_S stRecovered = {stDevice, PlanRecovery(stController, stDevice, strFrom), bDryRun};
    if (optLock.has_value() && stRecovered.stRecovery.optPlan.has_value()) {
        WriteRecovery(*optLock, stDevice, stRecovered.stRecovery);
    }
    return stRecovered;
}

std::string PastImageName(const DEVICE_S &stDevice, const PAST_IMAGE_S &stPast)
{
    const std::optional<Bytes> &optBytes = stDevice.IsDatabaseOnly() ? stPast.optCache : stPast.optEeprom;
    if (!optBytes.has_value()) {
        return "none";
    }
    const IMAGE_LAYOUT_S stLayout = WalkImage(*optBytes, optBytes->size(), stDevice.HasFixedSlots());
    return stLayout.bErased ? "erased" : stLayout.IsSound() ? "good" : "damaged";
}

Json HistoryJson(const DEVICE_S &stDevice, const std::vector<PAST_IMAGE_S> &vecPast)
{
    Json stImages = Json::array();
    for (const PAST_IMAGE_S &stPast : vecPast) {
        stImages.push_back({{"number", stPast.uiNumber},
                            {"time", stPast.strTime},
                            {"image", PastImageName(stDevice, stPast)},
                            {"command", stPast.strCommand}});
    }
    return {{"device", DeviceJson(stDevice)}, {"images", stImages}};
}

Json UNDONE_S::ToJson() const
{
    Json stJson = {{"device", DeviceJson(stDevice)}, {"dryRun", bDryRun},
                   {"number", stPast.uiNumber},      {"image", PastImageName(stDevice, stPast)},
                   {"time", stPast.strTime},         {"command", stPast.strCommand}};
    stJson.update(ImagePlanJson(stPlan));
    return stJson;
}

UNDONE_S UndoDevice(const CONTROLLER_S &stController, const DEVICE_S &stDevice, std::optional<u32> optNumber,
                    bool bDryRun)
{
    std::optional<RootLock> optLock;
    LockUnless(bDryRun, stController, optLock);
    const PAST_IMAGE_S stPast = ChoosePast(stDevice, ReadHistory(stController, stDevice), optNumber);
    const CHANGE_S stChange = PlanUndo(stDevice, stPast);
    const IMAGE_PLAN_S stPlan = PlanImage(stDevice, stChange.Home().vecAfter);
    if (optLock.has_value()) {
        WriteUndo(*optLock, stChange);
    }
    return {stDevice, stPast, stPlan, bDryRun};
}
