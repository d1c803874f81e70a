// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/label_write.h"

#include <algorithm>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/controller/serial_file.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/blank.h"
#include "toolkit/edit/rewrite.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/record.h"
#include "toolkit/image/role.h"

namespace {

FRU_SET_PARA_S Block(const DEVICE_S &stDevice, const LABEL_REQUEST_S &stRequest)
{
    FRU_SET_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    stPara.ucFieldFlag = stDevice.stInfo.ucFieldFlag;
    stPara.uiLabelID = stRequest.stLabel.uiID;
    // Both are known to fit: the name is the catalogue's, the value has been checked.
    memcpy(stPara.acLabelName, stRequest.stLabel.strName.data(),
           std::min(stRequest.stLabel.strName.size(), sizeof(stPara.acLabelName) - 1U));
    memcpy(stPara.acLabelValue, stRequest.strValue.data(),
           std::min(stRequest.strValue.size(), sizeof(stPara.acLabelValue) - 1U));
    stPara.uiLabelValueLen = static_cast<u32>(stRequest.strValue.size());
    return stPara;
}

// ---- the plan ----

LABEL_STEP_S PlanStep(const DEVICE_S &stDevice, const LABEL_REQUEST_S &stRequest, Record &stRecord,
                      const CHANGE_S &stFirst)
{
    const LABEL_S &stLabel = stRequest.stLabel;
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (!LabelValue(stView, stLabel).has_value()) {
        FailRefused(stDevice.Title() + " has no place for '" + stLabel.strName + "', which is " +
                    (stLabel.stField.enField == Field::Custom ? "" : "the ") + FieldName(stLabel.stField) +
                    " of the " + AreaName(stLabel.stField.enArea) + ": its image has " +
                    WhyNoValue(stView, stLabel) + "; nothing was written");
    }
    FRU_SET_PARA_S stPara = Block(stDevice, stRequest);
    ClearDiagnostics();
    // The check upper-cases a MAC address in the block, as it will in the write.
    if (FRU_CheckElectronicLabel(&stPara) != FRU_OK ||
        FRU_ReplaceElectronicLabel(&stPara, stRecord.Data()) != FRU_OK) {
        FailRefused(stDevice.Title() + ": the library refuses '" + stLabel.strName + "'" +
                    Cause(TakeDiagnostics()) + "; nothing was written");
    }
    const std::string strWhat = "the new '" + stLabel.strName + "'";
    LABEL_STEP_S stStep = {stRequest, std::nullopt, "", PlanRecord(stDevice, strWhat, stRecord, stFirst)};
    stStep.strNew = LabelValue(ViewRecord(*stRecord.Data()), stLabel).value_or("");
    return stStep;
}

// The library renews the serial-number files with every write of that label, so one that would write what is
// there already may still have something to do.
bool IsMirrored(const DEVICE_S &stDevice, const LABEL_S &stLabel)
{
    return stDevice.stEntry.ucComponentType == FRU_COMPONENT_BASEBOARD &&
           stLabel.uiID == FRU_LABEL_PRODUCT_SERIAL_NUMBER;
}

bool IsThere(const DEVICE_S &stDevice, const LABEL_STEP_S &stStep)
{
    if (stStep.optOld != stStep.strNew) {
        return false;
    }
    if (!IsMirrored(stDevice, stStep.stRequest.stLabel)) {
        return true;
    }
    const SERIAL_TEXT_S stFile = ReadSerialFile();
    return stFile.uiStatus == FRU_OK && stFile.strText == stStep.strNew && ReadSerialCopy() == stStep.strNew;
}

bool IsLabelField(const std::vector<LABEL_REQUEST_S> &vecRequests, const FIELD_ID_S &stField)
{
    return std::any_of(vecRequests.begin(), vecRequests.end(), [&](const LABEL_REQUEST_S &stRequest) {
        return stRequest.stLabel.stField == stField;
    });
}

// ---- the write ----

// The library keeps the baseboard's product serial number in a file as well, with a copy; it tells nobody
// when it could not.
std::string WhySerialFilesDiffer(const LABEL_STEP_S &stStep, const std::string &strCause)
{
    for (const char *pcPath : {SERIAL_FILE, SERIAL_COPY}) {
        std::string strFound;
        std::string strWhy = strCause;
        try {
            const std::vector<u8> vecBytes = ReadFileBytes(RealPath(pcPath).value_or(""));
            strFound.assign(vecBytes.begin(), vecBytes.end());
        } catch (const Error &stError) {
            strWhy = strWhy.empty() ? std::string(" (") + stError.what() + ")" : strWhy;
        }
        if (strFound != stStep.strNew) {
            return "the device holds the new '" + stStep.stRequest.stLabel.strName + "', but its file " +
                   pcPath + " on the controller could not be written" + strWhy;
        }
    }
    return "";
}

void DecodeBlank(const CHANGE_S &stBlank, Record &stRecord)
{
    const std::vector<u8> &vecAfter = stBlank.Home().vecAfter;
    const DEVICE_S &stDevice = stBlank.stDevice;
    if (DecodeImage({HomeOf(stDevice), vecAfter, vecAfter.size()}, stDevice.HasFixedSlots(), stRecord) !=
        FRU_OK) {
        Fail(ErrorClass::Damaged,
             "no empty image can be made for " + stDevice.Title() + Cause(TakeDiagnostics()));
    }
}

} // namespace

