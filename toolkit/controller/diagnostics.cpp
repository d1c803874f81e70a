// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/diagnostics.h"

#include <utility>

#include "bmcfru_host.h"
#include "toolkit/base/text.h"

namespace {

constexpr u32 SEVERITY_WARNING = 4U;

thread_local std::vector<std::string> g_vecDiagnostics; // a sink is called on the thread that logs
std::function<void(const DIAGNOSTIC_S &stDiagnostic)> g_fnEach;

void TakeDiagnostic(const BMCHOST_DIAG_S *pstDiag, void * /*pContext*/)
{
    DIAGNOSTIC_S stDiagnostic = {pstDiag->uiSeverity, pstDiag->pcFile, pstDiag->uiLine,
                                 EscapeText(pstDiag->pcText)};
    std::string &strText = stDiagnostic.strText;
    while (strText.size() >= 4U && strText.compare(strText.size() - 4U, 4U, "\\x0a") == 0) {
        strText.erase(strText.size() - 4U);
    }
    if (g_fnEach) {
        g_fnEach(stDiagnostic);
    }
    if (stDiagnostic.uiSeverity <= SEVERITY_WARNING) {
        g_vecDiagnostics.push_back(strText);
    }
}

} // namespace

void KeepDiagnostics(std::function<void(const DIAGNOSTIC_S &stDiagnostic)> fnEach)
{
    BMCHOST_SetDiagSink(nullptr, nullptr); // from here on no report is under way
    g_fnEach = std::move(fnEach);
    BMCHOST_SetDiagSink(TakeDiagnostic, nullptr);
}

std::vector<std::string> TakeDiagnostics()
{
    return std::exchange(g_vecDiagnostics, {});
}

void ClearDiagnostics()
{
    g_vecDiagnostics.clear();
}

std::string DiagnosticHint()
{
    return g_vecDiagnostics.empty() ? "" : " (the library says: " + g_vecDiagnostics.front() + ")";
}

std::string Cause(const std::vector<std::string> &vecSaid)
{
    static const std::string TYPE_FORMAT = "Not default type format";
    for (const std::string &strText : vecSaid) {
        if (strText.compare(0, TYPE_FORMAT.size(), TYPE_FORMAT) != 0) {
            return " (the library says: " + strText + ")";
        }
    }
    return "";
}
