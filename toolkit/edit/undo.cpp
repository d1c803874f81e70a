// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/undo.h"

#include "lib_fru.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/transaction.h"

namespace {

bool ChangesAnything(const CHANGE_S &stChange)
{
    return (stChange.optEeprom.has_value() &&
            stChange.optEeprom->optBefore != stChange.optEeprom->vecAfter) ||
           (stChange.optCache.has_value() && stChange.optCache->optBefore != stChange.optCache->vecAfter);
}

} // namespace

PAST_IMAGE_S ChoosePast(const DEVICE_S &stDevice, const std::vector<PAST_IMAGE_S> &vecPast,
                        std::optional<u32> optNumber)
{
    for (auto itPast = vecPast.rbegin(); itPast != vecPast.rend(); ++itPast) {
        if (optNumber.has_value() ? itPast->uiNumber == *optNumber
                                  : ChangesAnything(PlanUndo(stDevice, *itPast))) {
            return *itPast;
        }
    }
    Fail(ErrorClass::NotFound,
         stDevice.Title() +
             (optNumber.has_value() ? Format(" has no image %u in its history", *optNumber)
                                    : " has no other image in its history") +
             "; 'fructl history' lists what there is");
}

CHANGE_S PlanUndo(const DEVICE_S &stDevice, const PAST_IMAGE_S &stPast)
{
    const std::optional<Bytes> &optHome = stDevice.IsDatabaseOnly() ? stPast.optCache : stPast.optEeprom;
    if (!optHome.has_value() || optHome->size() != stDevice.stInfo.usSize) {
        Fail(ErrorClass::Damaged,
             Format("image %u of the history of %s does not have the FRU's %u bytes", stPast.uiNumber,
                    stDevice.Title().c_str(), u32{stDevice.stInfo.usSize}));
    }
    CHANGE_S stChange = PlanBytes(stDevice, *optHome, true);
    if (stPast.optCache.has_value() && stPast.optCache->size() == optHome->size()) {
        stChange.optCache->vecAfter = *stPast.optCache;
    }
    return stChange;
}

void WriteUndo(const RootLock &stLock, const CHANGE_S &stChange)
{
    RunTransaction(stLock, {stChange}, MirrorOf(stChange), nullptr);
}
