// SPDX-License-Identifier: Apache-2.0
#include "toolkit/capi/answer.h"

#include <mutex>

#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"

namespace {

// The list that this thread's call collects into; null: no call is under way.
thread_local Json *g_pstDiagnostics = nullptr;

void Collect(const DIAGNOSTIC_S &stDiagnostic)
{
    if (g_pstDiagnostics != nullptr) {
        g_pstDiagnostics->push_back({{"severity", stDiagnostic.uiSeverity},
                                     {"file", stDiagnostic.strFile},
                                     {"line", stDiagnostic.uiLine},
                                     {"text", stDiagnostic.strText}});
    }
}

} // namespace

namespace capi {

std::string Text(const Json &stJson)
{
    return stJson.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Messages::Messages()
{
    static std::once_flag stOnce;
    std::call_once(stOnce, [] { KeepDiagnostics(Collect); });
    ClearDiagnostics();
    g_pstDiagnostics = &m_stDiagnostics;
}

Messages::~Messages()
{
    g_pstDiagnostics = nullptr;
}

void Messages::Warn(const std::string &strLine)
{
    m_vecWarnings.push_back(strLine);
}

std::string Messages::Take() const
{
    return m_vecWarnings.empty() && m_stDiagnostics.empty()
               ? ANSWER_S::NO_MESSAGES
               : Text({{"warnings", m_vecWarnings}, {"diagnostics", m_stDiagnostics}});
}

void TellFailure(ANSWER_S &stAnswer, Json stDocument, const CONTROLLER_S &stController, const Error &stError)
{
    const ExitCode enCode = ExitCodeOf(stError.Class());
    stDocument["error"] = FailureJson(stController, stError, enCode);
    stAnswer.iExitCode = static_cast<int>(enCode);
    stAnswer.strJson = Text(stDocument);
}

} // namespace capi

extern "C" {

int BMCFRU_TOOL_ExitCode(const BMCFRU_TOOL_ANSWER_S *pstAnswer)
{
    return pstAnswer == nullptr ? BMCFRU_TOOL_FAILED : pstAnswer->iExitCode;
}

const char *BMCFRU_TOOL_Json(const BMCFRU_TOOL_ANSWER_S *pstAnswer)
{
    return pstAnswer == nullptr ? "" : pstAnswer->strJson.c_str();
}

const unsigned char *BMCFRU_TOOL_Bytes(const BMCFRU_TOOL_ANSWER_S *pstAnswer, size_t *puiSize)
{
    const size_t uiSize = pstAnswer == nullptr ? 0U : pstAnswer->vecBytes.size();
    if (puiSize != nullptr) {
        *puiSize = uiSize;
    }
    return uiSize == 0U ? nullptr : pstAnswer->vecBytes.data();
}

const char *BMCFRU_TOOL_Messages(const BMCFRU_TOOL_ANSWER_S *pstAnswer)
{
    return pstAnswer == nullptr ? BMCFRU_TOOL_ANSWER_S::NO_MESSAGES : pstAnswer->strMessages.c_str();
}

void BMCFRU_TOOL_FreeAnswer(BMCFRU_TOOL_ANSWER_S *pstAnswer)
{
    delete pstAnswer;
}

} // extern "C"
