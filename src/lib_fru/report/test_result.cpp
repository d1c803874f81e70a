// SPDX-License-Identifier: Apache-2.0
// The test-result byte: what the cache status of all devices adds to it.
#include "lib_fru/device/device_io.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "lib_fru_diagnostics.h"

namespace {

// A fault mark of a device's cache status, and the bit of the test-result byte that it sets.
struct FAULT_BIT_S
{
    u32 uiStatusBit;
    u32 uiResultBit;
};
constexpr FAULT_BIT_S g_astFaultBit[] = {{FRU_CACHE_FAULT_1, FRU_TEST_RESULT_FAULT_1},
                                         {FRU_CACHE_FAULT_2, FRU_TEST_RESULT_FAULT_2}};

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
