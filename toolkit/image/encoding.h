// SPDX-License-Identifier: Apache-2.0
// Type/length-coded fields, decoded as every reader of this system decodes them.
#ifndef TOOLKIT_IMAGE_ENCODING_H
#define TOOLKIT_IMAGE_ENCODING_H

#include <optional>
#include <string>

#include "lib_fru_types.h"

// The upper two bits of a type/length byte.
enum class Encoding
{
    Binary,
    BcdPlus,
    SixBitAscii,
    Text
};
Encoding EncodingOf(u8 ucTypeLength);

// How bytes say what they say, where that is not plain.
enum class Note
{
    None,
    Empty,
    Binary,
    BcdPlus, // told by nobody: readers take it for an empty text
    SixBitAscii,
    ZeroByte,       // readers end the text there
    Unicode,        // two bytes a character, which readers take for letters of one byte
    OtherDate,      // its detail: what it would be after another round of the counter
    OneValue,       // every byte the same, in no area
    DifferentValues // in no area either
};

struct NOTE_S
{
    Note enNote = Note::None;
    std::string strDetail = {}; // the digits of BcdPlus, the byte of OneValue, Unicode's text

    bool IsTold() const
    {
        return enNote != Note::None;
    }
};
bool operator==(const NOTE_S &stLeft, const NOTE_S &stRight);
bool operator!=(const NOTE_S &stLeft, const NOTE_S &stRight);

// For people.
std::string NoteText(const NOTE_S &stNote);

struct FIELD_TEXT_S
{
    std::string strText; // as every reader decodes it
    NOTE_S stNote;
};

// What a text field says in an area of another language than English, where the format has two bytes a character, the
// lower one first: UTF-8. Nothing where it cannot be meant so: letters of one byte alone, as most write whatever the
// language, or no valid characters.
std::optional<std::string> UnicodeText(u8 ucTypeLength, u8 ucLanguage, const u8 *pucData, u32 uiLength);

// The field whose type/length byte is ucTypeLength and whose uiLength data bytes lie at pucData.
FIELD_TEXT_S FieldText(u8 ucTypeLength, const u8 *pucData, u32 uiLength);

#endif
