// SPDX-License-Identifier: Apache-2.0
// fructl serve: the controller's FRU devices for IPMI clients, through OpenIPMI's simulator.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <memory>
#include <sys/random.h>
#include <sys/signalfd.h>

#include "commands/bmc.h"
#include "commands/commands.h"
#include "commands/endpoint.h"
#include "commands/simulator.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/journal.h"
#include "toolkit/controller/root_lock.h"

namespace {

constexpr u32 PORT_DEFAULT = 9623U;
constexpr const char *ADDRESS_DEFAULT = "127.0.0.1";
constexpr const char *USER_DEFAULT = "admin";
// What the simulator keeps of them.
constexpr size_t USER_MAX = 15U;
constexpr size_t PASSWORD_MAX = 19U;
constexpr size_t PASSWORD_MADE = 16U; // of 32 letters each: 80 bits

struct SERVE_S
{
    std::string strPort = std::to_string(PORT_DEFAULT);
    std::string strAddress = ADDRESS_DEFAULT;
    std::string strUser = USER_DEFAULT;
    std::string strPasswordFile;
    std::string strRunAs;
};

// A word of the simulator's configuration: it stands in double quotes, and blanks end it all the same.
bool IsWord(const std::string &strText, size_t uiMax)
{
    return !strText.empty() && strText.size() <= uiMax &&
           std::all_of(strText.begin(), strText.end(),
                       [](char cLetter) { return cLetter > ' ' && cLetter <= '~'; });
}

std::string ReadPassword(const std::string &strFile)
{
    const std::vector<u8> vecBytes = ReadNamedFile(strFile);
    const std::string strText(vecBytes.begin(), vecBytes.end());
    std::string strPassword = strText.substr(0U, strText.find_first_of("\r\n"));
    if (!IsWord(strPassword, PASSWORD_MAX)) {
        FailRefused(
            Format("the first line of %s is no password; accepted: 1 to %zu printable ASCII characters "
                   "without blanks",
                   EscapeText(strFile).c_str(), PASSWORD_MAX));
    }
    return strPassword;
}

// One that nobody has had before, of letters that nobody mistakes for one another.
std::string MakePassword()
{
    constexpr char LETTERS[] = "abcdefghijkmnpqrstuvwxyz23456789";
    static_assert(sizeof(LETTERS) == 33U, "five bits each");
    u8 aucRandom[PASSWORD_MADE] = {};
    if (getrandom(aucRandom, sizeof(aucRandom), 0) != static_cast<ssize_t>(sizeof(aucRandom))) {
        Fail(std::string("no random password can be made: ") + strerror(errno) +
             "; --password-file FILE gives one");
    }
    std::string strPassword;
    for (const u8 ucRandom : aucRandom) {
        strPassword += LETTERS[ucRandom % 32U];
    }
    return strPassword;
}

SERVICE_S ServiceOf(const SESSION_S &stSession, const SERVE_S &stOptions)
{
    SERVICE_S stService;
    const std::optional<u32> optPort = ParseNumber(stOptions.strPort, 0xFFFFU);
    if (optPort.value_or(0U) == 0U) {
        FailUsage("--port " + EscapeText(stOptions.strPort) +
                  " is refused: clients must know the port; accepted: 1 to 65535");
    }
    if (!IsWord(stOptions.strUser, USER_MAX)) {
        FailUsage(Format("--user %s is refused; accepted: 1 to %zu printable ASCII characters without blanks",
                         EscapeText(stOptions.strUser).c_str(), USER_MAX));
    }
    stService.usPort = static_cast<u16>(*optPort);
    stService.strAddress = stOptions.strAddress;
    stService.strUser = stOptions.strUser;
    stService.strRoot = stSession.strRoot;
    stService.strRunAs = stOptions.strRunAs;
    stService.bVerbose = stSession.bVerbose;
    stService.bForeignRoot = stSession.bForeignRoot;
    (void)MakeEndpoint(stService.strAddress, stService.usPort); // fails when it is none
    stService.strPassword =
        stOptions.strPasswordFile.empty() ? MakePassword() : ReadPassword(stOptions.strPasswordFile);
    if (stService.strPassword == stService.strUser) {
        FailUsage("the user's name is refused as password; accepted: another one, or none and no "
                  "--password-file, for one that is made");
    }
    return stService;
}

// In single quotes where a shell would not take the text as it is.
std::string ShellWord(const std::string &strText)
{
    const bool bPlain = std::all_of(strText.begin(), strText.end(), [](char cLetter) {
        return isalnum(static_cast<unsigned char>(cLetter)) != 0 || strchr("._-/:@%+,", cLetter) != nullptr;
    });
    if (bPlain) {
        return strText;
    }
    std::string strOut = "'";
    for (const char cLetter : strText) {
        strOut += cLetter == '\'' ? "'\\''" : std::string(1U, cLetter);
    }
    return strOut + "'";
}

// The line that lists all devices; a password given in a file stays there. Cipher suite 3 is the best that
// the simulator speaks, and it cannot be asked for its list.
std::string ClientLine(const SERVICE_S &stService, const std::string &strPasswordFile)
{
    std::string strHost = stService.strAddress;
    strHost = strHost == "0.0.0.0" ? "127.0.0.1" : strHost == "::" ? "::1" : strHost;
    return Format("ipmitool -I lanplus -C 3 -H %s -p %u -U %s %s fru print", strHost.c_str(),
                  stService.usPort, ShellWord(stService.strUser).c_str(),
                  strPasswordFile.empty() ? ("-P " + stService.strPassword).c_str()
                                          : ("-f " + ShellWord(strPasswordFile)).c_str());
}

void Announce(const SESSION_S &stSession, const SERVE_S &stOptions, const SERVICE_S &stService,
              const Simulator &stSimulator)
{
    const size_t uiDevices = LoadDevices(stSession).size();
    const std::string strClient = ClientLine(stService, stOptions.strPasswordFile);
    if (stSession.bJson) {
        Json stFacts = {{"address", stService.strAddress}, {"port", stService.usPort},
                        {"user", stService.strUser},       {"devices", uiDevices},
                        {"pid", stSimulator.Pid()},        {"client", strClient}};
        if (stOptions.strPasswordFile.empty()) {
            stFacts["password"] = stService.strPassword; // made for this service, and told here only
        }
        if (!stSimulator.User().empty()) {
            stFacts["runsAs"] = stSimulator.User();
        }
        PrintJson(stFacts);
        EndJson();
    } else {
        const std::string strAs = stSimulator.User().empty() ? "" : ", as user " + stSimulator.User();
        Print(Format("serving %s of %s at %s, UDP port %u%s, until Ctrl-C\n  ",
                     Count(uiDevices, "FRU device").c_str(), EscapeText(stSession.strRoot).c_str(),
                     stService.strAddress.c_str(), stService.usPort, strAs.c_str()) +
              Paint(Colour::Bold, strClient) + "\n");
    }
    (void)FlushOutput();
}

// Mends what a command that was killed has left, for clients are told "busy" until then. What cannot be mended
// is told once.
std::function<void()> Mender(const SESSION_S &stSession)
{
    const auto pstTold = std::make_shared<std::string>();
    return [&stSession, pstTold] {
        if (!HasJournal()) {
            pstTold->clear();
            return;
        }
        CONTROLLER_S stQuiet = stSession;
        std::string strTold;
        stQuiet.uiWaitMs = 0U;
        stQuiet.fnWarn = [&strTold](const std::string &strLine) { strTold += strLine + "\n"; };
        try {
            const RootLock stLock(stQuiet);
        } catch (const Error &) {
            return; // whoever writes now mends it, or the next look does
        }
        if (strTold != *pstTold) {
            stSession.Warn(strTold.substr(0U, strTold.size() - 1U));
        }
        *pstTold = strTold;
    };
}

void RunServe(const SESSION_S &stSession, const SERVE_S &stOptions)
{
    RequireDesk(stSession, "serve");
    RequireController(stSession);
    stSession.GoOnForLong();
    RequireOwnRoot(stSession);
    const SERVICE_S stService = ServiceOf(stSession, stOptions);
    (void)LoadDevices(stSession); // without a device table there is nothing to serve
    // A parent may have had its children's ends ignored; then nobody could tell how the simulator has ended.
    (void)signal(SIGCHLD, SIG_DFL);
    sigset_t stSignals;
    sigemptyset(&stSignals);
    for (const int iSignal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&stSignals, iSignal);
    }
    sigprocmask(SIG_BLOCK, &stSignals, nullptr);
    const files::Fd stSignalFd(signalfd(-1, &stSignals, SFD_CLOEXEC));
    if (!stSignalFd) {
        Fail(std::string("cannot wait for signals: ") + strerror(errno));
    }
    Simulator stSimulator(stService);
    Announce(stSession, stOptions, stService, stSimulator);
    if (stSimulator.WaitForEnd(stSignalFd.Get(), Mender(stSession))) {
        Fail("the service has ended: " + stSimulator.EndText());
    }
}

} // namespace

void AddServeCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<SERVE_S>();
    const Command stCommand = stParent.Add(
        "serve", "Serve the devices to IPMI clients over the network, until Ctrl-C",
        "fructl serve\nfructl serve --port 623 --address 192.0.2.7 --user service --password-file secret");
    stCommand.AddOption("--port", pstOptions->strPort, "UDP port").Placeholder("N").ShowDefault();
    stCommand.AddOption("--address", pstOptions->strAddress, "numeric address to listen on")
        .Placeholder("A")
        .ShowDefault();
    stCommand.AddOption("--user", pstOptions->strUser, "who may log in").Placeholder("NAME").ShowDefault();
    stCommand
        .AddOption("--password-file", pstOptions->strPasswordFile,
                   "file with the password in its first line (else one is made and shown)")
        .Placeholder("FILE");
    stCommand
        .AddOption("--run-as", pstOptions->strRunAs,
                   "whom root lets the service run as (else the directory's owner, but never root)")
        .Placeholder("USER");
    stCommand.Run([&stSession, pstOptions] { RunServe(stSession, *pstOptions); });
}
