// SPDX-License-Identifier: Apache-2.0
// fructl diff: two images field by field.
#include "commands/commands.h"
#include "terminal/changes.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/differences.h"
#include "toolkit/image/differences_json.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

namespace {

struct SIDE_S
{
    TARGET_S stTarget;
    IMAGE_S stImage;
};

SIDE_S Load(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    SIDE_S stSide = {ResolveTarget(stSession, stOptions), {}};
    stSide.stImage = ReadTarget(stSide.stTarget);
    return stSide;
}

// A baseboard's image is taken as it is here, so that it compares with a file of it.
RECORD_VIEW_S DecodeSide(const SIDE_S &stSide)
{
    Record stRecord;
    ClearDiagnostics();
    const u32 uiRet = DecodeImage(stSide.stImage, false, stRecord);
    if (uiRet != FRU_OK) {
        Fail(ErrorClass::Damaged, "cannot decode " + stSide.stTarget.Title() + ": " + StatusText(uiRet) +
                                      DiagnosticHint() + "; 'fructl verify' tells all");
    }
    return ViewRecord(*stRecord.Data());
}

bool SameBytes(const SIDE_S &stLeft, const SIDE_S &stRight)
{
    const size_t uiCompared = std::min(stLeft.stImage.uiStored, stRight.stImage.uiStored);
    return std::equal(stLeft.stImage.vecBytes.begin(),
                      stLeft.stImage.vecBytes.begin() + static_cast<std::ptrdiff_t>(uiCompared),
                      stRight.stImage.vecBytes.begin());
}

std::string DifferencesText(const SIDE_S &stLeft, const SIDE_S &stRight,
                            const std::vector<DIFFERENCE_S> &vecDifferences)
{
    if (vecDifferences.empty()) {
        return SameBytes(stLeft, stRight)
                   ? "same: every field, and every byte that both images have\n"
                   : "same: every field; some bytes differ (unused ones, or a text stored in another way)\n";
    }
    return Paint(Colour::Red, "- " + stLeft.stTarget.Title()) + "\n" +
           Paint(Colour::Green, "+ " + stRight.stTarget.Title()) + "\n" + FieldChangesText(vecDifferences);
}

Json DifferencesJson(const SIDE_S &stLeft, const SIDE_S &stRight,
                     const std::vector<DIFFERENCE_S> &vecDifferences)
{
    return {{"a", TargetJson(stLeft.stTarget)},
            {"b", TargetJson(stRight.stTarget)},
            {"same", vecDifferences.empty()},
            {"sameBytes", SameBytes(stLeft, stRight)},
            {"differences", FieldChangesJson(vecDifferences, "a", "b")}};
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
    const std::vector<DIFFERENCE_S> vecDifferences = CompareRecords(DecodeSide(stLeft), DecodeSide(stRight));
    if (stSession.bJson) {
        PrintJson(DifferencesJson(stLeft, stRight, vecDifferences));
    } else {
        Print(DifferencesText(stLeft, stRight, vecDifferences));
    }
    stSession.enExitCode = vecDifferences.empty() ? ExitCode::Done : ExitCode::Different;
}

} // namespace

void AddDiffCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<DIFF_S>();
    const Command stCommand = stParent.Add(
        "diff", "Compare two images field by field; exit 0 same, 1 different, 2 trouble",
        "fructl diff psu1 psu2\nfructl diff baseboard ./dump.bin\nfructl diff ./old.bin ./new.hex --json");
    stCommand
        .AddOption("A B", pstOptions->vecTargets,
                   "TYPE:INSTANCE, a device's name, or an image file's path with a slash")
        .CompletedBy(Completes::DevicesAndFiles);
    stCommand.AddOption("--file", pstOptions->vecFiles, "an image file, whatever its name; behind A and B")
        .Placeholder("FILE");
    stCommand.Run([&stSession, pstOptions] { RunDiff(stSession, *pstOptions); });
}
