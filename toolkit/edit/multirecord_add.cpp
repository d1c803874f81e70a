// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/multirecord_add.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <numeric>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/record.h"

namespace {

constexpr size_t VALUE_MAX = 254U; // the length byte counts the sub-type too

bool HoldsSubType(const FRU_MULTIRECORD_S &stRecord, u8 ucSubType)
{
    return stRecord.ucRecordTypeID == FRU_MR_TYPE_MANAGEMENT_ACCESS && stRecord.ucRecordLength != 0U &&
           stRecord.pucRecordData[0] == ucSubType;
}

// The entry with that sub-record type, else the first free one; null: neither.
FRU_MULTIRECORD_S *FindEntry(FRU_DATA_S *pstData, u8 ucSubType)
{
    for (FRU_MULTIRECORD_S &stRecord : pstData->astMultiRecord) {
        if (stRecord.pucRecordData == nullptr || HoldsSubType(stRecord, ucSubType)) {
            return &stRecord;
        }
    }
    return nullptr;
}

void Put(FRU_MULTIRECORD_S *pstEntry, const WANTED_RECORD_S &stWanted)
{
    u8 *pucData = static_cast<u8 *>(malloc(stWanted.vecData.size()));
    if (pucData == nullptr) {
        throw std::bad_alloc();
    }
    memcpy(pucData, stWanted.vecData.data(), stWanted.vecData.size());
    free(pstEntry->pucRecordData);
    *pstEntry = {FRU_MR_TYPE_MANAGEMENT_ACCESS,
                 FRU_MR_FORMAT_VERSION,
                 static_cast<u8>(stWanted.vecData.size()),
                 0U,
                 0U,
                 pucData};
}

// The last record says that it is the last, no other does.
void RenewMarks(FRU_DATA_S *pstData)
{
    for (size_t i = 0; i < FRU_MULTIRECORD_MAX && pstData->astMultiRecord[i].pucRecordData != nullptr; i++) {
        FRU_MULTIRECORD_S &stRecord = pstData->astMultiRecord[i];
        const bool bLast =
            i + 1U == FRU_MULTIRECORD_MAX || pstData->astMultiRecord[i + 1U].pucRecordData == nullptr;
        stRecord.ucRecordFormat =
            static_cast<u8>(bLast ? stRecord.ucRecordFormat | FRU_MULTIRECORD_END_OF_LIST
                                  : stRecord.ucRecordFormat & ~FRU_MULTIRECORD_END_OF_LIST);
        SealMultiRecord(stRecord);
    }
    MarkArea(*pstData, Area::MultiRecord);
}

// What the library's merge will refuse, or do to records that cannot be read, is told before it begins.
void CheckList(const DEVICE_S &stDevice, const FRU_DATA_S &stData)
{
    const bool bArea = HasArea(stData, Area::MultiRecord);
    const std::string strMore = "; 'fructl mr check' and 'fructl verify' tell more";
    if (bArea && stData.astMultiRecord[0].pucRecordData == nullptr) {
        Fail(ErrorClass::Damaged,
             "the MultiRecord area of " + stDevice.Title() +
                 " is damaged: no record of it can be read, and adding one would drop them all" + strMore);
    }
    u32 uiCount = 0;
    ClearDiagnostics();
    const u32 uiRet = FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(stData.astMultiRecord),
                                               FRU_MR_CHECK_MEMORY, &uiCount);
    if (bArea && uiRet != FRU_OK) {
        Fail(ErrorClass::Damaged, "the MultiRecords of " + stDevice.Title() +
                                      " are not in order, so none can be added" + DiagnosticHint() + strMore);
    }
}

// Where the record goes, and what becomes of what is there.
FRU_MULTIRECORD_S *Place(const DEVICE_S &stDevice, FRU_DATA_S *pstData, WANTED_RECORD_S &stWanted)
{
    FRU_MULTIRECORD_S *pstEntry = FindEntry(pstData, stWanted.ucSubType);
    if (pstEntry == nullptr) {
        FailRefused(stDevice.Title() +
                    Format(" holds %u MultiRecords already, and none is a ", FRU_MULTIRECORD_MAX) +
                    stWanted.Row().pcTitle + "; there is no place for more");
    }
    const u8 *pucOld = pstEntry->pucRecordData;
    if (pucOld != nullptr) {
        stWanted.vecOld.assign(pucOld, pucOld + pstEntry->ucRecordLength);
        stWanted.enAction = stWanted.vecOld == stWanted.vecData ? RecordAction::Keep : RecordAction::Replace;
    }
    return pstEntry;
}

} // namespace

const std::vector<SETTABLE_S> &AccessRecords()
{
    static const std::vector<SETTABLE_S> vecRecords = {
        {"system-url", "System URL"},
        {"system-name", "System Name"},
        {"system-ping-address", "System Ping Address"},
        {"component-url", "Component URL"},
        {"component-name", "Component Name"},
        {"component-ping-address", "Component Ping Address"},
        {"system-guid", "System Unique ID"},
    };
    return vecRecords;
}

