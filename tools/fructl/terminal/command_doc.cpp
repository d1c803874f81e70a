// SPDX-License-Identifier: Apache-2.0
#include "terminal/command_doc.h"

#include <algorithm>

#include "toolkit/base/text.h"

std::string COMMAND_DOC_S::Path() const
{
    return pstParent == nullptr ? strName : pstParent->Path() + " " + strName;
}

std::string COMMAND_DOC_S::Synopsis() const
{
    std::string strOut = Path() + " [OPTIONS]";
    for (const OPTION_DOC_S &stOption : listOptions) {
        if (stOption.bWord) {
            // "A B" names them one by one.
            const bool bMore = stOption.bList && stOption.vecNames.front().find(' ') == std::string::npos;
            const std::string strWord = stOption.vecNames.front() + (bMore ? "..." : "");
            strOut += stOption.bRequired ? " " + strWord : " [" + strWord + "]";
        }
    }
    return strOut + (CommandNames().empty() ? "" : " COMMAND");
}

const COMMAND_DOC_S *COMMAND_DOC_S::Find(const std::string &strCommand) const
{
    const auto itFound =
        std::find_if(listCommands.begin(), listCommands.end(),
                     [&](const COMMAND_DOC_S &stCommand) { return stCommand.strName == strCommand; });
    return itFound == listCommands.end() ? nullptr : &*itFound;
}

std::vector<std::string> COMMAND_DOC_S::CommandNames() const
{
    std::vector<std::string> vecNames;
    for (const COMMAND_DOC_S &stCommand : listCommands) {
        if (!stCommand.bHidden) {
            vecNames.push_back(stCommand.strName);
        }
    }
    return vecNames;
}

std::vector<std::string> COMMAND_DOC_S::Groups() const
{
    std::vector<std::string> vecGroups;
    for (const COMMAND_DOC_S &stCommand : listCommands) {
        if (!stCommand.bHidden &&
            std::find(vecGroups.begin(), vecGroups.end(), stCommand.strGroup) == vecGroups.end()) {
            vecGroups.push_back(stCommand.strGroup);
        }
    }
    return vecGroups;
}

const OPTION_DOC_S *COMMAND_DOC_S::FindOption(const std::string &strOption) const
{
    for (const OPTION_DOC_S *pstOption : AllOptions()) {
        const std::vector<std::string> &vecNames = pstOption->vecNames;
        if (std::find(vecNames.begin(), vecNames.end(), strOption) != vecNames.end()) {
            return pstOption;
        }
    }
    return nullptr;
}

std::vector<const OPTION_DOC_S *> COMMAND_DOC_S::AllOptions() const
{
    std::vector<const OPTION_DOC_S *> vecOptions;
    for (const COMMAND_DOC_S *pstCommand = this; pstCommand != nullptr; pstCommand = pstCommand->pstParent) {
        for (const OPTION_DOC_S &stOption : pstCommand->listOptions) {
            // Each command has its own --help.
            const bool bAgain =
                pstCommand != this && (stOption.vecNames.back() == "--help" || stOption.bWord);
            if (!stOption.bWord && !bAgain) {
                vecOptions.push_back(&stOption);
            }
        }
    }
    return vecOptions;
}

std::string OptionNames(const OPTION_DOC_S &stOption)
{
    return Join(stOption.vecNames, ", ") +
           (stOption.bWord || stOption.strPlaceholder.empty() ? "" : " " + stOption.strPlaceholder);
}

std::string OptionText(const OPTION_DOC_S &stOption)
{
    std::string strOut = stOption.strWhat;
    // The placeholder may tell them already.
    if (!stOption.vecAccepted.empty() && stOption.strPlaceholder != Join(stOption.vecAccepted, "|")) {
        strOut += " (" + Join(stOption.vecAccepted, ", ") + ")";
    }
    return strOut + (stOption.strDefault.empty() ? "" : " [" + stOption.strDefault + "]");
}
