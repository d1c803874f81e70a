#include "commands/simulator.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <linux/close_range.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr const char *PROGRAM = "ipmi_sim";
constexpr const char *MODULE = "libbmcfru_ipmi_sim.so";
constexpr const char *RUN_DIRECTORY = "/var/run/ipmi_sim";
constexpr const char *LOCK_FILE = "/var/lock/fructl-serve.lock";
constexpr milliseconds PORT_PATIENCE(1000); // a service killed just now may still hold the port
constexpr milliseconds START_PATIENCE(30000);
constexpr milliseconds STOP_PATIENCE(3000);
constexpr milliseconds PAUSE(20);
constexpr int ANSWER_TIMEOUT_MS = 100;

// RMCP presence ping (IPMI 2.0, section 13.2.3): answered by any server that listens.
constexpr u8 PING[] = {0x06, 0x00, 0xFF, 0x06, 0x00, 0x00, 0x11, 0xBE, 0x80, 0x01, 0x00, 0x00};
constexpr size_t PONG_TYPE_INDEX = 8U;
constexpr u8 PONG_TYPE = 0x40U;

std::string FindProgram()
{
    const char *pcPath = getenv("PATH");
    std::string strRest = std::string(pcPath == nullptr ? "" : pcPath) + ":/usr/bin:/usr/local/bin";
    while (!strRest.empty()) {
        const size_t uiEnd = std::min(strRest.find(':'), strRest.size());
        std::string strFile = strRest.substr(0U, uiEnd) + "/" + PROGRAM;
        if (strFile.front() == '/' && access(strFile.c_str(), X_OK) == 0) {
            return strFile;
        }
        strRest.erase(0U, uiEnd + 1U);
    }
    Fail(std::string(PROGRAM) + " is not installed; Debian has it in the package openipmi");
}

// Beside the library in the build directory, in a folder beside it when installed.
std::string FindModule()
{
    Dl_info stLibrary = {};
    if (dladdr(reinterpret_cast<const void *>(&LIB_FRU_ReadFRUData), &stLibrary) == 0 ||
        stLibrary.dli_fname == nullptr) {
        Fail("cannot tell where libbmcfru lies");
    }
    std::error_code stError;
    const std::filesystem::path stReal = std::filesystem::canonical(stLibrary.dli_fname, stError);
    const std::string strDirectory = stReal.parent_path().string();
    for (const std::string &strFile : {strDirectory + "/" + MODULE, strDirectory + "/bmcfru/" + MODULE}) {
        if (access(strFile.c_str(), R_OK) == 0) {
            return strFile;
        }
    }
    Fail(Format(
        "%s is neither in %s nor in its bmcfru folder; it is built where OpenIPMI's headers are (package "
        "libopenipmi-dev)",
        MODULE, EscapeText(strDirectory).c_str()));
}

// The simulator's configuration knows no escapes: a text stands in the quotes that it does not hold itself.
std::string Quote(const std::string &strText)
{
    const bool bDouble = strText.find('"') == std::string::npos;
    if ((!bDouble && strText.find('\'') != std::string::npos) ||
        strText.find_first_of("\r\n") != std::string::npos) {
        Fail("the path " + EscapeText(strText) +
             " cannot be told to the simulator: it holds both kinds of quotes or a line end");
    }
    return bDouble ? "\"" + strText + "\"" : "'" + strText + "'";
}

// The same for the same controller, so that clients know it again.
std::string GuidOf(const std::string &strRoot)
{
    std::string strGuid;
    for (uint64_t ullHash : {0xCBF29CE484222325ULL, 0x84222325CBF29CE4ULL}) { // FNV-1a
        for (const char cByte : strRoot) {
            ullHash = (ullHash ^ static_cast<u8>(cByte)) * 0x100000001B3ULL;
        }
        strGuid += Format("%016llx", static_cast<unsigned long long>(ullHash));
    }
    return strGuid;
}

