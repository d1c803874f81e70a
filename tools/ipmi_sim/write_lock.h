// SPDX-License-Identifier: Apache-2.0
// The lock that every program holds while it writes to this controller.
#ifndef IPMI_SIM_WRITE_LOCK_H
#define IPMI_SIM_WRITE_LOCK_H

#include "files/files.h"

class WRITE_LOCK
{
  public:
    // Waits half a second at most: a client that waits longer for its answer sends the request again.
    // Not held either while a write that was cut short is not mended: it would be done over this one.
    WRITE_LOCK();
    bool Held() const
    {
        return m_stLock.IsHeld();
    }

  private:
    files::LockFile m_stLock;
};

#endif
