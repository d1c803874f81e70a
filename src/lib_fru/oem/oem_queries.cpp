// SPDX-License-Identifier: Apache-2.0
// Small questions that other services ask of the OEM configuration. Every answer reads the file anew.
#include <cstdio>
#include <cstring>

#include "bmc_hwdesc.h"
#include "common/file_access.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru/oem/oem_conf.h"
#include "lib_fru_oem.h"

namespace {

constexpr const char *g_pcOemFile = "/mnt/sdmmc0p2/OEMFile";

} // namespace

u32 LIB_FRU_GetCopyRight(i32 iType, char *pcCopyRight)
{
    FRU_REQUIRE(pcCopyRight, LIB_FRU_ERR_NULL_POINTER);
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    if (iType == FRU_COPYRIGHT_EN) {
        (void)BMC_Scnprintf(pcCopyRight, FRU_COPYRIGHT_LEN, "%s", stConf.acCopyrightEn);
        return FRU_OK;
    }
    if (iType == FRU_COPYRIGHT_CN) {
        (void)BMC_Scnprintf(pcCopyRight, FRU_COPYRIGHT_LEN, "%s", stConf.acCopyrightCn);
        return FRU_OK;
    }
    // Printed, not logged; spelt so on purpose.
    (void)fputs("OEM_GetCopyrightFromBMC unvaild Copyriht Type !", stdout);
    return LIB_FRU_ERR_READ;
}

u32 LIB_FRU_CheckOEMFromPackage(u32 uiFlag, char *pcCheckResult)
{
    FRU_REQUIRE(pcCheckResult, LIB_FRU_ERR_NULL_POINTER);
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    const u32 uiCheckArea = stConf.usCheckArea;
    if (uiFlag == FRU_CHECK_AREA_ASK_WORD || uiFlag == FRU_CHECK_AREA_ASK_BYTE) {
        // Two bytes, not a text.
        const u8 aucArea[2] = {static_cast<u8>(uiCheckArea >> 8U), static_cast<u8>(uiCheckArea)};
        (void)memcpy(pcCheckResult, aucArea, sizeof(aucArea));
        return FRU_OK;
    }
    if (uiFlag == uiCheckArea) {
        (void)BMC_Scnprintf(pcCheckResult, FRU_CHECK_RESULT_LEN,
                            "@\n##\nTest Result: P\n#\nError Code: 0\n$$\n");
        return FRU_OK;
    }
    // A failed check is a success of the call, and "Falg" is intended.
    (void)BMC_Scnprintf(
        pcCheckResult, FRU_CHECK_RESULT_LEN,
        "@\n##\nKVToolbuild_check_Flag: %d\nDIAG_check_Falg: %d\nTest Result: F\n#\nError Code: "
        "0\n$$\n",
        static_cast<int>(uiCheckArea), static_cast<int>(uiFlag));
    return FRU_OK;
}

u32 FRU_GetProductManufacturer(u32 uiSize, char *pcProductManufacturer)
{
    FRU_REQUIRE(pcProductManufacturer, FRU_ERR_NULL_POINTER);
    if (HW_LIB_GetOemFlag() != BMC_OEM_MODE) {
        return FRU_ERR_FAILED;
    }
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    if (stConf.acProductManufacturer[0] == '\0') {
        return FRU_ERR_FAILED;
    }
    (void)memset(pcProductManufacturer, 0, uiSize);
    (void)BMC_Strlcpy(pcProductManufacturer, stConf.acProductManufacturer, uiSize);
    return FRU_OK;
}

u32 FRU_CheckCharaIsLegal(char *pcValue)
{
    FRU_REQUIRE(pcValue, FRU_ERR_NULL_POINTER);
    // The whole text is in upper case before any of it is judged.
    for (char *pcChar = pcValue; *pcChar != '\0'; ++pcChar) {
        if (*pcChar >= 'a' && *pcChar <= 'z') {
            *pcChar = static_cast<char>(*pcChar - 'a' + 'A');
        }
    }
    for (const char *pcChar = pcValue; *pcChar != '\0'; ++pcChar) {
        const bool bDigit = *pcChar >= '0' && *pcChar <= '9';
        const bool bLetter = *pcChar >= 'A' && *pcChar <= 'Z';
        if (!bDigit && !bLetter) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "paraments are illegal!");
            return FRU_ERR_FAILED;
        }
    }
    return FRU_OK;
}

u32 LIB_FRU_GetBmcLogoFlag(void)
{
    if (BMC_GetOemFlag() != BMC_OEM_MODE) {
        return 0U;
    }
    if (!FRU_FileExists(g_pcOemFile)) {
        return 1U;
    }
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    return stConf.ucLogoCidFlag;
}
