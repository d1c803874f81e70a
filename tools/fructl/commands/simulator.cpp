// SPDX-License-Identifier: Apache-2.0
#include "commands/simulator.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "bmcfru_host.h"
#include "commands/confinement.h"
#include "commands/endpoint.h"
#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr const char *PROGRAM = "ipmi_sim";
constexpr const char *MODULE = "libbmcfru_ipmi_sim.so";
constexpr const char *LOCK_FILE = BMCHOST_LOCK_DIR "/fructl-serve.lock";
constexpr milliseconds START_PATIENCE(30000);
constexpr milliseconds STOP_PATIENCE(3000);
constexpr milliseconds PAUSE(20);
constexpr milliseconds SECOND(1000);
constexpr size_t TAIL_MAX = 300U;

// Where the child finds what it gets, behind its three standard descriptors.
constexpr int LAN_FD = 3;
constexpr int CONTROLLER_FD = 4;
constexpr const char *LAN_PATH = "/proc/self/fd/3";
constexpr const char *CONTROLLER_PATH = "/proc/self/fd/4";

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
    Fail(ErrorClass::NotFound,
         std::string(PROGRAM) + " is not installed; Debian has it in the package openipmi");
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
    Fail(
        ErrorClass::NotFound,
        Format(
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
        FailRefused("the path " + EscapeText(strText) +
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

// A text that only those see who are given the descriptor.
files::Fd MakeHidden(const char *pcName, const std::string &strText)
{
    files::Fd stFile(memfd_create(pcName, MFD_CLOEXEC));
    const int iError = stFile ? files::WriteAll(stFile.Get(), strText) : errno;
    if (iError != 0) {
        Fail(ClassOfErrno(iError),
             std::string("cannot keep the simulator's configuration: ") + files::Reason(iError));
    }
    return stFile;
}

// In the child: the descriptor iFrom as iTo, with nothing in the way.
bool MoveTo(int iFrom, int iTo)
{
    return iFrom >= 0 && dup2(iFrom, iTo) == iTo;
}

struct CHILD_S
{
    const char *pcProgram;
    pid_t iParent;
    int iLan;
    int iController;
    int iOutput;
    IDENTITY_S stIdentity;
};

// In the child, from fork() to the simulator. Whoever reads its output is told what went wrong.
[[noreturn]] void Become(const CHILD_S &stChild)
{
    const int iNull = open("/dev/null", O_RDWR | O_CLOEXEC);
    const char *pcFailed = "cannot open /dev/null";
    // High numbers first: none of them may lie where another is to go.
    const int iLan = fcntl(stChild.iLan, F_DUPFD_CLOEXEC, 10);
    const int iController = fcntl(stChild.iController, F_DUPFD_CLOEXEC, 10);
    if (MoveTo(stChild.iOutput, STDOUT_FILENO) && MoveTo(stChild.iOutput, STDERR_FILENO) &&
        MoveTo(iNull, STDIN_FILENO)) {
        pcFailed = "cannot hand over the configuration";
        if (MoveTo(iLan, LAN_FD) && MoveTo(iController, CONTROLLER_FD)) {
            // Nothing else of this process: whoever reads its output must see the end of it when it ends.
            CloseFrom(CONTROLLER_FD + 1);
            pcFailed = Confine(stChild.stIdentity, stChild.iParent);
            if (pcFailed == nullptr) {
                const std::array<const char *, 8> apcArguments = {PROGRAM,         "-c", LAN_PATH, "-f",
                                                                  CONTROLLER_PATH, "-p", "-n",     nullptr};
                const std::array<const char *, 4> apcEnvironment = {"PATH=/usr/bin:/bin", "LC_ALL=C",
                                                                    "TZ=UTC0", nullptr};
                execve(stChild.pcProgram, const_cast<char **>(apcArguments.data()),
                       const_cast<char **>(apcEnvironment.data()));
                pcFailed = stChild.pcProgram;
            }
        }
    }
    dprintf(STDERR_FILENO, "%s: %s\n", pcFailed, strerror(errno));
    _exit(127);
}

} // namespace

Simulator::Simulator(const SERVICE_S &stService) : m_stService(stService)
{
    const std::string strProgram = FindProgram();
    m_strModule = FindModule();
    m_stUser = ServiceUserFor(stService.strRoot, stService.usPort, stService.strRunAs);
    const files::PLACE_S stLock(stService.strRoot, LOCK_FILE);
    MakeParentDirectory(stLock);
    const int iError = m_stLock.Take(stLock, 0U);
    if (iError != 0) {
        Fail(ClassOfErrno(iError),
             iError == ETIMEDOUT
                 ? "another 'fructl serve' serves " + EscapeText(stService.strRoot) + " already"
                 : "cannot lock " + EscapeText(stLock.Text()) + ": " + files::Reason(iError));
    }
    CheckPortIsFree(stService.strAddress, stService.usPort);
    PrepareFor(m_stUser, stService.strRoot, {m_strModule, stService.strRoot + BMCHOST_DB_FILE});
    MakeConfiguration();
    try {
        Start(strProgram);
        AwaitAnswer();
    } catch (...) { // there will be no destructor
        Stop();
        throw;
    }
}

Simulator::~Simulator()
{
    Stop();
}

void Simulator::MakeConfiguration()
{
    std::string strOptions = m_stService.bVerbose ? "verbose " : "";
    // Root has decided that this user may write there.
    strOptions += m_stService.bForeignRoot || m_stUser.bForeign ? "foreign-root " : "";
    strOptions += "root=" + m_stService.strRoot;
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
    m_stLan = MakeHidden("lan", strLan);
    // One controller with an SDR repository and FRU devices; the module answers for both.
    m_stController =
        MakeHidden("controller", "mc_setbmc 0x20\n"
                                 "mc_add 0x20 0x20 no-device-sdrs 0x01 1 0 0x0a 0x000000 0x0000\n"
                                 "mc_enable 0x20\n");
}

void Simulator::Start(const std::string &strProgram)
{
    int aiPipe[2] = {-1, -1};
    if (pipe2(aiPipe, O_CLOEXEC) != 0) {
        Fail(ClassOfErrno(errno), std::string("cannot make a pipe: ") + strerror(errno));
    }
    m_stOutput = files::Fd(aiPipe[0]);
    const files::Fd stWrite(aiPipe[1]);
    (void)fcntl(aiPipe[0], F_SETFL, O_NONBLOCK);
    const CHILD_S stChild = {strProgram.c_str(),   getpid(),      m_stLan.Get(),
                             m_stController.Get(), stWrite.Get(), m_stUser.stIdentity};
    m_iPid = fork();
    if (m_iPid == 0) {
        Become(stChild);
    }
    if (m_iPid < 0) {
        Fail(ClassOfErrno(errno), std::string("cannot start a process: ") + strerror(errno));
    }
    // The child is not waited for before this, so the number is its own.
    m_stProcess = files::Fd(static_cast<int>(syscall(SYS_pidfd_open, m_iPid, 0)));
    if (!m_stProcess) {
        Fail(ClassOfErrno(errno), std::string("cannot watch the simulator: ") + strerror(errno));
    }
}

void Simulator::AwaitAnswer()
{
    const ENDPOINT_S stEndpoint = AskableEndpoint(m_stService.strAddress, m_stService.usPort);
    const files::Fd stSocket(socket(stEndpoint.stAddress.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!stSocket) {
        Fail(ClassOfErrno(errno), std::string("cannot open a socket: ") + strerror(errno));
    }
    const auto stUntil = Clock::now() + START_PATIENCE;
    bool bAnswers = false;
    while (!bAnswers && !HasEnded() && Clock::now() < stUntil) {
        TakeOutput();
        bAnswers = AnswersPing(stSocket.Get(), stEndpoint);
        std::this_thread::sleep_for(bAnswers ? milliseconds(0) : PAUSE);
    }
    if (!bAnswers) {
        TakeOutput();
        Fail(m_iPid < 0 ? "the simulator did not start: " + EndText()
                        : "the simulator does not answer on " + m_stService.strAddress + OutputTail());
    }
}

bool Simulator::HasEnded()
{
    if (m_iPid > 0 && waitpid(m_iPid, &m_iStatus, WNOHANG) == m_iPid) {
        m_iPid = -1;
    }
    return m_iPid < 0;
}

bool Simulator::WaitForEnd(int iSignalFd, const std::function<void()> &fnEachSecond)
{
    std::array<pollfd, 3> astPolls = {pollfd{iSignalFd, POLLIN, 0}, pollfd{m_stProcess.Get(), POLLIN, 0},
                                      pollfd{m_stOutput.Get(), POLLIN, 0}};
    auto stLast = std::chrono::steady_clock::now();
    while (true) {
        if (poll(astPolls.data(), astPolls.size(), static_cast<int>(SECOND.count())) < 0 && errno != EINTR) {
            Fail(ClassOfErrno(errno), std::string("cannot wait for the simulator: ") + strerror(errno));
        }
        if (std::chrono::steady_clock::now() - stLast >= SECOND) {
            stLast = std::chrono::steady_clock::now();
            fnEachSecond();
        }
        TakeOutput();
        if (HasEnded()) {
            return true;
        }
        if (astPolls[0].revents != 0) {
            return false;
        }
        if ((astPolls[2].revents & POLLHUP) != 0) {
            astPolls[2].fd = -1; // it has closed its output, and lives
        }
    }
}

// What the simulator prints is read whether anybody wants it or not: a full pipe would hold it up.
void Simulator::TakeOutput()
{
    std::array<char, 4096> acText = {};
    for (ssize_t iRead = 1; iRead > 0;) {
        iRead = read(m_stOutput.Get(), acText.data(), acText.size());
        const std::string strText(acText.data(), iRead > 0 ? static_cast<size_t>(iRead) : 0U);
        if (m_stService.bVerbose) {
            const std::string strShown = PrintableLines(strText);
            (void)fwrite(strShown.data(), 1U, strShown.size(), stderr);
        }
        m_strTail += strText;
        m_strTail.erase(0U, m_strTail.size() > TAIL_MAX ? m_strTail.size() - TAIL_MAX : 0U);
    }
}

std::string Simulator::EndText() const
{
    const std::string strHow = WIFSIGNALED(m_iStatus)
                                   ? Format("%s was ended by signal %d", PROGRAM, WTERMSIG(m_iStatus))
                                   : Format("%s ended with code %d", PROGRAM, WEXITSTATUS(m_iStatus));
    return strHow + OutputTail();
}

// The last words of the simulator, to stand behind an error.
std::string Simulator::OutputTail() const
{
    std::string strTail = m_strTail;
    strTail.erase(strTail.find_last_not_of('\n') + 1U);
    std::replace(strTail.begin(), strTail.end(), '\n', ' ');
    return strTail.empty() ? "" : " (it says: " + EscapeText(strTail) + ")";
}

void Simulator::Stop()
{
    const auto SendSignal = [this](int iSignal) {
        // Until it is waited for, the number names nobody else either.
        if (!m_stProcess || syscall(SYS_pidfd_send_signal, m_stProcess.Get(), iSignal, nullptr, 0) != 0) {
            (void)kill(m_iPid, iSignal);
        }
    };
    const auto stUntil = Clock::now() + STOP_PATIENCE;
    if (!HasEnded()) {
        SendSignal(SIGTERM);
    }
    while (!HasEnded() && Clock::now() < stUntil) {
        TakeOutput();
        std::this_thread::sleep_for(PAUSE);
    }
    if (!HasEnded()) {
        SendSignal(SIGKILL);
        waitpid(m_iPid, &m_iStatus, 0);
        m_iPid = -1;
    }
}
