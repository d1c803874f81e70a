// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/provision_plan.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json.h"
#include "toolkit/base/json_node.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/conf_check.h"
#include "toolkit/controller/oem_conf.h"
#include "toolkit/controller/provision_chip.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/image_file.h"

namespace {

constexpr u32 FIELD_FLAG_ALL = 7U; // every chassis, board and product label
constexpr u32 FIELD_FLAG_MAX = 9U;

// Files that a description may lay into the controller beside the images.
struct CONF_MEMBER_S
{
    const char *pcName;
    const char *pcPath;
};
constexpr CONF_MEMBER_S CONF_MEMBERS[] = {
    {"capability", BMCHOST_CAPABILITY_FILE}, {"features", BMCHOST_FEATURE_LIST},   {"oem", OEM_CONF_FILE},
    {"hardware", CONF_HARDWARE_FILE},        {"oemFile", "/mnt/sdmmc0p2/OEMFile"}, // what counts is that it
                                                                                   // is there
};

// Paths in a description count from where it lies itself.
std::string BesideFile(const std::string &strFile, const std::string &strPath)
{
    return (std::filesystem::path(strFile).parent_path() / strPath).string();
}

// The file that a member names, its failure told under the member's path.
std::vector<u8> ReadNamed(const JsonNode &stNode, const char *pcName, const std::string &strFile,
                          const std::function<std::vector<u8>(const std::string &)> &fnRead)
{
    const std::string strPath = BesideFile(strFile, stNode.Text(pcName, 1U, 4095U));
    try {
        return fnRead(strPath);
    } catch (const Error &stError) {
        stNode.RefuseMember(pcName, stError.what());
    }
}

std::vector<u8> ReadSizedImage(const JsonNode &stNode, const char *pcName, const std::string &strFile,
                               u32 uiSize)
{
    std::vector<u8> vecImage = ReadNamed(stNode, pcName, strFile, ReadImageFile);
    if (vecImage.empty() || vecImage.size() > uiSize) {
        stNode.RefuseMember(
            pcName, Format("the image has %zu bytes; accepted: 1 to %u, the FRU's size (a shorter one is "
                           "filled with 0xff)",
                           vecImage.size(), uiSize));
    }
    vecImage.resize(uiSize, ERASED);
    return vecImage;
}

void TakeName(const JsonNode &stNode, FRU_DEVICE_INFO_S &stInfo)
{
    const std::string strName = stNode.Text("name", 1U, sizeof(stInfo.acFRUName) - 1U);
    const bool bPlain = std::all_of(strName.begin(), strName.end(), [](char cChar) {
        return static_cast<u8>(cChar) > 0x20U && static_cast<u8>(cChar) < 0x7FU && cChar != ':' &&
               cChar != '/';
    });
    if (!bPlain) {
        stNode.RefuseMember("name", "'" + EscapeText(strName) +
                                        "' is refused; accepted: 1 to 15 printable ASCII characters "
                                        "without blanks, ':' and '/'");
    }
    memcpy(stInfo.acFRUName, strName.data(), strName.size());
}

// A stored image must not come to lie on what provisioning writes itself, or on the database.
bool IsUsableStoredPath(const std::string &strPath)
{
    char acPath[8192] = "";
    if (strPath[0] != '/' || strPath.back() == '/' ||
        BMCHOST_ResolvePath(strPath.c_str(), sizeof(acPath), acPath) != 0U) {
        return false;
    }
    for (const char *pcTaken : {BMCHOST_EEPROM_DIR, "/var/lib/fru", "/var/lock", "/var/log", "/conf"}) {
        char acTaken[8192] = "";
        const std::string strBelow = std::string(pcTaken) + "/";
        if (BMCHOST_ResolvePath(strBelow.c_str(), sizeof(acTaken), acTaken) != 0U ||
            (std::string(acPath) + "/").compare(0, strlen(acTaken) + 1U, std::string(acTaken) + "/") == 0) {
            return false;
        }
    }
    return true;
}

void TakeRecovery(const JsonNode &stNode, const std::string &strFile, DEVICE_PLAN_S &stDevice)
{
    const JsonNode stRecovery = stNode.Member("recoveryImage");
    stRecovery.RequireObject({"path", "file"});
    const std::string strPath = stRecovery.Text("path", 2U, sizeof(stDevice.stInfo.acImageFilePath) - 1U);
    if (!IsUsableStoredPath(strPath)) {
        stRecovery.RefuseMember(
            "path", "'" + EscapeText(strPath) +
                        "' is refused; accepted: a file's absolute path on the controller, outside "
                        "/eeprom, /conf, /var/lib/fru, /var/lock and /var/log");
    }
    memcpy(stDevice.stInfo.acImageFilePath, strPath.data(), strPath.size());
    stDevice.vecRecovery = ReadSizedImage(stRecovery, "file", strFile, stDevice.stInfo.usSize);
}

DEVICE_PLAN_S TakeDevice(const JsonNode &stNode, const std::string &strFile)
{
    stNode.RequireObject({"id", "name", "componentType", "instance", "sdrRecordId", "startOffset", "size",
                          "accessType", "eepromType", "location", "eepromSize", "fieldFlag", "databaseOnly",
                          "image", "recoveryImage", "cached"});
    DEVICE_PLAN_S stDevice = {};
    FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
    stInfo.ucDeviceID = static_cast<u8>(stNode.Number("id", 0U, 255U));
    stDevice.stEntry.ucDeviceID = stInfo.ucDeviceID;
    TakeName(stNode, stInfo);
    stDevice.stEntry.ucComponentType = static_cast<u8>(stNode.Number("componentType", 0U, 255U));
    stDevice.stEntry.ucInstance = static_cast<u8>(stNode.Number("instance", 0U, 255U));
    stDevice.stEntry.usSDRRecordID =
        static_cast<u16>(stNode.Number("sdrRecordId", 0U, 0xFFFFU, stInfo.ucDeviceID + 1U));
    stInfo.usStartOffset = static_cast<u16>(stNode.Number("startOffset", 0U, 0xFFFFU, 0U));
    stInfo.usSize = static_cast<u16>(stNode.Number("size", FRU_COMMON_HEADER_LEN, 0xFFFFU));
    stInfo.ucAccessType = static_cast<u8>(stNode.Number("accessType", 0U, 255U, 0U));
    stInfo.ucFieldFlag = static_cast<u8>(stNode.Number("fieldFlag", 0U, FIELD_FLAG_MAX, FIELD_FLAG_ALL));
    stInfo.ucDatabaseOnly = stNode.Flag("databaseOnly", false) ? 1U : 0U;
    TakeChip(stNode, stDevice);
    stDevice.vecImage.assign(stInfo.usSize, ERASED);
    if (stNode.Has("image")) {
        stDevice.vecImage = ReadSizedImage(stNode, "image", strFile, stInfo.usSize);
        stDevice.strImage = stNode.Text("image", 1U, 4095U);
    }
    if (stNode.Has("recoveryImage")) {
        TakeRecovery(stNode, strFile, stDevice);
    }
    stDevice.bCached = stNode.Flag("cached", stNode.Has("image") || stDevice.IsRealChip());
    if (stInfo.ucDatabaseOnly != 0U && !stDevice.bCached) {
        stNode.RefuseMember("cached",
                            "a databaseOnly device that is not cached could never be read; accepted: true");
    }
    return stDevice;
}

std::string NameOf(const DEVICE_PLAN_S &stDevice)
{
    return stDevice.stInfo.acFRUName; // terminated: the plan's names have at most 15 characters
}

// Refuses what two devices may not share.
void CheckAgainst(const JsonNode &stNode, const DEVICE_PLAN_S &stDevice, const DEVICE_PLAN_S &stOther)
{
    const std::string strOther =
        "already device '" + NameOf(stOther) + "'; accepted: one that no other device has";
    if (stDevice.stEntry.ucDeviceID == stOther.stEntry.ucDeviceID) {
        stNode.RefuseMember("id", Format("%u is ", stDevice.stEntry.ucDeviceID) + strOther);
    }
    if (NameOf(stDevice) == NameOf(stOther)) {
        stNode.RefuseMember("name",
                            "'" + NameOf(stDevice) +
                                "' is taken by an earlier device; accepted: one that no other device has");
    }
    if (stDevice.stEntry.ucComponentType == stOther.stEntry.ucComponentType &&
        stDevice.stEntry.ucInstance == stOther.stEntry.ucInstance) {
        stNode.RefuseMember("instance",
                            Format("component type 0x%02x, instance %u is ", stDevice.stEntry.ucComponentType,
                                   stDevice.stEntry.ucInstance) +
                                strOther);
    }
    if (stDevice.stEntry.usSDRRecordID == stOther.stEntry.usSDRRecordID) {
        stNode.RefuseMember("sdrRecordId", Format("%u is ", stDevice.stEntry.usSDRRecordID) + strOther);
    }
    if (strcmp(stDevice.stInfo.acImageFilePath, stOther.stInfo.acImageFilePath) == 0 &&
        stDevice.vecRecovery != stOther.vecRecovery) {
        stNode.RefuseMember("recoveryImage.path",
                            "device '" + NameOf(stOther) +
                                "' stores another image there; accepted: another path, or the same image");
    }
    if (SameChip(stDevice, stOther)) {
        CheckChip(stNode, stDevice, stOther);
    }
}

void TakeConf(const JsonNode &stNode, const std::string &strFile, CONTROLLER_PLAN_S &stPlan)
{
    std::vector<const char *> vecNames;
    for (const CONF_MEMBER_S &stMember : CONF_MEMBERS) {
        vecNames.push_back(stMember.pcName);
    }
    stNode.RequireObject(vecNames);
    for (const CONF_MEMBER_S &stMember : CONF_MEMBERS) {
        if (!stNode.Has(stMember.pcName)) {
            continue;
        }
        stPlan.vecConfFiles.push_back(
            {stMember.pcPath, ReadNamed(stNode, stMember.pcName, strFile, ReadFileBytes)});
        const std::string strProblem = ConfProblem(stPlan.vecConfFiles.back(), stPlan);
        if (!strProblem.empty()) {
            stNode.RefuseMember(stMember.pcName, strProblem);
        }
    }
}

} // namespace

