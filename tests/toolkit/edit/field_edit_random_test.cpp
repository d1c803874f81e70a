// SPDX-License-Identifier: Apache-2.0
// Editing a field of images that chance has made, and of real ones: read back here, without the editor's own
// reader, every other field and record is there byte for byte, and the image is no worse than before.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>

#include "support/image_builder.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/field_edit.h"
#include "toolkit/image/layout.h"

namespace {

using image::BYTES;

constexpr int IMAGES = 10000;
constexpr size_t SIZE = 1024U;

// What an image says, part by part.
struct MODEL_S
{
    std::map<Area, BYTES> mapFixed;               // of an area of fields, behind its length
    std::map<Area, std::vector<BYTES>> mapFields; // with their type/length bytes
    std::optional<BYTES> optInternal;             // without the filling behind it
    std::vector<BYTES> vecRecords;                // type, data
};

size_t FixedBytes(Area enArea)
{
    return enArea == Area::Board ? 4U : 1U;
}

size_t NamedFields(Area enArea)
{
    return enArea == Area::Chassis ? 2U : enArea == Area::Board ? 5U : 7U;
}

// Reads a sound image's parts. The internal use area is as long as uiInternal says.
MODEL_S Read(const BYTES &vecImage, size_t uiInternal)
{
    MODEL_S stModel;
    for (const Area enArea : {Area::Chassis, Area::Board, Area::Product}) {
        const size_t uiStart = vecImage[HeaderOffsetByte(enArea)] * size_t{8U};
        if (uiStart == 0U) {
            continue;
        }
        size_t uiAt = uiStart + 2U + FixedBytes(enArea);
        stModel.mapFixed[enArea] = BYTES(vecImage.begin() + static_cast<long>(uiStart) + 2,
                                         vecImage.begin() + static_cast<long>(uiAt));
        std::vector<BYTES> &vecFields = stModel.mapFields[enArea];
        while (uiAt < vecImage.size() &&
               (vecFields.size() < NamedFields(enArea) || vecImage[uiAt] != 0xC1U)) {
            const size_t uiNext = std::min(uiAt + 1U + (vecImage[uiAt] & 0x3FU), vecImage.size());
            vecFields.emplace_back(vecImage.begin() + static_cast<long>(uiAt),
                                   vecImage.begin() + static_cast<long>(uiNext));
            uiAt = uiNext;
        }
    }
    size_t uiAt = vecImage[HeaderOffsetByte(Area::MultiRecord)] * size_t{8U};
    bool bMore = uiAt != 0U;
    while (bMore && uiAt + 5U <= vecImage.size() && vecImage[uiAt + 2U] != 0U) {
        const size_t uiNext = std::min(uiAt + 5U + vecImage[uiAt + 2U], vecImage.size());
        BYTES vecRecord = {vecImage[uiAt]};
        stModel.vecRecords.push_back(
            image::operator+=(vecRecord, BYTES(vecImage.begin() + static_cast<long>(uiAt) + 5,
                                               vecImage.begin() + static_cast<long>(uiNext))));
        bMore = (vecImage[uiAt + 1U] & 0x80U) == 0U;
        uiAt = uiNext;
    }
    const size_t uiInternalAt = vecImage[HeaderOffsetByte(Area::InternalUse)] * size_t{8U};
    if (uiInternalAt != 0U) {
        stModel.optInternal = BYTES(vecImage.begin() + static_cast<long>(uiInternalAt),
                                    vecImage.begin() + static_cast<long>(uiInternalAt + uiInternal));
    }
    return stModel;
}

class Chance
{
  public:
    explicit Chance(u32 uiSeed) : m_stEngine(uiSeed) {}
    u32 UpTo(u32 uiMax)
    {
        return static_cast<u32>(m_stEngine() % (uiMax + 1U));
    }
    bool Coin()
    {
        return UpTo(1U) == 1U;
    }
    BYTES Bytes(u32 uiCount)
    {
        BYTES vecBytes;
        for (u32 i = 0; i < uiCount; i++) {
            vecBytes.push_back(static_cast<u8>(UpTo(255U)));
        }
        return vecBytes;
    }
    // A field in any encoding, never the end mark.
    BYTES Field()
    {
        const u32 uiLength = UpTo(4U) == 0U ? 0U : 2U + UpTo(14U);
        const u32 uiType = UpTo(3U);
        BYTES vecData = Bytes(uiLength);
        for (u8 &ucByte : vecData) {
            ucByte = uiType == 3U   ? static_cast<u8>('A' + ucByte % 26U)
                     : uiType == 1U ? static_cast<u8>(ucByte % 10U * 16U + ucByte % 7U)
                                    : ucByte;
        }
        return image::Field(uiType, vecData);
    }

