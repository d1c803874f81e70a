// SPDX-License-Identifier: Apache-2.0
#include "commands/bmc.h"

#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/bmc.h"

namespace {

constexpr u32 PORT_MAX = 65535U;
constexpr u32 SUITE_MAX = 255U;
constexpr unsigned PATIENCE_MIN = 1U; // seconds, and what the settings take
constexpr unsigned PATIENCE_MAX = 60U;

u32 Number(const std::string &strText, const char *pcOption, u32 uiMax, u32 uiElse)
{
    const std::optional<u32> optNumber =
        strText.empty() ? std::optional<u32>(uiElse) : ParseNumber(strText, uiMax);
    if (!optNumber.has_value()) {
        FailUsage(Format("%s %s is refused; accepted: a number up to %u", pcOption,
                         EscapeText(strText).c_str(), uiMax));
    }
    return *optNumber;
}

// The file's first line.
std::string ReadPassword(const std::string &strFile)
{
    const std::vector<u8> vecBytes = ReadFileBytes(strFile);
    const std::string strText(vecBytes.begin(), vecBytes.end());
    return strText.substr(0U, strText.find_first_of("\r\n"));
}

void RequireNone(const BMC_OPTIONS_S &stOptions)
{
    const bool bNone = stOptions.strUser.empty() && stOptions.strPasswordFile.empty() &&
                       stOptions.strPort.empty() && stOptions.strPrivilege.empty() &&
                       stOptions.strSuite.empty() && !stOptions.bRescan;
    if (!bNone) {
        FailUsage(
            "--user, --password-file, --port, --privilege, --cipher-suite and --rescan go with --bmc HOST");
    }
}

} // namespace

void AddBmcOptions(const Command &stTop, BMC_OPTIONS_S &stOptions)
{
    stTop
        .AddOption("--bmc", stOptions.strHost,
                   "another machine's management controller instead of a directory, over IPMI: a name, an "
                   "address, or /dev/ipmi0 for this machine's own")
        .Placeholder("HOST");
    stTop.AddOption("-U,--user", stOptions.strUser, "with --bmc: who logs in there").Placeholder("NAME");
    stTop
        .AddOption("-f,--password-file", stOptions.strPasswordFile,
                   "with --bmc: the file whose first line is the password (else $IPMI_PASSWORD)")
        .Placeholder("FILE");
    stTop.AddOption("--port", stOptions.strPort, "with --bmc: its UDP port (default 623)").Placeholder("N");
    stTop
        .AddOption("--privilege", stOptions.strPrivilege,
                   "with --bmc: user, operator or administrator (the default)")
        .Placeholder("LEVEL");
    stTop.AddOption("--cipher-suite", stOptions.strSuite, "with --bmc: 2, 3 (the default), 7 or 8")
        .Placeholder("N");
    stTop.AddFlag("--rescan", stOptions.bRescan,
                  "with --bmc: ask anew which FRUs it has, and forget their past images");
}

void OpenNamedController(SESSION_S &stSession, const BMC_OPTIONS_S &stOptions)
{
    if (stOptions.strHost.empty()) {
        RequireNone(stOptions);
        OpenController(stSession);
        return;
    }
    BMC_S stBmc;
    stBmc.strHost = stOptions.strHost;
    stBmc.strUser = stOptions.strUser;
    stBmc.uiPort = Number(stOptions.strPort, "--port", PORT_MAX, stBmc.uiPort);
    stBmc.uiSuite = Number(stOptions.strSuite, "--cipher-suite", SUITE_MAX, stBmc.uiSuite);
    stBmc.strPrivilege = stOptions.strPrivilege;
    stBmc.uiPatienceSeconds = std::clamp(stSession.uiWaitMs / 1000U, PATIENCE_MIN, PATIENCE_MAX);
    if (!stOptions.strPasswordFile.empty()) {
        stBmc.optPassword = ReadPassword(stOptions.strPasswordFile);
    }
    OpenBmc(stSession, stBmc, stOptions.bRescan);
}

void RequireDesk(const SESSION_S &stSession, const char *pcCommand)
{
    if (stSession.bNumbersAreIDs) {
        FailUsage(std::string("'") + pcCommand +
                  "' is for a controller in a directory, and --bmc names one that is somewhere else");
    }
}
