// SPDX-License-Identifier: Apache-2.0
// The thirteen cache records: each call opens the database, checks its pointer and makes one database call,
// whose result it hands on unlogged; callers report it with what they know. The handle comes before the
// pointer, so a call with both faults reports the handle alone. A null pointer is "out of range" here and
// nowhere else in the library. Both are intended. The handle is never kept: another process may have replaced
// the database.
#include "lib_fru_cache.h"

#include "bmc_db.h"
#include "lib_fru_db/lib_fru_db_module.h"

namespace {

// Per-device keys have the device ID in their low byte, device 0 lives at the bare key.
constexpr u32 g_uiKeyDeviceInfo = 0x10810000U;
constexpr u32 g_uiKeySDR = 0x10810100U;
constexpr u32 g_uiKeyData = 0x10810200U;
constexpr u32 g_uiKeyOperateFlag = 0x108103FFU;
constexpr u32 g_uiKeyCacheStatus = 0x10810400U;
constexpr u32 g_uiKeyDeviceTbl = 0x108105FFU;

} // namespace

u32 FRU_DB_PutFRUDeviceInfo(u8 ucDeviceID, const FRU_DEVICE_INFO_S *pstFRUDeviceInfo)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUDeviceInfo, FRU_ERR_OUT_OF_RANGE);
    return DB_PutInternal(pDb, g_uiKeyDeviceInfo | ucDeviceID, sizeof(*pstFRUDeviceInfo), pstFRUDeviceInfo,
                          FRU_DIAG_FILE, __LINE__);
}

u32 FRU_DB_GetFRUDeviceInfo(u8 ucDeviceID, FRU_DEVICE_INFO_S *pstFRUDeviceInfo)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUDeviceInfo, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeyDeviceInfo | ucDeviceID, sizeof(*pstFRUDeviceInfo), pstFRUDeviceInfo);
}

u32 FRU_DB_PutFRUSDR(u8 ucDeviceID, const FRU_SDR_S *pstFRUSDR)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUSDR, FRU_ERR_OUT_OF_RANGE);
    return DB_PutInternal(pDb, g_uiKeySDR | ucDeviceID, sizeof(*pstFRUSDR), pstFRUSDR, FRU_DIAG_FILE,
                          __LINE__);
}

u32 FRU_DB_GetFRUSDR(u8 ucDeviceID, FRU_SDR_S *pstFRUSDR)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUSDR, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeySDR | ucDeviceID, sizeof(*pstFRUSDR), pstFRUSDR);
}

u32 FRU_DB_PutFRUData(u8 ucDeviceID, u16 usLength, const u8 *pucFRUBuf)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pucFRUBuf, FRU_ERR_OUT_OF_RANGE);
    return DB_PutInternal(pDb, g_uiKeyData | ucDeviceID, usLength, pucFRUBuf, FRU_DIAG_FILE, __LINE__);
}

u32 FRU_DB_GetFRUData(u8 ucDeviceID, u16 usLength, u8 *pucFRUBuf)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pucFRUBuf, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeyData | ucDeviceID, usLength, pucFRUBuf);
}

u32 FRU_DB_DelFRUData(u8 ucDeviceID)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    const u32 uiKey = g_uiKeyData | ucDeviceID;
    return DB_Del(pDb, &uiKey);
}

u32 FRU_DB_PutOperateFlag(u8 ucOperateFlag)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    return DB_PutInternal(pDb, g_uiKeyOperateFlag, sizeof(ucOperateFlag), &ucOperateFlag, FRU_DIAG_FILE,
                          __LINE__);
}

u32 FRU_DB_GetOperateFlag(u8 *pucOperateFlag)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pucOperateFlag, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeyOperateFlag, sizeof(*pucOperateFlag), pucOperateFlag);
}

u32 FRU_DB_PutFRUDeviceTbl(const FRU_DEVICE_TBL_S *pstFRUDeviceTbl)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUDeviceTbl, FRU_ERR_OUT_OF_RANGE);
    return DB_PutInternal(pDb, g_uiKeyDeviceTbl, sizeof(*pstFRUDeviceTbl), pstFRUDeviceTbl, FRU_DIAG_FILE,
                          __LINE__);
}

u32 FRU_DB_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pstFRUDeviceTbl, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeyDeviceTbl, sizeof(*pstFRUDeviceTbl), pstFRUDeviceTbl);
}

u32 FRU_DB_PutFRUDataCacheStatus(u8 ucDeviceID, u8 ucCacheStatus)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    return DB_PutInternal(pDb, g_uiKeyCacheStatus | ucDeviceID, sizeof(ucCacheStatus), &ucCacheStatus,
                          FRU_DIAG_FILE, __LINE__);
}

u32 FRU_DB_GetFRUDataCacheStatus(u8 ucDeviceID, u8 *pucCacheStatus)
{
    void *pDb = DB_Open();
    FRU_REQUIRE(pDb, FRU_ERR_DB_OPEN);
    FRU_REQUIRE(pucCacheStatus, FRU_ERR_OUT_OF_RANGE);
    return DB_Get(pDb, g_uiKeyCacheStatus | ucDeviceID, sizeof(*pucCacheStatus), pucCacheStatus);
}
