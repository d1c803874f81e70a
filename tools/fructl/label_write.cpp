#include "label_write.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "bmcfru_host.h"
#include "error.h"
#include "image_file.h"
#include "lib_fru.h"
#include "operate_log.h"
#include "progress.h"
#include "record_json.h"
#include "text.h"
#include "uninterrupted.h"

namespace {

constexpr i32 OPERATE_FAILED = 4;
constexpr u32 ROOM_MAX = 0xFFFFU;
constexpr const char *SERIAL_FILE = "/mnt/sdmmc0p4/board/ProductSerialNumber";
constexpr const char *SERIAL_COPY = "/var/network/ProductSerialNumber";

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

// The first thing that the library reported and that is not about how texts are stored.
std::string Cause()
{
    for (const std::string &strText : TakeDiagnostics()) {
        if (strText.compare(0, 23U, "Not default type format") != 0) {
            return " (the library says: " + strText + ")";
        }
    }
    return "";
}

// ---- the plan
// ----------------------------------------------------------------------------------------------

// A text that the library cannot store again: it writes every text with 8 bits a character, so that binary
// data takes twice its room.
std::string WhyNotEncoded(const RECORD_VIEW_S &stView)
{
    constexpr size_t uiTextMax = 63U;
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        std::vector<std::pair<std::string, std::string>> vecTexts;
        for (const FIELD_VIEW_S &stField : stArea.vecFields) {
            vecTexts.emplace_back(stField.strName, stField.strText);
        }
        for (size_t i = 0; i < stArea.vecCustomFields.size(); i++) {
            vecTexts.emplace_back(Format("custom field %zu", i + 1U), stArea.vecCustomFields[i]);
        }
        for (const auto &[strName, strText] : vecTexts) {
            if (strText.size() > uiTextMax) {
                return std::string("the ") + strName + " of its " + AreaName(stArea.enArea) +
                       Format(" would be stored as %zu characters, and a length byte counts only to %zu",
                              strText.size(), uiTextMax);
            }
        }
    }
    return "the record cannot be encoded" + Cause();
}

std::vector<u8> Encode(const DEVICE_S &stDevice, const std::string &strLabel, const RECORD &stRecord)
{
    const std::string strCannot =
        stDevice.Title() + ": no image can be made with the new '" + strLabel + "': ";
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (stView.bMultiRecordArea && stView.vecMultiRecords.empty()) {
        Fail(strCannot + "its MultiRecords are damaged and could not be kept; 'fructl verify' tells where");
    }
    const u16 usSize = stDevice.stInfo.usSize;
    std::vector<u8> vecBytes(ROOM_MAX); // zeroed: the encoder does not write the fill of its areas
    ClearDiagnostics();
    i32 iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), usSize, vecBytes.data());
    if (iLength < 0) {
        const std::string strWhy = WhyNotEncoded(stView);
        iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), ROOM_MAX, vecBytes.data());
        Fail(strCannot + (iLength < 0
                              ? strWhy
                              : Format("it would take %d bytes, and the FRU has %u", iLength, u32{usSize})));
    }
    vecBytes.resize(static_cast<size_t>(iLength));
    return vecBytes;
}

std::vector<u8> Overlay(std::vector<u8> vecBytes, const std::vector<u8> &vecEncoded)
{
    std::copy(vecEncoded.begin(), vecEncoded.end(), vecBytes.begin());
    return vecBytes;
}

// What is in the device after the write has to be readable, and to say what the record says.
void RequireReadable(const DEVICE_S &stDevice, const std::string &strLabel, const RECORD &stRecord,
                     const std::vector<u8> &vecBytes)
{
    RECORD stRead;
    ClearDiagnostics();
    const u32 uiRet = DecodeImage({"EEPROM", vecBytes, vecBytes.size()}, stDevice.HasFixedSlots(), stRead);
    if (uiRet != FRU_OK) {
        Fail(stDevice.Title() + ": with the new '" + strLabel +
             "' the image would not be readable any more: " + StatusText(uiRet) + Cause() +
             "; an area must end before the FRU does");
    }
    if (RecordJson(ViewRecord(*stRead.Data())) != RecordJson(ViewRecord(*stRecord.Data()))) {
        Fail(
            stDevice.Title() + ": with the new '" + strLabel +
            "' the image would read back differently: it holds a custom field of one character, whose length "
            "byte is the mark that ends the fields");
    }
}

