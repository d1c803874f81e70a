// SPDX-License-Identifier: Apache-2.0
// Editing one field: what it becomes, what is refused, and that everything else stays byte for byte.
#include "toolkit/edit/field_edit.h"

#include <gtest/gtest.h>

#include "support/image_builder.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/layout.h"

namespace {

using image::BYTES;

const BYTES BINARY = image::Field(0U, {1U, 2U, 3U});
const BYTES SIX_BIT = image::Field(2U, {0x29U, 0xDCU, 0xA6U}); // "IPMI"

// Manufacturer to FRU file ID, and two custom fields, one of them binary.
BYTES Product()
{
    std::vector<BYTES> vecFields = image::Texts({"ACME", "Server", "P-1", "1.0", "SN-001", "", "file"});
    vecFields.push_back(BINARY);
    vecFields.push_back(SIX_BIT);
    return image::ProductArea(25U, vecFields);
}

BYTES Chassis()
{
    return image::ChassisArea(0x17U, image::Texts({"C-1", "CS-1"}));
}

// Areas one behind the other, in this order.
BYTES Image(const std::vector<std::pair<Area, BYTES>> &vecAreas, size_t uiSize = 512U)
{
    BYTES vecImage(8U);
    vecImage[0] = 1U;
    for (const auto &[enArea, vecArea] : vecAreas) {
        vecImage[HeaderOffsetByte(enArea)] = static_cast<u8>(vecImage.size() / 8U);
        image::operator+=(vecImage, vecArea);
        vecImage.resize((vecImage.size() + 7U) / 8U * 8U);
    }
    BYTES vecHeader(vecImage.begin(), vecImage.begin() + 8);
    image::FixCheckSum(vecHeader);
    std::copy(vecHeader.begin(), vecHeader.end(), vecImage.begin());
    vecImage.resize(std::max(uiSize, vecImage.size()), 0xFFU);
    return vecImage;
}

BYTES Edited(const BYTES &vecImage, const std::vector<std::string> &vecWords, u32 uiRoom = 0U)
{
    std::vector<FIELD_EDIT_S> vecEdits;
    for (const std::string &strWord : vecWords) {
        vecEdits.push_back(strWord[0] == '-'   ? ParseRemoval(strWord.substr(1))
                           : strWord[0] == '@' ? ParseNewArea(strWord.substr(1))
                                               : ParseAssignment(strWord));
    }
    return EditImage(vecImage, {uiRoom != 0U ? uiRoom : static_cast<u32>(vecImage.size()), true}, vecEdits);
}

std::string Refusal(const BYTES &vecImage, const std::vector<std::string> &vecWords)
{
    try {
        (void)Edited(vecImage, vecWords);
    } catch (const Error &stError) {
        return stError.what();
    }
    return "";
}

// What the walk tells of a field; "(none)" when it tells of none.
std::string TextOf(const BYTES &vecImage, const FIELD_ID_S &stField)
{
    for (const SPAN_S &stSpan : WalkImage(vecImage, vecImage.size(), false).vecSpans) {
        if (stSpan.stField == stField) {
            return stSpan.strText + (stSpan.stNote.IsTold() ? " (" + NoteText(stSpan.stNote) + ")" : "");
        }
    }
    return "(none)";
}

// How many bytes two images of one length have different.
size_t Differing(const BYTES &vecOne, const BYTES &vecOther)
{
    size_t uiCount = 0;
    for (size_t i = 0; i < vecOne.size(); i++) {
        uiCount += vecOne[i] != vecOther[i] ? 1U : 0U;
    }
    return uiCount;
}

bool IsSound(const BYTES &vecImage)
{
    return WalkImage(vecImage, vecImage.size(), false).IsSound();
}

TEST(FieldEdit, AValueOfTheSameLengthChangesItsBytesAndTheChecksumOnly)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"product.serialNumber=SN-002"});
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::SerialNumber}), "SN-002");
    EXPECT_EQ(Differing(vecImage, vecAfter), 2U);
    EXPECT_TRUE(IsSound(vecAfter));
}

TEST(FieldEdit, TheValueThatIsThereChangesNothing)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    EXPECT_EQ(Edited(vecImage, {"product.serialNumber=SN-001", "product.custom[0]=01 02 03",
                                "product.custom[1]=IPMI", "product.language=English"}),
              vecImage);
}

