// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/batch.h"

#include <algorithm>

#include "toolkit/base/near.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/labels.h"
#include "toolkit/edit/template_text.h"

namespace {

constexpr const char *RESULT_ROW = "row";
constexpr const char *RESULT_STATE = "result";
constexpr const char *RESULT_MESSAGE = "message";
constexpr const char *NO_RESULTS = "no results of a batch; accepted: another --results FILE";
constexpr const char *RESULT_LABELS = "labels"; // in JSON: the object of them

const char *StateWord(BatchState enState)
{
    static const char *const WORDS[] = {"open",        "done",    "written", "unchanged",
                                        "would-write", "refused", "failed"};
    return WORDS[static_cast<size_t>(enState)];
}

bool IsLabel(const std::string &strName)
{
    return std::any_of(Labels().begin(), Labels().end(),
                       [&](const LABEL_S &stLabel) { return stLabel.strName == strName; });
}

bool Contains(const std::vector<std::string> &vecTexts, const std::string &strText)
{
    return std::find(vecTexts.begin(), vecTexts.end(), strText) != vecTexts.end();
}

// The columns are known, each of them is used, and no label has two sources.
void CheckColumns(const ROW_FILE_S &stTable, const std::string &strName, const BATCH_OPTIONS_S &stOptions)
{
    std::vector<std::string> vecUsed = {BATCH_ROOT, BATCH_DEVICE};
    for (const BATCH_TEMPLATE_S &stTemplate : stOptions.vecTemplates) {
        for (const std::string &strUsed : TemplateNames(stTemplate.strText)) {
            if (strUsed != TEMPLATE_COUNTER && !stTable.Column(strUsed).has_value()) {
                FailRefused("the template of '" + stTemplate.strLabel + "' uses {" + EscapeText(strUsed) +
                                "}, and " + strName + " has no such column" +
                                DidYouMean(strUsed, stTable.vecColumns) +
                                "; accepted: " + Join(stTable.vecColumns, ", ") + ", counter",
                            stTable.vecColumns);
            }
            vecUsed.push_back(strUsed);
        }
    }
    std::vector<std::string> vecKnown = {BATCH_ROOT, BATCH_DEVICE};
    for (const LABEL_S &stLabel : Labels()) {
        vecKnown.push_back(stLabel.strName);
    }
    for (const std::string &strColumn : stTable.vecColumns) {
        if (!IsLabel(strColumn) && !Contains(vecUsed, strColumn)) {
            FailRefused(strName + ": the column '" + EscapeText(strColumn) +
                            "' is no label, and no template uses it" + DidYouMean(strColumn, vecKnown) +
                            "; accepted: root, device, the labels' names, and what templates use",
                        vecKnown);
        }
    }
}

std::vector<std::string> LabelsOf(const ROW_FILE_S &stTable, const BATCH_OPTIONS_S &stOptions)
{
    std::vector<std::string> vecLabels;
    const auto fnAdd = [&vecLabels](const std::string &strLabel) {
        if (Contains(vecLabels, strLabel)) {
            FailUsage("'" + strLabel +
                      "' is given twice, as a column, a template or scanned; accepted: once");
        }
        vecLabels.push_back(FindLabel(strLabel).strName);
    };
    for (const std::string &strColumn : stTable.vecColumns) {
        if (IsLabel(strColumn)) {
            fnAdd(strColumn);
        }
    }
    for (const BATCH_TEMPLATE_S &stTemplate : stOptions.vecTemplates) {
        fnAdd(stTemplate.strLabel);
    }
    for (const std::string &strScanned : stOptions.vecScanned) {
        fnAdd(strScanned);
    }
    return vecLabels;
}

std::string CellOf(const ROW_FILE_S &stTable, const ROW_S &stRow, const std::string &strColumn,
                   const std::string &strWhere)
{
    const std::optional<std::string> &optCell = stRow.vecCells[*stTable.Column(strColumn)];
    if (!optCell.has_value()) {
        FailRefused(strWhere + ": a template uses {" + EscapeText(strColumn) +
                    "}, which the row does not give");
    }
    return *optCell;
}

BATCH_ROW_S MakeRow(const ROW_FILE_S &stTable, size_t uiIndex, const std::string &strName,
                    const BATCH_OPTIONS_S &stOptions)
{
    const ROW_S &stFrom = stTable.vecRows[uiIndex];
    const auto fnCell = [&](const char *pcColumn) {
        const std::optional<size_t> optColumn = stTable.Column(pcColumn);
        return optColumn.has_value() ? stFrom.vecCells[*optColumn].value_or("") : std::string();
    };
    BATCH_ROW_S stRow;
    stRow.uiNumber = uiIndex + 1U;
    stRow.strWhere = strName + Format(":%zu", stFrom.uiLine);
    stRow.strRoot = fnCell(BATCH_ROOT);
    stRow.strDevice = fnCell(BATCH_DEVICE).empty() ? stOptions.strDevice : fnCell(BATCH_DEVICE);
    if (stRow.strDevice.empty()) {
        FailRefused(stRow.strWhere +
                    ": names no device; accepted: one in the column 'device', or for all rows "
                    "as 'fructl label set DEVICE --from FILE'");
    }
    for (size_t i = 0; i < stTable.vecColumns.size(); i++) {
        if (IsLabel(stTable.vecColumns[i]) && stFrom.vecCells[i].has_value()) {
            stRow.vecValues.emplace_back(stTable.vecColumns[i], *stFrom.vecCells[i]);
        }
    }
    for (const BATCH_TEMPLATE_S &stTemplate : stOptions.vecTemplates) {
        stRow.vecValues.emplace_back(stTemplate.strLabel,
                                     FillTemplate(stTemplate.strText, [&](const TEMPLATE_NAME_S &stUsed) {
                                         return stUsed.strName == TEMPLATE_COUNTER
                                                    ? std::to_string(stOptions.uiCounter + uiIndex)
                                                    : CellOf(stTable, stFrom, stUsed.strName, stRow.strWhere);
                                     }));
    }
    if (stRow.vecValues.empty() && stOptions.vecScanned.empty()) {
        FailRefused(stRow.strWhere + ": gives no label a value");
    }
    return stRow;
}

const std::string *FindValue(const BATCH_ROW_S &stRow, const std::string &strLabel)
{
    for (const auto &stValue : stRow.vecValues) {
        if (stValue.first == strLabel) {
            return &stValue.second;
        }
    }
    return nullptr;
}

// As BatchJson() was given them: what is no Latin-1 there is nobody's result.
void TakeBytes(ROW_FILE_S &stFile, const std::string &strName)
{
    for (ROW_S &stRow : stFile.vecRows) {
        for (std::optional<std::string> &optCell : stRow.vecCells) {
            if (!optCell.has_value()) {
                continue;
            }
            optCell = Utf8ToLatin1(*optCell);
            if (!optCell.has_value()) {
                FailRefused(strName + Format(":%zu: ", stRow.uiLine) + NO_RESULTS);
            }
        }
    }
}

} // namespace

