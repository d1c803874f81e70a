// SPDX-License-Identifier: Apache-2.0
// fructl label set --from: many devices from one table.
#ifndef FRUCTL_COMMANDS_LABEL_BATCH_H
#define FRUCTL_COMMANDS_LABEL_BATCH_H

#include <string>
#include <vector>

#include "commands/session.h"
#include "terminal/command_line.h"
#include "toolkit/edit/batch.h"

struct LABEL_BATCH_S
{
    std::string strFrom; // the table; empty: there is none
    std::string strResults;
    std::vector<std::string> vecTemplates; // NAME=TEXT
    BATCH_OPTIONS_S stBatch;

    // Whether something is given that only a table has a use for.
    bool IsGiven() const;
};

void AddLabelBatchOptions(const Command &stCommand, LABEL_BATCH_S &stOptions);
void RunLabelBatch(const SESSION_S &stSession, LABEL_BATCH_S stOptions);

#endif
