// SPDX-License-Identifier: Apache-2.0
// Reading files whole, and putting new ones in their place.
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/random.h>
#include <unistd.h>

#include "files/directory.h"

namespace files {

namespace {

constexpr char g_acTempPrefix[] = ".bmcfru-";
constexpr char g_acFormerPrefix[] = ".bmchost."; // what earlier versions called theirs
constexpr time_t g_iTidyAgeSeconds = 60;         // a younger one may not have its lock yet
constexpr int g_iNameTries = 16;
constexpr size_t g_uiChunk = 65536;

std::atomic<uint32_t> g_uiNames; // made without anything random

std::string RandomName()
{
    unsigned char aucRandom[12] = {};
    if (getrandom(aucRandom, sizeof(aucRandom), GRND_NONBLOCK) != static_cast<ssize_t>(sizeof(aucRandom))) {
        // A controller that has just started has nothing random yet: names that nobody else has will do, for
        // O_EXCL holds all the same.
        struct timespec stNow = {};
        (void)clock_gettime(CLOCK_REALTIME, &stNow);
        const uint32_t auiParts[] = {static_cast<uint32_t>(getpid()), g_uiNames++,
                                     static_cast<uint32_t>(stNow.tv_sec ^ stNow.tv_nsec)};
        static_assert(sizeof(auiParts) == sizeof(aucRandom));
        (void)memcpy(aucRandom, auiParts, sizeof(auiParts));
    }
    std::string strName = g_acTempPrefix;
    for (const unsigned char ucByte : aucRandom) {
        constexpr char acDigits[] = "0123456789abcdef";
        strName += acDigits[ucByte >> 4U];
        strName += acDigits[ucByte & 0x0FU];
    }
    return strName;
}

bool StartsWith(const char *pcName, std::string_view svPrefix)
{
    return std::string_view(pcName).substr(0U, svPrefix.size()) == svPrefix;
}

// A leftover of ours whose maker is dead: it would hold the file's lock else.
void TidyOne(int iDirectory, const char *pcName)
{
    struct stat stStat;
    const Fd stFile(openat(iDirectory, pcName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    const uid_t uiUser = geteuid();
    if (stFile && fstat(stFile.Get(), &stStat) == 0 && S_ISREG(stStat.st_mode) &&
        (uiUser == 0U || stStat.st_uid == uiUser) && time(nullptr) - stStat.st_mtime > g_iTidyAgeSeconds &&
        flock(stFile.Get(), LOCK_EX | LOCK_NB) == 0) {
        (void)unlinkat(iDirectory, pcName, 0);
    }
}

} // namespace

int FlushDirectory(const Fd &stDirectory)
{
    const Fd stOpen(openat(stDirectory.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (stOpen && fsync(stOpen.Get()) == 0) {
        return 0;
    }
    // A directory that we may write to but not read, and file systems that flush names by themselves.
    return errno == EACCES || errno == EINVAL || errno == ENOSYS || errno == EROFS ? 0 : errno;
}

int FlushDirectoryOf(const PLACE_S &stPlace)
{
    SPOT_S stSpot;
    const int iError = FindDirectory(stPlace, &stSpot);
    return iError == 0 ? FlushDirectory(stSpot.stDirectory) : iError;
}

int ReadExactly(int iFd, void *pBuffer, size_t uiLength, off_t iOffset)
{
    size_t uiDone = 0;
    while (uiDone < uiLength) {
        const ssize_t iRead = pread(iFd, static_cast<char *>(pBuffer) + uiDone, uiLength - uiDone,
                                    iOffset + static_cast<off_t>(uiDone));
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

int WriteAll(int iFd, std::string_view svBytes)
{
    while (!svBytes.empty()) {
        const ssize_t iWritten = write(iFd, svBytes.data(), svBytes.size());
        if (iWritten < 0 && errno != EINTR) {
            return errno;
        }
        svBytes.remove_prefix(iWritten > 0 ? static_cast<size_t>(iWritten) : 0U);
    }
    return 0;
}

int ReadAll(const PLACE_S &stPlace, size_t uiLimit, std::string *pstrContent, struct stat *pstStat,
            Links enLinks)
{
    Fd stFile;
    struct stat stStat;
    const int iError = OpenRegular(stPlace, O_RDONLY, enLinks, &stFile, &stStat);
    if (iError != 0) {
        return iError;
    }
    if (pstStat != nullptr) {
        *pstStat = stStat;
    }
    if (static_cast<unsigned long long>(stStat.st_size) > uiLimit) {
        return EFBIG;
    }
    pstrContent->resize(static_cast<size_t>(stStat.st_size));
    return ReadExactly(stFile.Get(), pstrContent->data(), pstrContent->size());
}

NewFile::~NewFile()
{
    if (!m_strTemp.empty()) {
        const int iErrno = errno;
        (void)unlinkat(m_stDirectory.Get(), m_strTemp.c_str(), 0);
        errno = iErrno;
    }
}

int NewFile::Open(const PLACE_S &stPlace, mode_t uiMode, Links enLinks)
{
    SPOT_S stSpot;
    int iError = FindDirectory(stPlace, &stSpot);
    if (iError == 0 && enLinks == Links::Ours) {
        iError = FollowLinks(&stSpot);
    }
    if (iError != 0) {
        return iError;
    }
    struct stat stOld;
    const bool bOld =
        fstatat(stSpot.stDirectory.Get(), stSpot.strName.c_str(), &stOld, AT_SYMLINK_NOFOLLOW) == 0;
    if (bOld && !S_ISREG(stOld.st_mode)) {
        return S_ISDIR(stOld.st_mode) ? EISDIR : S_ISLNK(stOld.st_mode) ? ELOOP : EINVAL;
    }
    m_uiMode = uiMode != g_uiKeepMode ? uiMode & 0777U : bOld ? stOld.st_mode & 0777U : 0644U;
    for (int i = 0; i < g_iNameTries && !m_stFile; ++i) {
        m_strTemp = RandomName();
        m_stFile = Fd(openat(stSpot.stDirectory.Get(), m_strTemp.c_str(),
                             O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!m_stFile && errno != EEXIST && errno != EINTR) {
            break;
        }
    }
    if (!m_stFile) {
        m_strTemp.clear();
        return errno;
    }
    (void)flock(m_stFile.Get(), LOCK_EX | LOCK_NB); // a sign of life, see TidyOne()
    if (bOld) {
        // A file edited by root stays its owner's; others may not give files away, and need not.
        (void)!fchown(m_stFile.Get(), stOld.st_uid, stOld.st_gid);
    } else {
        GiveToOwnerOf(stSpot.strBase, stSpot.stDirectory, m_stFile);
    }
    m_stDirectory = std::move(stSpot.stDirectory);
    m_strName = stSpot.strName;
    return 0;
}

int NewFile::Write(std::string_view svBytes)
{
    return WriteAll(m_stFile.Get(), svBytes);
}

int NewFile::Commit()
{
    // The content is on the disk before the name points to it.
    if (fchmod(m_stFile.Get(), m_uiMode) != 0 || fsync(m_stFile.Get()) != 0) {
        return errno;
    }
    if (renameat(m_stDirectory.Get(), m_strTemp.c_str(), m_stDirectory.Get(), m_strName.c_str()) != 0) {
        return errno;
    }
    m_strTemp.clear();
    m_stFile.Reset(-1);
    return FlushDirectory(m_stDirectory);
}

int Replace(const PLACE_S &stPlace, std::string_view svContent, mode_t uiMode, Links enLinks)
{
    NewFile stNew;
    int iError = stNew.Open(stPlace, uiMode, enLinks);
    iError = iError == 0 ? stNew.Write(svContent) : iError;
    return iError == 0 ? stNew.Commit() : iError;
}

int Copy(const PLACE_S &stFrom, const PLACE_S &stTo)
{
    Fd stSource;
    struct stat stStat;
    NewFile stNew;
    int iError = OpenRegular(stFrom, O_RDONLY, Links::Ours, &stSource, &stStat);
    iError = iError == 0 ? stNew.Open(stTo, stStat.st_mode) : iError;
    std::string strChunk(g_uiChunk, '\0');
    ssize_t iRead = 1;
    while (iError == 0 && iRead != 0) {
        iRead = read(stSource.Get(), strChunk.data(), strChunk.size());
        if (iRead < 0) {
            iError = errno == EINTR ? 0 : errno;
        } else {
            iError = stNew.Write(std::string_view(strChunk).substr(0U, static_cast<size_t>(iRead)));
        }
    }
    return iError == 0 ? stNew.Commit() : iError;
}

int Remove(const PLACE_S &stPlace)
{
    SPOT_S stSpot;
    const int iError = FindDirectory(stPlace, &stSpot);
    if (iError != 0) {
        return iError;
    }
    return unlinkat(stSpot.stDirectory.Get(), stSpot.strName.c_str(), 0) == 0 ? 0 : errno;
}

int Rename(const PLACE_S &stPlace, const std::string &strName)
{
    SPOT_S stSpot;
    const int iError = FindDirectory(stPlace, &stSpot);
    if (iError != 0) {
        return iError;
    }
    struct stat stStat;
    for (const std::string &strEach : {stSpot.strName, strName}) {
        if (fstatat(stSpot.stDirectory.Get(), strEach.c_str(), &stStat, AT_SYMLINK_NOFOLLOW) == 0) {
            if (!S_ISREG(stStat.st_mode)) {
                return S_ISDIR(stStat.st_mode) ? EISDIR : EINVAL;
            }
        } else if (errno != ENOENT) {
            return errno;
        }
    }
    const int iDirectory = stSpot.stDirectory.Get();
    if (renameat(iDirectory, stSpot.strName.c_str(), iDirectory, strName.c_str()) != 0) {
        return errno;
    }
    return FlushDirectory(stSpot.stDirectory);
}

void Tidy(const PLACE_S &stDirectory)
{
    SPOT_S stSpot;
    // Any name in it: what counts is the directory.
    const PLACE_S stAny(stDirectory.strBase, stDirectory.strBelow + "/x");
    if (FindDirectory(stAny, &stSpot) != 0) {
        return;
    }
    Fd stOpen(openat(stSpot.stDirectory.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR *)> upDirectory(stOpen ? fdopendir(stOpen.Get()) : nullptr,
                                                           closedir);
    if (upDirectory == nullptr) {
        return;
    }
    const int iDirectory = stOpen.Release(); // the stream closes it
    while (const struct dirent *pstEntry = readdir(upDirectory.get())) {
        if (StartsWith(pstEntry->d_name, g_acTempPrefix) || StartsWith(pstEntry->d_name, g_acFormerPrefix)) {
            TidyOne(iDirectory, pstEntry->d_name);
        }
    }
}

} // namespace files
