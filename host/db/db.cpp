// SPDX-License-Identifier: Apache-2.0
// The database's calls: SQLite in the root, one connection for each process.
#include <algorithm>
#include <chrono>
#include <thread>
#include <unistd.h>

#include "bmc_db.h"
#include "db/connection.h"
#include "db/mapping.h"
#include "support/host.h"

namespace {

constexpr std::chrono::seconds g_stPatience(BMCHOST_DB_WAIT_SECONDS);
constexpr std::chrono::microseconds g_stLongestNap(5000);

char g_cHandle; // its address is the handle

// Guarded by mtxDb; never destroyed, for threads may outlive main().
db::Connection &TheConnection()
{
    static db::Connection *const pstConnection = new db::Connection;
    return *pstConnection;
}

__attribute__((destructor)) void AtExit()
{
    const std::unique_lock<std::mutex> lock(host::Locks().mtxDb, std::try_to_lock);
    if (lock.owns_lock()) {
        host::Shield(0, [] {
            TheConnection().CloseTidily();
            return 0;
        });
    }
}

// Opens what must be opened and tries, until it is done or others have been in the way for too long. mtxDb is
// free between two tries, for other threads and for fork().
template <typename WORK> db::FAULT_S Try(db::Look enLook, bool bCreate, WORK fnWork)
{
    std::chrono::steady_clock::time_point stUntil;
    std::chrono::microseconds stNap(0);
    for (;;) {
        db::FAULT_S stFault;
        {
            const std::lock_guard<std::mutex> lock(host::Locks().mtxDb);
            db::MappingGuard::Begin();
            stFault = TheConnection().Ensure(enLook, bCreate);
            if (!stFault) {
                stFault = fnWork(TheConnection());
            }
            if (db::MappingGuard::HasLost()) {
                stFault = TheConnection().Lost();
            }
        }
        if (stFault.enReason != BMCHOST_DB_LOCKED) {
            return stFault;
        }
        const auto stNow = std::chrono::steady_clock::now();
        if (stNap.count() == 0) {
            stUntil = stNow + g_stPatience;
            stNap = std::chrono::microseconds(100);
        } else if (stNow >= stUntil) {
            stFault.strText += " (waited for " + std::to_string(g_stPatience.count()) + " seconds)";
            return stFault;
        }
        std::this_thread::sleep_for(stNap);
        stNap = std::min(stNap * 2, g_stLongestNap);
    }
}

// The outcome as a call's result: kept for BMCHOST_LastDbError(), and logged when no lock is held.
u32 Tell(const db::FAULT_S &stFault, const char *pcWhat, u32 uiKey)
{
    if (!stFault) {
        return 0U;
    }
    db::Remember(stFault);
    if (stFault.enReason > BMCHOST_DB_MISUSE) {
        HOST_LOG(BMC_DIAG_ERROR, "%s record %#x: %s", pcWhat, uiKey, stFault.strText.c_str());
    }
    return host::g_uiFailed;
}

u32 Misused(const char *pcWhat)
{
    db::Remember({BMCHOST_DB_MISUSE, pcWhat});
    return host::g_uiFailed;
}

// What a call's arguments must be; the handle is checked by its address.
bool AreUsable(const void *pDb, const void *pData, u32 uiLen)
{
    return pDb == &g_cHandle && (pData != nullptr || uiLen == 0U);
}

constexpr char g_acMisuse[] = "a call of the database with a null pointer or a handle that is none";

} // namespace

namespace host {

void CloseDbForFork()
{
    Shield(0, [] {
        TheConnection().CloseTidily();
        return 0;
    });
}

} // namespace host

extern "C" {

void *DB_Open(void)
{
    return host::Shield<void *>(nullptr, []() -> void * {
        const db::FAULT_S stFault =
            Try(db::Look::OnceATick, true, [](db::Connection &) { return db::FAULT_S(); });
        if (!stFault) {
            return &g_cHandle;
        }
        db::Remember(stFault);
        HOST_LOG(BMC_DIAG_ERROR, "%s", stFault.strText.c_str());
        return nullptr;
    });
}

u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData)
{
    return host::Shield(host::g_uiFailed, [&] {
        if (!AreUsable(pDb, pData, uiLen)) {
            return Misused(g_acMisuse);
        }
        const auto fnGet = [&](db::Connection &stConnection) {
            return stConnection.Get(uiKey, uiLen, pData);
        };
        return Tell(Try(db::Look::OnceATick, true, fnGet), "reading", uiKey);
    });
}

u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    return host::Shield(host::g_uiFailed, [&] {
        if (!AreUsable(pDb, pData, uiLen)) {
            return Misused(g_acMisuse);
        }
        const auto fnPut = [&](db::Connection &stConnection) {
            return stConnection.Put(uiKey, uiLen, pData);
        };
        const u32 uiResult = Tell(Try(db::Look::Now, true, fnPut), "writing", uiKey);
        if (uiResult != 0U) {
            HOST_LOG(BMC_DIAG_ERROR, "record %#x (%u bytes) of %s:%u not stored", uiKey, uiLen,
                     pcFile == nullptr ? "?" : pcFile, uiLine);
        }
        return uiResult;
    });
}

u32 DB_Del(void *pDb, const u32 *puiKey)
{
    return host::Shield(host::g_uiFailed, [&] {
        if (!AreUsable(pDb, puiKey, sizeof(u32))) {
            return Misused(g_acMisuse);
        }
        const auto fnDelete = [&](db::Connection &stConnection) { return stConnection.Delete(*puiKey); };
        return Tell(Try(db::Look::Now, true, fnDelete), "deleting", *puiKey);
    });
}

BMCHOST_DB_REASON_E BMCHOST_CheckDb(const char **ppcText)
{
    return host::Shield(BMCHOST_DB_FAILED, [&] {
        const db::FAULT_S stFault =
            Try(db::Look::Now, false, [](db::Connection &stConnection) { return stConnection.CheckPages(); });
        db::Remember(stFault);
        return BMCHOST_LastDbError(ppcText);
    });
}

} // extern "C"
