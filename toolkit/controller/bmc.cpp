// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/bmc.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "bmcfru_host.h"
#include "files/files.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/journal.h"
#include "toolkit/controller/provision.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/image/erased.h"

namespace {

constexpr u32 STANDARD_PORT = 623U;
constexpr u32 LAST_FRU = 254U; // 255 is reserved
constexpr u8 COMPONENT_TYPE = 0x20U;
constexpr u8 FIELD_FLAG_ALL = 7U; // every chassis, board and product label
constexpr const char *PASSWORD = "IPMI_PASSWORD";
constexpr size_t CONF_MAX = 1024U * 1024U;

Json Settings(const BMC_S &stBmc, u32 uiFru)
{
    Json stSettings = {{"backend", "ipmi"},
                       {"bus", 0},
                       {"address", uiFru},
                       {"switchLevel", 0},
                       {"host", stBmc.strHost},
                       {"port", stBmc.uiPort},
                       {"user", stBmc.strUser},
                       {"cipherSuite", stBmc.uiSuite},
                       {"timeoutSeconds", stBmc.uiPatienceSeconds},
                       {"fru", uiFru}};
    if (!stBmc.strPrivilege.empty()) {
        stSettings["privilege"] = stBmc.strPrivilege;
    }
    return stSettings;
}

std::string TextOf(const Json &stJson)
{
    return stJson.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Check(const BMC_S &stBmc)
{
    char acWhy[1024] = "";
    if (BMCHOST_CheckEepromSettings(TextOf(Settings(stBmc, 0U)).c_str(), sizeof(acWhy), acWhy) != 0U) {
        FailUsage("--bmc " + EscapeText(stBmc.strHost) + " is refused: " + EscapeText(acWhy));
    }
}

// The library that logs in takes the password from there. No process but this one sees it.
void TakePassword(const BMC_S &stBmc)
{
    if (stBmc.optPassword.has_value() && setenv(PASSWORD, stBmc.optPassword->c_str(), 1) != 0) {
        Fail(std::string("the password cannot be kept: ") + strerror(errno));
    }
    const bool bLocal = stBmc.strHost.rfind('/', 0U) == 0U;
    if (!bLocal && getenv(PASSWORD) == nullptr) {
        FailUsage("no password for " + EscapeText(stBmc.strHost) +
                  "; accepted: --password-file FILE, or the environment's IPMI_PASSWORD");
    }
}

[[noreturn]] void FailAsking(const BMC_S &stBmc, u32 uiError, const char *pcWhy)
{
    const ErrorClass enClass = uiError == EACCES         ? ErrorClass::NotPermitted
                               : uiError == EHOSTUNREACH ? ErrorClass::NoAnswer
                               : uiError == EINVAL       ? ErrorClass::Refused
                                                         : ErrorClass::Failed;
    Fail(enClass, "the FRUs of " + EscapeText(stBmc.strHost) + " cannot be asked for: " + EscapeText(pcWhy));
}

DEVICE_PLAN_S PlanOf(const BMC_S &stBmc, u32 uiFru, u32 uiSize)
{
    const u8 ucFru = static_cast<u8>(uiFru);
    DEVICE_PLAN_S stDevice = {};
    stDevice.stEntry.ucDeviceID = ucFru;
    stDevice.stEntry.ucComponentType = COMPONENT_TYPE;
    stDevice.stEntry.ucInstance = ucFru;
    stDevice.stEntry.usSDRRecordID = static_cast<u16>(uiFru + 1U);
    FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
    stInfo.ucDeviceID = ucFru;
    const std::string strName = Format("fru%u", uiFru);
    memcpy(stInfo.acFRUName, strName.data(), strName.size());
    stInfo.usSize = static_cast<u16>(uiSize);
    stInfo.ucFieldFlag = FIELD_FLAG_ALL;
    stInfo.ucEEPROMType = FRU_EEPROM_TYPE_MIN;
    stInfo.ucAddress = ucFru;
    stDevice.bHasEeprom = true;
    stDevice.uiEepromSize = uiSize;
    stDevice.strBackend = "ipmi";
    stDevice.strSettings = TextOf(Settings(stBmc, uiFru));
    stDevice.vecImage.assign(uiSize, ERASED);
    return stDevice;
}

// Every FRU device ID is asked for: the controller's records of them are not all there always.
CONTROLLER_PLAN_S Discover(const CONTROLLER_S &stController, const BMC_S &stBmc)
{
    CONTROLLER_PLAN_S stPlan;
    for (u32 uiFru = 0; uiFru <= LAST_FRU; uiFru++) {
        char acWhy[1024] = "";
        u32 uiSize = 0;
        const u32 uiError =
            BMCHOST_AskEeprom(TextOf(Settings(stBmc, uiFru)).c_str(), &uiSize, sizeof(acWhy), acWhy);
        if (uiError == EACCES || uiError == EHOSTUNREACH || uiError == EINVAL) {
            FailAsking(stBmc, uiError, acWhy);
        }
        if (uiError != 0U || uiSize < FRU_COMMON_HEADER_LEN) {
            continue; // there is none, or it has nothing to show
        }
        if (stPlan.vecDevices.size() == FRU_DEVICE_TBL_MAX) {
            stController.Warn(Format("%s has more than %u FRUs; those from ID %u on are left out",
                                     EscapeText(stBmc.strHost).c_str(), FRU_DEVICE_TBL_MAX, uiFru));
            break;
        }
        stPlan.vecDevices.push_back(PlanOf(stBmc, uiFru, uiSize));
    }
    if (stPlan.vecDevices.empty()) {
        Fail(ErrorClass::NotFound, EscapeText(stBmc.strHost) + " answers, and has no FRU");
    }
    return stPlan;
}

// The chips' settings in the root; fails where it is no root of that controller.
Json ReadChips(const CONTROLLER_S &stController, const BMC_S &stBmc)
{
    std::string strText;
    const int iError = files::ReadAll({stController.strRoot, BMCHOST_EEPROM_CONF}, CONF_MAX, &strText);
    const Json stConf = iError == 0 ? ParseJsonText<Json>(strText) : Json();
    bool bOurs = stConf.is_object() && stConf.contains("chips") && stConf.at("chips").is_object();
    if (bOurs) {
        for (const auto &[strChip, stChip] : stConf.at("chips").items()) {
            bOurs = bOurs && stChip.is_object() && stChip.value("backend", "") == "ipmi" &&
                    stChip.value("host", "") == stBmc.strHost;
        }
    }
    if (!bOurs) {
        FailRefused("the controller in " + EscapeText(stController.strRoot) + " is not " +
                    EscapeText(stBmc.strHost) +
                    "; --root names another place, or without --root one is taken that is its own");
    }
    return stConf.at("chips");
}

// Another user, port or cipher suite than the last time.
void RenewLogin(const CONTROLLER_S &stController, const BMC_S &stBmc)
{
    const auto fnNew = [&](const Json &stChips) {
        Json stNew = Json::object();
        for (const auto &[strChip, stChip] : stChips.items()) {
            stNew[strChip] = Settings(stBmc, stChip.value("fru", 0U));
        }
        return stNew;
    };
    const Json stChips = ReadChips(stController, stBmc);
    if (fnNew(stChips) == stChips) {
        return;
    }
    const files::PLACE_S stPlace = {stController.strRoot, BMCHOST_EEPROM_CONF};
    const std::string strText = Json({{"chips", fnNew(stChips)}}).dump(2) + "\n";
    // Ahead of the lock: what it mends, it mends with this login.
    RequireOwnRoot(stController);
    WriteFileBytes(stPlace, {strText.begin(), strText.end()});
}

} // namespace

std::string BmcRoot(const BMC_S &stBmc)
{
    const char *pcState = getenv("XDG_STATE_HOME");
    const char *pcHome = getenv("HOME");
    std::string strBase = pcState == nullptr ? "" : pcState;
    if (strBase.empty() || strBase[0] != '/') {
        if (pcHome == nullptr || *pcHome == '\0') {
            FailUsage("there is no home directory to keep anything in; --root DIR names a place");
        }
        strBase = std::string(pcHome) + "/.local/state";
    }
    std::string strName;
    for (const char cLetter : stBmc.strHost) {
        const bool bPlain =
            isalnum(static_cast<unsigned char>(cLetter)) != 0 || strchr(".-_:", cLetter) != nullptr;
        strName += bPlain ? cLetter : '_';
    }
    strName += stBmc.uiPort == STANDARD_PORT ? "" : Format(",%u", stBmc.uiPort);
    return strBase + "/fructl/bmc/" + (strName.front() == '.' ? "_" : "") + strName;
}

void OpenBmc(CONTROLLER_S &stController, const BMC_S &stBmc, bool bAnew)
{
    Check(stBmc);
    TakePassword(stBmc);
    if (stController.strRoot.empty()) {
        stController.strRoot = BmcRoot(stBmc);
    }
    stController.bNumbersAreIDs = true;
    OpenController(stController);
    const bool bKnown = HasController(stController);
    if (bKnown) {
        RenewLogin(stController, stBmc);
    }
    if (bKnown && !bAnew && !ExistingIDs(stController).empty()) {
        return;
    }
    const CONTROLLER_PLAN_S stPlan = Discover(stController, stBmc);
    const RootLock stLock(stController);
    const std::vector<u8> vecOldIDs = ExistingIDs(stController);
    if (vecOldIDs.empty() || bAnew) { // else somebody was faster
        Provision(stLock, stPlan, vecOldIDs);
    }
}
