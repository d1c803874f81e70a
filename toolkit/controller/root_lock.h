// One writer at a time.
#ifndef TOOLKIT_CONTROLLER_ROOT_LOCK_H
#define TOOLKIT_CONTROLLER_ROOT_LOCK_H

#include "toolkit/controller/controller.h"

// Held while somebody writes to the controller. Its file names the holder.
class RootLock
{
  public:
    // Waits two seconds for another writer, then fails with who holds it.
    explicit RootLock(const CONTROLLER_S &stController);
    ~RootLock();
    RootLock(const RootLock &) = delete;
    RootLock &operator=(const RootLock &) = delete;

  private:
    int m_iFd = -1;
};

#endif
