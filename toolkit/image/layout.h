// SPDX-License-Identifier: Apache-2.0
// Walks an image's bytes: which byte belongs to which area and field, what it says, and what is wrong with
// it. The decoder only tells that an area is bad; this tells where and why. verify, show and map share it.
#ifndef TOOLKIT_IMAGE_LAYOUT_H
#define TOOLKIT_IMAGE_LAYOUT_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"

// A run of bytes with one meaning.
struct SPAN_S
{
    u32 uiOffset;
    u32 uiLength;
    FIELD_ID_S stField;
    std::string strText;    // what the bytes say; raw, not escaped
    NOTE_S stNote;          // how they say it, where that is not plain
    std::string strProblem; // empty: none
};

struct FINDING_S
{
    u32 uiOffset; // the byte at fault
    Area enArea;
    std::string strWhat;
    bool bWarning; // worth a look, but every reader takes the image as it is
};

struct IMAGE_LAYOUT_S
{
    std::vector<SPAN_S> vecSpans;       // by offset
    std::vector<FINDING_S> vecFindings; // by offset
    std::vector<Area> vecAreas;         // the areas that the header names, in image order
    u32 uiMultiRecords = 0;             // records seen
    bool bErased = false;               // every byte is 0xFF

    bool IsSound() const; // no finding but warnings
};

// "byte 0x0007  common header: checksum: ..."
std::string FindingText(const FINDING_S &stFinding);

// What a walk does where every reader of this system gives up.
enum class Damage
{
    Ends,  // the rest of the area, or of the image, is not told of
    Passed // what still can be read behind it is told of, too
};

// Of vecImage the first uiStored bytes are the image's own and are told of; the rest lies behind it in the
// EEPROM and bounds the decoder only. bFixedSlots: the image is read with exactly 5 chassis and 4 product
// custom fields, as a baseboard's is.
IMAGE_LAYOUT_S WalkImage(const std::vector<u8> &vecImage, size_t uiStored, bool bFixedSlots,
                         Damage enDamage = Damage::Ends);

#endif