TEST(FieldEdit, ANewValueTakesTheOldFieldsEncoding)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"product.custom[0]=0a0b", "product.custom[1]=FRU1"});
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 0U}), "0A0B (binary)");
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 1U}), "FRU1 (6-bit ASCII)");
    EXPECT_NE(Refusal(vecImage, {"product.custom[1]=small"}).find("--as text|6bit|bcd|binary"),
              std::string::npos);
    EXPECT_NE(Refusal(vecImage, {"product.custom[0]=xyz"}).find("binary"), std::string::npos);
}

TEST(FieldEdit, ATextOfTwoBytesACharacterStaysOneInItsLanguage)
{
    const BYTES vecLowFirst = image::Field(3U, {'A', 0U, 'B', 0U});
    const BYTES vecHighFirst = image::Field(3U, {0U, 'A', 0U, 'B'});
    std::vector<BYTES> vecFields = image::Texts({"", "", "", "", "", "", ""});
    vecFields[0] = vecLowFirst;
    vecFields[1] = vecHighFirst;
    const BYTES vecImage = Image({{Area::Product, image::ProductArea(88U, vecFields)}});
    EXPECT_EQ(Edited(vecImage, {"product.manufacturer=AB", "product.productName=AB"}), vecImage);
    const BYTES vecAfter = Edited(vecImage, {"product.manufacturer=XYZ", "product.productName=Q"});
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Manufacturer}).substr(0U, 6U),
              std::string("X\0Y\0Z\0", 6U));
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::ProductName}).substr(0U, 2U), std::string("\0Q", 2U));
}

TEST(FieldEdit, AnEncodingCanBeChosen)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    const std::vector<std::pair<Encoding, std::string>> vecExpected = {
        {Encoding::Text, "12-4"},
        {Encoding::SixBitAscii, "12-4 (6-bit ASCII)"},
        {Encoding::BcdPlus, " (BCD plus 12-4, decoded as an empty text)"}};
    for (const auto &[enEncoding, strExpected] : vecExpected) {
        FIELD_EDIT_S stEdit = ParseAssignment("product.custom[0]=12-4");
        stEdit.optAs = enEncoding;
        const BYTES vecAfter = EditImage(vecImage, {512U, true}, {stEdit});
        EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 0U}), strExpected);
    }
}

TEST(FieldEdit, AnAreaThatGrowsMovesWhatFollows)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"chassis.serialNumber=" + std::string(40U, 'C')});
    EXPECT_EQ(vecAfter.size(), vecImage.size());
    EXPECT_TRUE(IsSound(vecAfter));
    const size_t uiOld = vecImage[4] * 8U;
    const size_t uiNew = vecAfter[4] * 8U;
    EXPECT_EQ(uiNew, uiOld + 40U);
    const BYTES vecProduct = Product();
    EXPECT_TRUE(
        std::equal(vecProduct.begin(), vecProduct.end(), vecAfter.begin() + static_cast<long>(uiNew)));
}

TEST(FieldEdit, AnAreaShrinksByItsFillAndNothingMoves)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"chassis.serialNumber=", "chassis.partNumber="});
    EXPECT_EQ(vecAfter[4], vecImage[4]);
    EXPECT_TRUE(IsSound(vecAfter));
    EXPECT_EQ(Edited(vecAfter, {"chassis.serialNumber=CS-1", "chassis.partNumber=C-1"}), vecImage);
}

TEST(FieldEdit, AreasInAnUnusualOrderKeepIt)
{
    const BYTES vecImage = Image({{Area::Product, Product()}, {Area::Chassis, Chassis()}});
    const BYTES vecAfter = Edited(vecImage, {"product.assetTag=" + std::string(30U, 'T')});
    EXPECT_TRUE(IsSound(vecAfter));
    EXPECT_LT(vecAfter[4], vecAfter[2]);
    EXPECT_EQ(TextOf(vecAfter, {Area::Chassis, Field::SerialNumber}), "CS-1");
}

TEST(FieldEdit, AreasThatOverlapAreRefused)
{
    BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    vecImage[4]--;
    vecImage[7]++;
    EXPECT_NE(Refusal(vecImage, {"chassis.partNumber=x1"}).find("overlaps"), std::string::npos);
}

TEST(FieldEdit, WhatDoesNotFitIsRefusedWithNumbers)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}}, 32U);
    EXPECT_EQ(Refusal(vecImage, {"chassis.partNumber=" + std::string(40U, 'x')}),
              "it would take 65 bytes (an area must end before the FRU does), and there are 32");
    EXPECT_TRUE(IsSound(Edited(vecImage, {"chassis.partNumber=" + std::string(40U, 'x')}, 72U)));
}

