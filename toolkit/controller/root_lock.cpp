// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/root_lock.h"

#include <cerrno>
#include <unistd.h>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

namespace {

constexpr const char *LOCK_FILE = BMCHOST_LOCK_DIR "/fructl.lock";
constexpr unsigned PATIENCE_MS = 2000U;

} // namespace

RootLock::RootLock(const CONTROLLER_S &stController)
{
    RequireOwnRoot(stController);
    const files::PLACE_S stPlace(stController.strRoot, LOCK_FILE);
    MakeParentDirectory(stPlace);
    int iError = m_stLock.Take(stPlace, PATIENCE_MS);
    if (iError == ETIMEDOUT) {
        const std::string strHolder = m_stLock.Holder();
        Fail("another command is writing to " + stController.strRoot + ": " +
             (strHolder.empty() ? "a process that has not said its name yet" : EscapeText(strHolder)) +
             "; try again when it is done");
    }
    if (iError != 0) {
        Fail("cannot take the lock " + stPlace.Text() + ": " + files::Reason(iError));
    }
    iError = m_stLock.SetHolder(Format("pid %d, %s", getpid(), stController.strCommandLine.c_str()));
    if (iError != 0 && stController.fnWarn) {
        // The lock holds all the same; only the other side's message would be poorer.
        stController.fnWarn("cannot write into " + stPlace.Text() + ": " + files::Reason(iError));
    }
}
