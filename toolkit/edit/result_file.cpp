// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/result_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr mode_t MODE = 0644;

void Require(bool bGood, const char *pcWhat, const std::string &strPath)
{
    if (!bGood) {
        const int iError = errno;
        Fail(ClassOfErrno(iError), std::string("cannot ") + pcWhat + " the results " + EscapeText(strPath) +
                                       ": " + files::Reason(iError));
    }
}

} // namespace

ResultFile::ResultFile(const std::string &strPath)
    : m_strPath(strPath),
      m_stFile(open(strPath.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, MODE))
{
    Require(static_cast<bool>(m_stFile), "open", strPath);
    struct stat stStat = {};
    Require(fstat(m_stFile.Get(), &stStat) == 0, "look at", strPath);
    if (!S_ISREG(stStat.st_mode)) {
        FailRefused("the results " + EscapeText(strPath) +
                    " are to be a plain file, which keeps what was done");
    }
    if (flock(m_stFile.Get(), LOCK_EX | LOCK_NB) != 0) {
        Fail(ErrorClass::Busy, "another command writes to the results " + EscapeText(strPath));
    }
    char acChunk[4096];
    for (ssize_t iRead = 0; (iRead = pread(m_stFile.Get(), acChunk, sizeof(acChunk),
                                           static_cast<off_t>(m_strLines.size()))) != 0;) {
        Require(iRead > 0, "read", strPath);
        m_strLines.append(acChunk, static_cast<size_t>(iRead));
    }
    const size_t uiWhole = m_strLines.rfind('\n') + 1U; // npos: 0
    if (uiWhole != m_strLines.size()) {
        m_strLines.resize(uiWhole);
        Require(ftruncate(m_stFile.Get(), static_cast<off_t>(uiWhole)) == 0, "mend", strPath);
    }
}

void ResultFile::Append(const std::string &strLine)
{
    const int iError = files::WriteAll(m_stFile.Get(), strLine + "\n");
    errno = iError;
    Require(iError == 0 && fdatasync(m_stFile.Get()) == 0, "write", m_strPath);
}
