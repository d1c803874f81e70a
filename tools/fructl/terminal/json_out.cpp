// SPDX-License-Identifier: Apache-2.0
#include "terminal/json_out.h"

#include <optional>

#include "terminal/console.h"

static std::optional<Json> g_optKept;

void PrintJson(const Json &stJson)
{
    EndJson();
    g_optKept = stJson;
}

void EndJson()
{
    if (g_optKept.has_value()) {
        Print(g_optKept->dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
        g_optKept.reset();
    }
}

void EndJson(const Json &stFailure)
{
    if (!g_optKept.has_value()) {
        g_optKept = Json::object();
    }
    (*g_optKept)["error"] = stFailure;
    EndJson();
}
