// SPDX-License-Identifier: Apache-2.0
// What a call answers, and the shield at the C boundary.
#ifndef TOOLKIT_CAPI_ANSWER_H
#define TOOLKIT_CAPI_ANSWER_H

#include <new>
#include <string>
#include <vector>

#include "bmcfru_tool.h"
#include "lib_fru_types.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"
#include "toolkit/task/failure.h"

struct BMCFRU_TOOL_ANSWER_S
{
    int iExitCode = BMCFRU_TOOL_DONE;
    std::string strJson;
    std::string strMessages = NO_MESSAGES;
    std::vector<u8> vecBytes;

    static constexpr const char *NO_MESSAGES = "{\"warnings\":[],\"diagnostics\":[]}";
};

namespace capi {

using ANSWER_S = BMCFRU_TOOL_ANSWER_S;

// What is found out while a call works.
struct RESULT_S
{
    Json stDocument = Json::object();
    std::vector<u8> vecBytes;
};

// One line of JSON; bytes that are no UTF-8 are replaced.
std::string Text(const Json &stJson);

// Collects what the library says on this thread and what is warned of, for as long as it lives.
class Messages
{
  public:
    Messages();
    ~Messages();
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;

    void Warn(const std::string &strLine);
    std::string Take() const;

  private:
    std::vector<std::string> m_vecWarnings;
    Json m_stDiagnostics = Json::array();
};

// Adds the failure to what was found out before.
void TellFailure(ANSWER_S &stAnswer, Json stDocument, const CONTROLLER_S &stController, const Error &stError);

// fnWork fills a RESULT_S. Whatever it throws becomes an answer.
template <typename WORK> void Fill(ANSWER_S &stAnswer, CONTROLLER_S &stController, WORK fnWork)
{
    Messages stMessages;
    stController.fnWarn = [&stMessages](const std::string &strLine) { stMessages.Warn(strLine); };
    RESULT_S stResult;
    try {
        fnWork(stResult);
        stAnswer.strJson = Text(stResult.stDocument);
        stAnswer.vecBytes = std::move(stResult.vecBytes);
    } catch (const Error &stError) {
        TellFailure(stAnswer, std::move(stResult.stDocument), stController, stError);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &stError) {
        TellFailure(stAnswer, std::move(stResult.stDocument), stController,
                    {ErrorClass::Failed, std::string("failed: ") + stError.what()});
    }
    stAnswer.strMessages = stMessages.Take();
    stController.fnWarn = nullptr;
}

// A new answer, filled so; null when there is no memory.
template <typename WORK> ANSWER_S *NewAnswer(WORK fnWork) noexcept
{
    try {
        auto upAnswer = std::make_unique<ANSWER_S>();
        CONTROLLER_S stNone;
        Fill(*upAnswer, stNone, fnWork);
        return upAnswer.release();
    } catch (...) {
        return nullptr;
    }
}

} // namespace capi

#endif
