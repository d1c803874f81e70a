// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/provision.h"

#include <optional>

#include "bmcfru_host.h"
#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/serial_file.h"

namespace {

void Require(u32 uiRet, const std::string &strWhat)
{
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::Failed, "cannot write " + strWhat + ": " + StatusText(uiRet),
                    DiagnosticHint());
    }
}

// Where a path of the plan lies: below the root, which others may have prepared.
files::PLACE_S PlacePath(const std::string &strControllerPath)
{
    if (!RealPath(strControllerPath).has_value()) {
        FailRefused("the path " + EscapeText(strControllerPath) + " does not lie inside the controller");
    }
    return {BMCHOST_GetRoot(), strControllerPath};
}

void WriteFiles(const CONTROLLER_PLAN_S &stPlan)
{
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (stDevice.bHasEeprom) {
            const std::string strRoot = BMCHOST_GetRoot();
            WriteFileBytes({strRoot, EepromPath(stDevice).substr(strRoot.size())},
                           EepromContents(stPlan, stDevice));
        }
        if (!stDevice.vecRecovery.empty()) {
            WriteFileBytes(PlacePath(stDevice.stInfo.acImageFilePath), stDevice.vecRecovery);
        }
    }
    for (const CONF_FILE_S &stFile : stPlan.vecConfFiles) {
        WriteFileBytes(PlacePath(stFile.strPath), stFile.vecBytes);
    }
    // A controller has its network share from the start; the product serial number is copied to it.
    MakeParentDirectory(PlacePath(SERIAL_COPY));
}

// A device that is no more: there is no call that deletes its record, so it is emptied; a FRU of no bytes
// cannot be read.
void Forget(u8 ucDeviceID)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDeviceID;
    Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stInfo), Format("the record of FRU device %u", ucDeviceID));
    (void)FRU_DB_DelFRUData(ucDeviceID); // fails when there was none
    Require(FRU_DB_PutFRUDataCacheStatus(ucDeviceID, FRU_CACHE_UNTRUSTED),
            Format("the cache status of FRU device %u", ucDeviceID));
}

void WriteRecords(const CONTROLLER_PLAN_S &stPlan, const std::vector<u8> &vecOldIDs)
{
    FRU_DEVICE_TBL_S stTable = {};
    // No table first: what is half written must not look whole.
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
    for (const u8 ucDeviceID : vecOldIDs) {
        Forget(ucDeviceID);
    }
    EntityList stEntities;
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        const u8 ucDeviceID = stDevice.stEntry.ucDeviceID;
        const FRU_SDR_S stSdr = LocatorRecord(stDevice, stEntities);
        const std::string strOf = std::string(" of ") + stDevice.stInfo.acFRUName;
        Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stDevice.stInfo), "the record" + strOf);
        Require(FRU_DB_PutFRUSDR(ucDeviceID, &stSdr), "the SDR" + strOf);
        if (stDevice.bCached) {
            Require(FRU_DB_PutFRUData(ucDeviceID, stDevice.stInfo.usSize, stDevice.vecImage.data()),
                    "the cached image" + strOf);
        } else {
            (void)FRU_DB_DelFRUData(ucDeviceID);
        }
        Require(FRU_DB_PutFRUDataCacheStatus(ucDeviceID,
                                             stDevice.bCached ? FRU_CACHE_TRUSTED : FRU_CACHE_UNTRUSTED),
                "the cache status" + strOf);
        stTable.astEntry[stTable.ucCount++] = stDevice.stEntry;
    }
    Require(FRU_DB_PutOperateFlag(0U), "the operate flag");
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
}

} // namespace

std::vector<u8> ExistingIDs(const CONTROLLER_S &stController)
{
    std::vector<u8> vecIDs;
    FRU_DEVICE_TBL_S stTable = {};
    if (!HasController(stController)) {
        return vecIDs;
    }
    const char *pcText = "";
    if (LIB_FRU_GetFRUDeviceTbl(&stTable) == FRU_OK) {
        for (u32 i = 0; i < stTable.ucCount && i < FRU_DEVICE_TBL_MAX; i++) {
            vecIDs.push_back(stTable.astEntry[i].ucDeviceID);
        }
    } else if (const BMCHOST_DB_REASON_E enReason = BMCHOST_LastDbError(&pcText);
               enReason != BMCHOST_DB_NO_RECORD) {
        FailDatabase(enReason, EscapeText(pcText)); // there may be a table
    }
    return vecIDs;
}

std::string EepromPath(const DEVICE_PLAN_S &stDevice)
{
    char acPath[8192] = "";
    if (BMCHOST_GetEepromPath(stDevice.stInfo.ucEEPROMType, &stDevice.stInfo.ucBusNumber, sizeof(acPath),
                              acPath) != 0U) {
        FailRefused(std::string("the EEPROM of ") + stDevice.stInfo.acFRUName + " has no file name");
    }
    return acPath;
}

void Provision(const CONTROLLER_PLAN_S &stPlan, const std::vector<u8> &vecOldIDs)
{
    WriteFiles(stPlan);
    WriteRecords(stPlan, vecOldIDs);
}
