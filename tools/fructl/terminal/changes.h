// SPDX-License-Identifier: Apache-2.0
// What two images say differently, for people and for programs.
#ifndef FRUCTL_TERMINAL_CHANGES_H
#define FRUCTL_TERMINAL_CHANGES_H

#include <string>
#include <vector>

#include "toolkit/base/json.h"
#include "toolkit/image/differences.h"

// Under the area's name each field with "- old" and "+ new".
std::string FieldChangesText(const std::vector<DIFFERENCE_S> &vecDifferences);

// [{"area", "field", LEFT, RIGHT}, ...], under these two names; no such field: null.
Json FieldChangesJson(const std::vector<DIFFERENCE_S> &vecDifferences, const char *pcLeft,
                      const char *pcRight);

// How many bytes would change, and the runs, at most 16 bytes a line: "0x00dd  4c 48 -> 4d 49".
std::string ByteChangesText(const std::vector<BYTE_RUN_S> &vecRuns);

// [{"offset", "old", "new"}, ...]
Json ByteChangesJson(const std::vector<BYTE_RUN_S> &vecRuns);

#endif
