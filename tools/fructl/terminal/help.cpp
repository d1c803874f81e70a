// SPDX-License-Identifier: Apache-2.0
#include "terminal/help.h"

#include <algorithm>

#include "terminal/console.h"
#include "terminal/wrap.h"

namespace {

constexpr size_t WIDTH_UNKNOWN = 100U; // where the output is no terminal
constexpr size_t WIDTH_MIN = 30U;
constexpr size_t WIDTH_MAX = 110U; // longer lines are hard to read
constexpr size_t LEFT_MAX = 30U;   // of the left column
constexpr size_t RIGHT_MIN = 24U;  // what the right one needs to stand beside it
constexpr size_t INDENT = 2U;

size_t HelpWidth()
{
    const size_t uiWidth = TerminalWidth();
    return uiWidth == 0U ? WIDTH_UNKNOWN : std::clamp(uiWidth, WIDTH_MIN, WIDTH_MAX);
}

std::string Heading(const std::string &strText)
{
    return Paint(Colour::Bold, strText + ":") + "\n";
}

std::string Paragraph(const std::string &strText, size_t uiIndent, size_t uiHang)
{
    std::string strOut;
    for (const std::string &strLine : WrapText(strText, HelpWidth() - uiHang)) {
        strOut += std::string(strOut.empty() ? uiIndent : uiHang, ' ') + strLine + "\n";
    }
    return strOut;
}

// Two columns; what is too long for the left one, or leaves the right one no room, stands above it.
std::string Rows(const DOC_ROWS &vecRows)
{
    size_t uiLeft = 0;
    for (const auto &[strLeft, strRight] : vecRows) {
        uiLeft = std::max(uiLeft, strLeft.size() <= LEFT_MAX ? strLeft.size() : 0U);
    }
    const bool bBeside = HelpWidth() >= INDENT + uiLeft + 2U + RIGHT_MIN;
    const size_t uiRight = bBeside ? INDENT + uiLeft + 2U : 3U * INDENT;
    std::string strOut;
    for (const auto &[strLeft, strRight] : vecRows) {
        std::string strLine = std::string(INDENT, ' ') + strLeft;
        if (strRight.empty()) {
            strOut += strLine + "\n";
            continue;
        }
        if (!bBeside || strLeft.size() > uiLeft) {
            strOut += strLine + "\n";
            strLine.clear();
        }
        strLine.resize(uiRight, ' ');
        strOut += strLine + Paragraph(strRight, 0U, uiRight);
    }
    return strOut;
}

std::string OptionRows(const COMMAND_DOC_S &stDoc, bool bWords)
{
    DOC_ROWS vecRows;
    for (const OPTION_DOC_S &stOption : stDoc.listOptions) {
        if (stOption.bWord == bWords) {
            vecRows.emplace_back(OptionNames(stOption), OptionText(stOption));
        }
    }
    return vecRows.empty() ? "" : "\n" + Heading(bWords ? "Words" : "Options") + Rows(vecRows);
}

std::string Commands(const COMMAND_DOC_S &stDoc)
{
    std::string strOut;
    for (const std::string &strGroup : stDoc.Groups()) {
        DOC_ROWS vecRows;
        for (const COMMAND_DOC_S &stCommand : stDoc.listCommands) {
            if (!stCommand.bHidden && stCommand.strGroup == strGroup) {
                vecRows.emplace_back(stCommand.strName, stCommand.strWhat);
            }
        }
        strOut += "\n" + Heading(strGroup.empty() ? "Commands" : strGroup) + Rows(vecRows);
    }
    return strOut;
}

// Commands as one copies them: never broken.
std::string Examples(const COMMAND_DOC_S &stDoc)
{
    DOC_ROWS vecRows;
    bool bExplained = false;
    for (const std::string &strLine : ExampleLines(stDoc)) {
        vecRows.push_back(SplitExample(strLine));
        bExplained = bExplained || !vecRows.back().second.empty();
    }
    if (vecRows.empty()) {
        return "";
    }
    std::string strOut = "\n" + Heading("Examples");
    size_t uiLeft = 0;
    for (const auto &[strCommand, strWhat] : vecRows) {
        uiLeft = std::max(uiLeft, strCommand.size());
    }
    for (const auto &[strCommand, strWhat] : vecRows) {
        const size_t uiColumn = INDENT + uiLeft + 2U;
        const bool bBeside = bExplained && uiColumn + strWhat.size() <= HelpWidth();
        strOut += "  " + strCommand;
        strOut += strWhat.empty() ? "\n"
                  : bBeside       ? std::string(uiLeft + 2U - strCommand.size(), ' ') + strWhat + "\n"
                                  : "\n" + Paragraph(strWhat, 3U * INDENT, 3U * INDENT);
    }
    return strOut;
}

} // namespace

std::pair<std::string, std::string> SplitExample(const std::string &strLine)
{
    const size_t uiGap = strLine.find("  ");
    if (uiGap == std::string::npos) {
        return {strLine, ""};
    }
    return {strLine.substr(0, uiGap), strLine.substr(strLine.find_first_not_of(' ', uiGap))};
}

std::vector<std::string> ExampleLines(const COMMAND_DOC_S &stDoc)
{
    std::vector<std::string> vecLines;
    for (size_t i = 0; i < stDoc.strExamples.size();) {
        const size_t uiEnd = std::min(stDoc.strExamples.find('\n', i), stDoc.strExamples.size());
        vecLines.push_back(stDoc.strExamples.substr(i, uiEnd - i));
        i = uiEnd + 1U;
    }
    return vecLines;
}

std::string HelpText(const COMMAND_DOC_S &stDoc)
{
    std::string strOut = Paragraph(stDoc.strWhat, 0U, 0U) + "\n";
    strOut += Paragraph(Paint(Colour::Bold, "Usage:") + " " + stDoc.Synopsis(), 0U, 4U);
    strOut += Commands(stDoc) + OptionRows(stDoc, true) + OptionRows(stDoc, false);
    for (const SECTION_DOC_S &stSection : stDoc.vecSections) {
        strOut += "\n" + (stSection.strTitle.empty() ? "" : Heading(stSection.strTitle));
        strOut += stSection.strText.empty() ? "" : Paragraph(stSection.strText, 0U, 0U);
        strOut += Rows(stSection.vecRows);
    }
    strOut += Examples(stDoc);
    if (stDoc.pstParent != nullptr) {
        strOut +=
            "\n" +
            Paragraph("'fructl --help' tells the options of all commands (--root, --json, --color and more).",
                      0U, 0U);
    }
    return strOut;
}
