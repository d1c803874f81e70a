// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/type_length.h"

#include "codec_test_helper.h"

namespace {

using namespace codec;
using image::Field;

struct DECODED_S
{
    u32 uiRet = 0;
    std::string strText;
    u8 ucSize = 0xEEU;
    bool bNull = false;
};

// Decodes from a buffer that holds the field and nothing else.
DECODED_S DecodeField(const BYTES &vecField, u32 uiLeft)
{
    DECODED_S stDecoded;
    const std::unique_ptr<u8[]> upField = image::Exact(vecField);
    u8 ucStale = 0;
    u8 *pucText = &ucStale;
    stDecoded.uiRet = FRU_GetStringFromType(upField.get(), uiLeft, &pucText, &stDecoded.ucSize);
    stDecoded.bNull = pucText == nullptr;
    if (!stDecoded.bNull) {
        stDecoded.strText = Str(pucText);
        model::Free(pucText);
    }
    return stDecoded;
}

DECODED_S DecodeField(const BYTES &vecField)
{
    return DecodeField(vecField, static_cast<u32>(vecField.size()));
}

TEST(GetStringFromType, RefusesNullAndLeavesTheOutputAlone)
{
    fake::Reset();
    u8 ucStale = 0;
    u8 *pucText = &ucStale;
    u8 ucSize = 7;
    EXPECT_EQ(FRU_GetStringFromType(nullptr, 4, &pucText, &ucSize), 0x81000002U);
    EXPECT_EQ(pucText, &ucStale);
    EXPECT_EQ(ucSize, 7U);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_GetStringFromType", "pucBuf")});
}

TEST(GetStringFromType, NoDataIsAnEmptyTextOf8WhateverTheType)
{
    for (u32 uiType = 0; uiType < 4U; ++uiType) {
        fake::Reset();
        const DECODED_S stDecoded = DecodeField(Field(uiType, {}));
        EXPECT_EQ(stDecoded.uiRet, 0U);
        EXPECT_EQ(stDecoded.strText, "");
        EXPECT_EQ(stDecoded.ucSize, 8U);
        EXPECT_EQ(fake::Messages(), LINES{});
    }
}

TEST(GetStringFromType, EightBitTextIsTheBytesAsTheyAre)
{
    fake::Reset();
    const DECODED_S stDecoded = DecodeField(image::Text("caf\xE9 %s 1"));
    EXPECT_EQ(stDecoded.uiRet, 0U);
    EXPECT_EQ(stDecoded.strText, "caf\xE9 %s 1");
    EXPECT_EQ(stDecoded.ucSize, 10U);
    EXPECT_EQ(fake::Messages(), LINES{});
}

TEST(GetStringFromType, TheEndMarkIsAFieldOfOneByte)
{
    fake::Reset();
    const DECODED_S stDecoded = DecodeField({0xC1U, 'x'});
    EXPECT_EQ(stDecoded.strText, "x");
    EXPECT_EQ(stDecoded.ucSize, 2U);
}

TEST(GetStringFromType, BinaryIsUpperCaseHexadecimal)
{
    fake::Reset();
    const DECODED_S stDecoded = DecodeField(Field(0U, {0x01U, 0xABU}));
    EXPECT_EQ(stDecoded.uiRet, 0U);
    EXPECT_EQ(stDecoded.strText, "01AB");
    EXPECT_EQ(stDecoded.ucSize, 5U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, "Not default type format:0x2")});
}

TEST(GetStringFromType, BcdPlusIsAnEmptyText)
{
    fake::Reset();
    const DECODED_S stDecoded = DecodeField(Field(1U, {0x12U, 0x34U, 0x56U}));
    EXPECT_EQ(stDecoded.uiRet, 0U);
    EXPECT_EQ(stDecoded.strText, "");
    EXPECT_EQ(stDecoded.ucSize, 4U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, "Not default type format:0x43")});
}

TEST(GetStringFromType, SixBitTextIsFourCharactersForThreeBytes)
{
    fake::Reset();
    const DECODED_S stDecoded = DecodeField(Field(2U, {0x29U, 0xDCU, 0xA6U}));
    EXPECT_EQ(stDecoded.uiRet, 0U);
    EXPECT_EQ(stDecoded.strText, "IPMI");
    EXPECT_EQ(stDecoded.ucSize, 5U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, "Not default type format:0x83")});
}

TEST(GetStringFromType, AShortLastSixBitGroupStillYieldsFourCharacters)
{
    fake::Reset();
    EXPECT_EQ(DecodeField(Field(2U, {0x29U})).strText, "I   ");
    EXPECT_EQ(DecodeField(Field(2U, {0x29U, 0xDCU})).strText, "IP- ");
    EXPECT_EQ(DecodeField(Field(2U, {0x29U, 0xDCU, 0xA6U, 0xFFU})).strText, "IPMI_#  ");
    EXPECT_EQ(DecodeField(Field(2U, {0x29U})).ucSize, 5U);
    EXPECT_EQ(DecodeField(Field(2U, {0x29U, 0xDCU})).ucSize, 5U);
    EXPECT_EQ(DecodeField(Field(2U, {0x29U, 0xDCU, 0xA6U, 0xFFU})).ucSize, 9U);
}

