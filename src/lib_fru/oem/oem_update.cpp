// SPDX-License-Identifier: Apache-2.0
// The OEM configuration file, written back from the FRU.
#include <cstring>

#include "bmc_ini.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru/oem/oem_conf.h"
#include "lib_fru_access.h"
#include "lib_fru_codec.h"
#include "lib_fru_oem.h"

namespace {

constexpr u32 g_uiSetModule = 23U; // FRU_SetOEMConf() logs under a module of its own

// The FRU's value for a key, whose text may be null; false: the FRU has no such custom field.
bool FindValue(const FRU_DATA_S &stData, const FRU_OEM_SOURCE_S &stSource, const u8 **ppucValue)
{
    if (stSource.ucField != FRU_FIELD_COUNT) {
        *ppucValue = FRU_FieldText(&stData, stSource.ucField);
        return true;
    }
    const FRU_AREA_S &stProduct = g_astFruArea[FRU_AREA_PRODUCT];
    u8 *const *const ppucCustom = FRU_CustomFields(&stData, stProduct);
    if (ppucCustom == nullptr || stSource.ucSlot >= FRU_CustomCount(&stData, stProduct)) {
        return false;
    }
    *ppucValue = ppucCustom[stSource.ucSlot];
    return true;
}

// Replaces a key that has a value in the file by the FRU's; one that is empty there is never created.
void ReplaceKey(void *hpd, const FRU_DATA_S &stData, const FRU_OEM_CONF_S &stConf, const FRU_OEM_KEY_S &stKey)
{
    const char *pcCurrent = reinterpret_cast<const char *>(FRU_MemberAt(&stConf, stKey.usOffset));
    const u8 *pucValue = nullptr;
    if (pcCurrent[0] != '\0' && FindValue(stData, stKey.stSource, &pucValue)) {
        FRU_ReplaceOemConf(hpd, reinterpret_cast<const char *>(pucValue), pcCurrent, stKey.acKey);
    }
}

void ReplaceKeys(void *hpd, const FRU_DATA_S &stData, const FRU_OEM_CONF_S &stConf)
{
    for (u32 uiTurn = 1U; uiTurn <= FRU_OEM_KEYS; ++uiTurn) {
        for (const FRU_OEM_KEY_S &stKey : g_astFruOemKey) {
            if (stKey.stSource.ucTurn == uiTurn) {
                ReplaceKey(hpd, stData, stConf, stKey);
            }
        }
    }
}

} // namespace

void FRU_SetOEMConf(void)
{
    FRU_DATA_S stData = {};
    if (LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN, FRU_READ_ARG_NONE,
                           &stData) != FRU_OK) {
        FRU_LOG_AS(g_uiSetModule, FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Get fru info failed!");
        FRU_ANALYZER_SafeFree(&stData);
        return;
    }
    void *hpd = BRIDGE_IniLoadFile(FRU_OEM_CONF_PATH);
    if (hpd == nullptr) {
        FRU_LOG_AS(g_uiSetModule, FRU_CAT_GENERAL, BMC_DIAG_ERROR, "open file %s failed.", FRU_OEM_CONF_PATH);
        FRU_ANALYZER_SafeFree(&stData);
        return;
    }
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    ReplaceKeys(hpd, stData, stConf);
    FRU_ANALYZER_SafeFree(&stData);
    (void)BRIDGE_IniSaveFile(hpd, FRU_OEM_CONF_PATH);
    BRIDGE_IniCloseFile(hpd);
}

void FRU_ReplaceOemConf(void *hpd, const char *pcStr1, const char *pcCurrent, const char *pcKey)
{
    FRU_REQUIRE_OR_LEAVE(hpd);
    FRU_REQUIRE_OR_LEAVE(pcStr1);
    // No report for the other two: without a current value every new one differs, without a key there is
    // nothing to set.
    if (pcKey == nullptr || (pcCurrent != nullptr && strcmp(pcStr1, pcCurrent) == 0)) {
        return;
    }
    (void)BRIDGE_IniSetStr(hpd, FRU_OEM_CONF_SECTION, pcKey, pcStr1);
}
