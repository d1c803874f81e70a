// SPDX-License-Identifier: Apache-2.0
// Capabilities and the OEM flag, from conf/capability.ini: [object] name = text.
#include <cerrno>

#include "bmc_capability.h"
#include "bmc_hwdesc.h"
#include "bmc_ini.h"
#include "support/host.h"

namespace host {

u32 Capability(const char *pcObject, const char *pcName, std::string *pstrValue)
{
    void *hpd = BRIDGE_IniLoadFile(BMCHOST_CAPABILITY_FILE);
    if (hpd == nullptr) {
        return g_uiFailed;
    }
    const char *pcValue = BRIDGE_IniGetStr(hpd, pcObject, pcName, nullptr);
    const u32 uiResult = pcValue == nullptr ? g_uiFailed : 0U;
    try {
        pstrValue->assign(pcValue == nullptr ? "" : pcValue);
    } catch (...) {
        BRIDGE_IniCloseFile(hpd);
        throw;
    }
    BRIDGE_IniCloseFile(hpd);
    return uiResult;
}

u32 OemFlag()
{
    void *hpd = BRIDGE_IniLoadFile(BMCHOST_CAPABILITY_FILE);
    const u32 uiFlag = hpd == nullptr ? 0U : BRIDGE_IniGetUInt(hpd, "OEM", "OemFlag", 0U);
    BRIDGE_IniCloseFile(hpd);
    return uiFlag;
}

} // namespace host

extern "C" {

u32 CAP_GetCommonCapabilityWithName(const char *pcObject, const char *pcName, u32 uiSize, char *pcOut)
{
    return host::Shield(host::g_uiFailed, [&] {
        std::string strValue;
        if (pcOut == nullptr || uiSize == 0U || host::Capability(pcObject, pcName, &strValue) != 0U) {
            return host::g_uiFailed;
        }
        (void)BMC_Strlcpy(pcOut, strValue.c_str(), uiSize);
        return 0U;
    });
}

u32 BMC_GetOemFlag(void)
{
    return host::OemFlag();
}

u32 HW_LIB_GetOemFlag(void)
{
    return host::OemFlag();
}

} // extern "C"
