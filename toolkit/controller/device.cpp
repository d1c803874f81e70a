// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/device.h"

#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"

namespace {

template <size_t uiSize> std::string FixedText(const char (&acText)[uiSize])
{
    return std::string(acText, strnlen(acText, uiSize));
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

std::vector<DEVICE_S> LoadDevices(const CONTROLLER_S &stController)
{
    RequireController(stController);
    FRU_DEVICE_TBL_S stTable = {};
    const u32 uiRet = LIB_FRU_GetFRUDeviceTbl(&stTable);
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::NotFound,
                    "the controller in " + stController.strRoot +
                        " has no device table: " + StatusText(uiRet),
                    "; 'fructl provision FILE' makes a controller with one", uiRet);
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