void WriteNewFile(const std::string &strPath, const std::string &strText)
{
    (void)unlink(strPath.c_str()); // left by a service that was killed
    const int iFd = open(strPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool bWritten =
        iFd >= 0 && write(iFd, strText.data(), strText.size()) == static_cast<ssize_t>(strText.size());
    const int iError = errno;
    if (iFd >= 0) {
        close(iFd);
    }
    if (!bWritten) {
        Fail("cannot write " + EscapeText(strPath) + ": " + strerror(iError));
    }
}

// A wildcard address cannot be asked; its own machine can.
ENDPOINT_S AskableEndpoint(const SERVICE_S &stService)
{
    ENDPOINT_S stEndpoint = MakeEndpoint(stService.strAddress, stService.usPort);
    if (stEndpoint.stAddress.ss_family == AF_INET6) {
        sockaddr_in6 stAddress = {};
        memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
        return IN6_IS_ADDR_UNSPECIFIED(&stAddress.sin6_addr) ? MakeEndpoint("::1", stService.usPort)
                                                             : stEndpoint;
    }
    sockaddr_in stAddress = {};
    memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
    return stAddress.sin_addr.s_addr == INADDR_ANY ? MakeEndpoint("127.0.0.1", stService.usPort) : stEndpoint;
}

bool AnswersPing(int iSocket, const ENDPOINT_S &stEndpoint)
{
    const auto *pstAddress = reinterpret_cast<const sockaddr *>(&stEndpoint.stAddress);
    if (sendto(iSocket, PING, sizeof(PING), 0, pstAddress, stEndpoint.uiLength) < 0) {
        return false;
    }
    pollfd stPoll = {iSocket, POLLIN, 0};
    u8 aucPong[64] = {};
    return poll(&stPoll, 1, ANSWER_TIMEOUT_MS) == 1 &&
           recv(iSocket, aucPong, sizeof(aucPong), 0) > static_cast<ssize_t>(PONG_TYPE_INDEX) &&
           aucPong[PONG_TYPE_INDEX] == PONG_TYPE;
}

} // namespace

ENDPOINT_S MakeEndpoint(const std::string &strAddress, u16 usPort)
{
    ENDPOINT_S stEndpoint;
    sockaddr_in stV4 = {};
    sockaddr_in6 stV6 = {};
    if (inet_pton(AF_INET, strAddress.c_str(), &stV4.sin_addr) == 1) {
        stV4.sin_family = AF_INET;
        stV4.sin_port = htons(usPort);
        stEndpoint.uiLength = sizeof(stV4);
        memcpy(&stEndpoint.stAddress, &stV4, sizeof(stV4));
    } else if (inet_pton(AF_INET6, strAddress.c_str(), &stV6.sin6_addr) == 1) {
        stV6.sin6_family = AF_INET6;
        stV6.sin6_port = htons(usPort);
        stEndpoint.uiLength = sizeof(stV6);
        memcpy(&stEndpoint.stAddress, &stV6, sizeof(stV6));
    } else {
        FailUsage("--address " + EscapeText(strAddress) +
                  " is refused; accepted: a numeric IPv4 or IPv6 address of this machine");
    }
    return stEndpoint;
}

bool IsLoopback(const ENDPOINT_S &stEndpoint)
{
    if (stEndpoint.stAddress.ss_family == AF_INET6) {
        sockaddr_in6 stAddress = {};
        memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
        return IN6_IS_ADDR_LOOPBACK(&stAddress.sin6_addr);
    }
    sockaddr_in stAddress = {};
    memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
    return ntohl(stAddress.sin_addr.s_addr) >> 24U == IN_LOOPBACKNET;
}