LABEL_REQUEST_S MakeRequest(const LABEL_S &stLabel, const std::string &strValue)
{
    return {stLabel, stLabel.enAccepts == Accepts::Date ? LabelDate(strValue) : strValue};
}

bool IsNone(const LABEL_REQUEST_S &stRequest)
{
    return stRequest.stLabel.bNoneAllowed && stRequest.strValue.compare(0, 4U, "NONE") == 0;
}

void RequireNoPlaceholders(const std::vector<LABEL_REQUEST_S> &vecRequests, bool bForce)
{
    for (const LABEL_REQUEST_S &stRequest : vecRequests) {
        const Role enRole = RoleOf(stRequest.stLabel.stField, true);
        const bool bAsked = enRole != Role::Other && !IsNone(stRequest) && !bForce;
        const std::string strWhy = bAsked ? WhyPlaceholder(stRequest.strValue, TextKindOf(enRole)) : "";
        if (!strWhy.empty()) {
            FailRefused("'" + EscapeText(stRequest.strValue) + "' is refused for '" +
                        stRequest.stLabel.strName + "': it looks like a placeholder: " + strWhy +
                        "; --force writes it");
        }
    }
}

bool LABEL_PLAN_S::IsUnchanged() const
{
    return std::all_of(vecSteps.begin(), vecSteps.end(),
                       [](const LABEL_STEP_S &stStep) { return stStep.bUnchanged; });
}

void CheckRequests(const DEVICE_S &stDevice, const std::vector<LABEL_REQUEST_S> &vecRequests)
{
    for (size_t i = 0; i < vecRequests.size(); i++) {
        const LABEL_S &stLabel = vecRequests[i].stLabel;
        for (size_t j = 0; j < i; j++) {
            if (vecRequests[j].stLabel.uiID == stLabel.uiID) {
                FailUsage("'" + stLabel.strName + "' is given twice; accepted: each label once");
            }
        }
        RequireAcceptedName(stDevice, stLabel);
        RequireAcceptedValue(stDevice, stLabel, vecRequests[i].strValue);
    }
}

