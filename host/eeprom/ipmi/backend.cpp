// SPDX-License-Identifier: Apache-2.0
// The back end "ipmi", as libbmcfruhost loads it: a FRU behind another controller is a chip.
#include "eeprom/backend.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <time.h>

#include "eeprom/ipmi/session.h"
#include "eeprom/ipmi/settings.h"

namespace ipmi {

namespace {

constexpr u8 g_ucStorage = 0x0A;
// So much is compared, written and read back at once.
constexpr u32 g_uiPage = 32;

// A controller with its session, which stays open between transfers.
struct CONTROLLER_S
{
    explicit CONTROLLER_S(const SETTINGS_S &stSettings)
        : stSession(stSettings.stLogin),
          stAccess({[this](u8 ucCommand, const std::vector<u8> &vecData) {
                        return stSession.Ask(g_ucStorage, ucCommand, vecData);
                    },
                    [](u32 uiMs) {
                        const struct timespec stWait = {static_cast<time_t>(uiMs / 1000U),
                                                        static_cast<long>(uiMs % 1000U) * 1000000L};
                        (void)nanosleep(&stWait, nullptr);
                    }},
                   stSettings.uiChunk)
    {}

    Session stSession;
    FruAccess stAccess;
};

struct CHIP_S
{
    std::shared_ptr<CONTROLLER_S> spController;
    u8 ucFru;
};

// OpenIPMI's event loop is one for the process, and so is this. Held over fork().
std::mutex &Lock()
{
    static std::mutex g_mtxLock;
    static const int g_iForked =
        pthread_atfork([] { Lock().lock(); }, [] { Lock().unlock(); }, [] { Lock().unlock(); });
    (void)g_iForked;
    return g_mtxLock;
}

// By everything that a login is made of. Never destroyed: see CloseAtExit().
std::map<std::string, std::shared_ptr<CONTROLLER_S>> &Controllers()
{
    static auto *g_pmapControllers = new std::map<std::string, std::shared_ptr<CONTROLLER_S>>;
    return *g_pmapControllers;
}

// A controller has few sessions, so none is left open. Called when one is: what is registered last runs first, and
// the library that signs the goodbye tidies up at exit too.
void CloseAtExit()
{
    static const int g_iRegistered = atexit([] {
        const std::unique_lock<std::mutex> lock(Lock(), std::try_to_lock);
        if (lock.owns_lock()) {
            Controllers().clear();
        }
    });
    (void)g_iRegistered;
}

std::shared_ptr<CONTROLLER_S> ControllerOf(const SETTINGS_S &stSettings)
{
    const LOGIN_S &stLogin = stSettings.stLogin;
    std::string strKey;
    for (const std::string &strPart :
         {stLogin.strHost, stLogin.strUser, stLogin.strPassword, std::to_string(stLogin.uiPort),
          std::to_string(stLogin.uiPrivilege), std::to_string(stLogin.uiSuite),
          std::to_string(stLogin.uiPatienceMs), std::to_string(stSettings.uiChunk)}) {
        strKey += strPart + '\n';
    }
    std::shared_ptr<CONTROLLER_S> &spController = Controllers()[strKey];
    if (spController == nullptr) {
        spController = std::make_shared<CONTROLLER_S>(stSettings);
    }
    return spController;
}

void Tell(char *pcOut, size_t uiSize, const std::string &strText)
{
    (void)snprintf(pcOut, uiSize, "%s", strText.c_str());
}

int ErrorOf(const RESULT_S &stResult, BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    Tell(pstOpen->acWhy, sizeof(pstOpen->acWhy), stResult.strWhy);
    switch (stResult.enOutcome) {
    case Outcome::Done:
        return 0;
    case Outcome::NoFru:
        return ENXIO;
    case Outcome::Busy:
        return EBUSY;
    case Outcome::Protected:
        return EROFS;
    case Outcome::Denied:
        return EACCES;
    case Outcome::Lost:
        return EHOSTUNREACH;
    default:
        return EIO;
    }
}

// Nothing leaves a function but its result.
template <typename FN> int Shield(BMCHOST_BACKEND_OPEN_S *pstOpen, FN fnWork) noexcept
{
    try {
        const std::lock_guard<std::mutex> lock(Lock());
        return fnWork();
    } catch (const std::exception &error) {
        (void)snprintf(pstOpen->acWhy, sizeof(pstOpen->acWhy), "%s", error.what());
        return EIO;
    }
}

int Open(const BMCHOST_BACKEND_CHIP_S *pstChip, BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    return Shield(pstOpen, [&] {
        SETTINGS_S stSettings;
        std::string strWhy = ReadSettings(pstChip->pcSettings, &stSettings);
        if (strWhy.empty()) {
            strWhy = TakePassword(&stSettings);
        }
        if (!strWhy.empty()) {
            Tell(pstOpen->acWhy, sizeof(pstOpen->acWhy), strWhy);
            return EINVAL;
        }
        Tell(pstOpen->acWhere, sizeof(pstOpen->acWhere),
             "FRU " + std::to_string(stSettings.ucFru) + " of " + stSettings.stLogin.strHost);
        auto upChip = std::make_unique<CHIP_S>(CHIP_S{ControllerOf(stSettings), stSettings.ucFru});
        AREA_S stArea;
        const RESULT_S stResult = upChip->spController->stAccess.Area(stSettings.ucFru, &stArea);
        if (stResult.enOutcome != Outcome::Done) {
            return ErrorOf(stResult, pstOpen);
        }
        CloseAtExit();
        pstOpen->uiCapacity = stArea.uiSize;
        pstOpen->uiPage = g_uiPage;
        pstOpen->pHandle = upChip.release();
        return 0;
    });
}

int Read(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, u8 *pucBuf, u32 *puiDone)
{
    return Shield(pstOpen, [&] {
        const auto *pstChip = static_cast<const CHIP_S *>(pstOpen->pHandle);
        const RESULT_S stResult =
            pstChip->spController->stAccess.Read(pstChip->ucFru, uiOffset, uiLength, pucBuf);
        *puiDone = stResult.uiCount;
        return ErrorOf(stResult, pstOpen);
    });
}

int Write(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, const u8 *pucBuf)
{
    return Shield(pstOpen, [&] {
        const auto *pstChip = static_cast<const CHIP_S *>(pstOpen->pHandle);
        return ErrorOf(pstChip->spController->stAccess.Write(pstChip->ucFru, uiOffset, uiLength, pucBuf),
                       pstOpen);
    });
}

void Close(BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    (void)Shield(pstOpen, [&] {
        delete static_cast<CHIP_S *>(pstOpen->pHandle);
        pstOpen->pHandle = nullptr;
        return 0;
    });
}

int Check(const char *pcSettings, size_t uiSize, char *pcWhy)
{
    try {
        SETTINGS_S stSettings;
        const std::string strWhy = ReadSettings(pcSettings, &stSettings);
        Tell(pcWhy, uiSize, strWhy);
        return strWhy.empty() ? 0 : EINVAL;
    } catch (const std::exception &error) {
        (void)snprintf(pcWhy, uiSize, "%s", error.what());
        return EINVAL;
    }
}

constexpr BMCHOST_BACKEND_S g_stBackend = {BMCHOST_BACKEND_VERSION, "ipmi", Check, Open, Read, Write, Close};

} // namespace

} // namespace ipmi

extern "C" __attribute__((visibility("default"))) const BMCHOST_BACKEND_S *BMCHOST_GetBackend(void)
{
    return &ipmi::g_stBackend;
}
