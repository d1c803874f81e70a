// SPDX-License-Identifier: Apache-2.0
#include "terminal/command_line.h"

#include <CLI/CLI.hpp>

#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

// Of the options' column in the help.
constexpr size_t COLUMN_WIDTH = 34U;

std::string ExamplesText(const char *pcExamples)
{
    std::string strFooter = "Examples:\n  ";
    for (const char *pcChar = pcExamples; *pcChar != '\0'; pcChar++) {
        strFooter += *pcChar;
        strFooter += (*pcChar == '\n') ? "  " : "";
    }
    return strFooter + "\n";
}

// What was wrong with the command line, and where to read what is right.
Error UsageError(const CLI::App &stApp, const CLI::ParseError &stError)
{
    std::vector<std::string> vecNames;
    std::string strName = stApp.get_name();
    const CLI::App *pstApp = &stApp;
    while (!pstApp->get_subcommands().empty()) {
        pstApp = pstApp->get_subcommands().front();
        strName += " " + pstApp->get_name();
    }
    std::string strWhat = stError.what();
    if (dynamic_cast<const CLI::RequiredError *>(&stError) != nullptr &&
        pstApp->get_require_subcommand_min() > 0U) {
        for (const CLI::App *pstCommand : pstApp->get_subcommands([](const CLI::App *) { return true; })) {
            vecNames.push_back(pstCommand->get_name());
        }
        const std::vector<std::string> vecRest = stApp.remaining(true);
        strWhat = vecRest.empty() ? "no command is named"
                                  : "there is no command '" + EscapeText(vecRest.front()) + "'";
        strWhat += "; accepted: " + Join(vecNames, ", ");
    }
    return {ErrorClass::Usage, strWhat + "; '" + strName + " --help' tells more", vecNames};
}

} // namespace

Option &Option::Placeholder(const std::string &strText)
{
    m_pstOption->type_name(strText);
    return *this;
}

Option &Option::Required()
{
    m_pstOption->required();
    return *this;
}

Option &Option::ShowDefault()
{
    m_pstOption->capture_default_str();
    return *this;
}

Option &Option::Words(int iMin, int iMax)
{
    m_pstOption->expected(iMin, iMax);
    return *this;
}

Option &Option::OneOf(const std::vector<std::string> &vecAccepted)
{
    m_pstOption->check(CLI::IsMember(vecAccepted));
    return *this;
}

Option &Option::UpTo(unsigned uiMax)
{
    m_pstOption->check(CLI::Range(0U, uiMax));
    return *this;
}

bool Option::IsGiven() const
{
    return m_pstOption != nullptr && m_pstOption->count() != 0U;
}

Command Command::Add(const char *pcName, const char *pcWhat, const char *pcExamples) const
{
    CLI::App *pstCommand = m_pstApp->add_subcommand(pcName, pcWhat);
    pstCommand->footer(ExamplesText(pcExamples));
    // Lets --json and its like stand behind the command as well.
    pstCommand->fallthrough();
    return Command(pstCommand, m_pfnChosen);
}

Option Command::AddOption(const char *pcName, std::string &strValue, const std::string &strWhat) const
{
    return Option(m_pstApp->add_option(pcName, strValue, strWhat));
}

Option Command::AddOption(const char *pcName, std::vector<std::string> &vecValues,
                          const std::string &strWhat) const
{
    return Option(m_pstApp->add_option(pcName, vecValues, strWhat));
}

Option Command::AddOption(const char *pcName, unsigned &uiValue, const std::string &strWhat) const
{
    return Option(m_pstApp->add_option(pcName, uiValue, strWhat));
}

Option Command::AddFlag(const char *pcName, bool &bValue, const std::string &strWhat) const
{
    return Option(m_pstApp->add_flag(pcName, bValue, strWhat));
}

void Command::RequireCommand() const
{
    m_pstApp->require_subcommand(1);
}

void Command::Run(std::function<void()> fnRun) const
{
    m_pstApp->callback([pfnChosen = m_pfnChosen, fnRun = std::move(fnRun)] { *pfnChosen = fnRun; });
}

CommandLine::CommandLine(const char *pcName, const char *pcWhat, const std::string &strFooter,
                         const std::string &strVersion)
    : m_pstApp(std::make_unique<CLI::App>(pcWhat, pcName))
{
    m_pstApp->set_version_flag("--version", strVersion);
    m_pstApp->require_subcommand(1);
    m_pstApp->footer(strFooter);
    m_pstApp->get_formatter()->column_width(COLUMN_WIDTH);
    m_pstApp->failure_message([](const CLI::App *, const CLI::Error &) { return std::string(); });
}

CommandLine::~CommandLine() = default;

Command CommandLine::Top()
{
    return Command(m_pstApp.get(), &m_fnChosen);
}

std::function<void()> CommandLine::Parse(int iArgc, char **ppcArgv)
{
    try {
        m_pstApp->parse(iArgc, ppcArgv);
        return m_fnChosen;
    } catch (const CLI::ParseError &stError) {
        if (stError.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            m_pstApp->exit(stError); // prints it
            return nullptr;
        }
        throw UsageError(*m_pstApp, stError);
    }
}
