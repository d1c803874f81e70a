// SPDX-License-Identifier: Apache-2.0
// What a damaged image still says.
#ifndef FRUCTL_COMMANDS_SHOW_LENIENT_H
#define FRUCTL_COMMANDS_SHOW_LENIENT_H

#include "commands/commands.h"

// Every field, good or doubtful. Fails as damage when there is none at all.
void ShowLeniently(const SESSION_S &stSession, const SHOWN_S &stShown, u32 uiOffset);

#endif
