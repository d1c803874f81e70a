// SPDX-License-Identifier: Apache-2.0
// An image that does not begin with the first byte of what holds it.
#ifndef TOOLKIT_IMAGE_IMAGE_PART_H
#define TOOLKIT_IMAGE_IMAGE_PART_H

#include "toolkit/image/image.h"

struct LOCATED_S
{
    IMAGE_S stImage;
    u32 uiOffset = 0;
};
// What begins at that byte. Fails when it lies behind the image.
LOCATED_S PartFrom(const IMAGE_S &stWhole, u32 uiOffset);

#endif
