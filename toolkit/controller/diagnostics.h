// SPDX-License-Identifier: Apache-2.0
// What the library and the platform report while they work.
#ifndef TOOLKIT_CONTROLLER_DIAGNOSTICS_H
#define TOOLKIT_CONTROLLER_DIAGNOSTICS_H

#include <functional>
#include <string>
#include <vector>

#include "lib_fru_types.h"

struct DIAGNOSTIC_S
{
    u32 uiSeverity; // as syslog counts: 0 the worst
    std::string strFile;
    u32 uiLine;
    std::string strText; // escaped
};

// Keeps the reports of failures and warnings (severity 4 or worse) from now on, and hands every report to
// fnEach, which may be empty.
void KeepDiagnostics(std::function<void(const DIAGNOSTIC_S &stDiagnostic)> fnEach);

// The texts of those kept since the last of these two calls, in order. Both forget them.
std::vector<std::string> TakeDiagnostics();
void ClearDiagnostics();

// The first of them, as " (the library says: ...)", or nothing: the first failure is the cause of those after
// it.
std::string DiagnosticHint();

// Of those texts the first that is not about how an image stores its texts, in the same words.
std::string Cause(const std::vector<std::string> &vecSaid);

#endif
