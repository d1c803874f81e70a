// SPDX-License-Identifier: Apache-2.0
// JSON for programs. Members stand in the order in which they are set.
#ifndef TOOLKIT_BASE_JSON_H
#define TOOLKIT_BASE_JSON_H

#include <nlohmann/json.hpp>
#include <string>

using Json = nlohmann::ordered_json;

// Nothing that is read here nests deeper, and whoever walks a document of others may recurse.
constexpr int JSON_DEPTH_MAX = 64;

// Discarded, where the text is no JSON or nests deeper than that.
template <typename JSON> JSON ParseJsonText(const std::string &strText)
{
    bool bDeep = false;
    JSON stParsed = JSON::parse(
        strText,
        [&bDeep](int iDepth, typename JSON::parse_event_t, JSON &) {
            bDeep = bDeep || iDepth > JSON_DEPTH_MAX;
            return !bDeep;
        },
        false);
    return bDeep ? JSON(JSON::value_t::discarded) : stParsed;
}

#endif