void CheckPortIsFree(const SERVICE_S &stService)
{
    const ENDPOINT_S stEndpoint = MakeEndpoint(stService.strAddress, stService.usPort);
    const auto stUntil = Clock::now() + PORT_PATIENCE;
    int iError = 0;
    do {
        const int iSocket = socket(stEndpoint.stAddress.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const bool bFree =
            iSocket >= 0 && bind(iSocket, reinterpret_cast<const sockaddr *>(&stEndpoint.stAddress),
                                 stEndpoint.uiLength) == 0;
        iError = errno;
        if (iSocket >= 0) {
            close(iSocket);
        }
        if (bFree) {
            return;
        }
        std::this_thread::sleep_for(PAUSE);
    } while (iError == EADDRINUSE && Clock::now() < stUntil);
    const std::string strWhere = Format("UDP port %u of %s", stService.usPort, stService.strAddress.c_str());
    if (iError == EADDRINUSE) {
        Fail(strWhere + " is in use by another program; --port names another");
    }
    if (iError == EACCES) {
        Fail(strWhere + " needs root's rights; --port takes any from 1024 up without them");
    }
    Fail("cannot listen on " + strWhere + ": " + strerror(iError) +
         "; --address takes an address of this machine");
}

Simulator::Simulator(const SERVICE_S &stService) : m_stService(stService)
{
    const std::string strProgram = FindProgram();
    m_strModule = FindModule();
    m_strDirectory = stService.strRoot + RUN_DIRECTORY;
    const std::string strLock = stService.strRoot + LOCK_FILE;
    MakeParentDirectory(strLock);
    m_iLockFd = open(strLock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_iLockFd < 0 || flock(m_iLockFd, LOCK_EX | LOCK_NB) != 0) {
        const int iError = errno;
        if (m_iLockFd >= 0) {
            close(m_iLockFd);
        }
        Fail(iError == EWOULDBLOCK
                 ? "another 'fructl serve' serves " + EscapeText(stService.strRoot) + " already"
                 : "cannot lock " + EscapeText(strLock) + ": " + strerror(iError));
    }
    try {
        CheckPortIsFree(stService);
        WriteConfiguration();
        Start(strProgram);
        AwaitAnswer();
    } catch (...) { // there will be no destructor
        Stop();
        RemoveFiles();
        close(m_iLockFd);
        throw;
    }
}

Simulator::~Simulator()
{
    Stop();
    RemoveFiles();
    close(m_iLockFd);
}

void Simulator::WriteConfiguration() const
{
    const std::string strOptions = (m_stService.bVerbose ? "verbose root=" : "root=") + m_stService.strRoot;
    std::string strLan = "name \"bmcfru\"\nset_working_mc 0x20\n  startlan 1\n";
    strLan += Format("    addr %s %u\n    guid %s\n    priv_limit admin\n", m_stService.strAddress.c_str(),
                     m_stService.usPort, GuidOf(m_stService.strRoot).c_str());
    for (const char *pcLevel : {"callback", "user", "operator", "admin"}) {
        strLan += Format("    allowed_auths_%s md5\n", pcLevel);
    }
    strLan += "  endlan\n";
    strLan +=
        "  user 2 true \"" + m_stService.strUser + "\" \"" + m_stService.strPassword + "\" admin 63 md5\n";
    strLan += "loadlib " + Quote(m_strModule) + " " + Quote(strOptions) + "\n";
    // One controller with an SDR repository and FRU devices; the module answers for both.
    const std::string strController = "mc_setbmc 0x20\n"
                                      "mc_add 0x20 0x20 no-device-sdrs 0x01 1 0 0x0a 0x000000 0x0000\n"
                                      "mc_enable 0x20\n";
    MakeParentDirectory(m_strDirectory + "/state/x");
    if (chmod(m_strDirectory.c_str(), 0700) != 0) { // lan.conf holds the password
        Fail("cannot keep " + EscapeText(m_strDirectory) + " to its owner: " + strerror(errno));
    }
    WriteNewFile(m_strDirectory + "/lan.conf", strLan);
    WriteNewFile(m_strDirectory + "/controller.emu", strController);
    WriteNewFile(m_strDirectory + "/log", "");
}

void Simulator::Start(const std::string &strProgram)
{
    const std::string strLan = m_strDirectory + "/lan.conf";
    const std::string strController = m_strDirectory + "/controller.emu";
    const std::string strState = m_strDirectory + "/state";
    const std::string strLog = m_strDirectory + "/log";
    const bool bVerbose = m_stService.bVerbose;
    const pid_t iParent = getpid();
    m_iPid = fork();
    if (m_iPid < 0) {
        Fail(std::string("cannot start a process: ") + strerror(errno));
    }
    if (m_iPid > 0) {
        return;
    }
    // It must not outlive this process, nor be stopped by the terminal before this process has
    // seen the signal.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    setpgid(0, 0);
    if (getppid() != iParent) {
        _exit(1);
    }
    sigset_t stNone;
    sigemptyset(&stNone);
    sigprocmask(SIG_SETMASK, &stNone, nullptr);
    const int iNull = open("/dev/null", O_RDWR);
    const int iLog = bVerbose ? dup(STDERR_FILENO) : open(strLog.c_str(), O_WRONLY | O_APPEND);
    dup2(iNull, STDIN_FILENO);
    dup2(iLog, STDOUT_FILENO);
    dup2(iLog, STDERR_FILENO);
    // Nothing of this process: whoever reads its output must see the end of it when it ends.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    execl(strProgram.c_str(), PROGRAM, "-c", strLan.c_str(), "-f", strController.c_str(), "-s",
          strState.c_str(), "-n", static_cast<char *>(nullptr));
    dprintf(STDERR_FILENO, "%s: %s\n", strProgram.c_str(), strerror(errno));
    _exit(127);
}

