// SPDX-License-Identifier: Apache-2.0
// The OEM configuration file, read whole into one record.
#include <cstring>

#include "bmc_ini.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru/oem/oem_conf.h"
#include "lib_fru_access.h"
#include "lib_fru_codec.h"
#include "lib_fru_oem.h"

namespace {

constexpr u16 Bytes(size_t uiBytes)
{
    return static_cast<u16>(uiBytes);
}

#define OEM_MEMBER(Member) Bytes(offsetof(FRU_OEM_CONF_S, Member)), Bytes(sizeof(FRU_OEM_CONF_S::Member))
#define OEM_NUMBER(acKey, eType, Member, uiMissingKey, uiMissingFile)                                        \
    {                                                                                                        \
        acKey, "", "", (eType), g_stNoSource, OEM_MEMBER(Member), (uiMissingKey), (uiMissingFile)            \
    }
#define OEM_TEXT(acKey, Member, acMissingKey, acMissingFile, stSource)                                       \
    {                                                                                                        \
        acKey, acMissingKey, acMissingFile, FRU_OEM_TYPE_E::TEXT, (stSource), OEM_MEMBER(Member), 0U, 0U     \
    }

constexpr FRU_OEM_SOURCE_S g_stNoSource = {0U, FRU_FIELD_COUNT, 0U};

constexpr FRU_OEM_SOURCE_S Field(u8 ucTurn, FRU_FIELD_ID eField)
{
    return {ucTurn, eField, 0U};
}

constexpr FRU_OEM_SOURCE_S Custom(u8 ucTurn, u8 ucSlot)
{
    return {ucTurn, FRU_FIELD_COUNT, ucSlot};
}

} // namespace

// In the order in which the file is read; the other walk has its turns, with the part number ahead of the
// extras. Three numbers default to the failure code and keep what fits their member: a file without
// "checkarea" reads as 1. Intended.
const FRU_OEM_KEY_S g_astFruOemKey[FRU_OEM_KEYS] = {
    OEM_TEXT("copyright_cn", acCopyrightCn, "", "", g_stNoSource),
    OEM_TEXT("copyright_en", acCopyrightEn, "", "", g_stNoSource),
    OEM_TEXT("boardmanufacturer", acBoardManufacturer, "", "N/A", g_stNoSource),
    OEM_TEXT("productmanufacturer", acProductManufacturer, "", "N/A",
             Field(1U, FRU_FIELD_PRODUCT_MANUFACTURER)),
    OEM_TEXT("productname", acProductName, "", "N/A", Field(2U, FRU_FIELD_PRODUCT_NAME)),
    OEM_TEXT("qbx", acQbx, "BMC", "BMC", g_stNoSource),
    OEM_NUMBER("oemflag", FRU_OEM_TYPE_E::NUMBER, ucOemFlag, FRU_ERR_FAILED, 0U),
    OEM_NUMBER("checkarea", FRU_OEM_TYPE_E::NUMBER, usCheckArea, FRU_ERR_FAILED, 0U),
    OEM_NUMBER("privateoid", FRU_OEM_TYPE_E::NUMBER, uiPrivateOid, FRU_ERR_FAILED, 8072U),
    OEM_NUMBER("userid", FRU_OEM_TYPE_E::NUMBER, ucUserId, 0U, 0U),
    OEM_NUMBER("logocidflag", FRU_OEM_TYPE_E::FLAG, ucLogoCidFlag, 1U, 1U),
    OEM_TEXT("productserialnumber", acProductSerialNumber, "", "", Field(3U, FRU_FIELD_PRODUCT_SERIAL)),
    OEM_TEXT("productassettag", acProductAssetTag, "", "", Field(4U, FRU_FIELD_PRODUCT_ASSET_TAG)),
    OEM_TEXT("productextra1", acProductExtra1, "", "", Custom(6U, 0U)),
    OEM_TEXT("productextra2", acProductExtra2, "", "", Custom(7U, 1U)),
    OEM_TEXT("productextra3", acProductExtra3, "", "", Custom(8U, 2U)),
    OEM_TEXT("productextra4", acProductExtra4, "", "", Custom(9U, 3U)),
    OEM_TEXT("productpartnumber", acProductPartNumber, "", "", Field(5U, FRU_FIELD_PRODUCT_PART)),
    OEM_TEXT("chassispartnumber", acChassisPartNumber, "", "", Field(10U, FRU_FIELD_CHASSIS_PART)),
    OEM_TEXT("boardproductname", acBoardProductName, "", "", Field(11U, FRU_FIELD_BOARD_NAME)),
    OEM_TEXT("productversion", acProductVersion, "", "", Field(12U, FRU_FIELD_PRODUCT_VERSION)),
};