LABEL_PLAN_S PlanLabels(const DEVICE_S &stDevice, const std::vector<LABEL_REQUEST_S> &vecRequests)
{
    LABEL_PLAN_S stPlan;
    stPlan.optBlank = PlanBlank(stDevice);
    Record stBefore;
    Record stRecord;
    if (stPlan.optBlank.has_value()) {
        stPlan.vecNotes.push_back(BlankNote(*stPlan.optBlank));
        DecodeBlank(*stPlan.optBlank, stBefore);
        DecodeBlank(*stPlan.optBlank, stRecord);
    } else {
        DecodeTarget({stDevice, ""}, stBefore); // so the image is known to be readable: no recovery sets in
        const FRU_SET_PARA_S stPara = Block(stDevice, vecRequests.front());
        ClearDiagnostics();
        if (FRU_GetElectronicLabel(&stPara, stRecord.Data()) != FRU_OK) {
            Fail(ErrorClass::Damaged, "cannot decode " + stDevice.Title() + Cause(TakeDiagnostics()));
        }
    }
    const IMAGE_S stImage = ReadTarget({stDevice, ""});
    const RECORD_VIEW_S stView = ViewRecord(*stBefore.Data());
    CHANGE_S stNow = stPlan.optBlank.has_value() ? *stPlan.optBlank : PlanNothing(stDevice);
    for (const LABEL_REQUEST_S &stRequest : vecRequests) {
        stPlan.vecSteps.push_back(PlanStep(stDevice, stRequest, stRecord, stNow));
        LABEL_STEP_S &stStep = stPlan.vecSteps.back();
        stStep.optOld = LabelValue(stView, stRequest.stLabel);
        stStep.bUnchanged = !stPlan.optBlank.has_value() && IsThere(stDevice, stStep);
        if (stStep.bUnchanged) {
            continue;
        }
        stNow = stStep.stChange;
        if (stPlan.vecSteps.back().strNew != stRequest.strValue) {
            stPlan.vecNotes.push_back(stRequest.stLabel.strName + " will read as '" +
                                      EscapeText(stPlan.vecSteps.back().strNew) + "'");
        }
        const Role enRole = RoleOf(stRequest.stLabel.stField, true);
        const std::string strBlanks =
            enRole == Role::Other ? "" : WhyBlanks(stStep.strNew, TextKindOf(enRole));
        if (!strBlanks.empty()) {
            stPlan.vecNotes.push_back(stRequest.stLabel.strName + ": " + strBlanks);
        }
        if (stRequest.strValue.size() == 1U && !stRequest.stLabel.IsNumber()) {
            stPlan.vecNotes.push_back(stRequest.stLabel.strName +
                                      " has one character, and its length byte is 0xc1, which other readers "
                                      "may take for the end of the fields");
        }
    }
    const std::vector<u8> &vecAfter = stNow.Home().vecAfter;
    stPlan.vecChanges = CompareBytes(stImage.vecBytes, vecAfter);
    if (stPlan.optBlank.has_value() || stPlan.IsUnchanged()) {
        return stPlan; // there is nothing that could change beside the labels
    }
    const REWRITE_S stRewrite = CompareImages(stDevice, stImage, vecAfter, [&](const FIELD_ID_S &stField) {
        return IsLabelField(vecRequests, stField);
    });
    stPlan.vecNotes.insert(stPlan.vecNotes.end(), stRewrite.vecNotes.begin(), stRewrite.vecNotes.end());
    if (!stRewrite.vecNotes.empty()) {
        stPlan.vecNotes.emplace_back("'fructl edit' changes a field and nothing of this");
    }
    stPlan.vecLosses = stRewrite.vecLosses;
    return stPlan;
}