LABEL_STEP_S PlanStep(const DEVICE_S &stDevice, const LABEL_REQUEST_S &stRequest, RECORD &stRecord,
                      const std::vector<u8> &vecBytes)
{
    const LABEL_S &stLabel = stRequest.stLabel;
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (!LabelValue(stView, stLabel).has_value()) {
        Fail(stDevice.Title() + " has no place for '" + stLabel.strName + "', which is " +
             (stLabel.optSlot.has_value() ? "" : "the ") + stLabel.strField + " of the " +
             AreaName(stLabel.enArea) + ": its image has " + WhyNoValue(stView, stLabel) +
             "; nothing was written");
    }
    FRU_SET_PARA_S stPara = Block(stDevice, stRequest);
    ClearDiagnostics();
    // The check upper-cases a MAC address in the block, as it will in the write.
    if (FRU_CheckElectronicLabel(&stPara) != FRU_OK ||
        FRU_ReplaceElectronicLabel(&stPara, stRecord.Data()) != FRU_OK) {
        Fail(stDevice.Title() + ": the library refuses '" + stLabel.strName + "'" + Cause() +
             "; nothing was written");
    }
    LABEL_STEP_S stStep = {stRequest, std::nullopt, "", Encode(stDevice, stLabel.strName, stRecord)};
    RequireReadable(stDevice, stLabel.strName, stRecord, Overlay(vecBytes, stStep.vecEncoded));
    stStep.strNew = LabelValue(ViewRecord(*stRecord.Data()), stLabel).value_or("");
    return stStep;
}

std::vector<BYTE_RUN_S> Changes(const std::vector<u8> &vecOld, const std::vector<u8> &vecNew)
{
    std::vector<BYTE_RUN_S> vecRuns;
    for (size_t i = 0; i < vecOld.size(); i++) {
        if (vecOld[i] == vecNew[i]) {
            continue;
        }
        if (vecRuns.empty() || vecRuns.back().uiOffset + vecRuns.back().vecOld.size() != i) {
            vecRuns.push_back({static_cast<u32>(i), {}, {}});
        }
        vecRuns.back().vecOld.push_back(vecOld[i]);
        vecRuns.back().vecNew.push_back(vecNew[i]);
    }
    return vecRuns;
}

struct CONTENT_S
{
    std::string strText;
    std::string strNote;
};
using CONTENTS = std::map<std::pair<AREA, std::string>, CONTENT_S>;

// What an image says, field by field, and how it is stored; without what only holds the image together.
CONTENTS ContentsOf(const DEVICE_S &stDevice, const std::vector<u8> &vecBytes)
{
    static const char *const apcFrame[] = {"format version", "area length", "end mark", "fill", "checksum"};
    CONTENTS mapContents;
    const IMAGE_LAYOUT_S stLayout = WalkImage(vecBytes, vecBytes.size(), stDevice.HasFixedSlots());
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        const bool bFrame =
            std::find(std::begin(apcFrame), std::end(apcFrame), stSpan.strField) != std::end(apcFrame);
        if (stSpan.enArea == AREA::Header || stSpan.enArea == AREA::Unused || bFrame) {
            continue;
        }
        // MultiRecords are copied, so their bytes count; so do bytes that are in no field.
        const bool bRaw = stSpan.enArea == AREA::MultiRecord || stSpan.strField == "more, not decoded";
        const u8 *pucBytes = vecBytes.data() + stSpan.uiOffset;
        mapContents[{stSpan.enArea, stSpan.strField}] = {
            bRaw ? std::string(pucBytes, pucBytes + stSpan.uiLength) : stSpan.strText,
            stSpan.strNote == "empty" ? "" : stSpan.strNote};
    }
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        if (stFinding.enArea == AREA::InternalUse) {
            mapContents[{AREA::InternalUse, "opaque data"}] = {stFinding.strWhat, ""};
        }
    }
    return mapContents;
}

bool IsLabelField(const std::vector<LABEL_REQUEST_S> &vecRequests, AREA enArea, const std::string &strField)
{
    return std::any_of(vecRequests.begin(), vecRequests.end(), [&](const LABEL_REQUEST_S &stRequest) {
        return stRequest.stLabel.enArea == enArea && stRequest.stLabel.strField == strField;
    });
}

