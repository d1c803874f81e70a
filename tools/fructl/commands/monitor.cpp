// SPDX-License-Identifier: Apache-2.0
// fructl monitor: follows the controller's FRU events as they happen.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bmcfru_host.h"
#include "commands/commands.h"
#include "files/files.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"

namespace {

volatile sig_atomic_t g_iStop = 0;

void Stop(int /*iSignal*/)
{
    g_iStop = 1;
}

struct MONITOR_S
{
    bool bAll = false;
    std::string strCount;
};

std::string LabelName(u32 uiLabelID)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; i++) {
        if (g_astDIAG_FruLabel[i].uiLabelID == uiLabelID) {
            return g_astDIAG_FruLabel[i].pcLabelName;
        }
    }
    return Format("label %u", uiLabelID);
}

// One event for people. A line that is not an event is shown as it is.
std::string Describe(const std::string &strLine)
{
    const Json stEvent = ParseJsonText<Json>(strLine);
    if (!stEvent.is_object()) {
        return EscapeText(strLine);
    }
    const std::string strName = stEvent.value("event", std::string("?"));
    std::string strText = Paint(Colour::Dim, EscapeText(stEvent.value("time", std::string("?")))) + "  " +
                          Paint(Colour::Bold, EscapeText(strName));
    if (stEvent.contains("componentType")) {
        strText += Format("  0x%02x:%u", stEvent.value("componentType", 0U), stEvent.value("instance", 0U));
    }
    if (stEvent.value("labelId", 0U) != 0U) {
        strText += "  " + LabelName(stEvent.value("labelId", 0U));
    }
    if (stEvent.contains("deviceId")) {
        strText += Format("  ID %u ", stEvent.value("deviceId", 0U)) +
                   EscapeText(stEvent.value("name", std::string()));
    }
    return strText;
}

// Opens the journal, waiting for the first event to make it. None when stopped.
files::Fd OpenJournal(const files::PLACE_S &stPlace)
{
    files::Fd stFile;
    while (g_iStop == 0) {
        const int iError = files::OpenRegular(stPlace, O_RDONLY, files::Links::Ours, &stFile);
        if (iError == 0) {
            return stFile;
        }
        if (iError != ENOENT) {
            Fail(ClassOfErrno(iError),
                 "cannot read " + EscapeText(stPlace.Text()) + ": " + files::Reason(iError));
        }
        usleep(100000U);
    }
    return stFile;
}

// A journal at its limit gets another name, and a new one begins.
bool HasBegunAnew(const files::PLACE_S &stPlace, int iFd)
{
    struct stat stOpen = {};
    struct stat stNamed = {};
    return fstat(iFd, &stOpen) == 0 && files::Status(stPlace, &stNamed) == 0 &&
           (stOpen.st_ino != stNamed.st_ino || stOpen.st_dev != stNamed.st_dev);
}

// One line as it is, but for what a terminal would obey.
std::string PlainLine(std::string strLine)
{
    for (char &cLetter : strLine) {
        const u8 ucByte = static_cast<u8>(cLetter);
        cLetter = ucByte < 0x20U || ucByte == 0x7FU ? ' ' : cLetter; // JSON has escapes for them
    }
    return strLine;
}

void RunMonitor(const SESSION_S &stSession, const MONITOR_S &stOptions)
{
    RequireController(stSession);
    stSession.GoOnForLong();
    const std::optional<u32> optCount =
        stOptions.strCount.empty() ? std::optional<u32>(0U) : ParseNumber(stOptions.strCount, 1000000U);
    if (!optCount.has_value() || (!stOptions.strCount.empty() && *optCount == 0U)) {
        FailUsage("--count " + EscapeText(stOptions.strCount) + " is refused; accepted: 1 to 1000000");
    }
    struct sigaction stAction = {};
    stAction.sa_handler = Stop;
    sigaction(SIGINT, &stAction, nullptr);
    sigaction(SIGTERM, &stAction, nullptr);

    const files::PLACE_S stPlace(stSession.strRoot, BMCHOST_EVENT_JOURNAL);
    struct stat stStat = {};
    const bool bFromEnd = !stOptions.bAll && files::Status(stPlace, &stStat) == 0;
    files::Fd stFile = OpenJournal(stPlace);
    if (stFile && bFromEnd) {
        lseek(stFile.Get(), 0, SEEK_END);
    }
    std::string strPending;
    u32 uiShown = 0;
    bool bAnew = false;
    while (stFile && g_iStop == 0) {
        char acChunk[4096];
        const ssize_t iRead = read(stFile.Get(), acChunk, sizeof(acChunk));
        if (iRead <= 0) {
            // What was written ahead of the change has been read by the second look.
            if (bAnew) {
                stFile = OpenJournal(stPlace);
            }
            bAnew = !bAnew && HasBegunAnew(stPlace, stFile.Get());
            usleep(bAnew ? 0U : 50000U);
            continue;
        }
        strPending.append(acChunk, static_cast<size_t>(iRead));
        for (size_t uiEnd; (uiEnd = strPending.find('\n')) != std::string::npos;) {
            const std::string strLine = strPending.substr(0, uiEnd);
            strPending.erase(0, uiEnd + 1U);
            Print((stSession.bJson ? PlainLine(strLine) : Describe(strLine)) + "\n");
            (void)FlushOutput();
            if (++uiShown == *optCount) {
                return;
            }
        }
    }
}

} // namespace

void AddMonitorCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<MONITOR_S>();
    const Command stCommand = stParent.Add("monitor", "Follow the controller's FRU events until Ctrl-C",
                                           "fructl monitor\nfructl monitor --all --count 10 --json");
    stCommand.AddFlag("--all", pstOptions->bAll, "begin with the events of the past");
    stCommand.AddOption("--count", pstOptions->strCount, "stop after that many events").Placeholder("N");
    stCommand.Run([&stSession, pstOptions] { RunMonitor(stSession, *pstOptions); });
}
