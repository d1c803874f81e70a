// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/provision_chip.h"

#include "bmcfru_host.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"

namespace {

constexpr u32 EEPROM_SPACE = 0x10000U; // offsets inside an EEPROM have 16 bits
constexpr const char *FILE_BACKEND = "file";

// The chip's settings as its back end reads them; what it does not take is refused now, not at the first write.
void TakeSettings(const JsonNode &stNode, const JsonNode &stLocation, DEVICE_PLAN_S &stDevice)
{
    if (!stNode.Has("eepromSize")) {
        stNode.RefuseMember("eepromSize",
                            "missing; a chip that is no image file has to say how many bytes it has");
    }
    Json stSettings = Json::object();
    for (const auto &[strName, stValue] : stLocation.Value().items()) {
        stSettings[strName] = stValue;
    }
    stSettings["bus"] = stDevice.stInfo.ucBusNumber;
    stSettings["address"] = stDevice.stInfo.ucAddress;
    stSettings["switchLevel"] = stDevice.stInfo.ucSwitchLevel;
    stSettings["size"] = stDevice.uiEepromSize;
    stDevice.strSettings = stSettings.dump(-1, ' ', false, Json::error_handler_t::replace);
    char acWhy[1024] = "";
    if (BMCHOST_CheckEepromSettings(stDevice.strSettings.c_str(), sizeof(acWhy), acWhy) != 0U) {
        stLocation.Refuse(EscapeText(acWhy));
    }
}

void TakeLocation(const JsonNode &stNode, const JsonNode &stLocation, DEVICE_PLAN_S &stDevice)
{
    FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
    stDevice.strBackend = FILE_BACKEND;
    if (stLocation.Value().is_object() && stLocation.Has("backend")) {
        stDevice.strBackend = stLocation.Text("backend", 1U, 31U);
    }
    const bool bFile = stDevice.strBackend == FILE_BACKEND;
    if (bFile) {
        stLocation.RequireObject({"bus", "address", "switchLevel", "backend"});
    }
    stInfo.ucBusNumber = static_cast<u8>(stLocation.Number("bus", 0U, FRU_BUS_NUMBER_MAX));
    stInfo.ucAddress = static_cast<u8>(stLocation.Number("address", 0U, 255U));
    stInfo.ucSwitchLevel = static_cast<u8>(stLocation.Number("switchLevel", 0U, 255U, 0U));
    if (!bFile) {
        TakeSettings(stNode, stLocation, stDevice);
    }
}

} // namespace

void TakeChip(const JsonNode &stNode, DEVICE_PLAN_S &stDevice)
{
    FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
    stDevice.bHasEeprom = !stDevice.stInfo.ucDatabaseOnly || stNode.Has("location");
    stInfo.ucEEPROMType = static_cast<u8>(
        stNode.Number("eepromType", FRU_EEPROM_TYPE_MIN, FRU_EEPROM_TYPE_MAX, FRU_EEPROM_TYPE_MIN));
    const u32 uiEnd = u32{stInfo.usStartOffset} + stInfo.usSize;
    if (uiEnd > EEPROM_SPACE) {
        stNode.RefuseMember("size",
                            Format("startOffset and size end at 0x%x; accepted: an end of at most 0x%x",
                                   uiEnd, EEPROM_SPACE));
    }
    u32 uiUsual = 256U; // the smallest chip that holds it
    while (uiUsual < uiEnd) {
        uiUsual *= 2U;
    }
    stDevice.uiEepromSize = stNode.Number("eepromSize", uiEnd, EEPROM_SPACE, uiUsual);
    if (!stDevice.bHasEeprom) {
        return;
    }
    if (!stNode.Has("location")) {
        stNode.RefuseMember(
            "location", "missing; accepted: {\"bus\", \"address\", \"switchLevel\"} (only a device that is "
                        "databaseOnly needs none)");
    }
    TakeLocation(stNode, stNode.Member("location"), stDevice);
}

bool SameChip(const DEVICE_PLAN_S &stLeft, const DEVICE_PLAN_S &stRight)
{
    return stLeft.bHasEeprom && stRight.bHasEeprom &&
           stLeft.stInfo.ucBusNumber == stRight.stInfo.ucBusNumber &&
           stLeft.stInfo.ucAddress == stRight.stInfo.ucAddress &&
           stLeft.stInfo.ucSwitchLevel == stRight.stInfo.ucSwitchLevel;
}

void CheckChip(const JsonNode &stNode, const DEVICE_PLAN_S &stDevice, const DEVICE_PLAN_S &stOther)
{
    if (stDevice.uiEepromSize != stOther.uiEepromSize) {
        stNode.RefuseMember("eepromSize",
                            Format("%u, but device '%s' says %u of the same EEPROM", stDevice.uiEepromSize,
                                   stOther.stInfo.acFRUName, stOther.uiEepromSize));
    }
    if (stDevice.stInfo.ucEEPROMType != stOther.stInfo.ucEEPROMType) {
        stNode.RefuseMember("eepromType", Format("%u, but device '%s' says %u of the same EEPROM",
                                                 stDevice.stInfo.ucEEPROMType, stOther.stInfo.acFRUName,
                                                 stOther.stInfo.ucEEPROMType));
    }
    if (stDevice.strBackend != stOther.strBackend || stDevice.strSettings != stOther.strSettings) {
        stNode.RefuseMember(
            "location", Format("it describes the EEPROM of device '%s' otherwise; accepted: the same members",
                               stOther.stInfo.acFRUName));
    }
    const u32 uiStart = stDevice.stInfo.usStartOffset;
    const u32 uiOtherStart = stOther.stInfo.usStartOffset;
    if (uiStart < uiOtherStart + stOther.stInfo.usSize && uiOtherStart < uiStart + stDevice.stInfo.usSize) {
        stNode.RefuseMember("startOffset",
                            Format("0x%x to 0x%x overlaps device '%s' (0x%x to 0x%x) in the same EEPROM; "
                                   "accepted: ranges apart, or another location",
                                   uiStart, uiStart + stDevice.stInfo.usSize - 1U, stOther.stInfo.acFRUName,
                                   uiOtherStart, uiOtherStart + stOther.stInfo.usSize - 1U));
    }
}
