// SPDX-License-Identifier: Apache-2.0
// Values as an image stores them: the way back from encoding.h.
#ifndef TOOLKIT_IMAGE_FIELD_CODE_H
#define TOOLKIT_IMAGE_FIELD_CODE_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/encoding.h"

// What --as takes: "text", "6bit", "bcd", "binary".
const std::vector<std::string> &EncodingNames();
std::optional<Encoding> EncodingByName(const std::string &strName);

// How a value becomes a field's bytes.
struct FIELD_STYLE_S
{
    std::optional<Encoding> optAs; // nothing: as the old field is stored
    bool bListed = true;           // a list of fields holds it, which the byte 0xc1 would end
    bool bWide = false;            // in the area's language a text may have two bytes a character
};

// The field's bytes, type/length first, with a new value: Latin-1, or hex digits for a binary field. One that
// says the value already stays as it is. Fails with why it does not fit and what would.
std::vector<u8> FieldBytes(const std::vector<u8> &vecOld, const std::string &strValue,
                           const FIELD_STYLE_S &stStyle);

// What a field's bytes say, whatever the encoding: BCD digits, too.
std::string FieldValue(const std::vector<u8> &vecField);

#endif
