// SPDX-License-Identifier: Apache-2.0
// The table of fields: what every reader, builder and label goes by.
#include "toolkit/image/fields.h"

#include <gtest/gtest.h>
#include <set>

#include "lib_fru.h"

namespace {

TEST(Fields, EveryLabelKeptInAnImageHasOnePlace)
{
    std::multiset<u32> setLabels;
    for (const AREA_ROW_S &stArea : AreaRows()) {
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            if (stRow.uiLabel != 0U) {
                setLabels.insert(stRow.uiLabel);
            }
        }
        for (u32 i = 0; i < stArea.stCustom.uiLabels; i++) {
            setLabels.insert(stArea.stCustom.uiFirstLabel + i);
        }
    }
    std::multiset<u32> setExpected;
    for (u32 i = FRU_LABEL_CHASSIS_TYPE; i < FRU_LABEL_HARDWARE; i++) {
        setExpected.insert(i);
    }
    EXPECT_EQ(setLabels, setExpected);
}

TEST(Fields, NamesAndKeysAreToldApartWithinAnArea)
{
    for (const AREA_ROW_S &stArea : AreaRows()) {
        std::set<std::string> setNames;
        std::set<std::string> setKeys;
        std::set<size_t> setOffsets;
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            EXPECT_TRUE(setNames.insert(FieldName({stArea.enArea, stRow.enField})).second);
            ASSERT_NE(FieldKey(stRow.enField), nullptr);
            EXPECT_TRUE(setKeys.insert(FieldKey(stRow.enField)).second);
            EXPECT_TRUE(setOffsets.insert(stRow.uiOffset).second);
            const bool bNumber = stRow.enKind == Kind::Language || stRow.enKind == Kind::MfgDate;
            EXPECT_EQ(NumberKey(stRow.enField) != nullptr, bNumber);
        }
    }
}

TEST(Fields, SeveralAlikeAreCountedFromOne)
{
    EXPECT_EQ(FieldName({Area::Board, Field::Custom, 0U}), "custom field 1");
    EXPECT_EQ(FieldName({Area::MultiRecord, Field::OneRecord, 9U}), "record 10");
    EXPECT_EQ(FieldName({Area::MultiRecord, Field::RecordHeader, 1U}), "record 2 header");
    EXPECT_EQ(FieldName({Area::MultiRecord, Field::RecordData, 1U}), "record 2 data");
    EXPECT_EQ(FieldName({Area::Header, Field::AreaOffset, static_cast<u32>(Area::Product)}),
              "product info area offset");
}

TEST(Fields, TheHeaderNamesFiveAreasInItsOwnOrder)
{
    EXPECT_EQ(HeaderOffsetByte(Area::InternalUse),
              offsetof(FRU_COMMON_HEADER_S, ucInternalUseAreaStartOffset));
    EXPECT_EQ(HeaderOffsetByte(Area::Chassis), offsetof(FRU_COMMON_HEADER_S, ucChassisInfoAreaStartOffset));
    EXPECT_EQ(HeaderOffsetByte(Area::Board), offsetof(FRU_COMMON_HEADER_S, ucBoardInfoAreaStartOffset));
    EXPECT_EQ(HeaderOffsetByte(Area::Product), offsetof(FRU_COMMON_HEADER_S, ucProductInfoAreaStartOffset));
    EXPECT_EQ(HeaderOffsetByte(Area::MultiRecord),
              offsetof(FRU_COMMON_HEADER_S, ucMultiRecordAreaStartOffset));
}

TEST(Fields, WhatHoldsAnAreaTogetherSaysNothing)
{
    for (const Field enField :
         {Field::FormatVersion, Field::AreaLength, Field::EndMark, Field::Fill, Field::Checksum}) {
        EXPECT_TRUE(IsFrame(enField)) << FieldName({Area::Board, enField});
    }
    for (const AREA_ROW_S &stArea : AreaRows()) {
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            EXPECT_FALSE(IsFrame(stRow.enField)) << FieldKey(stRow.enField);
        }
    }
    EXPECT_FALSE(IsFrame(Field::Custom));
    EXPECT_FALSE(IsFrame(Field::MoreData));
}

} // namespace
