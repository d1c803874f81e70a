// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/device_json.h"

#include "toolkit/base/text.h"

Json DeviceJson(const DEVICE_S &stDevice)
{
    return {
        {"id", stDevice.stEntry.ucDeviceID},
        {"name", Latin1ToUtf8(stDevice.strName)},
        {"componentType", stDevice.stEntry.ucComponentType},
        {"instance", stDevice.stEntry.ucInstance},
    };
}

Json TargetJson(const TARGET_S &stTarget)
{
    if (stTarget.optDevice.has_value()) {
        return {{"device", DeviceJson(*stTarget.optDevice)}};
    }
    return {{"file", stTarget.strFile}};
}
