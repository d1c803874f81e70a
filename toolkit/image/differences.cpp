// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/differences.h"

#include <algorithm>
#include <map>

#include "toolkit/base/text.h"

namespace {

struct FIELD_S
{
    FIELD_ID_S stField;
    std::string strText; // raw
};

// Every field of a record, in order.
std::vector<FIELD_S> FieldsOf(const RECORD_VIEW_S &stView)
{
    std::vector<FIELD_S> vecFields;
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        for (const FIELD_VIEW_S &stField : stArea.vecFields) {
            // Two numbers may have one text (English).
            const bool bNumber = stField.enField == Field::Language && stField.optNumber.has_value();
            vecFields.push_back({{stArea.enArea, stField.enField},
                                 stField.strText + (bNumber ? Format(" (%u)", *stField.optNumber) : "")});
        }
        for (u32 i = 0; i < stArea.vecCustomFields.size(); i++) {
            vecFields.push_back({{stArea.enArea, Field::Custom, i}, stArea.vecCustomFields[i]});
        }
    }
    if (stView.IsMultiRecordAreaDamaged()) {
        vecFields.push_back({{Area::MultiRecord, Field::Records}, "damaged"});
    }
    for (u32 i = 0; i < stView.vecMultiRecords.size(); i++) {
        const MULTIRECORD_VIEW_S &stRecord = stView.vecMultiRecords[i];
        vecFields.push_back({{Area::MultiRecord, Field::OneRecord, i},
                             Format("type 0x%02x, version %u: ", stRecord.ucType, stRecord.ucFormatVersion) +
                                 HexBytes(stRecord.vecData)});
    }
    return vecFields;
}

std::optional<std::string> Find(const std::vector<FIELD_S> &vecFields, const FIELD_S &stField)
{
    const auto itField = std::find_if(vecFields.begin(), vecFields.end(), [&](const FIELD_S &stOther) {
        return stOther.stField == stField.stField;
    });
    return itField == vecFields.end() ? std::nullopt : std::optional<std::string>(itField->strText);
}

} // namespace

std::vector<DIFFERENCE_S> CompareRecords(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight)
{
    const std::vector<FIELD_S> vecLeft = FieldsOf(stLeft);
    const std::vector<FIELD_S> vecRight = FieldsOf(stRight);
    std::map<Area, std::vector<DIFFERENCE_S>> mapAreas;
    for (const FIELD_S &stField : vecLeft) {
        const std::optional<std::string> optRight = Find(vecRight, stField);
        if (optRight != stField.strText) {
            mapAreas[stField.stField.enArea].push_back({stField.stField, stField.strText, optRight});
        }
    }
    for (const FIELD_S &stField : vecRight) {
        if (!Find(vecLeft, stField).has_value()) {
            mapAreas[stField.stField.enArea].push_back({stField.stField, std::nullopt, stField.strText});
        }
    }
    std::vector<DIFFERENCE_S> vecDifferences;
    for (const auto &itArea : mapAreas) {
        vecDifferences.insert(vecDifferences.end(), itArea.second.begin(), itArea.second.end());
    }
    return vecDifferences;
}

std::vector<BYTE_RUN_S> CompareBytes(const std::vector<u8> &vecOld, const std::vector<u8> &vecNew)
{
    std::vector<BYTE_RUN_S> vecRuns;
    for (size_t i = 0; i < vecOld.size(); i++) {
        if (vecOld[i] == vecNew[i]) {
            continue;
        }
        if (vecRuns.empty() || vecRuns.back().uiOffset + vecRuns.back().vecOld.size() != i) {
            vecRuns.push_back({static_cast<u32>(i), {}, {}});
        }
        vecRuns.back().vecOld.push_back(vecOld[i]);
        vecRuns.back().vecNew.push_back(vecNew[i]);
    }
    return vecRuns;
}
