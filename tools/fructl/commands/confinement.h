// SPDX-License-Identifier: Apache-2.0
// What a child process may still do: as whom it runs, with which privileges.
#ifndef FRUCTL_COMMANDS_CONFINEMENT_H
#define FRUCTL_COMMANDS_CONFINEMENT_H

#include <sys/types.h>

struct IDENTITY_S
{
    uid_t uiUser;
    gid_t uiGroup;
    bool bChange;  // from root to that user
    bool bLowPort; // it must listen below port 1024
};

// ---- in the child, between fork() and exec ----

// Takes that identity and gives every privilege away that listening does not need, for good; signals are as a
// new program expects them, and the process ends with its parent. Null, or what failed, with errno set.
const char *Confine(const IDENTITY_S &stIdentity, pid_t iParent);

// Closes every descriptor from this one on.
void CloseFrom(int iFirst);

#endif
