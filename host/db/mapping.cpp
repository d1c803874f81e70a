// SPDX-License-Identifier: Apache-2.0
#include "db/mapping.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

struct sigaction g_stFormer; // what a SIGBUS that is not ours is for
uintptr_t g_uiPage;
std::atomic<bool> g_bInside;
std::atomic<pthread_t> g_stThread; // the one inside
std::atomic<bool> g_bLost;

bool Replace(void *pAddress)
{
    void *pPage = static_cast<char *>(pAddress) - reinterpret_cast<uintptr_t>(pAddress) % g_uiPage;
    return mmap(pPage, g_uiPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
           pPage;
}

void PassOn(int iSignal, siginfo_t *pstInfo, void *pContext)
{
    if ((g_stFormer.sa_flags & SA_SIGINFO) != 0) {
        g_stFormer.sa_sigaction(iSignal, pstInfo, pContext);
    } else if (g_stFormer.sa_handler != SIG_DFL && g_stFormer.sa_handler != SIG_IGN) {
        g_stFormer.sa_handler(iSignal);
    } else {
        (void)signal(iSignal, SIG_DFL);
        (void)raise(iSignal); // when this handler has returned
    }
}

void OnBusError(int iSignal, siginfo_t *pstInfo, void *pContext)
{
    const int iErrno = errno;
    const bool bOurs =
        pstInfo->si_code == BUS_ADRERR && g_bInside && pthread_equal(g_stThread, pthread_self()) != 0;
    if (bOurs && Replace(pstInfo->si_addr)) {
        g_bLost = true;
    } else {
        PassOn(iSignal, pstInfo, pContext);
    }
    errno = iErrno;
}

// Once: who sets another one later knows of ours, and calls it or does not want it.
bool Install()
{
    struct sigaction stOurs = {};
    g_uiPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    (void)sigaction(SIGBUS, nullptr, &g_stFormer);
    sigemptyset(&stOurs.sa_mask);
    stOurs.sa_sigaction = OnBusError;
    stOurs.sa_flags = SA_SIGINFO | SA_ONSTACK;
    return sigaction(SIGBUS, &stOurs, nullptr) == 0;
}

} // namespace

namespace db {

MappingGuard::MappingGuard() : m_bOutermost(!g_bInside)
{
    static const bool bInstalled = Install();
    (void)bInstalled;
    if (m_bOutermost) {
        g_stThread = pthread_self();
        g_bInside = true;
    }
}

MappingGuard::~MappingGuard()
{
    if (m_bOutermost) {
        g_bInside = false;
    }
}

bool MappingGuard::HasLost()
{
    return g_bLost;
}

void MappingGuard::Begin()
{
    g_bLost = false;
}

} // namespace db
