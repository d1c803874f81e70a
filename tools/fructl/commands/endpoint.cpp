// SPDX-License-Identifier: Apache-2.0
#include "commands/endpoint.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <thread>

#include "files/files.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds PORT_PATIENCE(1000); // a service killed just now may still hold the port
constexpr milliseconds PAUSE(20);
constexpr int ANSWER_TIMEOUT_MS = 100;

// RMCP presence ping (IPMI 2.0, section 13.2.3): answered by any server that listens.
constexpr u8 PING[] = {0x06, 0x00, 0xFF, 0x06, 0x00, 0x00, 0x11, 0xBE, 0x80, 0x01, 0x00, 0x00};
constexpr size_t PONG_TYPE_INDEX = 8U;
constexpr u8 PONG_TYPE = 0x40U;

} // namespace

ENDPOINT_S MakeEndpoint(const std::string &strAddress, u16 usPort)
{
    ENDPOINT_S stEndpoint;
    sockaddr_in stV4 = {};
    sockaddr_in6 stV6 = {};
    if (inet_pton(AF_INET, strAddress.c_str(), &stV4.sin_addr) == 1) {
        stV4.sin_family = AF_INET;
        stV4.sin_port = htons(usPort);
        stEndpoint.uiLength = sizeof(stV4);
        memcpy(&stEndpoint.stAddress, &stV4, sizeof(stV4));
    } else if (inet_pton(AF_INET6, strAddress.c_str(), &stV6.sin6_addr) == 1) {
        stV6.sin6_family = AF_INET6;
        stV6.sin6_port = htons(usPort);
        stEndpoint.uiLength = sizeof(stV6);
        memcpy(&stEndpoint.stAddress, &stV6, sizeof(stV6));
    } else {
        FailUsage("--address " + EscapeText(strAddress) +
                  " is refused; accepted: a numeric IPv4 or IPv6 address of this machine");
    }
    return stEndpoint;
}

bool IsLoopback(const ENDPOINT_S &stEndpoint)
{
    if (stEndpoint.stAddress.ss_family == AF_INET6) {
        sockaddr_in6 stAddress = {};
        memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
        return IN6_IS_ADDR_LOOPBACK(&stAddress.sin6_addr);
    }
    sockaddr_in stAddress = {};
    memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
    return ntohl(stAddress.sin_addr.s_addr) >> 24U == IN_LOOPBACKNET;
}

void CheckPortIsFree(const std::string &strAddress, u16 usPort)
{
    const ENDPOINT_S stEndpoint = MakeEndpoint(strAddress, usPort);
    const auto stUntil = Clock::now() + PORT_PATIENCE;
    int iError = 0;
    do {
        const files::Fd stSocket(socket(stEndpoint.stAddress.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        const bool bFree =
            stSocket && bind(stSocket.Get(), reinterpret_cast<const sockaddr *>(&stEndpoint.stAddress),
                             stEndpoint.uiLength) == 0;
        iError = errno;
        if (bFree) {
            return;
        }
        std::this_thread::sleep_for(PAUSE);
    } while (iError == EADDRINUSE && Clock::now() < stUntil);
    const std::string strWhere = Format("UDP port %u of %s", usPort, strAddress.c_str());
    if (iError == EADDRINUSE) {
        Fail(ErrorClass::Busy, strWhere + " is in use by another program; --port names another");
    }
    if (iError == EACCES) {
        Fail(ErrorClass::NotPermitted,
             strWhere + " needs root's rights; --port takes any from 1024 up without them");
    }
    Fail(ClassOfErrno(iError), "cannot listen on " + strWhere + ": " + strerror(iError) +
                                   "; --address takes an address of this machine");
}

// A wildcard address cannot be asked; its own machine can.
ENDPOINT_S AskableEndpoint(const std::string &strAddress, u16 usPort)
{
    ENDPOINT_S stEndpoint = MakeEndpoint(strAddress, usPort);
    if (stEndpoint.stAddress.ss_family == AF_INET6) {
        sockaddr_in6 stAddress = {};
        memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
        return IN6_IS_ADDR_UNSPECIFIED(&stAddress.sin6_addr) ? MakeEndpoint("::1", usPort) : stEndpoint;
    }
    sockaddr_in stAddress = {};
    memcpy(&stAddress, &stEndpoint.stAddress, sizeof(stAddress));
    return stAddress.sin_addr.s_addr == INADDR_ANY ? MakeEndpoint("127.0.0.1", usPort) : stEndpoint;
}

bool AnswersPing(int iSocket, const ENDPOINT_S &stEndpoint)
{
    const auto *pstAddress = reinterpret_cast<const sockaddr *>(&stEndpoint.stAddress);
    if (sendto(iSocket, PING, sizeof(PING), 0, pstAddress, stEndpoint.uiLength) < 0) {
        return false;
    }
    pollfd stPoll = {iSocket, POLLIN, 0};
    u8 aucPong[64] = {};
    return poll(&stPoll, 1, ANSWER_TIMEOUT_MS) == 1 &&
           recv(iSocket, aucPong, sizeof(aucPong), 0) > static_cast<ssize_t>(PONG_TYPE_INDEX) &&
           aucPong[PONG_TYPE_INDEX] == PONG_TYPE;
}
