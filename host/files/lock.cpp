// SPDX-License-Identifier: Apache-2.0
// Lock files: flock(2) on files that nobody else can open. Whoever has to wait draws a number: a byte of the file,
// which it locks by fcntl(2), where the file need not have it. Nobody takes the lock while a lower byte is locked,
// so that all have it in the order in which they came; a number falls with its process.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <mutex>
#include <pthread.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

#include "files/directory.h"

namespace files {

// Every lock of this process. flock(2) belongs to the open file, which a child of fork() shares: it closes
// its copies at once, for else a lock would outlive the parent that is killed while it holds it.
struct LOCK_LIST_S
{
    std::mutex mtx;
    LockFile *pstFirst = nullptr;

    static LOCK_LIST_S &Instance()
    {
        static LOCK_LIST_S *const pstList = [] {
            (void)pthread_atfork([] { Instance().mtx.lock(); }, [] { Instance().mtx.unlock(); }, InChild);
            return new LOCK_LIST_S; // never destroyed: threads may outlive main()
        }();
        return *pstList;
    }

    static void InChild()
    {
        LOCK_LIST_S &stList = Instance();
        for (LockFile *pstLock = stList.pstFirst; pstLock != nullptr; pstLock = pstLock->m_pstNext) {
            pstLock->m_stFile.Reset(-1);
            pstLock->m_bHeld = false;
            pstLock->m_bNamed = false;
        }
        stList.mtx.unlock();
    }

    void Add(LockFile *pstLock)
    {
        const std::lock_guard<std::mutex> lock(mtx);
        pstLock->m_pstNext = pstFirst;
        if (pstFirst != nullptr) {
            pstFirst->m_pstPrevious = pstLock;
        }
        pstFirst = pstLock;
    }

    void Drop(const LockFile *pstLock)
    {
        const std::lock_guard<std::mutex> lock(mtx);
        (pstLock->m_pstPrevious == nullptr ? pstFirst : pstLock->m_pstPrevious->m_pstNext) =
            pstLock->m_pstNext;
        if (pstLock->m_pstNext != nullptr) {
            pstLock->m_pstNext->m_pstPrevious = pstLock->m_pstPrevious;
        }
    }
};

namespace {

constexpr std::chrono::microseconds g_stFirstPause(50);
constexpr std::chrono::microseconds g_stLongestPause(5000);
constexpr std::chrono::microseconds g_stLongestTurn(1000); // of the one whose turn it is
constexpr mode_t g_uiOwnMode = 0600;
constexpr mode_t g_uiGroupMode = 0660;

mode_t ModeBelow(const SPOT_S &stSpot)
{
    struct stat stStat;
    const bool bGroup = !stSpot.strBase.empty() && stat(stSpot.strBase.c_str(), &stStat) == 0 &&
                        (stStat.st_mode & S_IWGRP) != 0U;
    return bGroup ? g_uiGroupMode : g_uiOwnMode;
}

} // namespace

LockFile::LockFile()
{
    LOCK_LIST_S::Instance().Add(this);
}

LockFile::~LockFile()
{
    Release();
    LOCK_LIST_S::Instance().Drop(this);
}

namespace {

struct flock Range(short iType, off_t iStart, off_t iLength)
{
    struct flock stRange = {};
    stRange.l_type = iType;
    stRange.l_whence = SEEK_SET;
    stRange.l_start = iStart;
    stRange.l_len = iLength;
    return stRange;
}

// The first number that somebody else has, of iLength (0: of all) from iStart on; -1: none.
off_t FindNumber(int iFd, off_t iStart, off_t iLength)
{
    struct flock stRange = Range(F_WRLCK, iStart, iLength);
    return fcntl(iFd, F_OFD_GETLK, &stRange) == 0 && stRange.l_type != F_UNLCK ? stRange.l_start : -1;
}

// A number behind all that are drawn; 0, which nobody waits for, where the file system has no such locks.
off_t DrawNumber(int iFd, bool bShared)
{
    for (;;) {
        off_t iNumber = 1;
        for (off_t iTaken = FindNumber(iFd, 1, 0); iTaken > 0; iTaken = FindNumber(iFd, iNumber, 0)) {
            iNumber = iTaken + 1;
        }
        struct flock stRange = Range(bShared ? F_RDLCK : F_WRLCK, iNumber, 1);
        if (fcntl(iFd, F_OFD_SETLK, &stRange) == 0) {
            return iNumber;
        }
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            return 0;
        }
    }
}

void ReturnNumber(int iFd)
{
    struct flock stRange = Range(F_UNLCK, 0, 0);
    (void)fcntl(iFd, F_OFD_SETLK, &stRange);
}

} // namespace

