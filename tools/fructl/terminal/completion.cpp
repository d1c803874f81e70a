// SPDX-License-Identifier: Apache-2.0
#include "terminal/completion.h"

namespace {

bool IsOption(const std::string &strWord)
{
    return strWord.size() > 1U && strWord[0] == '-';
}

void Remember(COMPLETION_S &stOut, const OPTION_DOC_S &stOption, const std::string &strValue)
{
    if (stOption.vecNames.front() == "--root") {
        stOut.strRoot = strValue;
    } else if (stOption.vecNames.front() == "--id") {
        stOut.strDeviceID = strValue;
    }
}

void OfferValue(COMPLETION_S &stOut, const OPTION_DOC_S &stOption)
{
    for (const std::string &strValue : stOption.vecAccepted) {
        stOut.vecRows.emplace_back(strValue, "");
    }
    stOut.enCompletes = stOption.enCompletes;
}

void OfferOptions(COMPLETION_S &stOut, const COMMAND_DOC_S &stCommand)
{
    for (const OPTION_DOC_S *pstOption : stCommand.AllOptions()) {
        stOut.vecRows.emplace_back(pstOption->vecNames.back(), pstOption->strWhat);
    }
}

// The word that is next: with --id the device has been named already.
void OfferWord(COMPLETION_S &stOut, const COMMAND_DOC_S &stCommand)
{
    for (const COMMAND_DOC_S &stNext : stCommand.listCommands) {
        if (!stNext.bHidden && stOut.vecGiven.empty()) {
            stOut.vecRows.emplace_back(stNext.strName, stNext.strWhat);
        }
    }
    size_t uiSkip = stOut.vecGiven.size();
    for (const OPTION_DOC_S &stOption : stCommand.listOptions) {
        const bool bDevice =
            stOption.enCompletes == Completes::Devices || stOption.enCompletes == Completes::DevicesAndFiles;
        if (!stOption.bWord || (bDevice && !stOut.strDeviceID.empty())) {
            continue;
        }
        if (uiSkip == 0U || stOption.bList) {
            OfferValue(stOut, stOption);
            return;
        }
        uiSkip--;
    }
}

} // namespace

COMPLETION_S CompletionOf(const COMMAND_DOC_S &stTop, const std::vector<std::string> &vecWords)
{
    COMPLETION_S stOut;
    const COMMAND_DOC_S *pstCommand = &stTop;
    const OPTION_DOC_S *pstOpen = nullptr; // an option that waits for its value
    bool bOptions = true;                  // until "--"
    for (size_t i = 0; i + 1U < vecWords.size(); i++) {
        const std::string &strWord = vecWords[i];
        const size_t uiEquals = strWord.find('=');
        if (pstOpen != nullptr) {
            Remember(stOut, *pstOpen, strWord);
            pstOpen = nullptr;
        } else if (bOptions && strWord == "--") {
            bOptions = false;
        } else if (bOptions && IsOption(strWord)) {
            const OPTION_DOC_S *pstOption = pstCommand->FindOption(strWord.substr(0, uiEquals));
            if (pstOption != nullptr && !pstOption->strPlaceholder.empty()) {
                pstOpen = uiEquals == std::string::npos ? pstOption : nullptr;
                Remember(stOut, *pstOption,
                         uiEquals == std::string::npos ? "" : strWord.substr(uiEquals + 1U));
            }
        } else if (const COMMAND_DOC_S *pstNext = pstCommand->Find(strWord);
                   pstNext != nullptr && stOut.vecGiven.empty()) {
            pstCommand = pstNext;
        } else {
            stOut.vecGiven.push_back(strWord);
        }
    }
    stOut.strCurrent = vecWords.empty() ? "" : vecWords.back();
    const size_t uiEquals = stOut.strCurrent.find('=');
    if (pstOpen != nullptr) {
        OfferValue(stOut, *pstOpen);
    } else if (!bOptions || stOut.strCurrent.empty() || stOut.strCurrent[0] != '-') {
        OfferWord(stOut, *pstCommand);
    } else if (uiEquals == std::string::npos) {
        OfferOptions(stOut, *pstCommand);
    } else if (const OPTION_DOC_S *pstOption = pstCommand->FindOption(stOut.strCurrent.substr(0, uiEquals))) {
        OfferValue(stOut, *pstOption);
        stOut.strBefore = stOut.strCurrent.substr(0, uiEquals + 1U);
        stOut.strCurrent.erase(0, uiEquals + 1U);
    }
    return stOut;
}
