// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/source.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/layout.h"

namespace {

IMAGE_S ReadChip(const DEVICE_S &stDevice)
{
    IMAGE_S stImage = {Source::Eeprom, std::vector<u8>(stDevice.stInfo.usSize), stDevice.stInfo.usSize};
    ClearDiagnostics();
    const i32 iRead = LIB_FRU_ReadFromEEPROM(&stDevice.stInfo, stDevice.stInfo.usStartOffset,
                                             stDevice.stInfo.usSize, stImage.vecBytes.data());
    if (iRead < 0) {
        Fail(WhyNoAnswer(stDevice.stInfo),
             "the EEPROM of " + stDevice.Title() + " does not answer" + DiagnosticHint());
    }
    if (static_cast<size_t>(iRead) != stImage.vecBytes.size()) {
        Fail(ErrorClass::NoAnswer, Format("the EEPROM of %s gave %d of %zu bytes", stDevice.Title().c_str(),
                                          iRead, stImage.vecBytes.size()));
    }
    return stImage;
}

IMAGE_S ReadCache(const DEVICE_S &stDevice)
{
    IMAGE_S stImage = {Source::Cache, std::vector<u8>(stDevice.stInfo.usSize), stDevice.stInfo.usSize};
    if (stImage.vecBytes.empty() || FRU_DB_GetFRUData(stDevice.stEntry.ucDeviceID, stDevice.stInfo.usSize,
                                                      stImage.vecBytes.data()) != FRU_OK) {
        FailLibrary(ErrorClass::NotFound, stDevice.Title() + " has no cached image");
    }
    return stImage;
}

IMAGE_S ReadStored(const DEVICE_S &stDevice)
{
    const std::string strPath = stDevice.ImagePath();
    const std::optional<std::string> optReal = RealPath(strPath);
    if (!optReal.has_value()) {
        Fail(ErrorClass::NotFound, "no stored image is named in the record of " + stDevice.Title());
    }
    const std::vector<u8> vecBytes = ReadFileBytes(*optReal);
    return {Source::Stored, vecBytes, vecBytes.size()};
}

// Where to look when this source of a device cannot be shown; empty where the other one is no better.
std::string OtherSource(const TARGET_S &stTarget, Source enSource)
{
    if (!stTarget.optDevice.has_value() || stTarget.optDevice->IsDatabaseOnly()) {
        return "";
    }
    const bool bCache = enSource != Source::Cache;
    const std::optional<IMAGE_S> optOther =
        FindSource(*stTarget.optDevice, bCache ? Source::Cache : Source::Eeprom);
    if (!optOther.has_value() || !LayoutOf(*optOther, stTarget.HasFixedSlots()).IsSound()) {
        return "";
    }
    return bCache ? "; --source cache shows the cached image"
                  : "; --source eeprom shows what the EEPROM holds";
}

[[noreturn]] void FailDecoding(const TARGET_S &stTarget, const IMAGE_S &stImage, u32 uiRet,
                               const std::string &strHint, const std::string &strMore)
{
    const std::string strStatus = "cannot decode " + stTarget.Title() + ": " + StatusText(uiRet);
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stImage, stTarget.HasFixedSlots());
    if (stLayout.vecAreas == std::vector<Area>{Area::Hardware}) {
        FailRefused(stTarget.Title() + " holds no FRU image but a hardware block; 'fructl hw show' shows it");
    }
    const auto fnFail = [uiRet](const std::string &strLine) {
        Error stError(ErrorClass::Damaged, strLine);
        stError.SetStatus(uiRet);
        throw stError;
    };
    if (stLayout.bErased) {
        fnFail(strStatus + "; every byte is 0xff, as of an erased chip" + strMore);
    }
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        if (!stFinding.bWarning) {
            fnFail(strStatus + "; " + FindingText(stFinding) +
                   "; 'fructl verify' tells all, 'show --lenient' what is left" + strMore);
        }
    }
    FailLibrary(ErrorClass::Damaged, strStatus, strHint + strMore, uiRet);
}

} // namespace

IMAGE_S ReadSource(const DEVICE_S &stDevice, Source enSource)
{
    switch (enSource) {
    case Source::Eeprom:
        return ReadChip(stDevice);
    case Source::Cache:
        return ReadCache(stDevice);
    case Source::Stored:
        return ReadStored(stDevice);
    default:
        FailRefused(stDevice.Title() + " is no file");
    }
}

std::optional<IMAGE_S> FindSource(const DEVICE_S &stDevice, Source enSource)
{
    try {
        return ReadSource(stDevice, enSource);
    } catch (const Error &) {
        return std::nullopt;
    }
}

