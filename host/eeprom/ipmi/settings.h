// SPDX-License-Identifier: Apache-2.0
// A chip's settings: which FRU of which controller, and how one logs in there.
#ifndef BMCHOST_EEPROM_IPMI_SETTINGS_H
#define BMCHOST_EEPROM_IPMI_SETTINGS_H

#include <string>

#include "eeprom/ipmi/fru_access.h"

namespace ipmi {

struct LOGIN_S
{
    std::string strHost; // a name, an address, or /dev/ipmi<N>
    std::string strUser;
    std::string strPassword;
    u32 uiDevice = 0; // N of /dev/ipmi<N>
    u32 uiPort = 0;
    u32 uiPrivilege = 0; // 2 user, 3 operator, 4 administrator
    u32 uiSuite = 0;     // cipher suite
    u32 uiPatienceMs = 0;

    bool IsLocal() const; // this machine's own controller: nobody logs in
};

struct SETTINGS_S
{
    LOGIN_S stLogin;
    std::string strPasswordFile; // empty: the environment
    u8 ucFru = 0;
    u32 uiChunk = 0;
};

// Empty, or what is wrong and what would be accepted. The password is not looked for.
std::string ReadSettings(const char *pcSettings, SETTINGS_S *pstSettings);

// The password, from its file or from the environment. Empty, or why there is none.
std::string TakePassword(SETTINGS_S *pstSettings);

} // namespace ipmi

#endif
