// SPDX-License-Identifier: Apache-2.0
#include "commands/show_lenient.h"

#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/lenient.h"

namespace {

std::string FieldRow(const LENIENT_FIELD_S &stField)
{
    const bool bGood = stField.strDoubt.empty();
    const std::string strText =
        stField.strText.empty() ? Paint(Colour::Dim, "-") : EscapeText(stField.strText);
    const std::string strNote = stField.stNote.IsTold() && stField.stNote.enNote != Note::Empty
                                    ? Paint(Colour::Dim, "  (" + NoteText(stField.stNote) + ")")
                                    : "";
    return "  " + (bGood ? Paint(Colour::Green, "good     ") : Paint(Colour::Yellow, "doubtful ")) +
           Format(" %-19s ", FieldName(stField.stField).c_str()) + strText + strNote +
           (bGood ? "" : "  " + Paint(Colour::Yellow, "<- " + stField.strDoubt)) + "\n";
}

std::string AreaText(const LENIENT_AREA_S &stArea)
{
    std::string strName = AreaName(stArea.enArea);
    strName[0] = static_cast<char>(toupper(strName[0]));
    std::string strOut = "\n" + Paint(Colour::Bold, strName) + "\n";
    for (const LENIENT_FIELD_S &stField : stArea.vecFields) {
        strOut += FieldRow(stField);
    }
    for (const std::string &strRemark : stArea.vecRemarks) {
        strOut += "  " + Paint(Colour::Red, "wrong     ") + strRemark + "\n";
    }
    return strOut;
}

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

Json ViewJson(const SHOWN_S &stShown, const LENIENT_VIEW_S &stView, u32 uiOffset)
{
    Json stJson = TargetJson(stShown.stTarget);
    if (stShown.stTarget.optDevice.has_value()) {
        stJson.update(stShown.SourceJson());
    }
    stJson["offset"] = uiOffset;
    stJson["good"] = stView.uiGood;
    stJson["doubtful"] = stView.uiDoubtful;
    stJson["remarks"] = stView.vecRemarks;
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

} // namespace

void ShowLeniently(const SESSION_S &stSession, const SHOWN_S &stShown, u32 uiOffset)
{
    const LENIENT_VIEW_S stView = ViewLeniently(stShown.stImage, stShown.stTarget.HasFixedSlots());
    if (stView.uiGood + stView.uiDoubtful == 0U) {
        Fail(ErrorClass::Damaged, stShown.stTarget.Title() + " holds no field that could be shown" +
                                      (stView.vecRemarks.empty() ? "" : ": " + stView.vecRemarks.front()));
    }
    if (stSession.bJson) {
        PrintJson(ViewJson(stShown, stView, uiOffset));
        stShown.RequireSame();
        return;
    }
    std::string strOut = Paint(Colour::Bold, stShown.stTarget.Title()) + stShown.HeadingText() +
                         Format("  %zu good, %zu doubtful", stView.uiGood, stView.uiDoubtful) + "\n";
    for (const std::string &strRemark : stView.vecRemarks) {
        strOut += "  " + Paint(Colour::Red, "wrong     ") + strRemark + "\n";
    }
    for (const LENIENT_AREA_S &stArea : stView.vecAreas) {
        strOut += AreaText(stArea);
    }
    Print(strOut);
    stShown.RequireSame();
}
