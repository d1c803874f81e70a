// SPDX-License-Identifier: Apache-2.0
// What a command is and takes, as data: help, manual pages and completion are made from it.
#ifndef FRUCTL_TERMINAL_COMMAND_DOC_H
#define FRUCTL_TERMINAL_COMMAND_DOC_H

#include <list>
#include <string>
#include <utility>
#include <vector>

// What a shell offers for a value.
enum class Completes
{
    Nothing,
    Devices,
    DevicesAndFiles,
    Files,
    Directories,
    Labels,
    Commands // of fructl itself
};

// An option, or a word that has its place.
struct OPTION_DOC_S
{
    std::vector<std::string> vecNames; // "-n", "--dry-run"; of a word its own name
    std::string strPlaceholder;        // of its value; empty: it takes none
    std::string strWhat;
    std::string strDefault = {};
    std::vector<std::string> vecAccepted = {};
    Completes enCompletes = Completes::Nothing;
    bool bWord = false;
    bool bRequired = false;
    bool bList = false;
};

using DOC_ROWS = std::vector<std::pair<std::string, std::string>>;

// More that is told of a command: a paragraph, or rows of a word and what it means.
struct SECTION_DOC_S
{
    std::string strTitle; // none: it follows the description
    std::string strText;
    DOC_ROWS vecRows;
};

struct COMMAND_DOC_S
{
    std::string strName;
    std::string strWhat;
    std::string strGroup = {};     // under which the help lists it
    std::string strExamples = {};  // one a line; what it does may stand behind, after at least two blanks
    std::string strNextGroup = {}; // of the commands that are added next
    bool bHidden = false;
    std::list<OPTION_DOC_S> listOptions = {};
    std::list<COMMAND_DOC_S> listCommands = {};
    std::vector<SECTION_DOC_S> vecSections = {};
    const COMMAND_DOC_S *pstParent = nullptr;

    // "fructl label set".
    std::string Path() const;
    // "fructl label set [OPTIONS] [DEVICE] ...".
    std::string Synopsis() const;
    const COMMAND_DOC_S *Find(const std::string &strCommand) const; // null: none
    // Names of its commands that are not hidden, in the order of the help.
    std::vector<std::string> CommandNames() const;
    // Groups of its commands, in the order of the help; one without a name where there is no group.
    std::vector<std::string> Groups() const;
    // The option of this command or of those above; null: none.
    const OPTION_DOC_S *FindOption(const std::string &strOption) const;
    // All options that may stand behind it, its own first.
    std::vector<const OPTION_DOC_S *> AllOptions() const;
};

// "-n,--dry-run", or "--root DIR"; with its default and accepted values in the text.
std::string OptionNames(const OPTION_DOC_S &stOption);
std::string OptionText(const OPTION_DOC_S &stOption);

#endif
