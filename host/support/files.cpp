// Files below the root: the platform's file calls and what the other folders need of files.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <unistd.h>

#include "support/host.h"

namespace host {

void FD::Reset(int iFd)
{
    if (m_iFd >= 0) {
        const int iErrno = errno; // what made the caller give up stays to be reported
        (void)close(m_iFd);
        errno = iErrno;
    }
    m_iFd = iFd;
}

FD OpenFile(const std::string &strPath, int iFlags, mode_t uiMode)
{
    int iFd = -1;
    do {
        iFd = open(strPath.c_str(), iFlags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, uiMode);
    } while (iFd < 0 && errno == EINTR);
    return FD(iFd);
}

FD OpenRegular(const std::string &strPath, int iFlags, struct stat *pstStat)
{
    FD fd = OpenFile(strPath, iFlags);
    if (!fd || fstat(fd.Get(), pstStat) != 0) {
        return FD();
    }
    if (!S_ISREG(pstStat->st_mode)) {
        errno = S_ISDIR(pstStat->st_mode) ? EISDIR : EINVAL;
        return FD();
    }
    return fd;
}

FILE_LOCK::FILE_LOCK(int iFd, int iOperation) : m_iFd(iFd), m_bHeld(false)
{
    int iRet = -1;
    do {
        iRet = flock(iFd, iOperation);
    } while (iRet != 0 && errno == EINTR);
    m_bHeld = iRet == 0;
}

FILE_LOCK::~FILE_LOCK()
{
    if (m_bHeld) {
        const int iErrno = errno;
        (void)flock(m_iFd, LOCK_UN);
        errno = iErrno;
    }
}

int MakeDirs(const std::string &strPath)
{
    struct stat stStat;
    if (stat(strPath.c_str(), &stStat) == 0) {
        return S_ISDIR(stStat.st_mode) ? 0 : ENOTDIR;
    }
    size_t uiEnd = 0;
    while (uiEnd != std::string::npos) {
        uiEnd = strPath.find('/', uiEnd + 1U);
        const std::string strPart = strPath.substr(0, uiEnd);
        if (mkdir(strPart.c_str(), 0755) != 0) {
            const int iError = errno;
            // Another process may have made it; on a read-only parent mkdir() need not say EEXIST.
            if (stat(strPart.c_str(), &stStat) != 0) {
                return iError;
            }
            if (!S_ISDIR(stStat.st_mode)) {
                return ENOTDIR;
            }
        }
    }
    return 0;
}

int ReadWhole(int iFd, void *pBuf, size_t uiLen)
{
    size_t uiDone = 0;
    while (uiDone < uiLen) {
        const ssize_t iRead =
            pread(iFd, static_cast<char *>(pBuf) + uiDone, uiLen - uiDone, static_cast<off_t>(uiDone));
        if (iRead == 0) {
            return EIO;
        }
        if (iRead < 0 && errno != EINTR) {
            return errno;
        }
        uiDone += iRead > 0 ? static_cast<size_t>(iRead) : 0U;
    }
    return 0;
}

int WriteWhole(int iFd, const void *pBuf, size_t uiLen)
{
    size_t uiDone = 0;
    while (uiDone < uiLen) {
        const ssize_t iWritten = write(iFd, static_cast<const char *>(pBuf) + uiDone, uiLen - uiDone);
        if (iWritten < 0 && errno != EINTR) {
            return errno;
        }
        uiDone += iWritten > 0 ? static_cast<size_t>(iWritten) : 0U;
    }
    return 0;
}

std::string DirectoryOf(const std::string &strPath)
{
    const size_t uiSlash = strPath.rfind('/');
    return uiSlash == std::string::npos ? "." : strPath.substr(0, uiSlash == 0U ? 1U : uiSlash);
}

namespace {

// Fills the temporary file and gives it what the old one had; an errno value.
int Finish(FD fd, std::string_view svContent, const struct stat *pstOld, mode_t uiMode)
{
    int iError = WriteWhole(fd.Get(), svContent.data(), svContent.size());
    if (iError == 0 && pstOld != nullptr) {
        // A file edited by root stays its owner's; others may not give files away, and need not.
        (void)!fchown(fd.Get(), pstOld->st_uid, pstOld->st_gid);
    }
    // The content is on the disk before the name points to it: a power cut leaves the old file or
    // the new one.
    if (iError == 0 && (fchmod(fd.Get(), uiMode) != 0 || fsync(fd.Get()) != 0)) {
        iError = errno;
    }
    if (close(fd.Release()) != 0 && iError == 0) {
        iError = errno;
    }
    return iError;
}

} // namespace

int ReplaceFile(const std::string &strPath, std::string_view svContent, mode_t uiMode)
{
    // A link stays, and what it leads to is replaced.
    const std::unique_ptr<char, decltype(&free)> upReal(realpath(strPath.c_str(), nullptr), free);
    const std::string strTarget = upReal == nullptr ? strPath : upReal.get();
    struct stat stOld;
    const bool bOld = stat(strTarget.c_str(), &stOld) == 0;
    if (bOld && !S_ISREG(stOld.st_mode)) {
        return S_ISDIR(stOld.st_mode) ? EISDIR : EINVAL;
    }
    if (uiMode == g_uiKeepMode) {
        uiMode = bOld ? stOld.st_mode & 07777U : 0644U;
    }
    std::string strTemp = DirectoryOf(strTarget) + "/.bmchost.XXXXXX";
    FD fd(mkostemp(strTemp.data(), O_CLOEXEC));
    if (!fd) {
        return errno;
    }
    int iError = Finish(std::move(fd), svContent, bOld ? &stOld : nullptr, uiMode);
    if (iError == 0 && rename(strTemp.c_str(), strTarget.c_str()) != 0) {
        iError = errno;
    }
    if (iError != 0) {
        (void)unlink(strTemp.c_str());
    }
    return iError;
}

int ReadText(const std::string &strPath, std::string *pstrContent, struct stat *pstStat)
{
    *pstStat = {};
    const FD fd = OpenRegular(strPath, O_RDONLY, pstStat);
    if (!fd) {
        return errno != 0 ? errno : EIO;
    }
    pstrContent->resize(static_cast<size_t>(pstStat->st_size));
    return ReadWhole(fd.Get(), pstrContent->data(), pstrContent->size());
}

std::string NowText()
{
    struct timespec stNow = {};
    struct tm stTime = {};
    (void)clock_gettime(CLOCK_REALTIME, &stNow);
    char acDate[32] = "";
    char acText[48];
    if (gmtime_r(&stNow.tv_sec, &stTime) != nullptr) {
        (void)strftime(acDate, sizeof(acDate), "%Y-%m-%dT%H:%M:%S", &stTime);
    }
    (void)BMC_Scnprintf(acText, sizeof(acText), "%s.%03dZ", acDate,
                        static_cast<int>(stNow.tv_nsec / 1000000));
    return acText;
}

u32 AppendToJournal(const char *pcJournal, std::string strLine)
{
    const std::string strPath = Resolve(pcJournal);
    int iError = MakeDirs(DirectoryOf(strPath));
    struct stat stStat;
    FD fd = iError == 0 ? OpenRegular(strPath, O_RDWR | O_CREAT | O_APPEND, &stStat) : FD();
    if (!fd) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", strPath.c_str(), ErrText(iError == 0 ? errno : iError));
        return g_uiFailed;
    }
    const FILE_LOCK lock(fd.Get(), LOCK_EX);
    if (!lock || fstat(fd.Get(), &stStat) != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", strPath.c_str(), ErrText(errno));
        return g_uiFailed;
    }
    // A writer that died in the middle of its line must not spoil ours.
    char cLast = '\n';
    if (stStat.st_size > 0 && pread(fd.Get(), &cLast, 1, stStat.st_size - 1) == 1 && cLast != '\n') {
        strLine.insert(0, "\n");
    }
    strLine += '\n';
    const ssize_t iWritten = write(fd.Get(), strLine.data(), strLine.size());
    if (iWritten == static_cast<ssize_t>(strLine.size())) {
        return 0;
    }
    iError = iWritten < 0 ? errno : ENOSPC;
    if (iWritten > 0) {
        (void)ftruncate(fd.Get(), stStat.st_size);
    }
    HOST_LOG(BMC_DIAG_ERROR, "%s: %s", strPath.c_str(), ErrText(iError));
    return g_uiFailed;
}

} // namespace host

