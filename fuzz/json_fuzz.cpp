// SPDX-License-Identifier: Apache-2.0
// Fuzzes the readers of a record as JSON, of an image as hex, of names with values and of tables of labels: what was taken
// is printed so that it gives the same again. Input: the document; one that begins with a digit is a hex image, one that
// begins with a small letter a name; behind a capital one stands a table, and behind a zero byte a template for it.
#include "fuzz.h"
#include "toolkit/base/error.h"
#include "toolkit/base/name_value.h"
#include "toolkit/base/row_file.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/batch.h"
#include "toolkit/image/image_file.h"
#include "toolkit/image/record_json.h"

namespace {

RECORD_VIEW_S Built(const nlohmann::json &stDocument)
{
    Record stRecord;
    BuildRecord(JsonNode(stDocument, "fuzz", ""), stRecord);
    return ViewRecord(*stRecord.Data());
}

void Document(const std::string &strText)
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

// "name=value"; names are told apart whole, but for case and what stands between their words.
void NameValues(const std::string &strText)
{
    static const std::vector<SETTABLE_S> TABLE = {{"system-name", "System Name"}, {"serial", "Serial"}};
    try {
        const std::vector<NAME_VALUE_S> vecValues = ParseNameValues({strText}, TABLE);
        fuzz::Require(vecValues.size() == 1U && vecValues[0].uiIndex < TABLE.size());
        std::string strName = strText.substr(0, strText.find('='));
        for (char &cChar : strName) {
            const bool bUpper = cChar >= 'A' && cChar <= 'Z';
            cChar = (cChar == ' ' || cChar == '_') ? '-' : bUpper ? static_cast<char>(cChar + 0x20) : cChar;
        }
        fuzz::Require(strName == TABLE[vecValues[0].uiIndex].pcName);
    } catch (const Error &) {
        return;
    }
}

// A table is the same again when it is written as CSV, behind a column that cannot be missing.
void CheckRows(const ROW_FILE_S &stTable)
{
    constexpr const char *OWN = "own";
    if (stTable.Column(OWN).has_value()) {
        return;
    }
    std::string strCsv = OWN;
    for (const std::string &strColumn : stTable.vecColumns) {
        strCsv += "," + CsvCell(strColumn);
    }
    for (const ROW_S &stRow : stTable.vecRows) {
        fuzz::Require(stRow.vecCells.size() == stTable.vecColumns.size());
        strCsv += "\n1";
        for (const std::optional<std::string> &optCell : stRow.vecCells) {
            strCsv += "," + CsvCell(optCell);
        }
    }
    const ROW_FILE_S stAgain = ParseRows(strCsv, "again");
    fuzz::Require(
        stAgain.vecColumns.size() == stTable.vecColumns.size() + 1U &&
        std::equal(stTable.vecColumns.begin(), stTable.vecColumns.end(), stAgain.vecColumns.begin() + 1) &&
        stAgain.vecRows.size() == stTable.vecRows.size());
    for (size_t i = 0; i < stTable.vecRows.size(); i++) {
        fuzz::Require(std::equal(stTable.vecRows[i].vecCells.begin(), stTable.vecRows[i].vecCells.end(),
                                 stAgain.vecRows[i].vecCells.begin() + 1));
    }
}

// The results of a batch that was done are known again as its own, either way, so that none is written twice.
void CheckResults(const BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions)
{
    BATCH_S stDone = stBatch;
    std::string strCsv = BatchHeading(stBatch) + "\n";
    std::string strJson;
    for (BATCH_ROW_S &stRow : stDone.vecRows) {
        stRow.enState = BatchState::Written;
        strCsv += BatchLine(stBatch, stRow) + "\n";
        strJson += BatchJson(stRow).dump() + "\n";
    }
    for (const std::string &strResults : {strCsv, strJson}) {
        BATCH_S stAgain = stBatch;
        SkipDone(stAgain, stOptions, ParseResults(strResults, "results"), "results");
        fuzz::Require(stAgain.Count(BatchState::Done) == stAgain.vecRows.size());
    }
}

void Table(const std::string &strText)
{
    const size_t uiEnd = std::min(strText.find('\0'), strText.size());
    BATCH_OPTIONS_S stOptions;
    stOptions.strDevice = "dev";
    if (uiEnd != strText.size()) {
        stOptions.vecTemplates.push_back({"Board Serial Number", strText.substr(uiEnd + 1U)});
    }
    std::optional<BATCH_S> optBatch;
    try {
        const ROW_FILE_S stTable = ParseRows(strText.substr(0U, uiEnd), "fuzz");
        CheckRows(stTable);
        optBatch = MakeBatch(stTable, "fuzz", stOptions);
    } catch (const Error &) {
        return;
    }
    CheckResults(*optBatch, stOptions);
}

} // namespace

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    const std::string strText(pucData, pucData + uiSize);
    const bool bHex = !strText.empty() && isxdigit(pucData[0]) != 0;
    const bool bName = !strText.empty() && islower(pucData[0]) != 0;
    const bool bTable = !strText.empty() && isupper(pucData[0]) != 0 && !bHex;
    bHex     ? Hex(strText)
    : bName  ? NameValues(strText)
    : bTable ? Table(strText.substr(1U))
             : Document(strText);
    return 0;
}
