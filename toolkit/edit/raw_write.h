// SPDX-License-Identifier: Apache-2.0
// The IPMI command Write FRU Data: bytes as they are, nothing is checked or computed anew.
#ifndef TOOLKIT_EDIT_RAW_WRITE_H
#define TOOLKIT_EDIT_RAW_WRITE_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/image/differences.h"

struct RAW_ANSWER_S
{
    std::vector<u8> vecResponse;
    std::string strHint; // the first thing that the library reported, as DiagnosticHint()
};

// What a request would change in the device's image. Fails where the command would not write.
std::vector<BYTE_RUN_S> PlanRaw(const CONTROLLER_S &stController, const std::vector<u8> &vecRequest);

// The answer to a request; the device need not exist.
RAW_ANSWER_S WriteRaw(const RootLock &stLock, const std::vector<u8> &vecRequest);

#endif
