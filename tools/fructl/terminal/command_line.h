// SPDX-License-Identifier: Apache-2.0
// The command line: commands, their options, and what is run. The one place that knows the parser's library,
// whose header is most of a command's build.
#ifndef FRUCTL_TERMINAL_COMMAND_LINE_H
#define FRUCTL_TERMINAL_COMMAND_LINE_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "terminal/command_doc.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

// An option, or a word that has its place. The variable that it fills lives as long as the command line.
class Option
{
  public:
    explicit Option(CLI::Option *pstOption = nullptr, OPTION_DOC_S *pstDoc = nullptr)
        : m_pstOption(pstOption), m_pstDoc(pstDoc)
    {}

    // What stands for its value in the help; a shell completes devices, files and folders by it.
    Option &Placeholder(const std::string &strText);
    Option &Required();
    // The help tells the value that its variable has now.
    Option &ShowDefault();
    // For a list: how many words it takes.
    Option &Words(int iMin, int iMax);
    // For a list: one word each time that the option is named.
    Option &Repeated();
    Option &OneOf(const std::vector<std::string> &vecAccepted);
    Option &UpTo(unsigned uiMax);
    // What a shell completes it by, where its placeholder does not tell.
    Option &CompletedBy(Completes enCompletes);

    // On the command line; also with an empty value.
    bool IsGiven() const;

  private:
    CLI::Option *m_pstOption;
    OPTION_DOC_S *m_pstDoc;
};

// A command, or one that groups commands. A handle: copies are the same command.
class Command
{
  public:
    Command(CLI::App *pstApp, COMMAND_DOC_S *pstDoc, std::function<void()> *pfnChosen)
        : m_pstApp(pstApp), m_pstDoc(pstDoc), m_pfnChosen(pfnChosen)
    {}

    // A command of this one, with its description and, under its options, examples: one a line, each
    // beginning with "fructl ".
    Command Add(const char *pcName, const char *pcWhat, const char *pcExamples) const;
    // A name without dashes is a word's.
    Option AddOption(const char *pcName, std::string &strValue, const std::string &strWhat) const;
    Option AddOption(const char *pcName, std::vector<std::string> &vecValues,
                     const std::string &strWhat) const;
    Option AddOption(const char *pcName, unsigned &uiValue, const std::string &strWhat) const;
    Option AddFlag(const char *pcName, bool &bValue, const std::string &strWhat) const;
    // More to tell, behind its options.
    void AddSection(const std::string &strTitle, const std::string &strText,
                    const DOC_ROWS &vecRows = {}) const;
    // The commands added to this one from now on stand in the help under this heading.
    void Group(const char *pcHeading) const;
    // Not in the help, nor in what a shell offers.
    void Hide() const;
    // This command groups commands: one of them must be named.
    void RequireCommand() const;
    // What the command does; run by the caller of CommandLine::Parse.
    void Run(std::function<void()> fnRun) const;

    // What has been told of it; lives as long as the command line.
    const COMMAND_DOC_S &Doc() const
    {
        return *m_pstDoc;
    }

  private:
    Option Added(CLI::Option *pstOption, const char *pcName, const std::string &strWhat,
                 const char *pcPlaceholder) const;

    CLI::App *m_pstApp;
    COMMAND_DOC_S *m_pstDoc;
    std::function<void()> *m_pfnChosen;
};

class CommandLine
{
  public:
    CommandLine(const char *pcName, const char *pcWhat, const char *pcExamples,
                const std::string &strVersion);
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    // Under which commands and the options of all commands are added.
    Command Top();
    // The chosen command's action; none: help or version was printed instead. A line that cannot be
    // understood is an Error of the class Usage, which names what is accepted.
    std::function<void()> Parse(int iArgc, char **ppcArgv);

  private:
    std::unique_ptr<CLI::App> m_pstApp;
    COMMAND_DOC_S m_stDoc;
    std::string m_strVersion;
    std::function<void()> m_fnChosen;
};

#endif
