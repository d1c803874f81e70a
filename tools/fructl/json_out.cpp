#include "json_out.h"

#include "console.h"
#include "text.h"

void PrintJson(const JSON &stJson)
{
    Print(stJson.dump(2, ' ', false, JSON::error_handler_t::replace) + "\n");
}

JSON DeviceJson(const DEVICE_S &stDevice)
{
    return {
        {"id", stDevice.stEntry.ucDeviceID},
        {"name", Latin1ToUtf8(stDevice.strName)},
        {"componentType", stDevice.stEntry.ucComponentType},
        {"instance", stDevice.stEntry.ucInstance},
    };
}

JSON TargetJson(const TARGET_S &stTarget)
{
    if (stTarget.optDevice.has_value()) {
        return {{"device", DeviceJson(*stTarget.optDevice)}};
    }
    return {{"file", stTarget.strFile}};
}

JSON FindingsJson(const IMAGE_LAYOUT_S &stLayout)
{
    JSON stProblems = JSON::array();
    JSON stWarnings = JSON::array();
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        JSON &stList = stFinding.bWarning ? stWarnings : stProblems;
        stList.push_back({{"offset", stFinding.uiOffset},
                          {"area", AreaKey(stFinding.enArea)},
                          {"what", stFinding.strWhat}});
    }
    return {{"sound", stLayout.IsSound()}, {"problems", stProblems}, {"warnings", stWarnings}};
}
