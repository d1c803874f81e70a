// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/patch.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/labels.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/image_file.h"
#include "toolkit/image/layout.h"

namespace {

constexpr const char *HEX_EXTENSION = ".hex";

struct CONTENT_S
{
    std::string strText;
    std::vector<u8> vecBytes;
};
using Contents = std::map<FIELD_ID_S, CONTENT_S>;

// What an image says, past what is damaged.
Contents ContentsOf(const std::vector<u8> &vecBytes, bool bFixedSlots)
{
    Contents mapContents;
    const IMAGE_LAYOUT_S stLayout = WalkImage(vecBytes, vecBytes.size(), bFixedSlots, Damage::Passed);
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        const FIELD_ID_S &stField = stSpan.stField;
        const auto itFirst = vecBytes.begin() + stSpan.uiOffset;
        const std::vector<u8> vecOwn(itFirst, itFirst + stSpan.uiLength);
        if (stField.enArea == Area::MultiRecord) {
            // Header and data are one: the record, without what only guards it and tells where the list ends.
            CONTENT_S &stContent = mapContents[{Area::MultiRecord, Field::OneRecord, stField.uiIndex}];
            const bool bHeader = stField.enField == Field::RecordHeader;
            stContent.strText += bHeader ? Format("type 0x%02x: ", vecOwn[0]) : HexBytes(vecOwn);
            stContent.vecBytes.insert(stContent.vecBytes.end(), vecOwn.begin(),
                                      bHeader ? vecOwn.begin() + 1 : vecOwn.end());
            continue;
        }
        if (stField.enArea == Area::Header || stField.enArea == Area::Unused || IsFrame(stField.enField)) {
            continue;
        }
        const bool bRaw = stField.enField == Field::MoreData;
        const bool bBcd = stSpan.stNote.enNote == Note::BcdPlus;
        mapContents[stField] = {bRaw   ? HexBytes(vecOwn)
                                : bBcd ? stSpan.stNote.strDetail
                                       : stSpan.strText,
                                vecOwn};
    }
    return mapContents;
}

// Where two fields say the same and are stored differently, their bytes tell.
std::vector<DIFFERENCE_S> CompareContents(const Contents &mapBefore, const Contents &mapAfter)
{
    std::map<FIELD_ID_S, DIFFERENCE_S> mapDifferences;
    for (const auto &[stField, stBefore] : mapBefore) {
        const auto itAfter = mapAfter.find(stField);
        if (itAfter == mapAfter.end()) {
            mapDifferences[stField] = {stField, stBefore.strText, std::nullopt};
        } else if (itAfter->second.vecBytes != stBefore.vecBytes) {
            const bool bSame = itAfter->second.strText == stBefore.strText;
            const auto fnShown = [bSame](const CONTENT_S &stContent) {
                return stContent.strText + (bSame ? " (" + HexBytes(stContent.vecBytes) + ")" : "");
            };
            mapDifferences[stField] = {stField, fnShown(stBefore), fnShown(itAfter->second)};
        }
    }
    for (const auto &[stField, stAfter] : mapAfter) {
        if (mapBefore.count(stField) == 0U) {
            mapDifferences[stField] = {stField, std::nullopt, stAfter.strText};
        }
    }
    std::vector<DIFFERENCE_S> vecDifferences;
    for (const auto &itDifference : mapDifferences) {
        vecDifferences.push_back(itDifference.second);
    }
    return vecDifferences;
}

std::map<Area, size_t> Wrongs(const VERDICT_S &stVerdict)
{
    std::map<Area, size_t> mapWrongs;
    for (const FINDING_S &stFinding : stVerdict.stLayout.vecFindings) {
        mapWrongs[stFinding.enArea] += stFinding.bWarning ? 0U : 1U;
    }
    return mapWrongs;
}

void RequireNoWorse(const TARGET_S &stTarget, const VERDICT_S &stBefore, const VERDICT_S &stAfter)
{
    if (stAfter.IsGood()) {
        return;
    }
    const std::map<Area, size_t> mapBefore = Wrongs(stBefore);
    bool bWorse = stBefore.IsGood() || (stBefore.strRefusal.empty() && !stAfter.strRefusal.empty());
    for (const auto &[enArea, uiCount] : Wrongs(stAfter)) {
        const auto itBefore = mapBefore.find(enArea);
        bWorse = bWorse || uiCount > (itBefore == mapBefore.end() ? 0U : itBefore->second);
    }
    if (bWorse) {
        FailRefused(stTarget.Title() + ": the image would not be in order any more: " + stAfter.Why());
    }
}

