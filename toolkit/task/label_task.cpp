// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/label_task.h"

#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/image/differences_json.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/mfg_date.h"

namespace {

Json LabelJson(const LABEL_S &stLabel, u32 uiMaxLen)
{
    Json stJson = {{"id", stLabel.uiID},
                   {"name", stLabel.strName},
                   {"area", AreaOf(stLabel)},
                   {"field", stLabel.IsStored() ? Json(FieldName(stLabel.stField)) : Json(nullptr)},
                   {"minLength", stLabel.uiMinLen},
                   {"maxLength", uiMaxLen},
                   {"noneAllowed", stLabel.bNoneAllowed},
                   {"accepts", AcceptsText(stLabel.enAccepts)}};
    stJson["powerSupplyField"] = stLabel.optPsuField.has_value() ? Json(*stLabel.optPsuField) : Json(nullptr);
    return stJson;
}

// null: the image has no such field, or its date is unspecified.
Json ValueJson(const LABEL_S &stLabel, const std::optional<std::string> &optValue)
{
    const bool bUnspecified = stLabel.enAccepts == Accepts::Date && optValue == MFG_DATE_UNSPECIFIED;
    return optValue.has_value() && !bUnspecified ? Json(Latin1ToUtf8(*optValue)) : Json(nullptr);
}

// The labels that are asked for: those named, or with --all those that the device takes and its image has.
std::vector<LABEL_S> AskedLabels(const DEVICE_S &stDevice, const RECORD_VIEW_S &stView,
                                 const std::vector<std::string> &vecNames)
{
    std::vector<LABEL_S> vecAsked;
    for (const std::string &strName : vecNames) {
        vecAsked.push_back(FindLabel(strName));
        const LABEL_S &stLabel = vecAsked.back();
        if (!stLabel.IsStored()) {
            FailRefused(
                "the label '" + stLabel.strName +
                "' is kept in the hardware FRU block, not in the FRU image; 'fructl hw show' reads it");
        }
        if (!LabelValue(stView, stLabel).has_value()) {
            FailRefused(stDevice.Title() + " has no '" + stLabel.strName + "': its image has " +
                        WhyNoValue(stView, stLabel));
        }
    }
    for (const LABEL_S &stLabel : Labels()) {
        if (vecNames.empty() && IsAccepted(stDevice, stLabel) && LabelValue(stView, stLabel).has_value()) {
            vecAsked.push_back(stLabel);
        }
    }
    return vecAsked;
}

} // namespace

const char *AreaOf(const LABEL_S &stLabel)
{
    return stLabel.IsStored() ? AreaKey(stLabel.stField.enArea) : "hardware";
}

LABEL_LIST_S ListLabels()
{
    LABEL_LIST_S stList;
    stList.vecLabels = Labels();
    return stList;
}

LABEL_LIST_S ListLabels(const DEVICE_S &stDevice, std::optional<Source> optSource)
{
    LABEL_LIST_S stList;
    stList.optDevice = stDevice;
    for (const LABEL_S &stLabel : Labels()) {
        if (IsAccepted(stDevice, stLabel)) {
            stList.vecLabels.push_back(stLabel);
        }
    }
    try {
        const SHOWN_S stShown = TakeShown({stDevice, ""}, optSource);
        Record stRecord;
        DecodeShown(stShown.stTarget, stShown.stImage, stRecord);
        stList.optView = ViewRecord(*stRecord.Data());
        stList.optShown = stShown;
    } catch (const Error &stError) {
        stList.optWhyNot = stError; // the names are known all the same, the values are not
    }
    return stList;
}

