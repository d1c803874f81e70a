// The OEM configuration file, read whole into one record.
#include <cstring>

#include "bmc_ini.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru/oem/oem_conf.h"
#include "lib_fru_access.h"
#include "lib_fru_codec.h"
#include "lib_fru_oem.h"

namespace {

enum class OEM_TYPE_E : u8
{
    TEXT,
    NUMBER,
    FLAG,
};

// One key of the file: its member, its value when the key is missing and when the whole file is.
struct OEM_KEY_S
{
    const char *pcKey;
    OEM_TYPE_E eType;
    u16 usOffset;
    u16 usSize;
    const char *pcMissingKey;
    const char *pcMissingFile;
    u32 uiMissingKey;
    u32 uiMissingFile;
};

constexpr u16 Bytes(size_t uiBytes)
{
    return static_cast<u16>(uiBytes);
}

#define OEM_MEMBER(Member) Bytes(offsetof(FRU_OEM_CONF_S, Member)), Bytes(sizeof(FRU_OEM_CONF_S::Member))
#define OEM_TEXT(pcKey, Member, pcMissingKey, pcMissingFile)                                                 \
    {                                                                                                        \
        (pcKey), OEM_TYPE_E::TEXT, OEM_MEMBER(Member), (pcMissingKey), (pcMissingFile), 0U, 0U               \
    }
#define OEM_NUMBER(pcKey, eType, Member, uiMissingKey, uiMissingFile)                                        \
    {                                                                                                        \
        (pcKey), (eType), OEM_MEMBER(Member), "", "", (uiMissingKey), (uiMissingFile)                        \
    }

// In the file's order. Three numbers default to the failure code and keep what fits their member: a file
// without "checkarea" reads as 1. Intended.
constexpr OEM_KEY_S g_astOemKey[] = {
    OEM_TEXT("copyright_cn", acCopyrightCn, "", ""),
    OEM_TEXT("copyright_en", acCopyrightEn, "", ""),
    OEM_TEXT("boardmanufacturer", acBoardManufacturer, "", "N/A"),
    OEM_TEXT("productmanufacturer", acProductManufacturer, "", "N/A"),
    OEM_TEXT("productname", acProductName, "", "N/A"),
    OEM_TEXT("qbx", acQbx, "BMC", "BMC"),
    OEM_NUMBER("oemflag", OEM_TYPE_E::NUMBER, ucOemFlag, FRU_ERR_FAILED, 0U),
    OEM_NUMBER("checkarea", OEM_TYPE_E::NUMBER, usCheckArea, FRU_ERR_FAILED, 0U),
    OEM_NUMBER("privateoid", OEM_TYPE_E::NUMBER, uiPrivateOid, FRU_ERR_FAILED, 8072U),
    OEM_NUMBER("userid", OEM_TYPE_E::NUMBER, ucUserId, 0U, 0U),
    OEM_NUMBER("logocidflag", OEM_TYPE_E::FLAG, ucLogoCidFlag, 1U, 1U),
    OEM_TEXT("productserialnumber", acProductSerialNumber, "", ""),
    OEM_TEXT("productassettag", acProductAssetTag, "", ""),
    OEM_TEXT("productextra1", acProductExtra1, "", ""),
    OEM_TEXT("productextra2", acProductExtra2, "", ""),
    OEM_TEXT("productextra3", acProductExtra3, "", ""),
    OEM_TEXT("productextra4", acProductExtra4, "", ""),
    OEM_TEXT("productpartnumber", acProductPartNumber, "", ""),
    OEM_TEXT("chassispartnumber", acChassisPartNumber, "", ""),
    OEM_TEXT("boardproductname", acBoardProductName, "", ""),
    OEM_TEXT("productversion", acProductVersion, "", ""),
};

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

void StoreMissingFile(const OEM_KEY_S &stKey, u8 *pucMember)
{
    if (stKey.eType == OEM_TYPE_E::TEXT) {
        StoreText(stKey.pcMissingFile, stKey.usSize, pucMember);
    } else {
        StoreNumber(stKey.uiMissingFile, stKey.usSize, pucMember);
    }
}

void StoreKey(void *hpd, const OEM_KEY_S &stKey, u8 *pucMember)
{
    if (stKey.eType == OEM_TYPE_E::TEXT) {
        const char *pcValue = BRIDGE_IniGetStr(hpd, FRU_OEM_CONF_SECTION, stKey.pcKey, stKey.pcMissingKey);
        StoreText(pcValue == nullptr ? stKey.pcMissingKey : pcValue, stKey.usSize, pucMember);
        return;
    }
    const auto pfnGet = stKey.eType == OEM_TYPE_E::FLAG ? BRIDGE_IniGetBool : BRIDGE_IniGetUInt;
    StoreNumber(pfnGet(hpd, FRU_OEM_CONF_SECTION, stKey.pcKey, stKey.uiMissingKey), stKey.usSize, pucMember);
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
        for (const OEM_KEY_S &stKey : g_astOemKey) {
            StoreMissingFile(stKey, pucConf + stKey.usOffset);
        }
        *pstOemConf = stConf;
        return;
    }
    for (const OEM_KEY_S &stKey : g_astOemKey) {
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
