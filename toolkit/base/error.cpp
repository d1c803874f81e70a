// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/error.h"

#include <cerrno>

std::vector<std::string> Error::Accepted() const
{
    if (!m_vecAccepted.empty()) {
        return m_vecAccepted;
    }
    static const std::string MARK = "accepted: ";
    const std::string strLine = what();
    const size_t uiMark = strLine.find(MARK);
    if (uiMark == std::string::npos) {
        return {};
    }
    const size_t uiFirst = uiMark + MARK.size();
    return {strLine.substr(uiFirst, strLine.find("; ", uiFirst) - uiFirst)};
}

ErrorClass ClassOfErrno(int iError)
{
    switch (iError) {
    case EACCES:
    case EPERM:
    case EROFS:
    case ELOOP:  // somebody else's link
    case EMLINK: // somebody else's second name
        return ErrorClass::NotPermitted;
    case ENOSPC:
    case EDQUOT:
        return ErrorClass::DiskFull;
    case ENOENT:
        return ErrorClass::NotFound;
    case ETIMEDOUT:
    case EBUSY:
    case EADDRINUSE:
        return ErrorClass::Busy;
    case EINVAL: // no regular file
    case EISDIR:
    case ENOTDIR:
    case EFBIG:
        return ErrorClass::Refused;
    default:
        return ErrorClass::Failed;
    }
}

const char *ErrorWord(ErrorClass enClass)
{
    static const char *const WORDS[] = {"failed",  "usage", "refused",       "not-found", "no-answer",
                                        "damaged", "busy",  "not-permitted", "disk-full", "half-written"};
    return WORDS[static_cast<size_t>(enClass)];
}
