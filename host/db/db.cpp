// The database: LMDB in the root, one environment for each process.
//
// LMDB's own lock file stays off. Its mutexes outlive a killed owner only where the kernel's robust lists
// work (not under user-mode emulation), and its reader slots leak with killed readers. flock(2) on the
// data's directory does the same work: writers alone, readers together, and the kernel drops the lock with
// its process. What LMDB gives is the copy-on-write file itself: until a commit has put its one meta page
// down, nobody sees a byte of it.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <lmdb.h>
#include <pthread.h>
#include <sys/file.h>
#include <unistd.h>

#include "bmc_db.h"
#include "support/host.h"

namespace {

// Room for every image at its largest (256 x 64 KiB) with its copy; small enough for a 32-bit address space.
constexpr size_t g_uiMapSize = size_t{64} << 20U;
constexpr uint64_t g_uiGrowPages = 256; // the file grows by so much at a time
// No second sync for the meta page: after a power cut the last write may be missing, nothing more.
constexpr unsigned g_uiEnvFlags = MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOTLS | MDB_NOMETASYNC;

// This process's open database; guarded by mtxDb. Its address is the handle.
struct DB_S
{
    MDB_env *pstEnv;
    MDB_dbi uiDbi;
    int iLockFd;
    pid_t iPid;       // a child of fork() opens its own
    u32 uiGeneration; // of the root
    dev_t uiDevice;   // the data file's identity: somebody may have laid another there
    ino_t uiInode;
    bool bBroken; // LMDB refuses further work on this environment
};
DB_S g_stDb = {nullptr, 0, -1, 0, 0, 0, 0, false};

void CloseDb()
{
    if (g_stDb.pstEnv != nullptr) {
        mdb_env_close(g_stDb.pstEnv);
    }
    if (g_stDb.iLockFd >= 0) {
        (void)close(g_stDb.iLockFd);
    }
    g_stDb = {nullptr, 0, -1, 0, 0, 0, 0, false};
}

// A child must drop its copy of the parent's lock descriptor at once: as long as it is open, a lock that the
// parent takes would outlive the parent.
void InChild()
{
    if (g_stDb.iLockFd >= 0) {
        (void)close(g_stDb.iLockFd);
        g_stDb.iLockFd = -1;
    }
}

__attribute__((constructor)) void RegisterForkHandler()
{
    (void)pthread_atfork(nullptr, nullptr, InChild);
}

// Bytes that the file must have for LMDB's next uiNewPages pages, those in use included.
uint64_t NeededBytes(MDB_env *pstEnv, uint64_t uiNewPages)
{
    MDB_envinfo stInfo = {};
    MDB_stat stStat = {};
    (void)mdb_env_info(pstEnv, &stInfo); // these fail for null pointers only
    (void)mdb_env_stat(pstEnv, &stStat);
    return std::min<uint64_t>((stInfo.me_last_pgno + 1U + uiNewPages) * stStat.ms_psize, g_uiMapSize);
}

// The file's length; negative with errno set.
off_t FileBytes(MDB_env *pstEnv)
{
    mdb_filehandle_t iFd = -1;
    struct stat stStat = {};
    return mdb_env_get_fd(pstEnv, &iFd) == MDB_SUCCESS && fstat(iFd, &stStat) == 0 ? stStat.st_size : -1;
}

// A page in use that lies beyond the file's end would be a bus error when it is read. LMDB itself may leave
// the file shorter than its count of pages, so every put lengthens it first; what is short then has been cut.
int CheckWhole(MDB_env *pstEnv)
{
    const off_t iBytes = FileBytes(pstEnv);
    if (iBytes < 0) {
        return errno;
    }
    return static_cast<uint64_t>(iBytes) >= NeededBytes(pstEnv, 0) ? MDB_SUCCESS : MDB_CORRUPTED;
}

int Lengthen(MDB_env *pstEnv, u32 uiRecordLen)
{
    // The record's own pages, and more than a transaction's path through two trees can take. The new end
    // is a hole.
    const uint64_t uiPages = uiRecordLen / 4096U + 1U + 128U;
    const off_t iBytes = FileBytes(pstEnv);
    if (iBytes < 0) {
        return errno;
    }
    if (static_cast<uint64_t>(iBytes) >= NeededBytes(pstEnv, uiPages)) {
        return MDB_SUCCESS;
    }
    mdb_filehandle_t iFd = -1;
    const off_t iNew = static_cast<off_t>(NeededBytes(pstEnv, uiPages + g_uiGrowPages));
    return mdb_env_get_fd(pstEnv, &iFd) == MDB_SUCCESS && ftruncate(iFd, iNew) == 0 ? MDB_SUCCESS : errno;
}

// An LMDB code, 0 for success.
int OpenEnvironment(const std::string &strFile, MDB_env **ppstEnv, MDB_dbi *puiDbi)
{
    MDB_env *pstEnv = nullptr;
    MDB_txn *pstTxn = nullptr;
    int iRet = mdb_env_create(&pstEnv);
    if (iRet != MDB_SUCCESS) {
        return iRet;
    }
    iRet = mdb_env_set_mapsize(pstEnv, g_uiMapSize);
    if (iRet == MDB_SUCCESS) {
        iRet = mdb_env_open(pstEnv, strFile.c_str(), g_uiEnvFlags, 0644);
    }
    if (iRet == MDB_SUCCESS) {
        iRet = CheckWhole(pstEnv);
    }
    if (iRet == MDB_SUCCESS) {
        iRet = mdb_txn_begin(pstEnv, nullptr, 0, &pstTxn);
    }
    if (iRet == MDB_SUCCESS) {
        iRet = mdb_dbi_open(pstTxn, nullptr, MDB_INTEGERKEY | MDB_CREATE, puiDbi);
        if (iRet == MDB_SUCCESS) {
            iRet = mdb_txn_commit(pstTxn);
        } else {
            mdb_txn_abort(pstTxn);
        }
    }
    if (iRet != MDB_SUCCESS) {
        mdb_env_close(pstEnv);
        return iRet;
    }
    *ppstEnv = pstEnv;
    return MDB_SUCCESS;
}

// A new data file is finished under another name first: a process killed meanwhile leaves no half of one.
int CreateDataFile(const std::string &strFile)
{
    const std::string strTemp = strFile + ".new";
    MDB_env *pstEnv = nullptr;
    MDB_dbi uiDbi = 0;
    if (unlink(strTemp.c_str()) != 0 && errno != ENOENT) {
        return errno;
    }
    const int iRet = OpenEnvironment(strTemp, &pstEnv, &uiDbi);
    if (iRet != MDB_SUCCESS) {
        return iRet;
    }
    mdb_env_close(pstEnv);
    return rename(strTemp.c_str(), strFile.c_str()) == 0 ? MDB_SUCCESS : errno;
}

// With mtxDb held and everything closed.
bool OpenDb()
{
    const std::string strDir = host::Resolve(BMCHOST_DB_DIR);
    const std::string strFile = strDir + "/data.mdb";
    const int iError = host::MakeDirs(strDir);
    host::FD fdLock = iError == 0 ? host::OpenFile(strDir, O_RDONLY | O_DIRECTORY) : host::FD();
    if (!fdLock) {
        HOST_LOG(BMC_DIAG_ERROR, "opening database %s: %s", strDir.c_str(),
                 host::ErrText(iError == 0 ? errno : iError));
        return false;
    }
    const u32 uiGeneration = host::RootGeneration();
    int iRet = MDB_SUCCESS;
    struct stat stStat = {};
    MDB_env *pstEnv = nullptr;
    MDB_dbi uiDbi = 0;
    {
        const host::FILE_LOCK lock(fdLock.Get(), LOCK_EX);
        iRet = lock ? MDB_SUCCESS : errno;
        if (iRet == MDB_SUCCESS && access(strFile.c_str(), F_OK) != 0) {
            iRet = errno == ENOENT ? CreateDataFile(strFile) : errno;
        }
        if (iRet == MDB_SUCCESS) {
            iRet = OpenEnvironment(strFile, &pstEnv, &uiDbi);
        }
        if (iRet == MDB_SUCCESS && stat(strFile.c_str(), &stStat) != 0) {
            iRet = errno;
        }
    }
    if (iRet != MDB_SUCCESS) {
        if (pstEnv != nullptr) {
            mdb_env_close(pstEnv);
        }
        HOST_LOG(BMC_DIAG_ERROR, "opening database %s: %s", strFile.c_str(), mdb_strerror(iRet));
        return false;
    }
    g_stDb = {pstEnv, uiDbi, fdLock.Release(), getpid(), uiGeneration, stStat.st_dev, stStat.st_ino, false};
    return true;
}

// With mtxDb held: true when the open database is the one that a caller means now.
bool IsCurrent()
{
    if (g_stDb.pstEnv == nullptr || g_stDb.bBroken || g_stDb.iPid != getpid() ||
        g_stDb.uiGeneration != host::RootGeneration()) {
        return false;
    }
    struct stat stStat;
    const std::string strFile = host::Resolve(BMCHOST_DB_DIR "/data.mdb");
    return stat(strFile.c_str(), &stStat) == 0 && stStat.st_dev == g_stDb.uiDevice &&
           stStat.st_ino == g_stDb.uiInode;
}

bool EnsureOpen()
{
    if (IsCurrent()) {
        return true;
    }
    CloseDb();
    return OpenDb();
}

enum class ACCESS_E
{
    READ,
    PUT,
    DELETE
};

// Runs fnWork in a transaction, alone for writing, and commits it. An LMDB code.
template <typename WORK> int InTransaction(ACCESS_E enAccess, u32 uiRecordLen, WORK fnWork)
{
    const bool bWrite = enAccess != ACCESS_E::READ;
    const host::FILE_LOCK lock(g_stDb.iLockFd, bWrite ? LOCK_EX : LOCK_SH);
    if (!lock) {
        return errno;
    }
    int iRet = bWrite ? Lengthen(g_stDb.pstEnv, uiRecordLen) : MDB_SUCCESS;
    if (iRet != MDB_SUCCESS) {
        return iRet;
    }
    MDB_txn *pstTxn = nullptr;
    iRet = mdb_txn_begin(g_stDb.pstEnv, nullptr, bWrite ? 0U : static_cast<unsigned>(MDB_RDONLY), &pstTxn);
    if (iRet != MDB_SUCCESS) {
        g_stDb.bBroken = true;
        return iRet;
    }
    iRet = fnWork(pstTxn);
    if (iRet != MDB_SUCCESS || !bWrite) {
        mdb_txn_abort(pstTxn);
        return iRet;
    }
    iRet = mdb_txn_commit(pstTxn);
    g_stDb.bBroken = iRet != MDB_SUCCESS; // after a failed commit the next call opens anew
    return iRet;
}

// What all three calls do: check the handle, lock, open what must be opened anew.
template <typename WORK>
u32 WithDb(const void *pDb, ACCESS_E enAccess, u32 uiKey, u32 uiRecordLen, WORK fnWork)
{
    static constexpr const char *apcWhat[] = {"reading", "writing", "deleting"};
    return host::Shield(host::g_uiFailed, [&] {
        if (pDb != &g_stDb) {
            return host::g_uiFailed;
        }
        const std::lock_guard<std::mutex> lock(host::Locks().mtxDb);
        if (!EnsureOpen()) {
            return host::g_uiFailed;
        }
        const int iRet = InTransaction(enAccess, uiRecordLen, fnWork);
        if (iRet != MDB_SUCCESS && iRet != MDB_NOTFOUND) {
            HOST_LOG(BMC_DIAG_ERROR, "%s record %#x: %s", apcWhat[static_cast<size_t>(enAccess)], uiKey,
                     mdb_strerror(iRet));
        }
        return iRet == MDB_SUCCESS ? 0U : host::g_uiFailed;
    });
}

} // namespace

