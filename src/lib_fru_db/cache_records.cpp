// The thirteen cache records: each call opens the database, checks its pointer and makes one database call,
// whose result it hands on unlogged; callers report it with what they know.
#include "lib_fru_cache.h"

#include "bmc_db.h"
#include "lib_fru_db_module.h"

namespace {

// Per-device keys have the device ID in their low byte, device 0 lives at the bare key.
constexpr u32 g_uiKeyDeviceInfo = 0x10810000U;
constexpr u32 g_uiKeySDR = 0x10810100U;
constexpr u32 g_uiKeyData = 0x10810200U;
constexpr u32 g_uiKeyOperateFlag = 0x108103FFU;
constexpr u32 g_uiKeyCacheStatus = 0x10810400U;
constexpr u32 g_uiKeyDeviceTbl = 0x108105FFU;

static_assert(sizeof(FRU_DEVICE_INFO_S) == 184U, "the record is shared with the FRU service");
static_assert(sizeof(FRU_SDR_S) == 32U, "the record is shared with the FRU service");
static_assert(sizeof(FRU_DEVICE_TBL_S) == 3703U, "the record is shared with the FRU service");

// Who calls, as its null-pointer reports and the database's own messages say.
struct CALLER_S
{
    const char *pcFunction;
    const char *pcNullFormat;
    u32 uiLine;
};

#define CALLER(pcName) (CALLER_S{__func__, FRU_NULL_FORMAT(pcName), __LINE__})

// Opens the database for a call with that data. The handle comes before the pointer, so a call with both
// faults reports the handle alone. A null pointer is "out of range" here and nowhere else in the library;
// both are meant. The handle is never kept: another process may have replaced the database.
u32 OpenDatabase(const CALLER_S &stCaller, const void *pData, void **ppDb)
{
    *ppDb = DB_Open();
    if (*ppDb == nullptr) {
        FRU_ReportNull(FRU_NULL_FORMAT("pDb"), FRU_DIAG_FILE, stCaller.pcFunction, stCaller.uiLine);
        return FRU_ERR_DB_OPEN;
    }
    if (pData == nullptr) {
        FRU_ReportNull(stCaller.pcNullFormat, FRU_DIAG_FILE, stCaller.pcFunction, stCaller.uiLine);
        return FRU_ERR_OUT_OF_RANGE;
    }
    return FRU_OK;
}

u32 PutRecord(const CALLER_S &stCaller, u32 uiKey, u32 uiLength, const void *pData)
{
    void *pDb = nullptr;
    const u32 uiRet = OpenDatabase(stCaller, pData, &pDb);
    return uiRet != FRU_OK ? uiRet
                           : DB_PutInternal(pDb, uiKey, uiLength, pData, FRU_DIAG_FILE, stCaller.uiLine);
}

u32 GetRecord(const CALLER_S &stCaller, u32 uiKey, u32 uiLength, void *pData)
{
    void *pDb = nullptr;
    const u32 uiRet = OpenDatabase(stCaller, pData, &pDb);
    return uiRet != FRU_OK ? uiRet : DB_Get(pDb, uiKey, uiLength, pData);
}

} // namespace

u32 FRU_DB_PutFRUDeviceInfo(u8 ucDeviceID, const FRU_DEVICE_INFO_S *pstFRUDeviceInfo)
{
    return PutRecord(CALLER("pstFRUDeviceInfo"), g_uiKeyDeviceInfo | ucDeviceID, sizeof(FRU_DEVICE_INFO_S),
                     pstFRUDeviceInfo);
}

u32 FRU_DB_GetFRUDeviceInfo(u8 ucDeviceID, FRU_DEVICE_INFO_S *pstFRUDeviceInfo)
{
    return GetRecord(CALLER("pstFRUDeviceInfo"), g_uiKeyDeviceInfo | ucDeviceID, sizeof(FRU_DEVICE_INFO_S),
                     pstFRUDeviceInfo);
}

u32 FRU_DB_PutFRUSDR(u8 ucDeviceID, const FRU_SDR_S *pstFRUSDR)
{
    return PutRecord(CALLER("pstFRUSDR"), g_uiKeySDR | ucDeviceID, sizeof(FRU_SDR_S), pstFRUSDR);
}

u32 FRU_DB_GetFRUSDR(u8 ucDeviceID, FRU_SDR_S *pstFRUSDR)
{
    return GetRecord(CALLER("pstFRUSDR"), g_uiKeySDR | ucDeviceID, sizeof(FRU_SDR_S), pstFRUSDR);
}

u32 FRU_DB_PutFRUData(u8 ucDeviceID, u16 usLength, const u8 *pucFRUBuf)
{
    return PutRecord(CALLER("pucFRUBuf"), g_uiKeyData | ucDeviceID, usLength, pucFRUBuf);
}

u32 FRU_DB_GetFRUData(u8 ucDeviceID, u16 usLength, u8 *pucFRUBuf)
{
    return GetRecord(CALLER("pucFRUBuf"), g_uiKeyData | ucDeviceID, usLength, pucFRUBuf);
}

u32 FRU_DB_DelFRUData(u8 ucDeviceID)
{
    const u32 uiKey = g_uiKeyData | ucDeviceID;
    void *pDb = nullptr;
    const u32 uiRet = OpenDatabase(CALLER("pDb"), &uiKey, &pDb);
    return uiRet != FRU_OK ? uiRet : DB_Del(pDb, &uiKey);
}

u32 FRU_DB_PutOperateFlag(u8 ucOperateFlag)
{
    return PutRecord(CALLER("pDb"), g_uiKeyOperateFlag, sizeof(ucOperateFlag), &ucOperateFlag);
}

u32 FRU_DB_GetOperateFlag(u8 *pucOperateFlag)
{
    return GetRecord(CALLER("pucOperateFlag"), g_uiKeyOperateFlag, sizeof(*pucOperateFlag), pucOperateFlag);
}

u32 FRU_DB_PutFRUDeviceTbl(const FRU_DEVICE_TBL_S *pstFRUDeviceTbl)
{
    return PutRecord(CALLER("pstFRUDeviceTbl"), g_uiKeyDeviceTbl, sizeof(FRU_DEVICE_TBL_S), pstFRUDeviceTbl);
}

u32 FRU_DB_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl)
{
    return GetRecord(CALLER("pstFRUDeviceTbl"), g_uiKeyDeviceTbl, sizeof(FRU_DEVICE_TBL_S), pstFRUDeviceTbl);
}

u32 FRU_DB_PutFRUDataCacheStatus(u8 ucDeviceID, u8 ucCacheStatus)
{
    return PutRecord(CALLER("pDb"), g_uiKeyCacheStatus | ucDeviceID, sizeof(ucCacheStatus), &ucCacheStatus);
}

u32 FRU_DB_GetFRUDataCacheStatus(u8 ucDeviceID, u8 *pucCacheStatus)
{
    return GetRecord(CALLER("pucCacheStatus"), g_uiKeyCacheStatus | ucDeviceID, sizeof(*pucCacheStatus),
                     pucCacheStatus);
}
