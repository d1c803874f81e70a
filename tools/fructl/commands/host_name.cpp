// SPDX-License-Identifier: Apache-2.0
// fructl host-name: what the controller calls itself, and what its host names begin with.
#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"

namespace {

constexpr size_t NAME_SIZE = 64U;

void RunHostName(const SESSION_S &stSession)
{
    RequireController(stSession);
    char acPrefix[NAME_SIZE] = "";
    ClearDiagnostics();
    FRU_GetHostNamePrefix(sizeof(acPrefix), acPrefix);
    const bool bPrefixFound = DiagnosticHint().empty();
    ClearDiagnostics();
    const std::string strName = FRU_GetSoftWareName();
    const bool bNameFound = DiagnosticHint().empty();
    if (stSession.bJson) {
        PrintJson({{"prefix", Latin1ToUtf8(acPrefix)},
                   {"prefixIsDefault", !bPrefixFound},
                   {"softwareName", Latin1ToUtf8(strName)},
                   {"softwareNameIsDefault", !bNameFound}});
        return;
    }
    const std::string strDefault = Paint(Colour::Dim, "  (the default: the controller says nothing of it)");
    Print("host-name prefix  " + EscapeText(acPrefix) + (bPrefixFound ? "" : strDefault) +
          "\nsoftware name     " + EscapeText(strName) + (bNameFound ? "" : strDefault) + "\n");
}

} // namespace

void AddHostNameCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stCommand =
        stParent.Add("host-name", "The controller's software name and its host-name prefix",
                     "fructl host-name\nfructl host-name --json");
    stCommand.Run([&stSession] { RunHostName(stSession); });
}
