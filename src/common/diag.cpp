// Reports out of line. Serves all modules, so it has no file name of its own.
#define FRU_DIAG_FILE ""

#include "common/diag.h"

namespace {

constexpr u32 g_uiFormatLen = 128; // the longest name has 42 characters

} // namespace

void FRU_ReportNull(const char *pcName, const char *pcFile, const char *pcFunction, u32 uiLine)
{
    // The name is part of the format, as whoever reads formats knows it; eighty literals would be 3 KiB.
    char acFormat[g_uiFormatLen];
    (void)BMC_Scnprintf(acFormat, sizeof(acFormat), "Pointer %s is Null, File:%%s Func:%%s Line:%%d", pcName);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    // Module, category and severity of every null-pointer report.
    BMC_DiagLogOut(0U, 0U, BMC_DIAG_DEBUG, uiLine, pcFile, acFormat, pcFile, pcFunction,
                   static_cast<int>(uiLine));
#pragma GCC diagnostic pop
}