  private:
    std::mt19937 m_stEngine;
};

BYTES RandomInfo(Chance &stChance, Area enArea)
{
    std::vector<BYTES> vecFields;
    const size_t uiCount = NamedFields(enArea) + stChance.UpTo(3U);
    for (size_t i = 0; i < uiCount; i++) {
        vecFields.push_back(stChance.Field());
    }
    BYTES vecFixed = stChance.Bytes(static_cast<u32>(FixedBytes(enArea)));
    vecFixed[0] = enArea == Area::Chassis ? static_cast<u8>(stChance.UpTo(0x1DU)) : vecFixed[0];
    BYTES vecArea = image::InfoArea(vecFixed, vecFields);
    vecArea.resize(vecArea.size() + stChance.UpTo(2U) * 8U);
    vecArea[1] = static_cast<u8>(vecArea.size() / 8U);
    image::FixCheckSum(vecArea);
    return vecArea;
}

BYTES RandomRecords(Chance &stChance)
{
    BYTES vecArea;
    const u32 uiCount = 1U + stChance.UpTo(3U);
    for (u32 i = 0; i < uiCount; i++) {
        const BYTES vecData = stChance.Bytes(1U + stChance.UpTo(30U));
        BYTES vecHeader = {static_cast<u8>(0xC0U + stChance.UpTo(0x3FU)),
                           static_cast<u8>(i + 1U == uiCount ? 0x82U : 0x02U),
                           static_cast<u8>(vecData.size()), image::ZeroCheckSum(vecData), 0U};
        image::FixCheckSum(vecHeader);
        image::operator+=(image::operator+=(vecArea, vecHeader), vecData);
    }
    return vecArea;
}

struct CASE_S
{
    BYTES vecImage;
    size_t uiInternal = 0;
    size_t uiTail = 0; // where bytes stand behind the image that are not empty
};

// Areas in any order, with gaps between them and bytes behind them.
CASE_S RandomImage(Chance &stChance)
{
    CASE_S stCase;
    std::vector<Area> vecAreas;
    for (const Area enArea : HeaderAreas()) {
        if (stChance.UpTo(3U) != 0U) {
            vecAreas.push_back(enArea);
        }
    }
    for (size_t i = vecAreas.size(); stChance.UpTo(2U) == 0U && i > 1U; i--) {
        std::swap(vecAreas[i - 1U], vecAreas[stChance.UpTo(static_cast<u32>(i) - 1U)]);
    }
    BYTES &vecImage = stCase.vecImage;
    vecImage = {1U, 0U, 0U, 0U, 0U, 0U, 0U, 0U};
    for (const Area enArea : vecAreas) {
        vecImage.resize(vecImage.size() + stChance.UpTo(1U) * 8U * stChance.UpTo(2U),
                        stChance.Coin() ? 0xFFU : 0U);
        vecImage[HeaderOffsetByte(enArea)] = static_cast<u8>(vecImage.size() / 8U);
        BYTES vecArea;
        if (enArea == Area::InternalUse) {
            vecArea = stChance.Bytes(8U * (1U + stChance.UpTo(4U)));
            vecArea[0] = 1U;
            vecArea.back() = static_cast<u8>(1U + vecArea.back() % 200U);
            stCase.uiInternal = vecArea.size();
        } else {
            vecArea = enArea == Area::MultiRecord ? RandomRecords(stChance) : RandomInfo(stChance, enArea);
        }
        image::operator+=(vecImage, vecArea);
        vecImage.resize((vecImage.size() + 7U) / 8U * 8U, 0U);
    }
    BYTES vecHeader(vecImage.begin(), vecImage.begin() + 8);
    image::FixCheckSum(vecHeader);
    std::copy(vecHeader.begin(), vecHeader.end(), vecImage.begin());
    vecImage.resize(SIZE, stChance.Coin() ? 0xFFU : 0U);
    // The last area's extent is known only where it is not the internal use area.
    const bool bInternalLast = !vecAreas.empty() && vecAreas.back() == Area::InternalUse;
    if (stChance.Coin() && !bInternalLast) {
        stCase.uiTail = SIZE - 4U;
        std::fill(vecImage.begin() + SIZE - 4, vecImage.end(), 0x5AU);
    }
    return stCase;
}

// One edit of a field that the image has, made on the model as well; no name: it has no field.
struct STEP_S
{
    std::string strWord;
    bool bRemoval = false;
    MODEL_S stAfter;
};

constexpr const char *NAMES[][7] = {
    {"partNumber", "serialNumber"},
    {"manufacturer", "productName", "serialNumber", "partNumber", "fruFileId"},
    {"manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId"}};

// A new value in the old field's encoding, and its bytes.
std::pair<std::string, BYTES> NewValue(Chance &stChance, const BYTES &vecOld)
{
    const u32 uiType = vecOld[0] >> 6U;
    u32 uiLength = stChance.UpTo(3U) == 0U ? 0U : 2U + stChance.UpTo(40U);
    if (vecOld.size() == 1U && uiType == 0U) {
        const std::string strText(uiLength, 'n');
        return {strText, uiLength == 0U ? vecOld : image::Text(strText)};
    }
    if (uiType == 0U) {
        const BYTES vecData = stChance.Bytes(uiLength);
        return {HexBytes(vecData), image::Field(0U, vecData)};
    }
    if (uiType == 1U) {
        return {std::string(uiLength * 2U, '7'), image::Field(1U, BYTES(uiLength, 0x77U))};
    }
    if (uiType == 2U) { // four characters '!' are three bytes
        uiLength -= uiLength % 3U;
        BYTES vecData;
        for (u32 i = 0; i < uiLength; i += 3U) {
            image::operator+=(vecData, {0x41U, 0x10U, 0x04U});
        }
        return {std::string(uiLength / 3U * 4U, '!'), image::Field(2U, vecData)};
    }
    if (vecOld.size() > 2U && vecOld[1] == 0U && vecOld[2] != 0U) { // two bytes a character
        BYTES vecData;
        for (u32 i = 0; i < uiLength / 2U; i++) {
            image::operator+=(vecData, {0U, 'w'});
        }
        return {std::string(uiLength / 2U, 'w'), image::Field(3U, vecData)};
    }
    return {std::string(uiLength, 'w'), image::Text(std::string(uiLength, 'w'))};
}

STEP_S RandomStep(Chance &stChance, const MODEL_S &stModel)
{
    STEP_S stStep = {"", false, stModel};
    if (!stModel.vecRecords.empty() && (stChance.UpTo(3U) == 0U || stModel.mapFields.empty())) {
        const u32 uiAt = stChance.UpTo(static_cast<u32>(stModel.vecRecords.size()) - 1U);
        stStep.bRemoval = stChance.Coin();
        stStep.strWord = Format("multiRecord[%u]", uiAt);
        if (stStep.bRemoval) {
            stStep.stAfter.vecRecords.erase(stStep.stAfter.vecRecords.begin() + uiAt);
        } else {
            BYTES vecRecord = {stModel.vecRecords[uiAt][0]};
            const BYTES vecData = stChance.Bytes(1U + stChance.UpTo(50U));
            stStep.strWord += "=" + HexBytes(vecData);
            stStep.stAfter.vecRecords[uiAt] = image::operator+=(vecRecord, vecData);
        }
        return stStep;
    }
    if (stModel.mapFields.empty()) {
        return stStep;
    }
    auto itArea = stStep.stAfter.mapFields.begin();
    std::advance(itArea, stChance.UpTo(static_cast<u32>(stModel.mapFields.size()) - 1U));
    const Area enArea = itArea->first;
    std::vector<BYTES> &vecFields = itArea->second;
    const size_t uiNamed = NamedFields(enArea);
    const size_t uiAt = stChance.UpTo(static_cast<u32>(vecFields.size()));
    const std::string strArea = std::string(AreaKey(enArea)) + ".";
    if (uiAt == vecFields.size()) {
        stStep.strWord = strArea + "custom[+]=a new one";
        vecFields.push_back(image::Text("a new one"));
    } else if (uiAt >= uiNamed && stChance.Coin()) {
        stStep.bRemoval = true;
        stStep.strWord = strArea + Format("custom[%zu]", uiAt - uiNamed);
        vecFields.erase(vecFields.begin() + static_cast<long>(uiAt));
    } else {
        const auto [strValue, vecBytes] = NewValue(stChance, vecFields[uiAt]);
        const size_t uiRow = static_cast<size_t>(enArea) - static_cast<size_t>(Area::Chassis);
        stStep.strWord =
            strArea +
            (uiAt < uiNamed ? std::string(NAMES[uiRow][uiAt]) : Format("customFields[%zu]", uiAt - uiNamed)) +
            "=" + strValue;
        vecFields[uiAt] = vecBytes;
    }
    return stStep;
}

size_t Wrongs(const BYTES &vecImage)
{
    size_t uiCount = 0;
    for (const FINDING_S &stFinding : WalkImage(vecImage, vecImage.size(), false).vecFindings) {
        uiCount += stFinding.bWarning ? 0U : 1U;
    }
    return uiCount;
}

void ExpectModel(const MODEL_S &stFound, const MODEL_S &stExpected, const std::string &strWhat)
{
    EXPECT_TRUE(stFound.mapFixed == stExpected.mapFixed) << strWhat << ": fields of fixed size";
    EXPECT_TRUE(stFound.mapFields == stExpected.mapFields) << strWhat << ": fields";
    EXPECT_TRUE(stFound.optInternal == stExpected.optInternal) << strWhat << ": internal use area";
    EXPECT_TRUE(stFound.vecRecords == stExpected.vecRecords) << strWhat << ": records";
}

BYTES EditOne(const BYTES &vecImage, const STEP_S &stStep)
{
    return EditImage(vecImage, {static_cast<u32>(vecImage.size()), true},
                     {stStep.bRemoval ? ParseRemoval(stStep.strWord) : ParseAssignment(stStep.strWord)});
}

TEST(FieldEditRandom, EverythingElseIsThereByteForByte)
{
    int iEdited = 0;
    for (u32 uiSeed = 1U; uiSeed <= IMAGES && !HasFailure(); uiSeed++) {
        Chance stChance(uiSeed);
        const CASE_S stCase = RandomImage(stChance);
        const MODEL_S stModel = Read(stCase.vecImage, stCase.uiInternal);
        const STEP_S stStep = RandomStep(stChance, stModel);
        if (stStep.strWord.empty()) {
            continue;
        }
        const std::string strWhat = Format("image %u, ", uiSeed) + stStep.strWord;
        const BYTES vecAfter = EditOne(stCase.vecImage, stStep);
        ExpectModel(Read(vecAfter, stCase.uiInternal), stStep.stAfter, strWhat);
        EXPECT_LE(Wrongs(vecAfter), Wrongs(stCase.vecImage)) << strWhat;
        if (stCase.uiTail != 0U) {
            EXPECT_TRUE(std::equal(vecAfter.begin() + static_cast<long>(stCase.uiTail), vecAfter.end(),
                                   stCase.vecImage.begin() + static_cast<long>(stCase.uiTail)))
                << strWhat;
        }
        iEdited++;
    }
    EXPECT_GT(iEdited, IMAGES * 9 / 10);
}

TEST(FieldEditRandom, TheSameValueChangesNoByte)
{
    for (u32 uiSeed = 1U; uiSeed <= IMAGES / 10 && !HasFailure(); uiSeed++) {
        Chance stChance(uiSeed);
        const CASE_S stCase = RandomImage(stChance);
        const MODEL_S stModel = Read(stCase.vecImage, stCase.uiInternal);
        for (const auto &[enArea, vecFields] : stModel.mapFields) {
            const BYTES &vecField = vecFields[1];
            const std::string strText(vecField.begin() + 1, vecField.end());
            const std::string strValue =
                vecField[0] >> 6U == 0U ? HexBytes(BYTES(vecField.begin() + 1, vecField.end())) : strText;
            if (vecField[0] >> 6U == 0U || vecField[0] >> 6U == 3U) {
                const std::string strWord =
                    std::string(AreaKey(enArea)) + "." +
                    NAMES[static_cast<size_t>(enArea) - static_cast<size_t>(Area::Chassis)][1] + "=" +
                    strValue;
                EXPECT_TRUE(EditOne(stCase.vecImage, {strWord, false, {}}) == stCase.vecImage)
                    << uiSeed << " " << strWord;
            }
        }
    }
}

TEST(FieldEditRandom, ImagesOfRealBoardsKeepEverythingElse)
{
    const std::string strFolder = BMCFRU_CORPUS_DIR;
    if (!std::filesystem::is_directory(strFolder)) {
        GTEST_SKIP() << "no images in BMCFRU_CORPUS_DIR, which is '" BMCFRU_CORPUS_DIR "'";
    }
    int iEdits = 0;
    for (const auto &stEntry : std::filesystem::directory_iterator(strFolder)) {
        if (stEntry.path().extension() != ".bin") {
            continue;
        }
        std::ifstream stStream(stEntry.path(), std::ios::binary);
        BYTES vecImage{std::istreambuf_iterator<char>(stStream), {}};
        const size_t uiImage = vecImage.size();
        vecImage.resize(uiImage + 64U, 0xFFU); // as in a chip that is a little larger
        const size_t uiInternal = vecImage[1] == 0U ? 0U : vecImage[2] != 0U ? 8U : 256U;
        const MODEL_S stModel = Read(vecImage, uiInternal);
        for (u32 uiSeed = 1U; uiSeed <= 100U && !HasFailure(); uiSeed++) {
            Chance stChance(uiSeed);
            const STEP_S stStep = RandomStep(stChance, stModel);
            const std::string strWhat = stEntry.path().filename().string() + ", " + stStep.strWord;
            const BYTES vecAfter = EditOne(vecImage, stStep);
            ExpectModel(Read(vecAfter, uiInternal), stStep.stAfter, strWhat);
            EXPECT_LE(Wrongs(vecAfter), Wrongs(vecImage)) << strWhat;
            iEdits++;
        }
    }
    EXPECT_GE(iEdits, 1000);
}

} // namespace