std::vector<const char *> ConfPaths()
{
    std::vector<const char *> vecPaths;
    for (const CONF_MEMBER_S &stMember : CONF_MEMBERS) {
        vecPaths.push_back(stMember.pcPath);
    }
    return vecPaths;
}

std::string ChipName(const DEVICE_PLAN_S &stDevice)
{
    char acPath[8192] = "";
    if (!stDevice.bHasEeprom ||
        BMCHOST_GetEepromPath(stDevice.stInfo.ucEEPROMType, &stDevice.stInfo.ucBusNumber, sizeof(acPath),
                              acPath) != 0U) {
        return "";
    }
    return std::filesystem::path(acPath).stem().string();
}

CONTROLLER_PLAN_S ReadPlan(const std::string &strFile)
{
    const nlohmann::json stJson = ParseJsonFile(strFile);
    const JsonNode stRoot(stJson, strFile, "");
    stRoot.RequireObject({"devices", "conf"});
    const std::vector<JsonNode> vecNodes = stRoot.Elements("devices");
    if (vecNodes.empty() || vecNodes.size() > FRU_DEVICE_TBL_MAX) {
        stRoot.RefuseMember("devices",
                            Format("%zu devices; accepted: 1 to %u", vecNodes.size(), FRU_DEVICE_TBL_MAX));
    }
    CONTROLLER_PLAN_S stPlan;
    for (const JsonNode &stNode : vecNodes) {
        const DEVICE_PLAN_S stDevice = TakeDevice(stNode, strFile);
        for (const DEVICE_PLAN_S &stOther : stPlan.vecDevices) {
            CheckAgainst(stNode, stDevice, stOther);
        }
        stPlan.vecDevices.push_back(stDevice);
    }
    if (stRoot.Has("conf")) {
        TakeConf(stRoot.Member("conf"), strFile, stPlan);
    }
    return stPlan;
}

