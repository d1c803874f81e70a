// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/recover.h"

#include <sys/stat.h>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/history.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/image/image_file.h"
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
                FailLibrary(ErrorClass::Failed, "the cache status cannot be written: " + StatusText(uiRet),
                            "", uiRet);
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

// ---- what is wrong ----

std::string DamageOf(const DEVICE_S &stDevice)
{
    IMAGE_S stImage;
    if (stDevice.IsDatabaseOnly()) {
        const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
        if (!optCached.has_value()) {
            return "there is no cached image, and it is served from the cache only";
        }
        stImage = *optCached;
    } else {
        stImage = ReadSource(stDevice, Source::Eeprom); // a chip that does not answer cannot be mended
    }
    const VERDICT_S stVerdict = VerdictOn(stImage, stDevice.HasFixedSlots());
    if (!stVerdict.IsGood()) {
        return stVerdict.Why();
    }
    const std::optional<size_t> optAt = CacheDifference(stDevice, stImage);
    return optAt.has_value() ? Format("its cached image differs from the EEPROM from byte 0x%04zx on", *optAt)
                             : "";
}

// ---- where an image may come from ----

struct CANDIDATE_S
{
    std::string strFrom;
    std::string strSource;
    std::vector<u8> vecImage; // of none there are no bytes
    std::string strWhyNot;    // empty: it can be taken
};

void Judge(const DEVICE_S &stDevice, CANDIDATE_S &stCandidate)
{
    const u32 uiSize = stDevice.stInfo.usSize;
    if (stCandidate.vecImage.empty() || stCandidate.vecImage.size() > uiSize) {
        stCandidate.strWhyNot = stCandidate.strSource + Format(" has %zu bytes, and the FRU has %u",
                                                               stCandidate.vecImage.size(), uiSize);
        return;
    }
    const IMAGE_PLAN_S stPlan = PlanImage(stDevice, stCandidate.vecImage);
    if (!stPlan.stVerdict.IsGood()) {
        stCandidate.strWhyNot = stCandidate.strSource + " is itself not in order: " + stPlan.stVerdict.Why();
    }
}

CANDIDATE_S Stored(const DEVICE_S &stDevice)
{
    const std::string strPath = stDevice.ImagePath();
    CANDIDATE_S stCandidate = {FROM_STORED, EscapeText(strPath), {}, ""};
    if (strPath.empty()) {
        stCandidate.strWhyNot = "no stored image is named in its record";
        return stCandidate;
    }
    const std::string strReal = RealPath(strPath).value_or("");
    struct stat stStat = {};
    if (strReal.empty() || stat(strReal.c_str(), &stStat) != 0) {
        stCandidate.strWhyNot =
            "its stored image " + stCandidate.strSource + " is missing (looked for as " + strReal + ")";
        return stCandidate;
    }
    if (stStat.st_size == 0) {
        stCandidate.strWhyNot = "its stored image " + stCandidate.strSource + " is empty";
        return stCandidate;
    }
    try {
        stCandidate.vecImage = ReadSource(stDevice, Source::Stored).vecBytes;
    } catch (const Error &stError) {
        stCandidate.strWhyNot = stError.what();
        return stCandidate;
    }
    Judge(stDevice, stCandidate);
    if (!stCandidate.strWhyNot.empty()) {
        stCandidate.strWhyNot.insert(0, "its stored image ");
    }
    return stCandidate;
}

// The newest that is in order.
CANDIDATE_S Past(const CONTROLLER_S &stController, const DEVICE_S &stDevice)
{
    CANDIDATE_S stNone = {FROM_HISTORY, "its history", {}, "its history has no image that is in order"};
    const std::vector<PAST_IMAGE_S> vecPast = ReadHistory(stController, stDevice);
    for (auto itPast = vecPast.rbegin(); itPast != vecPast.rend(); ++itPast) {
        CANDIDATE_S stCandidate = {
            FROM_HISTORY, Format("image %u of its history, of %s", itPast->uiNumber, itPast->strTime.c_str()),
            (stDevice.IsDatabaseOnly() ? itPast->optCache : itPast->optEeprom).value_or(std::vector<u8>()),
            ""};
        Judge(stDevice, stCandidate);
        if (stCandidate.strWhyNot.empty()) {
            return stCandidate;
        }
    }
    return stNone;
}

CANDIDATE_S Cached(const DEVICE_S &stDevice)
{
    CANDIDATE_S stCandidate = {FROM_CACHE, "its cached image", {}, ""};
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    if (!optCached.has_value()) {
        stCandidate.strWhyNot = "there is no cached image of it";
        return stCandidate;
    }
    stCandidate.vecImage = optCached->vecBytes;
    Judge(stDevice, stCandidate);
    return stCandidate;
}

