// SPDX-License-Identifier: Apache-2.0
// fructl encode: an image file from the JSON document of a record.
#include <filesystem>

#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json_node.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/encode.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/record.h"
#include "toolkit/image/record_json.h"

namespace {

struct ENCODE_S
{
    std::string strDocument;
    OUTPUT_OPTION_S stOutput;
    std::string strSize;
    bool bWrap = false;
};

void RunEncode(const SESSION_S &stSession, const ENCODE_S &stOptions)
{
    const bool bOutput = stOptions.stOutput.IsPipe(stSession);
    const nlohmann::json stParsed = ParseJsonFile(stOptions.strDocument);
    Record stRecord;
    BuildRecord(JsonNode(stParsed, NamedFileTitle(stOptions.strDocument), ""), stRecord, stOptions.bWrap);
    const std::vector<u8> vecImage = MakeImageFile(stRecord, stOptions.strDocument, stOptions.strSize);
    if (bOutput) {
        Print(std::string(vecImage.begin(), vecImage.end())); // and nothing else
        return;
    }
    WriteImageFile(stOptions.stOutput.strFile, vecImage);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    std::vector<std::string> vecParts = {"header"};
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        vecParts.emplace_back(AreaKey(stArea.enArea));
    }
    if (!stView.vecMultiRecords.empty()) {
        vecParts.push_back(Count(stView.vecMultiRecords.size(), "MultiRecord"));
    }
    if (stSession.bJson) {
        PrintJson({{"file", stOptions.stOutput.strFile}, {"size", vecImage.size()}, {"contents", vecParts}});
    } else {
        Print(Paint(Colour::Green, EscapeText(stOptions.stOutput.strFile)) +
              Format(": %zu bytes: ", vecImage.size()) + Join(vecParts, ", ") + "\n");
    }
}

} // namespace

void AddEncodeCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<ENCODE_S>();
    const Command stCommand = stParent.Add(
        "encode", "Make an image file from what 'show --json' printed",
        "fructl --json show baseboard > board.json\n"
        "fructl encode board.json -o board.bin --size 2048\nfructl encode board.json -o board.hex\n"
        "fructl show psu1 --json | fructl encode - -o -");
    stCommand
        .AddOption("FILE", pstOptions->strDocument,
                   "the record as JSON, as 'show --json' prints it; -: standard input")
        .Required();
    AddOutputOption(stCommand, pstOptions->stOutput,
                    "the image file to make (*.hex: readable hex; -: standard output)")
        .Required();
    stCommand.AddOption("--size", pstOptions->strSize, "bytes of the image, filled up with 0xff")
        .Placeholder("N");
    stCommand.AddFlag("--wrap", pstOptions->bWrap,
                      "a manufacturing date beyond 2027-11-24, too: its count starts again at 0");
    stCommand.Run([&stSession, pstOptions] { RunEncode(stSession, *pstOptions); });
}
