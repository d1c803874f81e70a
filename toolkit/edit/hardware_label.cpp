// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/hardware_label.h"

#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/hardware.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"

namespace {

constexpr const char *HARDWARE_LABEL = "Hardware FRU Label";

std::string Write(const DEVICE_S &stDevice, const HardwareLabel &aucLabel, const CHANGE_S &stChange)
{
    FRU_SET_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    memcpy(stPara.acLabelName, HARDWARE_LABEL, strlen(HARDWARE_LABEL));
    memcpy(stPara.acLabelValue, aucLabel.data(), aucLabel.size());
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    const OUTCOME_S stOutcome = ApplyChange(stChange, "writing " + stDevice.Title(), nullptr,
                                            [&] { return LIB_FRU_WriteHWInfo(&stPara); });
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(stOutcome.uiStatus == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (stOutcome.uiStatus != FRU_OK) {
        FailLibrary(ErrorClass::NoAnswer,
                    "the hardware block of " + stDevice.Title() +
                        " could not be written: " + StatusText(stOutcome.uiStatus),
                    stOutcome.Hint());
    }
    if (!stOutcome.strHomeDiffers.empty()) {
        Fail(ErrorClass::NoAnswer, "the library reports success, but the EEPROM of " + stDevice.Title() +
                                       " does not hold what was written");
    }
    return stPara.acOperateLog;
}

} // namespace

std::string WriteHardwareLabel(const RootLock &stLock, const DEVICE_S &stDevice,
                               const HardwareLabel &aucLabel)
{
    const HW_BLOCK_S stBefore = ReadDeviceBlock(stDevice);
    const CHANGE_S stChange = PlanBytes(stDevice, HardwareBlockBytes(stBefore.stData, aucLabel), false);
    std::string strSentence;
    RunTransaction(stLock, {stChange}, {}, [&] { strSentence = Write(stDevice, aucLabel, stChange); });
    return strSentence;
}
