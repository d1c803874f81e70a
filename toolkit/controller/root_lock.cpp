// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/root_lock.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

namespace {

constexpr const char *LOCK_FILE = BMCHOST_LOCK_DIR "/fructl.lock";

files::PLACE_S PlaceOf(const CONTROLLER_S &stController, const char *pcPath)
{
    return {stController.strRoot, pcPath};
}

[[noreturn]] void FailBusy(const CONTROLLER_S &stController, const files::LockFile &stFile)
{
    const std::string strHolder = EscapeText(stFile.Holder());
    // Readers share the lock and leave no name in it.
    Fail(ErrorClass::Busy, "another command is " +
                               std::string(strHolder.empty() ? "reading or writing in " : "writing to ") +
                               stController.strRoot + (strHolder.empty() ? "" : ": " + strHolder) +
                               "; try again when it is done");
}

void Take(const CONTROLLER_S &stController, files::LockFile &stFile)
{
    const files::PLACE_S stPlace = PlaceOf(stController, LOCK_FILE);
    RequireOwnRoot(stController);
    MakeParentDirectory(stPlace);
    int iError = stFile.Take(stPlace, stController.uiWaitMs);
    if (iError == ETIMEDOUT) {
        FailBusy(stController, stFile);
    }
    if (iError != 0) {
        Fail(ClassOfErrno(iError), "cannot take the lock " + stPlace.Text() + ": " + files::Reason(iError));
    }
    iError = stFile.SetHolder(Format("pid %d, ", getpid()) + stController.strCommandLine);
    if (iError != 0 && iError != ENOSPC && iError != EDQUOT) { // the write itself tells of a full disk
        // The lock holds all the same; only the other side's message would be poorer.
        stController.Warn("cannot write into " + stPlace.Text() + ": " + files::Reason(iError));
    }
}

} // namespace

RootLock::RootLock(const CONTROLLER_S &stController) : m_stController(stController)
{
    stController.pstReadLock.reset(); // it would keep us waiting for ourselves
    Take(stController, m_stFile);
    for (const MENDED_S &stMended : MendAll()) {
        stController.Warn(stMended.strLine);
        if (stMended.enMended == Mended::Stuck) {
            m_vecStuck.push_back(stMended);
        }
    }
    stController.bWriting = true;
}

RootLock::~RootLock()
{
    m_stController.bWriting = false;
}

void RootLock::RequireMended(u8 ucDeviceID) const
{
    for (const MENDED_S &stStuck : m_vecStuck) {
        const std::vector<u8> &vecIDs = stStuck.vecDeviceIDs;
        if (vecIDs.empty() || std::find(vecIDs.begin(), vecIDs.end(), ucDeviceID) != vecIDs.end()) {
            Fail(ErrorClass::HalfWritten, stStuck.strLine);
        }
    }
}

ReadLock::ReadLock(const CONTROLLER_S &stController)
{
    if (HasJournal()) {
        try {
            const RootLock stWriter(stController);
        } catch (const Error &stError) {
            stController.Warn(std::string("a write was cut short and is not mended: ") + stError.what());
        }
    }
    // Whoever may not even read the lock reads without it; so does who finds none, for nobody has written
    // yet.
    if (m_stFile.Share(PlaceOf(stController, LOCK_FILE), stController.uiWaitMs) == ETIMEDOUT) {
        FailBusy(stController, m_stFile);
    }
}
