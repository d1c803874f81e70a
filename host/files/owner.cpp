// SPDX-License-Identifier: Apache-2.0
// Whose files are.
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "files/directory.h"

namespace files {

void GiveToOwnerOf(const std::string &strBase, const Fd &stDirectory, const Fd &stFile)
{
    struct stat stStat;
    if (geteuid() != 0U || strBase.empty()) {
        return;
    }
    const bool bDirectory = fstat(stDirectory.Get(), &stStat) == 0 && stStat.st_uid != 0U;
    if (bDirectory || (stat(strBase.c_str(), &stStat) == 0 && stStat.st_uid != 0U)) {
        (void)!fchown(stFile.Get(), stStat.st_uid, stStat.st_gid);
    }
}

namespace {

// A directory that no link leads to, open for reading.
int OpenWithoutLinks(const PLACE_S &stPlace, Fd *pstDirectory)
{
    constexpr int iFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    std::vector<std::string> vecParts;
    const int iError = Split(stPlace.strBelow, &vecParts);
    if (iError != 0 || stPlace.strBase.empty()) {
        return iError != 0 ? iError : EINVAL;
    }
    *pstDirectory = Fd(open(stPlace.strBase.c_str(), iFlags));
    for (size_t i = 0; i < vecParts.size() && *pstDirectory; ++i) {
        *pstDirectory = Fd(openat(pstDirectory->Get(), vecParts[i].c_str(), iFlags | O_NOFOLLOW));
    }
    return *pstDirectory ? 0 : errno == ENOTDIR ? ELOOP : errno;
}

int HandOverOne(int iDirectory, const char *pcName, uid_t uiUser, gid_t uiGroup)
{
    struct stat stStat;
    const Fd stFile(openat(iDirectory, pcName, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!stFile || fstat(stFile.Get(), &stStat) != 0) {
        return errno == ENOENT ? 0 : errno; // gone meanwhile
    }
    if (!S_ISREG(stStat.st_mode) || stStat.st_uid != 0U || stStat.st_nlink != 1U) {
        return 0;
    }
    return fchownat(stFile.Get(), "", uiUser, uiGroup, AT_EMPTY_PATH) == 0 ? 0 : errno;
}

} // namespace

int HandOver(const PLACE_S &stDirectory, uid_t uiUser, gid_t uiGroup)
{
    Fd stOpen;
    struct stat stStat;
    int iError = OpenWithoutLinks(stDirectory, &stOpen);
    if (iError != 0 || fstat(stOpen.Get(), &stStat) != 0) {
        return iError != 0 ? iError : errno;
    }
    if (stStat.st_uid == uiUser) {
        return 0;
    }
    if (stStat.st_uid != 0U) {
        return EPERM;
    }
    const Fd stKept(fcntl(stOpen.Get(), F_DUPFD_CLOEXEC, 0));
    const std::unique_ptr<DIR, int (*)(DIR *)> upDirectory(fdopendir(stOpen.Get()), closedir);
    if (!stKept || upDirectory == nullptr) {
        return errno;
    }
    (void)stOpen.Release(); // the stream closes it
    while (const struct dirent *pstEntry = readdir(upDirectory.get())) {
        iError = iError == 0 ? HandOverOne(stKept.Get(), pstEntry->d_name, uiUser, uiGroup) : iError;
    }
    // Last: while it is root's, nobody else can have laid something in it.
    return iError != 0 ? iError : fchown(stKept.Get(), uiUser, uiGroup) == 0 ? 0 : errno;
}

} // namespace files
