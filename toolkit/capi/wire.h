// SPDX-License-Identifier: Apache-2.0
// How a handle and its worker talk: frames of two numbers, a text, another text and bytes, on a socket. Both ends are
// of one build, so lengths are as the machine has them.
#ifndef TOOLKIT_CAPI_WIRE_H
#define TOOLKIT_CAPI_WIRE_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

namespace capi {

constexpr int WORKER_SOCKET = 3; // the worker's end

struct FRAME_S
{
    int iCode = 0; // of an answer its exit code
    std::string strFirst;
    std::string strSecond;
    std::vector<u8> vecBytes;
};

// False when the other end is gone.
bool Send(int iSocket, const FRAME_S &stFrame);
bool Receive(int iSocket, FRAME_S &stFrame);

} // namespace capi

#endif
