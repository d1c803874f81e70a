// SPDX-License-Identifier: Apache-2.0
// The connection: opening, noticing that other files lie there now, reading and writing records.
#include "db/connection.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <unistd.h>

#include "db/create.h"
#include "db/mapping.h"
#include "support/host.h"

namespace {

// No mapped file: one that is cut while it is mapped kills who reads it. The log is taken into the file after
// a MiB of it; the file holds every image at its largest twice.
constexpr char g_acSettings[] = "PRAGMA mmap_size=0; PRAGMA synchronous=FULL; PRAGMA cell_size_check=ON;"
                                "PRAGMA wal_autocheckpoint=256; PRAGMA max_page_count=16384";
constexpr char g_acFormerFile[] = "/var/lib/fru/db/data.mdb";

// Takes back what a statement holds, its locks first of all.
class Finish
{
  public:
    explicit Finish(sqlite3_stmt *pstStatement) : m_pstStatement(pstStatement) {}
    ~Finish()
    {
        (void)sqlite3_reset(m_pstStatement);
        (void)sqlite3_clear_bindings(m_pstStatement);
    }
    Finish(const Finish &) = delete;
    Finish &operator=(const Finish &) = delete;

  private:
    sqlite3_stmt *m_pstStatement;
};

off_t SizeOf(const std::string &strFile)
{
    struct stat stStat = {};
    return stat(strFile.c_str(), &stStat) == 0 ? stStat.st_size : 0;
}

bool IsSameFile(const struct stat &stOne, const struct stat &stOther)
{
    return stOne.st_dev == stOther.st_dev && stOne.st_ino == stOther.st_ino;
}

bool IsUnchanged(const struct stat &stOne, const struct stat &stOther)
{
    return stOne.st_size == stOther.st_size && stOne.st_mtim.tv_sec == stOther.st_mtim.tv_sec &&
           stOne.st_mtim.tv_nsec == stOther.st_mtim.tv_nsec;
}

// A name by which SQLite takes the file as it is, whatever characters its path has.
std::string FrozenName(const std::string &strFile)
{
    static constexpr char acDigits[] = "0123456789abcdef";
    std::string strName = "file:";
    for (const char cByte : strFile) {
        const auto ucByte = static_cast<unsigned char>(cByte);
        strName += {'%', acDigits[ucByte >> 4U], acDigits[ucByte & 15U]};
    }
    return strName + "?immutable=1";
}

// The path without links on its way; the file itself may be none.
std::string RealPath(const std::string &strFile)
{
    const std::string strDir = db::DirectoryOf(strFile);
    const std::unique_ptr<char, decltype(&free)> upDir(realpath(strDir.c_str(), nullptr), free);
    return upDir == nullptr ? strFile : upDir.get() + strFile.substr(strDir.size());
}

} // namespace

