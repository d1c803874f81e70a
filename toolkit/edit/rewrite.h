// SPDX-License-Identifier: Apache-2.0
// The library changes a field by writing the whole image anew. What that does to everything else in the image
// is worked out here, before anything is written.
#ifndef TOOLKIT_EDIT_REWRITE_H
#define TOOLKIT_EDIT_REWRITE_H

#include <functional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/controller/device.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"

struct REWRITE_S
{
    std::vector<std::string> vecNotes;  // what changes beside the fields that are meant, harmless
    std::vector<std::string> vecLosses; // what would be lost beside them
};

// True for a field that is meant to change.
using IsMeant = std::function<bool(const FIELD_ID_S &stField)>;

REWRITE_S CompareImages(const DEVICE_S &stDevice, const IMAGE_S &stOld, const std::vector<u8> &vecNew,
                        const IsMeant &fnMeant);

#endif
