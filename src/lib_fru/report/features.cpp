// SPDX-License-Identifier: Apache-2.0
// The feature service: its list, printed, and an update handed on.
#include <cstdio>
#include <cstring>

#include "bmc_mrpc.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_features.h"

namespace {

constexpr u32 g_uiFeatureListTimeoutMs = 2000U;
constexpr u32 g_uiFeatureUpdateTimeoutMs = 10000U;

bool IsSuccess(const char *pcText)
{
    return pcText != nullptr && strcmp(pcText, "success") == 0;
}

} // namespace

u32 LIB_FRU_GetFeatureInfoList(void)
{
    MRPC_MSG_S *pstRes = nullptr;
    const u32 uiRet = MRPC_Call(MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_LIST, 0U, nullptr,
                                g_uiFeatureListTimeoutMs, &pstRes);
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
    const u32 uiRet =
        MRPC_Call(MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_UPDATE, sizeof(*pstUpdateFRUFeatureInfo),
                  pstUpdateFRUFeatureInfo, g_uiFeatureUpdateTimeoutMs, nullptr);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to update fru feature info! Ret:%#x.", uiRet);
        return LIB_FRU_ERR_FEATURE;
    }
    return FRU_OK;
}