Source HomeOf(const DEVICE_S &stDevice)
{
    return stDevice.IsDatabaseOnly() ? Source::Cache : Source::Eeprom;
}

IMAGE_S ReadTarget(const TARGET_S &stTarget)
{
    if (!stTarget.optDevice.has_value()) {
        return ReadImage(stTarget.strFile);
    }
    const DEVICE_S &stDevice = *stTarget.optDevice;
    if (!stDevice.IsDatabaseOnly()) {
        return ReadChip(stDevice);
    }
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    if (!optCached.has_value()) {
        FailLibrary(ErrorClass::NotFound,
                    stDevice.Title() + " is served from the cache only, and there is no cached image of it");
    }
    return *optCached;
}

IMAGE_S ReadShown(const TARGET_S &stTarget, std::optional<Source> optSource)
{
    if (!stTarget.optDevice.has_value()) {
        if (optSource.has_value()) {
            FailUsage("--source chooses one of a device's images, and " + stTarget.Title() + " is a file");
        }
        return ReadImage(stTarget.strFile);
    }
    const DEVICE_S &stDevice = *stTarget.optDevice;
    if (optSource.has_value() || stDevice.IsDatabaseOnly()) {
        return optSource.has_value() ? ReadSource(stDevice, *optSource) : ReadTarget(stTarget);
    }
    try {
        return ReadChip(stDevice);
    } catch (const Error &stError) {
        Fail(stError.Class(), stError.what() + OtherSource(stTarget, Source::Eeprom));
    }
}

std::optional<std::string> WhySourcesDiffer(const TARGET_S &stTarget)
{
    if (!stTarget.optDevice.has_value() || stTarget.optDevice->IsDatabaseOnly() ||
        !IsCacheTrusted(*stTarget.optDevice)) {
        return std::nullopt;
    }
    const std::optional<IMAGE_S> optCached = FindSource(*stTarget.optDevice, Source::Cache);
    const std::optional<IMAGE_S> optChip = FindSource(*stTarget.optDevice, Source::Eeprom);
    if (!optCached.has_value() || !optChip.has_value()) {
        return std::nullopt;
    }
    const std::optional<size_t> optAt = FirstDifference(*optChip, *optCached, stTarget.HasFixedSlots());
    if (!optAt.has_value()) {
        return std::nullopt;
    }
    return Format(
        "the EEPROM of %s and its cached image differ from byte 0x%04zx on (0x%02x in the EEPROM, 0x%02x "
        "cached); --source eeprom and --source cache show the one and the other",
        stTarget.Title().c_str(), *optAt, optChip->vecBytes[*optAt], optCached->vecBytes[*optAt]);
}

bool IsCacheTrusted(const DEVICE_S &stDevice)
{
    u8 ucStatus = FRU_CACHE_UNTRUSTED; // unreadable counts as not to be trusted
    const bool bRead = FRU_DB_GetFRUDataCacheStatus(stDevice.stEntry.ucDeviceID, &ucStatus) == FRU_OK;
    return stDevice.IsDatabaseOnly() || (bRead && (ucStatus & FRU_CACHE_UNTRUSTED) == 0U);
}

u32 DecodeStatus(const TARGET_S &stTarget, Record &stRecord)
{
    ClearDiagnostics();
    if (!stTarget.optDevice.has_value()) {
        return DecodeImage(ReadImage(stTarget.strFile), false, stRecord);
    }
    const FRU_DEVICE_TBL_ENTRY_S &stEntry = stTarget.optDevice->stEntry;
    return LIB_FRU_GetFRUData(stEntry.ucComponentType, stEntry.ucInstance, FRU_READ_MODE_PLAIN,
                              FRU_READ_ARG_NONE, stRecord.Data());
}

void DecodeTarget(const TARGET_S &stTarget, Record &stRecord)
{
    const u32 uiRet = DecodeStatus(stTarget, stRecord);
    if (uiRet == FRU_OK) {
        return;
    }
    const std::string strHint = DiagnosticHint();
    FailDecoding(stTarget, ReadTarget(stTarget), uiRet, strHint, "");
}

void DecodeShown(const TARGET_S &stTarget, const IMAGE_S &stImage, Record &stRecord)
{
    ClearDiagnostics();
    const u32 uiRet = DecodeImage(stImage, stTarget.HasFixedSlots(), stRecord);
    if (uiRet != FRU_OK) {
        const std::string strHint = DiagnosticHint();
        FailDecoding(stTarget, stImage, uiRet, strHint, OtherSource(stTarget, stImage.enSource));
    }
}
