// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/target.h"

#include <sys/stat.h>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/name_value.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"

namespace {

constexpr const char *ACCEPTED =
    "accepted: TYPE:INSTANCE such as 0x30:0, a device's name, or an image file's path with a slash";

bool IsFile(const std::string &strPath)
{
    struct stat stStat = {};
    return IsStream(strPath) || (stat(strPath.c_str(), &stStat) == 0 && S_ISREG(stStat.st_mode));
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

std::vector<std::string> NamesOf(const std::vector<DEVICE_S> &vecDevices)
{
    std::vector<std::string> vecNames;
    vecNames.reserve(vecDevices.size());
    for (const DEVICE_S &stDevice : vecDevices) {
        vecNames.push_back(EscapeText(stDevice.strName));
    }
    return vecNames;
}

template <typename FN>
DEVICE_S FindDevice(const CONTROLLER_S &stController, const std::string &strWhat, FN fnMatches,
                    const std::string &strName = "")
{
    const std::vector<DEVICE_S> vecDevices = LoadDevices(stController);
    for (const DEVICE_S &stDevice : vecDevices) {
        if (fnMatches(stDevice)) {
            if (!stDevice.bHasInfo) {
                FailLibrary(ErrorClass::NotFound,
                            "the controller in " + stController.strRoot + " lists " + strWhat +
                                " but has no record of it",
                            "; 'fructl list' shows the devices that have one");
            }
            stController.vecNamed.push_back(std::make_shared<const DEVICE_S>(stDevice));
            return stDevice;
        }
    }
    const std::vector<std::string> vecNames = NamesOf(vecDevices);
    Fail(ErrorClass::NotFound,
         "the controller in " + stController.strRoot + " has no " + strWhat +
             (strName.empty() ? "" : DidYouMean(strName, vecNames)) + "; " +
             (vecNames.empty() ? "it has no devices" : "it has " + Join(vecNames, ", ")),
         vecNames);
}

DEVICE_S FindByID(const CONTROLLER_S &stController, const std::string &strDeviceID)
{
    const std::optional<u32> optID = ParseNumber(strDeviceID, 255U);
    if (!optID.has_value()) {
        FailUsage("--id " + EscapeText(strDeviceID) +
                  " is not a FRU device ID; accepted: 0 to 255, decimal or 0x");
    }
    return FindDevice(stController, Format("FRU device ID %u", *optID),
                      [&](const DEVICE_S &stDevice) { return stDevice.stEntry.ucDeviceID == *optID; });
}

void CheckOptions(const TARGET_OPTIONS_S &stOptions)
{
    const int iNames = (stOptions.strTarget.empty() ? 0 : 1) + (stOptions.strDeviceID.empty() ? 0 : 1) +
                       (stOptions.strFile.empty() ? 0 : 1);
    if (iNames == 0) {
        FailUsage(std::string("no device is named; ") + ACCEPTED + ", or --id N");
    }
    if (iNames > 1) {
        FailUsage(stOptions.strFile.empty()
                      ? "a device is named twice, by --id and without; give one of them"
                      : "a device or file is named twice, by --file and without; give one of them");
    }
}

TARGET_S NamedFile(const std::string &strFile)
{
    if (!IsFile(strFile)) {
        Fail(ErrorClass::NotFound, "there is no image file " + EscapeText(strFile) + "; " + ACCEPTED);
    }
    return {std::nullopt, strFile};
}

} // namespace

std::string TARGET_S::Title() const
{
    return optDevice.has_value() ? optDevice->Title() : NamedFileTitle(strFile);
}

bool TARGET_S::HasFixedSlots() const
{
    return optDevice.has_value() && optDevice->HasFixedSlots();
}

TARGET_S ResolveTarget(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    const std::string &strTarget = stOptions.strTarget;
    if (!stOptions.strFile.empty() || strTarget.find('/') != std::string::npos ||
        strTarget == STANDARD_INPUT) {
        return NamedFile(stOptions.strFile.empty() ? strTarget : stOptions.strFile);
    }
    try {
        return {ResolveDevice(stController, stOptions), ""};
    } catch (const Error &stError) {
        if (stError.Class() != ErrorClass::NotFound || strTarget.empty() || !IsFile(strTarget)) {
            throw;
        }
        const std::string strFile = EscapeText(strTarget);
        Fail(ErrorClass::NotFound,
             std::string(stError.what()) + "; for the file of that name say ./" + strFile + " or --file " +
                 strFile,
             stError.Accepted());
    }
}

DEVICE_S ResolveDevice(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    if (!stOptions.strDeviceID.empty()) {
        return FindByID(stController, stOptions.strDeviceID);
    }
    const std::string &strTarget = stOptions.strTarget;
    if (stController.bNumbersAreIDs && ParseNumber(strTarget, 255U).has_value()) {
        return FindByID(stController, strTarget);
    }
    const std::optional<COMPONENT_S> optComponent = ParseComponent(strTarget);
    if (optComponent.has_value()) {
        return FindDevice(stController, "device " + strTarget, [&](const DEVICE_S &stDevice) {
            return stDevice.stEntry.ucComponentType == optComponent->ucType &&
                   stDevice.stEntry.ucInstance == optComponent->ucInstance;
        });
    }
    return FindDevice(
        stController, "device named '" + EscapeText(strTarget) + "'",
        [&](const DEVICE_S &stDevice) { return stDevice.strName == strTarget; }, strTarget);
}

u8 ResolveDeviceID(const CONTROLLER_S &stController, const TARGET_OPTIONS_S &stOptions)
{
    CheckOptions(stOptions);
    if (stOptions.strDeviceID.empty()) {
        return ResolveDevice(stController, stOptions).stEntry.ucDeviceID;
    }
    const std::optional<u32> optID = ParseNumber(stOptions.strDeviceID, 255U);
    if (!optID.has_value()) {
        FailUsage("--id " + EscapeText(stOptions.strDeviceID) +
                  " is not a FRU device ID; accepted: 0 to 255, decimal or 0x");
    }
    RequireController(stController);
    return static_cast<u8>(*optID);
}
