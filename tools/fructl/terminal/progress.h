// SPDX-License-Identifier: Apache-2.0
// A line on the terminal while an EEPROM is being written.
#ifndef FRUCTL_TERMINAL_PROGRESS_H
#define FRUCTL_TERMINAL_PROGRESS_H

#include "toolkit/edit/progress.h"

// Shows it on stderr; null when that is no terminal.
ProgressView *TerminalProgress();

#endif
