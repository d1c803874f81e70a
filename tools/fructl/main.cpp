// SPDX-License-Identifier: Apache-2.0
// fructl: a server's FRU inventory on the command line.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "commands/commands.h"
#include "commands/session.h"
#include "files/files.h"
#include "terminal/console.h"
#include "terminal/failure.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"

namespace {

constexpr const char *EXAMPLES = R"(Examples:
  fructl provision examples/controller.json    make a controller on your desk
  fructl list                                  its devices
  fructl show baseboard                        one device, decoded
  fructl show examples/psu1.hex                the same for an image file
  fructl COMMAND --help                        what a command takes

A DEVICE is TYPE:INSTANCE (such as 0x30:0), a device's name or, where it is only read, an image file: a path
with a slash, or --file FILE.
With --json a failure is an object on standard output too, as the member "error".

Exit codes:
)";

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

void AddGlobalOptions(CLI::App &stApp, SESSION_S &stSession)
{
    stApp
        .add_option("--root", stSession.strRoot,
                    "the controller's directory (else $FRUCTL_ROOT, else ~/.local/state/fructl)")
        ->type_name("DIR");
    stApp.add_flag("-v,--verbose", stSession.bVerbose, "print the library's diagnostics to stderr");
    stApp.add_flag("--foreign-root", stSession.bForeignRoot, "write also to a directory of another user");
    stApp.add_flag("--json", stSession.bJson, "print JSON, for programs");
    stApp
        .add_option_function<unsigned>(
            "--wait", [&stSession](const unsigned &uiSeconds) { stSession.uiWaitMs = uiSeconds * 1000U; },
            "wait so long for other commands on the same controller (default 10)")
        ->check(CLI::Range(0U, 86400U))
        ->type_name("SECONDS");
    stApp.set_version_flag("--version", "fructl " FRUCTL_VERSION);
    stApp.require_subcommand(1);
    stApp.footer(EXAMPLES + ExitCodesText());
    stApp.get_formatter()->column_width(34);
    stApp.failure_message([](const CLI::App *, const CLI::Error &) { return std::string(); });
}

// What was wrong with the command line, and where to read what is right.
Error UsageError(const CLI::App &stApp, const CLI::ParseError &stError)
{
    std::vector<std::string> vecNames;
    std::string strName = "fructl";
    const CLI::App *pstApp = &stApp;
    while (!pstApp->get_subcommands().empty()) {
        pstApp = pstApp->get_subcommands().front();
        strName += " " + pstApp->get_name();
    }
    std::string strWhat = stError.what();
    if (dynamic_cast<const CLI::RequiredError *>(&stError) != nullptr &&
        pstApp->get_require_subcommand_min() > 0U) {
        for (const CLI::App *pstCommand : pstApp->get_subcommands([](const CLI::App *) { return true; })) {
            vecNames.push_back(pstCommand->get_name());
        }
        const std::vector<std::string> vecRest = stApp.remaining(true);
        strWhat = vecRest.empty() ? "no command is named"
                                  : "there is no command '" + EscapeText(vecRest.front()) + "'";
        strWhat += "; accepted: " + Join(vecNames, ", ");
    }
    return {ErrorClass::Usage, strWhat + "; '" + strName + " --help' tells more", vecNames};
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
void Open(SESSION_S &stSession)
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
    OpenController(stSession);
}

// Also where the options could not be parsed.
bool WantsJson(const std::vector<std::string> &vecArguments)
{
    const auto itEnd = std::find(vecArguments.begin(), vecArguments.end(), "--");
    return std::find(vecArguments.begin(), itEnd, "--json") != itEnd;
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
    stSession.bJson = WantsJson({ppcArgv, ppcArgv + iArgc});
    for (int i = 0; i < iArgc; i++) {
        stSession.strCommandLine += (i == 0) ? "fructl" : " " + EscapeText(ppcArgv[i]);
    }
    CLI::App stApp("Shows, checks and edits the FRU inventory of a server's management controller.",
                   "fructl");
    AddGlobalOptions(stApp, stSession);
    AddCommands(stApp, stSession);
    try {
        stApp.parse(iArgc, ppcArgv);
        Open(stSession);
        SeparateLibraryOutput();
        stSession.fnRun();
        ShowLibraryOutput(stSession);
        EndJson();
        if (const int iError = FlushOutput(); iError != 0) {
            Fail(ClassOfErrno(iError), "standard output could not be written: " + files::Reason(iError));
        }
        return static_cast<int>(stSession.enExitCode);
    } catch (const CLI::ParseError &stError) {
        if (stError.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            stApp.exit(stError); // help or version
            return static_cast<int>(ExitCode::Done);
        }
        return TellFailure(stSession, UsageError(stApp, stError));
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
    SetColour(WantsColour(STDOUT_FILENO));
    return Run(iArgc, ppcArgv);
}
