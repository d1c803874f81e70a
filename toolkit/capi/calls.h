// SPDX-License-Identifier: Apache-2.0
// The calls of a controller, by their names.
#ifndef TOOLKIT_CAPI_CALLS_H
#define TOOLKIT_CAPI_CALLS_H

#include <string>
#include <vector>

#include "toolkit/capi/answer.h"
#include "toolkit/controller/controller.h"

namespace capi {

// Makes the call; fails as it does, with what was found out before in stResult.
void MakeCall(CONTROLLER_S &stController, const std::string &strCall, const std::string &strArguments,
              const std::vector<u8> &vecBytes, RESULT_S &stResult);

} // namespace capi

#endif
