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

// A key that FRU_SetOEMConf() writes: its value in the file and in the FRU.
struct REPLACEMENT_S
{
    const char *pcKey;
    const char *pcCurrent;
    const u8 *pucValue;
    u32 uiCustomField; // not 0: the value is the product area's custom field of this number, if there is one
};

// Replaces every key that has a value in the file by the FRU's; keys that are empty there are never created.
void ReplaceKeys(void *hpd, const FRU_DATA_S &stData, const FRU_OEM_CONF_S &stConf)
{
    const FRU_PRODUCT_INFO_S &stProduct = stData.stProductInfo;
    const REPLACEMENT_S astReplacement[] = {
        {"productmanufacturer", stConf.acProductManufacturer, stProduct.pucMfrName, 0U},
        {"productname", stConf.acProductName, stProduct.pucProductName, 0U},
        {"productserialnumber", stConf.acProductSerialNumber, stProduct.pucProductSerialNum, 0U},
        {"productassettag", stConf.acProductAssetTag, stProduct.pucAssetTag, 0U},
        {"productpartnumber", stConf.acProductPartNumber, stProduct.pucProductPartNum, 0U},
        {"productextra1", stConf.acProductExtra1, nullptr, 1U},
        {"productextra2", stConf.acProductExtra2, nullptr, 2U},
        {"productextra3", stConf.acProductExtra3, nullptr, 3U},
        {"productextra4", stConf.acProductExtra4, nullptr, 4U},
        {"chassispartnumber", stConf.acChassisPartNumber, stData.stChassisInfo.pucChassisPartNum, 0U},
        {"boardproductname", stConf.acBoardProductName, stData.stBoardInfo.pucBoardProductName, 0U},
        {"productversion", stConf.acProductVersion, stProduct.pucProductVersion, 0U},
    };
    u8 **const ppucCustom = stProduct.ppucCustomFields;
    const u32 uiCustomCount = ppucCustom == nullptr ? 0U : stProduct.ucCustomFieldCount;
    for (const REPLACEMENT_S &stReplacement : astReplacement) {
        const u32 uiField = stReplacement.uiCustomField;
        if (stReplacement.pcCurrent[0] == '\0' || uiField > uiCustomCount) {
            continue;
        }
        const u8 *pucValue = uiField == 0U ? stReplacement.pucValue : ppucCustom[uiField - 1U];
        FRU_ReplaceOemConf(hpd, reinterpret_cast<const char *>(pucValue), stReplacement.pcCurrent,
                           stReplacement.pcKey);
    }
}

} // namespace

void FRU_SetOEMConf(void)
{
    FRU_DATA_S stData = {};
    if (LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN, FRU_READ_ARG_NONE,
                           &stData) != FRU_OK) {
        BMC_DiagLogOut(g_uiSetModule, FRU_CAT_GENERAL, BMC_DIAG_ERROR, __LINE__, FRU_DIAG_FILE,
                       "Get fru info failed!");
        FRU_ANALYZER_SafeFree(&stData);
        return;
    }
    void *hpd = BRIDGE_IniLoadFile(FRU_OEM_CONF_PATH);
    if (hpd == nullptr) {
        BMC_DiagLogOut(g_uiSetModule, FRU_CAT_GENERAL, BMC_DIAG_ERROR, __LINE__, FRU_DIAG_FILE,
                       "open file %s failed.", FRU_OEM_CONF_PATH);
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
