// SPDX-License-Identifier: Apache-2.0
// A write that has begun is finished: an interrupt in its middle would leave half an image in an EEPROM.
#ifndef TOOLKIT_EDIT_UNINTERRUPTED_H
#define TOOLKIT_EDIT_UNINTERRUPTED_H

#include <csignal>

// Keeps SIGINT, SIGTERM and SIGHUP waiting for as long as it lives.
class Uninterrupted
{
  public:
    Uninterrupted()
    {
        sigset_t stSignals;
        sigemptyset(&stSignals);
        for (const int iSignal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&stSignals, iSignal);
        }
        sigprocmask(SIG_BLOCK, &stSignals, &m_stBefore);
    }
    ~Uninterrupted()
    {
        sigprocmask(SIG_SETMASK, &m_stBefore, nullptr);
    }
    Uninterrupted(const Uninterrupted &) = delete;
    Uninterrupted &operator=(const Uninterrupted &) = delete;

  private:
    sigset_t m_stBefore;
};

#endif
