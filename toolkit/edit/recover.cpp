// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/recover.h"

#include <sys/stat.h>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/change.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record.h"

namespace {

// Sends reads to the EEPROM for as long as it lives: a good cached image would hide a damaged EEPROM.
class CacheBypass
{
  public:
    explicit CacheBypass(u8 ucDeviceID) : m_ucDeviceID(ucDeviceID)
    {
        m_bKnown = FRU_DB_GetFRUDataCacheStatus(ucDeviceID, &m_ucStatus) == FRU_OK;
        if (m_bKnown && (m_ucStatus & FRU_CACHE_UNTRUSTED) == 0U) {
            const u32 uiRet = FRU_DB_PutFRUDataCacheStatus(ucDeviceID, m_ucStatus | FRU_CACHE_UNTRUSTED);
            if (uiRet != FRU_OK) {
                FailLibrary(ErrorClass::Failed, "the cache status cannot be written: " + StatusText(uiRet));
            }
        }
    }
    ~CacheBypass()
    {
        if (m_bKnown && (m_ucStatus & FRU_CACHE_UNTRUSTED) == 0U) {
            // Should this fail, reads keep going to the EEPROM, which is safe.
            (void)FRU_DB_PutFRUDataCacheStatus(m_ucDeviceID, m_ucStatus);
        }
    }
    CacheBypass(const CacheBypass &) = delete;
    CacheBypass &operator=(const CacheBypass &) = delete;

  private:
    const u8 m_ucDeviceID;
    u8 m_ucStatus = FRU_CACHE_UNTRUSTED;
    bool m_bKnown;
};

bool HasValidHeader(const std::vector<u8> &vecBytes)
{
    return vecBytes.size() >= FRU_COMMON_HEADER_LEN &&
           FRU_ANALYZER_CheckValidHeader(vecBytes.data()) == FRU_OK;
}

// Where the header is damaged, the stored image over the beginning of the device; else it stays as it is. A
// stored image of the FRU's size becomes the cached one too.
CHANGE_S Plan(const DEVICE_S &stDevice, std::vector<u8> vecBytes)
{
    const std::optional<IMAGE_S> optStored = FindSource(stDevice, Source::Stored);
    const bool bRestored = !HasValidHeader(vecBytes) && optStored.has_value();
    const size_t uiStored = bRestored ? std::min(optStored->vecBytes.size(), vecBytes.size()) : 0U;
    std::copy_n(bRestored ? optStored->vecBytes.begin() : vecBytes.begin(), uiStored, vecBytes.begin());
    return PlanBytes(stDevice, vecBytes, bRestored && optStored->vecBytes.size() == vecBytes.size());
}

// Why the stored image could not help, in the order in which the recovery meets the reasons.
std::string WhyNot(const DEVICE_S &stDevice, const std::vector<std::string> &vecSaid)
{
    const std::string strPath = stDevice.ImagePath();
    if (strPath.empty()) {
        return "no stored image is named in its record";
    }
    const std::string strReal = RealPath(strPath).value_or("");
    struct stat stStat = {};
    if (strReal.empty() || stat(strReal.c_str(), &stStat) != 0) {
        return "its stored image " + EscapeText(strPath) + " is missing (looked for as " + strReal + ")";
    }
    if (stStat.st_size == 0) {
        return "its stored image " + EscapeText(strPath) + " is empty";
    }
    std::string strWhy = "its stored image " + EscapeText(strPath) + " did not help";
    return vecSaid.empty() ? strWhy : strWhy + " (the library says: " + Join(vecSaid, " | ") + ")";
}

Recovery Restore(const DEVICE_S &stDevice, const IMAGE_S &stBefore, const CHANGE_S &stChange)
{
    const bool bWasValid = HasValidHeader(stBefore.vecBytes);
    Record stRecord;
    const auto fnRecover = [&] {
        const CacheBypass stBypass(stDevice.stEntry.ucDeviceID);
        return LIB_FRU_GetFRUData(stDevice.stEntry.ucComponentType, stDevice.stEntry.ucInstance,
                                  FRU_READ_MODE_RECOVER, FRU_READ_ARG_NONE, stRecord.Data());
    };
    const OUTCOME_S stOutcome = ApplyChange(stChange, "restoring " + stDevice.Title(), nullptr, fnRecover);
    const u32 uiRet = stOutcome.uiStatus;
    const std::vector<std::string> &vecSaid = stOutcome.vecSaid;
    const std::string strStatus = uiRet == FRU_OK ? "" : StatusText(uiRet);
    const std::string strCannot = stDevice.Title() + " could not be restored: ";
    const IMAGE_S stAfter = ReadTarget({stDevice, ""});
    if (bWasValid && uiRet != FRU_OK) {
        const IMAGE_LAYOUT_S stLayout = LayoutOf(stAfter, stDevice.HasFixedSlots());
        const std::string strFirst =
            stLayout.vecFindings.empty() ? strStatus : FindingText(stLayout.vecFindings.front());
        Fail(ErrorClass::Damaged,
             stDevice.Title() +
                 " is damaged but was not restored: the stored image is used only when the common header is "
                 "invalid, and this one is valid; " +
                 strFirst);
    }
    if (uiRet == FRU_OK && bWasValid) {
        return Recovery::Fine;
    }
    if (uiRet == FRU_OK) {
        return Recovery::Restored;
    }
    if (HasValidHeader(stAfter.vecBytes)) {
        Fail(ErrorClass::Damaged, stDevice.Title() + " was restored from " +
                                      EscapeText(stDevice.ImagePath()) +
                                      ", but that image is itself damaged: " + strStatus);
    }
    if (stDevice.IsDatabaseOnly()) {
        Fail(ErrorClass::Damaged, strCannot + "it is served from the cache only; " + strStatus);
    }
    Fail(ErrorClass::Damaged, strCannot + WhyNot(stDevice, vecSaid) + "; " + strStatus);
}

} // namespace

Recovery Recover(const RootLock &stLock, const DEVICE_S &stDevice)
{
    const IMAGE_S stBefore = ReadTarget({stDevice, ""});
    const CHANGE_S stChange = Plan(stDevice, stBefore.vecBytes);
    Recovery enRecovery = Recovery::Fine;
    RunTransaction(stLock, {stChange}, {}, [&] { enRecovery = Restore(stDevice, stBefore, stChange); });
    return enRecovery;
}
