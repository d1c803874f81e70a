// SPDX-License-Identifier: Apache-2.0
// The controller's software name and host-name prefix.
#include "lib_fru/oem/software_name.h"

#include "bmc_capability.h"
#include "bmc_hwdesc.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru/oem/oem_conf.h"
#include "lib_fru_oem.h"

namespace {

// Callers keep the pointer that they got and read through it at any time, so a text that was given out never
// changes: the default is a constant, and the kept name is written once.
const char g_acDefaultName[FRU_SOFTWARE_NAME_LEN] = "QBX";
SOFTWARE_NAME_S g_stSoftWareName = FRU_SOFTWARE_NAME_INIT;

bool IsCached(SOFTWARE_NAME_S *pstStore)
{
    (void)pthread_mutex_lock(&pstStore->stLock);
    const bool bCached = pstStore->bCached;
    (void)pthread_mutex_unlock(&pstStore->stLock);
    return bCached;
}

// Publishes the name; of two that come at once the first stays.
const char *Publish(SOFTWARE_NAME_S *pstStore, const char *pcName)
{
    (void)pthread_mutex_lock(&pstStore->stLock);
    if (!pstStore->bCached) {
        (void)BMC_Strlcpy(pstStore->acName, pcName, sizeof(pstStore->acName));
        pstStore->bCached = true;
    }
    (void)pthread_mutex_unlock(&pstStore->stLock);
    return pstStore->acName;
}

} // namespace

const char *FRU_SoftWareNameOf(SOFTWARE_NAME_S *pstStore)
{
    if (IsCached(pstStore)) {
        return pstStore->acName;
    }
    if (HW_LIB_GetOemFlag() == BMC_OEM_MODE) {
        FRU_OEM_CONF_S stConf = {};
        FRU_GetOEMConfBeforeDeal(&stConf);
        return Publish(pstStore, stConf.acQbx);
    }
    char acName[FRU_SOFTWARE_NAME_LEN] = {};
    const u32 uiRet = CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", sizeof(acName), acName);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                "Failed to get soft ware name from cap, iRet: %#x. so set default value", uiRet);
        // Not kept: asked again next time.
        return g_acDefaultName;
    }
    return Publish(pstStore, acName);
}

const char *FRU_GetSoftWareName(void)
{
    return FRU_SoftWareNameOf(&g_stSoftWareName);
}

void FRU_GetHostNamePrefix(u32 uiSize, char *pcHostName)
{
    FRU_REQUIRE_OR_LEAVE(pcHostName);
    char acPrefix[FRU_SOFTWARE_NAME_LEN] = {};
    if (HW_LIB_GetOemFlag() == BMC_OEM_MODE) {
        FRU_OEM_CONF_S stConf = {};
        FRU_GetOEMConfBeforeDeal(&stConf);
        (void)BMC_Strlcpy(acPrefix, stConf.acQbx, sizeof(acPrefix));
    } else {
        const u32 uiRet = CAP_GetCommonCapabilityWithName("HostName", "Prefix", sizeof(acPrefix), acPrefix);
        if (uiRet != FRU_OK) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "get host name prefix from cap failed.iRet:%#x.", uiRet);
            (void)BMC_Strlcpy(acPrefix, g_acDefaultName, sizeof(acPrefix));
        }
    }
    (void)BMC_Strlcpy(pcHostName, acPrefix, uiSize);
}
