// SPDX-License-Identifier: Apache-2.0
// What a damaged image still says: every field that the walk past damage finds, good or doubtful.
#ifndef TOOLKIT_IMAGE_LENIENT_H
#define TOOLKIT_IMAGE_LENIENT_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"

struct LENIENT_FIELD_S
{
    FIELD_ID_S stField;
    u32 uiOffset;
    std::string strText; // raw; of a MultiRecord its title and what it says
    NOTE_S stNote;
    std::string strDoubt; // why it may be wrong; empty: it is good
};

struct LENIENT_AREA_S
{
    Area enArea;
    std::vector<LENIENT_FIELD_S> vecFields;
    std::vector<std::string> vecRemarks; // what is wrong with it, warnings left out
};

struct LENIENT_VIEW_S
{
    std::vector<LENIENT_AREA_S> vecAreas; // as they stand in the image
    std::vector<std::string> vecRemarks;  // on the header
    size_t uiGood = 0;
    size_t uiDoubtful = 0;
};

LENIENT_VIEW_S ViewLeniently(const IMAGE_S &stImage, bool bFixedSlots);

#endif
