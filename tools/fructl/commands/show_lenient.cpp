// SPDX-License-Identifier: Apache-2.0
#include "commands/show_lenient.h"

#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/text.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/lenient.h"
#include "toolkit/task/shown.h"

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

} // namespace

void ShowLeniently(const SESSION_S &stSession, const SHOWN_S &stShown, u32 uiOffset)
{
    const LENIENT_VIEW_S stView = TakeLenient(stShown.stTarget, stShown.stImage);
    if (stSession.bJson) {
        PrintJson(LenientShownJson(stShown, uiOffset, stView));
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