size_t BATCH_S::Count(BatchState enState) const
{
    return static_cast<size_t>(
        std::count_if(vecRows.begin(), vecRows.end(),
                      [enState](const BATCH_ROW_S &stRow) { return stRow.enState == enState; }));
}

BATCH_S MakeBatch(const ROW_FILE_S &stTable, const std::string &strName, const BATCH_OPTIONS_S &stOptions)
{
    CheckColumns(stTable, strName, stOptions);
    BATCH_S stBatch;
    stBatch.vecLabels = LabelsOf(stTable, stOptions);
    if (stTable.vecRows.empty()) {
        FailRefused(strName +
                    " has no rows; accepted: a line that names the columns, and a line for each device");
    }
    for (size_t i = 0; i < stTable.vecRows.size(); i++) {
        stBatch.vecRows.push_back(MakeRow(stTable, i, strName, stOptions));
    }
    return stBatch;
}

void ScanBatch(BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions, const SCAN_FN &fnScan)
{
    for (BATCH_ROW_S &stRow : stBatch.vecRows) {
        for (const std::string &strLabel : stOptions.vecScanned) {
            if (stRow.enState != BatchState::Open) {
                continue;
            }
            const std::optional<std::string> optLine = fnScan(stRow, strLabel);
            if (!optLine.has_value()) {
                FailRefused("standard input ends before '" + strLabel + "' of row " +
                            std::to_string(stRow.uiNumber) + " (" + EscapeText(stRow.strDevice) +
                            ") is scanned; nothing was written; accepted: a line for each value");
            }
            stRow.vecValues.emplace_back(strLabel, *optLine);
        }
    }
}

