// SPDX-License-Identifier: Apache-2.0
// Journals below the root: one line for each entry, two files of limited length.
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "support/host.h"

namespace host {

namespace {

std::string DirectoryOf(const std::string &strPath)
{
    return strPath.substr(0U, strPath.rfind('/'));
}

std::string NameOf(const std::string &strPath)
{
    return strPath.substr(strPath.rfind('/') + 1U);
}

// With the journal's lock held; an errno value.
int Append(const files::PLACE_S &stPlace, std::string strLine)
{
    files::Fd stFile;
    struct stat stStat;
    int iError =
        files::OpenRegular(stPlace, O_RDWR | O_CREAT | O_APPEND, files::Links::Never, &stFile, &stStat);
    if (iError != 0) {
        return iError;
    }
    const u32 uiRoom = BMCHOST_JOURNAL_MAX - static_cast<u32>(strLine.size());
    if (stStat.st_size > static_cast<off_t>(uiRoom)) {
        iError = files::Rename(stPlace, NameOf(stPlace.strBelow) + BMCHOST_JOURNAL_FORMER);
        if (iError == 0) {
            iError = files::OpenRegular(stPlace, O_RDWR | O_CREAT | O_APPEND, files::Links::Never, &stFile,
                                        &stStat);
        }
        if (iError != 0) {
            return iError;
        }
    }
    // A writer that died in the middle of its line must not spoil ours.
    char cLast = '\n';
    if (stStat.st_size > 0 && pread(stFile.Get(), &cLast, 1, stStat.st_size - 1) == 1 && cLast != '\n') {
        strLine.insert(0, "\n");
    }
    iError = files::WriteAll(stFile.Get(), strLine);
    if (iError != 0) {
        (void)!ftruncate(stFile.Get(), stStat.st_size); // whole or not at all
    }
    return iError;
}

} // namespace

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

u32 AppendToJournal(const char *pcJournal, const std::string &strLine)
{
    const files::PLACE_S stPlace = WritePlaceOf(pcJournal);
    const std::string strLock = BMCHOST_LOCK_DIR "/" + NameOf(stPlace.strBelow) + ".lock";
    int iError = strLine.size() < BMCHOST_JOURNAL_MAX ? 0 : EFBIG;
    if (iError == 0) {
        iError = files::MakeDirectories({stPlace.strBase, DirectoryOf(stPlace.strBelow)});
    }
    if (iError == 0) {
        iError = files::MakeDirectories({stPlace.strBase, BMCHOST_LOCK_DIR});
    }
    {
        files::LockFile stLock;
        iError = iError == 0 ? stLock.Take({stPlace.strBase, strLock}, g_uiLockPatienceMs) : iError;
        iError = iError == 0 ? Append(stPlace, strLine + "\n") : iError;
    }
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "%s: %s", stPlace.Text().c_str(), files::Reason(iError).c_str());
    }
    return iError == 0 ? 0U : g_uiFailed;
}

} // namespace host
