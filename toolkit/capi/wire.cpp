// SPDX-License-Identifier: Apache-2.0
#include "toolkit/capi/wire.h"

#include <cerrno>
#include <sys/socket.h>

namespace {

struct HEAD_S
{
    i32 iCode;
    u32 uiFirst;
    u32 uiSecond;
    u32 uiBytes;
};

constexpr u32 PART_MAX = 64U * 1024U * 1024U; // no call has more to say

bool SendAll(int iSocket, const void *pBytes, size_t uiSize)
{
    const char *pcAt = static_cast<const char *>(pBytes);
    while (uiSize != 0U) {
        const ssize_t iSent = send(iSocket, pcAt, uiSize, MSG_NOSIGNAL);
        if (iSent < 0 && errno == EINTR) {
            continue;
        }
        if (iSent <= 0) {
            return false;
        }
        pcAt += iSent;
        uiSize -= static_cast<size_t>(iSent);
    }
    return true;
}

bool ReceiveAll(int iSocket, void *pBytes, size_t uiSize)
{
    char *pcAt = static_cast<char *>(pBytes);
    while (uiSize != 0U) {
        const ssize_t iGot = recv(iSocket, pcAt, uiSize, 0);
        if (iGot < 0 && errno == EINTR) {
            continue;
        }
        if (iGot <= 0) {
            return false;
        }
        pcAt += iGot;
        uiSize -= static_cast<size_t>(iGot);
    }
    return true;
}

} // namespace

namespace capi {

bool Send(int iSocket, const FRAME_S &stFrame)
{
    const HEAD_S stHead = {stFrame.iCode, static_cast<u32>(stFrame.strFirst.size()),
                           static_cast<u32>(stFrame.strSecond.size()),
                           static_cast<u32>(stFrame.vecBytes.size())};
    return SendAll(iSocket, &stHead, sizeof(stHead)) &&
           SendAll(iSocket, stFrame.strFirst.data(), stFrame.strFirst.size()) &&
           SendAll(iSocket, stFrame.strSecond.data(), stFrame.strSecond.size()) &&
           SendAll(iSocket, stFrame.vecBytes.data(), stFrame.vecBytes.size());
}

bool Receive(int iSocket, FRAME_S &stFrame)
{
    HEAD_S stHead = {};
    if (!ReceiveAll(iSocket, &stHead, sizeof(stHead)) || stHead.uiFirst > PART_MAX ||
        stHead.uiSecond > PART_MAX || stHead.uiBytes > PART_MAX) {
        return false;
    }
    stFrame.iCode = stHead.iCode;
    stFrame.strFirst.resize(stHead.uiFirst);
    stFrame.strSecond.resize(stHead.uiSecond);
    stFrame.vecBytes.resize(stHead.uiBytes);
    return ReceiveAll(iSocket, stFrame.strFirst.data(), stHead.uiFirst) &&
           ReceiveAll(iSocket, stFrame.strSecond.data(), stHead.uiSecond) &&
           ReceiveAll(iSocket, stFrame.vecBytes.data(), stHead.uiBytes);
}

} // namespace capi
