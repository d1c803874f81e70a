// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/image_write.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/hardware_block.h"

namespace {

// As it is, so that it compares with a file of it; nothing of what cannot be decoded.
RECORD_VIEW_S View(const IMAGE_S &stImage)
{
    Record stRecord;
    return DecodeImage(stImage, false, stRecord) == FRU_OK ? ViewRecord(*stRecord.Data()) : RECORD_VIEW_S();
}

// Where the EEPROM has the bytes already, a cached image that says the same stays as it is, too.
void LeaveEqualCache(CHANGE_S &stChange)
{
    std::optional<PART_S> &optCache = stChange.optCache;
    if (!stChange.optEeprom.has_value() || stChange.optEeprom->optBefore != stChange.optEeprom->vecAfter ||
        !optCache.has_value() || !optCache->optBefore.has_value()) {
        return;
    }
    const std::vector<u8> &vecAfter = optCache->vecAfter;
    if (!FirstDifference({Source::Eeprom, vecAfter, vecAfter.size()},
                         {Source::Cache, *optCache->optBefore, vecAfter.size()},
                         stChange.stDevice.HasFixedSlots())) {
        optCache.reset();
    }
}

// As the library's own log tells of a write of bytes.
std::string Sentence(const DEVICE_S &stDevice, bool bSuccess)
{
    return Format(bSuccess ? "Set FRU successfully, Device ID: %u." : "Failed to set FRU, Device ID: %u.",
                  stDevice.stEntry.ucDeviceID);
}

} // namespace

bool IMAGE_PLAN_S::IsUnchanged() const
{
    const auto fnSame = [](const std::optional<PART_S> &optPart) {
        return !optPart.has_value() || optPart->optBefore == optPart->vecAfter;
    };
    return fnSame(stChange.optEeprom) && fnSame(stChange.optCache);
}

IMAGE_PLAN_S PlanImage(const DEVICE_S &stDevice, const std::vector<u8> &vecImage)
{
    const u32 uiSize = stDevice.stInfo.usSize;
    if (vecImage.empty() || vecImage.size() > uiSize) {
        FailRefused(
            Format("the image has %zu bytes, and %s takes 1 to %u (a shorter one is filled with 0xff)",
                   vecImage.size(), stDevice.Title().c_str(), uiSize));
    }
    std::vector<u8> vecAfter = vecImage;
    vecAfter.resize(uiSize, ERASED);
    std::vector<u8> vecBefore(uiSize, ERASED);
    const Source enHome = HomeOf(stDevice);
    if (!stDevice.IsDatabaseOnly()) {
        vecBefore = ReadSource(stDevice, enHome).vecBytes;
    } else if (const std::optional<IMAGE_S> optCached = FindSource(stDevice, enHome)) {
        vecBefore = optCached->vecBytes;
    }
    IMAGE_PLAN_S stPlan;
    // A hardware block has no cached image.
    stPlan.stChange = PlanBytes(stDevice, vecAfter, !IsHardwareBlock(vecAfter, uiSize));
    LeaveEqualCache(stPlan.stChange);
    const IMAGE_S stBefore = {enHome, vecBefore, uiSize};
    const IMAGE_S stAfter = {enHome, vecAfter, uiSize};
    stPlan.stVerdict = VerdictOn(stAfter, stDevice.HasFixedSlots());
    stPlan.vecFields = CompareRecords(View(stBefore), View(stAfter));
    stPlan.vecBytes = CompareBytes(vecBefore, vecAfter);
    if (vecImage.size() < uiSize) {
        stPlan.vecNotes.push_back(Format("the image has %zu of the FRU's %u bytes; the rest will be 0xff",
                                         vecImage.size(), uiSize));
    }
    if (stPlan.vecBytes.empty() && !stPlan.IsUnchanged()) {
        stPlan.vecNotes.push_back(std::string("the ") + SourceName(enHome) +
                                  " holds these bytes already; only the cached image is renewed");
    }
    return stPlan;
}

std::string WriteImage(const RootLock &stLock, const IMAGE_PLAN_S &stPlan, const std::string &strDoing)
{
    const CHANGE_S &stChange = stPlan.stChange;
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    try {
        RunTransaction(stLock, {stChange}, MirrorOf(stChange), nullptr);
    } catch (const Error &stError) {
        RecordOperation(false, Sentence(stChange.stDevice, false).c_str(), FRU_OPERATELOG_SOURCE);
        throw Error(stError.Class(),
                    stChange.stDevice.Title() + " could not be " + strDoing + ": " + stError.what());
    }
    const std::string strSentence = Sentence(stChange.stDevice, true);
    RecordOperation(true, strSentence.c_str(), FRU_OPERATELOG_SOURCE);
    return strSentence;
}
