// A write that has begun is finished: an interrupt in its middle would leave half an image in an EEPROM.
#ifndef FRUCTL_UNINTERRUPTED_H
#define FRUCTL_UNINTERRUPTED_H

#include <csignal>

// Keeps SIGINT, SIGTERM and SIGHUP waiting for as long as it lives.
class UNINTERRUPTED
{
  public:
    UNINTERRUPTED()
    {
        sigset_t stSignals;
        sigemptyset(&stSignals);
        for (const int iSignal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&stSignals, iSignal);
        }
        sigprocmask(SIG_BLOCK, &stSignals, &m_stBefore);
    }
    ~UNINTERRUPTED()
    {
        sigprocmask(SIG_SETMASK, &m_stBefore, nullptr);
    }
    UNINTERRUPTED(const UNINTERRUPTED &) = delete;
    UNINTERRUPTED &operator=(const UNINTERRUPTED &) = delete;

  private:
    sigset_t m_stBefore;
};

#endif
