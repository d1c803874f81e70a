// SPDX-License-Identifier: Apache-2.0
#include "terminal/json_out.h"

#include "terminal/console.h"

void PrintJson(const Json &stJson)
{
    Print(stJson.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}
