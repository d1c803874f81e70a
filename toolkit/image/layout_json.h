// SPDX-License-Identifier: Apache-2.0
// What an image's bytes are and what is wrong with them, for programs.
#ifndef TOOLKIT_IMAGE_LAYOUT_JSON_H
#define TOOLKIT_IMAGE_LAYOUT_JSON_H

#include "toolkit/base/json.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

// {"sound", "problems": [...], "warnings": [...]}
Json FindingsJson(const IMAGE_LAYOUT_S &stLayout);

// {"source", "size"}, the findings, and "spans": every byte with the field that it belongs to.
Json MapJson(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout);

#endif
