// The controller's software name and host-name prefix.
#include <cstring>

#include <pthread.h>

#include "bmc_capability.h"
#include "bmc_hwdesc.h"
#include "lib_fru_module.h"
#include "lib_fru_oem.h"
#include "oem_conf.h"

namespace {

constexpr u32 g_uiNameLen = 64U;

// Callers keep the pointer that they got and read through it at any time, so a text that was given out never
// changes: the default is a constant, and the cached name is written once, before the flag is raised.
const char g_acDefaultName[g_uiNameLen] = "QBX";
char g_acSoftWareName[g_uiNameLen];
bool g_bCached;
pthread_mutex_t g_stLock = PTHREAD_MUTEX_INITIALIZER; // guards the two above

bool IsCached()
{
    (void)pthread_mutex_lock(&g_stLock);
    const bool bCached = g_bCached;
    (void)pthread_mutex_unlock(&g_stLock);
    return bCached;
}

// Publishes the name; of two that come at once the first stays.
const char *Publish(const char *pcName)
{
    (void)pthread_mutex_lock(&g_stLock);
    if (!g_bCached) {
        (void)BMC_Strlcpy(g_acSoftWareName, pcName, sizeof(g_acSoftWareName));
        g_bCached = true;
    }
    (void)pthread_mutex_unlock(&g_stLock);
    return g_acSoftWareName;
}

} // namespace

const char *FRU_GetSoftWareName(void)
{
    if (IsCached()) {
        return g_acSoftWareName;
    }
    if (HW_LIB_GetOemFlag() == FRU_OEM_MODE) {
        FRU_OEM_CONF_S stConf = {};
        FRU_GetOEMConfBeforeDeal(&stConf);
        return Publish(stConf.acQbx);
    }
    char acName[g_uiNameLen] = {};
    const u32 uiRet = CAP_GetCommonCapabilityWithName("SPECS", "SoftwareName", sizeof(acName), acName);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                "Failed to get soft ware name from cap, iRet: %#x. so set default value", uiRet);
        // Not cached: asked again next time.
        return g_acDefaultName;
    }
    return Publish(acName);
}

void FRU_GetHostNamePrefix(u32 uiSize, char *pcHostName)
{
    if (pcHostName == nullptr) {
        FRU_LOG_NULL("pcHostName");
        return;
    }
    char acPrefix[g_uiNameLen] = {};
    if (HW_LIB_GetOemFlag() == FRU_OEM_MODE) {
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
