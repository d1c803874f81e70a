// SPDX-License-Identifier: Apache-2.0
// Fuzzes the reader of a record as JSON, and of an image as hex: what a description is taken for is printed as one that
// gives the same record again. Input: the document; one that begins with an offset or a digit is a hex image.
#include "fuzz.h"
#include "toolkit/base/error.h"
#include "toolkit/image/image_file.h"
#include "toolkit/image/record_json.h"

namespace {

RECORD_VIEW_S Built(const nlohmann::json &stDocument)
{
    Record stRecord;
    BuildRecord(JsonNode(stDocument, "fuzz", ""), stRecord);
    return ViewRecord(*stRecord.Data());
}

void Json(const std::string &strText)
{
    const nlohmann::json stDocument = nlohmann::json::parse(strText, nullptr, false);
    if (stDocument.is_discarded()) {
        return;
    }
    RECORD_VIEW_S stView;
    try {
        stView = Built(stDocument);
    } catch (const Error &) {
        return;
    }
    const nlohmann::json stPrinted = nlohmann::json::parse(RecordJson(stView).dump());
    fuzz::Require(Built(stPrinted) == stView);
}

void Hex(const std::string &strText)
{
    try {
        const std::vector<u8> vecBytes = ParseHexText(strText, "fuzz");
        fuzz::Require(ParseHexText(HexText(vecBytes), "again") == vecBytes);
    } catch (const Error &) {
        return;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    const std::string strText(pucData, pucData + uiSize);
    const bool bHex = !strText.empty() && isxdigit(pucData[0]) != 0;
    bHex ? Hex(strText) : Json(strText);
    return 0;
}
