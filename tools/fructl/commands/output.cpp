// SPDX-License-Identifier: Apache-2.0
// Where a command puts the file that it makes.
#include "commands/commands.h"
#include "terminal/console.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"

bool OUTPUT_OPTION_S::IsPipe(const SESSION_S &stSession) const
{
    const std::string strShown = EscapeText(strFile);
    if (IsStandardOutput(strFile)) {
        if (stSession.bJson) {
            FailUsage("-o " + strShown + " and --json both want standard output; accepted: one of them");
        }
        return true;
    }
    const PathKind enKind = KindOf(strFile);
    if (enKind == PathKind::Other) {
        FailRefused(strShown + " is no file and stays as it is; accepted: a file's name, or -");
    }
    if (enKind == PathKind::File && !bForce) {
        FailRefused(strShown + " is there already; --force replaces it");
    }
    return false;
}

Option AddOutputOption(const Command &stCommand, OUTPUT_OPTION_S &stOption, const std::string &strHelp)
{
    stCommand.AddFlag("--force", stOption.bForce, "replace a file that is there");
    return stCommand.AddOption("-o,--output", stOption.strFile, strHelp).Placeholder("FILE");
}
