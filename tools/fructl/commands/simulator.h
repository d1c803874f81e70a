// SPDX-License-Identifier: Apache-2.0
// OpenIPMI's ipmi_sim as a child process that serves this controller's FRU devices on the network.
#ifndef FRUCTL_COMMANDS_SIMULATOR_H
#define FRUCTL_COMMANDS_SIMULATOR_H

#include <functional>
#include <string>
#include <sys/types.h>

#include "commands/service_user.h"
#include "files/files.h"
#include "lib_fru_types.h"

// Where it listens and who may log in.
struct SERVICE_S
{
    std::string strAddress; // numeric, as the user gave it
    u16 usPort = 0;
    std::string strUser;
    std::string strPassword;
    std::string strRoot;
    std::string strRunAs; // whom root wants the simulator to run as; empty: nobody in particular
    bool bForeignRoot = false;
    bool bVerbose = false; // the library's diagnostics and the simulator's own go to stderr
};

class Simulator
{
  public:
    // Starts the simulator and waits until it answers. Its configuration reaches it through descriptors:
    // nothing of it lies in a directory, and nothing is left there, however both end. SIGCHLD must not be
    // ignored, and the signals that end the service must be blocked: the child gets them unblocked.
    explicit Simulator(const SERVICE_S &stService);
    // Stops it.
    ~Simulator();
    Simulator(const Simulator &) = delete;
    Simulator &operator=(const Simulator &) = delete;

    pid_t Pid() const
    {
        return m_iPid;
    }
    // As whom it runs; empty when that is this process's user.
    const std::string &User() const
    {
        return m_stUser.strName;
    }
    // Waits until it has ended by itself (true; how, is in EndText() then) or iSignalFd can be read (false).
    // fnEachSecond is called meanwhile.
    bool WaitForEnd(int iSignalFd, const std::function<void()> &fnEachSecond);
    std::string EndText() const;

  private:
    void MakeConfiguration();
    void Start(const std::string &strProgram);
    void AwaitAnswer();
    bool HasEnded();
    void TakeOutput();
    void Stop();
    std::string OutputTail() const;

    SERVICE_S m_stService;
    SERVICE_USER_S m_stUser;
    std::string m_strModule;
    files::LockFile m_stLock;
    files::Fd m_stLan;
    files::Fd m_stController;
    files::Fd m_stOutput;  // what it prints
    files::Fd m_stProcess; // names the child, and nobody else
    std::string m_strTail;
    pid_t m_iPid = -1;
    int m_iStatus = 0;
};

#endif
