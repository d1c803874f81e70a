// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/clear.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/operate_log.h"
#include "toolkit/controller/serial_file.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/edit/uninterrupted.h"
#include "toolkit/image/erased.h"

namespace {

constexpr u32 CLEARED_SERIAL_LEN = 80U; // the library clears the serial-number file by so many zero bytes

std::string Erase(const DEVICE_S &stDevice, const CHANGE_S &stChange, ProgressView *pstView)
{
    FRU_CLEAR_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    const Uninterrupted stUninterrupted; // the operation log belongs to the write
    const OUTCOME_S stOutcome = ApplyChange(stChange, "erasing " + stDevice.Title(), pstView,
                                            [&] { return LIB_FRU_ClearFRUElectronicLabel(&stPara); });
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(stOutcome.uiStatus == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (stOutcome.uiStatus != FRU_OK) {
        FailLibrary(ErrorClass::NoAnswer,
                    stDevice.Title() + " could not be erased: " + StatusText(stOutcome.uiStatus),
                    stOutcome.Hint(), stOutcome.uiStatus);
    }
    if (!stOutcome.strHomeDiffers.empty()) {
        Fail(ErrorClass::NoAnswer, "the library reports success, but " + stDevice.Title() +
                                       " is not erased: " + stOutcome.strHomeDiffers + stOutcome.Hint());
    }
    if (!stOutcome.bCacheHolds) {
        FailLibrary(ErrorClass::Failed,
                    "the EEPROM of " + stDevice.Title() + " is erased, but its cached image is not",
                    stOutcome.Hint());
    }
    return stPara.acOperateLog;
}

} // namespace

std::string ClearDevice(const RootLock &stLock, const DEVICE_S &stDevice, ProgressView *pstView)
{
    const CHANGE_S stChange = PlanBytes(stDevice, std::vector<u8>(stDevice.stInfo.usSize, ERASED), true);
    std::vector<FILE_CHANGE_S> vecFiles;
    if (stDevice.stEntry.ucDeviceID == FRU_DEVICE_ID_BASEBOARD) {
        vecFiles = SerialFiles(Bytes(CLEARED_SERIAL_LEN));
    }
    std::string strSentence;
    RunTransaction(stLock, {stChange}, vecFiles, [&] { strSentence = Erase(stDevice, stChange, pstView); });
    return strSentence;
}
