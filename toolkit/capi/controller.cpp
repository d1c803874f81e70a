// SPDX-License-Identifier: Apache-2.0
// Handles of controllers, each with a worker.
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bmcfru_tool.h"
#include "files/files.h"
#include "toolkit/base/text.h"
#include "toolkit/capi/answer.h"
#include "toolkit/capi/wire.h"

struct BMCFRU_TOOL_CONTROLLER_S
{
    std::mutex mtxCalls;
    std::string strHello; // the first frame's text
    int iSocket = -1;
    std::atomic<pid_t> iWorker = 0; // 0: none
    pid_t iOwner = 0;               // the process that has started it
};

namespace {

using Controller = BMCFRU_TOOL_CONTROLLER_S;

// Beside this library, in its own folder there or, of a build, with it.
std::string WorkerPath()
{
    Dl_info stInfo = {};
    if (dladdr(reinterpret_cast<const void *>(&BMCFRU_TOOL_Open), &stInfo) == 0 ||
        stInfo.dli_fname == nullptr) {
        return "";
    }
    const std::string strLibrary = stInfo.dli_fname;
    const size_t uiSlash = strLibrary.rfind('/');
    const std::string strFolder = uiSlash == std::string::npos ? "." : strLibrary.substr(0, uiSlash);
    for (const char *pcPlace : {"/bmcfru/bmcfru-worker1", "/bmcfru-worker1"}) {
        if (access((strFolder + pcPlace).c_str(), X_OK) == 0) {
            return strFolder + pcPlace;
        }
    }
    Fail(ErrorClass::NotFound, "there is no bmcfru-worker1 in " + strFolder + "/bmcfru or " + strFolder);
}

// The process; its standard input and output are nobody's, its other end of the socket is descriptor 3.
pid_t Spawn(const std::string &strPath, int iTheirs)
{
    posix_spawn_file_actions_t stActions;
    posix_spawnattr_t stAttributes;
    posix_spawn_file_actions_init(&stActions);
    posix_spawnattr_init(&stAttributes);
    posix_spawn_file_actions_addopen(&stActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&stActions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&stActions, iTheirs, capi::WORKER_SOCKET);
    // Whatever the calling thread blocks or ignores is not the worker's.
    sigset_t stNone;
    sigset_t stDefault;
    sigemptyset(&stNone);
    sigfillset(&stDefault);
    posix_spawnattr_setsigmask(&stAttributes, &stNone);
    posix_spawnattr_setsigdefault(&stAttributes, &stDefault);
    posix_spawnattr_setflags(&stAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::string strName = "bmcfru-worker1";
    char *apcArguments[] = {strName.data(), nullptr};
    pid_t iWorker = 0;
    const int iError =
        posix_spawn(&iWorker, strPath.c_str(), &stActions, &stAttributes, apcArguments, environ);
    posix_spawn_file_actions_destroy(&stActions);
    posix_spawnattr_destroy(&stAttributes);
    if (iError != 0) {
        Fail(ClassOfErrno(iError), "cannot start " + EscapeText(strPath) + ": " + files::Reason(iError));
    }
    return iWorker;
}

// How it ended, for people. A program may have collected it already.
std::string End(Controller &stController)
{
    close(stController.iSocket);
    stController.iSocket = -1;
    const pid_t iWorker = stController.iWorker.exchange(0);
    int iStatus = 0;
    pid_t iEnded = 0;
    do {
        iEnded = waitpid(iWorker, &iStatus, 0);
    } while (iEnded < 0 && errno == EINTR);
    return iEnded != iWorker      ? "ended"
           : WIFSIGNALED(iStatus) ? Format("was ended by signal %d", WTERMSIG(iStatus))
                                  : Format("ended with exit code %d", WEXITSTATUS(iStatus));
}

void Start(Controller &stController)
{
    if (stController.iWorker != 0 && stController.iOwner == getpid()) {
        return;
    }
    if (stController.iWorker != 0) { // fork() has copied the handle: that worker is the parent's
        close(stController.iSocket);
        stController.iSocket = -1;
        stController.iWorker = 0;
    }
    int aiEnds[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, aiEnds) != 0) {
        Fail(ClassOfErrno(errno), "no socket for a worker: " + files::Reason(errno));
    }
    files::Fd stOurs(aiEnds[0]);
    files::Fd stTheirs(aiEnds[1]);
    // The one that becomes descriptor 3 must not be that already, or it would be closed by exec().
    if (stTheirs.Get() == capi::WORKER_SOCKET) {
        stTheirs = files::Fd(fcntl(stTheirs.Get(), F_DUPFD_CLOEXEC, capi::WORKER_SOCKET + 1));
    }
    stController.iWorker = Spawn(WorkerPath(), stTheirs.Get());
    stController.iOwner = getpid();
    stController.iSocket = stOurs.Release();
}

// One call's way to the worker and back.
void Ask(Controller &stController, const capi::FRAME_S &stCall, capi::ANSWER_S &stAnswer)
{
    const bool bNew = stController.iWorker == 0 || stController.iOwner != getpid();
    Start(stController);
    capi::FRAME_S stFrame;
    if ((bNew && !capi::Send(stController.iSocket, {0, stController.strHello, "", {}})) ||
        !capi::Send(stController.iSocket, stCall) || !capi::Receive(stController.iSocket, stFrame)) {
        Fail("the worker " + End(stController) + " in the middle of '" + EscapeText(stCall.strFirst) +
             "'; what it was writing is finished or undone by the next call");
    }
    stAnswer.iExitCode = stFrame.iCode;
    stAnswer.strJson = std::move(stFrame.strFirst);
    stAnswer.strMessages = std::move(stFrame.strSecond);
    stAnswer.vecBytes = std::move(stFrame.vecBytes);
}

// As the directory is called now: the worker, and one after it, may start elsewhere.
std::string AbsoluteRoot(const char *pcRoot)
{
    std::string strRoot = pcRoot == nullptr ? "" : pcRoot;
    if (strRoot.empty()) {
        const char *pcNamed = getenv("FRUCTL_ROOT");
        strRoot = pcNamed == nullptr ? "" : pcNamed;
    }
    char acCwd[PATH_MAX];
    if (!strRoot.empty() && strRoot[0] != '/' && getcwd(acCwd, sizeof(acCwd)) != nullptr) {
        return std::string(acCwd) + "/" + strRoot;
    }
    return strRoot;
}

} // namespace

