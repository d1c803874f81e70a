// SPDX-License-Identifier: Apache-2.0
// JSON on standard output.
#ifndef FRUCTL_TERMINAL_JSON_OUT_H
#define FRUCTL_TERMINAL_JSON_OUT_H

#include "toolkit/base/json.h"

void PrintJson(const Json &stJson);

#endif
