#include "device.h"

#include <cstring>
#include <sys/stat.h>

#include "error.h"
#include "image_file.h"
#include "text.h"

namespace {

constexpr size_t FILE_PADDING = 8U;
constexpr const char *ACCEPTED = "accepted: TYPE:INSTANCE such as 0x30:0, a device's name, or an image file";

template <size_t uiSize> std::string FixedText(const char (&acText)[uiSize])
{
    return std::string(acText, strnlen(acText, uiSize));
}

bool IsFile(const std::string &strPath)
{
    struct stat stStat = {};
    return stat(strPath.c_str(), &stStat) == 0 && S_ISREG(stStat.st_mode);
}

struct COMPONENT_S
{
    u8 ucType;
    u8 ucInstance;
};

// "0x30:0"; nothing when the text has not that shape.
std::optional<COMPONENT_S> ParseComponent(const std::string &strText)
{
    const size_t uiColon = strText.find(':');
    if (uiColon == std::string::npos ||
        strText.find_first_not_of("0123456789abcdefABCDEFxX:") != std::string::npos) {
        return std::nullopt;
    }
    const std::optional<u32> optType = ParseNumber(strText.substr(0, uiColon), 255U);
    const std::optional<u32> optInstance = ParseNumber(strText.substr(uiColon + 1U), 255U);
    if (!optType.has_value() || !optInstance.has_value()) {
        FailUsage(
            "'" + EscapeText(strText) +
            "' is not a TYPE:INSTANCE; accepted: two numbers of 0 to 255, decimal or 0x, such as 0x30:0");
    }
    return COMPONENT_S{static_cast<u8>(*optType), static_cast<u8>(*optInstance)};
}

std::string NamesOf(const std::vector<DEVICE_S> &vecDevices)
{
    std::vector<std::string> vecNames;
    vecNames.reserve(vecDevices.size());
    for (const DEVICE_S &stDevice : vecDevices) {
        vecNames.push_back(EscapeText(stDevice.strName));
    }
    return vecNames.empty() ? "it has no devices" : "it has " + Join(vecNames, ", ");
}

template <typename FN>
DEVICE_S FindDevice(const SESSION_S &stSession, const std::string &strWhat, FN fnMatches)
{
    const std::vector<DEVICE_S> vecDevices = LoadDevices(stSession);
    for (const DEVICE_S &stDevice : vecDevices) {
        if (fnMatches(stDevice)) {
            if (!stDevice.bHasInfo) {
                Fail("the controller in " + stSession.strRoot + " lists " + strWhat +
                     " but has no record of it; 'fructl provision --force' writes one");
            }
            return stDevice;
        }
    }
    Fail("the controller in " + stSession.strRoot + " has no " + strWhat + "; " + NamesOf(vecDevices));
}

DEVICE_S FindByID(const SESSION_S &stSession, const std::string &strDeviceID)
{
    const std::optional<u32> optID = ParseNumber(strDeviceID, 255U);
    if (!optID.has_value()) {
        FailUsage("--id " + EscapeText(strDeviceID) +
                  " is not a FRU device ID; accepted: 0 to 255, decimal or 0x");
    }
    return FindDevice(stSession, Format("FRU device ID %u", *optID),
                      [&](const DEVICE_S &stDevice) { return stDevice.stEntry.ucDeviceID == *optID; });
}

void CheckOptions(const TARGET_OPTIONS_S &stOptions)
{
    if (stOptions.strTarget.empty() == stOptions.strDeviceID.empty()) {
        FailUsage(stOptions.strTarget.empty()
                      ? std::string("no device is named; ") + ACCEPTED + ", or --id N"
                      : std::string("a device is named twice, by --id and without; give one of them"));
    }
}

// Up to the end of the last area, when the image is sound; else all.
size_t UsedBytes(const IMAGE_S &stImage, bool bFixedSlots)
{
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stImage, bFixedSlots);
    size_t uiEnd = 0;
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        uiEnd = stSpan.enArea == AREA::Unused ? uiEnd
                                              : std::max(uiEnd, size_t{stSpan.uiOffset} + stSpan.uiLength);
    }
    return stLayout.IsSound() ? uiEnd : stImage.vecBytes.size();
}

} // namespace

std::string DEVICE_S::Component() const
{
    return Format("0x%02x:%u", stEntry.ucComponentType, stEntry.ucInstance);
}

std::string DEVICE_S::Title() const
{
    return EscapeText(strName) + " (" + Component() + ")";
}

std::string DEVICE_S::ImagePath() const
{
    return FixedText(stInfo.acImageFilePath);
}

bool DEVICE_S::HasFixedSlots() const
{
    const std::string strPath = ImagePath();
    return strPath.find("BaseBoard.bin") != std::string::npos || strPath.find("MBP.bin") != std::string::npos;
}

bool DEVICE_S::IsDatabaseOnly() const
{
    return stInfo.ucDatabaseOnly != 0U;
}

std::string TARGET_S::Title() const
{
    return optDevice.has_value() ? optDevice->Title() : EscapeText(strFile);
}

bool TARGET_S::HasFixedSlots() const
{
    return optDevice.has_value() && optDevice->HasFixedSlots();
}