void Simulator::AwaitAnswer()
{
    const ENDPOINT_S stEndpoint = AskableEndpoint(m_stService);
    const int iSocket = socket(stEndpoint.stAddress.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (iSocket < 0) {
        Fail(std::string("cannot open a socket: ") + strerror(errno));
    }
    const auto stUntil = Clock::now() + START_PATIENCE;
    bool bAnswers = false;
    while (!bAnswers && !HasEnded() && Clock::now() < stUntil) {
        bAnswers = AnswersPing(iSocket, stEndpoint);
        std::this_thread::sleep_for(bAnswers ? milliseconds(0) : PAUSE);
    }
    close(iSocket);
    if (!bAnswers) {
        Fail(m_iPid < 0 ? "the simulator did not start: " + EndText()
                        : "the simulator does not answer on " + m_stService.strAddress + LogTail());
    }
}

bool Simulator::HasEnded()
{
    if (m_iPid > 0 && waitpid(m_iPid, &m_iStatus, WNOHANG) == m_iPid) {
        m_iPid = -1;
    }
    return m_iPid < 0;
}

std::string Simulator::EndText() const
{
    const std::string strHow = WIFSIGNALED(m_iStatus)
                                   ? Format("%s was ended by signal %d", PROGRAM, WTERMSIG(m_iStatus))
                                   : Format("%s ended with code %d", PROGRAM, WEXITSTATUS(m_iStatus));
    return strHow + LogTail();
}

// The last words of the simulator, to stand behind an error.
std::string Simulator::LogTail() const
{
    std::string strLog;
    try {
        const std::vector<u8> vecLog = ReadFileBytes(m_strDirectory + "/log");
        strLog.assign(vecLog.begin(), vecLog.end());
    } catch (const Error &) {
        return "";
    }
    constexpr size_t TAIL = 300U;
    strLog.erase(strLog.find_last_not_of('\n') + 1U);
    strLog.erase(0U, strLog.size() > TAIL ? strLog.size() - TAIL : 0U);
    std::replace(strLog.begin(), strLog.end(), '\n', ' ');
    return strLog.empty() ? "" : " (it says: " + EscapeText(strLog) + ")";
}

void Simulator::Stop()
{
    const auto stUntil = Clock::now() + STOP_PATIENCE;
    if (!HasEnded()) {
        kill(m_iPid, SIGTERM);
    }
    while (!HasEnded() && Clock::now() < stUntil) {
        std::this_thread::sleep_for(PAUSE);
    }
    if (!HasEnded()) {
        kill(m_iPid, SIGKILL);
        waitpid(m_iPid, &m_iStatus, 0);
        m_iPid = -1;
    }
}

void Simulator::RemoveFiles() const
{
    std::error_code stIgnored; // what is left is overwritten by the next start
    for (const char *pcName : {"/lan.conf", "/controller.emu", "/log"}) {
        std::filesystem::remove(m_strDirectory + pcName, stIgnored);
    }
    std::filesystem::remove_all(m_strDirectory + "/state", stIgnored);
    std::filesystem::remove(m_strDirectory, stIgnored);
}
