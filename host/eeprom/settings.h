// SPDX-License-Identifier: Apache-2.0
// A chip's settings, as the back ends here read them. Nothing is guessed: what is missing is named.
#ifndef BMCHOST_EEPROM_SETTINGS_H
#define BMCHOST_EEPROM_SETTINGS_H

#include <cerrno>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/host.h"
#include "support/json_line.h"

namespace host {

// What is wrong with a member, and what would be accepted.
class SettingsError : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

class Settings
{
  public:
    explicit Settings(const std::string &strText);

    // Refuses members that are neither common to all chips nor in the list.
    void Allow(const std::vector<std::string> &vecNames) const;
    bool Has(const char *pcName) const
    {
        return m_json.contains(pcName);
    }
    // A whole number, or one as text ("0xa0"). Without a default it has to be there.
    u32 Number(const char *pcName, u32 uiMin, u32 uiMax, std::optional<u32> optDefault = std::nullopt) const;
    // Linux's number of the bus that the chip lies on: "adapter", or where no switch is in between "bus".
    u32 Adapter() const;
    // The seven bits of the wire: 0x50 as it stands, 0xa0 without the direction bit.
    u32 WireAddress() const;
    const JSON &Value() const
    {
        return m_json;
    }

  private:
    JSON m_json;
};

// "bus 8, address 0x50"
std::string WhereText(u32 uiAdapter, u32 uiAddress);

// The directories that stand for /sys and /dev: $FRUCTL_SYS and $FRUCTL_DEV where they are set.
std::string SysDirectory();
std::string DevDirectory();

// At the boundary of a table's function: 0, or an errno value with the reason in pcWhy. No exception leaves.
template <typename WORK> int Guarded(char *pcWhy, size_t uiSize, WORK fnWork) noexcept
{
    try {
        return fnWork();
    } catch (const SettingsError &error) {
        (void)BMC_Strlcpy(pcWhy, error.what(), static_cast<u32>(uiSize));
        return EINVAL;
    } catch (const std::exception &error) {
        (void)BMC_Strlcpy(pcWhy, error.what(), static_cast<u32>(uiSize));
        return ENOMEM;
    }
}

} // namespace host

#endif
