// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/history.h"

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/record_file.h"

namespace {

constexpr const char *KIND = "bmcfru past image 1";

std::string DirectoryOf(u8 ucDeviceID)
{
    return Format("/var/lib/fru/history/%u", ucDeviceID);
}

std::string DirectoryOf(const DEVICE_S &stDevice)
{
    return DirectoryOf(stDevice.stEntry.ucDeviceID);
}

PAST_IMAGE_S ImageOf(const std::string &strDirectory, u32 uiNumber)
{
    const Json stJson = ReadRecordFile(strDirectory, uiNumber, KIND);
    return {uiNumber, stJson.at("time").get<std::string>(), stJson.at("command").get<std::string>(),
            OptionalBytes(stJson.at("eeprom")), OptionalBytes(stJson.at("cache"))};
}

} // namespace

std::vector<PAST_IMAGE_S> ReadHistory(const CONTROLLER_S &stController, const DEVICE_S &stDevice)
{
    std::vector<PAST_IMAGE_S> vecImages;
    for (const u32 uiNumber : RecordNumbers(DirectoryOf(stDevice))) {
        try {
            vecImages.push_back(ImageOf(DirectoryOf(stDevice), uiNumber));
        } catch (const Error &stError) {
            stController.Warn(stError.what());
        }
    }
    return vecImages;
}

void KeepImage(const CONTROLLER_S &stController, const DEVICE_S &stDevice, PAST_IMAGE_S stImage)
{
    const std::string strDirectory = DirectoryOf(stDevice);
    const std::vector<PAST_IMAGE_S> vecKept = ReadHistory(stController, stDevice);
    if (!vecKept.empty() && vecKept.back().optEeprom == stImage.optEeprom &&
        vecKept.back().optCache == stImage.optCache) {
        return;
    }
    std::vector<u32> vecNumbers = RecordNumbers(strDirectory);
    stImage.uiNumber = vecNumbers.empty() ? 1U : vecNumbers.back() + 1U;
    const Json stContent = {{"time", TimeNow()},
                            {"command", stImage.strCommand},
                            {"device", stDevice.strName},
                            {"eeprom", OptionalHex(stImage.optEeprom)},
                            {"cache", OptionalHex(stImage.optCache)}};
    WriteRecordFile(strDirectory, stImage.uiNumber, KIND, stContent);
    for (size_t i = 0; i + HISTORY_MAX < vecNumbers.size() + 1U; i++) {
        RemoveRecordFile(strDirectory, vecNumbers[i]);
    }
}

void ForgetHistory(u8 ucDeviceID)
{
    const std::string strDirectory = DirectoryOf(ucDeviceID);
    for (const u32 uiNumber : RecordNumbers(strDirectory)) {
        RemoveRecordFile(strDirectory, uiNumber);
    }
}
