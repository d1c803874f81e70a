// SPDX-License-Identifier: Apache-2.0
// fructl: a server's FRU inventory on the command line.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "commands/bmc.h"
#include "commands/commands.h"
#include "commands/session.h"
#include "files/files.h"
#include "terminal/command_line.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/task/failure.h"

namespace {

constexpr const char *EXAMPLES = "fructl provision examples/controller.json  make a controller on your desk\n"
                                 "fructl list  its devices\n"
                                 "fructl show baseboard  one device, decoded\n"
                                 "fructl show examples/psu1.hex  the same for an image file\n"
                                 "fructl --bmc bmc7 -U admin -f secret show 0  FRU 0 of another machine's "
                                 "management controller\n"
                                 "fructl help label set  what a command takes";

void AddSections(const Command &stTop)
{
    stTop.AddSection(
        "", "A DEVICE is TYPE:INSTANCE (such as 0x30:0), a device's name or, where it is only read, an "
            "image file: a path with a slash, or --file FILE. With --bmc it is a FRU device ID of that "
            "controller, or a name that list shows. With --json a failure is an object on "
            "standard output too, as the member \"error\".");
    stTop.AddSection(
        "Environment", "",
        {{"FRUCTL_ROOT", "the controller's directory, where no --root names it"},
         {"HOME", "where it is looked for else: ~/.local/state/fructl"},
         {"XDG_STATE_HOME", "where --bmc keeps what it knows of controllers; else ~/.local/state"},
         {"IPMI_PASSWORD", "the password for --bmc and for devices behind other controllers"},
         {"NO_COLOR", "if it is not empty: no colours, unless --color asks for them"},
         {"COLUMNS", "how wide tables and helps are; else as wide as the terminal"},
         {"LC_ALL, LC_CTYPE, LANG", "a UTF-8 terminal shows letters beyond ASCII, others get \\xNN"}});
    stTop.AddSection("Exit codes", "", ExitCodeRows());
}

void Complain(const std::string &strLine)
{
    // Whatever was printed so far comes first.
    (void)FlushOutput();
    std::string strOut = strLine;
    for (char &cChar : strOut) {
        cChar = (cChar == '\n') ? ' ' : cChar;
    }
    const bool bColour = WantsColour(STDERR_FILENO);
    fprintf(stderr, "%sfructl:%s %s\n", bColour ? "\x1b[1;31m" : "", bColour ? "\x1b[0m" : "",
            strOut.c_str());
}

void AddGlobalOptions(const Command &stTop, SESSION_S &stSession, unsigned &uiWaitSeconds)
{
    stTop
        .AddOption("--root", stSession.strRoot,
                   "the controller's directory (else $FRUCTL_ROOT, else ~/.local/state/fructl)")
        .Placeholder("DIR");
    stTop.AddFlag("-v,--verbose", stSession.bVerbose, "print the library's diagnostics to stderr");
    stTop.AddFlag("--foreign-root", stSession.bForeignRoot, "write also to a directory of another user");
    stTop.AddFlag("--json", stSession.bJson, "print JSON, for programs");
    stTop
        .AddOption("--color", stSession.strColour,
                   "colours: on a terminal where NO_COLOR is not set (as without this), always or never")
        .OneOf({"auto", "always", "never"})
        .Placeholder("auto|always|never");
    stTop
        .AddOption("--wait", uiWaitSeconds,
                   "wait so long for other commands on the same controller, and for what --bmc asks "
                   "(default 10)")
        .UpTo(86400U)
        .Placeholder("SECONDS");
}

// What the library printed belongs to its diagnostics.
void ShowLibraryOutput(const SESSION_S &stSession)
{
    const std::string strText = TakeLibraryOutput();
    if (stSession.bVerbose && !strText.empty()) {
        fprintf(stderr, "[stdout] %s\n", EscapeText(strText).c_str());
    }
}

// The controller, with what is told of it while a command runs on stderr.
void Open(SESSION_S &stSession, const BMC_OPTIONS_S &stBmc)
{
    KeepDiagnostics([&stSession](const DIAGNOSTIC_S &stDiagnostic) {
        if (stSession.bVerbose) {
            fprintf(stderr, "[%u] %s:%u: %s\n", stDiagnostic.uiSeverity, stDiagnostic.strFile.c_str(),
                    stDiagnostic.uiLine, stDiagnostic.strText.c_str());
        }
    });
    stSession.fnWarn = [](const std::string &strLine) {
        fprintf(stderr, "fructl: warning: %s\n", strLine.c_str());
    };
    OpenNamedController(stSession, stBmc);
}

// What has to hold where the options cannot be parsed, too.
void LookAhead(const std::vector<std::string> &vecArguments, SESSION_S &stSession)
{
    constexpr const char *COLOUR = "--color=";
    const auto itEnd = std::find(vecArguments.begin(), vecArguments.end(), "--");
    stSession.bJson = std::find(vecArguments.begin(), itEnd, "--json") != itEnd;
    for (auto itWord = vecArguments.begin(); itWord != itEnd; ++itWord) {
        const bool bInOne = itWord->compare(0, strlen(COLOUR), COLOUR) == 0;
        if (bInOne || (*itWord == "--color" && itWord + 1 != itEnd)) {
            const std::string strWord = bInOne ? itWord->substr(strlen(COLOUR)) : *(itWord + 1);
            SetColourMode(ParseColourMode(strWord).value_or(ColourMode::Auto));
        }
    }
}

// The line on stderr, with --json the object too; the exit code.
int TellFailure(const SESSION_S &stSession, const Error &stError)
{
    const ExitCode enCode = stSession.optFailure.value_or(ExitCodeOf(stError.Class()));
    ShowLibraryOutput(stSession);
    if (stSession.bJson) {
        EndJson(FailureJson(stSession, stError, enCode));
    }
    Complain(stError.what());
    return static_cast<int>(enCode);
}

int Run(int iArgc, char **ppcArgv)
{
    SESSION_S stSession;
    LookAhead({ppcArgv, ppcArgv + iArgc}, stSession);
    for (int i = 0; i < iArgc; i++) {
        stSession.strCommandLine += (i == 0) ? "fructl" : " " + EscapeText(ppcArgv[i]);
    }
    CommandLine stLine("fructl",
                       "Shows, checks and edits the FRU inventory of a server's management controller.",
                       EXAMPLES, "fructl " FRUCTL_VERSION);
    unsigned uiWaitSeconds = stSession.uiWaitMs / 1000U;
    BMC_OPTIONS_S stBmc;
    AddGlobalOptions(stLine.Top(), stSession, uiWaitSeconds);
    AddBmcOptions(stLine.Top(), stBmc);
    AddSections(stLine.Top());
    AddCommands(stLine.Top(), stSession);
    try {
        const std::function<void()> fnRun = stLine.Parse(iArgc, ppcArgv);
        if (fnRun == nullptr) {
            return static_cast<int>(ExitCode::Done);
        }
        stSession.uiWaitMs = uiWaitSeconds * 1000U;
        Open(stSession, stBmc);
        SeparateLibraryOutput();
        fnRun();
        ShowLibraryOutput(stSession);
        EndJson();
        if (const int iError = FlushOutput(); iError != 0) {
            Fail(ClassOfErrno(iError), "standard output could not be written: " + files::Reason(iError));
        }
        return static_cast<int>(stSession.enExitCode);
    } catch (const Error &stError) {
        return TellFailure(stSession, stError);
    } catch (const std::exception &stError) {
        return TellFailure(stSession, {ErrorClass::Failed, std::string("failed: ") + stError.what()});
    }
}

} // namespace

int main(int iArgc, char **ppcArgv)
{
    // The bytes of a date must not depend on where the desk stands: controllers run in UTC.
    setenv("TZ", "UTC0", 1);
    // A limit on file sizes is an error like a full disk, told and handled.
    (void)signal(SIGXFSZ, SIG_IGN);
    return Run(iArgc, ppcArgv);
}
