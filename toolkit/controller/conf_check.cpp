// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/conf_check.h"

#include <cstring>
#include <memory>

#include "bmc_hwdesc.h"
#include "bmc_ini.h"
#include "bmcfru_host.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/oem_conf.h"
#include "toolkit/controller/trial_root.h"

namespace {

using Ini = std::unique_ptr<void, void (*)(void *)>;

struct NUMBER_S
{
    const char *pcSection;
    const char *pcKey;
    u32 uiMax;
};

// A number that cannot be read would silently count as missing.
std::string IniProblem(const CONF_FILE_S &stFile, const std::vector<NUMBER_S> &vecNumbers)
{
    const TrialRoot stTrial;
    stTrial.Lay(stFile);
    ClearDiagnostics();
    const Ini upIni(BRIDGE_IniLoadFile(stFile.strPath.c_str()), BRIDGE_IniCloseFile);
    if (upIni == nullptr) {
        return "the file is refused" + stTrial.Hint() + "; accepted: an INI file";
    }
    for (const NUMBER_S &stNumber : vecNumbers) {
        const char *pcText = BRIDGE_IniGetStr(upIni.get(), stNumber.pcSection, stNumber.pcKey, nullptr);
        if (pcText != nullptr && !ParseNumber(pcText, stNumber.uiMax).has_value()) {
            return Format("[%s] %s is '%s'; accepted: 0 to %u, decimal or 0x", stNumber.pcSection,
                          stNumber.pcKey, EscapeText(pcText).c_str(), stNumber.uiMax);
        }
    }
    return "";
}

std::string FeaturesProblem(const CONF_FILE_S &stFile)
{
    const Json stFeatures = ParseJsonText<Json>(std::string(stFile.vecBytes.begin(), stFile.vecBytes.end()));
    bool bTexts = stFeatures.is_array();
    for (size_t i = 0; bTexts && i < stFeatures.size(); i++) {
        bTexts = stFeatures[i].is_string();
    }
    return bTexts ? "" : "the file is refused; accepted: a JSON array of texts";
}

std::string ObjectProblem(const HW_FRU_OBJECT_S &stObject, const CONTROLLER_PLAN_S &stPlan)
{
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (ChipName(stDevice) != stObject.pcDeviceName) {
            continue;
        }
        const u32 uiEnd = u32{stObject.usOffset} + stObject.usSize;
        return uiEnd <= stDevice.uiEepromSize && stObject.usSize != 0U
                   ? ""
                   : Format("the FRU object of component type 0x%02x has %u bytes and ends at 0x%x; "
                            "accepted: 1 byte or "
                            "more, up to 0x%x, the end of %s",
                            stObject.ucComponentType, u32{stObject.usSize}, uiEnd, stDevice.uiEepromSize,
                            stObject.pcDeviceName);
    }
    return ""; // a component that is not fitted: the product's description knows more than one server has
}

std::string HardwareProblem(const CONF_FILE_S &stFile, const CONTROLLER_PLAN_S &stPlan)
{
    const TrialRoot stTrial;
    stTrial.Lay(stFile);
    ClearDiagnostics();
    const std::unique_ptr<HW_NAMESPACE_S, void (*)(HW_NAMESPACE_S *)> upNameSpace(HW_NewNameSpace(),
                                                                                  HW_FreeNameSpace);
    HW_OBJECT_LIST_S stList = {};
    if (upNameSpace == nullptr || HW_LoadXml(upNameSpace.get(), stFile.strPath.c_str()) != 0U ||
        HW_GetObjectList(upNameSpace.get(), "FRU", &stList) != 0U) {
        return "the file is refused" + stTrial.Hint() + "; accepted: XML with FRU elements";
    }
    for (u32 i = 0; i < stList.uiCount; i++) {
        const std::string strProblem = ObjectProblem(stList.pstObject[i], stPlan);
        if (!strProblem.empty()) {
            return strProblem;
        }
    }
    return "";
}

} // namespace

std::string ConfProblem(const CONF_FILE_S &stFile, const CONTROLLER_PLAN_S &stPlan)
{
    if (stFile.strPath == BMCHOST_FEATURE_LIST) {
        return FeaturesProblem(stFile);
    }
    if (stFile.strPath == CONF_HARDWARE_FILE) {
        return HardwareProblem(stFile, stPlan);
    }
    if (stFile.strPath == BMCHOST_CAPABILITY_FILE) {
        return IniProblem(stFile, {{"OEM", "OemFlag", 0xFFFFFFFFU}});
    }
    if (stFile.strPath == OEM_CONF_FILE) {
        return IniProblem(stFile, {{"oem_configure", "oemflag", 0xFFU},
                                   {"oem_configure", "checkarea", 0xFFFFU},
                                   {"oem_configure", "privateoid", 0xFFFFFFFFU},
                                   {"oem_configure", "userid", 0xFFU}});
    }
    return "";
}
