// SPDX-License-Identifier: Apache-2.0
// This process's one connection to the database file.
//
// SQLite's locks belong to the process and fall with any descriptor of the file that it closes: nobody else
// here may open the file, and there is never a second connection. Everything is called with mtxDb held.
#ifndef BMCHOST_DB_CONNECTION_H
#define BMCHOST_DB_CONNECTION_H

#include <sys/stat.h>

#include "db/fault.h"
#include "db/record_cache.h"
#include "files/files.h"

namespace db {

// How thoroughly an open connection is compared with the files that lie there now.
enum class Look
{
    OnceATick, // of the coarse clock, a few milliseconds: looking costs more than reading
    Now
};

class Connection
{
  public:
    // Makes sure that the file that a caller means now is open. Without bCreate a missing one is
    // BMCHOST_DB_ABSENT.
    FAULT_S Ensure(Look enLook, bool bCreate);
    FAULT_S Get(u32 uiKey, u32 uiLen, void *pData);
    FAULT_S Put(u32 uiKey, u32 uiLen, const void *pData);
    FAULT_S Delete(u32 uiKey);
    // Reads all pages.
    FAULT_S CheckPages();
    // A file was changed under a reader: what it has found is nothing, and the next try opens anew.
    FAULT_S Lost()
    {
        m_bBroken = true;
        return MakeFault(BMCHOST_DB_LOCKED, m_strFile, "");
    }
    // Closes for good: the last process to do so leaves one file, without a log beside it.
    void CloseTidily();

  private:
    FAULT_S Open();
    FAULT_S OpenAs(const std::string &strName, int iFlags);
    FAULT_S Verify();
    FAULT_S Prepare();
    void Close();
    bool IsCurrent(Look enLook);
    bool AreFilesTheSame();
    // The first column of the first row, as text.
    FAULT_S Ask(const char *pcSql, std::string *pstrAnswer);
    // The record's bytes, which the cache or m_pstGet holds until that is reset.
    FAULT_S Find(u32 uiKey, u32 uiLen, const void **ppData);
    FAULT_S OtherLength(size_t uiBytes, u32 uiLen) const;
    FAULT_S Run(sqlite3_stmt *pstStatement);
    FAULT_S MayWrite() const;
    FAULT_S Writable();
    FAULT_S FlushLogOnce();
    FAULT_S Fault(int iCode);

    sqlite3 *m_pstDb = nullptr;
    sqlite3_stmt *m_pstGet = nullptr;
    sqlite3_stmt *m_pstPut = nullptr;
    sqlite3_stmt *m_pstDelete = nullptr;
    RecordCache m_stCache;
    files::PLACE_S m_stPlace = ""; // below the root of m_uiGeneration
    std::string m_strFile;         // the same as a path
    u32 m_uiGeneration = 0;        // of the root
    struct stat m_stFile = {};     // as it was when it was last looked at
    struct stat m_stShared = {};   // the log's index, which is mapped
    struct timespec m_stTick = {}; // when that was
    bool m_bFrozen = false;        // no log can be kept here: the file is read as it is, without locks
    bool m_bLogWasThere = false;   // a log that others wrote, perhaps not on the disk yet
    bool m_bBroken = false;        // the next call opens anew
    FAULT_S m_stWhyFrozen;
};

} // namespace db

#endif
