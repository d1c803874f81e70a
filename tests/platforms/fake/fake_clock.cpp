// SPDX-License-Identifier: Apache-2.0
// The clock and the semaphores as the library sees them (linked with --wrap): a time of the test's own, waits
// that are looked at and cut short.
#include <cerrno>
#include <ctime>
#include <mutex>

#include <semaphore.h>

#include "fake/fake_state.h"

extern "C" {
int __real_clock_gettime(clockid_t iClock, struct timespec *pstTime);
int __real_sem_init(sem_t *pstSem, int iShared, unsigned uiValue);
int __real_sem_timedwait(sem_t *pstSem, const struct timespec *pstDeadline);
int __wrap_clock_gettime(clockid_t iClock, struct timespec *pstTime);
int __wrap_sem_init(sem_t *pstSem, int iShared, unsigned uiValue);
int __wrap_sem_timedwait(sem_t *pstSem, const struct timespec *pstDeadline);
}

namespace {

constexpr int64_t g_iSecond = 1000000000;

std::mutex g_mtxClock;
thread_local int64_t g_iLastRead; // nanoseconds

int64_t Nanoseconds(const struct timespec &stTime)
{
    return static_cast<int64_t>(stTime.tv_sec) * g_iSecond + static_cast<int64_t>(stTime.tv_nsec);
}

struct timespec TimeOf(int64_t iNanoseconds)
{
    struct timespec stTime = {};
    stTime.tv_sec = static_cast<time_t>(iNanoseconds / g_iSecond);
    stTime.tv_nsec = static_cast<long>(iNanoseconds % g_iSecond);
    return stTime;
}

} // namespace

namespace fake {

void SetTime(int64_t iSeconds, int64_t iNanoseconds)
{
    const std::lock_guard<std::mutex> lock(g_mtxClock);
    State().optTime = {iSeconds, iNanoseconds};
}

void SetPatience(u32 uiMilliseconds)
{
    const std::lock_guard<std::mutex> lock(g_mtxClock);
    State().optPatienceMs = uiMilliseconds;
}

std::vector<int64_t> Waits()
{
    const std::lock_guard<std::mutex> lock(g_mtxClock);
    return State().vecWaits;
}

} // namespace fake

int __wrap_clock_gettime(clockid_t iClock, struct timespec *pstTime)
{
    if (fake::Fault(fake::KIND_E::CLOCK)) {
        errno = EINVAL;
        return -1;
    }
    const int iRet = __real_clock_gettime(iClock, pstTime);
    const std::lock_guard<std::mutex> lock(g_mtxClock);
    if (fake::State().optTime) {
        *pstTime = TimeOf(fake::State().optTime->first * g_iSecond + fake::State().optTime->second);
    }
    if (iClock == CLOCK_REALTIME) { // the one that sem_timedwait's deadlines count by
        g_iLastRead = Nanoseconds(*pstTime);
    }
    return iRet;
}

int __wrap_sem_init(sem_t *pstSem, int iShared, unsigned uiValue)
{
    if (fake::Fault(fake::KIND_E::SEMAPHORE) || iShared != 0) { // no other process has a part in any of them
        errno = ENOSYS;
        return -1;
    }
    return __real_sem_init(pstSem, iShared, uiValue);
}

int __wrap_sem_timedwait(sem_t *pstSem, const struct timespec *pstDeadline)
{
    const int64_t iWait = Nanoseconds(*pstDeadline) - g_iLastRead;
    std::optional<u32> optPatienceMs;
    {
        const std::lock_guard<std::mutex> lock(g_mtxClock);
        fake::State().vecWaits.push_back(iWait);
        optPatienceMs = fake::State().optPatienceMs;
    }
    if (const auto optFault = fake::Fault(fake::KIND_E::SEMAPHORE)) {
        errno = *optFault == fake::HOW_E::LATE ? ETIMEDOUT : EINTR;
        return -1;
    }
    // The deadline is the test's time; the kernel waits in its own.
    struct timespec stReal = {};
    (void)__real_clock_gettime(CLOCK_REALTIME, &stReal);
    stReal = TimeOf(Nanoseconds(stReal) + (optPatienceMs ? int64_t{*optPatienceMs} * 1000000 : iWait));
    return __real_sem_timedwait(pstSem, &stReal);
}
