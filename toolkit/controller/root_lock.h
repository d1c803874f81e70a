// SPDX-License-Identifier: Apache-2.0
// One writer at a time.
#ifndef TOOLKIT_CONTROLLER_ROOT_LOCK_H
#define TOOLKIT_CONTROLLER_ROOT_LOCK_H

#include "files/files.h"
#include "toolkit/controller/controller.h"

// Held while somebody writes to the controller. Its file names the holder.
class RootLock
{
  public:
    // Waits two seconds for another writer, then fails with who holds it. Fails as RequireOwnRoot() does.
    explicit RootLock(const CONTROLLER_S &stController);

  private:
    files::LockFile m_stLock;
};

#endif
