#include "fru_names.h"

#include <array>
#include <cstring>

#include "lib_fru.h"
#include "text.h"

const char *MultiRecordTypeName(u8 ucType)
{
    static const char *const apcNames[] = {
        "Power Supply Information",
        "DC Output",
        "DC Load",
        "Management Access",
        "Base Compatibility",
        "Extended Compatibility",
        "ASF Fixed SMBus Device",
        "ASF Legacy-Device Alerts",
        "ASF Remote Control",
        "Extended DC Output",
        "Extended DC Load",
    };
    if (ucType < std::size(apcNames)) {
        return apcNames[ucType];
    }
    return ucType >= 0xC0U ? "OEM" : "unknown";
}

const char *ManagementAccessName(u8 ucSubType)
{
    static const char *const apcNames[] = {
        nullptr,
        "System URL",
        "System Name",
        "System Ping Address",
        "Component URL",
        "Component Name",
        "Component Ping Address",
        "System Unique ID",
    };
    return ucSubType < std::size(apcNames) ? apcNames[ucSubType] : nullptr;
}

std::string GuidText(const u8 *pucStored)
{
    static const u8 aucOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::string strOut;
    for (size_t i = 0; i < std::size(aucOrder); i++) {
        strOut += (i == 4U || i == 6U || i == 8U || i == 10U) ? "-" : "";
        strOut += Format("%02x", pucStored[aucOrder[i]]);
    }
    return strOut;
}

std::string MultiRecordText(u8 ucType, const u8 *pucData, u8 ucLength)
{
    const bool bKnown =
        ucType == MR_MANAGEMENT_ACCESS && ucLength > 0U && ManagementAccessName(pucData[0]) != nullptr;
    if (!bKnown) {
        return HexBytes(pucData, ucLength);
    }
    if (pucData[0] != MR_SUBTYPE_GUID) {
        return std::string(reinterpret_cast<const char *>(pucData) + 1, ucLength - 1U);
    }
    return ucLength == 17U ? GuidText(pucData + 1) : HexBytes(pucData + 1, ucLength - 1U);
}

std::string ChassisTypeName(u8 ucType)
{
    // The table of names is the library's own: it decodes an image that has nothing but this type.
    std::array<u8, 32> aucImage = {1, 0, 1, 0, 0, 0, 0, 0xFE, 1, 1, ucType, 0xC0, 0xC0, 0xC1, 0, 0};
    aucImage[15] = static_cast<u8>(0U - (1U + 1U + ucType + 0xC0U + 0xC0U + 0xC1U));
    FRU_DATA_S stData = {};
    std::string strName;
    if (FRU_ANALYZER_InterpretFRUData(aucImage.data(), aucImage.size(), &stData) == FRU_OK) {
        const char *pcName = stData.stChassisInfo.pucChassisType;
        strName = (pcName != nullptr) ? pcName : "";
    }
    FRU_ANALYZER_SafeFree(&stData);
    return strName;
}

std::vector<std::string> ChassisTypeNames()
{
    std::vector<std::string> vecNames;
    for (std::string strName = ChassisTypeName(0U); !strName.empty();
         strName = ChassisTypeName(static_cast<u8>(vecNames.size()))) {
        vecNames.push_back(strName);
    }
    return vecNames;
}

std::string LanguageName(u8 ucLanguage)
{
    return (ucLanguage == 0U || ucLanguage == 25U) ? "English" : Format("code %u", ucLanguage);
}

std::string MfgDateText(const u8 *pucMfgDate)
{
    char acText[64] = "";
    const u32 uiRet = LIB_FRU_FormatMfgDate(pucMfgDate, 0U, acText);
    return uiRet == FRU_OK ? acText : StatusText(uiRet);
}

const char *CompletionCodeName(u8 ucCode)
{
    switch (ucCode) {
    case 0x00:
        return "success";
    case 0x81:
        return "the device could not be accessed";
    case 0xC7:
        return "request length invalid: no data to write";
    case 0xC9:
        return "the count reaches beyond the end of the FRU";
    case 0xCB:
        return "no such FRU device, or its cached image cannot be read";
    case 0xCC:
        return "the offset lies at or beyond the end of the FRU";
    default:
        return "not a code that these commands give";
    }
}
