// SPDX-License-Identifier: Apache-2.0
// fructl recover: restores a device whose image has a damaged header from its stored image.
#include <sys/stat.h>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/recover.h"

namespace {

void Report(const SESSION_S &stSession, const DEVICE_S &stDevice, const char *pcOutcome,
            const std::string &strText)
{
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)},
                   {"outcome", pcOutcome},
                   {"storedImage", stDevice.ImagePath()},
                   {"text", strText}});
    } else {
        Print(Paint(Colour::Green, stDevice.Title()) + " " + strText + "\n");
    }
}

void RunRecover(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions);
    const RootLock stLock(stSession);
    if (Recover(stLock, stDevice) == Recovery::Fine) {
        Report(stSession, stDevice, "fine", "was fine; nothing was written");
    } else {
        Report(stSession, stDevice, "restored",
               "was damaged and is restored from " + EscapeText(stDevice.ImagePath()));
    }
}

} // namespace

void AddRecoverCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<TARGET_OPTIONS_S>();
    CLI::App *pstCommand =
        AddCommand(stParent, "recover", "Restore a device with a damaged header from its stored image",
                   "fructl recover baseboard\nfructl recover --id 0 --json");
    AddTargetOptions(pstCommand, *pstOptions, false);
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunRecover(stSession, *pstOptions); };
    });
}
