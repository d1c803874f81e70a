// SPDX-License-Identifier: Apache-2.0
// Which FRU device belongs to a component or to an SDR record. Every lookup fetches the table anew.
#include "lib_fru/device/device_table.h"

#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"

namespace {

constexpr u32 g_uiByteMax = 0xFFU;

// Entries that a scan may look at: a count above the table's room is not to be believed.
u32 UsableEntries(const FRU_DEVICE_TBL_S &stTable)
{
    return stTable.ucCount < FRU_DEVICE_TBL_MAX ? stTable.ucCount : FRU_DEVICE_TBL_MAX;
}

} // namespace

u32 LIB_FRU_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl)
{
    FRU_REQUIRE(pstFRUDeviceTbl, LIB_FRU_ERR_NULL_POINTER);
    if (FRU_DB_GetFRUDeviceTbl(pstFRUDeviceTbl) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get fru device tbl failed!");
        return LIB_FRU_ERR_NO_DEVICE;
    }
    return FRU_OK;
}

// Belongs with the internal functions although it is exported: its codes are theirs.
u32 LIB_FRU_GetDeviceID(u8 ucComponentType, u8 ucInstance, u8 *pucDeviceID)
{
    FRU_REQUIRE(pucDeviceID, FRU_ERR_NULL_POINTER);
    FRU_DEVICE_TBL_S stTable = {};
    if (LIB_FRU_GetFRUDeviceTbl(&stTable) != FRU_OK) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to find fru device tbl!");
        return FRU_ERR_FAILED;
    }
    const u32 uiEntries = UsableEntries(stTable);
    for (u32 i = 0; i < uiEntries; ++i) {
        const FRU_DEVICE_TBL_ENTRY_S &stEntry = stTable.astEntry[i];
        if (stEntry.ucComponentType == ucComponentType && stEntry.ucInstance == ucInstance) {
            *pucDeviceID = stEntry.ucDeviceID;
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to find Component[%#x] Instance[%d] fru device id!",
            ucComponentType, ucInstance);
    return FRU_ERR_FAILED;
}

u32 FRU_FindDevice(u32 uiComponentType, u32 uiInstance, u8 *pucDeviceID, FRU_DEVICE_INFO_S *pstInfo,
                   FRU_REPORT_NO_ID pfnReportNoID, FRU_REPORT_NO_RECORD pfnReportNoRecord)
{
    // The device table holds bytes: cut to a byte, a wider number would name another component's device.
    if (uiComponentType > g_uiByteMax || uiInstance > g_uiByteMax ||
        LIB_FRU_GetDeviceID(static_cast<u8>(uiComponentType), static_cast<u8>(uiInstance), pucDeviceID) !=
            FRU_OK) {
        pfnReportNoID(uiComponentType, uiInstance);
        return LIB_FRU_ERR_NO_DEVICE_ID;
    }
    const u32 uiRet = FRU_DB_GetFRUDeviceInfo(*pucDeviceID, pstInfo);
    if (uiRet != FRU_OK) {
        pfnReportNoRecord(*pucDeviceID, uiRet);
        return LIB_FRU_ERR_NO_DEVICE;
    }
    return FRU_OK;
}

void FRU_ReportNoDeviceID(u32 uiComponentType, u32 uiInstance)
{
    FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail to find ComponentType:%#x,Instance:%#x!", uiComponentType,
            uiInstance);
}

u32 LIB_FRU_GetFRUDeviceInfo(u8 ucComponentType, u8 ucInstance, FRU_DEVICE_INFO_S *pstFRUDeviceInfo)
{
    FRU_REQUIRE(pstFRUDeviceInfo, LIB_FRU_ERR_NULL_POINTER);
    u8 ucDeviceID = 0;
    return FRU_FindDevice(
        ucComponentType, ucInstance, &ucDeviceID, pstFRUDeviceInfo,
        [](u32 uiType, u32 uiInstance) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING,
                    "Fail to find ComponentType:%#x Instance:%#x Device ID!", uiType, uiInstance);
        },
        [](u8 ucID, u32) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "FRU ID[%#x] does not exist!", ucID);
        });
}

u32 LIB_FRU_GetSDRByRecordID(u16 usRecordID, FRU_SDR_S *pstFRUSDR)
{
    FRU_REQUIRE(pstFRUSDR, LIB_FRU_ERR_NULL_POINTER);
    FRU_DEVICE_TBL_S stTable = {};
    if (LIB_FRU_GetFRUDeviceTbl(&stTable) != FRU_OK) {
        // The getter's own words once more. Intended.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get fru device tbl failed!");
        return LIB_FRU_ERR_NO_DEVICE;
    }
    const u32 uiEntries = UsableEntries(stTable);
    for (u32 i = 0; i < uiEntries; ++i) {
        if (stTable.astEntry[i].usSDRRecordID != usRecordID) {
            continue;
        }
        const u8 ucDeviceID = stTable.astEntry[i].ucDeviceID;
        if (FRU_DB_GetFRUSDR(ucDeviceID, pstFRUSDR) != FRU_OK) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get fru device id[%#x] sdr info failed!", ucDeviceID);
            return LIB_FRU_ERR_READ;
        }
        return FRU_OK;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get fru device id by record id[%#x] failed!", usRecordID);
    return LIB_FRU_ERR_SIZE;
}

u32 LIB_FRU_GetFRUTotalNum(u8 *pucFRUTotalNum)
{
    FRU_REQUIRE(pucFRUTotalNum, LIB_FRU_ERR_NULL_POINTER);
    // A controller without a table has 0 FRUs, which is no failure here: the zeroed table answers.
    FRU_DEVICE_TBL_S stTable = {};
    (void)LIB_FRU_GetFRUDeviceTbl(&stTable);
    *pucFRUTotalNum = stTable.ucCount;
    return FRU_OK;
}
