/* SPDX-License-Identifier: Apache-2.0 */
/* bmcfru-worker1: started by libbmcfrutool for a controller's handle, and of no use by itself. */
#include <stdio.h>
#include <sys/socket.h>

#include "bmcfru_tool.h"

#define WORKER_SOCKET 3

int main(void)
{
    int iType = 0;
    socklen_t uiSize = sizeof(iType);
    if (getsockopt(WORKER_SOCKET, SOL_SOCKET, SO_TYPE, &iType, &uiSize) != 0) {
        (void)fputs(
            "bmcfru-worker1 works for programs that use libbmcfrutool, which start it; fructl is for people\n",
            stderr);
        return BMCFRU_TOOL_USAGE;
    }
    return BMCFRU_TOOL_Work(WORKER_SOCKET);
}