int LockFile::Wait(int iOperation, unsigned uiPatienceMs)
{
    const auto stUntil = std::chrono::steady_clock::now() + std::chrono::milliseconds(uiPatienceMs);
    auto stPause = g_stFirstPause;
    const int iFd = m_stFile.Get();
    off_t iNumber = 0;
    int iError = 0;
    for (;;) {
        // Before it has a number it gives way to all who have.
        const bool bTurn = iNumber == 1 || FindNumber(iFd, 1, iNumber == 0 ? 0 : iNumber - 1) < 0;
        if (bTurn && flock(iFd, iOperation | LOCK_NB) == 0) {
            break;
        }
        if (bTurn && errno != EWOULDBLOCK && errno != EINTR) {
            iError = errno;
            break;
        }
        if (std::chrono::steady_clock::now() >= stUntil) {
            iError = ETIMEDOUT;
            break;
        }
        if (iNumber == 0) {
            iNumber = DrawNumber(iFd, iOperation == LOCK_SH);
        }
        std::this_thread::sleep_for(stPause);
        stPause = std::min(stPause * 2, bTurn ? g_stLongestTurn : g_stLongestPause);
    }
    if (iNumber != 0) {
        ReturnNumber(iFd);
    }
    m_bHeld = iError == 0;
    return iError;
}

int LockFile::Take(const PLACE_S &stPlace, unsigned uiPatienceMs)
{
    Release();
    SPOT_S stSpot;
    struct stat stStat;
    int iError = FindDirectory(stPlace, &stSpot);
    if (iError != 0) {
        return iError;
    }
    const mode_t uiMode = ModeBelow(stSpot);
    {
        // No fork() sees the descriptor before the list does.
        const std::lock_guard<std::mutex> lock(LOCK_LIST_S::Instance().mtx);
        iError = OpenAt(&stSpot, O_RDWR | O_CREAT, Links::Never, &m_stFile, &stStat, uiMode);
    }
    if (iError != 0) {
        return iError;
    }
    if ((stStat.st_mode & 07777U & ~uiMode) != 0U) { // one that an earlier version made for everybody
        (void)fchmod(m_stFile.Get(), uiMode);
    }
    return Wait(LOCK_EX, uiPatienceMs);
}

int LockFile::Share(const PLACE_S &stPlace, unsigned uiPatienceMs)
{
    Release();
    int iError = 0;
    {
        const std::lock_guard<std::mutex> lock(LOCK_LIST_S::Instance().mtx);
        iError = OpenRegular(stPlace, O_RDONLY, Links::Never, &m_stFile);
    }
    return iError == 0 ? Wait(LOCK_SH, uiPatienceMs) : iError;
}

void LockFile::Pause()
{
    if (m_bHeld) {
        (void)flock(m_stFile.Get(), LOCK_UN);
        m_bHeld = false;
    }
}

int LockFile::Resume(unsigned uiPatienceMs)
{
    return m_stFile ? Wait(LOCK_EX, uiPatienceMs) : EBADF;
}

void LockFile::Release()
{
    if (m_bNamed) {
        (void)!ftruncate(m_stFile.Get(), 0);
    }
    if (m_bHeld) {
        (void)flock(m_stFile.Get(), LOCK_UN); // also where a child has its copy still
    }
    m_bNamed = false;
    m_bHeld = false;
    m_stFile.Reset(-1);
}

int LockFile::SetHolder(const std::string &strHolder)
{
    if (!m_bHeld) {
        return EBADF;
    }
    m_bNamed = true;
    if (ftruncate(m_stFile.Get(), 0) != 0 || lseek(m_stFile.Get(), 0, SEEK_SET) != 0) {
        return errno;
    }
    return WriteAll(m_stFile.Get(), strHolder + "\n");
}

std::string LockFile::Holder() const
{
    char acHolder[512];
    const ssize_t iRead = m_stFile ? pread(m_stFile.Get(), acHolder, sizeof(acHolder), 0) : -1;
    std::string strHolder(acHolder, iRead > 0 ? static_cast<size_t>(iRead) : 0U);
    strHolder.erase(strHolder.find_last_not_of('\n') + 1U);
    return strHolder;
}

} // namespace files