std::vector<DEVICE_S> LoadDevices(const SESSION_S &stSession)
{
    RequireController(stSession);
    FRU_DEVICE_TBL_S stTable = {};
    const u32 uiRet = LIB_FRU_GetFRUDeviceTbl(&stTable);
    if (uiRet != FRU_OK) {
        Fail("the controller in " + stSession.strRoot + " has no device table: " + StatusText(uiRet) +
             "; 'fructl provision FILE' writes one");
    }
    std::vector<DEVICE_S> vecDevices;
    for (u32 i = 0; i < stTable.ucCount && i < FRU_DEVICE_TBL_MAX; i++) {
        DEVICE_S stDevice = {stTable.astEntry[i], {}, false, ""};
        stDevice.bHasInfo = FRU_DB_GetFRUDeviceInfo(stDevice.stEntry.ucDeviceID, &stDevice.stInfo) == FRU_OK;
        stDevice.strName = FixedText(stDevice.stInfo.acFRUName);
        if (stDevice.strName.empty()) {
            stDevice.strName = Format("fru%u", stDevice.stEntry.ucDeviceID);
        }
        vecDevices.push_back(stDevice);
    }
    return vecDevices;
}

TARGET_S ResolveTarget(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    if (!stOptions.strDeviceID.empty()) {
        return {FindByID(stSession, stOptions.strDeviceID), ""};
    }
    const std::string &strTarget = stOptions.strTarget;
    // A slash or a file of this name decides for a file; a device is always to be had as TYPE:INSTANCE or by
    // --id.
    if (IsFile(strTarget)) {
        return {std::nullopt, strTarget};
    }
    if (strTarget.find('/') != std::string::npos) {
        Fail("there is no image file " + EscapeText(strTarget) + "; " + ACCEPTED);
    }
    return {ResolveDevice(stSession, stOptions), ""};
}

DEVICE_S ResolveDevice(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    if (!stOptions.strDeviceID.empty()) {
        return FindByID(stSession, stOptions.strDeviceID);
    }
    const std::string &strTarget = stOptions.strTarget;
    const std::optional<COMPONENT_S> optComponent = ParseComponent(strTarget);
    if (optComponent.has_value()) {
        return FindDevice(stSession, "device " + strTarget, [&](const DEVICE_S &stDevice) {
            return stDevice.stEntry.ucComponentType == optComponent->ucType &&
                   stDevice.stEntry.ucInstance == optComponent->ucInstance;
        });
    }
    return FindDevice(stSession, "device named '" + EscapeText(strTarget) + "'",
                      [&](const DEVICE_S &stDevice) { return stDevice.strName == strTarget; });
}

u8 ResolveDeviceID(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    if (stOptions.strDeviceID.empty()) {
        return ResolveDevice(stSession, stOptions).stEntry.ucDeviceID;
    }
    const std::optional<u32> optID = ParseNumber(stOptions.strDeviceID, 255U);
    if (!optID.has_value()) {
        FailUsage("--id " + EscapeText(stOptions.strDeviceID) +
                  " is not a FRU device ID; accepted: 0 to 255, decimal or 0x");
    }
    RequireController(stSession);
    return static_cast<u8>(*optID);
}

IMAGE_S ReadChip(const DEVICE_S &stDevice)
{
    IMAGE_S stImage = {"EEPROM", std::vector<u8>(stDevice.stInfo.usSize), stDevice.stInfo.usSize};
    ClearDiagnostics();
    const i32 iRead = LIB_FRU_ReadFromEEPROM(&stDevice.stInfo, stDevice.stInfo.usStartOffset,
                                             stDevice.stInfo.usSize, stImage.vecBytes.data());
    if (iRead < 0) {
        Fail("the EEPROM of " + stDevice.Title() + " does not answer" + DiagnosticHint());
    }
    if (static_cast<size_t>(iRead) != stImage.vecBytes.size()) {
        Fail(Format("the EEPROM of %s gave %d of %zu bytes", stDevice.Title().c_str(), iRead,
                    stImage.vecBytes.size()));
    }
    return stImage;
}

std::optional<IMAGE_S> ReadCache(const DEVICE_S &stDevice)
{
    IMAGE_S stImage = {"cache", std::vector<u8>(stDevice.stInfo.usSize), stDevice.stInfo.usSize};
    if (stImage.vecBytes.empty() || FRU_DB_GetFRUData(stDevice.stEntry.ucDeviceID, stDevice.stInfo.usSize,
                                                      stImage.vecBytes.data()) != FRU_OK) {
        return std::nullopt;
    }
    return stImage;
}

std::optional<size_t> FirstDifference(const IMAGE_S &stLeft, const IMAGE_S &stRight, bool bFixedSlots)
{
    const size_t uiEnd = std::max(UsedBytes(stLeft, bFixedSlots), UsedBytes(stRight, bFixedSlots));
    for (size_t i = 0; i < uiEnd; i++) {
        if (stLeft.vecBytes[i] != stRight.vecBytes[i]) {
            return i;
        }
    }
    return std::nullopt;
}

bool IsCacheTrusted(const DEVICE_S &stDevice)
{
    u8 ucStatus = 1U; // unreadable counts as not to be trusted
    const bool bRead = FRU_DB_GetFRUDataCacheStatus(stDevice.stEntry.ucDeviceID, &ucStatus) == FRU_OK;
    return stDevice.IsDatabaseOnly() || (bRead && (ucStatus & 1U) == 0U);
}

IMAGE_LAYOUT_S LayoutOf(const IMAGE_S &stImage, bool bFixedSlots)
{
    return WalkImage(stImage.vecBytes, stImage.uiStored, bFixedSlots);
}

IMAGE_S ReadImage(const std::string &strFile)
{
    IMAGE_S stImage = {"file", ReadImageFile(strFile), 0U};
    stImage.uiStored = stImage.vecBytes.size();
    if (stImage.vecBytes.empty()) {
        Fail("the image file " + EscapeText(strFile) + " is empty");
    }
    stImage.vecBytes.resize(stImage.uiStored + FILE_PADDING, 0xFFU);
    return stImage;
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
    const std::optional<IMAGE_S> optCached = ReadCache(stDevice);
    if (!optCached.has_value()) {
        Fail(stDevice.Title() + " is served from the cache only, and there is no cached image of it");
    }
    return *optCached;
}
