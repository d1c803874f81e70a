#include "write_lock.h"

#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bmcfru_host.h"

namespace {

constexpr char LOCK_PATH[] = "/var/lock/fructl.lock"; // the one of fructl's writing commands
constexpr int LOCK_TRIES = 50;
constexpr useconds_t LOCK_PAUSE_US = 10000U;

int OpenLock()
{
    char acPath[PATH_MAX];
    for (const char *pcDirectory : {"/var", "/var/lock"}) {
        if (BMCHOST_ResolvePath(pcDirectory, sizeof(acPath), acPath) != 0U) {
            return -1;
        }
        (void)mkdir(acPath, 0777); // there already, or the open() below tells
    }
    if (BMCHOST_ResolvePath(LOCK_PATH, sizeof(acPath), acPath) != 0U) {
        return -1;
    }
    return open(acPath, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
}

} // namespace

WRITE_LOCK::WRITE_LOCK()
{
    const int iFd = OpenLock();
    if (iFd < 0) {
        return;
    }
    for (int i = 0; i < LOCK_TRIES; ++i) {
        if (flock(iFd, LOCK_EX | LOCK_NB) == 0) {
            // Whoever waits for the lock is shown this line.
            (void)(ftruncate(iFd, 0) == 0 && dprintf(iFd, "pid %d, an IPMI client's write\n", getpid()) > 0);
            m_iFd = iFd;
            return;
        }
        usleep(LOCK_PAUSE_US);
    }
    close(iFd);
}

WRITE_LOCK::~WRITE_LOCK()
{
    if (m_iFd >= 0) {
        (void)(ftruncate(m_iFd, 0) == 0);
        close(m_iFd);
    }
}
