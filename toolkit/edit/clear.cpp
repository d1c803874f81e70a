#include "toolkit/edit/clear.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/operate_log.h"

std::string ClearDevice(const DEVICE_S &stDevice, ProgressView *pstView)
{
    FRU_CLEAR_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    ClearDiagnostics();
    u32 uiRet = FRU_OK;
    {
        const WriteProgress stProgress(pstView, "erasing " + stDevice.Title());
        uiRet = LIB_FRU_ClearFRUElectronicLabel(&stPara);
    }
    const std::string strHint = DiagnosticHint();
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(uiRet == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (uiRet != FRU_OK) {
        Fail(stDevice.Title() + " could not be erased: " + StatusText(uiRet) + strHint);
    }
    return stPara.acOperateLog;
}
