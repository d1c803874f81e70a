#include "session.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "bmcfru_host.h"
#include "console.h"
#include "error.h"
#include "image_file.h"
#include "text.h"

namespace {

constexpr u32 SEVERITY_WARNING = 4U;

std::vector<std::string> g_vecDiagnostics;

void TakeDiagnostic(const BMCHOST_DIAG_S *pstDiag, void *pContext)
{
    std::string strText = EscapeText(pstDiag->pcText);
    while (strText.size() >= 4U && strText.compare(strText.size() - 4U, 4U, "\\x0a") == 0) {
        strText.erase(strText.size() - 4U);
    }
    if (static_cast<const SESSION_S *>(pContext)->bVerbose) {
        fprintf(stderr, "[%u] %s:%u: %s\n", pstDiag->uiSeverity, pstDiag->pcFile, pstDiag->uiLine,
                strText.c_str());
    }
    if (pstDiag->uiSeverity <= SEVERITY_WARNING) {
        g_vecDiagnostics.push_back(strText);
    }
}

std::string ReadHolder(int iFd)
{
    char acHolder[512] = "";
    const ssize_t iRead = pread(iFd, acHolder, sizeof(acHolder) - 1U, 0);
    std::string strHolder(acHolder, iRead > 0 ? static_cast<size_t>(iRead) : 0U);
    strHolder.erase(strHolder.find_last_not_of('\n') + 1U);
    return strHolder.empty() ? "a process that has not said its name yet" : EscapeText(strHolder);
}

} // namespace

void OpenSession(SESSION_S &stSession)
{
    BMCHOST_SetDiagSink(TakeDiagnostic, &stSession);
    if (!stSession.strRoot.empty() && BMCHOST_SetRoot(stSession.strRoot.c_str()) != 0U) {
        FailUsage("--root " + EscapeText(stSession.strRoot) + " is refused: the path is too long");
    }
    stSession.strRoot = BMCHOST_GetRoot();
}

bool HasController(const SESSION_S &stSession)
{
    struct stat stStat = {};
    return stat((stSession.strRoot + BMCHOST_DB_DIR).c_str(), &stStat) == 0;
}

void RequireController(const SESSION_S &stSession)
{
    if (!HasController(stSession)) {
        Fail("there is no controller in " + stSession.strRoot +
             "; 'fructl provision FILE' makes one, --root or $FRUCTL_ROOT names another");
    }
}

const std::vector<std::string> &Diagnostics()
{
    return g_vecDiagnostics;
}

std::vector<std::string> TakeDiagnostics()
{
    return std::exchange(g_vecDiagnostics, {});
}

void ClearDiagnostics()
{
    g_vecDiagnostics.clear();
}

std::string DiagnosticHint()
{
    return g_vecDiagnostics.empty() ? "" : " (the library says: " + g_vecDiagnostics.front() + ")";
}

ROOT_LOCK::ROOT_LOCK(const SESSION_S &stSession)
{
    const std::string strPath = stSession.strRoot + "/var/lock/fructl.lock";
    MakeParentDirectory(strPath);
    m_iFd = open(strPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_iFd < 0) {
        Fail("cannot open the lock " + strPath + ": " + strerror(errno));
    }
    const auto stUntil = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (flock(m_iFd, LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= stUntil) {
            const std::string strHolder = ReadHolder(m_iFd);
            close(m_iFd);
            Fail("another command is writing to " + stSession.strRoot + ": " + strHolder +
                 "; try again when it is done");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const std::string strHolder = Format("pid %d, %s\n", getpid(), stSession.strCommandLine.c_str());
    if (ftruncate(m_iFd, 0) != 0 || pwrite(m_iFd, strHolder.data(), strHolder.size(), 0) < 0) {
        // The lock holds all the same; only the other side's message would be poorer.
        fprintf(stderr, "fructl: warning: cannot write into %s: %s\n", strPath.c_str(), strerror(errno));
    }
}

ROOT_LOCK::~ROOT_LOCK()
{
    // Closing releases the lock; an empty file tells that nobody holds it.
    if (ftruncate(m_iFd, 0) == 0) {
        close(m_iFd);
    }
}
