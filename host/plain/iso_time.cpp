// SPDX-License-Identifier: Apache-2.0
// Time as text. A file of its own, so that a test platform can tell a time of its own instead.
#include <ctime>

#include "plain/plain.h"

extern "C" {

u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut)
{
    if (pcOut == nullptr) {
        return host::g_uiFailed;
    }
    const time_t iTime = static_cast<time_t>(uiTimeStamp);
    struct tm stTime = {};
    const struct tm *pstTime = uiArg == 0U ? gmtime_r(&iTime, &stTime) : localtime_r(&iTime, &stTime);
    if (pstTime == nullptr) {
        *pcOut = '\0';
        return host::g_uiFailed;
    }
    return strftime(pcOut, 32U, "%Y-%m-%d %H:%M:%S", pstTime) != 0U ? 0U : host::g_uiFailed;
}

} // extern "C"
