// SPDX-License-Identifier: Apache-2.0
// fructl provision: makes a controller from its description, as its FRU service would.
#include "toolkit/controller/provision.h"
#include "bmcfru_host.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/provision_plan.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/uninterrupted.h"

namespace {

struct OPTIONS_S
{
    std::string strFile;
    bool bForce = false;
    bool bDryRun = false;
};

void ReportPlan(const SESSION_S &stSession, const OPTIONS_S &stOptions, const CONTROLLER_PLAN_S &stPlan)
{
    Table stTable({">ID", "NAME", ">TYPE", ">INST", "EEPROM", ">BYTES", "IMAGE", "STORED IMAGE"});
    Json stDevices = Json::array();
    const std::string strEepromDir = RealPath(BMCHOST_EEPROM_DIR).value_or("") + "/";
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        const std::string strEeprom = stDevice.bHasEeprom ? EepromPath(stDevice) : "";
        const std::string strShort = strEeprom.compare(0, strEepromDir.size(), strEepromDir) == 0
                                         ? strEeprom.substr(strEepromDir.size())
                                         : "-";
        const std::string strStored = stDevice.vecRecovery.empty() ? "" : stDevice.stInfo.acImageFilePath;
        stTable.Row({Format("%u", stDevice.stEntry.ucDeviceID), stDevice.stInfo.acFRUName,
                     Format("0x%02x", stDevice.stEntry.ucComponentType),
                     Format("%u", stDevice.stEntry.ucInstance), strShort,
                     Format("%u", stDevice.stInfo.usSize),
                     stDevice.strImage.empty() ? "(erased)" : EscapeText(stDevice.strImage),
                     strStored.empty() ? "-" : EscapeText(strStored)});
        stDevices.push_back({{"id", stDevice.stEntry.ucDeviceID},
                             {"name", std::string(stDevice.stInfo.acFRUName)},
                             {"eeprom", strEeprom},
                             {"image", stDevice.strImage},
                             {"cached", stDevice.bCached},
                             {"storedImage", strStored}});
    }
    if (stSession.bJson) {
        PrintJson({{"root", stSession.strRoot}, {"written", !stOptions.bDryRun}, {"devices", stDevices}});
        return;
    }
    const std::string strDevices = Count(stPlan.vecDevices.size(), "device");
    Print(stTable.Text() + "\n");
    Print(stOptions.bDryRun ? "Nothing was written: the description is in order, and without --dry-run its " +
                                  strDevices + " would go into " + stSession.strRoot + "\n"
                            : Paint(Colour::Green, "Done") + ": a controller with " + strDevices + " in " +
                                  stSession.strRoot + "\n");
}

void RunProvision(const SESSION_S &stSession, const OPTIONS_S &stOptions)
{
    const CONTROLLER_PLAN_S stPlan = ReadPlan(stOptions.strFile);
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const std::vector<u8> vecOldIDs = ExistingIDs(stSession);
    if (!vecOldIDs.empty() && !stOptions.bForce) {
        FailRefused("there is a controller with " + Count(vecOldIDs.size(), "device") + " in " +
                    stSession.strRoot + " already; --force replaces it, --root names another place");
    }
    if (!stOptions.bDryRun) {
        const Uninterrupted stUninterrupted; // from here on it is finished
        Provision(*optLock, stPlan, vecOldIDs);
    }
    ReportPlan(stSession, stOptions, stPlan);
}

} // namespace

void AddProvisionCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<OPTIONS_S>();
    const Command stCommand = stParent.Add(
        "provision", "Make a controller from a description: device table, records, EEPROMs, stored images",
        "fructl provision examples/controller.json\nfructl --root /tmp/lab provision "
        "controller.json --dry-run\nfructl provision controller.json --force");
    stCommand
        .AddOption("FILE", pstOptions->strFile,
                   "the description in JSON (examples/README.md tells what may stand in it)")
        .Required();
    stCommand.AddFlag("--force", pstOptions->bForce, "replace the controller that is there");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun, "check everything, write nothing");
    stCommand.Run([&stSession, pstOptions] { RunProvision(stSession, *pstOptions); });
}
