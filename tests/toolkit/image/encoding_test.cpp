// SPDX-License-Identifier: Apache-2.0
// Type/length-coded fields: what they say, and how.
#include "toolkit/image/encoding.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

FIELD_TEXT_S Decode(u8 ucType, const std::vector<u8> &vecData)
{
    const u32 uiLength = static_cast<u32>(vecData.size());
    return FieldText(static_cast<u8>(u32{ucType} << 6U | uiLength), vecData.data(), uiLength);
}

TEST(Encoding, PlainTextHasNoNote)
{
    const FIELD_TEXT_S stText = Decode(3U, {'A', 'B'});
    EXPECT_EQ(stText.strText, "AB");
    EXPECT_FALSE(stText.stNote.IsTold());
    EXPECT_EQ(NoteText(stText.stNote), "");
}

TEST(Encoding, EveryOtherWayHasItsOwn)
{
    const struct
    {
        u8 ucType;
        std::vector<u8> vecData;
        Note enNote;
        const char *pcText;
        const char *pcNote;
    } astCases[] = {
        {3U, {}, Note::Empty, "", "empty"},
        {0U, {0x0A, 0xFF}, Note::Binary, "0AFF", "binary"},
        {1U, {0x12, 0xAB}, Note::BcdPlus, "", "BCD plus 12 -, decoded as an empty text"},
        {2U, {0x29, 0xDC, 0xA6}, Note::SixBitAscii, "IPMI", "6-bit ASCII"},
    };
    for (const auto &stCase : astCases) {
        const FIELD_TEXT_S stText = Decode(stCase.ucType, stCase.vecData);
        EXPECT_EQ(stText.stNote.enNote, stCase.enNote);
        EXPECT_EQ(stText.strText, stCase.pcText);
        EXPECT_EQ(NoteText(stText.stNote), stCase.pcNote);
    }
    EXPECT_EQ(Decode(3U, {'A', 0U, 'B'}).stNote.enNote, Note::ZeroByte);
}

TEST(Encoding, NotesOfOneKindDifferByWhatTheyTell)
{
    EXPECT_EQ(Decode(1U, {0x12}).stNote, Decode(1U, {0x12}).stNote);
    EXPECT_NE(Decode(1U, {0x12}).stNote, Decode(1U, {0x13}).stNote);
    EXPECT_NE(Decode(0U, {0x12}).stNote, Decode(2U, {0x12}).stNote);
}

} // namespace
