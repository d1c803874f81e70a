// SPDX-License-Identifier: Apache-2.0
// Another machine's management controller as the controller that is worked on: a root of its own for each, made on
// demand from what the controller answers.
#ifndef TOOLKIT_CONTROLLER_BMC_H
#define TOOLKIT_CONTROLLER_BMC_H

#include <optional>
#include <string>

#include "lib_fru_types.h"
#include "toolkit/controller/controller.h"

struct BMC_S
{
    std::string strHost; // a name, an address, or /dev/ipmi0: this machine's own
    u32 uiPort = 623;
    std::string strUser;
    std::string strPrivilege; // empty: administrator
    u32 uiSuite = 3;
    std::optional<std::string> optPassword; // nothing: the environment's IPMI_PASSWORD
    u32 uiPatienceSeconds = 10;
};

// Where the root of that controller lies, unless another one is named.
std::string BmcRoot(const BMC_S &stBmc);

// Makes it the controller of this process, instead of OpenController(). The first time, and with bAnew, it is asked
// for all the FRUs that it has; what was known of them until then, past images among it, is forgotten then.
// Its cached images are never trusted: what is read comes from the other controller each time.
void OpenBmc(CONTROLLER_S &stController, const BMC_S &stBmc, bool bAnew);

#endif
