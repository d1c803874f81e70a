// SPDX-License-Identifier: Apache-2.0
// Diagnostic messages, and the locks that live through fork().
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <pthread.h>
#include <syslog.h>
#include <thread>

#include "support/host.h"

namespace {

// Where messages go. Whoever delivers one keeps a reference for so long; no lock is held meanwhile.
struct SINK_S
{
    void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext);
    void *pContext;
};
std::shared_ptr<const SINK_S> g_spSink;     // guarded by mtxDiag
thread_local const SINK_S *g_pstDelivering; // this thread is inside this one's sink
constexpr std::chrono::milliseconds g_stPause(1);

void BeforeFork()
{
    host::LOCKS_S &stLocks = host::Locks();
    stLocks.mtxDb.lock();
    host::CloseDbForFork();
    stLocks.mtxEeprom.lock();
    stLocks.mtxIni.lock();
    stLocks.mtxDiag.lock();
    stLocks.mtxRoot.lock();
}

void AfterFork()
{
    host::LOCKS_S &stLocks = host::Locks();
    stLocks.mtxRoot.unlock();
    stLocks.mtxDiag.unlock();
    stLocks.mtxIni.unlock();
    stLocks.mtxEeprom.unlock();
    stLocks.mtxDb.unlock();
}

// What the parent's other threads were delivering, nobody finishes here: their references would count for ever.
void InChild()
{
    if (g_spSink != nullptr) {
        try {
            g_spSink = std::make_shared<const SINK_S>(*g_spSink);
        } catch (const std::bad_alloc &) {
            g_spSink.reset();
        }
    }
    AfterFork();
}

__attribute__((constructor)) void RegisterForkHandlers()
{
    // The list of lock files comes first, so that fork() takes it last: one is taken while mtxDb is held.
    const files::LockFile stFirst;
    (void)pthread_atfork(BeforeFork, AfterFork, InChild);
}

// A message of any length: the short ones need no heap.
void Deliver(const SINK_S &stSink, BMCHOST_DIAG_S *pstDiag, va_list vaArgs)
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
    g_pstDelivering = &stSink;
    stSink.pfnSink(pstDiag, stSink.pContext);
    g_pstDelivering = nullptr;
}

} // namespace

namespace host {

LOCKS_S &Locks()
{
    static LOCKS_S *const pstLocks = new LOCKS_S; // never destroyed: threads may outlive main()
    return *pstLocks;
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
    if (g_pstDelivering != nullptr || pcFormat == nullptr) {
        return;
    }
    const int iErrno = errno; // callers report it after logging
    std::shared_ptr<const SINK_S> spSink;
    {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxDiag);
        spSink = g_spSink;
    }
    if (spSink != nullptr) {
        BMCHOST_DIAG_S stDiag = {uiModule, uiCategory, uiSeverity, uiLine, pcFile == nullptr ? "" : pcFile,
                                 pcFormat, nullptr};
        va_list vaArgs;
        va_start(vaArgs, pcFormat);
        errno = iErrno; // for %m
        Deliver(*spSink, &stDiag, vaArgs);
        va_end(vaArgs);
    }
    errno = iErrno;
}

void BMCHOST_SetDiagSink(void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext), void *pContext)
{
    (void)host::Shield(0, [&] {
        std::shared_ptr<const SINK_S> spSink;
        if (pfnSink != nullptr) {
            spSink = std::make_shared<const SINK_S>(SINK_S{pfnSink, pContext});
        }
        {
            const std::lock_guard<std::mutex> lock(host::Locks().mtxDiag);
            spSink.swap(g_spSink);
        }
        // The former sink's context may go when this call returns; its own call of us is not waited for.
        const long iOwn = spSink != nullptr && spSink.get() == g_pstDelivering ? 2 : 1;
        while (spSink.use_count() > iOwn) {
            std::this_thread::sleep_for(g_stPause);
        }
        return 0;
    });
}

void BMCHOST_DiagToSyslog(const BMCHOST_DIAG_S *pstDiag, void *)
{
    const u32 uiPriority = pstDiag->uiSeverity <= BMC_DIAG_DEBUG ? pstDiag->uiSeverity : BMC_DIAG_DEBUG;
    syslog(static_cast<int>(LOG_USER | uiPriority), "[%u:%u] %s:%u %s", pstDiag->uiModule,
           pstDiag->uiCategory, pstDiag->pcFile, pstDiag->uiLine, pstDiag->pcText);
}

} // extern "C"
