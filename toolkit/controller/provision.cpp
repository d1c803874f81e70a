// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/provision.h"

#include <cstring>
#include <map>
#include <optional>
#include <set>

#include "bmcfru_host.h"
#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/changeover.h"
#include "toolkit/controller/serial_file.h"

namespace {

// A path of the plan lies below the root, which others may have prepared.
std::string CheckedPath(const std::string &strControllerPath)
{
    if (!RealPath(strControllerPath).has_value()) {
        FailRefused("the path " + EscapeText(strControllerPath) + " does not lie inside the controller");
    }
    return strControllerPath;
}

std::vector<FILE_CHANGE_S> FilesOf(const CONTROLLER_PLAN_S &stPlan)
{
    std::map<std::string, Bytes> mapFiles; // devices may share a chip or a stored image
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (stDevice.bHasEeprom && !stDevice.IsRealChip()) {
            mapFiles[EepromPath(stDevice).substr(strlen(BMCHOST_GetRoot()))] =
                EepromContents(stPlan, stDevice);
        }
        if (!stDevice.vecRecovery.empty()) {
            mapFiles[CheckedPath(stDevice.stInfo.acImageFilePath)] = stDevice.vecRecovery;
        }
    }
    if (const std::optional<CONF_FILE_S> optConf = EepromConf(stPlan); optConf.has_value()) {
        mapFiles[CheckedPath(optConf->strPath)] = optConf->vecBytes;
    }
    for (const CONF_FILE_S &stFile : stPlan.vecConfFiles) {
        mapFiles[CheckedPath(stFile.strPath)] = stFile.vecBytes;
    }
    std::vector<FILE_CHANGE_S> vecFiles;
    for (const auto &[strPath, vecBytes] : mapFiles) {
        vecFiles.push_back({strPath, vecBytes});
    }
    return vecFiles;
}

// Where an EEPROM lies in the controller; empty: it is no file there.
std::string EepromBelow(const FRU_DEVICE_INFO_S &stInfo)
{
    const std::string strDirectory = std::string(BMCHOST_GetRoot()) + BMCHOST_EEPROM_DIR + "/";
    char acPath[8192] = "";
    if (BMCHOST_GetEepromPath(stInfo.ucEEPROMType, &stInfo.ucBusNumber, sizeof(acPath), acPath) != 0U ||
        strncmp(acPath, strDirectory.c_str(), strDirectory.size()) != 0) {
        return "";
    }
    return acPath + strlen(BMCHOST_GetRoot());
}

// What belongs to the controller that is there, of the kinds of file that a controller has.
std::vector<std::string> FilesOfOld(const std::vector<u8> &vecOldIDs)
{
    std::vector<std::string> vecPaths = {SERIAL_FILE, SERIAL_COPY, BMCHOST_FEATURE_UPDATE,
                                         BMCHOST_EEPROM_CONF};
    for (const char *pcPath : ConfPaths()) {
        vecPaths.emplace_back(pcPath);
    }
    for (const u8 ucDeviceID : vecOldIDs) {
        FRU_DEVICE_INFO_S stInfo = {};
        if (FRU_DB_GetFRUDeviceInfo(ucDeviceID, &stInfo) != FRU_OK) {
            continue;
        }
        const std::string strEeprom = EepromBelow(stInfo);
        if (!strEeprom.empty()) {
            vecPaths.push_back(strEeprom);
            vecPaths.push_back(strEeprom.substr(0, strEeprom.rfind('.')) + ".fault"); // the chip's own
        }
        const std::string strStored(stInfo.acImageFilePath,
                                    strnlen(stInfo.acImageFilePath, sizeof(stInfo.acImageFilePath)));
        if (!strStored.empty() && RealPath(strStored).has_value()) {
            vecPaths.push_back(strStored);
        }
    }
    return vecPaths;
}

// A chip that stays keeps its fault, as it keeps its write-protect pin.
std::vector<std::string> RemovedFiles(const std::vector<u8> &vecOldIDs,
                                      const std::vector<FILE_CHANGE_S> &vecFiles)
{
    std::set<std::string> setKept;
    for (const FILE_CHANGE_S &stFile : vecFiles) {
        setKept.insert(stFile.strPath);
        setKept.insert(stFile.strPath.substr(0, stFile.strPath.rfind('.')) + ".fault");
    }
    std::vector<std::string> vecRemoved;
    for (const std::string &strPath : FilesOfOld(vecOldIDs)) {
        if (setKept.insert(strPath).second) {
            vecRemoved.push_back(strPath);
        }
    }
    return vecRemoved;
}

std::vector<DEVICE_RECORDS_S> RecordsOf(const CONTROLLER_PLAN_S &stPlan)
{
    EntityList stEntities;
    std::vector<DEVICE_RECORDS_S> vecRecords;
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        const Bytes &vecCached = stDevice.IsRealChip() ? stDevice.vecHeld : stDevice.vecImage;
        vecRecords.push_back({stDevice.stEntry, stDevice.stInfo, LocatorRecord(stDevice, stEntities),
                              stDevice.bCached ? std::optional<Bytes>(vecCached) : std::nullopt});
    }
    return vecRecords;
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

void Provision(const RootLock &stLock, const CONTROLLER_PLAN_S &stPlan, const std::vector<u8> &vecOldIDs)
{
    CHANGEOVER_S stChangeover;
    stChangeover.strCommand = stLock.Controller().strCommandLine;
    stChangeover.vecFiles = FilesOf(stPlan);
    stChangeover.vecRemoved = RemovedFiles(vecOldIDs, stChangeover.vecFiles);
    stChangeover.vecForgotten = vecOldIDs;
    stChangeover.vecDevices = RecordsOf(stPlan);
    ChangeOver(stChangeover);
}
