// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/row_file.h"

#include <algorithm>

#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"

namespace {

constexpr const char *BYTE_ORDER_MARK = "\xEF\xBB\xBF"; // spreadsheets put it in front
constexpr const char *BLANKS = " \t\r\n";

using CELL = std::optional<std::string>;

class CsvReader
{
  public:
    CsvReader(const std::string &strText, const std::string &strName)
        : m_strText(strText), m_strName(strName), m_cSeparator(SeparatorOf(strText))
    {}
    bool IsAtEnd() const
    {
        return m_uiAt >= m_strText.size();
    }
    ROW_S Line();

  private:
    static char SeparatorOf(const std::string &strText);
    CELL Cell();
    std::string Quoted();
    [[noreturn]] void Refuse(const char *pcWhy) const
    {
        FailRefused(m_strName + Format(":%zu: %s", m_uiLine, pcWhy));
    }

    const std::string &m_strText;
    const std::string &m_strName;
    const char m_cSeparator;
    size_t m_uiAt = 0;
    size_t m_uiLine = 1;
};

// The first one of the first line that stands outside quotes.
char CsvReader::SeparatorOf(const std::string &strText)
{
    bool bQuoted = false;
    for (const char cChar : strText) {
        bQuoted = bQuoted != (cChar == '"');
        if (!bQuoted && (cChar == ',' || cChar == ';' || cChar == '\t')) {
            return cChar;
        }
        if (!bQuoted && cChar == '\n') {
            break;
        }
    }
    return ',';
}

// Behind the opening quote, up to the closing one; a doubled quote is one.
std::string CsvReader::Quoted()
{
    std::string strCell;
    for (; m_uiAt < m_strText.size(); m_uiAt++) {
        const char cChar = m_strText[m_uiAt];
        const bool bDoubled = cChar == '"' && m_uiAt + 1U < m_strText.size() && m_strText[m_uiAt + 1U] == '"';
        if (cChar == '"' && !bDoubled) {
            m_uiAt++;
            return strCell;
        }
        m_uiAt += bDoubled ? 1U : 0U;
        m_uiLine += cChar == '\n' ? 1U : 0U;
        strCell += cChar;
    }
    Refuse("a quote is not closed");
}

CELL CsvReader::Cell()
{
    if (!IsAtEnd() && m_strText[m_uiAt] == '"') {
        m_uiAt++;
        const std::string strCell = Quoted();
        const bool bEnd = IsAtEnd() || m_strText[m_uiAt] == m_cSeparator || m_strText[m_uiAt] == '\r' ||
                          m_strText[m_uiAt] == '\n';
        if (!bEnd) {
            Refuse(
                "a text goes on behind its closing quote; accepted: quotes around the whole text, a quote in it doubled");
        }
        return strCell;
    }
    const char acEnds[] = {m_cSeparator, '\r', '\n', '\0'};
    const size_t uiEnd = std::min(m_strText.find_first_of(acEnds, m_uiAt), m_strText.size());
    const std::string strCell = m_strText.substr(m_uiAt, uiEnd - m_uiAt);
    m_uiAt = uiEnd;
    return strCell.empty() ? CELL() : CELL(strCell);
}

// Every cell of it; a line without anything is one cell that is not given.
ROW_S CsvReader::Line()
{
    ROW_S stRow;
    stRow.uiLine = m_uiLine;
    stRow.vecCells.push_back(Cell());
    while (!IsAtEnd() && m_strText[m_uiAt] == m_cSeparator) {
        m_uiAt++;
        stRow.vecCells.push_back(Cell());
    }
    while (!IsAtEnd() && m_strText[m_uiAt] == '\r') {
        m_uiAt++;
    }
    if (!IsAtEnd()) {
        m_uiAt++; // the line feed
        m_uiLine++;
    }
    return stRow;
}

ROW_FILE_S ParseCsv(const std::string &strText, const std::string &strName)
{
    CsvReader stReader(strText, strName);
    ROW_FILE_S stFile;
    while (!stReader.IsAtEnd()) {
        ROW_S stRow = stReader.Line();
        if (stRow.vecCells.size() == 1U && !stRow.vecCells[0].has_value()) {
            continue; // an empty line
        }
        if (stFile.vecColumns.empty()) {
            for (const CELL &optCell : stRow.vecCells) {
                stFile.vecColumns.push_back(optCell.value_or(""));
            }
            continue;
        }
        if (stRow.vecCells.size() > stFile.vecColumns.size()) {
            FailRefused(strName + Format(":%zu: %zu cells, but the first line names %s", stRow.uiLine,
                                         stRow.vecCells.size(),
                                         Count(stFile.vecColumns.size(), "column").c_str()));
        }
        stRow.vecCells.resize(stFile.vecColumns.size());
        stFile.vecRows.push_back(std::move(stRow));
    }
    return stFile;
}

void TakeObject(const Json &stObject, size_t uiLine, const std::string &strName, ROW_FILE_S &stFile)
{
    const std::string strWhere = strName + Format(":%zu: ", uiLine);
    if (!stObject.is_object()) {
        FailRefused(strWhere +
                    "not an object; accepted: an object for each row, its members the row's cells");
    }
    ROW_S stRow;
    stRow.uiLine = uiLine;
    stRow.vecCells.resize(stFile.vecColumns.size());
    for (const auto &itMember : stObject.items()) {
        const Json &stValue = itMember.value();
        // 2.10 would be read as 2.1, and what is meant by true is anybody's guess.
        if (!stValue.is_null() && !stValue.is_string() && !stValue.is_number_integer()) {
            FailRefused(strWhere + EscapeText(itMember.key()) + ": accepted: a text, a whole number or null");
        }
        const std::optional<size_t> optColumn = stFile.Column(itMember.key());
        if (!optColumn.has_value()) {
            stFile.vecColumns.push_back(itMember.key());
            stRow.vecCells.emplace_back();
        }
        stRow.vecCells[optColumn.value_or(stRow.vecCells.size() - 1U)] =
            stValue.is_null()     ? CELL()
            : stValue.is_string() ? CELL(stValue.get<std::string>())
                                  : CELL(stValue.dump());
    }
    stFile.vecRows.push_back(std::move(stRow));
}

ROW_FILE_S ParseJsonRows(const std::string &strText, const std::string &strName)
{
    ROW_FILE_S stFile;
    const Json stWhole = ParseJsonText<Json>(strText);
    if (stWhole.is_array()) {
        for (size_t i = 0; i < stWhole.size(); i++) {
            TakeObject(stWhole[i], i + 1U, strName, stFile);
        }
    } else {
        size_t uiLine = 0;
        for (size_t uiStart = 0; uiStart < strText.size();) {
            const size_t uiEnd = std::min(strText.find('\n', uiStart), strText.size());
            const std::string strLine = strText.substr(uiStart, uiEnd - uiStart);
            uiStart = uiEnd + 1U;
            uiLine++;
            if (strLine.find_first_not_of(BLANKS) == std::string::npos) {
                continue;
            }
            const Json stObject = ParseJsonText<Json>(strLine);
            if (stObject.is_discarded()) {
                FailRefused(
                    strName +
                    Format(":%zu: not JSON; accepted: an array of objects, or an object a line", uiLine));
            }
            TakeObject(stObject, uiLine, strName, stFile);
        }
    }
    for (ROW_S &stRow : stFile.vecRows) {
        stRow.vecCells.resize(stFile.vecColumns.size());
    }
    return stFile;
}

} // namespace

