// SPDX-License-Identifier: Apache-2.0
// What a shell offers next on a command line that is being written.
#ifndef FRUCTL_TERMINAL_COMPLETION_H
#define FRUCTL_TERMINAL_COMPLETION_H

#include <string>
#include <vector>

#include "terminal/command_doc.h"

struct COMPLETION_S
{
    // What is wanted: words of the line's own, or a value that depends on what there is.
    DOC_ROWS vecRows;                           // a word, and what it is
    Completes enCompletes = Completes::Nothing; // beside them
    std::string strBefore;  // what of the last word stands in front of the value: "--root="
    std::string strCurrent; // the rest of it

    // What the line has said before.
    std::vector<std::string> vecGiven; // words of the command, without options
    std::string strRoot;
    std::string strDeviceID;
};

// Of the words behind "fructl", the last of them the one that is being written, empty where it is not begun.
COMPLETION_S CompletionOf(const COMMAND_DOC_S &stTop, const std::vector<std::string> &vecWords);

#endif