Json LABEL_LIST_S::ToJson() const
{
    Json stJson = Json::object();
    if (optDevice.has_value()) {
        stJson = {{"device", DeviceJson(*optDevice)}, {"fieldFlag", optDevice->stInfo.ucFieldFlag}};
    }
    if (optShown.has_value()) {
        stJson.update(optShown->SourceJson());
    }
    stJson["labels"] = Json::array();
    const u8 ucType = optDevice.has_value() ? optDevice->stEntry.ucComponentType : 0xFFU;
    for (const LABEL_S &stLabel : vecLabels) {
        Json stOne = LabelJson(stLabel, MaxLength(stLabel, ucType));
        if (optView.has_value()) {
            stOne["value"] = ValueJson(stLabel, LabelValue(*optView, stLabel));
        }
        stJson["labels"].push_back(stOne);
    }
    return stJson;
}

LABEL_VALUES_S GetLabels(const DEVICE_S &stDevice, const std::vector<std::string> &vecNames,
                         std::optional<Source> optSource)
{
    for (const std::string &strName : vecNames) {
        (void)FindLabel(strName); // before anything is read
    }
    LABEL_VALUES_S stValues = {stDevice, TakeShown({stDevice, ""}, optSource), {}, vecNames.size() == 1U};
    Record stRecord;
    DecodeShown(stValues.stShown.stTarget, stValues.stShown.stImage, stRecord);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    for (const LABEL_S &stLabel : AskedLabels(stDevice, stView, vecNames)) {
        stValues.vecValues.emplace_back(stLabel, LabelValue(stView, stLabel).value_or(""));
    }
    return stValues;
}

Json LABEL_VALUES_S::ToJson() const
{
    Json stList = Json::array();
    for (const auto &[stLabel, strValue] : vecValues) {
        stList.push_back(LabelJson(stLabel, MaxLength(stLabel, stDevice.stEntry.ucComponentType)));
        stList.back()["value"] = ValueJson(stLabel, strValue);
    }
    Json stJson = {{"device", DeviceJson(stDevice)}};
    stJson.update(stShown.SourceJson());
    stJson.update(bOne ? stList.front() : Json{{"labels", stList}});
    return stJson;
}

LABELS_SET_S SetLabels(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                       const std::vector<LABEL_REQUEST_S> &vecRequests, bool bDryRun, bool bForce,
                       ProgressView *pstView)
{
    CheckRequests(stDevice, vecRequests);
    RequireNoPlaceholders(vecRequests, bForce);
    if (bDryRun) {
        return {stDevice, PlanLabels(stDevice, vecRequests), true, {}, ""};
    }
    const RootLock stLock(stController);
    LABELS_SET_S stSet = {stDevice, PlanLabels(stDevice, vecRequests), false, {}, ""};
    if (!stSet.stPlan.vecLosses.empty() && !bForce) {
        FailRefused("refused, for the library writes the whole image of " + stDevice.Title() +
                    " anew and would lose: " + Join(stSet.stPlan.vecLosses, "; ") +
                    "; 'fructl edit' changes one field and keeps all this; --dry-run shows every byte, "
                    "--force writes");
    }
    stSet.vecSentences = WriteLabels(stLock, stDevice, stSet.stPlan, stSet.strAftermath, pstView);
    return stSet;
}

Json LABELS_SET_S::ToJson() const
{
    Json stLabels = Json::array();
    for (size_t i = 0; i < stPlan.vecSteps.size(); i++) {
        const LABEL_STEP_S &stStep = stPlan.vecSteps[i];
        const LABEL_S &stLabel = stStep.stRequest.stLabel;
        Json stJson = {{"id", stLabel.uiID},
                       {"name", stLabel.strName},
                       {"old", ValueJson(stLabel, stStep.optOld)},
                       {"new", ValueJson(stLabel, stStep.strNew)},
                       {"unchanged", stStep.bUnchanged}};
        if (!bDryRun && !stStep.bUnchanged) {
            stJson["operationLog"] = Latin1ToUtf8(vecSentences[i]);
        }
        stLabels.push_back(stJson);
    }
    return {{"device", DeviceJson(stDevice)},
            {"dryRun", bDryRun},
            {"labels", stLabels},
            {"bytes", ByteChangesJson(stPlan.vecChanges)},
            {"notes", stPlan.vecNotes},
            {"losses", stPlan.vecLosses}};
}
