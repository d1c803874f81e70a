// SPDX-License-Identifier: Apache-2.0
// Tables of texts that people and programs hand over: CSV, an array of JSON objects, or JSON objects one a line.
#ifndef TOOLKIT_BASE_ROW_FILE_H
#define TOOLKIT_BASE_ROW_FILE_H

#include <optional>
#include <string>
#include <vector>

struct ROW_S
{
    size_t uiLine = 0; // where it begins in the file, from 1; in a JSON array its number
    std::vector<std::optional<std::string>> vecCells; // one for each column; nothing: not given
};

struct ROW_FILE_S
{
    std::vector<std::string> vecColumns;
    std::vector<ROW_S> vecRows;

    std::optional<size_t> Column(const std::string &strName) const;
};

// What begins with '[' or '{' is JSON; its whole numbers are taken as they are written, other numbers are refused
// (2.10 is 2.1 there), null is not given. Anything else is CSV: the first line names the columns, commas, semicolons or tabs part them (whichever comes first),
// texts may stand in double quotes. An empty cell is not given, and "" is an empty text. Fails with strName and
// the line.
ROW_FILE_S ParseRows(const std::string &strText, const std::string &strName);

// A cell as CSV has it: in quotes where it must be.
std::string CsvCell(const std::optional<std::string> &optText);

#endif
