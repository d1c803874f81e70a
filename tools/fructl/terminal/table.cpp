// SPDX-License-Identifier: Apache-2.0
// Tables that fit the terminal.
#include <algorithm>
#include <numeric>

#include "terminal/console.h"
#include "terminal/wrap.h"

namespace {

constexpr size_t GAP = 2U;

size_t LongestWord(const std::string &strText)
{
    size_t uiLongest = 0;
    for (size_t i = 0; i <= strText.size();) {
        const size_t uiEnd = std::min(strText.find(' ', i), strText.size());
        uiLongest = std::max(uiLongest, DisplayWidth(strText.substr(i, uiEnd - i)));
        i = uiEnd + 1U;
    }
    return uiLongest;
}

size_t Total(const std::vector<size_t> &vecWidths, size_t uiGap)
{
    return std::accumulate(vecWidths.begin(), vecWidths.end(), uiGap * (vecWidths.size() - 1U));
}

// Takes from the widest columns that can give until the line fits; false where they cannot give enough.
bool Narrow(std::vector<size_t> &vecWidths, const std::vector<size_t> &vecLeast, size_t uiGap, size_t uiWidth)
{
    while (Total(vecWidths, uiGap) > uiWidth) {
        size_t uiWidest = vecWidths.size();
        for (size_t i = 0; i < vecWidths.size(); i++) {
            if (vecWidths[i] > vecLeast[i] &&
                (uiWidest == vecWidths.size() || vecWidths[i] > vecWidths[uiWidest])) {
                uiWidest = i;
            }
        }
        if (uiWidest == vecWidths.size()) {
            return false;
        }
        vecWidths[uiWidest]--;
    }
    return true;
}

} // namespace

Table::Table(const std::vector<const char *> &vecHeadings)
{
    std::vector<std::string> vecCells;
    for (const char *pcHeading : vecHeadings) {
        const bool bRight = pcHeading[0] == '>';
        m_vecRight.push_back(bRight);
        vecCells.emplace_back(bRight ? pcHeading + 1 : pcHeading);
    }
    Row(vecCells, std::vector<Colour>(vecCells.size(), Colour::Bold));
}

void Table::Row(std::vector<std::string> vecCells, std::vector<Colour> vecColours)
{
    vecCells.resize(m_vecRight.size());
    vecColours.resize(m_vecRight.size(), Colour::None);
    m_vecRows.push_back({std::move(vecCells), std::move(vecColours)});
}

std::vector<size_t> Table::Widths() const
{
    std::vector<size_t> vecWidths(m_vecRight.size(), 0U);
    for (const ROW_S &stRow : m_vecRows) {
        for (size_t i = 0; i < vecWidths.size(); i++) {
            vecWidths[i] = std::max(vecWidths[i], DisplayWidth(stRow.vecCells[i]));
        }
    }
    return vecWidths;
}

std::string Table::LinesOf(const ROW_S &stRow, const std::vector<size_t> &vecWidths, size_t uiGap) const
{
    std::vector<std::vector<std::string>> vecCells;
    size_t uiLines = 0;
    for (size_t i = 0; i < vecWidths.size(); i++) {
        // A column without anything in it has no width to wrap to.
        vecCells.push_back(WrapText(stRow.vecCells[i], std::max<size_t>(1U, vecWidths[i])));
        uiLines = std::max(uiLines, vecCells.back().size());
    }
    std::string strOut;
    for (size_t uiLine = 0; uiLine < uiLines; uiLine++) {
        std::string strLine;
        for (size_t i = 0; i < vecWidths.size(); i++) {
            const std::string strText = uiLine < vecCells[i].size() ? vecCells[i][uiLine] : "";
            const std::string strPad(vecWidths[i] - std::min(vecWidths[i], DisplayWidth(strText)), ' ');
            const std::string strCell = Paint(stRow.vecColours[i], strText);
            strLine += std::string(i == 0U ? 0U : uiGap, ' ');
            strLine += m_vecRight[i] ? strPad + strCell : strCell + strPad;
        }
        strLine.erase(strLine.find_last_not_of(' ') + 1U);
        strOut += strLine + "\n";
    }
    return strOut;
}

// A row a block: each heading with its cell beside it.
std::string Table::Blocks() const
{
    size_t uiLeft = 0;
    for (const std::string &strHeading : m_vecRows.front().vecCells) {
        uiLeft = std::max(uiLeft, DisplayWidth(strHeading));
    }
    std::string strOut;
    for (size_t uiRow = 1U; uiRow < m_vecRows.size(); uiRow++) {
        strOut += uiRow == 1U ? "" : "\n";
        for (size_t i = 0; i < m_vecRight.size(); i++) {
            const std::string &strHeading = m_vecRows.front().vecCells[i];
            const std::string strPad(uiLeft - DisplayWidth(strHeading), ' ');
            const std::string &strCell = m_vecRows[uiRow].vecCells[i];
            strOut += Paint(Colour::Bold, strHeading) +
                      (strCell.empty() ? ""
                                       : strPad + std::string(GAP, ' ') +
                                             Paint(m_vecRows[uiRow].vecColours[i], strCell)) +
                      "\n";
        }
    }
    return strOut;
}

std::string Table::Text() const
{
    const size_t uiWidth = TerminalWidth();
    std::vector<size_t> vecLeast(m_vecRight.size(), 0U);
    for (const ROW_S &stRow : m_vecRows) {
        for (size_t i = 0; i < vecLeast.size(); i++) {
            vecLeast[i] = std::max(vecLeast[i], LongestWord(stRow.vecCells[i]));
        }
    }
    std::vector<size_t> vecWidths = Widths();
    size_t uiGap = GAP;
    if (uiWidth != 0U && Total(vecWidths, uiGap) > uiWidth && Total(vecWidths, uiGap - 1U) <= uiWidth) {
        uiGap--;
    } else if (uiWidth != 0U && !Narrow(vecWidths, vecLeast, uiGap, uiWidth)) {
        uiGap--;
        if (!Narrow(vecWidths, vecLeast, uiGap, uiWidth)) {
            return Blocks();
        }
    }
    std::string strOut;
    for (const ROW_S &stRow : m_vecRows) {
        strOut += LinesOf(stRow, vecWidths, uiGap);
    }
    return strOut;
}
