// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/provision_images.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/verdict.h"
#include "toolkit/edit/image_write.h"

namespace {

bool IsWritten(const DEVICE_PLAN_S &stDevice)
{
    return stDevice.IsRealChip() && !stDevice.strImage.empty();
}

} // namespace

void RequireSoundImages(const CONTROLLER_PLAN_S &stPlan)
{
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (!IsWritten(stDevice)) {
            continue;
        }
        const VERDICT_S stVerdict =
            VerdictOn({Source::Eeprom, stDevice.vecImage, stDevice.vecImage.size()}, false);
        if (!stVerdict.IsGood()) {
            Fail(ErrorClass::Damaged, "the image " + EscapeText(stDevice.strImage) +
                                          " is not in order, and the chip of " + stDevice.stInfo.acFRUName +
                                          " is a real one: " + stVerdict.Why() +
                                          "; 'fructl write --force' writes such an image to a device");
        }
    }
}

std::vector<std::string> WriteChipImages(const RootLock &stLock, const CONTROLLER_PLAN_S &stPlan)
{
    std::vector<std::string> vecWritten;
    const std::vector<DEVICE_S> vecDevices = LoadDevices(stLock.Controller());
    for (const DEVICE_PLAN_S &stDescribed : stPlan.vecDevices) {
        for (const DEVICE_S &stDevice : vecDevices) {
            if (!IsWritten(stDescribed) || stDevice.stEntry.ucDeviceID != stDescribed.stEntry.ucDeviceID) {
                continue;
            }
            const IMAGE_PLAN_S stImage = PlanImage(stDevice, stDescribed.vecImage);
            if (!stImage.IsUnchanged()) {
                (void)WriteImage(stLock, stImage, "written");
                vecWritten.push_back(stDevice.strName);
            }
        }
    }
    return vecWritten;
}
