// SPDX-License-Identifier: Apache-2.0
// fructl features: the FRU feature list of the controller's feature service, and its update.
#include <cstring>

#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/root_lock.h"
#include "toolkit/image/image_file.h"

namespace {

constexpr const char *SUCCESS_TEXT = "Get fru feature info list successfully.";
constexpr const char *FAILURE_TEXT = "Get fru feature info list failed!";

// The library prints one sentence for each feature, without line ends.
std::vector<bool> SplitSentences(std::string strText)
{
    std::vector<bool> vecResults;
    while (!strText.empty()) {
        const bool bSuccess = strText.rfind(SUCCESS_TEXT, 0) == 0;
        const size_t uiLength = strlen(bSuccess ? SUCCESS_TEXT : FAILURE_TEXT);
        if (!bSuccess && strText.rfind(FAILURE_TEXT, 0) != 0) {
            Fail("the library printed " + EscapeText(strText));
        }
        vecResults.push_back(bSuccess);
        strText.erase(0, uiLength);
    }
    return vecResults;
}

void Update(const SESSION_S &stSession, const std::string &strFile, bool bDryRun)
{
    const std::vector<u8> vecBlock = ReadImageFile(strFile);
    FRU_FEATURE_UPDATE_S stBlock = {};
    if (vecBlock.size() != sizeof(stBlock.aucData)) {
        FailRefused(Format("%s has %zu bytes; accepted: a feature block of exactly %zu",
                           EscapeText(strFile).c_str(), vecBlock.size(), sizeof(stBlock.aucData)));
    }
    if (bDryRun) {
        if (stSession.bJson) {
            PrintJson({{"updated", false}, {"dryRun", true}, {"bytes", vecBlock.size()}});
        } else {
            Print(Format("nothing was handed over; without --dry-run: %zu bytes to the feature service\n",
                         vecBlock.size()));
        }
        return;
    }
    (void)memcpy(stBlock.aucData, vecBlock.data(), sizeof(stBlock.aucData));
    const RootLock stLock(stSession);
    const u32 uiRet = LIB_FRU_UpdateFeatureInfo(&stBlock);
    if (uiRet != FRU_OK) {
        Fail("the feature service refused the update: " + StatusText(uiRet) + DiagnosticHint());
    }
    if (stSession.bJson) {
        PrintJson({{"updated", true}, {"bytes", vecBlock.size()}});
    } else {
        Print(Format("handed %zu bytes to the feature service\n", vecBlock.size()));
    }
}

void List(const SESSION_S &stSession)
{
    ClearDiagnostics();
    const u32 uiRet = LIB_FRU_GetFeatureInfoList();
    const std::string strText = TakeLibraryOutput();
    if (uiRet != FRU_OK) {
        Fail("the feature service did not answer: " + EscapeText(strText) + DiagnosticHint());
    }
    const std::vector<bool> vecResults = SplitSentences(strText);
    if (stSession.bJson) {
        PrintJson({{"features", vecResults}});
        return;
    }
    Print(vecResults.empty() ? "no features\n" : "");
    for (size_t i = 0; i < vecResults.size(); i++) {
        Print(Format("feature %zu: ", i) +
              (vecResults[i] ? Paint(Colour::Green, "success") : Paint(Colour::Red, "failed")) + "\n");
    }
}

} // namespace

void AddFeaturesCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstFile = std::make_shared<std::string>();
    const auto pbDryRun = std::make_shared<bool>(false);
    const Command stCommand =
        stParent.Add("features", "Show the FRU feature list, or hand over a feature update",
                     "fructl features\nfructl features --update block.bin --dry-run");
    stCommand.AddOption("--update", *pstFile, "a file of 1334 bytes for the feature service")
        .Placeholder("FILE");
    stCommand.AddFlag("-n,--dry-run", *pbDryRun, "with --update: check the file, hand nothing over");
    stCommand.Run([&stSession, pstFile, pbDryRun] {
        RequireController(stSession);
        if (pstFile->empty() && *pbDryRun) {
            FailUsage("--dry-run says what --update would do; accepted: both, or neither");
        }
        if (pstFile->empty()) {
            List(stSession);
        } else {
            Update(stSession, *pstFile, *pbDryRun);
        }
    });
}