extern "C" {

i32 BMC_GetFileSize(const char *pcPath)
{
    return host::Shield<i32>(-1, [&] {
        struct stat stStat;
        const bool bFile = stat(host::Resolve(pcPath).c_str(), &stStat) == 0 && S_ISREG(stStat.st_mode);
        return bFile && stStat.st_size <= INT32_MAX ? static_cast<i32>(stStat.st_size) : -1;
    });
}

u32 BMC_ReadFile(const char *pcPath, u8 *pucBuf, u32 uiLen)
{
    return host::Shield(host::g_uiFailed, [&] {
        struct stat stStat;
        const host::FD fd = host::OpenRegular(host::Resolve(pcPath), O_RDONLY, &stStat);
        const bool bUsable = fd && (pucBuf != nullptr || uiLen == 0U);
        return bUsable && host::ReadWhole(fd.Get(), pucBuf, uiLen) == 0 ? 0U : host::g_uiFailed;
    });
}

u32 BMC_Mkdir(const char *pcPath)
{
    return host::Shield(host::g_uiFailed, [&] {
        const std::string strPath = host::Resolve(pcPath);
        const int iError = host::MakeDirs(strPath);
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_ERROR, "making directory %s: %s", strPath.c_str(), host::ErrText(iError));
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

u32 BMC_CheckDirVaildStatus(const char *pcPath)
{
    return host::Shield(0U, [&] {
        const std::string strPath = host::Resolve(pcPath);
        struct stat stStat;
        const bool bUsable = stat(strPath.c_str(), &stStat) == 0 && S_ISDIR(stStat.st_mode) &&
                             access(strPath.c_str(), R_OK | W_OK | X_OK) == 0;
        return bUsable ? 1U : 0U;
    });
}

u32 BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest)
{
    return host::Shield(host::g_uiFailed, [&] {
        const std::string strSrc = host::Resolve(pcSrc);
        const std::string strDest = host::Resolve(pcDest);
        struct stat stStat;
        std::string strContent;
        int iError = host::ReadText(strSrc, &strContent, &stStat);
        if (iError == 0) {
            iError = host::ReplaceFile(strDest, strContent, stStat.st_mode & 07777U);
        }
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_WARNING, "copying %s to %s: %s", strSrc.c_str(), strDest.c_str(),
                     host::ErrText(iError));
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

} // extern "C"
