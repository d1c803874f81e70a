#include "toolkit/controller/root_lock.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

namespace {

std::string ReadHolder(int iFd)
{
    char acHolder[512] = "";
    const ssize_t iRead = pread(iFd, acHolder, sizeof(acHolder) - 1U, 0);
    std::string strHolder(acHolder, iRead > 0 ? static_cast<size_t>(iRead) : 0U);
    strHolder.erase(strHolder.find_last_not_of('\n') + 1U);
    return strHolder.empty() ? "a process that has not said its name yet" : EscapeText(strHolder);
}

} // namespace

RootLock::RootLock(const CONTROLLER_S &stController)
{
    const std::string strPath = stController.strRoot + "/var/lock/fructl.lock";
    MakeParentDirectory(strPath);
    m_iFd = open(strPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_iFd < 0) {
        Fail("cannot open the lock " + strPath + ": " + strerror(errno));
    }
    const auto stUntil = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (flock(m_iFd, LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= stUntil) {
            const std::string strHolder = ReadHolder(m_iFd);
            close(m_iFd);
            Fail("another command is writing to " + stController.strRoot + ": " + strHolder +
                 "; try again when it is done");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const std::string strHolder = Format("pid %d, %s\n", getpid(), stController.strCommandLine.c_str());
    if (ftruncate(m_iFd, 0) != 0 || pwrite(m_iFd, strHolder.data(), strHolder.size(), 0) < 0) {
        // The lock holds all the same; only the other side's message would be poorer.
        if (stController.fnWarn) {
            stController.fnWarn("cannot write into " + strPath + ": " + strerror(errno));
        }
    }
}

RootLock::~RootLock()
{
    // An empty file tells that nobody holds the lock, but closing is what releases it.
    if (ftruncate(m_iFd, 0) != 0) {
        errno = 0;
    }
    close(m_iFd);
}
