// SPDX-License-Identifier: Apache-2.0
// Reports out of line. Serves all modules, so it has no file name of its own.
#define FRU_DIAG_FILE ""

#include "common/diag.h"

void FRU_ReportNull(const char *pcFormat, const char *pcFile, const char *pcFunction, u32 uiLine)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    // Module, category and severity of every null-pointer report.
    BMC_DiagLogOut(0U, 0U, BMC_DIAG_DEBUG, uiLine, pcFile, pcFormat, pcFile, pcFunction,
                   static_cast<int>(uiLine));
#pragma GCC diagnostic pop
}
