// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/failure.h"

#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"

namespace {

struct CODE_S
{
    ErrorClass enClass;
    ExitCode enCode;
    const char *pcMeaning;
};

constexpr CODE_S CODES[] = {
    {ErrorClass::Failed, ExitCode::Failed,
     "anything else, and a check that says no (verify, diff: different)"},
    {ErrorClass::Usage, ExitCode::Usage, "wrong usage (diff: any trouble)"},
    {ErrorClass::Refused, ExitCode::Refused, "a value, a name or what a file holds is not accepted"},
    {ErrorClass::NotFound, ExitCode::NotFound, "no such device, controller or file"},
    {ErrorClass::NoAnswer, ExitCode::NoAnswer, "a chip does not answer, or does not keep what is written"},
    {ErrorClass::Damaged, ExitCode::Damaged, "an image, a record or the database is damaged"},
    {ErrorClass::Busy, ExitCode::Busy, "others kept the lock all the time that was waited"},
    {ErrorClass::NotPermitted, ExitCode::NotPermitted, "the user may not do that there"},
    {ErrorClass::DiskFull, ExitCode::DiskFull, "the disk is full"},
    {ErrorClass::HalfWritten, ExitCode::HalfWritten, "a write was cut short and is not mended"},
};

} // namespace

ExitCode ExitCodeOf(ErrorClass enClass)
{
    for (const CODE_S &stCode : CODES) {
        if (stCode.enClass == enClass) {
            return stCode.enCode;
        }
    }
    return ExitCode::Failed;
}

std::vector<std::pair<std::string, std::string>> ExitCodeRows()
{
    std::vector<std::pair<std::string, std::string>> vecRows = {{" 0", "done"}};
    for (const CODE_S &stCode : CODES) {
        vecRows.emplace_back(Format("%2d  %s", static_cast<int>(stCode.enCode), ErrorWord(stCode.enClass)),
                             stCode.pcMeaning);
    }
    return vecRows;
}

Json FailureJson(const CONTROLLER_S &stController, const Error &stError, ExitCode enCode)
{
    Json stJson = {{"code", ErrorWord(stError.Class())},
                   {"exitCode", static_cast<int>(enCode)},
                   {"message", stError.what()}};
    const auto &vecNamed = stController.vecNamed;
    if (!vecNamed.empty() && DeviceJson(*vecNamed.front()) == DeviceJson(*vecNamed.back())) {
        stJson["device"] = DeviceJson(*vecNamed.front());
    }
    if (stError.Status().has_value()) {
        stJson["status"] = *stError.Status();
    }
    for (const std::string &strAccepted : stError.Accepted()) {
        stJson["accepted"].push_back(strAccepted);
    }
    return stJson;
}
