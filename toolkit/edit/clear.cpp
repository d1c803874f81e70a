// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/clear.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/erased.h"

std::string ClearDevice(const DEVICE_S &stDevice, ProgressView *pstView)
{
    FRU_CLEAR_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    const CHANGE_S stChange = PlanBytes(stDevice, std::vector<u8>(stDevice.stInfo.usSize, ERASED), true);
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    const OUTCOME_S stOutcome = ApplyChange(stChange, "erasing " + stDevice.Title(), pstView,
                                            [&] { return LIB_FRU_ClearFRUElectronicLabel(&stPara); });
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(stOutcome.uiStatus == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (stOutcome.uiStatus != FRU_OK) {
        Fail(stDevice.Title() + " could not be erased: " + StatusText(stOutcome.uiStatus) + stOutcome.Hint());
    }
    if (!stOutcome.strHomeDiffers.empty()) {
        Fail("the library reports success, but " + stDevice.Title() +
             " is not erased: " + stOutcome.strHomeDiffers + stOutcome.Hint());
    }
    if (!stOutcome.bCacheHolds) {
        Fail("the EEPROM of " + stDevice.Title() + " is erased, but its cached image is not" +
             stOutcome.Hint());
    }
    return stPara.acOperateLog;
}
