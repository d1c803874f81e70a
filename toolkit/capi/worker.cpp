// SPDX-License-Identifier: Apache-2.0
// The process in which the calls of one handle are made: the platform has one root in a process.
#include <csignal>
#include <cstdlib>
#include <exception>

#include "bmcfru_tool.h"
#include "toolkit/capi/answer.h"
#include "toolkit/capi/calls.h"
#include "toolkit/capi/wire.h"

namespace {

// The first frame: whose controller it is.
CONTROLLER_S ControllerOf(const capi::FRAME_S &stFrame)
{
    const nlohmann::json stParsed = nlohmann::json::parse(stFrame.strFirst);
    CONTROLLER_S stController;
    stController.strRoot = stParsed.at("root").get<std::string>();
    stController.strCommandLine = stParsed.at("who").get<std::string>();
    stController.uiWaitMs = stParsed.at("waitMs").get<unsigned>();
    stController.bForeignRoot = (stParsed.at("flags").get<unsigned>() & BMCFRU_TOOL_FOREIGN_ROOT) != 0U;
    return stController;
}

capi::FRAME_S Answer(CONTROLLER_S stController, const capi::FRAME_S &stCall)
{
    capi::ANSWER_S stAnswer;
    capi::Fill(stAnswer, stController, [&](capi::RESULT_S &stResult) {
        OpenController(stController);
        capi::MakeCall(stController, stCall.strFirst, stCall.strSecond, stCall.vecBytes, stResult);
    });
    return {stAnswer.iExitCode, stAnswer.strJson, stAnswer.strMessages, stAnswer.vecBytes};
}

int Work(int iSocket)
{
    // As fructl does: controllers run in UTC, and a limit on file sizes is an error like a full disk.
    setenv("TZ", "UTC0", 1);
    (void)signal(SIGXFSZ, SIG_IGN);
    // An interrupt is meant for the program; what it has asked for is brought to its end.
    (void)signal(SIGINT, SIG_IGN);
    capi::FRAME_S stFrame;
    if (!capi::Receive(iSocket, stFrame)) {
        return EXIT_FAILURE;
    }
    const CONTROLLER_S stController = ControllerOf(stFrame);
    while (capi::Receive(iSocket, stFrame)) {
        if (!capi::Send(iSocket, Answer(stController, stFrame))) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}

} // namespace

extern "C" int BMCFRU_TOOL_Work(int iSocket)
{
    try {
        return Work(iSocket);
    } catch (...) {
        return EXIT_FAILURE; // the other end sees the socket's end
    }
}
