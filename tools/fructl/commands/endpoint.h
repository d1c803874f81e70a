// SPDX-License-Identifier: Apache-2.0
// Where a service listens, and whether somebody answers there.
#ifndef FRUCTL_COMMANDS_ENDPOINT_H
#define FRUCTL_COMMANDS_ENDPOINT_H

#include <string>
#include <sys/socket.h>

#include "lib_fru_types.h"

// A numeric IPv4 or IPv6 address with a port.
struct ENDPOINT_S
{
    sockaddr_storage stAddress = {};
    socklen_t uiLength = 0;
};

// Fails as wrong usage when the address is not numeric.
ENDPOINT_S MakeEndpoint(const std::string &strAddress, u16 usPort);
bool IsLoopback(const ENDPOINT_S &stEndpoint);

// Where this machine reaches it: a wildcard address cannot be asked.
ENDPOINT_S AskableEndpoint(const std::string &strAddress, u16 usPort);

// Fails, saying what would help, when nobody can listen there now.
void CheckPortIsFree(const std::string &strAddress, u16 usPort);

// Asks once, through a UDP socket, and waits a moment for the answer.
bool AnswersPing(int iSocket, const ENDPOINT_S &stEndpoint);

#endif