extern "C" {

BMCFRU_TOOL_CONTROLLER_S *BMCFRU_TOOL_Open(const char *pcRoot, const char *pcWho, unsigned uiWaitMs,
                                           unsigned uiFlags, BMCFRU_TOOL_ANSWER_S **ppstWhy)
{
    std::unique_ptr<Controller> upController;
    capi::ANSWER_S *pstAnswer = capi::NewAnswer([&](capi::RESULT_S &stResult) {
        (void)stResult;
        auto upNew = std::make_unique<Controller>();
        upNew->strHello = capi::Text({{"root", AbsoluteRoot(pcRoot)},
                                      {"who", pcWho == nullptr ? "libbmcfrutool" : EscapeText(pcWho)},
                                      {"waitMs", uiWaitMs},
                                      {"flags", uiFlags}});
        Start(*upNew);
        if (!capi::Send(upNew->iSocket, {0, upNew->strHello, "", {}})) {
            Fail("the worker " + End(*upNew));
        }
        upController = std::move(upNew);
    });
    if (ppstWhy != nullptr) {
        *ppstWhy = pstAnswer;
    } else {
        BMCFRU_TOOL_FreeAnswer(pstAnswer);
    }
    return upController.release();
}

void BMCFRU_TOOL_Close(BMCFRU_TOOL_CONTROLLER_S *pstController)
{
    if (pstController != nullptr && pstController->iWorker != 0) {
        if (pstController->iOwner == getpid()) {
            (void)End(*pstController); // its socket's end is what it waits for
        } else {
            close(pstController->iSocket);
        }
    }
    delete pstController;
}

int BMCFRU_TOOL_WorkerPid(BMCFRU_TOOL_CONTROLLER_S *pstController)
{
    return pstController == nullptr ? 0 : static_cast<int>(pstController->iWorker);
}

BMCFRU_TOOL_ANSWER_S *BMCFRU_TOOL_Call(BMCFRU_TOOL_CONTROLLER_S *pstController, const char *pcCall,
                                       const char *pcArguments, const void *pBytes, size_t uiSize)
{
    try {
        auto upAnswer = std::make_unique<capi::ANSWER_S>();
        CONTROLLER_S stNone;
        bool bAsked = false;
        capi::ANSWER_S stFromWorker;
        capi::Fill(*upAnswer, stNone, [&](capi::RESULT_S &stResult) {
            (void)stResult;
            if (pstController == nullptr || pcCall == nullptr || (pBytes == nullptr && uiSize != 0U)) {
                FailUsage("a null pointer stands where none is accepted");
            }
            const u8 *pucBytes = static_cast<const u8 *>(pBytes);
            const capi::FRAME_S stCall = {0, pcCall, pcArguments == nullptr ? "" : pcArguments,
                                          uiSize == 0U ? std::vector<u8>()
                                                       : std::vector<u8>(pucBytes, pucBytes + uiSize)};
            const std::lock_guard<std::mutex> stLock(pstController->mtxCalls);
            Ask(*pstController, stCall, stFromWorker);
            bAsked = true;
        });
        if (bAsked) {
            *upAnswer = std::move(stFromWorker);
        }
        return upAnswer.release();
    } catch (...) {
        return nullptr;
    }
}

} // extern "C"
