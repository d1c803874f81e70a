// SPDX-License-Identifier: Apache-2.0
// Operation log: one JSON line for each entry.
#include "bmc_operatelog.h"
#include "support/host.h"
#include "support/json_line.h"

extern "C" {

u32 OPERATELOG_AddLogComm(u32 uiModule, u32 uiResult, const char *pcText, u32 uiArg1, u32 uiArg2, u32 uiLine,
                          u8 ucSource)
{
    return host::Shield(host::g_uiFailed, [&] {
        const host::JSON json = {{"time", host::NowText()},  {"module", uiModule},
                                 {"result", uiResult},       {"text", pcText == nullptr ? "" : pcText},
                                 {"args", {uiArg1, uiArg2}}, {"line", uiLine},
                                 {"source", ucSource}};
        return host::AppendToJournal(BMCHOST_OPERATE_JOURNAL, host::ToLine(json));
    });
}

} // extern "C"
