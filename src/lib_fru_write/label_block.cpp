// The request block of the label writes: its bounded texts, its outputs, and the sentences for
// the operation log.
#include "label_block.h"

#include <cstring>

#include "catalogue.h"
#include "lib_fru_access.h"
#include "lib_fru_labels.h"
#include "lib_fru_write_module.h"

namespace {

constexpr u8 g_ucOperateLogType = 12U;

// Both label writes have one sentence for a failure, and one each for a success.
void FillSentence(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara, bool bHardware, const char *pcFunction)
{
    if (pstFRUSetPara == nullptr) {
        FRU_LOG_NULL_IN("pstFRUSetPara", pcFunction);
        return;
    }
    char acFRUName[sizeof(pstFRUSetPara->acFRUName) + 1U];
    char acName[sizeof(pstFRUSetPara->acLabelName) + 1U];
    char acValue[sizeof(pstFRUSetPara->acLabelValue) + 1U];
    FRU_CopyMember(acFRUName, pstFRUSetPara->acFRUName, sizeof(pstFRUSetPara->acFRUName));
    FRU_CopyMember(acName, pstFRUSetPara->acLabelName, sizeof(pstFRUSetPara->acLabelName));
    FRU_CopyMember(acValue, pstFRUSetPara->acLabelValue, sizeof(pstFRUSetPara->acLabelValue));
    char *pcSentence = pstFRUSetPara->acOperateLog;
    constexpr u32 uiSize = sizeof(pstFRUSetPara->acOperateLog);
    if (iResult != g_iOperateSuccess) {
        (void)BMC_Scnprintf(pcSentence, uiSize, "Failed to set %s FRU.", acFRUName);
    } else if (bHardware) {
        (void)BMC_Scnprintf(pcSentence, uiSize, "Set %s %s successfully.", acFRUName, acName);
    } else {
        // The FRU name stands twice, in the sentence's head and before the label.
        (void)BMC_Scnprintf(pcSentence, uiSize, "Set %s FRU successfully, %s %s: %s.", acFRUName, acFRUName,
                            acName, acValue);
    }
}

} // namespace

void FRU_CopyMember(char *pcDest, const char *pcMember, size_t uiSize)
{
    const size_t uiLength = strnlen(pcMember, uiSize);
    (void)memcpy(pcDest, pcMember, uiLength);
    pcDest[uiLength] = '\0';
}

bool FRU_IsTerminated(const char *pcMember, size_t uiSize)
{
    return memchr(pcMember, '\0', uiSize) != nullptr;
}

u32 FRU_LabelIDOfBlock(const FRU_SET_PARA_S *pstFRUSetPara)
{
    const char *pcName = pstFRUSetPara->acLabelName;
    return FRU_IsTerminated(pcName, sizeof(pstFRUSetPara->acLabelName)) ? FindLabelIDByName(pcName)
                                                                        : g_uiLabelNotFound;
}

u32 FRU_FetchBlockDevice(FRU_SET_PARA_S *pstFRUSetPara, FRU_DEVICE_INFO_S *pstFRUInfo)
{
    (void)memset(pstFRUInfo, 0, sizeof(*pstFRUInfo));
    const u8 ucType = pstFRUSetPara->ucComponentType;
    const u8 ucInstance = pstFRUSetPara->ucInstance;
    if (LIB_FRU_GetFRUDeviceInfo(ucType, ucInstance, pstFRUInfo) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "ComponentType[%#x] Instance[%d] FRU NAME does not exist!",
                ucType, ucInstance);
        return LIB_FRU_ERR_NO_DEVICE;
    }
    FRU_CopyMember(pstFRUSetPara->acFRUName, pstFRUInfo->acFRUName, sizeof(pstFRUSetPara->acFRUName) - 1U);
    pstFRUSetPara->ucOperateLogType = g_ucOperateLogType;
    return FRU_OK;
}

u32 FRU_ResolveBlockLabel(FRU_SET_PARA_S *pstFRUSetPara)
{
    const u32 uiLabelID = FRU_LabelIDOfBlock(pstFRUSetPara);
    if (uiLabelID == g_uiLabelNotFound) {
        char acName[sizeof(pstFRUSetPara->acLabelName) + 1U];
        FRU_CopyMember(acName, pstFRUSetPara->acLabelName, sizeof(pstFRUSetPara->acLabelName));
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Find Label ID by name[%s] failed!", acName);
        return FRU_ERR_FAILED;
    }
    pstFRUSetPara->uiLabelID = uiLabelID;
    return FRU_OK;
}

void FRU_AddComOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara)
{
    FillSentence(iResult, pstFRUSetPara, false, __func__);
}

void FRU_AddHWOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara)
{
    FillSentence(iResult, pstFRUSetPara, true, __func__);
}