// The library writes the whole image anew, so other fields may change with it.
void CompareContents(const CONTENTS &mapOld, const CONTENTS &mapNew,
                     const std::vector<LABEL_REQUEST_S> &vecRequests, LABEL_PLAN_S &stPlan)
{
    for (const auto &[stKey, stOld] : mapOld) {
        if (IsLabelField(vecRequests, stKey.first, stKey.second)) {
            continue;
        }
        const std::string strWhat = std::string(AreaName(stKey.first)) + ", " + stKey.second;
        const auto itNew = mapNew.find(stKey);
        const bool bKept = itNew != mapNew.end() && itNew->second.strText == stOld.strText;
        if (!bKept || stOld.strNote.compare(0, 3U, "BCD") == 0) {
            stPlan.vecLosses.push_back(strWhat + (stOld.strNote.empty() ? "" : " (" + stOld.strNote + ")"));
        } else if (stOld.strNote != itNew->second.strNote) {
            stPlan.vecNotes.push_back(strWhat + " is stored as 8-bit text from now on, not as " +
                                      stOld.strNote);
        }
    }
    std::map<AREA, size_t> mapAdded;
    for (const auto &[stKey, stNew] : mapNew) {
        const bool bArea = std::any_of(mapOld.begin(), mapOld.end(), [&, &stRef = stKey](const auto &itOld) {
            return itOld.first.first == stRef.first;
        });
        if (!bArea) {
            mapAdded[stKey.first]++;
        } else if (mapOld.count(stKey) == 0U) {
            stPlan.vecNotes.push_back(std::string(AreaName(stKey.first)) + ": an empty " + stKey.second +
                                      " is added");
        }
    }
    for (const auto &itAdded : mapAdded) {
        stPlan.vecNotes.push_back(std::string("a ") + AreaName(itAdded.first) + " is added");
    }
}

// ---- the write
// -----------------------------------------------------------------------------------------------

// What is wrong in the device after the write; empty: nothing.
std::string WhyDeviceDiffers(const DEVICE_S &stDevice, const LABEL_STEP_S &stStep)
{
    try {
        const IMAGE_S stRead = ReadTarget({stDevice, ""});
        for (size_t i = 0; i < stStep.vecEncoded.size(); i++) {
            if (stRead.vecBytes[i] != stStep.vecEncoded[i]) {
                return Format(
                    "the %s holds other bytes than were to be written, from byte 0x%04zx on (0x%02x, "
                    "not 0x%02x)",
                    stRead.strSource.c_str(), i, stRead.vecBytes[i], stStep.vecEncoded[i]);
            }
        }
        return "";
    } catch (const FRUCTL_ERROR &stError) {
        return stError.what();
    }
}

void RequireCache(const DEVICE_S &stDevice, const LABEL_STEP_S &stStep, const std::string &strCause)
{
    const std::optional<IMAGE_S> optCached = ReadCache(stDevice);
    std::vector<u8> vecExpected = stStep.vecEncoded;
    vecExpected.resize(stDevice.stInfo.usSize);
    if (!optCached.has_value() || optCached->vecBytes != vecExpected) {
        Fail("the EEPROM of " + stDevice.Title() + " holds the new '" + stStep.stRequest.stLabel.strName +
             "', but its cached image could not be renewed" + strCause);
    }
}

