// SPDX-License-Identifier: Apache-2.0
// One writer at a time, and readers who see no image half written.
#ifndef TOOLKIT_CONTROLLER_ROOT_LOCK_H
#define TOOLKIT_CONTROLLER_ROOT_LOCK_H

#include <string>
#include <utility>
#include <vector>

#include "files/files.h"
#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/mend.h"

// Held while somebody writes to the controller. Its file names the holder.
class RootLock
{
  public:
    // Waits for other writers and readers as long as the controller's uiWaitMs says, then fails with who
    // holds it. Before it returns, writes that were cut short are mended, and told of to fnWarn.
    // Fails as RequireOwnRoot() does.
    explicit RootLock(const CONTROLLER_S &stController);
    ~RootLock();
    RootLock(const RootLock &) = delete;
    RootLock &operator=(const RootLock &) = delete;

    // Fails when a write to the device, or to nobody knows which, was cut short and could not be mended: nobody
    // writes over that.
    void RequireMended(u8 ucDeviceID) const;

    const CONTROLLER_S &Controller() const
    {
        return m_stController;
    }

  private:
    const CONTROLLER_S &m_stController;
    files::LockFile m_stFile;
    std::vector<MENDED_S> m_vecStuck;
};

// Held while a command reads: no writer is at work meanwhile. A RootLock takes its place while that lives.
class ReadLock
{
  public:
    // Mends first what was cut short, as far as the user may write. A root in which nobody can write, or
    // where the user may not lock, is read as it is.
    explicit ReadLock(const CONTROLLER_S &stController);

  private:
    files::LockFile m_stFile;
};

#endif
