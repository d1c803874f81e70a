// SPDX-License-Identifier: Apache-2.0
// fructl provision: makes a controller from its description, as its FRU service would.
#include "toolkit/controller/provision.h"
#include "bmcfru_host.h"
#include "commands/bmc.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/provision_held.h"
#include "toolkit/controller/provision_plan.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/edit/provision_images.h"
#include "toolkit/edit/uninterrupted.h"

namespace {

struct OPTIONS_S
{
    std::string strFile;
    bool bForce = false;
    bool bDryRun = false;
    bool bWriteImages = false;
};

// "bus1-addr0xa0.bin", or for a real chip how it is reached: "kernel bus8-addr0xaa".
std::string ShortEeprom(const DEVICE_PLAN_S &stDevice)
{
    if (stDevice.IsRealChip()) {
        return stDevice.strBackend + " " + ChipName(stDevice);
    }
    const std::string strEepromDir = RealPath(BMCHOST_EEPROM_DIR).value_or("") + "/";
    const std::string strEeprom = stDevice.bHasEeprom ? EepromPath(stDevice) : "";
    return strEeprom.compare(0, strEepromDir.size(), strEepromDir) == 0
               ? strEeprom.substr(strEepromDir.size())
               : "-";
}

// Which image it begins with.
std::string ShownImage(const OPTIONS_S &stOptions, const DEVICE_PLAN_S &stDevice)
{
    if (stDevice.IsRealChip() && (!stOptions.bWriteImages || stDevice.strImage.empty())) {
        return "(the chip's own)";
    }
    return stDevice.strImage.empty() ? "(erased)" : EscapeText(stDevice.strImage);
}

// The real chips whose images in the description are not written.
std::vector<std::string> KeptChips(const OPTIONS_S &stOptions, const CONTROLLER_PLAN_S &stPlan)
{
    std::vector<std::string> vecKept;
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (stDevice.IsRealChip() && !stOptions.bWriteImages && !stDevice.strImage.empty() &&
            stDevice.vecHeld != stDevice.vecImage) {
            vecKept.emplace_back(stDevice.stInfo.acFRUName);
        }
    }
    return vecKept;
}

void PrintPlan(const SESSION_S &stSession, const OPTIONS_S &stOptions, const CONTROLLER_PLAN_S &stPlan,
               const std::vector<std::string> &vecWritten)
{
    Table stTable({">ID", "NAME", ">TYPE", ">INST", "EEPROM", ">BYTES", "IMAGE", "STORED IMAGE"});
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        stTable.Row({Format("%u", stDevice.stEntry.ucDeviceID), stDevice.stInfo.acFRUName,
                     Format("0x%02x", stDevice.stEntry.ucComponentType),
                     Format("%u", stDevice.stEntry.ucInstance), ShortEeprom(stDevice),
                     Format("%u", stDevice.stInfo.usSize), ShownImage(stOptions, stDevice),
                     stDevice.vecRecovery.empty() ? "-" : EscapeText(stDevice.stInfo.acImageFilePath)});
    }
    const std::string strDevices = Count(stPlan.vecDevices.size(), "device");
    std::string strEnd =
        stOptions.bDryRun ? "Nothing was written: the description is in order, and without --dry-run its " +
                                strDevices + " would go into " + stSession.strRoot + "\n"
                          : Paint(Colour::Green, "Done") + ": a controller with " + strDevices + " in " +
                                stSession.strRoot + "\n";
    if (!vecWritten.empty()) {
        strEnd += "Written to real chips: " + Join(vecWritten, ", ") + "\n";
    }
    const std::vector<std::string> vecKept = KeptChips(stOptions, stPlan);
    if (!vecKept.empty()) {
        strEnd += "Real chips that hold something else than their images here, and keep it: " +
                  Join(vecKept, ", ") + " (--write-images writes them)\n";
    }
    Print(stTable.Text() + "\n" + strEnd);
}

void ReportPlan(const SESSION_S &stSession, const OPTIONS_S &stOptions, const CONTROLLER_PLAN_S &stPlan,
                const std::vector<std::string> &vecWritten)
{
    if (!stSession.bJson) {
        PrintPlan(stSession, stOptions, stPlan, vecWritten);
        return;
    }
    Json stDevices = Json::array();
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        const std::string strFile = stDevice.bHasEeprom ? EepromPath(stDevice) : "";
        stDevices.push_back(
            {{"id", stDevice.stEntry.ucDeviceID},
             {"name", std::string(stDevice.stInfo.acFRUName)},
             {"eeprom", stDevice.IsRealChip() ? ChipName(stDevice) : strFile},
             {"backend", stDevice.strBackend},
             {"image", stDevice.strImage},
             {"cached", stDevice.bCached},
             {"storedImage",
              stDevice.vecRecovery.empty() ? "" : std::string(stDevice.stInfo.acImageFilePath)}});
    }
    PrintJson({{"root", stSession.strRoot},
               {"written", !stOptions.bDryRun},
               {"devices", stDevices},
               {"chipsWritten", vecWritten},
               {"chipsKept", KeptChips(stOptions, stPlan)}});
}

void RunProvision(const SESSION_S &stSession, const OPTIONS_S &stOptions)
{
    RequireDesk(stSession, "provision");
    CONTROLLER_PLAN_S stPlan = ReadPlan(stOptions.strFile);
    if (stOptions.bWriteImages) {
        RequireSoundImages(stPlan);
    }
    std::optional<RootLock> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const std::vector<u8> vecOldIDs = ExistingIDs(stSession);
    if (!vecOldIDs.empty() && !stOptions.bForce) {
        FailRefused("there is a controller with " + Count(vecOldIDs.size(), "device") + " in " +
                    stSession.strRoot + " already; --force replaces it, --root names another place");
    }
    TakeHeldImages(stPlan);
    std::vector<std::string> vecWritten;
    if (!stOptions.bDryRun) {
        {
            const Uninterrupted stUninterrupted; // from here on it is finished
            Provision(*optLock, stPlan, vecOldIDs);
        }
        if (stOptions.bWriteImages) {
            vecWritten = WriteChipImages(*optLock, stPlan);
        }
    }
    ReportPlan(stSession, stOptions, stPlan, vecWritten);
}

} // namespace

void AddProvisionCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<OPTIONS_S>();
    const Command stCommand = stParent.Add(
        "provision", "Make a controller from a description: device table, records, EEPROMs, stored images",
        "fructl provision examples/controller.json\nfructl --root /tmp/lab provision "
        "controller.json --dry-run\nfructl provision controller.json --force\n"
        "fructl provision examples/board.json --dry-run");
    stCommand
        .AddOption("FILE", pstOptions->strFile,
                   "the description in JSON (examples/README.md tells what may stand in it)")
        .Required();
    stCommand.AddFlag("--force", pstOptions->bForce, "replace the controller that is there");
    stCommand.AddFlag(
        "--write-images", pstOptions->bWriteImages,
        "write the description's images to real chips too; without it they are read only, and what "
        "they hold goes into the cache");
    stCommand.AddFlag("-n,--dry-run", pstOptions->bDryRun, "check everything, write nothing");
    stCommand.Run([&stSession, pstOptions] { RunProvision(stSession, *pstOptions); });
}
