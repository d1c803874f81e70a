// SPDX-License-Identifier: Apache-2.0
#include "toolkit/task/list.h"

#include "toolkit/controller/device_json.h"

std::vector<LISTED_S> ListDevices(const CONTROLLER_S &stController)
{
    std::vector<LISTED_S> vecListed;
    for (const DEVICE_S &stDevice : LoadDevices(stController)) {
        vecListed.push_back({stDevice, StateOf(stDevice)});
    }
    return vecListed;
}

Json ListJson(const std::vector<LISTED_S> &vecListed)
{
    Json stList = Json::array();
    for (const LISTED_S &stListed : vecListed) {
        const FRU_DEVICE_INFO_S &stInfo = stListed.stDevice.stInfo;
        Json stJson = DeviceJson(stListed.stDevice);
        stJson.update({{"bus", stInfo.ucBusNumber},
                       {"address", stInfo.ucAddress},
                       {"switchLevel", stInfo.ucSwitchLevel},
                       {"startOffset", u16{stInfo.usStartOffset}},
                       {"size", u16{stInfo.usSize}},
                       {"databaseOnly", stListed.stDevice.IsDatabaseOnly()},
                       {"image", ImageStateName(stListed.stState.enImage)},
                       {"cache", CacheStateName(stListed.stState.enCache)}});
        stList.push_back(stJson);
    }
    return {{"devices", stList}};
}
