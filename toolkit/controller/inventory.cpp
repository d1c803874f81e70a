// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/inventory.h"

#include <algorithm>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/verdict.h"

namespace {

ImageState FileState(const INVENTORY_S &stInventory)
{
    return !stInventory.optImage.has_value() ? ImageState::Unreadable
           : stInventory.stLayout.bErased    ? ImageState::Erased
           : stInventory.stLayout.IsSound()  ? ImageState::Sound
                                             : ImageState::Damaged;
}

// A device's cached image where it is served to readers and is another.
std::string WhyCacheDiffers(const INVENTORY_S &stInventory)
{
    const std::optional<size_t> optAt =
        stInventory.stTarget.optDevice.has_value()
            ? CacheDifference(*stInventory.stTarget.optDevice, *stInventory.optImage)
            : std::nullopt;
    return optAt.has_value()
               ? Format("the cached image differs from the EEPROM's from byte 0x%04zx on", *optAt)
               : "";
}

} // namespace

size_t INVENTORY_S::Problems() const
{
    return static_cast<size_t>(std::count_if(stLayout.vecFindings.begin(), stLayout.vecFindings.end(),
                                             [](const FINDING_S &stFinding) { return !stFinding.bWarning; }));
}

std::string INVENTORY_S::Name() const
{
    return stTarget.optDevice.has_value() ? stTarget.optDevice->strName : stTarget.strFile;
}

INVENTORY_S TakeInventory(const TARGET_S &stTarget)
{
    INVENTORY_S stInventory = {stTarget, {ImageState::Unreadable, CacheState::None}, {}, {}, {}, {}, ""};
    try {
        stInventory.optImage = ReadTarget(stTarget);
    } catch (const Error &stError) {
        stInventory.strFailure = stError.what();
    }
    if (stInventory.optImage.has_value()) {
        const VERDICT_S stVerdict = VerdictOn(*stInventory.optImage, stTarget.HasFixedSlots());
        stInventory.stLayout = stVerdict.stLayout;
        stInventory.stSeen = WalkImage(stInventory.optImage->vecBytes, stInventory.optImage->uiStored,
                                       stTarget.HasFixedSlots(), Damage::Passed);
        stInventory.strFailure = stVerdict.strRefusal;
        Record stRecord;
        if (DecodeImage(*stInventory.optImage, stTarget.HasFixedSlots(), stRecord) == FRU_OK) {
            stInventory.optRecord = ViewRecord(*stRecord.Data());
        }
        if (stInventory.strFailure.empty()) {
            stInventory.strFailure = WhyCacheDiffers(stInventory);
        }
    }
    stInventory.stState = stTarget.optDevice.has_value() ? StateOf(*stTarget.optDevice)
                                                         : STATE_S{FileState(stInventory), CacheState::None};
    return stInventory;
}

std::vector<INVENTORY_S> TakeInventory(const CONTROLLER_S &stController)
{
    std::vector<INVENTORY_S> vecInventory;
    for (const DEVICE_S &stDevice : LoadDevices(stController)) {
        vecInventory.push_back(TakeInventory(TARGET_S{stDevice, ""}));
    }
    return vecInventory;
}
