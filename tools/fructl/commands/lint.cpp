// SPDX-License-Identifier: Apache-2.0
// fructl lint: what a device says that is no damage, and wrong all the same.
#include "toolkit/controller/lint.h"
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/target.h"

namespace {

struct LINT_OPTIONS_S
{
    std::vector<std::string> vecTargets;
    std::vector<std::string> vecFiles;
};

std::vector<TARGET_S> TargetsOf(const SESSION_S &stSession, const LINT_OPTIONS_S &stOptions)
{
    std::vector<TARGET_S> vecTargets;
    for (const std::string &strTarget : stOptions.vecTargets) {
        vecTargets.push_back(ResolveTarget(stSession, {strTarget, "", ""}));
    }
    for (const std::string &strFile : stOptions.vecFiles) {
        vecTargets.push_back(ResolveTarget(stSession, {"", "", strFile}));
    }
    if (!vecTargets.empty()) {
        return vecTargets;
    }
    for (const DEVICE_S &stDevice : LoadDevices(stSession)) {
        if (stDevice.bHasInfo) {
            vecTargets.push_back({stDevice, ""});
        }
    }
    return vecTargets;
}

bool IsWhole(const LINT_FINDING_S &stFinding)
{
    return stFinding.stField.enArea == Area::Unused;
}

std::string FieldText(const LINT_FINDING_S &stFinding)
{
    return IsWhole(stFinding)
               ? "-"
               : std::string(AreaName(stFinding.stField.enArea)) + ", " + FieldName(stFinding.stField);
}

Json FindingJson(const std::vector<TARGET_S> &vecTargets, const LINT_FINDING_S &stFinding)
{
    Json stJson = TargetJson(vecTargets[stFinding.uiTarget]);
    stJson["rule"] = LintWord(stFinding.enRule);
    stJson["area"] = IsWhole(stFinding) ? Json(nullptr) : Json(AreaKey(stFinding.stField.enArea));
    stJson["field"] = IsWhole(stFinding) ? Json(nullptr) : Json(FieldName(stFinding.stField));
    stJson["value"] = IsWhole(stFinding) ? Json(nullptr) : Json(Latin1ToUtf8(stFinding.strValue));
    stJson["text"] = stFinding.strWhat;
    return stJson;
}

void Report(const SESSION_S &stSession, const std::vector<TARGET_S> &vecTargets, const LINT_S &stLint)
{
    if (stSession.bJson) {
        Json stList = Json::array();
        for (const LINT_FINDING_S &stFinding : stLint.vecFindings) {
            stList.push_back(FindingJson(vecTargets, stFinding));
        }
        PrintJson({{"checked", stLint.uiChecked}, {"findings", stList}});
        return;
    }
    if (stLint.vecFindings.empty()) {
        Print(Count(stLint.uiChecked, "image") + " looked at, nothing found\n");
        return;
    }
    Table stTable({"IMAGE", "FIELD", "RULE", "VALUE", "WHAT"});
    for (const LINT_FINDING_S &stFinding : stLint.vecFindings) {
        stTable.Row({vecTargets[stFinding.uiTarget].Title(), FieldText(stFinding), LintWord(stFinding.enRule),
                     IsWhole(stFinding) ? "-" : "'" + EscapeText(stFinding.strValue) + "'",
                     stFinding.strWhat},
                    {Colour::None, Colour::Dim, Colour::Yellow, Colour::Cyan, Colour::None});
    }
    Print(stTable.Text());
}

void RunLint(SESSION_S &stSession, const LINT_OPTIONS_S &stOptions)
{
    const std::vector<TARGET_S> vecTargets = TargetsOf(stSession, stOptions);
    const LINT_S stLint = Lint(vecTargets);
    Report(stSession, vecTargets, stLint);
    if (!stLint.vecFindings.empty()) {
        Fail("lint: " + Count(stLint.vecFindings.size(), "finding") + " in " +
             Count(stLint.uiChecked, "image"));
    }
}

std::string Meanings()
{
    std::string strText =
        "Finds what is no damage, and wrong all the same; exit 1 when there is something. Rules:";
    for (const LintRule enRule : LintRules()) {
        strText += std::string(enRule == LintRules().front() ? " " : "; ") + LintWord(enRule) + " (" +
                   LintMeaning(enRule) + ")";
    }
    return strText;
}

} // namespace

void AddLintCommand(const Command &stParent, SESSION_S &stSession)
{
    static const std::string MEANINGS = Meanings();
    const auto pstOptions = std::make_shared<LINT_OPTIONS_S>();
    const Command stCommand =
        stParent.Add("lint", "Find placeholders, doubles, stray blanks and dates that are none",
                     "fructl lint\nfructl lint psu1 psu2\nfructl lint examples/*.hex --json");
    stCommand.AddOption(
        "DEVICE|FILE", pstOptions->vecTargets,
        "devices or image files, among which doubles are looked for, too; none: all devices. " + MEANINGS);
    stCommand.AddOption("--file", pstOptions->vecFiles, "image files, whatever their names")
        .Placeholder("FILE");
    stCommand.Run([&stSession, pstOptions] { RunLint(stSession, *pstOptions); });
}
