// SPDX-License-Identifier: Apache-2.0
// The user as whom a controller is served.
#ifndef FRUCTL_COMMANDS_SERVICE_USER_H
#define FRUCTL_COMMANDS_SERVICE_USER_H

#include <string>
#include <vector>

#include "commands/confinement.h"
#include "lib_fru_types.h"

struct SERVICE_USER_S
{
    std::string strName; // empty when it is this process's own
    IDENTITY_S stIdentity = {};
    bool bForeign = false; // the controller's directory is not his
};

// Where root starts the service: the user of that name, else the owner of the controller's directory, else,
// where that is root too, the service's own account or, without one, nobody. Else this process's user, and a
// name is refused.
SERVICE_USER_S ServiceUserFor(const std::string &strRoot, u16 usPort, const std::string &strName);

// Makes the directories that clients' requests write to, and where the controller is root's gives them to the
// user. Fails where he could not serve: every path given must be one that he can read.
void PrepareFor(const SERVICE_USER_S &stUser, const std::string &strRoot,
                const std::vector<std::string> &vecPaths);

#endif
