// SPDX-License-Identifier: Apache-2.0
// fructl diff: two images field by field.
#include <map>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

namespace {

struct SIDE_S
{
    TARGET_S stTarget;
    IMAGE_S stImage;
};

struct FIELD_S
{
    FIELD_ID_S stField;
    std::string strText; // raw
};

struct DIFFERENCE_S
{
    FIELD_ID_S stField;
    std::optional<std::string> optLeft; // nothing: the image has no such field
    std::optional<std::string> optRight;
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

SIDE_S Load(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    SIDE_S stSide = {ResolveTarget(stSession, stOptions), {}};
    stSide.stImage = ReadTarget(stSide.stTarget);
    return stSide;
}

// A baseboard's image is taken as it is here, so that it compares with a file of it.
std::vector<FIELD_S> DecodeSide(const SIDE_S &stSide)
{
    Record stRecord;
    ClearDiagnostics();
    const u32 uiRet = DecodeImage(stSide.stImage, false, stRecord);
    if (uiRet != FRU_OK) {
        Fail(ErrorClass::Damaged, "cannot decode " + stSide.stTarget.Title() + ": " + StatusText(uiRet) +
                                      DiagnosticHint() + "; 'fructl verify' tells all");
    }
    return FieldsOf(ViewRecord(*stRecord.Data()));
}

std::vector<DIFFERENCE_S> Compare(const std::vector<FIELD_S> &vecLeft, const std::vector<FIELD_S> &vecRight)
{
    // By area, then in each image's own order; a field that only the right one has comes behind the left's.
    std::map<Area, std::vector<DIFFERENCE_S>> mapAreas;
    const auto fnFind = [](const std::vector<FIELD_S> &vecFields, const FIELD_S &stField) {
        const auto itField = std::find_if(vecFields.begin(), vecFields.end(), [&](const FIELD_S &stOther) {
            return stOther.stField == stField.stField;
        });
        return itField == vecFields.end() ? std::nullopt : std::optional<std::string>(itField->strText);
    };
    for (const FIELD_S &stField : vecLeft) {
        const std::optional<std::string> optRight = fnFind(vecRight, stField);
        if (optRight != stField.strText) {
            mapAreas[stField.stField.enArea].push_back({stField.stField, stField.strText, optRight});
        }
    }
    for (const FIELD_S &stField : vecRight) {
        if (!fnFind(vecLeft, stField).has_value()) {
            mapAreas[stField.stField.enArea].push_back({stField.stField, std::nullopt, stField.strText});
        }
    }
    std::vector<DIFFERENCE_S> vecDifferences;
    for (const auto &itArea : mapAreas) {
        vecDifferences.insert(vecDifferences.end(), itArea.second.begin(), itArea.second.end());
    }
    return vecDifferences;
}

bool SameBytes(const SIDE_S &stLeft, const SIDE_S &stRight)
{
    const size_t uiCompared = std::min(stLeft.stImage.uiStored, stRight.stImage.uiStored);
    return std::equal(stLeft.stImage.vecBytes.begin(),
                      stLeft.stImage.vecBytes.begin() + static_cast<std::ptrdiff_t>(uiCompared),
                      stRight.stImage.vecBytes.begin());
}

std::string Side(const char *pcMark, Colour enColour, const std::optional<std::string> &optText)
{
    return optText.has_value()
               ? "    " + Paint(enColour, pcMark + EscapeText(optText->empty() ? "-" : *optText)) + "\n"
               : "";
}

std::string DifferencesText(const SIDE_S &stLeft, const SIDE_S &stRight,
                            const std::vector<DIFFERENCE_S> &vecDifferences)
{
    if (vecDifferences.empty()) {
        return SameBytes(stLeft, stRight)
                   ? "same: every field, and every byte that both images have\n"
                   : "same: every field; some bytes differ (unused ones, or a text stored in another way)\n";
    }
    std::string strOut = Paint(Colour::Red, "- " + stLeft.stTarget.Title()) + "\n" +
                         Paint(Colour::Green, "+ " + stRight.stTarget.Title()) + "\n";
    const DIFFERENCE_S *pstBefore = nullptr;
    for (const DIFFERENCE_S &stDifference : vecDifferences) {
        if (pstBefore == nullptr || pstBefore->stField.enArea != stDifference.stField.enArea) {
            strOut += "\n" + Paint(Colour::Bold, AreaName(stDifference.stField.enArea)) + "\n";
        }
        strOut += "  " + FieldName(stDifference.stField) + "\n";
        strOut += Side("- ", Colour::Red, stDifference.optLeft);
        strOut += Side("+ ", Colour::Green, stDifference.optRight);
        pstBefore = &stDifference;
    }
    return strOut;
}

Json DifferencesJson(const SIDE_S &stLeft, const SIDE_S &stRight,
                     const std::vector<DIFFERENCE_S> &vecDifferences)
{
    const auto fnText = [](const std::optional<std::string> &optText) {
        return optText.has_value() ? Json(Latin1ToUtf8(*optText)) : Json(nullptr);
    };
    Json stList = Json::array();
    for (const DIFFERENCE_S &stDifference : vecDifferences) {
        stList.push_back({{"area", AreaKey(stDifference.stField.enArea)},
                          {"field", FieldName(stDifference.stField)},
                          {"a", fnText(stDifference.optLeft)},
                          {"b", fnText(stDifference.optRight)}});
    }
    return {{"a", TargetJson(stLeft.stTarget)},
            {"b", TargetJson(stRight.stTarget)},
            {"same", vecDifferences.empty()},
            {"sameBytes", SameBytes(stLeft, stRight)},
            {"differences", stList}};
}

struct DIFF_S
{
    std::vector<std::string> vecTargets;
    std::vector<std::string> vecFiles;
};

void RunDiff(SESSION_S &stSession, const DIFF_S &stOptions)
{
    stSession.optFailure = ExitCode::Usage; // 1 tells of differences, so trouble is 2, as with diff(1)
    std::vector<TARGET_OPTIONS_S> vecSides;
    for (const std::string &strTarget : stOptions.vecTargets) {
        vecSides.push_back({strTarget, "", ""});
    }
    for (const std::string &strFile : stOptions.vecFiles) {
        vecSides.push_back({"", "", strFile});
    }
    if (vecSides.size() != 2U) {
        FailUsage("there must be two images, and " + Count(vecSides.size(), "image") +
                  (vecSides.size() == 1U ? " is" : " are") +
                  " named; accepted: A and B, each may be --file FILE");
    }
    const SIDE_S stLeft = Load(stSession, vecSides[0]);
    const SIDE_S stRight = Load(stSession, vecSides[1]);
    const std::vector<DIFFERENCE_S> vecDifferences = Compare(DecodeSide(stLeft), DecodeSide(stRight));
    if (stSession.bJson) {
        PrintJson(DifferencesJson(stLeft, stRight, vecDifferences));
    } else {
        Print(DifferencesText(stLeft, stRight, vecDifferences));
    }
    stSession.enExitCode = vecDifferences.empty() ? ExitCode::Done : ExitCode::Different;
}

} // namespace

void AddDiffCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<DIFF_S>();
    CLI::App *pstCommand = AddCommand(
        stParent, "diff", "Compare two images field by field; exit 0 same, 1 different, 2 trouble",
        "fructl diff psu1 psu2\nfructl diff baseboard ./dump.bin\nfructl diff ./old.bin ./new.hex --json");
    pstCommand->add_option("A B", pstOptions->vecTargets,
                           "TYPE:INSTANCE, a device's name, or an image file's path with a slash");
    pstCommand->add_option("--file", pstOptions->vecFiles, "an image file, whatever its name; behind A and B")
        ->type_name("FILE");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunDiff(stSession, *pstOptions); };
    });
}
