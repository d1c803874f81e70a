// SPDX-License-Identifier: Apache-2.0
#include "memory/memory_platform.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "bmc_capability.h"
#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_hwdesc.h"
#include "bmc_ini.h"
#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "bmc_support.h"

namespace {

constexpr u32 g_uiFailed = 0x81000001U;
memory::COUNTS_S g_stCounts;
bool g_bFormatMessages;

std::unordered_map<u32, std::vector<u8>> &Records()
{
    static std::unordered_map<u32, std::vector<u8>> g_mapRecords;
    return g_mapRecords;
}

} // namespace

namespace memory {

COUNTS_S &Counts()
{
    return g_stCounts;
}

std::vector<u8> &Record(u32 uiKey)
{
    return Records()[uiKey];
}

std::vector<u8> &Eeprom()
{
    static std::vector<u8> g_vecEeprom;
    return g_vecEeprom;
}

void FormatMessages(bool bFormat)
{
    g_bFormatMessages = bFormat;
}

} // namespace memory

extern "C" {

void BMC_DiagLogOut(u32, u32, u32, u32, const char *, const char *pcFormat, ...)
{
    if (!g_bFormatMessages) {
        return;
    }
    char acText[512];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acText, sizeof(acText), pcFormat, vaArgs);
    va_end(vaArgs);
}

i32 BMC_GetFileSize(const char *)
{
    return -1;
}

u32 BMC_ReadFile(const char *, u8 *, u32)
{
    return g_uiFailed;
}

u32 BMC_Mkdir(const char *)
{
    return 0;
}

// No directory and no file: what the benchmarks measure ends at the device and the cache.
u32 BMC_CheckDirVaildStatus(const char *)
{
    return 0;
}

u32 BMC_CopyFileWithAllMode(const char *, const char *)
{
    return g_uiFailed;
}

u32 BMC_GetOemFlag(void)
{
    return 0;
}

void *DB_Open(void)
{
    return &g_stCounts;
}

u32 DB_Get(void *, u32 uiKey, u32 uiLen, void *pData)
{
    ++g_stCounts.ulDbCalls;
    const auto itRecord = Records().find(uiKey);
    if (itRecord == Records().end() || itRecord->second.size() != uiLen) {
        return g_uiFailed;
    }
    (void)memcpy(pData, itRecord->second.data(), uiLen);
    return 0;
}

u32 DB_PutInternal(void *, u32 uiKey, u32 uiLen, const void *pData, const char *, u32)
{
    ++g_stCounts.ulDbCalls;
    const u8 *pucData = static_cast<const u8 *>(pData);
    Records()[uiKey].assign(pucData, pucData + uiLen);
    return 0;
}

u32 DB_Del(void *, const u32 *puiKey)
{
    ++g_stCounts.ulDbCalls;
    return Records().erase(*puiKey) == 1U ? 0U : g_uiFailed;
}

u32 MRPC_Call(u32, u32, u32, const void *, u32, MRPC_MSG_S **ppstRes)
{
    if (ppstRes != nullptr) {
        *ppstRes = nullptr;
    }
    return 0;
}

void MRPC_MsgFree(MRPC_MSG_S *) {}

i32 ReadWriteEEPROM(u8, const void *, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    std::vector<u8> &vecChip = memory::Eeprom();
    if (uiOffset > vecChip.size()) {
        return -1;
    }
    const u32 uiDone = std::min<u32>(uiLength, static_cast<u32>(vecChip.size()) - uiOffset);
    if (ucDirection == BMC_EEPROM_READ) {
        (void)memcpy(pucBuf, vecChip.data() + uiOffset, uiDone);
        g_stCounts.ulEepromReadBytes += uiDone;
    } else {
        (void)memcpy(vecChip.data() + uiOffset, pucBuf, uiDone);
        g_stCounts.ulEepromWrittenBytes += uiDone;
    }
    return static_cast<i32>(uiDone);
}

u32 OPERATELOG_AddLogComm(u32, u32, const char *, u32, u32, u32, u8)
{
    return 0;
}

void *BRIDGE_IniLoadFile(const char *)
{
    return nullptr;
}

const char *BRIDGE_IniGetStr(void *, const char *, const char *, const char *pcDefault)
{
    return pcDefault;
}

u32 BRIDGE_IniGetUInt(void *, const char *, const char *, u32 uiDefault)
{
    return uiDefault;
}

u32 BRIDGE_IniGetBool(void *, const char *, const char *, u32 uiDefault)
{
    return uiDefault;
}

u32 BRIDGE_IniSetStr(void *, const char *, const char *, const char *)
{
    return g_uiFailed;
}

u32 BRIDGE_IniSaveFile(void *, const char *)
{
    return g_uiFailed;
}

void BRIDGE_IniCloseFile(void *) {}

u32 CAP_GetCommonCapabilityWithName(const char *, const char *, u32, char *)
{
    return g_uiFailed;
}

HW_NAMESPACE_S *HW_NewNameSpace(void)
{
    return nullptr;
}

u32 HW_LoadXml(HW_NAMESPACE_S *, const char *)
{
    return g_uiFailed;
}

u32 HW_GetObjectList(HW_NAMESPACE_S *, const char *, HW_OBJECT_LIST_S *)
{
    return g_uiFailed;
}

void HW_FreeNameSpace(HW_NAMESPACE_S *) {}

u32 HW_LIB_GetOemFlag(void)
{
    return 0;
}

} // extern "C"
