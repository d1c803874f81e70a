// SPDX-License-Identifier: Apache-2.0
#include "terminal/command_line.h"

#include <CLI/CLI.hpp>

#include "terminal/console.h"
#include "terminal/help.h"
#include "toolkit/base/error.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"

namespace {

// The command that the line had reached.
const COMMAND_DOC_S &Reached(const CLI::App &stApp, const COMMAND_DOC_S &stTop)
{
    const COMMAND_DOC_S *pstDoc = &stTop;
    const CLI::App *pstApp = &stApp;
    while (!pstApp->get_subcommands().empty()) {
        pstApp = pstApp->get_subcommands().front();
        const COMMAND_DOC_S *pstNext = pstDoc->Find(pstApp->get_name());
        if (pstNext == nullptr) {
            break;
        }
        pstDoc = pstNext;
    }
    return *pstDoc;
}

std::vector<std::string> OptionNamesOf(const COMMAND_DOC_S &stDoc)
{
    std::vector<std::string> vecNames;
    for (const OPTION_DOC_S *pstOption : stDoc.AllOptions()) {
        // Of one letter there is nothing to guess.
        vecNames.push_back(pstOption->vecNames.back());
    }
    return vecNames;
}

// What was wrong with the command line, and where to read what is right.
Error UsageError(const CLI::App &stApp, const COMMAND_DOC_S &stTop, const CLI::ParseError &stError)
{
    const COMMAND_DOC_S &stDoc = Reached(stApp, stTop);
    const std::vector<std::string> vecRest = stApp.remaining(true);
    std::vector<std::string> vecNames;
    std::string strWhat = stError.what();
    if (dynamic_cast<const CLI::RequiredError *>(&stError) != nullptr && !stDoc.CommandNames().empty()) {
        vecNames = stDoc.CommandNames();
        strWhat = "no command is named";
        for (const std::string &strWord : vecRest) {
            if (strWord.empty() || strWord[0] != '-') {
                strWhat = "there is no command '" + EscapeText(strWord) + "'" + DidYouMean(strWord, vecNames);
                break;
            }
        }
        strWhat += "; accepted: " + Join(vecNames, ", ");
    } else if (dynamic_cast<const CLI::ExtrasError *>(&stError) != nullptr && !vecRest.empty() &&
               vecRest.front()[0] == '-') {
        const std::string strName = vecRest.front().substr(0, vecRest.front().find('='));
        strWhat = "there is no option " + EscapeText(strName) + DidYouMean(strName, OptionNamesOf(stDoc));
    }
    return {ErrorClass::Usage, strWhat + "; '" + stDoc.Path() + " --help' tells more", vecNames};
}

// By what stands for a value in the help.
Completes CompletesOf(const std::string &strPlaceholder)
{
    const bool bDevice = strPlaceholder.find("DEVICE") != std::string::npos;
    const bool bFile = strPlaceholder.find("FILE") != std::string::npos;
    return bDevice && bFile                                     ? Completes::DevicesAndFiles
           : bDevice                                            ? Completes::Devices
           : bFile                                              ? Completes::Files
           : strPlaceholder.find("DIR") != std::string::npos    ? Completes::Directories
           : strPlaceholder.find("FOLDER") != std::string::npos ? Completes::Directories
                                                                : Completes::Nothing;
}

std::vector<std::string> NamesOf(const std::string &strNames)
{
    std::vector<std::string> vecNames;
    for (size_t i = 0; i <= strNames.size();) {
        const size_t uiComma = std::min(strNames.find(',', i), strNames.size());
        vecNames.push_back(strNames.substr(i, uiComma - i));
        i = uiComma + 1U;
    }
    return vecNames;
}

} // namespace

Option &Option::Placeholder(const std::string &strText)
{
    m_pstDoc->strPlaceholder = strText;
    m_pstDoc->enCompletes = CompletesOf(strText);
    return *this;
}

Option &Option::Required()
{
    m_pstOption->required();
    m_pstDoc->bRequired = true;
    return *this;
}

Option &Option::ShowDefault()
{
    m_pstOption->capture_default_str();
    m_pstDoc->strDefault = m_pstOption->get_default_str();
    return *this;
}

Option &Option::Words(int iMin, int iMax)
{
    m_pstOption->expected(iMin, iMax);
    return *this;
}

Option &Option::Repeated()
{
    m_pstOption->allow_extra_args(false);
    return *this;
}

Option &Option::OneOf(const std::vector<std::string> &vecAccepted)
{
    m_pstDoc->vecAccepted = vecAccepted;
    const std::string strName = m_pstDoc->vecNames.back();
    const auto fnCheck = [vecAccepted](std::string &strValue) {
        const bool bAccepted =
            std::find(vecAccepted.begin(), vecAccepted.end(), strValue) != vecAccepted.end();
        return bAccepted ? std::string()
                         : "'" + EscapeText(strValue) + "' is refused" + DidYouMean(strValue, vecAccepted) +
                               "; accepted: " + Join(vecAccepted, ", ");
    };
    m_pstOption->check(CLI::Validator(fnCheck, "", strName));
    return *this;
}

