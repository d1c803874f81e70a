// SPDX-License-Identifier: Apache-2.0
// What is wrong in an image, for programs.
#ifndef TOOLKIT_IMAGE_LAYOUT_JSON_H
#define TOOLKIT_IMAGE_LAYOUT_JSON_H

#include "toolkit/base/json.h"
#include "toolkit/image/layout.h"

// {"sound", "problems": [...], "warnings": [...]}
Json FindingsJson(const IMAGE_LAYOUT_S &stLayout);

#endif
