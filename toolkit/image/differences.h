// SPDX-License-Identifier: Apache-2.0
// What two images say differently, field by field and byte by byte.
#ifndef TOOLKIT_IMAGE_DIFFERENCES_H
#define TOOLKIT_IMAGE_DIFFERENCES_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/record.h"

struct DIFFERENCE_S
{
    FIELD_ID_S stField;
    std::optional<std::string> optLeft; // raw; nothing: the image has no such field
    std::optional<std::string> optRight;
};

// By area, then in each record's own order; a field that only the right one has comes behind the left's.
std::vector<DIFFERENCE_S> CompareRecords(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight);

struct BYTE_RUN_S
{
    u32 uiOffset; // in the FRU
    std::vector<u8> vecOld;
    std::vector<u8> vecNew;
};

// Of two images of one length.
std::vector<BYTE_RUN_S> CompareBytes(const std::vector<u8> &vecOld, const std::vector<u8> &vecNew);

#endif
