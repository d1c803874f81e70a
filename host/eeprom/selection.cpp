// SPDX-License-Identifier: Apache-2.0
// Which back end a chip has: the root's configuration, read anew when the file has changed.
#include <cerrno>
#include <map>

#include "eeprom/registry.h"
#include "eeprom/settings.h"
#include "eeprom/write_protect.h"
#include "support/json_line.h"

namespace host {

namespace {

struct CONF_S
{
    std::map<std::string, std::string> mapSettings; // chip, its settings' text
    std::string strProblem;                         // why the file says nothing
};

// The file that was read last. Whoever replaces it gives it another inode or time.
struct READ_CONF_S
{
    u32 uiGeneration;
    struct stat stStat;
    std::shared_ptr<const CONF_S> spConf;
};
READ_CONF_S g_stRead; // guarded by mtxEeprom

bool IsSame(const struct stat &stLeft, const struct stat &stRight)
{
    return stLeft.st_dev == stRight.st_dev && stLeft.st_ino == stRight.st_ino &&
           stLeft.st_size == stRight.st_size && stLeft.st_mtim.tv_sec == stRight.st_mtim.tv_sec &&
           stLeft.st_mtim.tv_nsec == stRight.st_mtim.tv_nsec &&
           stLeft.st_ctim.tv_sec == stRight.st_ctim.tv_sec &&
           stLeft.st_ctim.tv_nsec == stRight.st_ctim.tv_nsec;
}

CONF_S Parse(const std::string &strText)
{
    const JSON json = JSON::parse(strText, nullptr, false);
    CONF_S stConf;
    if (!json.is_object() || !json.contains("chips") || !json.at("chips").is_object()) {
        stConf.strProblem = "no object with an object \"chips\"";
        return stConf;
    }
    for (const auto &[strChip, jsonSettings] : json.at("chips").items()) {
        if (!jsonSettings.is_object() || !jsonSettings.contains("backend") ||
            !jsonSettings.at("backend").is_string()) {
            stConf.strProblem = "the chip " + strChip + " has no \"backend\"";
            return stConf;
        }
        stConf.mapSettings[strChip] = ToLine(jsonSettings);
    }
    return stConf;
}

std::shared_ptr<const CONF_S> Remembered(u32 uiGeneration, const struct stat &stStat)
{
    const std::lock_guard<std::mutex> lock(Locks().mtxEeprom);
    return g_stRead.spConf != nullptr && g_stRead.uiGeneration == uiGeneration &&
                   IsSame(g_stRead.stStat, stStat)
               ? g_stRead.spConf
               : nullptr;
}

// Null: there is no such file.
std::shared_ptr<const CONF_S> Conf()
{
    const files::PLACE_S stPlace = PlaceOf(BMCHOST_EEPROM_CONF);
    const u32 uiGeneration = RootGeneration();
    struct stat stStat = {};
    int iError = files::Status(stPlace, &stStat);
    if (iError == ENOENT || iError == ENOTDIR) {
        return nullptr;
    }
    std::shared_ptr<const CONF_S> spConf = iError == 0 ? Remembered(uiGeneration, stStat) : nullptr;
    if (spConf != nullptr) {
        return spConf;
    }
    std::string strText;
    iError = files::ReadAll(stPlace, g_uiTextFileMax, &strText, &stStat);
    const auto spNew = std::make_shared<CONF_S>();
    if (iError == 0) {
        *spNew = Parse(strText);
    } else {
        spNew->strProblem = files::Reason(iError);
    }
    if (!spNew->strProblem.empty()) {
        spNew->strProblem = stPlace.Text() + ": " + spNew->strProblem;
        return spNew;
    }
    const std::lock_guard<std::mutex> lock(Locks().mtxEeprom);
    g_stRead = {uiGeneration, stStat, spNew};
    return spNew;
}

} // namespace

std::string SettingsProblem(const std::string &strSettings)
{
    const JSON json = JSON::parse(strSettings, nullptr, false);
    if (!json.is_object() || !json.contains("backend") || !json.at("backend").is_string()) {
        return "backend is missing; accepted: " + BackendNames();
    }
    const std::string strBackend = json.at("backend").get<std::string>();
    if (strBackend == "file") {
        return "";
    }
    std::string strWhy;
    const BMCHOST_BACKEND_S *pstBackend = FindBackend(strBackend, &strWhy);
    if (pstBackend == nullptr) {
        return strWhy;
    }
    try {
        (void)ReadProtectLine(strSettings);
    } catch (const SettingsError &error) {
        return error.what();
    }
    char acWhy[2U * BMCHOST_BACKEND_TEXT] = "";
    if (pstBackend->pfnCheck(strSettings.c_str(), sizeof(acWhy), acWhy) == 0) {
        return "";
    }
    return acWhy[0] == '\0' ? "the settings are refused" : acWhy;
}

SELECTION_S SelectBackend(const std::string &strChip)
{
    SELECTION_S stSelection = {nullptr, "", ""};
    const std::shared_ptr<const CONF_S> spConf = Conf();
    if (spConf == nullptr) {
        return stSelection;
    }
    // A configuration that cannot be read may have said anything of this chip: no file is taken for it.
    stSelection.strProblem = spConf->strProblem;
    const auto itChip = spConf->mapSettings.find(strChip);
    if (!stSelection.strProblem.empty() || itChip == spConf->mapSettings.end()) {
        return stSelection;
    }
    stSelection.strSettings = itChip->second;
    const std::string strBackend = JSON::parse(stSelection.strSettings).at("backend").get<std::string>();
    if (strBackend != "file") {
        stSelection.pstBackend = FindBackend(strBackend, &stSelection.strProblem);
    }
    return stSelection;
}

} // namespace host
