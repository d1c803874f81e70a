// SPDX-License-Identifier: Apache-2.0
// Finding and opening files.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include "files/directory.h"

namespace files {

namespace {

constexpr int g_iLinksMax = 8;

int RetryOpen(int iDirectory, const char *pcName, int iFlags, mode_t uiMode = 0)
{
    int iFd = -1;
    do {
        iFd = openat(iDirectory, pcName, iFlags | O_CLOEXEC, uiMode);
    } while (iFd < 0 && errno == EINTR);
    return iFd;
}

// The text of a link that this process's user or root has laid; ELOOP for anybody else's, ENOENT or EINVAL
// when there is no link.
int ReadLink(int iDirectory, const std::string &strName, std::string *pstrTarget)
{
    // The descriptor is that of the link itself: owner and text belong together.
    const Fd stLink(RetryOpen(iDirectory, strName.c_str(), O_PATH | O_NOFOLLOW));
    struct stat stStat;
    if (!stLink || fstat(stLink.Get(), &stStat) != 0) {
        return errno;
    }
    if (!S_ISLNK(stStat.st_mode)) {
        return EINVAL;
    }
    if (stStat.st_uid != 0U && stStat.st_uid != geteuid()) {
        return ELOOP;
    }
    char acTarget[4096];
    const ssize_t iLength = readlinkat(stLink.Get(), "", acTarget, sizeof(acTarget));
    if (iLength < 0 || iLength == static_cast<ssize_t>(sizeof(acTarget))) {
        return iLength < 0 ? errno : ENAMETOOLONG;
    }
    pstrTarget->assign(acTarget, static_cast<size_t>(iLength));
    return 0;
}

// One step down, through a link if it is ours.
int Descend(Fd *pstDirectory, const std::string &strName)
{
    Fd stNext(RetryOpen(pstDirectory->Get(), strName.c_str(), O_PATH | O_NOFOLLOW | O_DIRECTORY));
    if (!stNext && (errno == ENOTDIR || errno == ELOOP)) {
        std::string strTarget;
        const int iError = ReadLink(pstDirectory->Get(), strName, &strTarget);
        if (iError != 0) {
            return iError == EINVAL ? ENOTDIR : iError;
        }
        stNext = Fd(RetryOpen(pstDirectory->Get(), strTarget.c_str(), O_PATH | O_DIRECTORY));
    }
    if (!stNext) {
        return errno;
    }
    *pstDirectory = std::move(stNext);
    return 0;
}

int MakeOne(const Fd &stDirectory, const std::string &strName, mode_t uiMode, const std::string &strBase)
{
    if (mkdirat(stDirectory.Get(), strName.c_str(), uiMode) != 0) {
        return errno;
    }
    struct stat stStat;
    const Fd stMade(RetryOpen(stDirectory.Get(), strName.c_str(), O_RDONLY | O_NOFOLLOW | O_DIRECTORY));
    // A directory's group may be handed down.
    if (!stMade || fstat(stMade.Get(), &stStat) != 0 ||
        fchmod(stMade.Get(), uiMode | (stStat.st_mode & S_ISGID)) != 0) {
        return errno;
    }
    GiveToOwnerOf(strBase, stDirectory, stMade);
    return 0;
}

std::string DirectoryPart(const std::string &strPath)
{
    const size_t uiSlash = strPath.rfind('/');
    return uiSlash == std::string::npos ? "." : uiSlash == 0U ? "/" : strPath.substr(0U, uiSlash);
}

} // namespace

int Split(const std::string &strPath, std::vector<std::string> *pvecParts)
{
    size_t uiBegin = 0;
    while (uiBegin < strPath.size()) {
        const size_t uiEnd = std::min(strPath.find('/', uiBegin), strPath.size());
        const std::string strPart = strPath.substr(uiBegin, uiEnd - uiBegin);
        uiBegin = uiEnd + 1U;
        if (strPart == "..") {
            return EACCES; // it would lead out of what was walked
        }
        if (!strPart.empty() && strPart != ".") {
            pvecParts->push_back(strPart);
        }
    }
    return 0;
}

std::string PLACE_S::Text() const
{
    const size_t uiBegin = strBelow.find_first_not_of('/');
    if (strBase.empty() || uiBegin == std::string::npos) {
        return strBase.empty() ? strBelow : strBase;
    }
    return (strBase.back() == '/' ? strBase : strBase + "/") + strBelow.substr(uiBegin);
}

void Fd::Reset(int iFd)
{
    const int iOld = m_iFd;
    m_iFd = iFd;
    if (iOld >= 0) {
        const int iErrno = errno; // what made the caller give up stays to be reported
        (void)close(iOld);
        errno = iErrno;
    }
}

std::string Reason(int iError)
{
    switch (iError) {
    case ELOOP:
        return "a symbolic link there is not followed";
    case EMLINK:
        return "the file has another name elsewhere and belongs to somebody else";
    case EFBIG:
        return "larger than is accepted";
    case EINVAL:
        return "not a regular file";
    case ETIMEDOUT:
        return "another process holds the lock";
    case ECANCELED:
        return "cut off";
    case EIO:
        return "Input/output error, or the file is shorter than it was";
    default:
        break;
    }
    const char *pcText = strerrordesc_np(iError);
    return pcText == nullptr ? "unknown error" : pcText;
}

namespace {

// The base, and the components below it.
int OpenBase(const PLACE_S &stPlace, Fd *pstDirectory, std::vector<std::string> *pvecParts)
{
    const int iError = Split(stPlace.strBelow, pvecParts);
    if (iError != 0) {
        return iError;
    }
    *pstDirectory = Fd(RetryOpen(AT_FDCWD, stPlace.strBase.c_str(), O_PATH | O_DIRECTORY));
    return *pstDirectory ? 0 : errno;
}

} // namespace

int FindDirectory(const PLACE_S &stPlace, SPOT_S *pstSpot)
{
    if (stPlace.strBase.empty()) {
        const std::string &strPath = stPlace.strBelow;
        pstSpot->strName = strPath.substr(strPath.rfind('/') + 1U); // npos + 1 is 0
        pstSpot->stDirectory = Fd(RetryOpen(AT_FDCWD, DirectoryPart(strPath).c_str(), O_PATH | O_DIRECTORY));
        if (pstSpot->strName.empty() || pstSpot->strName == "." || pstSpot->strName == "..") {
            return EISDIR;
        }
        return pstSpot->stDirectory ? 0 : errno;
    }
    std::vector<std::string> vecParts;
    int iError = OpenBase(stPlace, &pstSpot->stDirectory, &vecParts);
    if (iError != 0 || vecParts.empty()) {
        return iError != 0 ? iError : EISDIR;
    }
    for (size_t i = 0; i + 1U < vecParts.size() && iError == 0; ++i) {
        iError = Descend(&pstSpot->stDirectory, vecParts[i]);
    }
    pstSpot->strBase = stPlace.strBase;
    pstSpot->strName = vecParts.back();
    return iError;
}

int FollowLinks(SPOT_S *pstSpot)
{
    for (int i = 0; i < g_iLinksMax; ++i) {
        std::string strTarget;
        const int iError = ReadLink(pstSpot->stDirectory.Get(), pstSpot->strName, &strTarget);
        if (iError != 0) {
            return iError == EINVAL || iError == ENOENT ? 0 : iError; // the link's end
        }
        const std::string strDirectory = DirectoryPart(strTarget);
        Fd stDirectory(RetryOpen(pstSpot->stDirectory.Get(), strDirectory.c_str(), O_PATH | O_DIRECTORY));
        if (!stDirectory) {
            return errno;
        }
        pstSpot->stDirectory = std::move(stDirectory);
        pstSpot->strName = strTarget.substr(strTarget.rfind('/') + 1U);
        if (pstSpot->strName.empty() || pstSpot->strName == "." || pstSpot->strName == "..") {
            return EISDIR;
        }
    }
    return ELOOP;
}

namespace {

// For a path that is the user's word: its links are, too.
int MakePlain(std::string strPath, mode_t uiMode)
{
    while (strPath.size() > 1U && strPath.back() == '/') {
        strPath.pop_back();
    }
    struct stat stStat;
    if (stat(strPath.c_str(), &stStat) == 0) {
        return S_ISDIR(stStat.st_mode) ? 0 : ENOTDIR;
    }
    const std::string strParent = DirectoryPart(strPath);
    if (errno != ENOENT || strParent == strPath) {
        return errno;
    }
    int iError = MakePlain(strParent, uiMode);
    const Fd stParent(iError == 0 ? RetryOpen(AT_FDCWD, strParent.c_str(), O_PATH | O_DIRECTORY) : -1);
    if (!stParent) {
        return iError != 0 ? iError : errno;
    }
    iError = MakeOne(stParent, strPath.substr(strPath.rfind('/') + 1U), uiMode, "");
    if (iError != EEXIST) {
        return iError;
    }
    const bool bMade = stat(strPath.c_str(), &stStat) == 0 && S_ISDIR(stStat.st_mode);
    return bMade ? 0 : ENOTDIR; // by another process
}

} // namespace

int MakeDirectories(const PLACE_S &stPlace, mode_t uiMode)
{
    if (stPlace.strBase.empty()) {
        return MakePlain(stPlace.strBelow, uiMode);
    }
    Fd stDirectory;
    std::vector<std::string> vecParts;
    int iError = OpenBase(stPlace, &stDirectory, &vecParts);
    if (iError == ENOENT) {
        iError = MakePlain(stPlace.strBase, uiMode);
        vecParts.clear();
        iError = iError == 0 ? OpenBase(stPlace, &stDirectory, &vecParts) : iError;
    }
    for (size_t i = 0; i < vecParts.size() && iError == 0; ++i) {
        iError = Descend(&stDirectory, vecParts[i]);
        if (iError == ENOENT) {
            iError = MakeOne(stDirectory, vecParts[i], uiMode, stPlace.strBase);
            // Another process may have made it meanwhile.
            iError = iError == 0 || iError == EEXIST ? Descend(&stDirectory, vecParts[i]) : iError;
        }
    }
    return iError;
}

namespace {

int CheckRegular(const SPOT_S &stSpot, int iFd, bool bWrite, struct stat *pstStat)
{
    struct stat stDirectory;
    if (fstat(iFd, pstStat) != 0) {
        return errno;
    }
    if (!S_ISREG(pstStat->st_mode)) {
        return S_ISDIR(pstStat->st_mode) ? EISDIR : EINVAL;
    }
    if (bWrite && pstStat->st_nlink > 1U && fstat(stSpot.stDirectory.Get(), &stDirectory) == 0 &&
        stDirectory.st_uid != pstStat->st_uid) {
        return EMLINK;
    }
    return 0;
}

} // namespace

int OpenAt(SPOT_S *pstSpot, int iFlags, Links enLinks, Fd *pstFd, struct stat *pstStat, mode_t uiMode)
{
    const int iBare = (iFlags & ~(O_CREAT | O_TRUNC)) | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const bool bWrite = (iFlags & O_ACCMODE) != O_RDONLY;
    *pstFd = Fd(RetryOpen(pstSpot->stDirectory.Get(), pstSpot->strName.c_str(), iBare));
    if (!*pstFd && errno == ELOOP && enLinks == Links::Ours) {
        const int iError = FollowLinks(pstSpot);
        if (iError != 0) {
            return iError;
        }
        *pstFd = Fd(RetryOpen(pstSpot->stDirectory.Get(), pstSpot->strName.c_str(), iBare));
    }
    if (!*pstFd && errno == ENOENT && (iFlags & O_CREAT) != 0) {
        *pstFd = Fd(RetryOpen(pstSpot->stDirectory.Get(), pstSpot->strName.c_str(), iBare | O_CREAT | O_EXCL,
                              uiMode & 0777U));
        if (*pstFd) {
            GiveToOwnerOf(pstSpot->strBase, pstSpot->stDirectory, *pstFd);
            (void)fchmod(pstFd->Get(), uiMode & 0777U);
        } else if (errno == EEXIST) { // another process was faster
            *pstFd = Fd(RetryOpen(pstSpot->stDirectory.Get(), pstSpot->strName.c_str(), iBare));
        }
    }
    struct stat stStat = {};
    int iError = *pstFd ? CheckRegular(*pstSpot, pstFd->Get(), bWrite, &stStat) : errno;
    if (iError == 0 && (iFlags & O_TRUNC) != 0 && stStat.st_size != 0 && ftruncate(pstFd->Get(), 0) != 0) {
        iError = errno;
    }
    if (iError != 0) {
        pstFd->Reset(-1);
        return iError == ENXIO ? EINVAL : iError; // a pipe that nobody reads
    }
    if (pstStat != nullptr) {
        *pstStat = stStat;
    }
    return 0;
}

int OpenRegular(const PLACE_S &stPlace, int iFlags, Links enLinks, Fd *pstFd, struct stat *pstStat,
                mode_t uiMode)
{
    SPOT_S stSpot;
    const int iError = FindDirectory(stPlace, &stSpot);
    return iError == 0 ? OpenAt(&stSpot, iFlags, enLinks, pstFd, pstStat, uiMode) : iError;
}

int Status(const PLACE_S &stPlace, struct stat *pstStat)
{
    SPOT_S stSpot;
    int iError = FindDirectory(stPlace, &stSpot);
    iError = iError == 0 ? FollowLinks(&stSpot) : iError;
    if (iError != 0) {
        return iError;
    }
    const int iDirectory = stSpot.stDirectory.Get();
    return fstatat(iDirectory, stSpot.strName.c_str(), pstStat, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

bool IsUsableDirectory(const PLACE_S &stPlace)
{
    const PLACE_S stAny(stPlace.strBase, stPlace.strBelow + "/x"); // what counts is the directory
    SPOT_S stSpot;
    return FindDirectory(stAny, &stSpot) == 0 &&
           faccessat(stSpot.stDirectory.Get(), ".", R_OK | W_OK | X_OK, 0) == 0;
}

} // namespace files
