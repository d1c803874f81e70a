// SPDX-License-Identifier: Apache-2.0
// fructl assemble: a whole image from label texts, into the cache.
#include <cstring>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/name_value.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/assemble.h"

namespace {

struct ASSEMBLE_S
{
    std::string strDeviceID;
    std::vector<std::string> vecTexts; // without --id the first one is the device
    bool bForce = false;
    bool bDryRun = false;
};

void Report(const SESSION_S &stSession, const ASSEMBLE_S &stOptions, const DEVICE_S &stDevice,
            const std::vector<NAME_VALUE_S> &vecGiven)
{
    const bool bServed = stDevice.IsDatabaseOnly() || IsCacheTrusted(stDevice);
    if (stSession.bJson) {
        Json stJson = {{"device", DeviceJson(stDevice)},
                       {"dryRun", stOptions.bDryRun},
                       {"readsComeFromCache", bServed},
                       {"texts", Json::object()}};
        for (const NAME_VALUE_S &stGiven : vecGiven) {
            stJson["texts"][AssemblyTexts()[stGiven.uiIndex].pcName] = Latin1ToUtf8(stGiven.strValue);
        }
        PrintJson(stJson);
        return;
    }
    Table stTable({"FIELD", "VALUE"});
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        stTable.Row({AssemblyTexts()[stGiven.uiIndex].pcTitle, EscapeText(stGiven.strValue)});
    }
    Print(stTable.Text());
    Print(stOptions.bDryRun
              ? "nothing was written; without --dry-run: into the cache of " + stDevice.Title() + "\n"
              : Paint(Colour::Green, "Done") + ": assembled into the cache of " + stDevice.Title() + "\n");
    if (!bServed) {
        Print(Paint(Colour::Yellow, "note") +
              ": its cache is not trusted, so reads still go to the EEPROM\n");
    }
}

void RunAssemble(const SESSION_S &stSession, const ASSEMBLE_S &stOptions)
{
    std::vector<std::string> vecTexts = stOptions.vecTexts;
    TARGET_OPTIONS_S stTarget = {"", stOptions.strDeviceID};
    if (stTarget.strDeviceID.empty() && !vecTexts.empty()) {
        stTarget.strTarget = vecTexts.front();
        vecTexts.erase(vecTexts.begin());
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, stTarget);
    if (vecTexts.empty()) {
        FailUsage("no NAME=VALUE is given; accepted names: " + NamesOf(AssemblyTexts()));
    }
    const std::vector<NAME_VALUE_S> vecGiven = ParseAssembly(vecTexts);
    CheckAssembly(stDevice, vecGiven, stOptions.bForce);
    if (stOptions.bDryRun) {
        (void)PlanAssembly(stDevice, vecGiven);
    } else {
        const RootLock stLock(stSession);
        Assemble(stLock, stDevice, vecGiven);
    }
    Report(stSession, stOptions, stDevice, vecGiven);
}

} // namespace

void AddAssembleCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<ASSEMBLE_S>();
    const Command stCommand = stParent.Add(
        "assemble",
        "Build an image from texts for a device that has none, into its cache; no EEPROM is written",
        "fructl assemble fan-board board-product-name=FB2 board-serial-number=FB2240001\n"
        "fructl assemble --id 6 mfg-date=2024-05-17 product-name=\"Fan Board\" --dry-run");
    stCommand.AddOption("DEVICE NAME=VALUE", pstOptions->vecTexts,
                        "TYPE:INSTANCE or a device's name (not with --id), then each name once: " +
                            NamesOf(AssemblyTexts()));
    stCommand.AddOption("--id", pstOptions->strDeviceID, "the device by its FRU device ID instead")
        .Placeholder("N");
    stCommand.AddFlag("--force", pstOptions->bForce, "even for a device with an EEPROM of its own");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun, "check everything, write nothing");
    stCommand.Run([&stSession, pstOptions] { RunAssemble(stSession, *pstOptions); });
}
