// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/lenient_json.h"

#include "toolkit/base/text.h"

namespace {

Json FieldJson(const LENIENT_FIELD_S &stField)
{
    Json stJson = {{"name", FieldPath(stField.stField)},
                   {"offset", stField.uiOffset},
                   {"text", Latin1ToUtf8(stField.strText)},
                   {"good", stField.strDoubt.empty()}};
    if (!stField.strDoubt.empty()) {
        stJson["doubt"] = stField.strDoubt;
    }
    if (stField.stNote.IsTold()) {
        stJson["note"] = NoteText(stField.stNote);
    }
    return stJson;
}

} // namespace

Json LenientJson(const LENIENT_VIEW_S &stView, u32 uiOffset)
{
    Json stJson = {{"offset", uiOffset},
                   {"good", stView.uiGood},
                   {"doubtful", stView.uiDoubtful},
                   {"remarks", stView.vecRemarks}};
    stJson["areas"] = Json::array();
    for (const LENIENT_AREA_S &stArea : stView.vecAreas) {
        Json stFields = Json::array();
        for (const LENIENT_FIELD_S &stField : stArea.vecFields) {
            stFields.push_back(FieldJson(stField));
        }
        stJson["areas"].push_back(
            {{"area", AreaKey(stArea.enArea)}, {"fields", stFields}, {"remarks", stArea.vecRemarks}});
    }
    return stJson;
}
