// Small services: test result, feature list and update, FRU events.
#include <cstdio>
#include <cstring>

#include "bmc_mrpc.h"
#include "device_io.h"
#include "lib_fru_access.h"
#include "lib_fru_diagnostics.h"
#include "lib_fru_module.h"

namespace {

constexpr u32 g_uiFeatureService = 29U;
constexpr u32 g_uiFeatureListMethod = 3U;
constexpr u32 g_uiFeatureUpdateMethod = 4U;
constexpr u32 g_uiFeatureListTimeoutMs = 2000U;
constexpr u32 g_uiFeatureUpdateTimeoutMs = 10000U;
constexpr u32 g_uiEventService = 630U;
constexpr u32 g_uiEventMethod = 0U;

// A fault mark of a device's cache status, and the bit of the test-result byte that it sets.
struct FAULT_BIT_S
{
    u32 uiStatusBit;
    u32 uiResultBit;
};
constexpr FAULT_BIT_S g_astFaultBit[] = {{0x02U, 0x20U}, {0x04U, 0x04U}};

bool IsSuccess(const char *pcText)
{
    return pcText != nullptr && strcmp(pcText, "success") == 0;
}

} // namespace

void LIB_FRU_GetTestResult(u8 *pucTestResultByte)
{
    FRU_REQUIRE_OR_LEAVE(pucTestResultByte);
    FRU_DEVICE_TBL_S stTable = {};
    if (LIB_FRU_GetFRUDeviceTbl(&stTable) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to find fru device tbl!");
        return;
    }
    // The count is believed as far as the record goes.
    u32 uiResult = *pucTestResultByte;
    for (u32 i = 0; i < stTable.ucCount && i < FRU_DEVICE_TBL_MAX; ++i) {
        const u32 uiStatus = FRU_ReadCacheStatus(stTable.astEntry[i].ucDeviceID);
        for (const FAULT_BIT_S &stBit : g_astFaultBit) {
            uiResult |= (uiStatus & stBit.uiStatusBit) != 0U ? stBit.uiResultBit : 0U;
        }
    }
    *pucTestResultByte = static_cast<u8>(uiResult);
}

u32 LIB_FRU_GetFeatureInfoList(void)
{
    MRPC_MSG_S *pstRes = nullptr;
    const u32 uiRet =
        MRPC_Call(g_uiFeatureService, g_uiFeatureListMethod, 0U, nullptr, g_uiFeatureListTimeoutMs, &pstRes);
    // None of these lines has an end, and none goes to the log.
    if (uiRet != FRU_OK) {
        (void)printf("Fail to get fru feature info list, Ret:%#x.", uiRet);
        MRPC_MsgFree(pstRes);
        return FRU_ERR_FAILED;
    }
    const u32 uiCount = pstRes == nullptr ? 0U : pstRes->uiCount;
    for (u32 i = 0; i < uiCount; ++i) {
        (void)fputs(IsSuccess(pstRes->ppcText[i]) ? "Get fru feature info list successfully."
                                                  : "Get fru feature info list failed!",
                    stdout);
    }
    MRPC_MsgFree(pstRes);
    return FRU_OK;
}

u32 LIB_FRU_UpdateFeatureInfo(const FRU_FEATURE_UPDATE_S *pstUpdateFRUFeatureInfo)
{
    FRU_REQUIRE(pstUpdateFRUFeatureInfo, LIB_FRU_ERR_NULL_POINTER);
    const u32 uiRet = MRPC_Call(g_uiFeatureService, g_uiFeatureUpdateMethod, sizeof(*pstUpdateFRUFeatureInfo),
                                pstUpdateFRUFeatureInfo, g_uiFeatureUpdateTimeoutMs, nullptr);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to update fru feature info! Ret:%#x.", uiRet);
        return LIB_FRU_ERR_FEATURE;
    }
    return FRU_OK;
}

u32 FRU_UpdateEventWithStruct(const FRU_EVENT_S *pstUpdateEvent)
{
    FRU_REQUIRE(pstUpdateEvent, FRU_ERR_NULL_POINTER);
    // The caller gets the RPC service's own code.
    return MRPC_Call(g_uiEventService, g_uiEventMethod, sizeof(*pstUpdateEvent), pstUpdateEvent, 0U, nullptr);
}
