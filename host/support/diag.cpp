// Diagnostic messages, and the locks that live through fork().
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <pthread.h>
#include <syslog.h>

#include "support/host.h"

namespace {

// Guarded by mtxDiag.
void (*g_pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext);
void *g_pContext;
thread_local bool g_bInSink;

void BeforeFork()
{
    host::LOCKS_S &stLocks = host::Locks();
    stLocks.mtxDb.lock();
    stLocks.mtxEeprom.lock();
    if (!g_bInSink) {
        stLocks.mtxDiag.lock();
    }
    stLocks.mtxRoot.lock();
}

void AfterFork()
{
    host::LOCKS_S &stLocks = host::Locks();
    stLocks.mtxRoot.unlock();
    if (!g_bInSink) {
        stLocks.mtxDiag.unlock();
    }
    stLocks.mtxEeprom.unlock();
    stLocks.mtxDb.unlock();
}

__attribute__((constructor)) void RegisterForkHandlers()
{
    (void)pthread_atfork(BeforeFork, AfterFork, AfterFork);
}

// A message of any length: the short ones need no heap.
void Deliver(BMCHOST_DIAG_S *pstDiag, va_list vaArgs)
{
    char acShort[1024];
    std::unique_ptr<char[]> upLong;
    va_list vaAgain;
    va_copy(vaAgain, vaArgs);
    const int iLength = vsnprintf(acShort, sizeof(acShort), pstDiag->pcFormat, vaArgs);
    pstDiag->pcText = iLength < 0 ? pstDiag->pcFormat : acShort;
    if (iLength >= static_cast<int>(sizeof(acShort))) {
        const size_t uiSize = static_cast<size_t>(iLength) + 1U;
        upLong.reset(new (std::nothrow) char[uiSize]); // else the cut text stays
        if (upLong != nullptr && vsnprintf(upLong.get(), uiSize, pstDiag->pcFormat, vaAgain) >= 0) {
            pstDiag->pcText = upLong.get();
        }
    }
    va_end(vaAgain);
    g_bInSink = true;
    g_pfnSink(pstDiag, g_pContext);
    g_bInSink = false;
}

} // namespace

namespace host {

LOCKS_S &Locks()
{
    static LOCKS_S *const pstLocks = new LOCKS_S; // never destroyed: threads may outlive main()
    return *pstLocks;
}

bool InDiagSink()
{
    return g_bInSink;
}

const char *ErrText(int iError)
{
    const char *pcText = strerrordesc_np(iError);
    return pcText == nullptr ? "unknown error" : pcText;
}

} // namespace host

extern "C" {

void BMC_DiagLogOut(u32 uiModule, u32 uiCategory, u32 uiSeverity, u32 uiLine, const char *pcFile,
                    const char *pcFormat, ...)
{
    if (g_bInSink || pcFormat == nullptr) {
        return;
    }
    const int iErrno = errno; // callers report it after logging
    {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxDiag);
        if (g_pfnSink != nullptr) {
            BMCHOST_DIAG_S stDiag = {
                uiModule, uiCategory, uiSeverity, uiLine, pcFile == nullptr ? "" : pcFile, pcFormat, nullptr};
            va_list vaArgs;
            va_start(vaArgs, pcFormat);
            errno = iErrno; // for %m
            Deliver(&stDiag, vaArgs);
            va_end(vaArgs);
        }
    }
    errno = iErrno;
}

void BMCHOST_SetDiagSink(void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext), void *pContext)
{
    std::unique_lock<std::mutex> lock(host::Locks().mtxDiag, std::defer_lock);
    if (!g_bInSink) { // a sink that replaces itself holds the lock already
        lock.lock();
    }
    g_pfnSink = pfnSink;
    g_pContext = pContext;
}

void BMCHOST_DiagToSyslog(const BMCHOST_DIAG_S *pstDiag, void *)
{
    const u32 uiPriority = pstDiag->uiSeverity <= BMC_DIAG_DEBUG ? pstDiag->uiSeverity : BMC_DIAG_DEBUG;
    syslog(static_cast<int>(LOG_USER | uiPriority), "[%u:%u] %s:%u %s", pstDiag->uiModule,
           pstDiag->uiCategory, pstDiag->pcFile, pstDiag->uiLine, pstDiag->pcText);
}

} // extern "C"