std::optional<size_t> ROW_FILE_S::Column(const std::string &strName) const
{
    const auto itColumn = std::find(vecColumns.begin(), vecColumns.end(), strName);
    return itColumn == vecColumns.end()
               ? std::nullopt
               : std::optional<size_t>(static_cast<size_t>(itColumn - vecColumns.begin()));
}

ROW_FILE_S ParseRows(const std::string &strText, const std::string &strName)
{
    const bool bMark = strText.rfind(BYTE_ORDER_MARK, 0) == 0;
    const std::string strBody = bMark ? strText.substr(3U) : strText;
    const size_t uiFirst = strBody.find_first_not_of(BLANKS);
    const bool bJson = uiFirst != std::string::npos && (strBody[uiFirst] == '[' || strBody[uiFirst] == '{');
    const ROW_FILE_S stFile = bJson ? ParseJsonRows(strBody, strName) : ParseCsv(strBody, strName);
    for (const std::string &strColumn : stFile.vecColumns) {
        if (std::count(stFile.vecColumns.begin(), stFile.vecColumns.end(), strColumn) > 1) {
            FailRefused(strName + ": the column '" + EscapeText(strColumn) +
                        "' stands there twice; accepted: each column once");
        }
    }
    return stFile;
}

std::string CsvCell(const std::optional<std::string> &optText)
{
    if (!optText.has_value()) {
        return "";
    }
    if (!optText->empty() && optText->find_first_of(",;\t\"\r\n") == std::string::npos) {
        return *optText;
    }
    std::string strCell = "\"";
    for (const char cChar : *optText) {
        strCell += cChar == '"' ? "\"\"" : std::string(1U, cChar);
    }
    return strCell + "\"";
}
