// fructl clear: erases a device, in the EEPROM and in the cache.
#include <cstdio>
#include <iostream>
#include <unistd.h>

#include "commands.h"
#include "console.h"
#include "error.h"
#include "json_out.h"
#include "operate_log.h"
#include "progress.h"
#include "text.h"

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
    const ROOT_LOCK stLock(stSession);
    FRU_CLEAR_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    ClearDiagnostics();
    u32 uiRet = FRU_OK;
    {
        const PROGRESS stProgress("erasing " + stDevice.Title());
        uiRet = LIB_FRU_ClearFRUElectronicLabel(&stPara);
    }
    const std::string strHint = DiagnosticHint();
    if (stPara.acOperateLog[0] != '\0') {
        RecordOperation(uiRet == FRU_OK, stPara.acOperateLog, stPara.ucOperateLogType);
    }
    if (uiRet != FRU_OK) {
        Fail(stDevice.Title() + " could not be erased: " + StatusText(uiRet) + strHint);
    }
    if (stSession.bJson) {
        PrintJson({{"device", DeviceJson(stDevice)}, {"operationLog", stPara.acOperateLog}});
    } else {
        Print(Paint(COLOUR::Green, EscapeText(stPara.acOperateLog)) + "\n");
    }
}

} // namespace

void AddClearCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<CLEAR_S>();
    CLI::App *pstCommand =
        AddCommand(stParent, "clear", "Erase a device: every byte 0xff, in EEPROM and cache",
                   "fructl clear psu1\nfructl clear 0x30:0 --yes");
    AddTargetOptions(pstCommand, pstOptions->stTarget, false);
    pstCommand->add_flag("-y,--yes", pstOptions->bYes, "do not ask");
    pstCommand->add_flag("--dry-run", pstOptions->bDryRun, "say what would be erased, and write nothing");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunClear(stSession, *pstOptions); };
    });
}