extern "C" {

void *DB_Open(void)
{
    return host::Shield<void *>(nullptr, []() -> void * {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxDb);
        return EnsureOpen() ? &g_stDb : nullptr;
    });
}

u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData)
{
    if (pData == nullptr && uiLen != 0U) {
        return host::g_uiFailed;
    }
    return WithDb(pDb, ACCESS_E::READ, uiKey, uiLen, [&](MDB_txn *pstTxn) {
        MDB_val stKey = {sizeof(uiKey), &uiKey};
        MDB_val stData = {0, nullptr};
        const int iRet = mdb_get(pstTxn, g_stDb.uiDbi, &stKey, &stData);
        if (iRet != MDB_SUCCESS) {
            return iRet;
        }
        if (stData.mv_size != uiLen) {
            return MDB_NOTFOUND; // a record of another length is not the one asked for
        }
        if (uiLen != 0U) {
            (void)memcpy(pData, stData.mv_data, uiLen);
        }
        return MDB_SUCCESS;
    });
}

u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    if (pData == nullptr && uiLen != 0U) {
        return host::g_uiFailed;
    }
    const u32 uiResult = WithDb(pDb, ACCESS_E::PUT, uiKey, uiLen, [&](MDB_txn *pstTxn) {
        MDB_val stKey = {sizeof(uiKey), &uiKey};
        MDB_val stData = {uiLen, const_cast<void *>(pData)};
        return mdb_put(pstTxn, g_stDb.uiDbi, &stKey, &stData, 0);
    });
    if (uiResult != 0U) {
        HOST_LOG(BMC_DIAG_ERROR, "record %#x (%u bytes) of %s:%u not stored", uiKey, uiLen,
                 pcFile == nullptr ? "?" : pcFile, uiLine);
    }
    return uiResult;
}

u32 DB_Del(void *pDb, const u32 *puiKey)
{
    if (puiKey == nullptr) {
        return host::g_uiFailed;
    }
    u32 uiKey = *puiKey;
    return WithDb(pDb, ACCESS_E::DELETE, uiKey, 0, [&](MDB_txn *pstTxn) {
        MDB_val stKey = {sizeof(uiKey), &uiKey};
        return mdb_del(pstTxn, g_stDb.uiDbi, &stKey, nullptr);
    });
}

} // extern "C"