FRU_SET_PARA_S Block(const DEVICE_S &stDevice, const OPERATION_S &stOperation)
{
    FRU_SET_PARA_S stPara = {};
    const auto fnCopy = [](char *pcTo, size_t uiRoom, const std::string &strFrom) {
        memcpy(pcTo, strFrom.data(), std::min(strFrom.size(), uiRoom - 1U));
    };
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    stPara.uiLabelID = stOperation.uiLabelID;
    stPara.ucOperateLogType = FRU_OPERATELOG_SOURCE;
    fnCopy(stPara.acFRUName, sizeof(stPara.acFRUName), stDevice.strName);
    fnCopy(stPara.acLabelName, sizeof(stPara.acLabelName), stOperation.strName);
    fnCopy(stPara.acLabelValue, sizeof(stPara.acLabelValue), stOperation.strValue);
    return stPara;
}

void SendEvent(const DEVICE_S &stDevice, const OPERATION_S &stOperation)
{
    FRU_EVENT_S stEvent = {};
    stEvent.uiKind = FRU_EVENT_KIND_LABEL;
    stEvent.ucComponentType = stDevice.stEntry.ucComponentType;
    stEvent.ucInstance = stDevice.stEntry.ucInstance;
    stEvent.uiLabelID = stOperation.uiLabelID;
    (void)FRU_UpdateEventWithStruct(
        &stEvent); // as after a label: who listens, or not, is no part of the write
}

// The serial-number files, when the serial number that they mirror changes.
std::vector<FILE_CHANGE_S> FilesOf(const CHANGE_S &stChange, const std::vector<u8> &vecBefore)
{
    CHANGE_S stOld = stChange;
    (stOld.optEeprom.has_value() ? *stOld.optEeprom : *stOld.optCache).vecAfter = vecBefore;
    const std::vector<FILE_CHANGE_S> vecOld = MirrorOf(stOld);
    const std::vector<FILE_CHANGE_S> vecNew = MirrorOf(stChange);
    const bool bSame =
        vecOld.size() == vecNew.size() && (vecNew.empty() || vecOld.front().vecNew == vecNew.front().vecNew);
    return bSame ? std::vector<FILE_CHANGE_S>() : vecNew;
}

} // namespace

bool PATCH_S::IsUnchanged() const
{
    return vecBefore == vecAfter;
}

ROOM_S RoomOf(const TARGET_S &stTarget, const IMAGE_S &stImage, u32 uiFileSize)
{
    const u32 uiStored = static_cast<u32>(stImage.uiStored);
    return stTarget.optDevice.has_value() ? ROOM_S{uiStored, true}
                                          : ROOM_S{std::max(uiStored, uiFileSize), false};
}

std::vector<u8> BaseOf(const IMAGE_S &stImage, std::vector<std::string> &vecNotes)
{
    const std::vector<u8> vecBytes(stImage.vecBytes.begin(),
                                   stImage.vecBytes.begin() + static_cast<std::ptrdiff_t>(stImage.uiStored));
    for (const u8 ucBlank : {ERASED, u8{0}}) {
        if (std::all_of(vecBytes.begin(), vecBytes.end(),
                        [ucBlank](u8 ucByte) { return ucByte == ucBlank; })) {
            vecNotes.push_back(
                Format("it is blank, every byte 0x%02x: an image without areas comes first", ucBlank));
            return EmptyImage(vecBytes.size());
        }
    }
    return vecBytes;
}