void SkipDone(BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions, const ROW_FILE_S &stResults,
              const std::string &strName)
{
    for (const ROW_S &stResult : stResults.vecRows) {
        const auto fnCell = [&](const std::string &strColumn) -> std::optional<std::string> {
            const std::optional<size_t> optColumn = stResults.Column(strColumn);
            return optColumn.has_value() ? stResult.vecCells[*optColumn] : std::nullopt;
        };
        const std::string strWhere = strName + Format(":%zu: ", stResult.uiLine);
        const std::string strElse = "; accepted: the results of the same table, or another --results FILE";
        const std::optional<u32> optNumber = ParseNumber(fnCell(RESULT_ROW).value_or(""), 0xFFFFFFFFU);
        if (!optNumber.has_value() || *optNumber == 0U || *optNumber > stBatch.vecRows.size()) {
            FailRefused(strWhere + "no result of a row of this batch" + strElse);
        }
        BATCH_ROW_S &stRow = stBatch.vecRows[*optNumber - 1U];
        bool bSame = fnCell(BATCH_ROOT).value_or("") == stRow.strRoot &&
                     fnCell(BATCH_DEVICE).value_or("") == stRow.strDevice;
        for (const std::string &strLabel : stBatch.vecLabels) {
            const std::string *pstrValue = FindValue(stRow, strLabel);
            const bool bScanned = Contains(stOptions.vecScanned, strLabel);
            bSame = bSame && (bScanned || fnCell(strLabel) == (pstrValue == nullptr
                                                                   ? std::nullopt
                                                                   : std::optional<std::string>(*pstrValue)));
        }
        const std::string strState = fnCell(RESULT_STATE).value_or("");
        const bool bDone =
            strState == StateWord(BatchState::Written) || strState == StateWord(BatchState::Unchanged);
        if (bDone && !bSame) {
            FailRefused(strWhere + Format("row %u was another one when it was written", *optNumber) +
                        strElse);
        }
        if (bDone) {
            stRow.enState = BatchState::Done;
            for (const std::string &strLabel : stOptions.vecScanned) {
                stRow.vecValues.emplace_back(strLabel, fnCell(strLabel).value_or(""));
            }
        }
    }
}

std::string BatchHeading(const BATCH_S &stBatch)
{
    std::string strLine = Join({RESULT_ROW, BATCH_ROOT, BATCH_DEVICE, RESULT_STATE, RESULT_MESSAGE}, ",");
    for (const std::string &strLabel : stBatch.vecLabels) {
        strLine += "," + CsvCell(strLabel);
    }
    return strLine;
}

std::string BatchLine(const BATCH_S &stBatch, const BATCH_ROW_S &stRow)
{
    const auto fnText = [](const std::string &strText) {
        return strText.empty() ? std::nullopt : std::optional<std::string>(strText);
    };
    std::string strLine =
        Join({std::to_string(stRow.uiNumber), CsvCell(fnText(stRow.strRoot)), CsvCell(stRow.strDevice),
              StateWord(stRow.enState), CsvCell(fnText(stRow.strMessage))},
             ",");
    for (const std::string &strLabel : stBatch.vecLabels) {
        const std::string *pstrValue = FindValue(stRow, strLabel);
        strLine += "," + (pstrValue == nullptr ? "" : CsvCell(*pstrValue));
    }
    return strLine;
}

Json BatchJson(const BATCH_ROW_S &stRow)
{
    Json stLabels = Json::object();
    for (const auto &stValue : stRow.vecValues) {
        stLabels[Latin1ToUtf8(stValue.first)] = Latin1ToUtf8(stValue.second);
    }
    return {{RESULT_ROW, stRow.uiNumber},
            {BATCH_ROOT, stRow.strRoot.empty() ? Json(nullptr) : Json(Latin1ToUtf8(stRow.strRoot))},
            {BATCH_DEVICE, Latin1ToUtf8(stRow.strDevice)},
            {RESULT_STATE, StateWord(stRow.enState)},
            {RESULT_MESSAGE, stRow.strMessage.empty() ? Json(nullptr) : Json(Latin1ToUtf8(stRow.strMessage))},
            {RESULT_LABELS, stLabels}};
}

ROW_FILE_S ParseResults(const std::string &strText, const std::string &strName)
{
    if (strText.empty() || strText[0] != '{') {
        return ParseRows(strText, strName);
    }
    // The labels stand in an object of their own; in a table they are columns like the others.
    std::string strFlat;
    for (size_t uiStart = 0; uiStart < strText.size();) {
        const size_t uiEnd = std::min(strText.find('\n', uiStart), strText.size());
        Json stLine = ParseJsonText<Json>(strText.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 1U;
        if (!stLine.is_object() || !stLine.contains(RESULT_LABELS) || !stLine[RESULT_LABELS].is_object()) {
            FailRefused(strName + ": " + NO_RESULTS);
        }
        const Json stLabels = stLine[RESULT_LABELS];
        stLine.erase(RESULT_LABELS);
        for (const auto &itLabel : stLabels.items()) {
            stLine[itLabel.key()] = itLabel.value();
        }
        strFlat += stLine.dump() + "\n";
    }
    ROW_FILE_S stFile = ParseRows(strFlat, strName);
    TakeBytes(stFile, strName);
    return stFile;
}
