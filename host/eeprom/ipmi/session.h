// SPDX-License-Identifier: Apache-2.0
// A session with a management controller: RMCP+ over LAN, or this machine's own system interface. One thread at a
// time.
#ifndef BMCHOST_EEPROM_IPMI_SESSION_H
#define BMCHOST_EEPROM_IPMI_SESSION_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "eeprom/ipmi/fru_access.h"
#include "eeprom/ipmi/settings.h"

namespace ipmi {

class Session
{
  public:
    explicit Session(LOGIN_S stLogin);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // One command, in the session that is open or in a new one.
    ANSWER_S Ask(u8 ucNetFn, u8 ucCommand, const std::vector<u8> &vecData);

  private:
    struct STATE_S;

    ANSWER_S Open();
    void Close();
    ANSWER_S BrokenOff(const std::string &strHow);
    ANSWER_S Exchange(u8 ucNetFn, u8 ucCommand, const std::vector<u8> &vecData);

    LOGIN_S m_stLogin;
    // Who has just been asked in vain is not asked again at once: many transfers follow one another.
    ANSWER_S m_stOpened;
    std::chrono::steady_clock::time_point m_stOpenedAt;
    std::unique_ptr<STATE_S> m_upState;
};

} // namespace ipmi

#endif
