// fructl provision: makes a controller from its description, as its FRU service would.
#include "bmcfru_host.h"
#include "commands.h"
#include "console.h"
#include "error.h"
#include "image_file.h"
#include "json_out.h"
#include "provision_plan.h"
#include "text.h"

namespace {

constexpr u8 CACHE_TRUSTED = 0U;
constexpr u8 CACHE_NOT_TRUSTED = 1U;

struct OPTIONS_S
{
    std::string strFile;
    bool bForce = false;
    bool bDryRun = false;
};

void Require(u32 uiRet, const std::string &strWhat)
{
    if (uiRet != FRU_OK) {
        Fail("cannot write " + strWhat + ": " + StatusText(uiRet) + DiagnosticHint());
    }
}

std::string RealPath(const std::string &strControllerPath)
{
    char acPath[8192] = "";
    if (BMCHOST_ResolvePath(strControllerPath.c_str(), sizeof(acPath), acPath) != 0U) {
        Fail("the path " + EscapeText(strControllerPath) + " does not lie inside the controller");
    }
    return acPath;
}

std::string EepromPath(const DEVICE_PLAN_S &stDevice)
{
    char acPath[8192] = "";
    if (BMCHOST_GetEepromPath(stDevice.stInfo.ucEEPROMType, &stDevice.stInfo.ucBusNumber, sizeof(acPath),
                              acPath) != 0U) {
        Fail(std::string("the EEPROM of ") + stDevice.stInfo.acFRUName + " has no file name");
    }
    return acPath;
}

// The IDs that the controller has so far; empty when there is no controller.
std::vector<u8> ExistingIDs(const SESSION_S &stSession)
{
    std::vector<u8> vecIDs;
    FRU_DEVICE_TBL_S stTable = {};
    if (HasController(stSession) && LIB_FRU_GetFRUDeviceTbl(&stTable) == FRU_OK) {
        for (u32 i = 0; i < stTable.ucCount && i < FRU_DEVICE_TBL_MAX; i++) {
            vecIDs.push_back(stTable.astEntry[i].ucDeviceID);
        }
    }
    return vecIDs;
}

void WriteFiles(const PLAN_S &stPlan)
{
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (stDevice.bHasEeprom) {
            WriteFileBytes(EepromPath(stDevice), EepromContents(stPlan, stDevice));
        }
        if (!stDevice.vecRecovery.empty()) {
            WriteFileBytes(RealPath(stDevice.stInfo.acImageFilePath), stDevice.vecRecovery);
        }
    }
    for (const CONF_FILE_S &stFile : stPlan.vecConfFiles) {
        WriteFileBytes(RealPath(stFile.strPath), stFile.vecBytes);
    }
    // A controller has its network share from the start; the product serial number is copied to it.
    MakeParentDirectory(RealPath("/var/network/ProductSerialNumber"));
}

// A device that is no more: there is no call that deletes its record, so it is emptied; a FRU of no bytes
// cannot be read.
void Forget(u8 ucDeviceID)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDeviceID;
    Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stInfo), Format("the record of FRU device %u", ucDeviceID));
    (void)FRU_DB_DelFRUData(ucDeviceID); // fails when there was none
    Require(FRU_DB_PutFRUDataCacheStatus(ucDeviceID, CACHE_NOT_TRUSTED),
            Format("the cache status of FRU device %u", ucDeviceID));
}

void WriteRecords(const PLAN_S &stPlan, const std::vector<u8> &vecOldIDs)
{
    FRU_DEVICE_TBL_S stTable = {};
    // No table first: what is half written must not look whole.
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
    for (const u8 ucDeviceID : vecOldIDs) {
        Forget(ucDeviceID);
    }
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        const u8 ucDeviceID = stDevice.stEntry.ucDeviceID;
        const FRU_SDR_S stSdr = LocatorRecord(stDevice);
        const std::string strOf = std::string(" of ") + stDevice.stInfo.acFRUName;
        Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stDevice.stInfo), "the record" + strOf);
        Require(FRU_DB_PutFRUSDR(ucDeviceID, &stSdr), "the SDR" + strOf);
        if (stDevice.bCached) {
            Require(FRU_DB_PutFRUData(ucDeviceID, stDevice.stInfo.usSize, stDevice.vecImage.data()),
                    "the cached image" + strOf);
        } else {
            (void)FRU_DB_DelFRUData(ucDeviceID);
        }
        Require(
            FRU_DB_PutFRUDataCacheStatus(ucDeviceID, stDevice.bCached ? CACHE_TRUSTED : CACHE_NOT_TRUSTED),
            "the cache status" + strOf);
        stTable.astEntry[stTable.ucCount++] = stDevice.stEntry;
    }
    Require(FRU_DB_PutOperateFlag(0U), "the operate flag");
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
}

void ReportPlan(const SESSION_S &stSession, const OPTIONS_S &stOptions, const PLAN_S &stPlan)
{
    TABLE stTable({">ID", "NAME", ">TYPE", ">INST", "EEPROM", ">BYTES", "IMAGE", "STORED IMAGE"});
    JSON stDevices = JSON::array();
    const std::string strEepromDir = RealPath(BMCHOST_EEPROM_DIR) + "/";
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
                            : Paint(COLOUR::Green, "Done") + ": a controller with " + strDevices + " in " +
                                  stSession.strRoot + "\n");
}

void RunProvision(const SESSION_S &stSession, const OPTIONS_S &stOptions)
{
    const PLAN_S stPlan = ReadPlan(stOptions.strFile);
    std::optional<ROOT_LOCK> optLock;
    if (!stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const std::vector<u8> vecOldIDs = ExistingIDs(stSession);
    if (!vecOldIDs.empty() && !stOptions.bForce) {
        Fail("there is a controller with " + Count(vecOldIDs.size(), "device") + " in " + stSession.strRoot +
             " already; --force replaces it, --root names another place");
    }
    if (!stOptions.bDryRun) {
        WriteFiles(stPlan);
        WriteRecords(stPlan, vecOldIDs);
    }
    ReportPlan(stSession, stOptions, stPlan);
}

} // namespace

void AddProvisionCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<OPTIONS_S>();
    CLI::App *pstCommand =
        AddCommand(stParent, "provision",
                   "Make a controller from a description: device table, records, EEPROMs, stored images",
                   "fructl provision examples/controller.json\nfructl --root /tmp/lab provision "
                   "controller.json --dry-run\nfructl provision controller.json --force");
    pstCommand
        ->add_option("FILE", pstOptions->strFile,
                     "the description in JSON (examples/README.md tells what may stand in it)")
        ->required();
    pstCommand->add_flag("--force", pstOptions->bForce, "replace the controller that is there");
    pstCommand->add_flag("-n,--dry-run", pstOptions->bDryRun, "check everything, write nothing");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunProvision(stSession, *pstOptions); };
    });
}
