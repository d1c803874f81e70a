// SPDX-License-Identifier: Apache-2.0
// Why a call of the database failed, in words and for programs.
#include "db/fault.h"

#include <cerrno>

#include "files/files.h"

namespace {

thread_local db::FAULT_S g_stLast;

// What stands behind the file's name.
const char *Words(BMCHOST_DB_REASON_E enReason)
{
    switch (enReason) {
    case BMCHOST_DB_ABSENT:
        return "is not there";
    case BMCHOST_DB_LOCKED:
        return "is kept busy by another process";
    case BMCHOST_DB_DAMAGED:
        return "is damaged";
    case BMCHOST_DB_NO_RIGHTS:
        return "may not be used so";
    case BMCHOST_DB_FULL:
        return "has no room for the record";
    case BMCHOST_DB_VERSION:
        return "is not one that this release reads";
    default:
        return "cannot be used";
    }
}

bool IsFull(int iError)
{
    return iError == ENOSPC || iError == EDQUOT || iError == EFBIG;
}

bool IsRights(int iError)
{
    return iError == EACCES || iError == EPERM || iError == EROFS;
}

BMCHOST_DB_REASON_E ReasonOfErrno(int iError)
{
    return IsFull(iError) ? BMCHOST_DB_FULL : IsRights(iError) ? BMCHOST_DB_NO_RIGHTS : BMCHOST_DB_FAILED;
}

BMCHOST_DB_REASON_E ReasonOfSqlite(int iCode, int iError)
{
    switch (iCode & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return BMCHOST_DB_LOCKED;
    case SQLITE_FULL:
    case SQLITE_TOOBIG:
        return BMCHOST_DB_FULL;
    case SQLITE_READONLY:
        // Another file lies in its place: the next try opens that one.
        return iCode == SQLITE_READONLY_DBMOVED ? BMCHOST_DB_LOCKED : BMCHOST_DB_NO_RIGHTS;
    case SQLITE_PERM:
        return BMCHOST_DB_NO_RIGHTS;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_ERROR: // the table is not as it must be, for our statements are right
    case SQLITE_SCHEMA:
    case SQLITE_MISMATCH:
    case SQLITE_CONSTRAINT:
        return BMCHOST_DB_DAMAGED;
    case SQLITE_IOERR:
        if (iCode == SQLITE_IOERR_SHORT_READ || iCode == SQLITE_IOERR_CORRUPTFS) {
            return BMCHOST_DB_DAMAGED;
        }
        return ReasonOfErrno(iError);
    case SQLITE_CANTOPEN:
        return ReasonOfErrno(iError);
    default:
        return BMCHOST_DB_FAILED;
    }
}

} // namespace

namespace db {

FAULT_S MakeFault(BMCHOST_DB_REASON_E enReason, const std::string &strFile, const std::string &strCause)
{
    std::string strText = "the database " + strFile + " " + Words(enReason);
    if (!strCause.empty()) {
        strText += ": " + strCause;
    }
    return {enReason, strText};
}

FAULT_S FaultOfErrno(const std::string &strFile, int iError)
{
    return MakeFault(ReasonOfErrno(iError), strFile, files::Reason(iError));
}

FAULT_S FaultOfSqlite(const std::string &strFile, sqlite3 *pstDb, int iCode)
{
    // SQLite keeps no cause of what fails in a commit; errno is the caller's to clear.
    const int iLast = errno;
    const int iKept = pstDb == nullptr ? 0 : sqlite3_system_errno(pstDb);
    const int iError = iKept != 0 ? iKept : iLast;
    const int iKind = iCode & 0xFF;
    std::string strCause = sqlite3_errstr(iCode);
    if (iKind == SQLITE_ERROR || iKind == SQLITE_CORRUPT || iKind == SQLITE_SCHEMA) {
        strCause = pstDb == nullptr ? strCause : sqlite3_errmsg(pstDb);
    } else if ((iKind == SQLITE_IOERR || iKind == SQLITE_CANTOPEN) && iError != 0) {
        strCause = files::Reason(iError);
    }
    const BMCHOST_DB_REASON_E enReason = ReasonOfSqlite(iCode, iError);
    return MakeFault(enReason, strFile, enReason == BMCHOST_DB_LOCKED ? "" : strCause);
}

void Remember(const FAULT_S &stFault)
{
    g_stLast = stFault;
}

} // namespace db

extern "C" BMCHOST_DB_REASON_E BMCHOST_LastDbError(const char **ppcText)
{
    if (ppcText != nullptr) {
        *ppcText = g_stLast.strText.c_str();
    }
    return g_stLast.enReason;
}
