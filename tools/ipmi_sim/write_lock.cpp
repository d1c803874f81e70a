// SPDX-License-Identifier: Apache-2.0
#include "write_lock.h"

#include <climits>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <unistd.h>

#include "bmcfru_host.h"

namespace {

constexpr char LOCK_PATH[] = BMCHOST_LOCK_DIR "/fructl.lock"; // the one of fructl's writing commands
constexpr unsigned PATIENCE_MS = 500U;

bool IsWriteUnfinished(const std::string &strRoot)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> upDir(opendir((strRoot + BMCHOST_JOURNAL_DIR).c_str()),
                                                     closedir);
    if (upDir == nullptr) {
        return false; // nobody has written yet
    }
    for (const dirent *pstEntry = readdir(upDir.get()); pstEntry != nullptr;
         pstEntry = readdir(upDir.get())) {
        const char *pcSuffix = strrchr(pstEntry->d_name, '.');
        if (pcSuffix != nullptr && strcmp(pcSuffix, ".json") == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

WRITE_LOCK::WRITE_LOCK()
{
    char acRoot[PATH_MAX];
    if (BMCHOST_ResolvePath("/", sizeof(acRoot), acRoot) != 0U) {
        return;
    }
    if (files::MakeDirectories({acRoot, BMCHOST_LOCK_DIR}) != 0 ||
        m_stLock.Take({acRoot, LOCK_PATH}, PATIENCE_MS) != 0) {
        return;
    }
    if (IsWriteUnfinished(acRoot)) {
        m_stLock.Release();
        return;
    }
    // Whoever waits for the lock is shown this line; the lock holds without it as well.
    (void)m_stLock.SetHolder("pid " + std::to_string(getpid()) + ", an IPMI client's write");
}