Option &Option::UpTo(unsigned uiMax)
{
    m_pstOption->check(CLI::Range(0U, uiMax));
    return *this;
}

Option &Option::CompletedBy(Completes enCompletes)
{
    m_pstDoc->enCompletes = enCompletes;
    return *this;
}

bool Option::IsGiven() const
{
    return m_pstOption != nullptr && m_pstOption->count() != 0U;
}

Command Command::Add(const char *pcName, const char *pcWhat, const char *pcExamples) const
{
    CLI::App *pstApp = m_pstApp->add_subcommand(pcName, pcWhat);
    // Lets --json and its like stand behind the command as well.
    pstApp->fallthrough();
    COMMAND_DOC_S stDoc;
    stDoc.strName = pcName;
    stDoc.strWhat = pcWhat;
    stDoc.strExamples = pcExamples;
    stDoc.strGroup = m_pstDoc->strNextGroup;
    stDoc.pstParent = m_pstDoc;
    stDoc.listOptions.push_back({{"-h", "--help"}, "", "print this help and exit"});
    m_pstDoc->listCommands.push_back(std::move(stDoc));
    return {pstApp, &m_pstDoc->listCommands.back(), m_pfnChosen};
}

Option Command::Added(CLI::Option *pstOption, const char *pcName, const std::string &strWhat,
                      const char *pcPlaceholder) const
{
    const std::vector<std::string> vecNames = NamesOf(pcName);
    OPTION_DOC_S stDoc = {vecNames, pcPlaceholder, strWhat};
    stDoc.bWord = vecNames.front()[0] != '-';
    if (stDoc.bWord) {
        stDoc.strPlaceholder = vecNames.front();
        stDoc.enCompletes = CompletesOf(vecNames.front());
    }
    m_pstDoc->listOptions.push_back(std::move(stDoc));
    return Option(pstOption, &m_pstDoc->listOptions.back());
}

Option Command::AddOption(const char *pcName, std::string &strValue, const std::string &strWhat) const
{
    return Added(m_pstApp->add_option(pcName, strValue, strWhat), pcName, strWhat, "TEXT");
}

Option Command::AddOption(const char *pcName, std::vector<std::string> &vecValues,
                          const std::string &strWhat) const
{
    const Option stOption = Added(m_pstApp->add_option(pcName, vecValues, strWhat), pcName, strWhat, "TEXT");
    m_pstDoc->listOptions.back().bList = true;
    return stOption;
}

Option Command::AddOption(const char *pcName, unsigned &uiValue, const std::string &strWhat) const
{
    return Added(m_pstApp->add_option(pcName, uiValue, strWhat), pcName, strWhat, "N");
}

Option Command::AddFlag(const char *pcName, bool &bValue, const std::string &strWhat) const
{
    return Added(m_pstApp->add_flag(pcName, bValue, strWhat), pcName, strWhat, "");
}

void Command::AddSection(const std::string &strTitle, const std::string &strText,
                         const DOC_ROWS &vecRows) const
{
    m_pstDoc->vecSections.push_back({strTitle, strText, vecRows});
}

void Command::Group(const char *pcHeading) const
{
    m_pstDoc->strNextGroup = pcHeading;
}

void Command::Hide() const
{
    m_pstDoc->bHidden = true;
}

void Command::RequireCommand() const
{
    m_pstApp->require_subcommand(1);
}

void Command::Run(std::function<void()> fnRun) const
{
    m_pstApp->callback([pfnChosen = m_pfnChosen, fnRun = std::move(fnRun)] { *pfnChosen = fnRun; });
}

CommandLine::CommandLine(const char *pcName, const char *pcWhat, const char *pcExamples,
                         const std::string &strVersion)
    : m_pstApp(std::make_unique<CLI::App>(pcWhat, pcName)), m_strVersion(strVersion)
{
    m_stDoc.strName = pcName;
    m_stDoc.strWhat = pcWhat;
    m_stDoc.strExamples = pcExamples;
    m_stDoc.listOptions.push_back({{"-h", "--help"}, "", "print this help and exit"});
    m_stDoc.listOptions.push_back({{"-V", "--version"}, "", "print the version and exit"});
    m_pstApp->set_version_flag("-V,--version", strVersion);
    m_pstApp->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

Command CommandLine::Top()
{
    return {m_pstApp.get(), &m_stDoc, &m_fnChosen};
}

std::function<void()> CommandLine::Parse(int iArgc, char **ppcArgv)
{
    try {
        m_pstApp->parse(iArgc, ppcArgv);
        return m_fnChosen;
    } catch (const CLI::CallForHelp &) {
        Print(HelpText(Reached(*m_pstApp, m_stDoc)));
        return nullptr;
    } catch (const CLI::CallForVersion &) {
        Print(m_strVersion + "\n");
        return nullptr;
    } catch (const CLI::ParseError &stError) {
        throw UsageError(*m_pstApp, m_stDoc, stError);
    }
}