PATCH_S PlanPatch(const TARGET_S &stTarget, const IMAGE_S &stBefore, const std::vector<u8> &vecAfter,
                  std::vector<std::string> vecNotes, bool bAny)
{
    PATCH_S stPatch = {stTarget, {}, vecAfter, {}, {}, std::move(vecNotes), false, std::nullopt};
    stPatch.vecBefore.assign(stBefore.vecBytes.begin(),
                             stBefore.vecBytes.begin() + static_cast<std::ptrdiff_t>(stBefore.uiStored));
    const bool bFixedSlots = stTarget.HasFixedSlots();
    const bool bDevice = stTarget.optDevice.has_value();
    const VERDICT_S stVerdict = VerdictOn(
        bDevice ? IMAGE_S{stBefore.enSource, vecAfter, vecAfter.size()} : FileImage(vecAfter), bFixedSlots);
    if (!bAny) {
        RequireNoWorse(stTarget, VerdictOn(stBefore, bFixedSlots), stVerdict);
    }
    stPatch.bSound = stVerdict.IsGood();
    stPatch.vecFields =
        CompareContents(ContentsOf(stPatch.vecBefore, bFixedSlots), ContentsOf(vecAfter, bFixedSlots));
    std::vector<u8> vecOld = stPatch.vecBefore;
    if (vecOld.size() < vecAfter.size()) {
        stPatch.vecNotes.push_back(
            Format("the file grows from %zu to %zu bytes", vecOld.size(), vecAfter.size()));
        vecOld.resize(vecAfter.size(), ERASED);
    }
    stPatch.vecBytes = CompareBytes(vecOld, vecAfter);
    if (bDevice) {
        stPatch.optDevice = PlanImage(*stTarget.optDevice, vecAfter);
        const std::optional<size_t> optAt = CacheDifference(*stTarget.optDevice, stBefore);
        if (optAt.has_value()) {
            stPatch.vecNotes.push_back(
                Format("the cached image differs from the EEPROM's from byte 0x%04zx on; "
                       "both will hold what is made of the EEPROM's",
                       *optAt));
        }
    }
    return stPatch;
}

OPERATION_S OperationOn(const FIELD_ID_S &stField, const std::string &strName, const std::string &strValue)
{
    for (const LABEL_S &stLabel : Labels()) {
        if (stLabel.IsStored() && stLabel.stField == stField) {
            return {stLabel.uiID, stLabel.strName, strValue};
        }
    }
    return {FRU_LABEL_NOT_FOUND, strName, strValue};
}

PATCHED_S WritePatchedDevice(const RootLock &stLock, const PATCH_S &stPatch,
                             const std::vector<OPERATION_S> &vecOperations)
{
    const CHANGE_S &stChange = stPatch.optDevice->stChange;
    const DEVICE_S &stDevice = stChange.stDevice;
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    try {
        RunTransaction(stLock, {stChange}, FilesOf(stChange, stPatch.vecBefore), nullptr);
    } catch (const Error &stError) {
        FRU_SET_PARA_S stPara = Block(stDevice, vecOperations.front());
        FRU_AddComOperateLog(FRU_OPERATELOG_FAILED, &stPara);
        RecordOperation(false, stPara.acOperateLog, stPara.ucOperateLogType);
        throw Error(stError.Class(), stDevice.Title() + " could not be written: " + stError.what());
    }
    PATCHED_S stPatched;
    for (const OPERATION_S &stOperation : vecOperations) {
        FRU_SET_PARA_S stPara = Block(stDevice, stOperation);
        FRU_AddComOperateLog(FRU_OPERATELOG_SUCCEEDED, &stPara);
        stPatched.vecSentences.emplace_back(stPara.acOperateLog);
        try {
            RecordOperation(true, stPara.acOperateLog, stPara.ucOperateLogType);
        } catch (const Error &stError) {
            stPatched.strAftermath = stError.what(); // no reason to take the bytes back
        }
        SendEvent(stDevice, stOperation);
    }
    return stPatched;
}

void WritePatchedFile(const PATCH_S &stPatch, const std::string &strOutput)
{
    const std::string &strPath = strOutput.empty() ? stPatch.stTarget.strFile : strOutput;
    const bool bHex = std::filesystem::path(strPath).extension() == HEX_EXTENSION;
    if (!bHex) {
        WriteFileBytes(strPath, stPatch.vecAfter);
        return;
    }
    if (strOutput.empty()) {
        const std::vector<u8> vecText = ReadFileBytes(strPath);
        if (std::find(vecText.begin(), vecText.end(), '#') != vecText.end()) {
            FailRefused("the file " + EscapeText(strPath) +
                        " has comments, which would be lost; -o FILE writes another file");
        }
    }
    const std::string strText = HexText(stPatch.vecAfter);
    WriteFileBytes(strPath, {strText.begin(), strText.end()});
}
