// SPDX-License-Identifier: Apache-2.0
// A new database file takes its name when it is whole and on the disk.
#include "db/create.h"

#include <cerrno>
#include <memory>
#include <sys/stat.h>

namespace {

constexpr char g_acLock[] = BMCHOST_LOCK_DIR "/fru.db.lock"; // of those who make it

// The bytes of an empty database.
std::string EmptyDatabase()
{
    sqlite3 *pstDb = nullptr;
    std::string strBytes;
    const std::string strSql = "PRAGMA page_size=4096; PRAGMA auto_vacuum=NONE; PRAGMA application_id=" +
                               std::to_string(db::g_iApplicationId) +
                               "; PRAGMA user_version=" + std::to_string(db::g_iVersion) + "; " +
                               db::g_acSchema;
    if (sqlite3_open(":memory:", &pstDb) == SQLITE_OK &&
        sqlite3_exec(pstDb, strSql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
        sqlite3_int64 iSize = 0;
        const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> upBytes(
            sqlite3_serialize(pstDb, "main", &iSize, 0), sqlite3_free);
        if (upBytes != nullptr && iSize > 100) {
            strBytes.assign(reinterpret_cast<const char *>(upBytes.get()), static_cast<size_t>(iSize));
            strBytes[18] = strBytes[19] = 2; // it keeps a write-ahead log
        }
    }
    (void)sqlite3_close(pstDb);
    return strBytes;
}

} // namespace

namespace db {

std::string DirectoryOf(const std::string &strPath)
{
    return strPath.substr(0, strPath.rfind('/'));
}

FAULT_S CreateFile(const files::PLACE_S &stPlace)
{
    const std::string strFile = stPlace.Text();
    const files::PLACE_S stDirectory(stPlace.strBase, DirectoryOf(stPlace.strBelow));
    int iError = files::MakeDirectories(stDirectory);
    if (iError != 0) {
        return FaultOfErrno(strFile, iError);
    }
    // Processes that all find nothing make one file.
    files::LockFile stLock;
    iError = files::MakeDirectories(files::PLACE_S(stPlace.strBase, BMCHOST_LOCK_DIR));
    iError = iError == 0 ? stLock.Take(files::PLACE_S(stPlace.strBase, g_acLock), 0U) : iError;
    if (iError != 0) {
        return iError == ETIMEDOUT ? MakeFault(BMCHOST_DB_LOCKED, strFile, "")
                                   : FaultOfErrno(strFile, iError);
    }
    struct stat stStat = {};
    if (lstat(strFile.c_str(), &stStat) == 0) {
        return {};
    }
    // Nobody may find a log of a file that is no more.
    for (const char *pcEnd : {"-wal", "-shm", "-journal"}) {
        (void)files::Remove(files::PLACE_S(stPlace.strBase, stPlace.strBelow + pcEnd));
    }
    files::Tidy(stDirectory);
    const std::string strBytes = EmptyDatabase();
    iError = strBytes.empty() ? ENOMEM : files::Replace(stPlace, strBytes, 0644, files::Links::Never);
    return iError == 0 ? FAULT_S() : FaultOfErrno(strFile, iError);
}

} // namespace db
