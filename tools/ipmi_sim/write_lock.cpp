// SPDX-License-Identifier: Apache-2.0
#include "write_lock.h"

#include <climits>
#include <unistd.h>

#include "bmcfru_host.h"

namespace {

constexpr char LOCK_PATH[] = BMCHOST_LOCK_DIR "/fructl.lock"; // the one of fructl's writing commands
constexpr unsigned PATIENCE_MS = 500U;

} // namespace

WRITE_LOCK::WRITE_LOCK()
{
    char acRoot[PATH_MAX];
    if (BMCHOST_ResolvePath("/", sizeof(acRoot), acRoot) != 0U) {
        return;
    }
    if (files::MakeDirectories({acRoot, BMCHOST_LOCK_DIR}) == 0 &&
        m_stLock.Take({acRoot, LOCK_PATH}, PATIENCE_MS) == 0) {
        // Whoever waits for the lock is shown this line; the lock holds without it as well.
        (void)m_stLock.SetHolder("pid " + std::to_string(getpid()) + ", an IPMI client's write");
    }
}
