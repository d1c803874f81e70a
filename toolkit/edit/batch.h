// SPDX-License-Identifier: Apache-2.0
// Many devices' labels from one table: every row is worked out and checked before the first is written, each
// row is written whole or not at all, and what is done is recorded, so that a batch that stopped goes on there.
#ifndef TOOLKIT_EDIT_BATCH_H
#define TOOLKIT_EDIT_BATCH_H

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/row_file.h"
#include "toolkit/controller/controller.h"
#include "toolkit/edit/label_write.h"

// Columns of a table that are no labels.
constexpr const char *BATCH_ROOT = "root";
constexpr const char *BATCH_DEVICE = "device";

// A label whose value is made for each row: "{SKU}-{counter:05}".
struct BATCH_TEMPLATE_S
{
    std::string strLabel;
    std::string strText;
};

struct BATCH_OPTIONS_S
{
    std::string strDevice; // of rows that name none
    std::vector<BATCH_TEMPLATE_S> vecTemplates;
    std::vector<std::string> vecScanned; // labels whose values are scanned, one after the other in each row
    unsigned uiCounter = 1;              // of the first row
    bool bForce = false;
    bool bDryRun = false;
    bool bKeepGoing = false;
};

enum class BatchState
{
    Open,
    Done, // by an earlier run
    Written,
    Unchanged,
    WouldWrite, // of a dry run
    Refused,    // by the checks: nothing was written
    Failed
};

struct BATCH_ROW_S
{
    size_t uiNumber = 0;  // in the table, from 1
    std::string strWhere; // "labels.csv:3"
    std::string strRoot;  // empty: the session's controller
    std::string strDevice;
    std::vector<std::pair<std::string, std::string>> vecValues; // label and value
    BatchState enState = BatchState::Open;
    std::string strMessage;                  // of a failure, or beside a success
    ErrorClass enClass = ErrorClass::Failed; // of a failure
};

struct BATCH_S
{
    std::vector<std::string> vecLabels; // every label that a row sets, in the table's order
    std::vector<BATCH_ROW_S> vecRows;

    size_t Count(BatchState enState) const;
};

// The rows with their values, but for scanned ones. Fails for a table that cannot be understood: a column that is
// neither a label nor used by a template, a template that names no column, a row without a device.
BATCH_S MakeBatch(const ROW_FILE_S &stTable, const std::string &strName, const BATCH_OPTIONS_S &stOptions);

// Asks for the values that are scanned, row by row; rows that are done are left out. fnScan gives a line, or
// nothing at the end of its input, which is a failure.
using SCAN_FN =
    std::function<std::optional<std::string>(const BATCH_ROW_S &stRow, const std::string &strLabel)>;
void ScanBatch(BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions, const SCAN_FN &fnScan);

// Fails at once with what is wrong with a value that was scanned.
void CheckScanned(const CONTROLLER_S &stController, const BATCH_ROW_S &stRow, const std::string &strLabel,
                  const std::string &strValue, const BATCH_OPTIONS_S &stOptions);

// Marks the rows that an earlier run has done, as its result lines tell. Fails where those are another batch's.
void SkipDone(BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions, const ROW_FILE_S &stResults,
              const std::string &strName);

// Checks every open row: names, values, placeholders, doubles among the rows and on all devices of the
// controllers, and that the write could be done. Writes nothing; a row that does not pass is Refused, with why.
void CheckBatch(const CONTROLLER_S &stController, BATCH_S &stBatch, const BATCH_OPTIONS_S &stOptions);

// Writes one open row; its state tells what came of it.
void WriteBatchRow(const CONTROLLER_S &stController, BATCH_ROW_S &stRow, const BATCH_OPTIONS_S &stOptions);

// A row's result: for CSV (the first line names the columns), and for JSON, one a line.
std::string BatchHeading(const BATCH_S &stBatch);
std::string BatchLine(const BATCH_S &stBatch, const BATCH_ROW_S &stRow);
Json BatchJson(const BATCH_ROW_S &stRow);
// The results of an earlier run, either way.
ROW_FILE_S ParseResults(const std::string &strText, const std::string &strName);

#endif
