// SPDX-License-Identifier: Apache-2.0
#include "eeprom/settings.h"

#include <algorithm>
#include <cstdlib>

#include "support/host.h"

namespace host {

namespace {

constexpr u32 g_uiAdapterMax = 9999;
constexpr u32 g_uiWireMin = 0x03; // what lies below and above is the bus's own
constexpr u32 g_uiWireMax = 0x77;

std::string Directory(const char *pcVariable, const char *pcUsual)
{
    // Not for a program that runs with another user's rights.
    const char *pcValue = secure_getenv(pcVariable);
    return pcValue == nullptr || *pcValue == '\0' ? pcUsual : pcValue;
}

} // namespace

Settings::Settings(const std::string &strText) : m_json(JSON::parse(strText, nullptr, false))
{
    if (!m_json.is_object()) {
        throw SettingsError("the settings are no JSON object");
    }
}

void Settings::Allow(const std::vector<std::string> &vecNames) const
{
    std::vector<std::string> vecAccepted = {"bus", "address", "switchLevel", "backend", "writeProtect"};
    vecAccepted.insert(vecAccepted.end(), vecNames.begin(), vecNames.end());
    for (const auto &itMember : m_json.items()) {
        if (itMember.key() == "size" ||
            std::find(vecAccepted.begin(), vecAccepted.end(), itMember.key()) != vecAccepted.end()) {
            continue;
        }
        std::string strAccepted;
        for (const std::string &strName : vecAccepted) {
            strAccepted += (strAccepted.empty() ? "" : ", ") + strName;
        }
        throw SettingsError(itMember.key() + ": unknown member; accepted: " + strAccepted);
    }
}

u32 Settings::Number(const char *pcName, u32 uiMin, u32 uiMax, std::optional<u32> optDefault) const
{
    const std::string strAccepted =
        "accepted: " + std::to_string(uiMin) + " to " + std::to_string(uiMax) + ", as a number or as text";
    if (!Has(pcName)) {
        if (optDefault) {
            return *optDefault;
        }
        throw SettingsError(std::string(pcName) + ": missing, and nothing is guessed; " + strAccepted);
    }
    const JSON &json = m_json.at(pcName);
    std::optional<u32> optNumber;
    if (json.is_string()) {
        optNumber = ToNumber(json.get_ref<const std::string &>().c_str(), uiMax);
    } else if (json.is_number_unsigned() && json.get<uint64_t>() <= uiMax) {
        optNumber = json.get<u32>();
    }
    if (!optNumber || *optNumber < uiMin) {
        throw SettingsError(std::string(pcName) + ": " + ToLine(json) + " is refused; " + strAccepted);
    }
    return *optNumber;
}

u32 Settings::Adapter() const
{
    if (!Has("adapter") && Number("switchLevel", 0U, 255U, 0U) != 0U) {
        throw SettingsError(
            "adapter: missing; a chip behind a switch needs the number that Linux has given to "
            "that channel of the multiplexer (the N of /dev/i2c-N)");
    }
    return Has("adapter") ? Number("adapter", 0U, g_uiAdapterMax) : Number("bus", 0U, g_uiAdapterMax);
}

u32 Settings::WireAddress() const
{
    const u32 uiAddress = Number("address", 0U, 255U);
    const u32 uiWire = uiAddress < 0x80U ? uiAddress : uiAddress / 2U;
    if (uiWire < g_uiWireMin || uiWire > g_uiWireMax || (uiAddress >= 0x80U && uiAddress % 2U != 0U)) {
        char acText[200];
        (void)BMC_Scnprintf(
            acText, sizeof(acText),
            "address: %#x is no address of a chip; accepted: the seven bits of the wire (0x03 to "
            "0x77, such as 0x50), or eight with a direction bit of 0 (0x80 to 0xee, such as 0xa0)",
            uiAddress);
        throw SettingsError(acText);
    }
    return uiWire;
}

std::string WhereText(u32 uiAdapter, u32 uiAddress)
{
    char acText[64];
    (void)BMC_Scnprintf(acText, sizeof(acText), "bus %u, address 0x%02x", uiAdapter, uiAddress);
    return acText;
}

std::string SysDirectory()
{
    return Directory("FRUCTL_SYS", "/sys");
}

std::string DevDirectory()
{
    return Directory("FRUCTL_DEV", "/dev");
}

} // namespace host