namespace {

// Stores a number in a member of 1, 2 or 4 bytes; what does not fit is lost.
void StoreNumber(u32 uiValue, u32 uiSize, u8 *pucMember)
{
    const u8 ucValue = static_cast<u8>(uiValue);
    const u16 usValue = static_cast<u16>(uiValue);
    switch (uiSize) {
    case sizeof(ucValue):
        (void)memcpy(pucMember, &ucValue, sizeof(ucValue));
        break;
    case sizeof(usValue):
        (void)memcpy(pucMember, &usValue, sizeof(usValue));
        break;
    default:
        (void)memcpy(pucMember, &uiValue, sizeof(uiValue));
        break;
    }
}

void StoreText(const char *pcValue, u32 uiSize, u8 *pucMember)
{
    (void)BMC_Scnprintf(reinterpret_cast<char *>(pucMember), uiSize, "%s", pcValue);
}

void StoreMissingFile(const FRU_OEM_KEY_S &stKey, u8 *pucMember)
{
    if (stKey.eType == FRU_OEM_TYPE_E::TEXT) {
        StoreText(stKey.acMissingFile, stKey.usSize, pucMember);
    } else {
        StoreNumber(stKey.uiMissingFile, stKey.usSize, pucMember);
    }
}

void StoreKey(void *hpd, const FRU_OEM_KEY_S &stKey, u8 *pucMember)
{
    if (stKey.eType == FRU_OEM_TYPE_E::TEXT) {
        const char *pcValue = BRIDGE_IniGetStr(hpd, FRU_OEM_CONF_SECTION, stKey.acKey, stKey.acMissingKey);
        StoreText(pcValue == nullptr ? stKey.acMissingKey : pcValue, stKey.usSize, pucMember);
        return;
    }
    const auto pfnGet = stKey.eType == FRU_OEM_TYPE_E::FLAG ? BRIDGE_IniGetBool : BRIDGE_IniGetUInt;
    StoreNumber(pfnGet(hpd, FRU_OEM_CONF_SECTION, stKey.acKey, stKey.uiMissingKey), stKey.usSize, pucMember);
}

// Fills an empty name from the FRU.
void FillIfEmpty(char *pcName, u32 uiSize, const u8 *pucValue)
{
    if (pcName[0] == '\0') {
        (void)BMC_Strlcpy(pcName, reinterpret_cast<const char *>(pucValue), uiSize);
    }
}

} // namespace

void FRU_GetOEMConfBeforeDeal(FRU_OEM_CONF_S *pstOemConf)
{
    FRU_REQUIRE_OR_LEAVE(pstOemConf);
    FRU_OEM_CONF_S stConf = {};
    u8 *const pucConf = reinterpret_cast<u8 *>(&stConf);
    void *hpd = BRIDGE_IniLoadFile(FRU_OEM_CONF_PATH);
    if (hpd == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Unable to get oem conf file : %s", FRU_OEM_CONF_PATH);
        for (const FRU_OEM_KEY_S &stKey : g_astFruOemKey) {
            StoreMissingFile(stKey, pucConf + stKey.usOffset);
        }
        *pstOemConf = stConf;
        return;
    }
    for (const FRU_OEM_KEY_S &stKey : g_astFruOemKey) {
        StoreKey(hpd, stKey, pucConf + stKey.usOffset);
    }
    *pstOemConf = stConf;
    BRIDGE_IniCloseFile(hpd);
}

void FRU_GetOEMConf(FRU_OEM_CONF_S *pstOemConf)
{
    FRU_REQUIRE_OR_LEAVE(pstOemConf);
    FRU_GetOEMConfBeforeDeal(pstOemConf);
    FRU_DATA_S stData = {};
    // A FRU that cannot be read leaves the names empty; no failure of it is told to the caller.
    (void)LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN,
                             FRU_READ_ARG_USUAL, &stData);
    FillIfEmpty(pstOemConf->acProductName, sizeof(pstOemConf->acProductName),
                stData.stProductInfo.pucProductName);
    FillIfEmpty(pstOemConf->acProductManufacturer, sizeof(pstOemConf->acProductManufacturer),
                stData.stProductInfo.pucMfrName);
    FillIfEmpty(pstOemConf->acBoardManufacturer, sizeof(pstOemConf->acBoardManufacturer),
                stData.stBoardInfo.pucBoardMfr);
    FRU_ANALYZER_SafeFree(&stData);
}
