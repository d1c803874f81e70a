// SPDX-License-Identifier: Apache-2.0
// fructl clear: erases a device, in the EEPROM and in the cache.
#include <cstdio>
#include <iostream>
#include <unistd.h>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "terminal/progress.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/clear.h"

namespace {

struct CLEAR_S
{
    TARGET_OPTIONS_S stTarget;
    bool bYes = false;
    bool bDryRun = false;
};

std::string WhatGoes(const DEVICE_S &stDevice)
{
    return Format("%u bytes of %s", u32{stDevice.stInfo.usSize}, stDevice.Title().c_str());
}

// Asks on a terminal; without one only --yes will do.
void Confirm(const DEVICE_S &stDevice)
{
    if (isatty(STDIN_FILENO) != 1 || isatty(STDERR_FILENO) != 1) {
        FailUsage("clear erases " + WhatGoes(stDevice) +
                  " and needs --yes when there is no terminal to ask on");
    }
    fprintf(stderr, "Erase %s for good? Type the device's name to go on: ", WhatGoes(stDevice).c_str());
    std::string strAnswer;
    std::getline(std::cin, strAnswer);
    if (strAnswer != stDevice.strName) {
        Fail("not confirmed; nothing was written");
    }
}

void RunClear(const SESSION_S &stSession, const CLEAR_S &stOptions)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, stOptions.stTarget);
    if (stOptions.bDryRun) {
        if (stSession.bJson) {
            PrintJson(
                {{"device", DeviceJson(stDevice)}, {"dryRun", true}, {"bytes", u32{stDevice.stInfo.usSize}}});
        } else {
            Print("would erase " + WhatGoes(stDevice) + "; nothing was written\n");
        }
        return;
    }
    if (!stOptions.bYes) {
        Confirm(stDevice);
    }
    const RootLock stLock(stSession);
    const std::string strSentence = ClearDevice(stLock, stDevice, TerminalProgress());
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)}, {"operationLog", strSentence}});
    } else {
        Print(Paint(Colour::Green, EscapeText(strSentence)) + "\n");
    }
}

} // namespace

void AddClearCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<CLEAR_S>();
    const Command stCommand = stParent.Add("clear", "Erase a device: every byte 0xff, in EEPROM and cache",
                                           "fructl clear psu1\nfructl clear 0x30:0 --yes");
    AddTargetOptions(stCommand, pstOptions->stTarget, false);
    stCommand.AddFlag("-y,--yes", pstOptions->bYes, "do not ask");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun, "say what would be erased, and write nothing");
    stCommand.Run([&stSession, pstOptions] { RunClear(stSession, *pstOptions); });
}