namespace db {

FAULT_S Connection::Fault(int iCode)
{
    FAULT_S stFault = FaultOfSqlite(m_strFile, m_pstDb, iCode);
    m_bBroken = iCode == SQLITE_READONLY_DBMOVED ||
                (stFault.enReason != BMCHOST_DB_LOCKED && stFault.enReason != BMCHOST_DB_FULL);
    return stFault;
}

FAULT_S Connection::Ask(const char *pcSql, std::string *pstrAnswer)
{
    sqlite3_stmt *pstStatement = nullptr;
    pstrAnswer->clear();
    errno = 0;
    int iCode = sqlite3_prepare_v2(m_pstDb, pcSql, -1, &pstStatement, nullptr);
    if (iCode == SQLITE_OK) {
        iCode = sqlite3_step(pstStatement);
        if (iCode == SQLITE_ROW) {
            const auto *pcText = reinterpret_cast<const char *>(sqlite3_column_text(pstStatement, 0));
            pstrAnswer->assign(pcText == nullptr ? "" : pcText);
        }
    }
    FAULT_S stFault = iCode == SQLITE_ROW || iCode == SQLITE_DONE ? FAULT_S() : Fault(iCode);
    (void)sqlite3_finalize(pstStatement);
    return stFault;
}

// What lies there is ours, of this version, keeps a log and has the table.
FAULT_S Connection::Verify()
{
    std::string strId;
    std::string strVersion;
    std::string strMode;
    std::string strSchema;
    FAULT_S stFault = Ask("PRAGMA application_id", &strId);
    if (!stFault) {
        stFault = Ask("PRAGMA user_version", &strVersion);
    }
    if (!stFault && strId != std::to_string(g_iApplicationId)) {
        return MakeFault(BMCHOST_DB_VERSION, m_strFile, "it belongs to another program");
    }
    if (!stFault && strVersion != std::to_string(g_iVersion)) {
        return MakeFault(BMCHOST_DB_VERSION, m_strFile,
                         "it has version " + strVersion + ", not " + std::to_string(g_iVersion));
    }
    if (!stFault) {
        stFault = Ask("PRAGMA journal_mode", &strMode);
    }
    if (!stFault && strMode != "wal" && sqlite3_db_readonly(m_pstDb, "main") == 0) {
        stFault = Ask("PRAGMA journal_mode=WAL", &strMode); // somebody has switched it off by hand
    }
    if (!stFault) {
        stFault = Ask("SELECT sql FROM sqlite_schema WHERE type='table' AND name='record'", &strSchema);
    }
    if (!stFault && strSchema != g_acSchema) {
        return MakeFault(BMCHOST_DB_DAMAGED, m_strFile, "its table of records is missing or another one");
    }
    return stFault;
}

FAULT_S Connection::Prepare()
{
    const struct
    {
        const char *pcSql;
        sqlite3_stmt **ppstStatement;
    } astStatements[] = {
        {"SELECT data FROM record WHERE key=?1", &m_pstGet},
        {"REPLACE INTO record VALUES(?1,?2)", &m_pstPut},
        {"DELETE FROM record WHERE key=?1", &m_pstDelete},
    };
    for (const auto &stStatement : astStatements) {
        const int iCode = sqlite3_prepare_v3(m_pstDb, stStatement.pcSql, -1, SQLITE_PREPARE_PERSISTENT,
                                             stStatement.ppstStatement, nullptr);
        if (iCode != SQLITE_OK) {
            return Fault(iCode);
        }
    }
    return {};
}

FAULT_S Connection::OpenAs(const std::string &strName, int iFlags)
{
    constexpr int iCommon = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_EXRESCODE;
    errno = 0;
    int iCode = sqlite3_open_v2(strName.c_str(), &m_pstDb, iFlags | iCommon, nullptr);
    if (iCode == SQLITE_OK) {
        // What a stranger's file brings along is never run.
        (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
        (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        // Closing touches no file: another may lie there by then, and its log would go.
        (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        iCode = sqlite3_exec(m_pstDb, g_acSettings, nullptr, nullptr, nullptr);
    }
    FAULT_S stFault = iCode == SQLITE_OK ? Verify() : Fault(iCode);
    if (!stFault) {
        stFault = Prepare();
    }
    struct stat stNow = {};
    const bool bSame = lstat(m_strFile.c_str(), &stNow) == 0 && IsSameFile(stNow, m_stFile);
    if (!stFault && !bSame) {
        stFault = MakeFault(BMCHOST_DB_LOCKED, m_strFile, ""); // being replaced: once more
    }
    if (stFault) {
        if (m_pstDb != nullptr && bSame && !m_bLogWasThere && !m_bFrozen) {
            // Our log is empty, so that nothing goes into the file, and none is left there.
            (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
        }
        Close();
    }
    return stFault;
}

FAULT_S Connection::Open()
{
    const MappingGuard stGuard;
    {
        // Nothing is open yet, so that no lock falls with this descriptor.
        files::Fd stFile;
        const int iError = files::OpenRegular(m_stPlace, O_RDONLY, files::Links::Never, &stFile, &m_stFile);
        if (iError != 0) {
            return iError == ENOENT ? MakeFault(BMCHOST_DB_ABSENT, m_strFile, "")
                                    : FaultOfErrno(m_strFile, iError);
        }
    }
    if (m_stFile.st_size == 0) { // SQLite would take it for a new one
        return MakeFault(BMCHOST_DB_DAMAGED, m_strFile, "it is empty");
    }
    const std::string strReal = RealPath(m_strFile);
    const std::string strLog = m_strFile + "-wal";
    m_bLogWasThere = SizeOf(strLog) > 0;
    m_bFrozen = false;
    FAULT_S stFault = OpenAs(strReal, SQLITE_OPEN_READWRITE);
    const bool bTelling = stFault.enReason == BMCHOST_DB_LOCKED || stFault.enReason == BMCHOST_DB_DAMAGED ||
                          stFault.enReason == BMCHOST_DB_VERSION;
    if (stFault && !bTelling && SizeOf(strLog) == 0) {
        // No log can be kept beside it (no rights, a full disk), and there is none to be read.
        const bool bRights = access(DirectoryOf(m_strFile).c_str(), W_OK) == 0;
        m_stWhyFrozen = bRights ? stFault : FaultOfErrno(m_strFile, errno);
        m_bFrozen = true;
        stFault = OpenAs(FrozenName(strReal), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    }
    if (!stFault) {
        m_stShared = {};
        (void)stat((m_strFile + "-shm").c_str(), &m_stShared);
        (void)clock_gettime(CLOCK_MONOTONIC_COARSE, &m_stTick);
        if (m_stShared.st_size != 0) {
            m_stCache.Attach(m_pstDb);
        }
        m_bBroken = false;
    }
    return stFault;
}

void Connection::Close()
{
    m_stCache.Detach();
    for (sqlite3_stmt **ppstStatement : {&m_pstGet, &m_pstPut, &m_pstDelete}) {
        (void)sqlite3_finalize(*ppstStatement);
        *ppstStatement = nullptr;
    }
    (void)sqlite3_close(m_pstDb);
    m_pstDb = nullptr;
}

void Connection::CloseTidily()
{
    if (m_pstDb != nullptr && !m_bFrozen && !m_bBroken && AreFilesTheSame()) {
        (void)sqlite3_db_config(m_pstDb, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    }
    Close();
}

bool Connection::AreFilesTheSame()
{
    struct stat stNow = {};
    if (lstat(m_strFile.c_str(), &stNow) != 0 || !IsSameFile(stNow, m_stFile) ||
        stNow.st_size < m_stFile.st_size) {
        return false;
    }
    if (!IsUnchanged(stNow, m_stFile)) {
        if (m_bFrozen) {
            return false;
        }
        // Perhaps overwritten in place: what was read before counts no longer.
        (void)sqlite3_db_release_memory(m_pstDb);
        m_stCache.Clear();
        m_stFile = stNow;
    }
    if (m_bFrozen) {
        return SizeOf(m_strFile + "-wal") == 0;
    }
    if (m_stShared.st_size == 0) {
        return true; // read without an index
    }
    // Mapped memory without a file behind it kills who reads it.
    struct stat stShared = {};
    return stat((m_strFile + "-shm").c_str(), &stShared) == 0 && IsSameFile(stShared, m_stShared) &&
           stShared.st_size >= m_stShared.st_size;
}

bool Connection::IsCurrent(Look enLook)
{
    if (m_pstDb == nullptr || m_bBroken) {
        return false;
    }
    struct timespec stTick = {};
    (void)clock_gettime(CLOCK_MONOTONIC_COARSE, &stTick);
    if (enLook == Look::OnceATick && !m_bFrozen && stTick.tv_sec == m_stTick.tv_sec &&
        stTick.tv_nsec == m_stTick.tv_nsec) {
        return true;
    }
    m_stTick = stTick;
    return AreFilesTheSame();
}

FAULT_S Connection::Ensure(Look enLook, bool bCreate)
{
    const u32 uiGeneration = host::RootGeneration();
    if (m_strFile.empty() || m_uiGeneration != uiGeneration) {
        CloseTidily();
        m_strFile.clear(); // stays empty when the root is none
        m_stPlace = host::PlaceOf(BMCHOST_DB_FILE);
        m_strFile = m_stPlace.Text();
        m_uiGeneration = uiGeneration;
    }
    if (IsCurrent(enLook)) {
        return {};
    }
    Close();
    FAULT_S stFault = Open();
    if (stFault.enReason != BMCHOST_DB_ABSENT) {
        return stFault;
    }
    const std::string strFormer = host::Resolve(g_acFormerFile);
    if (access(strFormer.c_str(), F_OK) == 0) {
        return MakeFault(BMCHOST_DB_VERSION, strFormer,
                         "an earlier release has made it; remove " + DirectoryOf(strFormer) +
                             " and provision the controller anew");
    }
    if (bCreate) {
        stFault = MayWrite();
        stFault = stFault ? stFault : CreateFile(m_stPlace);
        stFault = stFault ? stFault : Open();
    }
    return stFault;
}

// ---- records ----

FAULT_S Connection::OtherLength(size_t uiBytes, u32 uiLen) const
{
    return {BMCHOST_DB_NO_RECORD, "the record in the database " + m_strFile + " has " +
                                      std::to_string(uiBytes) + " bytes, not " + std::to_string(uiLen)};
}

FAULT_S Connection::Find(u32 uiKey, u32 uiLen, const void **ppData)
{
    const MappingGuard stGuard;
    m_stCache.Refresh();
    const std::vector<u8> *pvecKept = m_stCache.Find(uiKey);
    if (pvecKept != nullptr) {
        *ppData = pvecKept->data();
        return pvecKept->size() == uiLen ? FAULT_S() : OtherLength(pvecKept->size(), uiLen);
    }
    errno = 0;
    int iCode = sqlite3_bind_int64(m_pstGet, 1, uiKey);
    iCode = iCode == SQLITE_OK ? sqlite3_step(m_pstGet) : iCode;
    if (MappingGuard::HasLost()) {
        return Lost();
    }
    if (iCode == SQLITE_DONE) {
        return {BMCHOST_DB_NO_RECORD, "the database " + m_strFile + " has no such record"};
    }
    if (iCode != SQLITE_ROW) {
        return Fault(iCode);
    }
    *ppData = sqlite3_column_blob(m_pstGet, 0); // null for no bytes and for no memory
    const auto uiBytes = static_cast<u32>(sqlite3_column_bytes(m_pstGet, 0));
    if (*ppData == nullptr && sqlite3_errcode(m_pstDb) == SQLITE_NOMEM) {
        return Fault(SQLITE_NOMEM);
    }
    if (sqlite3_column_type(m_pstGet, 0) != SQLITE_BLOB) {
        return Fault(SQLITE_MISMATCH);
    }
    if (uiBytes != uiLen) { // a record of another length is not the one asked for
        return OtherLength(uiBytes, uiLen);
    }
    if (m_bFrozen && !AreFilesTheSame()) { // it came under a reader without a lock
        return Lost();
    }
    m_stCache.Keep(uiKey, *ppData, uiLen);
    return {};
}

FAULT_S Connection::Get(u32 uiKey, u32 uiLen, void *pData)
{
    const Finish stFinish(m_pstGet);
    const void *pFound = nullptr;
    FAULT_S stFault = Find(uiKey, uiLen, &pFound);
    if (!stFault && uiLen != 0U) {
        if (pFound == nullptr) {
            return Fault(SQLITE_NOMEM);
        }
        (void)memcpy(pData, pFound, uiLen);
    }
    return stFault;
}

// A root that is somebody else's is not written to.
FAULT_S Connection::MayWrite() const
{
    try {
        (void)host::WritePlaceOf(BMCHOST_DB_FILE);
        return {};
    } catch (const std::runtime_error &error) {
        return MakeFault(BMCHOST_DB_NO_RIGHTS, m_strFile, error.what());
    }
}

// Where no log can be kept, that may have changed by now.
FAULT_S Connection::Writable()
{
    FAULT_S stFault = MayWrite();
    if (stFault || !m_bFrozen) {
        return stFault;
    }
    Close();
    stFault = Open();
    return stFault || !m_bFrozen ? stFault : m_stWhyFrozen;
}

// Bytes that this process finds in a log may be there without being on the disk, when their writer was killed.
FAULT_S Connection::FlushLogOnce()
{
    if (!m_bLogWasThere) {
        return {};
    }
    const files::Fd stLog(open((m_strFile + "-wal").c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!stLog ? errno != ENOENT : fdatasync(stLog.Get()) != 0) {
        return FaultOfErrno(m_strFile, errno);
    }
    m_bLogWasThere = false;
    return {};
}

// A statement of one transaction: done when it returns, or nothing is.
FAULT_S Connection::Run(sqlite3_stmt *pstStatement)
{
    errno = 0;
    const int iCode = sqlite3_step(pstStatement);
    if (iCode == SQLITE_DONE) {
        return {};
    }
    FAULT_S stFault = Fault(iCode);
    if (iCode == SQLITE_FULL && SizeOf(m_strFile) >= off_t{15000} * 4096) {
        stFault.strText += " or its largest size, 64 MiB, is reached";
    }
    return stFault;
}

FAULT_S Connection::Put(u32 uiKey, u32 uiLen, const void *pData)
{
    {
        const Finish stFinish(m_pstGet);
        const void *pFound = nullptr;
        FAULT_S stFault = Find(uiKey, uiLen, &pFound);
        if (!stFault && (uiLen == 0U || (pFound != nullptr && memcmp(pFound, pData, uiLen) == 0))) {
            return FlushLogOnce();
        }
        if (stFault && stFault.enReason != BMCHOST_DB_NO_RECORD) {
            return stFault;
        }
    }
    FAULT_S stFault = Writable();
    if (stFault) {
        return stFault;
    }
    const Finish stFinish(m_pstPut);
    int iCode = sqlite3_bind_int64(m_pstPut, 1, uiKey);
    if (iCode == SQLITE_OK) {
        iCode = uiLen == 0U ? sqlite3_bind_zeroblob(m_pstPut, 2, 0)
                            : sqlite3_bind_blob64(m_pstPut, 2, pData, uiLen, SQLITE_STATIC);
    }
    return iCode == SQLITE_OK ? Run(m_pstPut) : Fault(iCode);
}

FAULT_S Connection::Delete(u32 uiKey)
{
    FAULT_S stFault = Writable();
    if (stFault) {
        return stFault;
    }
    const Finish stFinish(m_pstDelete);
    const int iCode = sqlite3_bind_int64(m_pstDelete, 1, uiKey);
    stFault = iCode == SQLITE_OK ? Run(m_pstDelete) : Fault(iCode);
    if (!stFault && sqlite3_changes(m_pstDb) == 0) {
        return {BMCHOST_DB_NO_RECORD, "the database " + m_strFile + " has no such record"};
    }
    return stFault;
}

FAULT_S Connection::CheckPages()
{
    const MappingGuard stGuard;
    std::string strAnswer;
    (void)sqlite3_db_release_memory(m_pstDb);
    FAULT_S stFault = Ask("PRAGMA quick_check(1)", &strAnswer);
    if (!stFault && strAnswer != "ok") {
        m_bBroken = true;
        stFault = MakeFault(BMCHOST_DB_DAMAGED, m_strFile, strAnswer);
    }
    return stFault;
}

} // namespace db