namespace {

struct WRITTEN_S
{
    std::string strSentence;  // the operation log's
    std::string strAftermath; // not empty: the device holds the label, but something beside it failed
};

// Writes one step and records it in the operation log. Fails when the device or its cached image does not
// hold the planned image afterwards.
WRITTEN_S WriteStep(const DEVICE_S &stDevice, const LABEL_STEP_S &stStep, ProgressView *pstView)
{
    FRU_SET_PARA_S stPara = Block(stDevice, stStep.stRequest);
    const std::string strName = stStep.stRequest.stLabel.strName;
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    const OUTCOME_S stOutcome = ApplyChange(stStep.stChange, "writing " + stDevice.Title(), pstView,
                                            [&] { return LIB_FRU_WriteElectronicLabel(&stPara); });
    const std::string strCause = stOutcome.Cause();
    const std::string strFailure =
        stOutcome.uiStatus == FRU_OK ? stOutcome.strHomeDiffers : StatusText(stOutcome.uiStatus);
    if (!strFailure.empty()) {
        FRU_AddComOperateLog(FRU_OPERATELOG_FAILED, &stPara);
        std::string strUnlogged;
        try {
            RecordOperation(false, stPara.acOperateLog, stPara.ucOperateLogType);
        } catch (const Error &stError) {
            strUnlogged = std::string("; ") + stError.what();
        }
        FailLibrary(ErrorClass::NoAnswer,
                    "'" + strName + "' of " + stDevice.Title() + " could not be written: " + strFailure,
                    strCause + strUnlogged,
                    stOutcome.uiStatus == FRU_OK ? std::nullopt : std::optional<u32>(stOutcome.uiStatus));
    }
    std::string strAftermath;
    try {
        RecordOperation(true, stPara.acOperateLog, stPara.ucOperateLogType);
    } catch (const Error &stError) {
        strAftermath = stError.what(); // no reason to take the label back
    }
    if (!stOutcome.bCacheHolds) {
        FailLibrary(ErrorClass::Failed,
                    "the EEPROM of " + stDevice.Title() + " holds the new '" + strName +
                        "', but its cached image could not be renewed",
                    strCause);
    }
    const bool bSerialFiles = IsMirrored(stDevice, stStep.stRequest.stLabel);
    const std::string strFiles = bSerialFiles ? WhySerialFilesDiffer(stStep, strCause) : "";
    return {stPara.acOperateLog, strFiles.empty() ? strAftermath : strFiles};
}

// Each label in turn; when one fails, the line tells which.
std::vector<std::string> WriteSteps(const DEVICE_S &stDevice, const LABEL_PLAN_S &stPlan,
                                    std::string &strAftermath, ProgressView *pstView)
{
    std::vector<std::string> vecSentences;
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        if (stStep.bUnchanged) {
            vecSentences.emplace_back();
            continue;
        }
        const WRITTEN_S stWritten = WriteStep(stDevice, stStep, pstView);
        vecSentences.push_back(stWritten.strSentence);
        strAftermath = stWritten.strAftermath.empty() ? strAftermath : stWritten.strAftermath;
    }
    return vecSentences;
}

// The files that the library renews with the labels.
std::vector<FILE_CHANGE_S> FilesOf(const DEVICE_S &stDevice, const LABEL_PLAN_S &stPlan)
{
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        if (!stStep.bUnchanged && IsMirrored(stDevice, stStep.stRequest.stLabel)) {
            return SerialFiles(Bytes(stStep.strNew.begin(), stStep.strNew.end()));
        }
    }
    return {};
}

} // namespace

std::vector<std::string> WriteLabels(const RootLock &stLock, const DEVICE_S &stDevice,
                                     const LABEL_PLAN_S &stPlan, std::string &strAftermath,
                                     ProgressView *pstView)
{
    std::vector<CHANGE_S> vecSteps;
    if (stPlan.optBlank.has_value()) {
        vecSteps.push_back(*stPlan.optBlank);
    }
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        if (!stStep.bUnchanged) {
            vecSteps.push_back(stStep.stChange);
        }
    }
    std::vector<std::string> vecSentences(vecSteps.empty() ? stPlan.vecSteps.size() : 0U);
    if (vecSteps.empty()) {
        return vecSentences;
    }
    RunTransaction(stLock, vecSteps, FilesOf(stDevice, stPlan), [&] {
        if (stPlan.optBlank.has_value()) {
            PutStep(*stPlan.optBlank);
        }
        vecSentences = WriteSteps(stDevice, stPlan, strAftermath, pstView);
    });
    return vecSentences;
}
