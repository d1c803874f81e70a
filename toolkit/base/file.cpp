// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/file.h"

#include <cerrno>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

void Require(int iError, const char *pcWhat, const files::PLACE_S &stPlace)
{
    if (iError != 0) {
        Fail(std::string("cannot ") + pcWhat + " " + EscapeText(stPlace.Text()) + ": " +
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

} // namespace

std::vector<u8> ReadFileBytes(const files::PLACE_S &stPlace)
{
    std::string strContent;
    const int iError = files::ReadAll(stPlace, IMAGE_FILE_MAX, &strContent);
    if (iError == EFBIG) {
        Fail("cannot read " + EscapeText(stPlace.Text()) + ": larger than 1 MiB, which no FRU image is");
    }
    Require(iError == EISDIR ? EINVAL : iError, "read", stPlace); // whatever it is, it is no file
    return {strContent.begin(), strContent.end()};
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
    MakeParentDirectory(stPlace);
    files::NewFile stNew;
    Require(stNew.Open(stPlace), "write", stPlace);
    Require(stNew.Write({reinterpret_cast<const char *>(vecBytes.data()), vecBytes.size()}), "write",
            stPlace);
    if (fnCheck) {
        const std::string strDirectory = DirectoryOf(stPlace).Text();
        fnCheck((strDirectory.empty() ? "/" : strDirectory + "/") + stNew.TempName());
    }
    Require(stNew.Commit(), "write", stPlace);
}
