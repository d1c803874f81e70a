// SPDX-License-Identifier: Apache-2.0
// The fake platform for many threads: its device, database and RPC calls one at a time (linked with --wrap).
#include "locked/locked_platform.h"

#include <atomic>
#include <mutex>

#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_mrpc.h"

extern "C" {
void *__real_DB_Open(void);
u32 __real_DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData);
u32 __real_DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine);
u32 __real_DB_Del(void *pDb, const u32 *puiKey);
i32 __real_ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength,
                           u8 ucDirection);
u32 __real_MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
                     MRPC_MSG_S **ppstRes);
void __real_MRPC_MsgFree(MRPC_MSG_S *pstMsg);
void *__wrap_DB_Open(void);
u32 __wrap_DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData);
u32 __wrap_DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine);
u32 __wrap_DB_Del(void *pDb, const u32 *puiKey);
i32 __wrap_ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength,
                           u8 ucDirection);
u32 __wrap_MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
                     MRPC_MSG_S **ppstRes);
void __wrap_MRPC_MsgFree(MRPC_MSG_S *pstMsg);
}

namespace {

std::mutex g_mtxPlatform;
std::atomic<u32> g_uiAtTheDevice{0};
std::atomic<u32> g_uiMostAtTheDevice{0};

using LOCK = std::lock_guard<std::mutex>;

} // namespace

u32 TakeMostAtTheDevice()
{
    return g_uiMostAtTheDevice.exchange(0U);
}

void *__wrap_DB_Open(void)
{
    const LOCK lock(g_mtxPlatform);
    return __real_DB_Open();
}

u32 __wrap_DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData)
{
    const LOCK lock(g_mtxPlatform);
    return __real_DB_Get(pDb, uiKey, uiLen, pData);
}

u32 __wrap_DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    const LOCK lock(g_mtxPlatform);
    return __real_DB_PutInternal(pDb, uiKey, uiLen, pData, pcFile, uiLine);
}

u32 __wrap_DB_Del(void *pDb, const u32 *puiKey)
{
    const LOCK lock(g_mtxPlatform);
    return __real_DB_Del(pDb, puiKey);
}

i32 __wrap_ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength,
                           u8 ucDirection)
{
    const u32 uiNow = ++g_uiAtTheDevice;
    u32 uiMost = g_uiMostAtTheDevice;
    while (uiNow > uiMost && !g_uiMostAtTheDevice.compare_exchange_weak(uiMost, uiNow)) {
    }
    i32 iRet = 0;
    {
        const LOCK lock(g_mtxPlatform);
        iRet = __real_ReadWriteEEPROM(ucType, pLocation, pucBuf, uiOffset, uiLength, ucDirection);
    }
    --g_uiAtTheDevice;
    return iRet;
}

u32 __wrap_MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
                     MRPC_MSG_S **ppstRes)
{
    const LOCK lock(g_mtxPlatform);
    return __real_MRPC_Call(uiService, uiMethod, uiReqLen, pReq, uiTimeoutMs, ppstRes);
}

void __wrap_MRPC_MsgFree(MRPC_MSG_S *pstMsg)
{
    const LOCK lock(g_mtxPlatform);
    __real_MRPC_MsgFree(pstMsg);
}
