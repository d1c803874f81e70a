// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/provision_held.h"

#include <optional>

#include "bmc_eeprom.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/trial_root.h"

void TakeHeldImages(CONTROLLER_PLAN_S &stPlan)
{
    const std::optional<CONF_FILE_S> optConf = EepromConf(stPlan);
    if (!optConf.has_value()) {
        return; // all are image files
    }
    // The controller that is there may have other chips at these places.
    const TrialRoot stTrial;
    stTrial.Lay(*optConf);
    for (DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (!stDevice.IsRealChip() || !stDevice.bCached) {
            continue;
        }
        const FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
        stDevice.vecHeld.assign(stInfo.usSize, 0U);
        ClearDiagnostics();
        const i32 iRead = ReadWriteEEPROM(stInfo.ucEEPROMType, &stInfo.ucBusNumber, stDevice.vecHeld.data(),
                                          stInfo.usStartOffset, stInfo.usSize, BMC_EEPROM_READ);
        if (iRead != static_cast<i32>(stInfo.usSize)) {
            Fail(ErrorClass::NoAnswer, std::string("the chip of ") + stInfo.acFRUName + " cannot be read" +
                                           stTrial.Hint() +
                                           "; a device that is not there yet takes \"cached\": false");
        }
    }
}
