// SPDX-License-Identifier: Apache-2.0
// Mending checksums, giving a board another's identity, and reading what damage leaves.
#include "toolkit/edit/repair.h"

#include <gtest/gtest.h>

#include "support/image_builder.h"
#include "toolkit/base/error.h"
#include "toolkit/edit/field_edit.h"
#include "toolkit/edit/transplant.h"
#include "toolkit/image/foreign.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/lenient.h"

namespace {

using image::BYTES;

constexpr u32 SIZE = 512U;

BYTES Edited(const BYTES &vecImage, const std::vector<std::string> &vecWords)
{
    std::vector<FIELD_EDIT_S> vecEdits;
    for (const std::string &strWord : vecWords) {
        vecEdits.push_back(strWord[0] == '@' ? ParseNewArea(strWord.substr(1)) : ParseAssignment(strWord));
    }
    return EditImage(vecImage, {SIZE, true}, vecEdits);
}

// Board, product and eight records.
BYTES Sound()
{
    std::vector<std::string> vecWords = {"@board", "@product", "board.serialNumber=B-1",
                                         "product.serialNumber=P-1"};
    for (int i = 0; i < 8; i++) {
        vecWords.push_back("multiRecord[+]=0xc0:00000" + std::to_string(i));
    }
    return Edited(EmptyImage(SIZE), vecWords);
}

bool IsSound(const BYTES &vecImage)
{
    return WalkImage(vecImage, vecImage.size(), false).IsSound();
}

size_t At(const BYTES &vecImage, Area enArea)
{
    return vecImage[HeaderOffsetByte(enArea)] * size_t{8U};
}

LENIENT_VIEW_S View(const BYTES &vecImage)
{
    return ViewLeniently({Source::Eeprom, vecImage, vecImage.size()}, false);
}

TEST(Repair, EveryWrongChecksumIsMendedAndNothingElse)
{
    const BYTES vecSound = Sound();
    const size_t uiBoard = At(vecSound, Area::Board);
    const size_t uiRecords = At(vecSound, Area::MultiRecord);
    BYTES vecWrong = vecSound;
    vecWrong[7] ^= 0x11U;
    vecWrong[uiBoard + vecSound[uiBoard + 1U] * 8U - 1U] ^= 0x22U;
    vecWrong[uiRecords + 4U] ^= 0x33U;
    const REPAIR_S stRepair = RepairChecksums(vecWrong);
    EXPECT_EQ(stRepair.vecAfter, vecSound);
    EXPECT_EQ(stRepair.vecMended,
              (std::vector<std::string>{"common header", "board info area", "MultiRecord 1 (header)"}));
    EXPECT_TRUE(stRepair.vecLeft.empty());
}

TEST(Repair, AFieldThatWasChangedByHandKeepsItsValue)
{
    BYTES vecWrong = Sound();
    const size_t uiRecords = At(vecWrong, Area::MultiRecord);
    vecWrong[At(vecWrong, Area::Product) + 3U] = 0xC0U; // as it was
    vecWrong[At(vecWrong, Area::Product) + 2U] = 7U;    // the language
    vecWrong[uiRecords + 6U] = 0x42U;                   // data of the first record
    const REPAIR_S stRepair = RepairChecksums(vecWrong);
    EXPECT_TRUE(IsSound(stRepair.vecAfter));
    EXPECT_EQ(stRepair.vecAfter[At(vecWrong, Area::Product) + 2U], 7U);
    EXPECT_EQ(stRepair.vecAfter[uiRecords + 6U], 0x42U);
    EXPECT_EQ(stRepair.vecMended, (std::vector<std::string>{"product info area", "MultiRecord 1 (data)"}));
}

TEST(Repair, WhereMoreThanAChecksumIsWrongItStays)
{
    BYTES vecWrong = Sound();
    const size_t uiBoard = At(vecWrong, Area::Board);
    vecWrong[uiBoard + 6U] = 0x3FU; // the manufacturer's length
    const REPAIR_S stRepair = RepairChecksums(vecWrong);
    EXPECT_EQ(stRepair.vecAfter, vecWrong);
    EXPECT_EQ(stRepair.vecLeft.size(), 1U);
    BYTES vecHeader = Sound();
    vecHeader[3] = 0x30U;
    EXPECT_EQ(RepairChecksums(vecHeader).vecAfter, vecHeader);
    EXPECT_THROW((void)RepairChecksums(BYTES(64U, 0x55U)), Error);
}

TEST(Repair, ASoundImageStaysAsItIs)
{
    const REPAIR_S stRepair = RepairChecksums(Sound());
    EXPECT_EQ(stRepair.vecAfter, Sound());
    EXPECT_TRUE(stRepair.vecMended.empty() && stRepair.vecLeft.empty());
}

TEST(Lenient, ASoundImageIsGoodThroughout)
{
    const LENIENT_VIEW_S stView = View(Sound());
    EXPECT_EQ(stView.uiDoubtful, 0U);
    EXPECT_EQ(stView.vecAreas.size(), 3U);
    EXPECT_EQ(stView.vecAreas.back().vecFields.size(), 8U);
}

TEST(Lenient, OneBadRecordHidesNoneOfTheOthers)
{
    for (const size_t uiByte : {size_t{4U}, size_t{6U}, size_t{2U}}) { // header, data, length
        BYTES vecWrong = Sound();
        vecWrong[At(vecWrong, Area::MultiRecord) + 2U * 8U + uiByte] ^= 0x15U; // of the third record
        const LENIENT_VIEW_S stView = View(vecWrong);
        const std::vector<LENIENT_FIELD_S> &vecRecords = stView.vecAreas.back().vecFields;
        ASSERT_EQ(vecRecords.size(), 8U) << uiByte;
        EXPECT_EQ(stView.uiDoubtful, 1U) << uiByte;
        EXPECT_FALSE(vecRecords[2].strDoubt.empty()) << uiByte;
    }
}

TEST(Lenient, AWrongChecksumMakesItsAreaDoubtfulAndNoOther)
{
    BYTES vecWrong = Sound();
    vecWrong[At(vecWrong, Area::Board) + 3U] ^= 1U;
    const LENIENT_VIEW_S stView = View(vecWrong);
    ASSERT_EQ(stView.vecAreas.size(), 3U);
    for (const LENIENT_AREA_S &stArea : stView.vecAreas) {
        for (const LENIENT_FIELD_S &stField : stArea.vecFields) {
            EXPECT_EQ(stField.strDoubt.empty(), stArea.enArea != Area::Board) << FieldPath(stField.stField);
        }
    }
}

TEST(Lenient, AWrongHeaderMakesAllDoubtfulAndHidesNothing)
{
    BYTES vecWrong = Sound();
    vecWrong[7] ^= 1U;
    const LENIENT_VIEW_S stView = View(vecWrong);
    EXPECT_EQ(stView.uiGood, 0U);
    EXPECT_EQ(stView.uiDoubtful, View(Sound()).uiGood);
}

TEST(Lenient, RawInternalUseDoesNotHideTheBoard)
{
    BYTES vecImage = Edited(
        EmptyImage(SIZE), {"@internalUse", "@board", "internalUse=7f010203040506", "board.serialNumber=B-2"});
    bool bFound = false;
    for (const LENIENT_AREA_S &stArea : View(vecImage).vecAreas) {
        for (const LENIENT_FIELD_S &stField : stArea.vecFields) {
            bFound = bFound || (stField.strText == "B-2" && stField.strDoubt.empty());
        }
    }
    EXPECT_TRUE(bFound);
}

TEST(Foreign, BlankChipsAndMemoryModulesHaveNames)
{
    EXPECT_EQ(ForeignName(BYTES(256U, 0xFFU), 256U), "erased: every byte is 0xff");
    BYTES vecZeros(264U, 0U);
    std::fill(vecZeros.begin() + 256, vecZeros.end(), 0xFFU); // behind a file
    EXPECT_EQ(ForeignName(vecZeros, 256U), "blank: every byte is 0x00");
    const std::vector<std::pair<BYTES, std::string>> vecMemories = {{{0x92U, 0x13U, 0x0BU, 0x02U}, "DDR3"},
                                                                    {{0x23U, 0x11U, 0x0CU, 0x02U}, "DDR4"},
                                                                    {{0x30U, 0x10U, 0x12U, 0x02U}, "DDR5"}};
    for (const auto &[vecFirst, strName] : vecMemories) {
        BYTES vecBytes(512U);
        std::copy(vecFirst.begin(), vecFirst.end(), vecBytes.begin());
        EXPECT_NE(ForeignName(vecBytes, 512U).find("the SPD of a " + strName + " memory module"),
                  std::string::npos);
        const IMAGE_LAYOUT_S stLayout = WalkImage(vecBytes, 512U, false);
        ASSERT_EQ(stLayout.vecFindings.size(), 1U);
        EXPECT_NE(stLayout.vecFindings[0].strWhat.find(strName), std::string::npos);
    }
    EXPECT_EQ(ForeignName(Sound(), SIZE), "");
    BYTES vecWrong = Sound();
    vecWrong[0] = 0x23U;
    EXPECT_EQ(ForeignName(vecWrong, SIZE), "");
}

TEST(Foreign, AnImageInADumpIsFound)
{
    const BYTES vecSound = Sound();
    BYTES vecDump(0x300U, 0xA5U);
    image::operator+=(vecDump, vecSound);
    EXPECT_EQ(FindImages(vecDump, vecDump.size()), std::vector<u32>{0x300U});
    EXPECT_EQ(FindImages(vecSound, vecSound.size()), std::vector<u32>{0U});
    EXPECT_TRUE(FindImages(BYTES(512U, 0U), 512U).empty());
}

TEST(Transplant, TheServersIdentityGoesOverAndTheBoardStays)
{
    const BYTES vecOld =
        Edited(EmptyImage(SIZE),
               {"@chassis", "@board", "@product", "chassis.serialNumber=C-OLD", "board.serialNumber=B-OLD",
                "product.serialNumber=P-OLD", "multiRecord[+]=3:02" + std::string("4142"),
                "multiRecord[+]=3:05" + std::string("4344")});
    const BYTES vecNew = Edited(EmptyImage(SIZE), {"@board", "@product", "board.serialNumber=B-NEW",
                                                   "product.serialNumber=P-NEW", "multiRecord[+]=3:025a",
                                                   "multiRecord[+]=0xc0:0102"});
    const TRANSPLANT_S stMade = Transplant(vecOld, vecNew, {SIZE, true});
    EXPECT_TRUE(IsSound(stMade.vecAfter));
    EXPECT_EQ(stMade.vecMoved,
              (std::vector<std::string>{"chassis info area", "product info area", "System Name"}));
    const BYTES vecExpected = Edited(vecNew, {"@chassis", "chassis.serialNumber=C-OLD",
                                              "product.serialNumber=P-OLD", "multiRecord[0]=024142"});
    const auto fnTexts = [](const BYTES &vecImage) {
        std::vector<std::string> vecTexts;
        for (const FIELD_ID_S stField :
             {FIELD_ID_S{Area::Chassis, Field::SerialNumber}, FIELD_ID_S{Area::Board, Field::SerialNumber},
              FIELD_ID_S{Area::Product, Field::SerialNumber},
              FIELD_ID_S{Area::MultiRecord, Field::OneRecord, 0U},
              FIELD_ID_S{Area::MultiRecord, Field::OneRecord, 1U}}) {
            for (const LENIENT_AREA_S &stArea : View(vecImage).vecAreas) {
                for (const LENIENT_FIELD_S &stOne : stArea.vecFields) {
                    if (stOne.stField == stField) {
                        vecTexts.push_back(stOne.strText);
                    }
                }
            }
        }
        return vecTexts;
    };
    EXPECT_EQ(fnTexts(stMade.vecAfter), fnTexts(vecExpected));
    EXPECT_EQ(fnTexts(stMade.vecAfter).size(), 5U);
}

TEST(Transplant, ABoardThatSaysNothingOfItsServerIsRefused)
{
    const BYTES vecBoard = Edited(EmptyImage(SIZE), {"@board"});
    EXPECT_THROW((void)Transplant(vecBoard, Sound(), {SIZE, true}), Error);
    BYTES vecWrong = Sound();
    vecWrong[At(vecWrong, Area::Product) + 3U] ^= 1U;
    EXPECT_THROW((void)Transplant(vecWrong, Sound(), {SIZE, true}), Error);
}

} // namespace
