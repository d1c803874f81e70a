// SPDX-License-Identifier: Apache-2.0
// JSON for programs. Members stand in the order in which they are set.
#ifndef TOOLKIT_BASE_JSON_H
#define TOOLKIT_BASE_JSON_H

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

#endif
