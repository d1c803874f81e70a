// SPDX-License-Identifier: Apache-2.0
// EEPROM access: what a chip is called, and the calls.
#include <algorithm>
#include <atomic>
#include <cstring>

#include "bmc_eeprom.h"
#include "eeprom/registry.h"

namespace {

constexpr u8 g_ucFirstI2cType = 9;
constexpr u8 g_ucLastI2cType = 15;

struct PROGRESS_S
{
    void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext);
    void *pContext;
};
PROGRESS_S g_stProgress; // guarded by mtxEeprom
std::atomic<u32> g_uiDelayUs;

bool IsNameUsable(std::string_view svName)
{
    return !svName.empty() && svName.front() != '.' && std::none_of(svName.begin(), svName.end(), [](char c) {
        return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20U || c == 0x7F;
    });
}

// The image's file name without ".bin"; empty when a device name cannot be one.
std::string ChipName(u8 ucType, const void *pLocation)
{
    if (ucType < g_ucFirstI2cType || ucType > g_ucLastI2cType) {
        const char *pcName = static_cast<const char *>(pLocation);
        return IsNameUsable(pcName) ? pcName : "";
    }
    const u8 *pucLocation = static_cast<const u8 *>(pLocation);
    char acName[48];
    (void)BMC_Scnprintf(acName, sizeof(acName), "bus%u-addr0x%02x", static_cast<unsigned>(pucLocation[0]),
                        static_cast<unsigned>(pucLocation[1]));
    std::string strName = acName;
    return pucLocation[2] == 0U ? strName : strName + "-switch" + std::to_string(pucLocation[2]);
}

std::string ImagePath(const std::string &strChip)
{
    return host::Resolve((BMCHOST_EEPROM_DIR "/" + strChip + ".bin").c_str());
}

i32 Transfer(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    const bool bWrite = ucDirection == BMC_EEPROM_WRITE;
    if (pLocation == nullptr || (pucBuf == nullptr && uiLength != 0U) ||
        (!bWrite && ucDirection != BMC_EEPROM_READ)) {
        return host::g_iNoTransfer;
    }
    const std::string strChip = ChipName(ucType, pLocation);
    if (strChip.empty()) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM name refused");
        return host::g_iNoTransfer;
    }
    PROGRESS_S stProgress;
    {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxEeprom);
        stProgress = g_stProgress;
    }
    const host::TRANSFER_S stTransfer = {
        strChip, pucBuf, uiOffset, uiLength, stProgress.pfnProgress, stProgress.pContext, g_uiDelayUs};
    const host::SELECTION_S stSelection = host::SelectBackend(strChip);
    if (!stSelection.strProblem.empty()) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s", strChip.c_str(), stSelection.strProblem.c_str());
        return host::g_iNoTransfer;
    }
    if (stSelection.pstBackend != nullptr) {
        return bWrite ? host::WriteThrough(stSelection, stTransfer)
                      : host::ReadThrough(stSelection, stTransfer);
    }
    return bWrite ? host::WriteChip(stTransfer) : host::ReadChip(stTransfer);
}

} // namespace

extern "C" {

i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    return host::Shield(host::g_iNoTransfer,
                        [&] { return Transfer(ucType, pLocation, pucBuf, uiOffset, uiLength, ucDirection); });
}

u32 BMCHOST_CheckEepromSettings(const char *pcSettings, size_t uiSize, char *pcWhy)
{
    if (pcSettings == nullptr || pcWhy == nullptr || uiSize == 0U) {
        return host::g_uiFailed;
    }
    *pcWhy = '\0';
    return host::Shield(host::g_uiFailed, [&] {
        const std::string strWhy = host::SettingsProblem(pcSettings);
        (void)BMC_Strlcpy(pcWhy, strWhy.c_str(), static_cast<u32>(std::min<size_t>(uiSize, UINT32_MAX)));
        return strWhy.empty() ? 0U : host::g_uiFailed;
    });
}

u32 BMCHOST_GetEepromPath(u8 ucType, const void *pLocation, size_t uiSize, char *pcOut)
{
    if (pcOut == nullptr || uiSize == 0U) {
        return host::g_uiFailed;
    }
    *pcOut = '\0';
    return host::Shield(host::g_uiFailed, [&] {
        const std::string strChip = pLocation == nullptr ? "" : ChipName(ucType, pLocation);
        const std::string strPath = strChip.empty() ? "" : ImagePath(strChip);
        if (strPath.empty() || strPath.size() >= uiSize) {
            return host::g_uiFailed;
        }
        (void)memcpy(pcOut, strPath.c_str(), strPath.size() + 1U);
        return 0U;
    });
}

void BMCHOST_SetEepromProgress(void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress,
                                                   void *pContext),
                               void *pContext)
{
    const std::lock_guard<std::mutex> lock(host::Locks().mtxEeprom);
    g_stProgress = {pfnProgress, pContext};
}

void BMCHOST_SetEepromWriteDelayUs(u32 uiMicroseconds)
{
    g_uiDelayUs = uiMicroseconds;
}

} // extern "C"
