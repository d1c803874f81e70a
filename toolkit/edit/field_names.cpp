// SPDX-License-Identifier: Apache-2.0
// The names of fields, as 'show --json' has them, and what they mean.
#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/field_edit.h"

namespace {

constexpr const char *RECORDS = "multiRecords"; // as JSON has it; without the s it is the area's name
constexpr const char *CUSTOM = "custom";
constexpr u32 INDEX_MAX = 0xFFFFU;

// A name in its parts: "product" "custom" "[2]".
struct NAME_S
{
    std::string strArea;
    std::string strField;
    std::optional<std::string> optIndex = {};
};

NAME_S Split(const std::string &strName)
{
    NAME_S stName;
    std::string strRest = strName;
    const size_t uiBracket = strRest.find('[');
    if (uiBracket != std::string::npos && strRest.back() == ']') {
        stName.optIndex = strRest.substr(uiBracket + 1U, strRest.size() - uiBracket - 2U);
        strRest.resize(uiBracket);
    }
    const size_t uiDot = strRest.find('.');
    stName.strArea = strRest.substr(0U, uiDot);
    stName.strField = uiDot == std::string::npos ? "" : strRest.substr(uiDot + 1U);
    return stName;
}

std::vector<std::string> KnownNames()
{
    std::vector<std::string> vecNames = {AreaKey(Area::InternalUse)};
    for (const AREA_ROW_S &stArea : AreaRows()) {
        const std::string strArea = std::string(AreaKey(stArea.enArea)) + ".";
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            vecNames.push_back(strArea + FieldKey(stRow.enField));
            if (NumberKey(stRow.enField) != nullptr) {
                vecNames.push_back(strArea + NumberKey(stRow.enField));
            }
        }
        if (stArea.HasCustomFields()) {
            vecNames.push_back(strArea + CUSTOM + "[N]");
            vecNames.push_back(strArea + CUSTOM + "[+]");
        }
    }
    vecNames.push_back(std::string(AreaKey(Area::MultiRecord)) + "[N]");
    vecNames.push_back(std::string(AreaKey(Area::MultiRecord)) + "[+]");
    return vecNames;
}

[[noreturn]] void FailUnknown(const std::string &strName)
{
    const std::vector<std::string> vecKnown = KnownNames();
    FailUsage(
        "'" + EscapeText(strName) + "' is no field" + DidYouMean(strName, vecKnown) +
            "; accepted: AREA.FIELD with the names of 'fructl show --json', such as board.serialNumber, "
            "product.custom[0], multiRecord[1] or internalUse",
        vecKnown);
}

std::optional<Area> AreaByKey(const std::string &strKey)
{
    for (const Area enArea : HeaderAreas()) {
        if (strKey == AreaKey(enArea) || (enArea == Area::MultiRecord && strKey == RECORDS)) {
            return enArea;
        }
    }
    return std::nullopt;
}

// An index, or "+" for what is to come behind the last.
void TakeIndex(const std::string &strIndex, FIELD_EDIT_S &stEdit)
{
    if (strIndex == "+") {
        stEdit.enEdit = Edit::Append;
        return;
    }
    const std::optional<u32> optIndex = ParseNumber(strIndex, INDEX_MAX);
    if (!optIndex.has_value()) {
        FailUsage(
            "'" + EscapeText(stEdit.strName) +
            "' names no place in a list; accepted: a number from 0 on, as JSON counts, or + for a new one");
    }
    stEdit.stField.uiIndex = *optIndex;
}

bool TakeField(const NAME_S &stName, FIELD_EDIT_S &stEdit)
{
    const AREA_ROW_S *pstArea = FindAreaRow(stEdit.stField.enArea);
    if (stName.strField == CUSTOM || stName.strField == FieldKey(Field::Custom)) {
        stEdit.stField.enField = Field::Custom;
        return pstArea != nullptr && pstArea->HasCustomFields() && stName.optIndex.has_value();
    }
    if (pstArea == nullptr || stName.optIndex.has_value()) {
        return false;
    }
    for (const FIELD_ROW_S &stRow : pstArea->vecFields) {
        const char *pcNumber = NumberKey(stRow.enField);
        stEdit.bNumber = pcNumber != nullptr && stName.strField == pcNumber;
        if (stEdit.bNumber || stName.strField == FieldKey(stRow.enField)) {
            stEdit.stField.enField = stRow.enField;
            return true;
        }
    }
    return false;
}