WANTED_RECORD_S WantedRecord(const NAME_VALUE_S &stGiven)
{
    WANTED_RECORD_S stWanted = {
        static_cast<u8>(stGiven.uiIndex + 1U), {}, {}, RecordAction::Add, {}, std::nullopt};
    stWanted.vecData.push_back(stWanted.ucSubType);
    if (stWanted.ucSubType == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID) {
        const GuidBytes aucGiven = ParseGuid(stGiven.strValue);
        GuidBytes aucStored = {};
        FRU_ConvertGUIDToStandardOrder(aucGiven.data(), aucStored.data());
        stWanted.vecValue.assign(aucGiven.begin(), aucGiven.end());
        stWanted.vecData.insert(stWanted.vecData.end(), aucStored.begin(), aucStored.end());
        return stWanted;
    }
    const std::string &strValue = stGiven.strValue;
    const bool bPrintable = std::all_of(strValue.begin(), strValue.end(), [](char cChar) {
        return (static_cast<u8>(cChar) & 0x7FU) >= 0x20U && cChar != 0x7F;
    });
    if (strValue.empty() || strValue.size() > VALUE_MAX || !bPrintable) {
        FailUsage(std::string("the value of ") + stWanted.Row().pcName +
                  Format(" (%zu characters) is refused; accepted: 1 to %zu printable characters, as the "
                         "record's length byte holds no more",
                         strValue.size(), VALUE_MAX));
    }
    stWanted.vecValue.assign(strValue.begin(), strValue.end());
    stWanted.vecData.insert(stWanted.vecData.end(), stWanted.vecValue.begin(), stWanted.vecValue.end());
    return stWanted;
}

RECORD_PLAN_S PlanAccessRecords(const DEVICE_S &stDevice, const std::vector<WANTED_RECORD_S> &vecWanted)
{
    RECORD_PLAN_S stPlan = {vecWanted, {}};
    const TARGET_S stTarget = {stDevice, ""};
    Record stRecord;
    DecodeTarget(stTarget, stRecord);
    CheckList(stDevice, *stRecord.Data());
    const IMAGE_S stImage = ReadTarget(stTarget);
    CHANGE_S stNow = PlanNothing(stDevice);
    bool bChanges = false;
    for (WANTED_RECORD_S &stWanted : stPlan.vecWanted) {
        FRU_MULTIRECORD_S *pstEntry = Place(stDevice, stRecord.Data(), stWanted);
        if (stWanted.enAction == RecordAction::Keep) {
            continue;
        }
        Put(pstEntry, stWanted);
        RenewMarks(stRecord.Data());
        stWanted.optChange =
            PlanRecord(stDevice, std::string("the new ") + stWanted.Row().pcTitle, stRecord, stNow);
        stNow = *stWanted.optChange;
        bChanges = true;
    }
    if (bChanges) {
        stPlan.stRewrite =
            CompareImages(stDevice, stImage, stNow.Home().vecAfter,
                          [](const FIELD_ID_S &stField) { return stField.enArea == Area::MultiRecord; });
    }
    return stPlan;
}

// Every update is a merge and a device write of its own: no call queues a record without merging it. One
// that is there already is handed over as well; the merge finds that nothing changes.
static void WriteEach(const DEVICE_S &stDevice, const RECORD_PLAN_S &stPlan, ProgressView *pstView)
{
    const Uninterrupted stUninterrupted;
    std::vector<std::string> vecDone;
    CHANGE_S stNow = PlanNothing(stDevice);
    for (const WANTED_RECORD_S &stWanted : stPlan.vecWanted) {
        std::vector<u8> vecValue = stWanted.vecValue;
        const FRU_MR_PARAM_S stParam = {FRU_MR_TYPE_MANAGEMENT_ACCESS, stWanted.ucSubType,
                                        static_cast<u32>(vecValue.size()), vecValue.data()};
        stNow = stWanted.optChange.value_or(stNow);
        const OUTCOME_S stOutcome = ApplyChange(stNow, "writing " + stDevice.Title(), pstView,
                                                [&] { return FRU_innerUpdateMultiRecord(&stParam); });
        if (stOutcome.uiStatus != FRU_OK) {
            FailLibrary(ErrorClass::NoAnswer,
                        std::string(stWanted.Row().pcName) +
                            " could not be written: " + MultiRecordStatus(stOutcome.uiStatus),
                        stOutcome.Cause() +
                            (vecDone.empty() ? "" : "; written before it: " + Join(vecDone, ", ")));
        }
        if (!stOutcome.strHomeDiffers.empty()) {
            Fail(ErrorClass::NoAnswer, "the library reports success, but " + stDevice.Title() +
                                           " does not hold the new records" + stOutcome.Cause() +
                                           "; 'fructl mr check' and 'fructl verify' tell what it holds");
        }
        if (!stOutcome.bCacheHolds) {
            FailLibrary(ErrorClass::Failed,
                        stDevice.Title() +
                            " holds the new records, but its cached image could not be renewed",
                        stOutcome.Cause());
        }
        vecDone.emplace_back(stWanted.Row().pcName);
    }
}

void WriteAccessRecords(const RootLock &stLock, const DEVICE_S &stDevice, const RECORD_PLAN_S &stPlan,
                        ProgressView *pstView)
{
    std::vector<CHANGE_S> vecSteps;
    for (const WANTED_RECORD_S &stWanted : stPlan.vecWanted) {
        if (stWanted.optChange.has_value()) {
            vecSteps.push_back(*stWanted.optChange);
        }
    }
    if (vecSteps.empty()) {
        vecSteps.push_back(PlanNothing(stDevice));
    }
    RunTransaction(stLock, vecSteps, {}, [&] { WriteEach(stDevice, stPlan, pstView); });
}
