// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/metrics.h"

#include "toolkit/base/text.h"

namespace {

// Minutes of a manufacturing date count from 1996-01-01 00:00 UTC on.
constexpr long long EPOCH_1996 = 820454400LL;
constexpr long long MINUTE = 60LL;

using Labels = std::vector<std::pair<const char *, std::string>>;

// A label's value: UTF-8, in which three characters are written with a backslash.
std::string LabelValue(const std::string &strText)
{
    std::string strOut;
    for (const char cChar : Latin1ToUtf8(strText)) {
        strOut += cChar == '\n'   ? "\\n"
                  : cChar == '\\' ? "\\\\"
                  : cChar == '"'  ? "\\\""
                                  : std::string(1U, cChar);
    }
    return strOut;
}

std::string Sample(const char *pcName, const Labels &vecLabels, long long lValue)
{
    std::vector<std::string> vecParts;
    for (const auto &stLabel : vecLabels) {
        vecParts.push_back(std::string(stLabel.first) + "=\"" + LabelValue(stLabel.second) + "\"");
    }
    return std::string(pcName) + (vecParts.empty() ? "" : "{" + Join(vecParts, ",") + "}") +
           Format(" %lld\n", lValue);
}

Labels DeviceLabels(const INVENTORY_S &stDevice)
{
    // Names may be given twice; IDs are not.
    Labels vecLabels = {{"device", stDevice.Name()}};
    if (stDevice.stTarget.optDevice.has_value()) {
        vecLabels.emplace_back("id", Format("%u", stDevice.stTarget.optDevice->stEntry.ucDeviceID));
    }
    return vecLabels;
}

std::string Text(const AREA_VIEW_S &stArea, Field enField)
{
    const FIELD_VIEW_S *pstField = stArea.Find(enField);
    return pstField == nullptr ? "" : pstField->strText;
}

std::string Info(const char *pcName, const INVENTORY_S &stDevice)
{
    if (!stDevice.stTarget.optDevice.has_value()) {
        return "";
    }
    const DEVICE_S &stOf = *stDevice.stTarget.optDevice;
    Labels vecLabels = DeviceLabels(stDevice);
    vecLabels.insert(vecLabels.end(), {{"component_type", Format("0x%02x", stOf.stEntry.ucComponentType)},
                                       {"instance", Format("%u", stOf.stEntry.ucInstance)}});
    return Sample(pcName, vecLabels, 1);
}

std::string Identity(const char *pcName, const INVENTORY_S &stDevice)
{
    std::string strOut;
    for (const Area enArea : {Area::Chassis, Area::Board, Area::Product}) {
        const AREA_VIEW_S *pstArea =
            stDevice.optRecord.has_value() ? stDevice.optRecord->Find(enArea) : nullptr;
        if (pstArea != nullptr) {
            Labels vecLabels = DeviceLabels(stDevice);
            vecLabels.insert(vecLabels.end(), {{"area", AreaKey(enArea)},
                                               {"manufacturer", Text(*pstArea, Field::Manufacturer)},
                                               {"product_name", Text(*pstArea, Field::ProductName)},
                                               {"part_number", Text(*pstArea, Field::PartNumber)},
                                               {"serial_number", Text(*pstArea, Field::SerialNumber)},
                                               {"version", Text(*pstArea, Field::Version)},
                                               {"asset_tag", Text(*pstArea, Field::AssetTag)}});
            strOut += Sample(pcName, vecLabels, 1);
        }
    }
    return strOut;
}

std::string Good(const char *pcName, const INVENTORY_S &stDevice)
{
    return Sample(pcName, DeviceLabels(stDevice), stDevice.IsGood() ? 1 : 0);
}

// One sample for each state, 1 for that which holds: a change of state is no series that ends.
std::string States(const char *pcName, const INVENTORY_S &stDevice, const char *pcNow,
                   const std::vector<const char *> &vecAll)
{
    std::string strOut;
    for (const char *pcState : vecAll) {
        Labels vecLabels = DeviceLabels(stDevice);
        vecLabels.emplace_back("state", pcState);
        strOut += Sample(pcName, vecLabels, std::string(pcState) == pcNow ? 1 : 0);
    }
    return strOut;
}

std::string Image(const char *pcName, const INVENTORY_S &stDevice)
{
    return States(pcName, stDevice, ImageStateName(stDevice.stState.enImage), ImageStateNames());
}

std::string Cache(const char *pcName, const INVENTORY_S &stDevice)
{
    return States(pcName, stDevice, CacheStateName(stDevice.stState.enCache), CacheStateNames());
}

std::string Problems(const char *pcName, const INVENTORY_S &stDevice)
{
    return stDevice.optImage.has_value()
               ? Sample(pcName, DeviceLabels(stDevice), static_cast<long long>(stDevice.Problems()))
               : "";
}

std::string Warnings(const char *pcName, const INVENTORY_S &stDevice)
{
    const size_t uiWarnings = stDevice.stLayout.vecFindings.size() - stDevice.Problems();
    return stDevice.optImage.has_value()
               ? Sample(pcName, DeviceLabels(stDevice), static_cast<long long>(uiWarnings))
               : "";
}

std::string Bytes(const char *pcName, const INVENTORY_S &stDevice)
{
    return stDevice.optImage.has_value()
               ? Sample(pcName, DeviceLabels(stDevice), static_cast<long long>(stDevice.optImage->uiStored))
               : "";
}

std::string MultiRecords(const char *pcName, const INVENTORY_S &stDevice)
{
    return stDevice.optRecord.has_value()
               ? Sample(pcName, DeviceLabels(stDevice),
                        static_cast<long long>(stDevice.optRecord->vecMultiRecords.size()))
               : "";
}

std::string Manufactured(const char *pcName, const INVENTORY_S &stDevice)
{
    const AREA_VIEW_S *pstBoard =
        stDevice.optRecord.has_value() ? stDevice.optRecord->Find(Area::Board) : nullptr;
    const FIELD_VIEW_S *pstDate = pstBoard == nullptr ? nullptr : pstBoard->Find(Field::MfgDate);
    const u32 uiMinutes = pstDate == nullptr ? 0U : pstDate->optNumber.value_or(0U); // 0: not told
    return uiMinutes == 0U ? "" : Sample(pcName, DeviceLabels(stDevice), EPOCH_1996 + MINUTE * uiMinutes);
}

struct FAMILY_S
{
    const char *pcName;
    const char *pcHelp;
    std::string (*pfnSamples)(const char *pcName, const INVENTORY_S &stDevice);
};

constexpr FAMILY_S FAMILIES[] = {
    {"fru_device_info", "A FRU device of the controller; always 1.", Info},
    {"fru_device_good",
     "1 when the device's image can be read, every byte of it is in order, and the cached image is the same.",
     Good},
    {"fru_device_image_state", "1 for the state that the device's image is in, else 0.", Image},
    {"fru_device_cache_state", "1 for the state that the device's cached image is in, else 0.", Cache},
    {"fru_device_problems", "What is wrong in the device's image.", Problems},
    {"fru_device_warnings", "What is worth a look in the device's image, and refused by no reader.",
     Warnings},
    {"fru_device_image_bytes", "Size of the device's image.", Bytes},
    {"fru_device_multirecords", "MultiRecords in the device's image.", MultiRecords},
    {"fru_identity_info", "What an area of the device's image says it is; always 1.", Identity},
    {"fru_board_manufactured_timestamp_seconds", "When the board was made, by its image.", Manufactured},
};

} // namespace

std::string MetricsText(const std::vector<INVENTORY_S> &vecInventory)
{
    std::string strOut = "# HELP fru_devices FRU devices of the controller.\n# TYPE fru_devices gauge\n" +
                         Sample("fru_devices", {}, static_cast<long long>(vecInventory.size()));
    for (const FAMILY_S &stFamily : FAMILIES) {
        strOut +=
            Format("# HELP %s %s\n# TYPE %s gauge\n", stFamily.pcName, stFamily.pcHelp, stFamily.pcName);
        for (const INVENTORY_S &stDevice : vecInventory) {
            strOut += stFamily.pfnSamples(stFamily.pcName, stDevice);
        }
    }
    return strOut;
}
