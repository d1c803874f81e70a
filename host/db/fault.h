// SPDX-License-Identifier: Apache-2.0
// Why a call of the database failed.
#ifndef BMCHOST_DB_FAULT_H
#define BMCHOST_DB_FAULT_H

#include <string>

#include <sqlite3.h>

#include "bmcfru_host.h"

namespace db {

struct FAULT_S
{
    BMCHOST_DB_REASON_E enReason = BMCHOST_DB_NO_FAULT;
    std::string strText; // a whole clause that names the file

    explicit operator bool() const
    {
        return enReason != BMCHOST_DB_NO_FAULT;
    }
};

// One clause: what is the matter with the file, and its cause when that is not empty.
FAULT_S MakeFault(BMCHOST_DB_REASON_E enReason, const std::string &strFile, const std::string &strCause);

// The same from an errno value.
FAULT_S FaultOfErrno(const std::string &strFile, int iError);

// The same from SQLite's extended result code; pstDb, which has the details, may be null. errno as the failed
// call left it, cleared before.
FAULT_S FaultOfSqlite(const std::string &strFile, sqlite3 *pstDb, int iCode);

// What BMCHOST_LastDbError() tells this thread from now on.
void Remember(const FAULT_S &stFault);

} // namespace db

#endif
