// SPDX-License-Identifier: Apache-2.0
// How a command ends: its exit code, and a failure as programs read it.
#ifndef TOOLKIT_TASK_FAILURE_H
#define TOOLKIT_TASK_FAILURE_H

#include <string>
#include <utility>
#include <vector>

#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/controller.h"

// Stable: scripts decide on them.
enum class ExitCode
{
    Done = 0,
    Failed = 1,
    Different = 1, // of 'diff', which tells trouble by 2
    Usage = 2,
    Refused = 3,
    NotFound = 4,
    NoAnswer = 5,
    Damaged = 6,
    Busy = 7,
    NotPermitted = 8,
    DiskFull = 9,
    HalfWritten = 10
};

ExitCode ExitCodeOf(ErrorClass enClass);

// For the help: every code with its word, and what it means.
std::vector<std::pair<std::string, std::string>> ExitCodeRows();

// {"code", "exitCode", "message"}, with "device" where just one was named, "status" where a call of the library failed,
// and "accepted" where that is known.
Json FailureJson(const CONTROLLER_S &stController, const Error &stError, ExitCode enCode);

#endif
