// SPDX-License-Identifier: Apache-2.0
// JSON on standard output.
#ifndef FRUCTL_TERMINAL_JSON_OUT_H
#define FRUCTL_TERMINAL_JSON_OUT_H

#include "toolkit/base/json.h"

// Keeps it for the end of the run, so that what fails later can stand in the same object.
void PrintJson(const Json &stJson);

// Prints what is kept, with the failure as its member "error", which is an object of its own where nothing is
// kept. A second document, of a command that goes on for long, follows the first.
void EndJson();
void EndJson(const Json &stFailure);

#endif
