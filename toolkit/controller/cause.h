// SPDX-License-Identifier: Apache-2.0
// Why the platform failed beneath the library, whose status codes do not tell.
#ifndef TOOLKIT_CONTROLLER_CAUSE_H
#define TOOLKIT_CONTROLLER_CAUSE_H

#include <optional>
#include <string>

#include "bmcfru_host.h"
#include "lib_fru_types.h"
#include "toolkit/base/error.h"

// Fails because a call of the library did. Where the database was the cause (locked, damaged, no rights,
// full), that decides on the class and stands at the line's end, behind strHint, what the library itself says.
// optStatus: the call's status code, for programs.
[[noreturn]] void FailLibrary(ErrorClass enElse, const std::string &strLine, const std::string &strHint = "",
                              std::optional<u32> optStatus = std::nullopt);

// Why a chip did not answer: NotPermitted where the user may not read its file or device, else NoAnswer.
ErrorClass WhyNoAnswer(const FRU_DEVICE_INFO_S &stInfo);

// Fails with a reason that the database itself has given.
[[noreturn]] void FailDatabase(BMCHOST_DB_REASON_E enReason, const std::string &strLine);

#endif