std::vector<u8> EepromContents(const CONTROLLER_PLAN_S &stPlan, const DEVICE_PLAN_S &stDevice)
{
    std::vector<u8> vecBytes(stDevice.uiEepromSize, ERASED);
    for (const DEVICE_PLAN_S &stOther : stPlan.vecDevices) {
        if (SameChip(stDevice, stOther)) {
            std::copy(stOther.vecImage.begin(), stOther.vecImage.end(),
                      vecBytes.begin() + stOther.stInfo.usStartOffset);
        }
    }
    return vecBytes;
}

std::optional<CONF_FILE_S> EepromConf(const CONTROLLER_PLAN_S &stPlan)
{
    Json stChips = Json::object();
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        if (stDevice.IsRealChip()) {
            stChips[ChipName(stDevice)] = Json::parse(stDevice.strSettings);
        }
    }
    if (stChips.empty()) {
        return std::nullopt;
    }
    const std::string strText = Json({{"chips", stChips}}).dump(2) + "\n";
    return CONF_FILE_S{BMCHOST_EEPROM_CONF, std::vector<u8>(strText.begin(), strText.end())};
}

FRU_SDR_S LocatorRecord(const DEVICE_PLAN_S &stDevice, EntityList &stEntities)
{
    FRU_SDR_S stSdr = {};
    const FRU_DEVICE_TBL_ENTRY_S &stEntry = stDevice.stEntry;
    const std::vector<u8> vecLocator =
        MakeLocator(stEntry.usSDRRecordID, stEntry.ucDeviceID,
                    stEntities.Take(stEntry.ucComponentType, stEntry.ucInstance), NameOf(stDevice));
    std::copy(vecLocator.begin(), vecLocator.end(), stSdr.aucData);
    return stSdr;
}
