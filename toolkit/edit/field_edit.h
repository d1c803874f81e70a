// SPDX-License-Identifier: Apache-2.0
// Changing fields of an image by their names, as 'show --json' has them, with every other byte as it was.
#ifndef TOOLKIT_EDIT_FIELD_EDIT_H
#define TOOLKIT_EDIT_FIELD_EDIT_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image_parts.h"

enum class Edit
{
    Set,
    Append, // a custom field or a MultiRecord, behind those that there are
    Remove, // the same
    AddArea,
    RemoveArea
};

struct FIELD_EDIT_S
{
    Edit enEdit;
    FIELD_ID_S stField;   // of an area its OpaqueData
    std::string strName;  // "product.custom[2]"
    std::string strValue; // Latin-1
    bool bNumber = false; // the number that a field's text stands for
    bool bWrap = false;   // a date beyond the end of the count starts it again
    std::optional<Encoding> optAs = {};
};

// NAME=VALUE; the name of a field, record or area to remove; that of an area to add. Fail as wrong usage, with
// the names that come near.
FIELD_EDIT_S ParseAssignment(const std::string &strWord);
FIELD_EDIT_S ParseRemoval(const std::string &strName);
FIELD_EDIT_S ParseNewArea(const std::string &strName);

// Fails as wrong usage when two of them are about the same field.
void RequireDistinct(const std::vector<FIELD_EDIT_S> &vecEdits);

// The image with the edits made, as long as its room. Every name is that of a field of the image as it was. Fails
// with what is in the way.
std::vector<u8> EditImage(const std::vector<u8> &vecImage, const ROOM_S &stRoom,
                          const std::vector<FIELD_EDIT_S> &vecEdits);

#endif