// What was asked for; without that all that there are, best first.
std::vector<CANDIDATE_S> Candidates(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                                    const std::string &strFrom)
{
    if (strFrom == FROM_STORED) {
        return {Stored(stDevice)};
    }
    if (strFrom == FROM_HISTORY) {
        return {Past(stController, stDevice)};
    }
    if (strFrom == FROM_CACHE) {
        return {Cached(stDevice)};
    }
    if (!strFrom.empty()) {
        CANDIDATE_S stCandidate = {strFrom,
                                   (strFrom == STANDARD_INPUT ? "" : "the file ") + NamedFileTitle(strFrom),
                                   ReadImageFile(strFrom), ""};
        Judge(stDevice, stCandidate);
        return {stCandidate};
    }
    std::vector<CANDIDATE_S> vecCandidates;
    if (!stDevice.IsDatabaseOnly()) {
        // The EEPROM is what counts: when only the cached image is wrong, that one is renewed.
        CANDIDATE_S stEeprom = {"eeprom", "the EEPROM", ReadSource(stDevice, Source::Eeprom).vecBytes, ""};
        Judge(stDevice, stEeprom);
        if (stEeprom.strWhyNot.empty()) {
            return {stEeprom};
        }
    }
    vecCandidates.push_back(Stored(stDevice));
    vecCandidates.push_back(Past(stController, stDevice));
    vecCandidates.push_back(Cached(stDevice));
    return vecCandidates;
}

// The library restores what has no valid header from a stored image of the FRU's size.
bool IsTheLibrarys(const DEVICE_S &stDevice, const CANDIDATE_S &stCandidate)
{
    return stCandidate.strFrom == FROM_STORED && !stDevice.IsDatabaseOnly() &&
           stCandidate.vecImage.size() == stDevice.stInfo.usSize &&
           FRU_ANALYZER_CheckValidHeader(ReadSource(stDevice, Source::Eeprom).vecBytes.data()) != FRU_OK;
}

void RestoreByLibrary(const DEVICE_S &stDevice, const CHANGE_S &stChange)
{
    Record stRecord;
    const auto fnRecover = [&] {
        const CacheBypass stBypass(stDevice.stEntry.ucDeviceID);
        return LIB_FRU_GetFRUData(stDevice.stEntry.ucComponentType, stDevice.stEntry.ucInstance,
                                  FRU_READ_MODE_RECOVER, FRU_READ_ARG_NONE, stRecord.Data());
    };
    const OUTCOME_S stOutcome = ApplyChange(stChange, "restoring " + stDevice.Title(), nullptr, fnRecover);
    if (stOutcome.uiStatus != FRU_OK) {
        Fail(ErrorClass::NoAnswer,
             stDevice.Title() + " could not be restored: its stored image " +
                 EscapeText(stDevice.ImagePath()) + " did not help" +
                 (stOutcome.vecSaid.empty() ? ""
                                            : " (the library says: " + Join(stOutcome.vecSaid, " | ") + ")") +
                 "; " + StatusText(stOutcome.uiStatus));
    }
}

} // namespace

RECOVERY_S PlanRecovery(const CONTROLLER_S &stController, const DEVICE_S &stDevice,
                        const std::string &strFrom)
{
    RECOVERY_S stRecovery;
    stRecovery.strDamage = DamageOf(stDevice);
    if (stRecovery.strDamage.empty()) {
        return stRecovery;
    }
    std::vector<std::string> vecWhyNot;
    for (const CANDIDATE_S &stCandidate : Candidates(stController, stDevice, strFrom)) {
        if (stCandidate.strWhyNot.empty()) {
            stRecovery.strFrom = stCandidate.strFrom;
            stRecovery.strSource = stCandidate.strSource;
            stRecovery.optPlan = PlanImage(stDevice, stCandidate.vecImage);
            stRecovery.bByLibrary = IsTheLibrarys(stDevice, stCandidate);
            return stRecovery;
        }
        vecWhyNot.push_back(stCandidate.strWhyNot);
    }
    Fail(ErrorClass::Damaged, stDevice.Title() + " is damaged (" + stRecovery.strDamage +
                                  ") and cannot be restored: " + Join(vecWhyNot, "; ") +
                                  "; accepted: --from FILE with an image that is in order");
}

void WriteRecovery(const RootLock &stLock, const DEVICE_S &stDevice, const RECOVERY_S &stRecovery)
{
    if (!stRecovery.bByLibrary) {
        (void)WriteImage(stLock, *stRecovery.optPlan, "restored");
        return;
    }
    const CHANGE_S &stChange = stRecovery.optPlan->stChange;
    // It leaves the serial-number files as they are.
    RunTransaction(stLock, {stChange}, {}, [&] { RestoreByLibrary(stDevice, stChange); });
}