TEST(FieldEdit, BytesBehindTheImageAreNotWrittenOver)
{
    BYTES vecImage = Image({{Area::Chassis, Chassis()}}, 128U);
    vecImage[100] = 0x42U;
    const BYTES vecAfter = Edited(vecImage, {"chassis.partNumber=" + std::string(40U, 'x')});
    EXPECT_EQ(vecAfter[100], 0x42U);
    EXPECT_NE(Refusal(vecImage, {"chassis.partNumber=" + std::string(60U, 'x'),
                                 "chassis.custom[+]=" + std::string(20U, 'y')})
                  .find("belong to no area and are not empty"),
              std::string::npos);
}

TEST(FieldEdit, AFillThatIsNoneIsKept)
{
    BYTES vecArea = image::ChassisArea(1U, image::Texts({"ab", "cd"}), 4U);
    vecArea[30] = 0xE6U;
    image::FixCheckSum(vecArea);
    const BYTES vecImage = Image({{Area::Chassis, vecArea}});
    const BYTES vecAfter = Edited(vecImage, {"chassis.partNumber=" + std::string(22U, 'p')});
    EXPECT_EQ(vecAfter[9], 4U);
    EXPECT_EQ(vecAfter[8U + 30U], 0xE6U);
    // No byte is left for more.
    const BYTES vecLonger = Edited(vecImage, {"chassis.partNumber=" + std::string(23U, 'p')});
    EXPECT_EQ(vecLonger[9], 5U);
    EXPECT_EQ(vecLonger[8U + 38U], 0xE6U);
    EXPECT_TRUE(IsSound(vecLonger));
}

TEST(FieldEdit, CustomFieldsAreAddedAndRemovedByTheirOldPlaces)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"product.custom[+]=third", "-product.custom[0]",
                                             "product.custom[1]=IPM2", "product.customFields[+]=x4"});
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 0U}), "IPM2 (6-bit ASCII)");
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 1U}), "third");
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 2U}), "x4");
    EXPECT_EQ(TextOf(vecAfter, {Area::Product, Field::Custom, 3U}), "(none)");
    EXPECT_EQ(
        Refusal(vecImage, {"product.custom[2]=x"}),
        "it has no product.custom[2]: 2 custom fields, counted from 0 to 1; product.custom[+]=VALUE adds one");
    EXPECT_NE(Refusal(vecImage, {"product.custom[+]=x"}).find("0xc1"), std::string::npos);
}

TEST(FieldEdit, AnAreaIsAddedWithItsFieldsAndRemoved)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"@board", "board.serialNumber=B-7", "board.mfgDate=2024-03-18"});
    EXPECT_TRUE(IsSound(vecAfter));
    EXPECT_EQ(TextOf(vecAfter, {Area::Board, Field::SerialNumber}), "B-7");
    EXPECT_EQ(TextOf(vecAfter, {Area::Board, Field::MfgDate}), "2024-03-18 00:00:00");
    EXPECT_EQ(Edited(vecAfter, {"-board"}), vecImage);
    EXPECT_NE(Refusal(vecImage, {"@product"}).find("already"), std::string::npos);
    EXPECT_NE(Refusal(vecImage, {"board.serialNumber=1"}).find("--add-area board"), std::string::npos);
}

TEST(FieldEdit, AnAreaTakesTheRoomThatARemovedOneLeft)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    const BYTES vecWithout = Edited(vecImage, {"-chassis"});
    EXPECT_EQ(vecWithout[4], vecImage[4]);
    EXPECT_EQ(vecWithout[8], 0xFFU);
    EXPECT_EQ(Edited(vecWithout, {"@chassis"})[2], 1U);
}

TEST(FieldEdit, MultiRecordsAreSetAddedAndRemoved)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    const BYTES vecTwo = Edited(vecImage, {"multiRecord[+]=0xc0:5a3100", "multiRecord[+]=3:02 41 42"});
    EXPECT_TRUE(IsSound(vecTwo));
    EXPECT_EQ(WalkImage(vecTwo, vecTwo.size(), false).uiMultiRecords, 2U);
    const BYTES vecSet = Edited(vecTwo, {"multiRecord[0]=5a310001"});
    EXPECT_TRUE(IsSound(vecSet));
    EXPECT_EQ(WalkImage(vecSet, vecSet.size(), false).uiMultiRecords, 2U);
    const BYTES vecOne = Edited(vecTwo, {"-multiRecord[1]"});
    EXPECT_TRUE(IsSound(vecOne));
    EXPECT_EQ(WalkImage(vecOne, vecOne.size(), false).uiMultiRecords, 1U);
    EXPECT_EQ(Edited(vecOne, {"-multiRecord[0]"}), vecImage);
    EXPECT_NE(Refusal(vecTwo, {"multiRecord[2]=00"}).find("2 MultiRecords, counted from 0 to 1"),
              std::string::npos);
    EXPECT_NE(Refusal(vecTwo, {"multiRecord[+]=0011"}).find("TYPE:HEX"), std::string::npos);
}

