// JSON for programs. Members stand in the order in which they are set.
#ifndef FRUCTL_JSON_OUT_H
#define FRUCTL_JSON_OUT_H

#include <nlohmann/json.hpp>

#include "device.h"
#include "image_layout.h"

using JSON = nlohmann::ordered_json;

void PrintJson(const JSON &stJson);

// {"id", "name", "componentType", "instance"}
JSON DeviceJson(const DEVICE_S &stDevice);

// {"device": ...} or {"file": ...}
JSON TargetJson(const TARGET_S &stTarget);

// {"sound", "problems": [...], "warnings": [...]}
JSON FindingsJson(const IMAGE_LAYOUT_S &stLayout);

#endif
