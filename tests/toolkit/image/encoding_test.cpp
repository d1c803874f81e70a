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

std::optional<std::string> Unicode(u8 ucLanguage, const std::vector<u8> &vecData, u8 ucType = 3U)
{
    const u32 uiLength = static_cast<u32>(vecData.size());
    return UnicodeText(static_cast<u8>(u32{ucType} << 6U | uiLength), ucLanguage, vecData.data(), uiLength);
}

TEST(Encoding, TwoBytesACharacterWhereTheLanguageIsNotEnglish)
{
    constexpr u8 GERMAN = 30U;
    const std::vector<u8> vecLetters = {'M', 0, 0xFC, 0, 'l', 0};
    EXPECT_EQ(Unicode(GERMAN, vecLetters), "M\xC3\xBCl");
    EXPECT_EQ(Unicode(GERMAN, {0x44, 0x30, 0x02, 0x30}), "\xE3\x81\x84\xE3\x80\x82");
    EXPECT_EQ(Unicode(GERMAN, {0x3D, 0xD8, 0x00, 0xDE}), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Unicode(0U, vecLetters), std::nullopt);
    EXPECT_EQ(Unicode(25U, vecLetters), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, vecLetters, 0U), std::nullopt);
}

TEST(Encoding, WhatCannotBeTwoBytesACharacterIsNotTakenForIt)
{
    constexpr u8 GERMAN = 30U;
    EXPECT_EQ(Unicode(GERMAN, {'A', 'B', 'C', 'D'}), std::nullopt); // as most write, whatever the language
    EXPECT_EQ(Unicode(GERMAN, {'G', 'r', 0xF6, 0xDF, 'e', '1'}), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, {'M', 0, 0xFC}), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, {'M', 0, 0, 0}), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, {0x3D, 0xD8}), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, {0xFF, 0xFF}), std::nullopt);
    EXPECT_EQ(Unicode(GERMAN, {}), std::nullopt);
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
