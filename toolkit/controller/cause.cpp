// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/cause.h"

#include <cerrno>
#include <climits>
#include <optional>
#include <unistd.h>

#include "bmcfru_host.h"
#include "toolkit/base/text.h"

namespace {

// Nothing for what happens while all is well, such as a record that is not there.
std::optional<ErrorClass> ClassOf(BMCHOST_DB_REASON_E enReason)
{
    switch (enReason) {
    case BMCHOST_DB_LOCKED:
        return ErrorClass::Busy;
    case BMCHOST_DB_DAMAGED:
        return ErrorClass::Damaged;
    case BMCHOST_DB_NO_RIGHTS:
        return ErrorClass::NotPermitted;
    case BMCHOST_DB_FULL:
        return ErrorClass::DiskFull;
    case BMCHOST_DB_VERSION:
    case BMCHOST_DB_FAILED:
        return ErrorClass::Failed;
    default:
        return std::nullopt;
    }
}

} // namespace

void FailLibrary(ErrorClass enElse, const std::string &strLine, const std::string &strHint,
                 std::optional<u32> optStatus)
{
    const char *pcText = "";
    const std::optional<ErrorClass> optClass = ClassOf(BMCHOST_LastDbError(&pcText));
    Error stError = optClass.has_value() ? Error(*optClass, strLine + strHint + "; " + EscapeText(pcText))
                                         : Error(enElse, strLine + strHint);
    stError.SetStatus(optStatus);
    throw stError;
}

ErrorClass WhyNoAnswer(const FRU_DEVICE_INFO_S &stInfo)
{
    FRU_DEVICE_INFO_S stWhere = stInfo; // a packed member's address
    char acPath[PATH_MAX] = "";
    if (BMCHOST_GetEepromPath(stWhere.ucEEPROMType, &stWhere.ucBusNumber, sizeof(acPath), acPath) != 0U) {
        return ErrorClass::NoAnswer;
    }
    return access(acPath, R_OK) != 0 && ClassOfErrno(errno) == ErrorClass::NotPermitted
               ? ErrorClass::NotPermitted
               : ErrorClass::NoAnswer;
}

void FailDatabase(BMCHOST_DB_REASON_E enReason, const std::string &strLine)
{
    Fail(ClassOf(enReason).value_or(ErrorClass::Failed), strLine);
}