TEST(GetStringFromType, TheBytesThatAShortSixBitGroupLacksCountAsZero)
{
    fake::Reset();
    EXPECT_EQ(DecodeField(Field(2U, {0x00U})).strText, "    ");
    EXPECT_EQ(DecodeField(Field(2U, {0x00U, 0x00U})).strText, "    ");
    EXPECT_EQ(DecodeField(Field(2U, {0x28U})).strText, "H   ");
    EXPECT_EQ(DecodeField(Field(2U, {0x28U, 0xDCU})).strText, "HP- ");
}

TEST(GetStringFromType, EveryTypeAndLengthHasItsBufferSize)
{
    for (u32 uiCount = 1; uiCount < 64U; ++uiCount) {
        fake::Reset();
        const BYTES vecData(uiCount, 0x41U);
        EXPECT_EQ(DecodeField(Field(0U, vecData)).ucSize, 2U * uiCount + 1U);
        EXPECT_EQ(DecodeField(Field(0U, vecData)).strText.size(), 2U * uiCount);
        EXPECT_EQ(DecodeField(Field(1U, vecData)).ucSize, uiCount + 1U);
        EXPECT_EQ(DecodeField(Field(2U, vecData)).ucSize, (((uiCount + 2U) * 4U / 3U) & ~3U) + 1U);
        EXPECT_EQ(DecodeField(Field(2U, vecData)).strText.size(), (uiCount + 2U) / 3U * 4U);
        EXPECT_EQ(DecodeField(Field(3U, vecData)).ucSize, uiCount + 1U);
        EXPECT_EQ(DecodeField(Field(3U, vecData)).strText, std::string(uiCount, 'A'));
    }
}

TEST(GetStringFromType, AFieldPastTheEndFailsWithoutAMessageOfItsOwn)
{
    for (u32 uiType = 0; uiType < 4U; ++uiType) {
        for (u32 uiLeft = 0; uiLeft < 4U; ++uiLeft) {
            fake::Reset();
            BYTES vecField = Field(uiType, {1U, 2U, 3U});
            vecField.resize(uiLeft);
            const DECODED_S stDecoded = DecodeField(vecField, uiLeft);
            EXPECT_EQ(stDecoded.uiRet, 0x81000001U);
            EXPECT_TRUE(stDecoded.bNull);
            EXPECT_EQ(stDecoded.ucSize, 0U);
            EXPECT_EQ(fake::Messages(), LINES{});
        }
    }
}

TEST(GetStringFromType, OutOfMemoryClearsTheOutput)
{
    const LINES vecType{"Not default type format:0x2", "Not default type format:0x42",
                        "Not default type format:0x82"};
    for (u32 uiType = 0; uiType < 4U; ++uiType) {
        fake::Reset();
        fake::Arm({fake::KIND_E::ALLOC, 1, false});
        const DECODED_S stDecoded = DecodeField(Field(uiType, {1U, 2U}));
        fake::Disarm();
        EXPECT_EQ(stDecoded.uiRet, 0x81000001U);
        EXPECT_TRUE(stDecoded.bNull);
        EXPECT_EQ(stDecoded.ucSize, 0U);
        LINES vecExpected;
        if (uiType < 3U) {
            vecExpected.push_back(Line(4, vecType[uiType]));
        }
        vecExpected.push_back(Line(2, "Error allocating memory for str"));
        EXPECT_EQ(fake::Messages(), vecExpected);
    }
    fake::Reset();
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(DecodeField({0xC0U}).uiRet, 0x81000001U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(2, "Error allocating memory for str, Len:0x8")});
}

TEST(ReadField, StandsBehindTheFieldAfterwards)
{
    fake::Reset();
    const BYTES vecBytes{0xC2U, 'a', 'b', 0xC0U, 0x41U};
    const std::unique_ptr<u8[]> upBytes = image::Exact(vecBytes);
    FRU_READER_S stReader = FRU_ReaderOver(upBytes.get(), 5);
    u8 *pucText = nullptr;
    u8 ucSize = 0;
    EXPECT_EQ(FRU_ReadField(stReader, &pucText, &ucSize), 0U);
    EXPECT_EQ(Str(pucText), "ab");
    EXPECT_EQ(stReader.pucCursor, upBytes.get() + 3);
    model::Free(pucText);
    EXPECT_EQ(FRU_ReadField(stReader, &pucText, &ucSize), 0U);
    EXPECT_EQ(Str(pucText), "");
    model::Free(pucText);
    EXPECT_EQ(FRU_ReadField(stReader, &pucText, &ucSize), 0x81000001U);
    EXPECT_EQ(pucText, nullptr);
}

} // namespace
