// SPDX-License-Identifier: Apache-2.0
// What is left of a damaged image, for programs.
#ifndef TOOLKIT_IMAGE_LENIENT_JSON_H
#define TOOLKIT_IMAGE_LENIENT_JSON_H

#include "toolkit/base/json.h"
#include "toolkit/image/lenient.h"

// {"offset", "good", "doubtful", "remarks", "areas": [...]}
Json LenientJson(const LENIENT_VIEW_S &stView, u32 uiOffset);

#endif