// The library keeps the baseboard's product serial number in a file as well, with a copy; it tells nobody
// when it could not.
std::string WhySerialFilesDiffer(const LABEL_STEP_S &stStep, const std::string &strCause)
{
    for (const char *pcPath : {SERIAL_FILE, SERIAL_COPY}) {
        char acPath[4096] = "";
        std::string strFound;
        std::string strWhy = strCause;
        try {
            if (BMCHOST_ResolvePath(pcPath, sizeof(acPath), acPath) == 0U) {
                const std::vector<u8> vecBytes = ReadFileBytes(acPath);
                strFound.assign(vecBytes.begin(), vecBytes.end());
            }
        } catch (const FRUCTL_ERROR &stError) {
            strWhy = strWhy.empty() ? std::string(" (") + stError.what() + ")" : strWhy;
        }
        if (strFound != stStep.strNew) {
            return "the device holds the new '" + stStep.stRequest.stLabel.strName + "', but its file " +
                   pcPath + " on the controller could not be written" + strWhy;
        }
    }
    return "";
}

} // namespace

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
    const TARGET_S stTarget = {stDevice, ""};
    RECORD stBefore;
    DecodeTarget(stTarget, stBefore); // from here on the image is known to be readable: no recovery sets in
    const IMAGE_S stImage = ReadTarget(stTarget);
    RECORD stRecord;
    const FRU_SET_PARA_S stPara = Block(stDevice, vecRequests.front());
    ClearDiagnostics();
    if (FRU_GetElectronicLabel(&stPara, stRecord.Data()) != FRU_OK) {
        Fail("cannot decode " + stDevice.Title() + Cause());
    }
    LABEL_PLAN_S stPlan;
    const RECORD_VIEW_S stView = ViewRecord(*stBefore.Data());
    for (const LABEL_REQUEST_S &stRequest : vecRequests) {
        stPlan.vecSteps.push_back(PlanStep(stDevice, stRequest, stRecord, stImage.vecBytes));
        stPlan.vecSteps.back().optOld = LabelValue(stView, stRequest.stLabel);
        if (stPlan.vecSteps.back().strNew != stRequest.strValue) {
            stPlan.vecNotes.push_back(stRequest.stLabel.strName + " will read as '" +
                                      EscapeText(stPlan.vecSteps.back().strNew) + "'");
        }
        if (stRequest.strValue.size() == 1U && !stRequest.stLabel.bNumber) {
            stPlan.vecNotes.push_back(stRequest.stLabel.strName +
                                      " has one character, and its length byte is 0xc1, which other readers "
                                      "may take for the end of the fields");
        }
    }
    std::vector<u8> vecAfter = stImage.vecBytes;
    for (const LABEL_STEP_S &stStep : stPlan.vecSteps) {
        vecAfter = Overlay(vecAfter, stStep.vecEncoded);
    }
    stPlan.vecChanges = Changes(stImage.vecBytes, vecAfter);
    CompareContents(ContentsOf(stDevice, stImage.vecBytes), ContentsOf(stDevice, vecAfter), vecRequests,
                    stPlan);
    const std::optional<IMAGE_S> optCached = ReadCache(stDevice);
    if (!stDevice.IsDatabaseOnly() && IsCacheTrusted(stDevice) && optCached.has_value()) {
        const std::optional<size_t> optAt = FirstDifference(stImage, *optCached, stDevice.HasFixedSlots());
        if (optAt.has_value()) {
            stPlan.vecLosses.insert(stPlan.vecLosses.begin(),
                                    Format("the EEPROM's own image from byte 0x%04zx on, where the cached "
                                           "one, from which the new one is made, differs",
                                           *optAt));
        }
    }
    return stPlan;
}

WRITTEN_S WriteStep(const DEVICE_S &stDevice, const LABEL_STEP_S &stStep)
{
    FRU_SET_PARA_S stPara = Block(stDevice, stStep.stRequest);
    const std::string strName = stStep.stRequest.stLabel.strName;
    const UNINTERRUPTED stUninterrupted;
    std::string strFailure;
    ClearDiagnostics();
    {
        const PROGRESS stProgress("writing " + stDevice.Title(), stDevice.stInfo.usStartOffset,
                                  static_cast<u32>(stStep.vecEncoded.size()));
        const u32 uiRet = LIB_FRU_WriteElectronicLabel(&stPara);
        strFailure = (uiRet == FRU_OK) ? "" : StatusText(uiRet);
    }
    const std::string strCause = Cause();
    if (strFailure.empty()) {
        // The array write reports success also when a chunk of it failed.
        strFailure = WhyDeviceDiffers(stDevice, stStep);
    }
    if (!strFailure.empty()) {
        FRU_AddComOperateLog(OPERATE_FAILED, &stPara);
        std::string strUnlogged;
        try {
            RecordOperation(false, stPara.acOperateLog, stPara.ucOperateLogType);
        } catch (const FRUCTL_ERROR &stError) {
            strUnlogged = std::string("; ") + stError.what();
        }
        Fail("'" + strName + "' of " + stDevice.Title() + " could not be written: " + strFailure + strCause +
             strUnlogged);
    }
    RecordOperation(true, stPara.acOperateLog, stPara.ucOperateLogType);
    RequireCache(stDevice, stStep, strCause);
    const bool bSerialFiles = stDevice.stEntry.ucComponentType == 0U &&
                              stStep.stRequest.stLabel.uiID == LABEL_PRODUCT_SERIAL_NUMBER;
    return {stPara.acOperateLog, bSerialFiles ? WhySerialFilesDiffer(stStep, strCause) : ""};
}
