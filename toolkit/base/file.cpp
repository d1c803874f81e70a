// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/file.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

void Require(int iError, const char *pcWhat, const files::PLACE_S &stPlace)
{
    if (iError != 0) {
        Fail(ClassOfErrno(iError), std::string("cannot ") + pcWhat + " " + EscapeText(stPlace.Text()) + ": " +
                                       files::Reason(iError));
    }
}

files::PLACE_S DirectoryOf(const files::PLACE_S &stPlace)
{
    const std::string &strPath = stPlace.strBelow;
    const size_t uiSlash = strPath.rfind('/');
    const std::string strNone = stPlace.strBase.empty() ? "." : "";
    return {stPlace.strBase, uiSlash == std::string::npos ? strNone : strPath.substr(0U, uiSlash)};
}

// Into what is there.
void WriteStream(const files::PLACE_S &stPlace, std::string_view svBytes)
{
    const files::Fd stStream(open(stPlace.Text().c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    struct stat stStat = {};
    int iError = stStream && fstat(stStream.Get(), &stStat) == 0 ? 0 : errno;
    if (iError == 0) {
        iError = S_ISFIFO(stStat.st_mode) || S_ISCHR(stStat.st_mode)
                     ? files::WriteAll(stStream.Get(), svBytes)
                     : EINVAL; // it was one a moment ago
    }
    Require(iError, "write into", stPlace);
}

} // namespace

PathKind KindOf(const files::PLACE_S &stPlace)
{
    struct stat stStat = {};
    const int iError = files::Status(stPlace, &stStat);
    if (iError == ENOENT || iError == ENOTDIR) {
        return PathKind::Absent;
    }
    Require(iError, "look at", stPlace);
    return S_ISREG(stStat.st_mode)                               ? PathKind::File
           : S_ISFIFO(stStat.st_mode) || S_ISCHR(stStat.st_mode) ? PathKind::Stream
                                                                 : PathKind::Other;
}

std::vector<u8> ReadFileBytes(const files::PLACE_S &stPlace)
{
    std::string strContent;
    const int iError = files::ReadAll(stPlace, IMAGE_FILE_MAX, &strContent);
    if (iError == EFBIG) {
        FailRefused("cannot read " + EscapeText(stPlace.Text()) +
                    ": larger than 1 MiB, which no FRU image is");
    }
    Require(iError == EISDIR ? EINVAL : iError, "read", stPlace); // whatever it is, it is no file
    return {strContent.begin(), strContent.end()};
}

bool IsStream(const std::string &strPath)
{
    struct stat stStat = {};
    if (strPath == STANDARD_INPUT) {
        return true;
    }
    const bool bThere = stat(strPath.c_str(), &stStat) == 0;
    const bool bDescriptor = strPath == "/dev/stdin" || strPath.rfind("/dev/fd/", 0) == 0 ||
                             strPath.rfind("/proc/self/fd/", 0) == 0;
    return bThere && !S_ISDIR(stStat.st_mode) && !S_ISBLK(stStat.st_mode) &&
           (bDescriptor || !S_ISREG(stStat.st_mode));
}

std::string NamedFileTitle(const std::string &strPath)
{
    return strPath == STANDARD_INPUT ? "standard input" : EscapeText(strPath);
}

namespace {

std::vector<u8> DrainStream(const std::string &strPath)
{
    const bool bStandard = strPath == STANDARD_INPUT;
    const files::Fd stStream(bStandard ? dup(STDIN_FILENO)
                                       : open(strPath.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
    Require(stStream ? 0 : errno, "read", NamedFileTitle(strPath));
    if (isatty(stStream.Get()) == 1) {
        FailUsage(NamedFileTitle(strPath) +
                  " is a terminal, which gives no such bytes; accepted: a file, or a pipe in front of -");
    }
    std::vector<u8> vecBytes;
    u8 aucChunk[4096];
    while (vecBytes.size() <= IMAGE_FILE_MAX) {
        const ssize_t iRead = read(stStream.Get(), aucChunk, sizeof(aucChunk));
        if (iRead < 0 && errno == EINTR) {
            continue;
        }
        Require(iRead < 0 ? errno : 0, "read", NamedFileTitle(strPath));
        if (iRead == 0) {
            return vecBytes;
        }
        vecBytes.insert(vecBytes.end(), aucChunk, aucChunk + iRead);
    }
    FailRefused("cannot read " + NamedFileTitle(strPath) + ": larger than 1 MiB, which no FRU image is");
}

} // namespace

std::vector<u8> ReadNamedFile(const std::string &strPath)
{
    static std::map<std::string, std::vector<u8>> mapStreams;
    const auto itStream = mapStreams.find(strPath);
    if (itStream != mapStreams.end()) {
        return itStream->second;
    }
    return IsStream(strPath) ? mapStreams.emplace(strPath, DrainStream(strPath)).first->second
                             : ReadFileBytes(strPath);
}

void MakeParentDirectory(const files::PLACE_S &stPlace)
{
    const files::PLACE_S stDirectory = DirectoryOf(stPlace);
    if (!stDirectory.Text().empty()) {
        Require(files::MakeDirectories(stDirectory), "create the directory", stDirectory);
    }
}

void WriteFileBytes(const files::PLACE_S &stPlace, const std::vector<u8> &vecBytes,
                    const std::function<void(const std::string &strNew)> &fnCheck)
{
    const std::string_view svBytes(reinterpret_cast<const char *>(vecBytes.data()), vecBytes.size());
    MakeParentDirectory(stPlace);
    if (stPlace.strBase.empty() && KindOf(stPlace) == PathKind::Stream) {
        WriteStream(stPlace, svBytes);
        return;
    }
    files::NewFile stNew;
    Require(stNew.Open(stPlace), "write", stPlace);
    Require(stNew.Write(svBytes), "write", stPlace);
    if (fnCheck) {
        const std::string strDirectory = DirectoryOf(stPlace).Text();
        fnCheck((strDirectory.empty() ? "/" : strDirectory + "/") + stNew.TempName());
    }
    Require(stNew.Commit(), "write", stPlace);
}