TEST(FieldEdit, TheInternalUseAreaIsKeptOrReplaced)
{
    const BYTES vecImage =
        Image({{Area::InternalUse, {1U, 0x64U, 9U, 8U, 7U, 6U, 5U, 4U}}, {Area::Product, Product()}});
    const BYTES vecAfter = Edited(vecImage, {"product.assetTag=" + std::string(40U, 'T')});
    EXPECT_TRUE(std::equal(vecImage.begin() + 8, vecImage.begin() + 16, vecAfter.begin() + 8));
    const BYTES vecSet = Edited(vecImage, {"internalUse=0102030405060708"});
    EXPECT_EQ(vecSet[4], 3U);
    EXPECT_EQ(vecSet[9], 1U);
    EXPECT_NE(Refusal(vecImage, {"internalUse.data=text"}).find("raw data"), std::string::npos);
    const BYTES vecText = Image({{Area::InternalUse, image::InternalArea(image::Text("abc"))}});
    EXPECT_EQ(TextOf(Edited(vecText, {"internalUse.data=" + std::string(20U, 'd')}),
                     {Area::InternalUse, Field::Data}),
              std::string(20U, 'd'));
}

TEST(FieldEdit, DamageInTheFieldsOwnAreaIsRefusedAndElsewhereKept)
{
    BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    const size_t uiProduct = vecImage[4] * 8U;
    vecImage[uiProduct + 4U] ^= 0x20U;
    EXPECT_NE(Refusal(vecImage, {"product.version=2"}).find("'fructl repair' mends it"), std::string::npos);
    const BYTES vecAfter = Edited(vecImage, {"chassis.serialNumber=" + std::string(30U, 'C')});
    const size_t uiSize = Product().size();
    EXPECT_TRUE(std::equal(vecImage.begin() + static_cast<long>(uiProduct),
                           vecImage.begin() + static_cast<long>(uiProduct + uiSize),
                           vecAfter.begin() + vecAfter[4] * 8L));
}

TEST(FieldEdit, FixedFieldsTakeNamesAndNumbers)
{
    const BYTES vecImage = Image({{Area::Chassis, Chassis()}, {Area::Product, Product()}});
    EXPECT_EQ(Edited(vecImage, {"chassis.type=0x11"})[8U + 2U], 0x11U);
    EXPECT_EQ(Edited(vecImage, {"chassis.type=Pizza Box"})[8U + 2U], 5U);
    EXPECT_EQ(Edited(vecImage, {"product.language=code 88"})[vecImage[4] * 8U + 2U], 88U);
    EXPECT_EQ(Edited(vecImage, {"product.languageCode=7"})[vecImage[4] * 8U + 2U], 7U);
    EXPECT_NE(Refusal(vecImage, {"chassis.type=Rocket"}).find("accepted"), std::string::npos);
}

TEST(FieldEdit, UnknownNamesAreRefusedWithAGuess)
{
    const BYTES vecImage = Image({{Area::Product, Product()}});
    EXPECT_NE(Refusal(vecImage, {"product.serialnumber=1"}).find("did you mean 'product.serialNumber'"),
              std::string::npos);
    EXPECT_NE(Refusal(vecImage, {"nothing=1"}).find("is no field"), std::string::npos);
    EXPECT_NE(Refusal(vecImage, {"product=1"}).find("is an area"), std::string::npos);
    EXPECT_NE(Refusal(vecImage, {"-product.version"}).find("cannot be removed"), std::string::npos);
}

TEST(FieldEdit, AFieldIsNamedOnce)
{
    const FIELD_EDIT_S stEdit = ParseAssignment("product.version=1");
    EXPECT_THROW(RequireDistinct({stEdit, stEdit}), Error);
    const FIELD_EDIT_S stNew = ParseAssignment("product.custom[+]=ab");
    EXPECT_NO_THROW(RequireDistinct({stNew, stNew}));
}

} // namespace
