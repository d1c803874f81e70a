// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/multirecord.h"

#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"

namespace {

constexpr size_t GUID_TEXT_LEN = 36U;
constexpr u8 FIRST_OEM_TYPE = 0xC0U;

} // namespace

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
    return ucType >= FIRST_OEM_TYPE ? "OEM" : "unknown";
}

bool IsReservedMultiRecord(u8 ucType)
{
    constexpr u8 LAST_KNOWN = 0x0AU;
    return ucType > LAST_KNOWN && ucType < FIRST_OEM_TYPE;
}

u32 MultiRecordLength(u8 ucType, u8 ucFirst)
{
    static const u8 aucLengths[] = {24, 13, 13}; // power supply, DC output, DC load
    if (ucType < std::size(aucLengths)) {
        return aucLengths[ucType];
    }
    const bool bGuid = ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS && ucFirst == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID;
    return bGuid ? FRU_MR_GUID_LEN + 1U : 0U;
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
    const bool bKnown = ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS && ucLength > 0U &&
                        ManagementAccessName(pucData[0]) != nullptr;
    if (!bKnown) {
        return HexBytes(pucData, ucLength);
    }
    if (pucData[0] != FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID) {
        return std::string(reinterpret_cast<const char *>(pucData) + 1, ucLength - 1U);
    }
    return ucLength == FRU_MR_GUID_LEN + 1U ? GuidText(pucData + 1) : HexBytes(pucData + 1, ucLength - 1U);
}

void SealMultiRecord(FRU_MULTIRECORD_S &stRecord)
{
    stRecord.ucRecordChecksum = ZeroChecksum(stRecord.pucRecordData, stRecord.ucRecordLength);
    stRecord.ucHeaderChecksum = 0U;
    stRecord.ucHeaderChecksum =
        ZeroChecksum(reinterpret_cast<const u8 *>(&stRecord), FRU_MULTIRECORD_HEADER_LEN);
}

GuidBytes ParseGuid(const std::string &strText)
{
    std::string strDigits = strText;
    const bool bDashes = strText.size() == GUID_TEXT_LEN && strText[8] == '-' && strText[13] == '-' &&
                         strText[18] == '-' && strText[23] == '-';
    if (bDashes) {
        strDigits.erase(std::remove(strDigits.begin(), strDigits.end(), '-'), strDigits.end());
    }
    const bool bHex = strDigits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    const std::vector<u8> vecBytes =
        bHex ? ParseHexBytes(strDigits).value_or(std::vector<u8>()) : std::vector<u8>();
    GuidBytes aucGiven = {};
    if (vecBytes.size() != aucGiven.size()) {
        FailUsage("'" + EscapeText(strText) +
                  "' is no GUID; accepted: 32 hex digits as in 1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f");
    }
    std::reverse_copy(vecBytes.begin(), vecBytes.end(), aucGiven.begin());
    return aucGiven;
}

std::string MultiRecordStatus(u32 uiStatus)
{
    return uiStatus == FRU_ERR_MR_FAILED ? "the library refuses it" : StatusText(uiStatus);
}
