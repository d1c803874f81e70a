// SPDX-License-Identifier: Apache-2.0
#include "terminal/manual.h"

#include "terminal/help.h"

namespace {

// A text as roff has it: hyphens are those that one types, and no line begins with a request.
std::string Roff(const std::string &strText)
{
    std::string strOut = (!strText.empty() && (strText[0] == '.' || strText[0] == '\'')) ? "\\&" : "";
    for (const char cChar : strText) {
        switch (cChar) {
        case '\\':
            strOut += "\\e";
            break;
        case '-':
            strOut += "\\-";
            break;
        case '\'':
            strOut += "\\(aq";
            break;
        case '~':
            strOut += "\\(ti";
            break;
        case '^':
            strOut += "\\(ha";
            break;
        default:
            strOut += cChar;
        }
    }
    return strOut;
}

std::string Upper(std::string strText)
{
    for (char &cChar : strText) {
        cChar = (cChar >= 'a' && cChar <= 'z') ? static_cast<char>(cChar - 'a' + 'A') : cChar;
    }
    return strText;
}

std::string Section(const std::string &strTitle)
{
    return ".SH " + Upper(strTitle) + "\n";
}

std::string Rows(const DOC_ROWS &vecRows)
{
    std::string strOut;
    for (const auto &[strLeft, strRight] : vecRows) {
        // A word of nothing but what follows it cannot stand alone.
        strOut += ".TP\n.B " + Roff(strLeft.substr(strLeft.find_first_not_of(' '))) + "\n" +
                  (strRight.empty() ? "\\&" : Roff(strRight)) + "\n";
    }
    return strOut;
}

std::string Options(const COMMAND_DOC_S &stDoc)
{
    DOC_ROWS vecRows;
    for (const bool bWords : {true, false}) {
        for (const OPTION_DOC_S &stOption : stDoc.listOptions) {
            if (stOption.bWord == bWords) {
                vecRows.emplace_back(OptionNames(stOption), OptionText(stOption));
            }
        }
    }
    return Rows(vecRows);
}

std::string Examples(const COMMAND_DOC_S &stDoc)
{
    std::string strOut;
    for (const std::string &strLine : ExampleLines(stDoc)) {
        const auto [strCommand, strWhat] = SplitExample(strLine);
        strOut += (strOut.empty() ? ".EX\n" : "") + Roff(strCommand) + "\n";
        strOut += strWhat.empty() ? "" : Roff("    # " + strWhat) + "\n";
    }
    return strOut.empty() ? "" : strOut + ".EE\n";
}

std::string Synopsis(const COMMAND_DOC_S &stDoc)
{
    return ".B " + Roff(stDoc.Synopsis()) + "\n";
}

// A command below the one that the page is about.
std::string Part(const COMMAND_DOC_S &stDoc)
{
    std::string strOut = ".SS " + Roff(stDoc.Synopsis()) + "\n" + Roff(stDoc.strWhat + ".") + "\n";
    strOut += Options(stDoc);
    for (const SECTION_DOC_S &stSection : stDoc.vecSections) {
        strOut += ".PP\n" +
                  (stSection.strText.empty() ? Roff(stSection.strTitle + ":") : Roff(stSection.strText)) +
                  "\n" + Rows(stSection.vecRows);
    }
    const std::string strExamples = Examples(stDoc);
    return strOut + (strExamples.empty() ? "" : ".PP\n" + strExamples);
}

std::string Commands(const COMMAND_DOC_S &stDoc)
{
    if (stDoc.CommandNames().empty()) {
        return "";
    }
    std::string strOut = Section("commands");
    for (const std::string &strGroup : stDoc.Groups()) {
        strOut += strGroup.empty() || stDoc.pstParent != nullptr ? "" : ".SS " + Roff(strGroup) + "\n";
        for (const COMMAND_DOC_S &stCommand : stDoc.listCommands) {
            if (!stCommand.bHidden && stCommand.strGroup == strGroup) {
                strOut += stDoc.pstParent == nullptr ? ".TP\n.BR " + Roff(ManualName(stCommand)) + " (1)\n" +
                                                           Roff(stCommand.strWhat) + "\n"
                                                     : Part(stCommand);
            }
        }
    }
    return strOut;
}

std::string SeeAlso(const COMMAND_DOC_S &stDoc)
{
    if (stDoc.pstParent != nullptr) {
        return Section("see also") +
               ".BR fructl (1)\ntells the options of all commands, exit codes and variables.\n";
    }
    std::string strOut;
    for (const std::string &strName : stDoc.CommandNames()) {
        strOut += (strOut.empty() ? ".BR " : " ,\n.BR ") + Roff("fructl-" + strName) + " (1)";
    }
    return Section("see also") + strOut + "\n";
}

} // namespace

std::string ManualName(const COMMAND_DOC_S &stDoc)
{
    return stDoc.pstParent == nullptr ? stDoc.strName : ManualName(*stDoc.pstParent) + "-" + stDoc.strName;
}

std::string ManualPage(const COMMAND_DOC_S &stDoc, const std::string &strDate, const std::string &strVersion)
{
    const std::string strName = ManualName(stDoc);
    std::string strOut = ".TH " + Upper(strName) + " 1 \"" + strDate + "\" \"" + strVersion + "\"\n";
    strOut += Section("name") + Roff(strName) + " \\- " + Roff(stDoc.strWhat) + "\n";
    strOut += Section("synopsis") + Synopsis(stDoc);
    strOut += Section("description") + Roff(stDoc.strWhat + (stDoc.pstParent == nullptr ? "" : ".")) + "\n";
    for (const SECTION_DOC_S &stSection : stDoc.vecSections) {
        strOut += stSection.strTitle.empty() ? ".PP\n" + Roff(stSection.strText) + "\n" : "";
    }
    strOut += Commands(stDoc) + Section("options") + Options(stDoc);
    for (const SECTION_DOC_S &stSection : stDoc.vecSections) {
        if (!stSection.strTitle.empty()) {
            strOut += Section(stSection.strTitle) +
                      (stSection.strText.empty() ? "" : Roff(stSection.strText) + "\n") +
                      Rows(stSection.vecRows);
        }
    }
    const std::string strExamples = Examples(stDoc);
    strOut += strExamples.empty() ? "" : Section("examples") + strExamples;
    return strOut + SeeAlso(stDoc);
}
