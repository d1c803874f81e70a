// SPDX-License-Identifier: Apache-2.0
// What two images say differently, for programs.
#ifndef TOOLKIT_IMAGE_DIFFERENCES_JSON_H
#define TOOLKIT_IMAGE_DIFFERENCES_JSON_H

#include <vector>

#include "toolkit/base/json.h"
#include "toolkit/image/differences.h"

// [{"area", "field", LEFT, RIGHT}, ...], under these two names; no such field: null.
Json FieldChangesJson(const std::vector<DIFFERENCE_S> &vecDifferences, const char *pcLeft,
                      const char *pcRight);

// [{"offset", "old", "new"}, ...]
Json ByteChangesJson(const std::vector<BYTE_RUN_S> &vecRuns);

#endif
