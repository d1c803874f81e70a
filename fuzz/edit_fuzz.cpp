// SPDX-License-Identifier: Apache-2.0
// Fuzzes the editing of fields by their names: any image, any name, any value. What was accepted reads back by a reader of
// its own here, and a second time changes nothing; every other field, area and byte of no area is there as before, and a
// sound image stays sound. Input: how, which name, the name or an index, value, image.
#include <map>

#include "fuzz.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/field_edit.h"
#include "toolkit/image/image.h"

namespace {

using fuzz::BYTES;

constexpr size_t NAME_MAX_LEN = 40U;
constexpr size_t VALUE_MAX_LEN = 140U;
constexpr Area INFO_AREAS[] = {Area::Chassis, Area::Board, Area::Product};

// ---- reading, without the editor's own reader ----

struct INFO_S
{
    BYTES vecFixed;               // behind the length
    std::vector<BYTES> vecFields; // with their type/length bytes
};

size_t StartOf(const BYTES &vecImage, Area enArea)
{
    return vecImage[HeaderOffsetByte(enArea)] * size_t{FRU_AREA_UNIT};
}

// An area's bytes; none: there is none, or it is not all there.
BYTES AreaOf(const BYTES &vecImage, Area enArea)
{
    const size_t uiStart = StartOf(vecImage, enArea);
    if (uiStart == 0U || uiStart + 1U >= vecImage.size()) {
        return {};
    }
    const size_t uiEnd = uiStart + vecImage[uiStart + 1U] * size_t{FRU_AREA_UNIT};
    return uiEnd > vecImage.size() ? BYTES() : BYTES(&vecImage[uiStart], vecImage.data() + uiEnd);
}

size_t NamedFields(Area enArea)
{
    return enArea == Area::Chassis ? 2U : enArea == Area::Board ? 5U : 7U;
}

INFO_S ReadInfo(const BYTES &vecImage, Area enArea)
{
    const BYTES vecArea = AreaOf(vecImage, enArea);
    size_t uiAt = enArea == Area::Board ? 6U : 3U;
    fuzz::Require(vecArea.size() > uiAt);
    INFO_S stInfo = {BYTES(vecArea.begin() + 2, vecArea.begin() + static_cast<long>(uiAt)), {}};
    while (stInfo.vecFields.size() < NamedFields(enArea) || vecArea[uiAt] != FRU_FIELD_END) {
        const size_t uiNext = uiAt + 1U + (vecArea[uiAt] & FRU_FIELD_MAX_TEXT);
        fuzz::Require(uiNext < vecArea.size());
        stInfo.vecFields.emplace_back(vecArea.begin() + static_cast<long>(uiAt),
                                      vecArea.begin() + static_cast<long>(uiNext));
        uiAt = uiNext;
    }
    return stInfo;
}

// What says something outside the header and the areas of fields, in its order: nothing of it may get lost.
BYTES Loose(const BYTES &vecImage)
{
    BYTES vecRest = vecImage;
    std::fill_n(vecRest.begin(), FRU_COMMON_HEADER_LEN, u8{0});
    for (const Area enArea : INFO_AREAS) {
        const size_t uiArea = AreaOf(vecImage, enArea).size();
        std::fill_n(vecRest.begin() + static_cast<long>(StartOf(vecImage, enArea)), uiArea, u8{0});
    }
    vecRest.erase(std::remove_if(vecRest.begin(), vecRest.end(),
                                 [](u8 ucByte) { return ucByte == 0U || ucByte == 0xFFU; }),
                  vecRest.end());
    return vecRest;
}

bool IsSound(const BYTES &vecImage, bool bChip)
{
    const IMAGE_S stImage = bChip ? IMAGE_S{Source::Eeprom, vecImage, vecImage.size()} : FileImage(vecImage);
    return LayoutOf(stImage, false).IsSound();
}

// ---- what a field says ----

std::string WithoutBlanks(std::string strText)
{
    strText.erase(strText.find_last_not_of(' ') + 1U);
    return strText;
}

std::string SixBitText(const BYTES &vecField)
{
    std::string strText;
    for (size_t uiBit = 0; uiBit + 6U <= (vecField.size() - 1U) * 8U; uiBit += 6U) {
        const size_t uiByte = 1U + uiBit / 8U;
        const u32 uiPair =
            vecField[uiByte] | (uiByte + 1U < vecField.size() ? vecField[uiByte + 1U] * 256U : 0U);
        strText += static_cast<char>((uiPair >> uiBit % 8U & 0x3FU) + ' ');
    }
    return strText;
}

std::string Digits(const BYTES &vecField)
{
    constexpr char DIGITS[] = "0123456789 -.???";
    std::string strText;
    for (size_t i = 1; i < vecField.size(); i++) {
        strText += {DIGITS[vecField[i] >> 4U], DIGITS[vecField[i] & 0x0FU]};
    }
    return strText;
}

// 8-bit text, or with a zero beside each of its bytes.
bool IsText(const BYTES &vecField, const std::string &strValue)
{
    const std::string strStored(vecField.begin() + 1, vecField.end());
    std::string strNarrow;
    bool bWide = strStored.size() % 2U == 0U;
    for (size_t i = 0; i + 1U < strStored.size(); i += 2U) {
        bWide = bWide && (strStored[i] == '\0') != (strStored[i + 1U] == '\0');
        strNarrow += strStored[i] == '\0' ? strStored[i + 1U] : strStored[i];
    }
    return strStored == strValue || (bWide && strNarrow == strValue);
}

bool Says(const BYTES &vecField, const std::string &strValue)
{
    const u32 uiType = vecField[0] >> 6U;
    if (vecField.size() == 1U) {
        return WithoutBlanks(strValue).empty();
    }
    return uiType == 0U   ? ParseHexBytes(strValue) == BYTES(vecField.begin() + 1, vecField.end())
           : uiType == 1U ? WithoutBlanks(Digits(vecField)) == WithoutBlanks(strValue)
           : uiType == 2U ? WithoutBlanks(SixBitText(vecField)) == WithoutBlanks(strValue)
                          : IsText(vecField, strValue);
}

// ---- editing ----

// A field's place among those with type/length bytes; nothing: it is one of fixed size.
std::optional<size_t> PlaceOf(const FIELD_ID_S &stField)
{
    size_t uiAt = 0;
    for (const FIELD_ROW_S &stRow : FindAreaRow(stField.enArea)->vecFields) {
        if (stRow.enField == stField.enField) {
            return stRow.enKind == Kind::Text ? std::optional<size_t>(uiAt) : std::nullopt;
        }
        uiAt += stRow.enKind == Kind::Text ? 1U : 0U;
    }
    return uiAt + stField.uiIndex;
}

void CheckInfo(const BYTES &vecBefore, const BYTES &vecAfter, const FIELD_EDIT_S &stEdit)
{
    const Area enArea = stEdit.stField.enArea;
    INFO_S stBefore = ReadInfo(vecBefore, enArea);
    INFO_S stAfter = ReadInfo(vecAfter, enArea);
    const std::optional<size_t> optAt = PlaceOf(stEdit.stField);
    if (!optAt.has_value()) {
        const u32 uiDate = stAfter.vecFixed.size() > 1U ? stAfter.vecFixed[1] | stAfter.vecFixed[2] * 0x100U |
                                                              stAfter.vecFixed[3] * 0x10000U
                                                        : 0U;
        const u32 uiStored = stEdit.stField.enField == Field::MfgDate ? uiDate : stAfter.vecFixed[0];
        fuzz::Require(!stEdit.bNumber || ParseNumber(stEdit.strValue, 0xFFFFFFU) == uiStored);
        fuzz::Require(stEdit.stField.enField == Field::MfgDate
                          ? stBefore.vecFixed[0] == stAfter.vecFixed[0]
                          : std::equal(stBefore.vecFixed.begin() + 1, stBefore.vecFixed.end(),
                                       stAfter.vecFixed.begin() + 1));
        fuzz::Require(stAfter.vecFields == stBefore.vecFields);
        return;
    }
    fuzz::Require(stAfter.vecFixed == stBefore.vecFixed);
    if (stEdit.enEdit == Edit::Remove) {
        stBefore.vecFields.erase(stBefore.vecFields.begin() + static_cast<long>(*optAt));
    } else {
        const size_t uiAt = stEdit.enEdit == Edit::Append ? stBefore.vecFields.size() : *optAt;
        fuzz::Require(uiAt < stAfter.vecFields.size() && Says(stAfter.vecFields[uiAt], stEdit.strValue));
        stBefore.vecFields.resize(std::max(stBefore.vecFields.size(), uiAt + 1U));
        stBefore.vecFields[uiAt] = stAfter.vecFields[uiAt];
    }
    fuzz::Require(stAfter.vecFields == stBefore.vecFields);
}

// The image's records, type and data each, as far as they can be told apart, up to the next area.
std::vector<BYTES> Records(const BYTES &vecImage, bool *pbEnds)
{
    std::vector<BYTES> vecRecords;
    size_t uiAt = StartOf(vecImage, Area::MultiRecord);
    size_t uiEnd = vecImage.size();
    for (const Area enArea : HeaderAreas()) {
        const size_t uiStart = StartOf(vecImage, enArea);
        uiEnd = uiStart > uiAt ? std::min(uiEnd, uiStart) : uiEnd;
    }
    bool bMore = uiAt != 0U;
    while (bMore && uiAt + FRU_MULTIRECORD_HEADER_LEN <= uiEnd) {
        const u8 *pucRecord = &vecImage[uiAt];
        const size_t uiNext = uiAt + FRU_MULTIRECORD_HEADER_LEN + pucRecord[2];
        if (BMC_CalcZeroCheckSum(pucRecord, FRU_MULTIRECORD_HEADER_LEN) != 0U || pucRecord[2] == 0U ||
            uiNext > uiEnd) {
            break;
        }
        vecRecords.push_back({pucRecord[0]});
        vecRecords.back().insert(vecRecords.back().end(), pucRecord + FRU_MULTIRECORD_HEADER_LEN,
                                 vecImage.data() + uiNext);
        bMore = (pucRecord[1] & FRU_MULTIRECORD_END_OF_LIST) == 0U;
        uiAt = uiNext;
    }
    *pbEnds = !bMore;
    return vecRecords;
}

void CheckRecords(const BYTES &vecBefore, const BYTES &vecAfter, const FIELD_EDIT_S &stEdit)
{
    bool bEnded = false;
    bool bEnds = false;
    std::vector<BYTES> vecRecords = Records(vecBefore, &bEnded);
    std::vector<BYTES> vecNow = Records(vecAfter, &bEnds);
    const size_t uiAt = stEdit.enEdit == Edit::Append ? vecRecords.size() : stEdit.stField.uiIndex;
    if (stEdit.enEdit == Edit::Remove) {
        vecRecords.erase(vecRecords.begin() + static_cast<long>(uiAt));
    } else {
        fuzz::Require(uiAt < vecNow.size());
        const size_t uiColon = stEdit.strValue.find(':');
        const std::string strData =
            uiColon == std::string::npos ? stEdit.strValue : stEdit.strValue.substr(uiColon + 1U);
        fuzz::Require(ParseHexBytes(strData) == BYTES(vecNow[uiAt].begin() + 1, vecNow[uiAt].end()));
        vecRecords.resize(std::max(vecRecords.size(), uiAt + 1U));
        vecRecords[uiAt] = vecNow[uiAt];
    }
    // What stood behind a list without an end, and reached too far, may be a record where it stands now.
    vecNow.resize(bEnded ? vecNow.size() : std::min(vecNow.size(), vecRecords.size()));
    fuzz::Require(vecNow == vecRecords && (bEnds || !bEnded));
}

void CheckEdited(const BYTES &vecBefore, const BYTES &vecAfter, const FIELD_EDIT_S &stEdit, bool bChip)
{
    const Area enEdited = stEdit.stField.enArea;
    const bool bWhole = stEdit.enEdit == Edit::AddArea || stEdit.enEdit == Edit::RemoveArea;
    fuzz::Require(BMC_CalcZeroCheckSum(vecAfter.data(), FRU_COMMON_HEADER_LEN) == 0U);
    for (const Area enArea : HeaderAreas()) {
        const bool bThere = StartOf(vecAfter, enArea) != 0U;
        const bool bRecords = enArea == Area::MultiRecord && enArea == enEdited;
        fuzz::Require(bRecords ||
                      bThere == (bWhole && enArea == enEdited ? stEdit.enEdit == Edit::AddArea
                                                              : StartOf(vecBefore, enArea) != 0U));
        const bool bInfo = enArea != Area::InternalUse && enArea != Area::MultiRecord;
        fuzz::Require(!bInfo || enArea == enEdited || AreaOf(vecAfter, enArea) == AreaOf(vecBefore, enArea));
    }
    if (enEdited != Area::InternalUse && enEdited != Area::MultiRecord) {
        fuzz::Require(Loose(vecAfter) == Loose(vecBefore));
    }
    if (!bWhole && enEdited == Area::MultiRecord) {
        CheckRecords(vecBefore, vecAfter, stEdit);
    } else if (!bWhole && enEdited != Area::InternalUse) {
        CheckInfo(vecBefore, vecAfter, stEdit);
    }
    fuzz::Require(!IsSound(vecBefore, bChip) || IsSound(vecAfter, bChip));
}

std::string NameFrom(fuzz::Input &stInput, bool bFree)
{
    if (bFree) {
        return stInput.Text(NAME_MAX_LEN);
    }
    static const std::vector<std::string> NAMES = [] {
        std::vector<std::string> vecNames = {"internalUse", "internalUse.data", "multiRecord[+]"};
        for (const AREA_ROW_S &stArea : AreaRows()) {
            const std::string strArea = std::string(AreaKey(stArea.enArea)) + ".";
            for (const FIELD_ROW_S &stRow : stArea.vecFields) {
                vecNames.push_back(strArea + FieldKey(stRow.enField));
                vecNames.push_back(
                    strArea + (NumberKey(stRow.enField) == nullptr ? "custom[+]" : NumberKey(stRow.enField)));
            }
        }
        return vecNames;
    }();
    const u8 ucWhich = stInput.Byte();
    constexpr const char *LISTS[] = {"chassis.custom", "board.custom", "product.customFields", "multiRecord"};
    return (ucWhich & 0x80U) != 0U ? LISTS[ucWhich & 3U] + Format("[%u]", (ucWhich >> 2U) & 7U)
                                   : NAMES[ucWhich % NAMES.size()];
}

FIELD_EDIT_S EditFrom(fuzz::Input &stInput, u32 uiHow)
{
    const std::string strName = NameFrom(stInput, (uiHow & 2U) != 0U);
    const u32 uiEdit = uiHow >> 6U;
    if (uiEdit == 3U) {
        constexpr const char *AREAS[] = {"internalUse", "chassis", "board", "product"};
        return ParseNewArea(AREAS[strName.size() % 4U]);
    }
    if (uiEdit == 2U) {
        return ParseRemoval(strName.substr(0U, (uiHow & 4U) != 0U ? strName.find('.') : std::string::npos));
    }
    FIELD_EDIT_S stEdit = ParseAssignment(strName + "=" + stInput.Text(VALUE_MAX_LEN));
    constexpr Encoding ENCODINGS[] = {Encoding::Binary, Encoding::BcdPlus, Encoding::SixBitAscii,
                                      Encoding::Text};
    stEdit.optAs =
        (uiHow & 4U) != 0U ? std::optional<Encoding>(ENCODINGS[stInput.Byte() & 3U]) : std::nullopt;
    return stEdit;
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    fuzz::Input stInput(pucData, uiSize);
    const u32 uiHow = stInput.Byte();
    try {
        const FIELD_EDIT_S stEdit = EditFrom(stInput, uiHow);
        fuzz::BYTES vecImage = stInput.Rest();
        if ((uiHow & 1U) != 0U) {
            fuzz::Seal(vecImage);
        }
        const u32 uiMore = (uiHow & 8U) != 0U ? 64U : 0U;
        const ROOM_S stRoom = {static_cast<u32>(vecImage.size()) + uiMore, (uiHow & 16U) != 0U};
        const fuzz::BYTES vecAfter = EditImage(vecImage, stRoom, {stEdit});
        fuzz::Require(vecAfter.size() == stRoom.uiBytes);
        fuzz::BYTES vecBefore = vecImage;
        vecBefore.resize(stRoom.uiBytes, vecAfter.back());
        CheckEdited(vecBefore, vecAfter, stEdit, stRoom.bChip);
        if (stEdit.enEdit == Edit::Set) {
            fuzz::Require(EditImage(vecAfter, stRoom, {stEdit}) == vecAfter);
        }
    } catch (const Error &) {
        return 0; // it was given a copy, so there is nothing that it could have changed
    }
    return 0;
}
