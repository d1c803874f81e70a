// OpenIPMI's ipmi_sim as a child process that serves this controller's FRU devices on the network.
#ifndef FRUCTL_COMMANDS_SIMULATOR_H
#define FRUCTL_COMMANDS_SIMULATOR_H

#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/types.h>

#include "lib_fru_types.h"

// Where it listens and who may log in.
struct SERVICE_S
{
    std::string strAddress; // numeric, as the user gave it
    u16 usPort = 0;
    std::string strUser;
    std::string strPassword;
    std::string strRoot;
    bool bVerbose = false; // the library's diagnostics and the simulator's own go to stderr
};

// A numeric IPv4 or IPv6 address with a port.
struct ENDPOINT_S
{
    sockaddr_storage stAddress = {};
    socklen_t uiLength = 0;
};

// Fails as wrong usage when the address is not numeric.
ENDPOINT_S MakeEndpoint(const std::string &strAddress, u16 usPort);
bool IsLoopback(const ENDPOINT_S &stEndpoint);

// Fails, saying what would help, when nobody can listen there now.
void CheckPortIsFree(const SERVICE_S &stService);

class Simulator
{
  public:
    // Writes the configuration into var/run/ipmi_sim under the root, starts the simulator and waits until it
    // answers. The signals that end the service must be blocked already: the child gets them unblocked.
    explicit Simulator(const SERVICE_S &stService);
    // Stops it and removes the files.
    ~Simulator();
    Simulator(const Simulator &) = delete;
    Simulator &operator=(const Simulator &) = delete;

    pid_t Pid() const
    {
        return m_iPid;
    }
    // True when it has ended by itself; how, is in EndText() then.
    bool HasEnded();
    std::string EndText() const;

  private:
    void WriteConfiguration() const;
    void Start(const std::string &strProgram);
    void AwaitAnswer();
    void Stop();
    void RemoveFiles() const;
    std::string LogTail() const;

    SERVICE_S m_stService;
    std::string m_strDirectory;
    std::string m_strModule;
    pid_t m_iPid = -1;
    int m_iStatus = 0;
    int m_iLockFd = -1;
};

#endif