FIELD_EDIT_S ParseName(const std::string &strName)
{
    const NAME_S stName = Split(strName);
    const std::optional<Area> optArea = AreaByKey(stName.strArea);
    if (!optArea.has_value()) {
        FailUnknown(strName);
    }
    FIELD_EDIT_S stEdit = {Edit::Set, {*optArea, Field::OpaqueData}, strName, ""};
    if (!stName.strField.empty()) {
        if (!TakeField(stName, stEdit)) {
            FailUnknown(strName);
        }
    } else if (stName.optIndex.has_value()) {
        if (*optArea != Area::MultiRecord) {
            FailUnknown(strName);
        }
        stEdit.stField.enField = Field::OneRecord;
    }
    if (stName.optIndex.has_value()) {
        TakeIndex(*stName.optIndex, stEdit);
    }
    return stEdit;
}

} // namespace

FIELD_EDIT_S ParseAssignment(const std::string &strWord)
{
    const size_t uiEquals = strWord.find('=');
    if (uiEquals == std::string::npos) {
        FailUsage("'" + EscapeText(strWord) +
                  "' is not FIELD=VALUE; accepted: such as board.serialNumber=4711");
    }
    FIELD_EDIT_S stEdit = ParseName(strWord.substr(0U, uiEquals));
    const bool bWhole = stEdit.stField.enField == Field::OpaqueData;
    if (bWhole && stEdit.stField.enArea != Area::InternalUse) {
        FailUsage("'" + EscapeText(stEdit.strName) +
                  "' is an area, not a field; accepted: a field of it, such as " +
                  (stEdit.stField.enArea == Area::MultiRecord
                       ? std::string("multiRecord[0]")
                       : std::string(AreaKey(stEdit.stField.enArea)) + ".serialNumber"));
    }
    const std::optional<std::string> optValue = Utf8ToLatin1(strWord.substr(uiEquals + 1U));
    if (!optValue.has_value()) {
        FailRefused("the value of " + stEdit.strName +
                    " holds a character beyond U+00FF, which the format has no byte for; accepted: Latin-1 "
                    "characters, or bytes in hex with --as binary");
    }
    stEdit.strValue = *optValue;
    return stEdit;
}

FIELD_EDIT_S ParseRemoval(const std::string &strName)
{
    FIELD_EDIT_S stEdit = ParseName(strName);
    if (stEdit.stField.enField == Field::OpaqueData) {
        stEdit.enEdit = Edit::RemoveArea;
        return stEdit;
    }
    const bool bListed =
        stEdit.stField.enField == Field::Custom || stEdit.stField.enField == Field::OneRecord;
    if (!bListed) {
        FailUsage("'" + EscapeText(strName) + "' has its place in its area and cannot be removed; '" +
                  EscapeText(strName) + "=' makes it empty");
    }
    if (stEdit.enEdit == Edit::Append) {
        FailUsage("'" + EscapeText(strName) + "' is there yet to come; accepted: a number in the brackets");
    }
    stEdit.enEdit = Edit::Remove;
    return stEdit;
}

FIELD_EDIT_S ParseNewArea(const std::string &strName)
{
    const std::optional<Area> optArea = AreaByKey(strName);
    if (!optArea.has_value() || *optArea == Area::MultiRecord) {
        FailUsage("'" + EscapeText(strName) +
                  "' is no area that can be added; accepted: internalUse, chassis, board, product "
                  "(multiRecord[+]=TYPE:HEX begins a MultiRecord area)");
    }
    return {Edit::AddArea, {*optArea, Field::OpaqueData}, strName, ""};
}

void RequireDistinct(const std::vector<FIELD_EDIT_S> &vecEdits)
{
    for (size_t i = 0; i < vecEdits.size(); i++) {
        for (size_t j = 0; j < i; j++) {
            const bool bArea = vecEdits[i].enEdit == Edit::AddArea || vecEdits[i].enEdit == Edit::RemoveArea;
            if (vecEdits[i].stField == vecEdits[j].stField && vecEdits[i].enEdit != Edit::Append &&
                vecEdits[j].enEdit != Edit::Append && (!bArea || vecEdits[i].enEdit == vecEdits[j].enEdit)) {
                FailUsage("'" + EscapeText(vecEdits[i].strName) +
                          "' is named twice; accepted: each field once");
            }
        }
    }
}
