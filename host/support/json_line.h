// SPDX-License-Identifier: Apache-2.0
// One line of a journal.
#ifndef BMCHOST_SUPPORT_JSON_LINE_H
#define BMCHOST_SUPPORT_JSON_LINE_H

#include <nlohmann/json.hpp>

namespace host {

using JSON = nlohmann::ordered_json;

// Text from a device need not be UTF-8: what is not becomes U+FFFD.
inline std::string ToLine(const JSON &json)
{
    return json.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

} // namespace host

#endif
