// SPDX-License-Identifier: Apache-2.0
#include "commands/patch_plan.h"

#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/differences_json.h"

namespace {

std::string PlanText(const PATCH_S &stPatch)
{
    std::string strOut = FieldChangesText(stPatch.vecFields);
    strOut += strOut.empty() ? "  no field changes\n" : "\n";
    for (const std::string &strNote : stPatch.vecNotes) {
        strOut += "  " + Paint(Colour::Yellow, "note:") + " " + strNote + "\n";
    }
    return strOut;
}

Json PlanJson(const PATCH_S &stPatch, const std::vector<std::string> &vecSentences, bool bDryRun)
{
    Json stJson = TargetJson(stPatch.stTarget);
    stJson.update(Json({{"dryRun", bDryRun},
                        {"unchanged", stPatch.IsUnchanged()},
                        {"sound", stPatch.bSound},
                        {"fields", FieldChangesJson(stPatch.vecFields, "old", "new")},
                        {"bytes", ByteChangesJson(stPatch.vecBytes)},
                        {"notes", stPatch.vecNotes}}));
    if (!vecSentences.empty()) {
        Json stLog = Json::array();
        for (const std::string &strSentence : vecSentences) {
            stLog.push_back(Latin1ToUtf8(strSentence));
        }
        stJson["operationLog"] = stLog;
    }
    return stJson;
}

void Report(const SESSION_S &stSession, const PATCH_OPTIONS_S &stOptions, const PATCH_WORK_S &stWork,
            const std::vector<std::string> &vecSentences)
{
    const PATCH_S &stPatch = stWork.stPatch;
    const std::string strTitle = stPatch.stTarget.Title();
    if (stSession.bJson) {
        Json stJson = PlanJson(stPatch, vecSentences, stOptions.bDryRun);
        stJson.update(stWork.stJson);
        PrintJson(stJson);
    } else if (stPatch.IsUnchanged() && stOptions.stOutput.strFile.empty()) {
        std::string strNotes;
        for (const std::string &strNote : stPatch.vecNotes) {
            strNotes += "  " + Paint(Colour::Yellow, "note:") + " " + strNote + "\n";
        }
        Print(strTitle + " is unchanged: it says so already; nothing was written\n" + strNotes);
    } else if (stOptions.bDryRun) {
        Print(strTitle + ": nothing was written; this would be\n" + PlanText(stPatch) +
              ByteChangesText(stPatch.vecBytes));
    } else {
        std::string strOut;
        for (const std::string &strSentence : vecSentences) {
            strOut += Paint(Colour::Green, EscapeText(strSentence)) + "\n";
        }
        if (vecSentences.empty()) {
            const std::string strFile =
                stOptions.stOutput.strFile.empty() ? strTitle : EscapeText(stOptions.stOutput.strFile);
            strOut = Paint(Colour::Green, strFile) + Format(": %zu bytes written\n", stPatch.vecAfter.size());
        }
        Print(strOut + PlanText(stPatch));
    }
}

} // namespace

void AddPatchOptions(const Command &stCommand, PATCH_OPTIONS_S &stOptions)
{
    AddOutputOption(stCommand, stOptions.stOutput,
                    "of a file: write the new image here (*.hex: readable hex; -: standard output)");
    stCommand.AddFlag("-n,--dry-run", stOptions.bDryRun,
                      "show the fields and bytes that would change, and write nothing");
}

void RunPatch(const SESSION_S &stSession, const TARGET_S &stTarget, const PATCH_OPTIONS_S &stOptions,
              const std::function<PATCH_WORK_S(const IMAGE_S &stImage)> &fnPlan)
{
    const bool bDevice = stTarget.optDevice.has_value();
    if (bDevice && !stOptions.stOutput.strFile.empty()) {
        FailUsage("-o says where the image of a file goes, and " + stTarget.Title() +
                  " is a device; 'fructl read' makes a file of it");
    }
    if (!bDevice && stOptions.stOutput.strFile.empty() && !stOptions.bDryRun && IsStream(stTarget.strFile)) {
        FailUsage("an image from " + NamedFileTitle(stTarget.strFile) +
                  " has no place to go back to; accepted: -o FILE, -o - or --dry-run");
    }
    const bool bPipe = !stOptions.stOutput.strFile.empty() && stOptions.stOutput.IsPipe(stSession);
    std::optional<RootLock> optLock;
    if (bDevice && !stOptions.bDryRun) {
        optLock.emplace(stSession);
    }
    const PATCH_WORK_S stWork = fnPlan(ReadTarget(stTarget));
    PATCHED_S stPatched;
    if (bPipe && !stOptions.bDryRun) {
        Print(
            std::string(stWork.stPatch.vecAfter.begin(), stWork.stPatch.vecAfter.end())); // and nothing else
        return;
    }
    if (optLock.has_value() && !stWork.stPatch.IsUnchanged()) {
        stPatched = WritePatchedDevice(*optLock, stWork.stPatch, stWork.vecOperations);
    } else if (!bDevice && !stOptions.bDryRun &&
               (!stWork.stPatch.IsUnchanged() || !stOptions.stOutput.strFile.empty())) {
        WritePatchedFile(stWork.stPatch, stOptions.stOutput.strFile);
    }
    Report(stSession, stOptions, stWork, stPatched.vecSentences);
    if (!stPatched.strAftermath.empty()) {
        Fail(stPatched.strAftermath);
    }
}
