// SPDX-License-Identifier: Apache-2.0
// fructl completion: what makes a shell complete fructl's command lines; and the query that its scripts ask.
#include <algorithm>

#include "commands/commands.h"
#include "terminal/completion.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device.h"
#include "toolkit/controller/target.h"
#include "toolkit/edit/labels.h"

namespace {

// Nobody waits long for a shell.
constexpr unsigned PATIENCE_MS = 200U;

// The scripts know no word of fructl's: they ask the fructl that is on the line, so that they are never old.
constexpr const char *BASH_SCRIPT = R"(# bash completion for fructl
_fructl()
{
    local strWord strLine
    local -a asWords=()
    # Readline takes words apart at : and =.
    for strWord in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        if [[ ${#asWords[@]} -gt 0 && ( $strWord == [:=]* || ${asWords[-1]} == --*= || ${asWords[-1]} == 0x*: ) ]]; then
            asWords[-1]+=$strWord
        else
            asWords+=("$strWord")
        fi
    done
    local strBefore=
    local i
    for i in "${!asWords[@]}"; do
        strWord=${asWords[i]#[\"\']}
        strWord=${strWord%[\"\']}
        asWords[i]=${strWord//\\/}
    done
    # What readline thinks it completes is what stands behind the last : or =.
    strWord=${asWords[-1]}
    if [[ $strWord == --*=* ]]; then strBefore=${strWord%%=*}=; fi
    if [[ $strWord == 0x*:* ]]; then strBefore=${strWord%%:*}:; fi
    COMPREPLY=()
    while IFS= read -r strLine; do
        case $strLine in
            :files) compopt -o filenames 2>/dev/null
                    while IFS= read -r strLine; do COMPREPLY+=("$strLine"); done < <(compgen -f -- "${strWord#"$strBefore"}") ;;
            :folders) compopt -o filenames 2>/dev/null
                    while IFS= read -r strLine; do COMPREPLY+=("$strLine"); done < <(compgen -d -- "${strWord#"$strBefore"}") ;;
            *) strLine=${strLine%%$'\t'*}
               if [[ $strLine == *' '* ]]; then compopt -o filenames 2>/dev/null; fi
               COMPREPLY+=("${strLine#"$strBefore"}") ;;
        esac
    done < <("${COMP_WORDS[0]/#\~/$HOME}" complete -- "${asWords[@]}" 2>/dev/null)
}
complete -F _fructl fructl
)";

constexpr const char *ZSH_SCRIPT = R"(#compdef fructl
# zsh completion for fructl
_fructl() {
    local strLine strWord
    local -a asLines asOffered
    asLines=("${(@f)$(${(Q)words[1]/#\~/$HOME} complete -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
    for strLine in $asLines; do
        case $strLine in
            :files) _files ;;
            :folders) _files -/ ;;
            *) strWord=${strLine%%$'\t'*}
               asOffered+=("${strWord//:/\\:}:${strLine#*$'\t'}") ;;
        esac
    done
    (( $#asOffered )) && _describe fructl asOffered
}
if [ "$funcstack[1]" = _fructl ]; then _fructl "$@"; else compdef _fructl fructl; fi
)";

constexpr const char *FISH_SCRIPT = R"(# fish completion for fructl
function __fructl_complete
    # The word that is being written comes as it stands there, quotes and all.
    set -l strWord (commandline -ct | string trim --left --chars='"\'' | string replace --all '\\' '')
    set -l asWords (commandline -opc) "$strWord"
    for strLine in ($asWords[1] complete -- $asWords[2..-1] 2>/dev/null)
        switch $strLine
            case :files
                __fish_complete_path (commandline -ct)
            case :folders
                __fish_complete_directories (commandline -ct)
            case '*'
                echo $strLine
        end
    end
end
complete -c fructl -f -a '(__fructl_complete)'
)";

struct SHELL_S
{
    const char *pcName;
    const char *pcScript;
    const char *pcPlace; // where it finds it by itself
};

constexpr SHELL_S SHELLS[] = {
    {"bash", BASH_SCRIPT, "~/.local/share/bash-completion/completions/fructl"},
    {"zsh", ZSH_SCRIPT, "a folder of $fpath, as _fructl"},
    {"fish", FISH_SCRIPT, "~/.config/fish/completions/fructl.fish"},
};

void AddDevices(const SESSION_S &stSession, DOC_ROWS &vecRows)
{
    for (const DEVICE_S &stDevice : LoadDevices(stSession)) {
        vecRows.emplace_back(EscapeText(stDevice.strName), stDevice.Component());
    }
}

// Those that the device takes which the line names; without one, all.
void AddLabels(const SESSION_S &stSession, const COMPLETION_S &stCompletion, DOC_ROWS &vecRows)
{
    std::optional<DEVICE_S> optDevice;
    const bool bWord = stCompletion.strDeviceID.empty() && !stCompletion.vecGiven.empty();
    if (bWord || !stCompletion.strDeviceID.empty()) {
        try {
            optDevice = ResolveDevice(
                stSession, {bWord ? stCompletion.vecGiven.front() : "", stCompletion.strDeviceID, ""});
        } catch (const Error &) {
            optDevice.reset(); // no such device: the line may still become one
        }
    }
    for (const LABEL_S &stLabel : Labels()) {
        if (!optDevice.has_value() || IsAccepted(*optDevice, stLabel)) {
            vecRows.emplace_back(stLabel.strName, AcceptsText(stLabel.enAccepts));
        }
    }
}

void AddValues(SESSION_S &stSession, const Command &stTop, COMPLETION_S &stCompletion)
{
    switch (stCompletion.enCompletes) {
    case Completes::Devices:
    case Completes::DevicesAndFiles:
        AddDevices(stSession, stCompletion.vecRows);
        break;
    case Completes::Labels:
        AddLabels(stSession, stCompletion, stCompletion.vecRows);
        break;
    case Completes::Commands: {
        const COMMAND_DOC_S *pstDoc = &stTop.Doc();
        for (size_t i = 0; i < stCompletion.vecGiven.size() && pstDoc != nullptr; i++) {
            pstDoc = pstDoc->Find(stCompletion.vecGiven[i]);
        }
        if (pstDoc == nullptr) {
            break; // no such command: the line may still become one
        }
        for (const COMMAND_DOC_S &stCommand : pstDoc->listCommands) {
            if (!stCommand.bHidden) {
                stCompletion.vecRows.emplace_back(stCommand.strName, stCommand.strWhat);
            }
        }
        break;
    }
    default:
        break;
    }
}

// A word and what it is a line, with a tab between; ":files" and ":folders" where the shell's own come in
// too.
void RunQuery(SESSION_S &stSession, const Command &stTop, const std::vector<std::string> &vecWords)
{
    COMPLETION_S stCompletion = CompletionOf(stTop.Doc(), vecWords);
    stSession.uiWaitMs = PATIENCE_MS;
    try {
        if (!stCompletion.strRoot.empty()) {
            stSession.strRoot = stCompletion.strRoot;
            OpenController(stSession);
        }
        AddValues(stSession, stTop, stCompletion);
    } catch (const Error &) {
        stSession.vecNamed.clear(); // no controller: nothing of it is offered, and nobody is there to be told
    }
    std::string strOut;
    for (const auto &[strWord, strWhat] : stCompletion.vecRows) {
        if (strWord.compare(0, stCompletion.strCurrent.size(), stCompletion.strCurrent) == 0) {
            strOut += stCompletion.strBefore + strWord + "\t" + strWhat + "\n";
        }
    }
    const Completes enCompletes = stCompletion.enCompletes;
    strOut += enCompletes == Completes::Files || enCompletes == Completes::DevicesAndFiles ? ":files\n" : "";
    strOut += enCompletes == Completes::Directories ? ":folders\n" : "";
    Print(strOut);
}

void AddQuery(const Command &stParent, SESSION_S &stSession)
{
    const auto pvecWords = std::make_shared<std::vector<std::string>>();
    const Command stCommand =
        stParent.Add("complete", "What may stand next on a command line", "fructl complete -- l");
    stCommand.Hide();
    stCommand.AddOption("WORD", *pvecWords,
                        "the words behind 'fructl', the last the one that is being written");
    stCommand.Run([&stSession, stParent, pvecWords] { RunQuery(stSession, stParent, *pvecWords); });
}

void RunCompletion(const SESSION_S &stSession, const std::string &strShell)
{
    const auto *pstShell = std::find_if(std::begin(SHELLS), std::end(SHELLS),
                                        [&](const SHELL_S &stShell) { return strShell == stShell.pcName; });
    if (stSession.bJson) {
        PrintJson(
            {{"shell", pstShell->pcName}, {"place", pstShell->pcPlace}, {"script", pstShell->pcScript}});
    } else {
        Print(pstShell->pcScript);
    }
}

} // namespace

void AddCompletionCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstrShell = std::make_shared<std::string>();
    const Command stCommand =
        stParent.Add("completion", "Print what makes a shell complete commands, options, devices and labels",
                     "source <(fructl completion bash)  for this shell\n"
                     "fructl completion fish > ~/.config/fish/completions/fructl.fish  for all");
    stCommand.AddOption("SHELL", *pstrShell, "which shell").OneOf({"bash", "zsh", "fish"}).Required();
    DOC_ROWS vecRows;
    for (const SHELL_S &stShell : SHELLS) {
        vecRows.emplace_back(stShell.pcName, stShell.pcPlace);
    }
    stCommand.AddSection("Where the shells look for it", "", vecRows);
    stCommand.Run([&stSession, pstrShell] { RunCompletion(stSession, *pstrShell); });
    AddQuery(stParent, stSession);
}
