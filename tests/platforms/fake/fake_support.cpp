// SPDX-License-Identifier: Apache-2.0
// Support library: messages, time, OEM flag; text and sums are the desk's own.
#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "bmc_support.h"
#include "fake/fake_state.h"

namespace {

std::mutex g_mtxMessages;

} // namespace

namespace fake {

void SetBmcOemFlag(u32 uiFlag)
{
    State().uiBmcOemFlag = uiFlag;
}

void SetLogHook(std::function<void(const std::string &)> fnHook)
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    State().fnLogHook = std::move(fnHook);
}

} // namespace fake

extern "C" {

void BMC_DiagLogOut(u32 uiModule, u32 uiCategory, u32 uiSeverity, u32 uiLine, const char *pcFile,
                    const char *pcFormat, ...)
{
    char acText[2048];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acText, sizeof(acText), pcFormat, vaArgs);
    va_end(vaArgs);
    std::function<void(const std::string &)> fnHook;
    {
        const std::lock_guard<std::mutex> lock(g_mtxMessages);
        fake::State().vecMessages.push_back(
            {uiModule, uiCategory, uiSeverity, uiLine, pcFile, pcFormat, acText});
        fnHook = fake::State().fnLogHook;
    }
    if (fnHook) {
        fnHook(acText);
    }
}

u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut)
{
    const u32 uiResult = fake::Fault(fake::KIND_E::CLOCK) ? 0x81000001U : 0U;
    fake::Journal("BMC_TimeStampToIsoTime %u %u -> %#x", uiTimeStamp, uiArg, uiResult);
    if (uiResult == 0U) {
        (void)snprintf(pcOut, 32, "T%u", uiTimeStamp);
    }
    return uiResult;
}

u32 BMC_GetOemFlag(void)
{
    return fake::State().uiBmcOemFlag;
}

} // extern "C"
